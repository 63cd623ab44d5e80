// The controller's event log: a ring of text lines in its flash, and the older, binary form of the same events.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/types.h"

// The ring of text lines. It is read a page at a time; a page's text begins behind a head that means nothing here.
//
//     [SEQ]1234[TIME]1767225600[MSG]VD3_REBUILD_PROGRESS_40%_NOTIFY
//
// Each line ends with a line feed, behind which there may be zero bytes up to the next line.
inline constexpr unsigned kEventPages = 16;
inline constexpr std::size_t kEventTextOffset = 40;  // in a page
inline constexpr char spi_seq[] = "[SEQ]";           // a number in decimal, at most 8 letters
inline constexpr char spi_time[] = "[TIME]";         // seconds in decimal; see kEventClockSet
inline constexpr char spi_msg[] = "[MSG]";           // at most 48 letters

// Seconds above this one (2010-01-01 00:00:00 UTC) count from 1970 on, others from the start of the controller.
inline constexpr QRX_U32 kEventClockSet = 1262304000;

// One line of the ring, taken apart. This one never crosses the wire.
struct _NVME_SA_Evt_Item {
    char seq[8];   // text, not terminated when full
    QRX_U32 time;  // seconds
    QRX_U32 reserved;
    char msg[48];  // text, not terminated when full
};
using NVME_SA_Evt_Item = _NVME_SA_Evt_Item;
using PNVME_SA_Evt_Item = _NVME_SA_Evt_Item*;
static_assert(sizeof(_NVME_SA_Evt_Item) == 64);
static_assert(offsetof(_NVME_SA_Evt_Item, msg) == 16);

// The binary form, which the pair command road reads.

enum QRX_EVT_CLASS : QRX_U16 {
    QRX_NVME_EVT_CLASS_ADAPTER = 1,
    QRX_NVME_EVT_CLASS_PD = 2,
    QRX_NVME_EVT_CLASS_VD = 3,
    QRX_NVME_EVT_CLASS_NS = 4,
    QRX_NVME_EVT_CLASS_OEM = 5,
};

enum QRX_EVT_SEVERITY : QRX_U8 {
    QRX_NVME_EVT_SEVERITY_NOTIFY = 0,
    QRX_NVME_EVT_SEVERITY_WARNING = 1,
    QRX_NVME_EVT_SEVERITY_CRITICAL = 2,
};

enum QRX_EVENT_ADAPTER : QRX_U16 {
    QRX_NVME_EVT_BGA_CHANGE = 0,
    QRX_NVME_EVT_SHUTDOWN = 1,
    QRX_NVME_EVT_AUTOREBUILD_OFF = 8,
    QRX_NVME_EVT_AUTOREBUILD_ON = 9,
    QRX_NVME_EVT_NO_CONFIGURATION = 10,
};

enum QRX_EVENT_PD : QRX_U16 {
    QRX_NVME_EVT_PD_ONLINE = 0,
    QRX_NVME_EVT_PD_OFFLINE = 1,
    QRX_NVME_EVT_PD_SET_DOWN = 2,
    QRX_NVME_EVT_PD_TIME_OUT = 3,
    QRX_NVME_EVT_PD_RW_ERROR = 4,
    QRX_NVME_EVT_PD_DFT_ADD = 5,
    QRX_NVME_EVT_PD_DFT_REMOVE_FIX = 6,
    QRX_NVME_EVT_PD_DFT_REMOVE_NOT_FIX = 7,
    QRX_NVME_EVT_PD_REBUILD_TARGETTOOSMALL = 10,
    QRX_NVME_EVT_PD_READ_ERROR = 20,
    QRX_NVME_EVT_PD_WRITE_ERROR = 21,
};

