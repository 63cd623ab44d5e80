// The OEM security commands of the controller, and the tunnel for ATA commands.
#pragma once

#include "api/src/interface/wire/types.h"

// The group and the sub-command of all security commands; which one it is, is told by the argument.
inline constexpr QRX_U8 kGroupSecurity = 0xFD;
inline constexpr QRX_U8 kSubSecurity = 0x02;
inline constexpr QRX_U16 kSecurityLight = 0;     // reads the light info block
inline constexpr QRX_U16 kSecurityPresence = 1;  // help provided to drives, acknowledgements
inline constexpr QRX_U16 kSecuritySet = 2;       // secure mode, help complete, help provided to a drive
inline constexpr QRX_U16 kSecurityInfo = 3;      // reads the security info block

// CDW13 of a command that sets something: a drive's id in the upper half and bit 0 for a drive; for the controller the
// selector in bits 31 to 24.
inline constexpr QRX_U32 kSecurityOfDrive = 1;
inline constexpr QRX_U8 kSelectSecureMode = 0;
inline constexpr QRX_U8 kSelectHelpComplete = 1;

// Switches of the adapter group.
inline constexpr QRX_U8 kSubHideTemperature = 0x25;  // the argument: 1 to hide it
inline constexpr QRX_U8 kSubSetEeprom = 0xEA;        // CDW14: 1 for on
inline constexpr QRX_U8 kSubGetEeprom = 0xEB;        // the first dword of the payload: the same

// The tunnel for ATA commands, in CDW[0]. CDW10 to CDW13 are the first four dwords of the FIS.
inline constexpr QRX_U32 kSataFromDrive = 0xD2;  // data from the drive
inline constexpr QRX_U32 kSataToDrive = 0xD3;    // data to the drive, or none
