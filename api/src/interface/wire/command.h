// The command record of the vendor admin channel and the sub-command word in its CDW12.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/types.h"

// One admin command. CDW is laid out as the driver's nvme_admin_cmd, and only those 72 bytes are sent.
struct _qrx_admin_command_format {
    QRX_U32 CDW[18];     // 0 opcode, 1 nsid, 10 to 15 command words, 16 timeout in ms; 6, 7 and 9 are the device's own
    QRX_U16 cdw_flag;    // bit n: the handler filled CDW[n]; bookkeeping, not sent
    QRX_U16 control_id;  // reserved for a controller id; 0
    QRX_U16 rsvd0[2];
};
using p_qrx_admin_command_format = _qrx_admin_command_format*;
using p_qrx_nvme_command_format = _qrx_admin_command_format*;
static_assert(sizeof(_qrx_admin_command_format) == 80);
static_assert(offsetof(_qrx_admin_command_format, cdw_flag) == 72);

// Vendor opcodes, in CDW[0].
inline constexpr QRX_U32 kVendorRead = 226;       // data from the controller, or none
inline constexpr QRX_U32 kVendorWrite = 199;      // data to the controller
inline constexpr QRX_U32 kTunnelFromDrive = 194;  // to a back-end drive, data from it
inline constexpr QRX_U32 kTunnelToDrive = 195;    // to a back-end drive, data to it or none
inline constexpr QRX_U8 kPairSend = 0xCB;         // the two halves of a pair command, as sent
inline constexpr QRX_U8 kPairReceive = 0xCE;

// Group opcodes, in the low byte of CDW12.
inline constexpr QRX_U8 kGroupAdapter = 0xE0;
inline constexpr QRX_U8 kGroupPd = 0xE1;
inline constexpr QRX_U8 kGroupVd = 0xE2;
inline constexpr QRX_U8 kGroupBga = 0xE3;
inline constexpr QRX_U8 kGroupEvent = 0xE4;
inline constexpr QRX_U8 kGroupNs = 0xE5;
inline constexpr QRX_U8 kGroupDump = 0xFE;

// The forms of the 16-bit argument of a vendor command.
// clang-format off
struct _NVME_AP_GPIO_Setting { QRX_U16 setDefault; };
struct _NVME_AP_PCIe_Register { QRX_U8 id; QRX_U8 reserved; };
struct NVME_AP_SP_COMMIT { QRX_U8 type; QRX_U8 reserved; };
struct _NVME_AP_Delete_VD { QRX_U16 id; };
struct _NVME_AP_Create_VD { QRX_U8 sbs : 4; QRX_U8 reserved : 4; QRX_U8 raidMode; };
struct _NVME_AP_Init_NS { QRX_U16 pdid; };
struct _NVME_AP_Sharing_NS { QRX_U16 nsid; };
struct _NVME_AP_Create_NS { QRX_U8 pdvdid; QRX_U8 cid; };   // pdvdid: the id plus 1
struct NVME_AP_Delete_NS { QRX_U16 ns_id; };
struct NVME_AP_Get_Unused_NS { QRX_U16 pd_id; };
struct NVME_AP_Set_nmic { QRX_U16 ns_id; };
struct _NVME_AP_Ns_Get_sinfo_Vd { QRX_U8 vd_id; QRX_U8 reserved; };
struct _NVME_SP_SetDebug_level { QRX_U16 debuglevel; };
struct NVME_SP_GetNMIC { QRX_U16 nsid; };
struct NVME_SP_NS_SMART { QRX_U16 ns_id; };
struct NVME_PD_FLUSH { QRX_U16 pdid; };
struct NVME_NS_BACKUP { QRX_U16 pdid; };
struct NVME_QOS { QRX_U16 hostid; };
struct _NVME_INVERSE { QRX_U8 value; QRX_U8 reserved; };
struct NVME_AP_SWITCH_FEATURE { QRX_U16 switchFeature; };
// clang-format on
using NVME_INVERSE = _NVME_INVERSE;
using NVME_AP_PCIe_Register = _NVME_AP_PCIe_Register;
using NVME_AP_GPIO_Setting = _NVME_AP_GPIO_Setting;
using NVME_AP_Delete_VD = _NVME_AP_Delete_VD;
using NVME_AP_Create_VD = _NVME_AP_Create_VD;
using NVME_AP_Init_NS = _NVME_AP_Init_NS;
using NVME_AP_Sharing_NS = _NVME_AP_Sharing_NS;
using NVME_AP_Create_NS = _NVME_AP_Create_NS;
using NVME_AP_Ns_Get_sinfo_Vd = _NVME_AP_Ns_Get_sinfo_Vd;
using NVME_SP_SetDebug_level = _NVME_SP_SetDebug_level;

// The word in CDW[12] of a vendor command.
struct _NVME_AP_Opcode {
    QRX_U8 opcode;     // group, bits 7 to 0
    QRX_U8 subOpcode;  // command in the group, bits 15 to 8
    union {            // argument, bits 31 to 16
        QRX_U8 reserved[2];
        NVME_AP_GPIO_Setting gpio_settings;
        NVME_AP_PCIe_Register pcie_register;
        NVME_AP_SP_COMMIT sp_commit;
        NVME_AP_Delete_VD delete_vd;
        NVME_AP_Create_VD create_vd;
        NVME_AP_Init_NS init_ns;
        NVME_AP_Sharing_NS sharing_ns;
        NVME_AP_Create_NS create_ns;
        NVME_AP_Delete_NS delete_ns;
        NVME_AP_Get_Unused_NS get_unused_ns_pd_id;
        NVME_AP_Set_nmic nmic_ns_id;
        NVME_AP_Ns_Get_sinfo_Vd sinfo_vd;
        NVME_SP_SetDebug_level debug_lv;
        NVME_SP_GetNMIC getNMIC;
        NVME_SP_NS_SMART nsSMART;
        NVME_PD_FLUSH pdFlush;
        NVME_NS_BACKUP nsBackup;
        NVME_QOS qos;
        NVME_INVERSE inverse;
        NVME_AP_SWITCH_FEATURE switch_feature;
    } unit;
};
using NVME_AP_Opcode = _NVME_AP_Opcode;
static_assert(sizeof(_NVME_AP_Opcode) == 4);
static_assert(offsetof(_NVME_AP_Opcode, unit) == 2);

namespace qrx {

// The same word from its parts.
constexpr QRX_U32 vendorWord(QRX_U8 group, QRX_U8 subOpcode, QRX_U16 unit = 0)
{
    return QRX_U32{group} | QRX_U32{subOpcode} << 8U | QRX_U32{unit} << 16U;
}

}  // namespace qrx
