// The multi-function NVMe device: child controllers that are carved out of one controller, with queues, namespaces,
// storage and bandwidth of their own. Its admin commands and their records.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/types.h"

namespace qrx {

// Admin opcodes. CDW10 holds the operation in bits 7 to 0, the child controller in bits 23 to 8, and a selector in bits
// 31 to 24 where the operation has one.
inline constexpr QRX_U8 kMfndControl = 0xD0;  // no data
inline constexpr QRX_U8 kMfndManage = 0xD1;   // a page to the controller
inline constexpr QRX_U8 kMfndQuery = 0xD2;    // data from the controller

// Operations.
inline constexpr QRX_U8 kMfndIdentifyDevice = 1;     // of kMfndQuery
inline constexpr QRX_U8 kMfndIdentifyChild = 2;      // of kMfndQuery
inline constexpr QRX_U8 kMfndManageChild = 3;        // of kMfndManage
inline constexpr QRX_U8 kMfndControlChild = 4;       // of kMfndControl
inline constexpr QRX_U8 kMfndChildLogPage = 5;       // of kMfndQuery
inline constexpr QRX_U8 kMfndGetPermissions = 6;     // of kMfndQuery
inline constexpr QRX_U8 kMfndSetPermissions = 7;     // of kMfndManage
inline constexpr QRX_U16 kMfndAllChildren = 0xFFFF;  // in the place of a child controller

// Selectors of kMfndManageChild.
inline constexpr QRX_U8 kMfndCreate = 0;
inline constexpr QRX_U8 kMfndUpdate = 1;
inline constexpr QRX_U8 kMfndDelete = 2;
inline constexpr QRX_U8 kMfndReset = 3;  // CDW11: how many child controllers there are to be

// Selectors of kMfndControlChild.
inline constexpr QRX_U8 kMfndSecureErase = 0;
inline constexpr QRX_U8 kMfndPause = 1;
inline constexpr QRX_U8 kMfndResume = 2;
inline constexpr QRX_U8 kMfndShutDown = 3;

// Features of Set and Get Features, and the log page of events.
inline constexpr QRX_U8 kMfndOperationFeature = 0xD1;
inline constexpr QRX_U8 kMfndPropertiesFeature = 0xD2;
inline constexpr QRX_U8 kMfndEventLog = 0xD0;

// Bits of the records below.
inline constexpr QRX_U16 kMfndCountsValid = 1;  // of an entry's flags
inline constexpr QRX_U16 kMfndQosValid = 2;
inline constexpr QRX_U8 kMfndSingleMode = 1;        // of the operation's answer; else multiple
inline constexpr QRX_U8 kMfndUserPrivilege = 2;     // of the operation's answer; else admin
inline constexpr QRX_U32 kMfndEventHasLogPage = 1;  // of an event's flags
inline constexpr QRX_U32 kMfndEventIsFatal = 2;
inline constexpr QRX_U8 kMfndAllowed = 1;  // of a permission's flags
inline constexpr QRX_U8 kMfndChangeable = 2;

constexpr QRX_U32 mfndWord(QRX_U8 operation, QRX_U16 child = 0, QRX_U8 selector = 0)
{
    return QRX_U32{operation} | QRX_U32{child} << 8U | QRX_U32{selector} << 24U;
}

}  // namespace qrx

// How a child controller's traffic is governed. Bandwidths in MB/s, IOPS in operations per second.
struct _MSFT_CHILD_CTRL_QOS {
    QRX_U8 qos_policy;  // 0 reserve, 1 limit, 2 mix of both
    QRX_U8 reserved2[3];
    QRX_U32 reserved_read_bandwidth_in_MB;
    QRX_U32 reserved_write_bandwidth_in_MB;
    QRX_U32 limit_read_bandwidth_in_MB;
    QRX_U32 limit_write_bandwidth_in_MB;
    QRX_U32 reserve_radnom_read_iops;
    QRX_U32 reserve_random_write_iops;
    QRX_U32 limit_random_read_iops;
    QRX_U32 limit_random_write_iops;
    QRX_U8 reserved3[12];
};
static_assert(sizeof(_MSFT_CHILD_CTRL_QOS) == 48);
static_assert(offsetof(_MSFT_CHILD_CTRL_QOS, reserved_read_bandwidth_in_MB) == 4);
static_assert(offsetof(_MSFT_CHILD_CTRL_QOS, limit_read_bandwidth_in_MB) == 12);
static_assert(offsetof(_MSFT_CHILD_CTRL_QOS, reserve_radnom_read_iops) == 20);
static_assert(offsetof(_MSFT_CHILD_CTRL_QOS, limit_random_read_iops) == 28);
static_assert(offsetof(_MSFT_CHILD_CTRL_QOS, limit_random_write_iops) == 32);
static_assert(offsetof(_MSFT_CHILD_CTRL_QOS, reserved3) == 36);

