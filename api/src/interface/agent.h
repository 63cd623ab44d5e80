// The vendor admin channel: the road of every registered command to its controller, and the words for its statuses.
#pragma once

#include "api/src/interface/wire/command.h"
#include "api/src/interface/wire/types.h"

// All four find the NVMe device at table index `adapter_id` and return its status unchanged: 0, a positive NVMe
// status, 0xFFFFFFFF (-1) from the driver, or 1 from the null device. Lengths are bytes, at most 4096 unless said
// otherwise.

// Sends a standard admin command, with data of at most 8192 bytes; CDW[0] is CDW10. Prints the status text.
QRX_U32 QRX_Adapter_Admin(QRX_U8 adapter_id, QRX_U8 opc, QRX_U32 name_space, QRX_U32* CDW, QRX_U8 CDW_length,
                          void* data_in, QRX_U16 data_in_length, void* data_out, QRX_U16 data_out_length);

// Sends an I/O command, of any length that the controller takes; prints nothing.
QRX_U32 QRX_Adapter_NVM(QRX_U8 adapter_id, QRX_U8 opc, QRX_U32 name_space, QRX_U32* CDW, QRX_U8 CDW_length,
                        void* data_in, QRX_U32 data_in_length, void* data_out, QRX_U32 data_out_length);

// Sends the whole record `pCmd` (a _qrx_admin_command_format). Prints the status text. `params`, if not null, gets
// Completion Dword 0. data_out is filled whatever the controller answers; it and `params` stay as they are
// where nothing could be sent.
QRX_U32 QRX_Adapter_PassthruAdmin(QRX_U8 adapter_id, void* pCmd, void* data_in, QRX_U16 data_in_length, void* data_out,
                                  QRX_U16 data_out_length, QRX_U32* params);

// The same for probes, where a failure is an expected answer: prints nothing.
QRX_U32 QRX_Adapter_PassthruAdmin_no_status_code(QRX_U8 adapter_id, void* pCmd, void* data_in, QRX_U16 data_in_length,
                                                 void* data_out, QRX_U16 data_out_length);

// Prints "<text> (Status Code: 0x<status>)" to standard output; nothing for 0.
void _showStatusCode(QRX_U32 statusCode);

// The text of a command-specific, and of a vendor-specific, status code (its low 8 bits).
const char* _cssErrorMessage(QRX_U32 errorCode);
const char* _vcErrorMessage(QRX_U32 errorCode);

// The text of a response's cmd_status.
const char* ErrorMessage(QRX_U8 errorCode);
