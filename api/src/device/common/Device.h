// The one interface through which the tool reaches a controller.
//
// A device is a plain record whose first fields are its operations; a derived record begins with a _Device, so
// that its pointer converts. Each operation takes the device itself as first argument.
#pragma once

#include "api/src/function/lock/lock.h"
#include "api/src/interface/wire/types.h"

struct _Device;
using Device = _Device;
using PDevice = _Device*;

struct _Device {
    PQRXLock m_lock;  // owned; null: no lock

    // Sends a standard admin command. `cmd` holds `cmd_length` words that become CDW10 onward. Lengths are bytes, of
    // an admin command at most 8192.
    // Data to the device when in_data_length is not 0, otherwise out_data is sent along and filled on success.
    // Returns 0, a positive NVMe status, 0xFFFFFFFF (-1) from the driver, or 1 where nothing could be sent.
    QRX_U32(*sendCommand)
    (PDevice _this, QRX_U8 opc_code, QRX_U32 name_space, QRX_U32* cmd, QRX_U8 cmd_length, void* in_data,
     QRX_U16 in_data_length, void* out_data, QRX_U16 out_data_length);
    // Sends an I/O command; arguments and result as sendCommand. Its data may be longer than 16 bits can tell.
    QRX_U32(*sendNVM)
    (PDevice _this, QRX_U8 opc_code, QRX_U32 name_space, QRX_U32* cmd, QRX_U8 cmd_length, void* in_data,
     QRX_U32 in_data_length, void* out_data, QRX_U32 out_data_length);
    // Sends the whole record `pCmd` (a _qrx_admin_command_format). out_data is filled whatever the controller
    // answers; it and `params` stay as they are where nothing could be sent.
    // `params`, if not null, gets Completion Dword 0.
    QRX_U32(*sendPassthruAdmin)
    (PDevice _this, void* pCmd, void* in_data, QRX_U16 in_data_length, void* out_data, QRX_U16 out_data_length,
     QRX_U32* params);
    void (*closeHandle)(PDevice _this);       // frees the device
    PDevice (*getNVMEDevice)(PDevice _this);  // the device that owns the descriptor

    char bus_dev_fun[32];   // PCI location
    char device_path[256];  // "/dev/nvme<N>"
    char subnqn[256];       // 223 characters, padded with blanks
    int slot_id;            // SMBIOS slot number, or -1
};
