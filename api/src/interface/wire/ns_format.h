// Command words of Format NVM and Virtualization Management.
#pragma once

#include "api/src/interface/wire/types.h"

// CDW10 of Format NVM.
struct _ns_format {
    QRX_U32 lbaf : 4;  // LBA format, an index into those that Identify Namespace tells
    QRX_U32 mset : 1;  // metadata settings: 1 at the end of the data, 0 in a buffer of its own
    QRX_U32 pi : 3;    // protection information: 0 none, 1 to 3 type
    QRX_U32 pil : 1;   // its location: 1 the first bytes of the metadata, 0 the last
    QRX_U32 ses : 3;   // secure erase settings: 0 none, 1 user data, 2 by forgetting the key
    QRX_U32 reserved : 4;
    QRX_U32 reserved1 : 16;
};
static_assert(sizeof(_ns_format) == 4);

// CDW10 of Virtualization Management.
struct _virtualization_management {
    QRX_U32 action : 4;  // ACT, a kVirtualization value
    QRX_U32 reserved : 4;
    QRX_U32 resource_type : 3;  // RT: 0 queues, 1 interrupts
    QRX_U32 reserved1 : 5;
    QRX_U32 controller_identifier : 16;
};
static_assert(sizeof(_virtualization_management) == 4);

// Values of _virtualization_management::action.
inline constexpr QRX_U32 kVirtualizationAllocate = 1;  // flexible resources of a primary function, from its next reset
inline constexpr QRX_U32 kVirtualizationOffline = 7;   // of a secondary function
inline constexpr QRX_U32 kVirtualizationAssign = 8;    // to a secondary function that is offline
inline constexpr QRX_U32 kVirtualizationOnline = 9;

// The functions behind controller ids: the physical ones are primary, the virtual ones secondary.
enum ucd_hiu_id {
    UCD_HIU_PF0 = 0,
    UCD_HIU_PF1 = 1,
    UCD_HIU_VF0 = 2,
    UCD_HIU_NUM = 34,
};