// One child controller: at the head of the page of a management command, and in the answer of a child identify.
struct _MSFT_CHILD_CTRL_ENTRY {
    QRX_U16 ccid;   // child controller id
    QRX_U8 sn[36];  // serial number, text, zero-padded
    QRX_U16 reserved0;
    QRX_U16 flags;  // bit 0: the four counts are valid; bit 1: QOS is
    QRX_U16 IO_queue_pair_cnt;
    QRX_U16 MSI_X_msg_cnt;
    QRX_U16 ns_cnt;
    QRX_U32 storage_provision_unit_cnt;
    QRX_U8 reserved1[12];
    _MSFT_CHILD_CTRL_QOS QOS;
    QRX_U8 reserved4[16];
};
static_assert(sizeof(_MSFT_CHILD_CTRL_ENTRY) == 128);
static_assert(offsetof(_MSFT_CHILD_CTRL_ENTRY, sn) == 2);
static_assert(offsetof(_MSFT_CHILD_CTRL_ENTRY, flags) == 40);
static_assert(offsetof(_MSFT_CHILD_CTRL_ENTRY, IO_queue_pair_cnt) == 42);
static_assert(offsetof(_MSFT_CHILD_CTRL_ENTRY, MSI_X_msg_cnt) == 44);
static_assert(offsetof(_MSFT_CHILD_CTRL_ENTRY, ns_cnt) == 46);
static_assert(offsetof(_MSFT_CHILD_CTRL_ENTRY, storage_provision_unit_cnt) == 48);
static_assert(offsetof(_MSFT_CHILD_CTRL_ENTRY, QOS) == 64);
static_assert(offsetof(_MSFT_CHILD_CTRL_ENTRY, reserved4) == 112);

// The head of the answer of a child identify. Entries of 128 bytes follow.
struct _MSFT_CHILD_CTRL_LIST {
    QRX_U16 mumber_of_child_controller;
    QRX_U8 reserved0[6];
};
static_assert(sizeof(_MSFT_CHILD_CTRL_LIST) == 8);

// The answer of an identify of the multi-function device.
struct _MSFT_MFND_CAPABILITIES {
    QRX_U8 sign[4];
    QRX_U8 major_ver;
    QRX_U8 sub_ver;
    QRX_U16 reserved0;
    QRX_U16 max_physical_fun_cnt;
    QRX_U16 avail_physical_fun_cnt;
    QRX_U16 max_queue_pair_cnt;
    QRX_U16 avail_queue_pair_cnt;
    QRX_U16 max_MSI_X_msg_cnt;
    QRX_U16 avail_MSI_X_msg_cnt;
    QRX_U16 max_ns_cnt;
    QRX_U16 avail_ns_cnt;
    QRX_U32 total_NVM_storage_size;  // in provision units
    QRX_U32 avail_NVM_storage_size;
    QRX_U32 storage_provision_granularity;  // MB of a provision unit
    QRX_U32 total_read_bandwidth;           // MB/s
    QRX_U32 avail_read_bandwidth;
    QRX_U32 total_write_bandwidth;
    QRX_U32 avail_write_bandwidth;
    QRX_U32 total_read_iops;
    QRX_U32 avail_read_iops;
    QRX_U32 total_write_iops;
    QRX_U32 avail_write_iops;
    QRX_U32 features;
    QRX_U8 max_support_child_controller_ns_cnt;  // of one child controller
    QRX_U8 reserved1[55];
};
static_assert(sizeof(_MSFT_MFND_CAPABILITIES) == 128);
static_assert(offsetof(_MSFT_MFND_CAPABILITIES, major_ver) == 4);
static_assert(offsetof(_MSFT_MFND_CAPABILITIES, max_physical_fun_cnt) == 8);
static_assert(offsetof(_MSFT_MFND_CAPABILITIES, max_queue_pair_cnt) == 12);
static_assert(offsetof(_MSFT_MFND_CAPABILITIES, max_MSI_X_msg_cnt) == 16);
static_assert(offsetof(_MSFT_MFND_CAPABILITIES, max_ns_cnt) == 20);
static_assert(offsetof(_MSFT_MFND_CAPABILITIES, total_NVM_storage_size) == 24);
static_assert(offsetof(_MSFT_MFND_CAPABILITIES, storage_provision_granularity) == 32);
static_assert(offsetof(_MSFT_MFND_CAPABILITIES, total_read_bandwidth) == 36);
static_assert(offsetof(_MSFT_MFND_CAPABILITIES, total_write_bandwidth) == 44);
static_assert(offsetof(_MSFT_MFND_CAPABILITIES, total_read_iops) == 52);
static_assert(offsetof(_MSFT_MFND_CAPABILITIES, total_write_iops) == 60);
static_assert(offsetof(_MSFT_MFND_CAPABILITIES, avail_write_iops) == 64);
static_assert(offsetof(_MSFT_MFND_CAPABILITIES, features) == 68);
static_assert(offsetof(_MSFT_MFND_CAPABILITIES, max_support_child_controller_ns_cnt) == 72);

