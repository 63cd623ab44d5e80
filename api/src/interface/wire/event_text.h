// The words of the event log: how the message of a text line follows from the fields of a binary event.
//
//     VD3_REBUILD_PROGRESS_40%_NOTIFY
//
// A class word, the device id for all classes but the adapter's, the suffix of the code, the suffix of the severity.
#pragma once

#include <array>

#include "api/src/interface/wire/event.h"
#include "api/src/interface/wire/types.h"

inline constexpr char spi_hba[] = "NVMe";
inline constexpr char spi_pd[] = "PD";
inline constexpr char spi_vd[] = "VD";
inline constexpr char spi_ns[] = "NS";

inline constexpr char spi_notify[] = "_NOTIFY";
inline constexpr char spi_warning[] = "_WARNING";
inline constexpr char spi_critical[] = "_CRITICAL";

inline constexpr char spi_hba_bga_change[] = "_BGA_CHANGE";
inline constexpr char spi_hba_shutdown[] = "_SHUTDOWN";
inline constexpr char spi_hba_auto_rebuild_off[] = "_AUTOREBUILD_OFF";
inline constexpr char spi_hba_auto_rebuild_on[] = "_AUTOREBUILD_ON";
inline constexpr char spi_pd_online[] = "_ONLINE";
inline constexpr char spi_pd_offline[] = "_OFFLINE";
inline constexpr char spi_pd_setdown[] = "_SETDOWN";
inline constexpr char spi_pd_timeout[] = "_TIMEOUT";
inline constexpr char spi_pd_rw_err[] = "_RW_ERROR";
inline constexpr char spi_pd_rebuild_target_too_small[] = "_REBUILD_TARGETTOOSMALL";
inline constexpr char spi_vd_offline[] = "_OFFLINE";
inline constexpr char spi_vd_online[] = "_ONLINE";
inline constexpr char spi_vd_degraded[] = "_DEGRADED";
inline constexpr char spi_vd_created[] = "_CREATED";
inline constexpr char spi_vd_delete[] = "_DELETE";
inline constexpr char spi_vd_import_complete[] = "_IMPORT_COMPLETE";
inline constexpr char spi_vd_init_start[] = "_INIT_START";
inline constexpr char spi_vd_init_abort[] = "_INIT_ABORT";
inline constexpr char spi_vd_init_complete[] = "_INIT_COMPLETE";
inline constexpr char spi_vd_init_progress[] = "_INIT_PROGRESS_";
inline constexpr char spi_vd_init_terminate[] = "_INIT_TERMINATED";
inline constexpr char spi_vd_rebuild_start[] = "_REBUILD_START";
inline constexpr char spi_vd_rebuild_abort[] = "_REBUILD_ABORT";
inline constexpr char spi_vd_rebuild_complete[] = "_REBUILD_COMPLETE";
inline constexpr char spi_vd_rebuild_progress[] = "_REBUILD_PROGRESS_";
inline constexpr char spi_vd_rebuild_terminate[] = "_REBUILD_TERMINATED";
inline constexpr char spi_vd_mp_start[] = "_MP_START";
inline constexpr char spi_vd_mp_abort[] = "_MP_ABORT";
inline constexpr char spi_vd_mp_complete[] = "_MP_COMPLETE";
inline constexpr char spi_vd_mp_progress[] = "_MP_PROGRESS_";
inline constexpr char spi_vd_mp_terminate[] = "_MP_TERMINATED";
inline constexpr char spi_ns_offline[] = "_OFFLINE";
inline constexpr char spi_ns_online[] = "_ONLINE";
inline constexpr char spi_ns_created[] = "_CREATED";
inline constexpr char spi_ns_delete[] = "_DELETE";
inline constexpr char spi_ns_attach[] = "_ATTACH";
inline constexpr char spi_ns_detach[] = "_DETACH";
// Behind the suffix of a progress code stands Params[0] in decimal, and this.
inline constexpr char spi_vd_percentage[] = "%";

