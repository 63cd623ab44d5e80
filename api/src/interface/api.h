// Start and end of the access layer, and the table of controllers as the front end sees it.
#pragma once

#include "api/src/interface/wire/types.h"

// Finds the controllers, sets their clocks, and looks for system disks. Once for each process, before any command.
// Throws std::bad_alloc; the process then has to end, since what was not found cannot be told from what is not there.
void QRX_Init();
// Frees what QRX_Init built.
void QRX_Final();

// 1 when the scan was refused the right to open a device.
QRX_U8 QRX_IsSysDenied();

QRX_U16 QRX_Adapter_GetCount();
QRX_U8 QRX_Adapter_GetOneBaseMode();
QRX_U16* QRX_Adapter_GetDeviceVID();  // where the vendor id of --vid=0x... is kept

// Of the controller at table index `adapter_id`, which must be below kMaxDevices.
char* QRX_Adapter_GetDeviceFun(QRX_U16 adapter_id);
char* QRX_Adapter_GetDevicePath(QRX_U16 adapter_id);
char* QRX_Adapter_GetDeviceSUBNQN(QRX_U16 adapter_id);
int QRX_Adapter_GetSlotID(QRX_U16 adapter_id);

// The index of the controller at PCI location `slot`, compared whole; the last match wins. False: none.
QRX_BOOLEAN findAdapterId(char* slot, int* id);
// The device number of table index `internalID`; *mappingID stays as it is where the slot has none.
void GetAdapterIdFromDeviceName(int internalID, int* mappingID);
// The table index of device number *devNameID. False: none.
QRX_BOOLEAN SetAdapterIdFromDeviceName(int* devNameID, int* addapterID);
// The table index of the controller with this SUBNQN, trailing blanks included; the last match wins. False: none.
QRX_BOOLEAN SetAdapterIdFromSUBNQN(char* subnqn, int* mappingAddapterID);
