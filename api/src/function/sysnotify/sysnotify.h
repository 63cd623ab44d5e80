// What is done for the operating system around a change of virtual disks on the typed interface: new namespaces are
// attached to every host function, and those about to go are detached. A controller with more than one virtual disk
// is left alone: only a restart of the host makes it see the change.
#pragma once

#include "api/src/interface/wire/types.h"

// Each is called with the table index of the controller, and returns 0 or, where the controller's lists could not be
// read, 1 (after_create_vd) or the code of the failure (before_delete_vd). A failed attachment prints its status text
// and counts as done.
QRX_U32 before_create_vd(QRX_U8 adapter_id);
QRX_U32 after_create_vd(QRX_U8 adapter_id);
QRX_U32 before_delete_vd(QRX_U8 adapter_id, QRX_U16 vdId);  // `vdId` is not read: there is only one
QRX_U32 after_delete_vd(QRX_U8 adapter_id);
QRX_U32 after_import_vd(QRX_U8 adapter_id);