namespace qrx {

struct EventWord {
    QRX_U16 event_class;  // QRX_EVT_CLASS
    QRX_U16 code;         // of the class
    const char* suffix;
    bool progress = false;  // a percentage follows
};

// clang-format off
inline constexpr auto kEventWords = std::to_array<EventWord>({
    {QRX_NVME_EVT_CLASS_ADAPTER, QRX_NVME_EVT_BGA_CHANGE, spi_hba_bga_change},
    {QRX_NVME_EVT_CLASS_ADAPTER, QRX_NVME_EVT_SHUTDOWN, spi_hba_shutdown},
    {QRX_NVME_EVT_CLASS_ADAPTER, QRX_NVME_EVT_AUTOREBUILD_OFF, spi_hba_auto_rebuild_off},
    {QRX_NVME_EVT_CLASS_ADAPTER, QRX_NVME_EVT_AUTOREBUILD_ON, spi_hba_auto_rebuild_on},
    {QRX_NVME_EVT_CLASS_PD, QRX_NVME_EVT_PD_ONLINE, spi_pd_online},
    {QRX_NVME_EVT_CLASS_PD, QRX_NVME_EVT_PD_OFFLINE, spi_pd_offline},
    {QRX_NVME_EVT_CLASS_PD, QRX_NVME_EVT_PD_SET_DOWN, spi_pd_setdown},
    {QRX_NVME_EVT_CLASS_PD, QRX_NVME_EVT_PD_TIME_OUT, spi_pd_timeout},
    {QRX_NVME_EVT_CLASS_PD, QRX_NVME_EVT_PD_RW_ERROR, spi_pd_rw_err},
    {QRX_NVME_EVT_CLASS_PD, QRX_NVME_EVT_PD_REBUILD_TARGETTOOSMALL, spi_pd_rebuild_target_too_small},
    {QRX_NVME_EVT_CLASS_VD, QRX_NVME_EVT_VD_OFFLINE, spi_vd_offline},
    {QRX_NVME_EVT_CLASS_VD, QRX_NVME_EVT_VD_ONLINE, spi_vd_online},
    {QRX_NVME_EVT_CLASS_VD, QRX_NVME_EVT_VD_DEGRADED, spi_vd_degraded},
    {QRX_NVME_EVT_CLASS_VD, QRX_NVME_EVT_VD_CREATED, spi_vd_created},
    {QRX_NVME_EVT_CLASS_VD, QRX_NVME_EVT_VD_DELETE, spi_vd_delete},
    {QRX_NVME_EVT_CLASS_VD, QRX_NVME_EVT_VD_IMPORT_COMPLETE, spi_vd_import_complete},
    {QRX_NVME_EVT_CLASS_VD, QRX_NVME_EVT_VD_INIT_START, spi_vd_init_start},
    {QRX_NVME_EVT_CLASS_VD, QRX_NVME_EVT_VD_INIT_ABORT, spi_vd_init_abort},
    {QRX_NVME_EVT_CLASS_VD, QRX_NVME_EVT_VD_INIT_COMPLETE, spi_vd_init_complete},
    {QRX_NVME_EVT_CLASS_VD, QRX_NVME_EVT_VD_INIT_PROGRESS, spi_vd_init_progress, true},
    {QRX_NVME_EVT_CLASS_VD, QRX_NVME_EVT_VD_INIT_TERMINATED, spi_vd_init_terminate},
    {QRX_NVME_EVT_CLASS_VD, QRX_NVME_EVT_VD_REBUILD_START, spi_vd_rebuild_start},
    {QRX_NVME_EVT_CLASS_VD, QRX_NVME_EVT_VD_REBUILD_ABORT, spi_vd_rebuild_abort},
    {QRX_NVME_EVT_CLASS_VD, QRX_NVME_EVT_VD_REBUILD_COMPLETE, spi_vd_rebuild_complete},
    {QRX_NVME_EVT_CLASS_VD, QRX_NVME_EVT_VD_REBUILD_PROGRESS, spi_vd_rebuild_progress, true},
    {QRX_NVME_EVT_CLASS_VD, QRX_NVME_EVT_VD_REBUILD_TERMINATED, spi_vd_rebuild_terminate},
    {QRX_NVME_EVT_CLASS_VD, QRX_NVME_EVT_VD_MP_START, spi_vd_mp_start},
    {QRX_NVME_EVT_CLASS_VD, QRX_NVME_EVT_VD_MP_ABORT, spi_vd_mp_abort},
    {QRX_NVME_EVT_CLASS_VD, QRX_NVME_EVT_VD_MP_COMPLETE, spi_vd_mp_complete},
    {QRX_NVME_EVT_CLASS_VD, QRX_NVME_EVT_VD_MP_PROGRESS, spi_vd_mp_progress, true},
    {QRX_NVME_EVT_CLASS_VD, QRX_NVME_EVT_VD_MP_TERMINATED, spi_vd_mp_terminate},
    {QRX_NVME_EVT_CLASS_NS, QRX_NVME_EVT_NS_OFFLINE, spi_ns_offline},
    {QRX_NVME_EVT_CLASS_NS, QRX_NVME_EVT_NS_ONLINE, spi_ns_online},
    {QRX_NVME_EVT_CLASS_NS, QRX_NVME_EVT_NS_CREATED, spi_ns_created},
    {QRX_NVME_EVT_CLASS_NS, QRX_NVME_EVT_NS_DELETE, spi_ns_delete},
    {QRX_NVME_EVT_CLASS_NS, QRX_NVME_EVT_NS_ATTACH, spi_ns_attach},
    {QRX_NVME_EVT_CLASS_NS, QRX_NVME_EVT_NS_DETACH, spi_ns_detach},
});
// clang-format on

// Class words and severity suffixes, each at its value; there is no class 0.
inline constexpr auto kEventClassWords = std::to_array<const char*>({"", spi_hba, spi_pd, spi_vd, spi_ns});
inline constexpr auto kEventSeverityWords = std::to_array<const char*>({spi_notify, spi_warning, spi_critical});

}  // namespace qrx
