// The progress records of all controllers, by table index.
#pragma once

#include "api/src/function/progressbar/common/ProgressBar.h"
#include "api/src/interface/wire/types.h"

// Empties the list. Before any other call, and after it only through progressbar_management_close.
void progressbar_management_init();

// The record of a controller, made on first use and owned by the list. Null for an index past the table, or when
// memory is short.
PQRXProgressBar progressbar_management_get_instance(QRX_U16 adapter_id);

// Waits for the workers and frees all records.
void progressbar_management_close();