enum QRX_EVENT_VD : QRX_U16 {
    QRX_NVME_EVT_VD_OFFLINE = 0,
    QRX_NVME_EVT_VD_ONLINE = 1,
    QRX_NVME_EVT_VD_DEGRADED = 2,
    QRX_NVME_EVT_VD_CREATED = 4,
    QRX_NVME_EVT_VD_DELETE = 5,
    QRX_NVME_EVT_VD_IMPORT_COMPLETE = 7,
    QRX_NVME_EVT_VD_PD_MISSING = 9,
    QRX_NVME_EVT_VD_INIT_START = 10,
    QRX_NVME_EVT_VD_INIT_ABORT = 13,
    QRX_NVME_EVT_VD_INIT_COMPLETE = 14,
    QRX_NVME_EVT_VD_INIT_PROGRESS = 15,
    QRX_NVME_EVT_VD_INIT_TERMINATED = 16,
    QRX_NVME_EVT_VD_REBUILD_START = 20,
    QRX_NVME_EVT_VD_REBUILD_ABORT = 23,
    QRX_NVME_EVT_VD_REBUILD_COMPLETE = 24,
    QRX_NVME_EVT_VD_REBUILD_PROGRESS = 25,
    QRX_NVME_EVT_VD_REBUILD_TERMINATED = 26,
    QRX_NVME_EVT_VD_MP_START = 30,
    QRX_NVME_EVT_VD_MP_ABORT = 33,
    QRX_NVME_EVT_VD_MP_COMPLETE = 34,
    QRX_NVME_EVT_VD_MP_PROGRESS = 35,
    QRX_NVME_EVT_VD_MP_TERMINATED = 36,
};

enum QRX_EVENT_NS : QRX_U16 {
    QRX_NVME_EVT_NS_OFFLINE = 0,
    QRX_NVME_EVT_NS_ONLINE = 1,
    QRX_NVME_EVT_NS_CREATED = 2,
    QRX_NVME_EVT_NS_DELETE = 3,
    QRX_NVME_EVT_NS_ATTACH = 4,
    QRX_NVME_EVT_NS_DETACH = 5,
};

// The state of the binary ring.
struct _NVME_Event_Status {
    QRX_U8 maxPage;             // pages of the ring
    QRX_U8 slotPerPage;         // events of a page
    QRX_U8 posEmptyPage;        // page of the next free slot
    QRX_U8 posEmptySlotInPage;  // that slot
    QRX_U8 sizeOfEventItem;     // bytes of an event
    QRX_U8 reserved[3];
};
using NVME_Event_Status = _NVME_Event_Status;
using PNVME_Event_Status = _NVME_Event_Status*;
static_assert(sizeof(_NVME_Event_Status) == 8);
static_assert(offsetof(_NVME_Event_Status, sizeOfEventItem) == 4);

struct _NVME_Event_Item {
    QRX_U16 Class;       // QRX_EVT_CLASS
    QRX_U16 Code;        // of the class: QRX_EVENT_ADAPTER, QRX_EVENT_PD, ...
    QRX_U32 TimeStamp;   // seconds; see kEventClockSet
    QRX_U32 SequenceNo;  // 0xFFFFFFFF, with TimeStamp the same: an empty slot
    QRX_U16 DeviceID;
    QRX_U8 Severity;  // QRX_EVT_SEVERITY
    QRX_U8 Accurate;
    QRX_U32 Params[4];
    QRX_U8 Oem_Class;
    QRX_U8 Oem_Severity;
    QRX_U16 Oem_Code;
    QRX_U8 ParamCount;
    QRX_U8 Reserved[27];
};
using NVME_Event_Item = _NVME_Event_Item;
static_assert(sizeof(_NVME_Event_Item) == 64);
static_assert(offsetof(_NVME_Event_Item, SequenceNo) == 8);
static_assert(offsetof(_NVME_Event_Item, Severity) == 14);
static_assert(offsetof(_NVME_Event_Item, Params) == 16);
static_assert(offsetof(_NVME_Event_Item, Oem_Class) == 32);
static_assert(offsetof(_NVME_Event_Item, ParamCount) == 36);

// A page of the binary ring, as asked for and as answered: as many events as a page of data holds.
inline constexpr std::size_t kPageEventsMax = (qrx::wire::kPageSize - 4) / sizeof(NVME_Event_Item);
struct _NVME_Page_EventRequest {
    QRX_U8 Page;  // which one
    QRX_U8 Reserved[3];
    NVME_Event_Item Events[kPageEventsMax];
    QRX_U8 Reserved2[qrx::wire::kPageSize - 4 - kPageEventsMax * sizeof(NVME_Event_Item)];
};
using NVME_Page_EventRequest = _NVME_Page_EventRequest;
using PNVME_Page_EventRequest = _NVME_Page_EventRequest*;
static_assert(kPageEventsMax == 63);
static_assert(offsetof(_NVME_Page_EventRequest, Events) == 4);
static_assert(offsetof(_NVME_Page_EventRequest, Reserved2) == 4036);
static_assert(sizeof(_NVME_Page_EventRequest) == 4096);