// CDW11 of the operation feature.
struct _MSFT_OP_FEATURE_DW11 {
    QRX_U8 select : 4;  // 0 mode, 1 privilege
    QRX_U8 flag : 1;    // 0 single or user, 1 multiple or admin
    QRX_U8 Reserved1 : 3;
    QRX_U8 Reserved2[3];
};
static_assert(sizeof(_MSFT_OP_FEATURE_DW11) == 4);

// Completion Dword 0 of the operation feature. The page of the operation command reads its bits as kMfndSingleMode and
// kMfndUserPrivilege tell, and so does the firmware mean them.
struct _MSFT_OP_FEATURE_CQ_DW0 {
    QRX_U8 privilege : 1;
    QRX_U8 mode : 1;
    QRX_U8 Reserved1 : 6;
    QRX_U8 Reserved2[3];
};
static_assert(sizeof(_MSFT_OP_FEATURE_CQ_DW0) == 4);

// The properties of the namespaces of child controllers.
struct _MSFT_CHILD_CTRL_PROPERTIES {
    QRX_U16 ms;    // metadata bytes of a sector
    QRX_U8 lbads;  // sector size, a power of two of bytes
    QRX_U8 dps;    // data protection type settings
    QRX_U8 nmic;   // namespace sharing capabilities
    QRX_U8 reserved[507];
};
static_assert(sizeof(_MSFT_CHILD_CTRL_PROPERTIES) == 512);
static_assert(offsetof(_MSFT_CHILD_CTRL_PROPERTIES, lbads) == 2);
static_assert(offsetof(_MSFT_CHILD_CTRL_PROPERTIES, dps) == 3);
static_assert(offsetof(_MSFT_CHILD_CTRL_PROPERTIES, nmic) == 4);

// One event of child controllers.
struct _MSFT_CHILD_CTRL_EVENT_ENTRY {
    QRX_U8 childCtrlID;
    QRX_U8 childLogPageIdentifier;  // of the log page that tells more
    QRX_U8 reserved[2];
    QRX_U32 flags;  // bit 0: the log page identifier is valid; bit 1: fatal status of the controller
    QRX_U8 reserved1[8];
};
static_assert(sizeof(_MSFT_CHILD_CTRL_EVENT_ENTRY) == 16);
static_assert(offsetof(_MSFT_CHILD_CTRL_EVENT_ENTRY, childLogPageIdentifier) == 1);
static_assert(offsetof(_MSFT_CHILD_CTRL_EVENT_ENTRY, flags) == 4);

// The event log. Its entries are as far apart as the records of properties are long, so that a page holds eight.
struct _MSFT_CHILD_CTRL_EVENT {
    QRX_U8 numOfEntries;
    QRX_U8 reserved[15];
    _MSFT_CHILD_CTRL_PROPERTIES entries[255];  // each begins with a _MSFT_CHILD_CTRL_EVENT_ENTRY
};
static_assert(offsetof(_MSFT_CHILD_CTRL_EVENT, entries) == 16);

// What child controllers may do with an admin command.
struct _MSFT_CHILD_CTRL_PERMISSION_ENTRY {
    QRX_U8 adminCmdOpcode;
    QRX_U8 flags : 4;  // bit 0: allowed on child controllers; bit 1: changeable
    QRX_U8 reserved : 4;
    QRX_U8 reserved1[2];
};
static_assert(sizeof(_MSFT_CHILD_CTRL_PERMISSION_ENTRY) == 4);

struct _MSFT_CHILD_CTRL_PERMISSION_LIST {
    QRX_U8 numOfEntries;
    QRX_U8 reserved[3];
    _MSFT_CHILD_CTRL_PERMISSION_ENTRY entries[1023];
};
static_assert(sizeof(_MSFT_CHILD_CTRL_PERMISSION_LIST) == qrx::wire::kPageSize);
static_assert(offsetof(_MSFT_CHILD_CTRL_PERMISSION_LIST, entries) == 4);
