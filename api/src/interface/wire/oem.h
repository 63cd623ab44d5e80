// The record of customer identity that the controller keeps: who sells it, its serial number and its model.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/types.h"

// It stands, without an envelope, at the head of the page that is read and written.
struct _NVMEOEMData {
    QRX_U8 sign[4];         // kOemSign
    QRX_U16 data_length;    // bytes under the checksum, 1 to 4096; anything else: there is no record
    QRX_U8 data_offset;     // of subsystemVID
    QRX_U8 reserved1;       // 0
    QRX_U32 zerochksum;     // makes the 32-bit words of the first data_length bytes sum to 0
    QRX_U16 subsystemVID;   // PCI subsystem vendor id
    QRX_U16 subDevID;       // PCI subsystem device id
    QRX_U8 reserved2[60];   // 0
    QRX_U8 SN[20];          // serial number, padded with blanks, without a terminator
    QRX_U8 model[40];       // model number, padded with blanks, without a terminator
    QRX_U8 reserved3[120];  // 0; not under the checksum
};
using NVMEOEMData = _NVMEOEMData;
using PNVMEOEMData = _NVMEOEMData*;
static_assert(sizeof(_NVMEOEMData) == 256);
static_assert(offsetof(_NVMEOEMData, data_length) == 4);
static_assert(offsetof(_NVMEOEMData, zerochksum) == 8);
static_assert(offsetof(_NVMEOEMData, SN) == 76);
static_assert(offsetof(_NVMEOEMData, model) == 96);
static_assert(offsetof(_NVMEOEMData, reserved3) == 136);

inline constexpr char kOemSign[5] = "QRX ";
inline constexpr QRX_U16 kOemDataLength = offsetof(_NVMEOEMData, reserved3);    // as the tool writes it
inline constexpr QRX_U8 kOemDataOffset = offsetof(_NVMEOEMData, subsystemVID);  // as the tool writes it
inline constexpr QRX_U16 kOemDataLengthMax = 4096;
