// What the controller counts of the I/O of its namespaces.
//
// Arrays have one entry for each namespace, at the place of its id less 1. The tables stand at the head of the answer.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/types.h"

inline constexpr std::size_t kIomonNamespaces = 32;
inline constexpr std::size_t kIomonWindows = 10;
inline constexpr QRX_U32 kIomonTicksPerMicrosecond = 250;
inline constexpr QRX_U32 kIomonWindow = 1000000;  // microseconds

// The I/O commands of one direction.
struct _NVME_IOmon_NS_Raw_Data {
    QRX_U64 io_count;
    QRX_U64 sector_count;  // in sectors of the namespace
};
using NVME_IOmon_NS_Raw_Data = _NVME_IOmon_NS_Raw_Data;
static_assert(sizeof(_NVME_IOmon_NS_Raw_Data) == 16);
static_assert(offsetof(_NVME_IOmon_NS_Raw_Data, sector_count) == 8);

// No member of it may be bound to a reference: it ends at no multiple of 8.
struct _NVME_IOmon_NS_Stat_Table {
    NVME_IOmon_NS_Raw_Data read[kIomonNamespaces];
    NVME_IOmon_NS_Raw_Data write[kIomonNamespaces];
    QRX_U16 fail_count_read[kIomonNamespaces];
    QRX_U16 fail_count_write[kIomonNamespaces];
    QRX_U64 success_count_read[kIomonNamespaces];
    QRX_U64 success_count_write[kIomonNamespaces];
    QRX_U64 io_tick_r[kIomonNamespaces];      // microseconds that the reads took
    QRX_U64 io_tick_w[kIomonNamespaces];      // the same of the writes
    QRX_U16 inflight[kIomonNamespaces];       // commands under way
    QRX_U64 time_in_queue[kIomonNamespaces];  // microseconds
    QRX_U32 cpu_tick;                         // the controller's clock, kIomonTicksPerMicrosecond; it wraps
} __attribute__((packed, aligned(4)));
using NVME_IOmon_NS_Stat_Table = _NVME_IOmon_NS_Stat_Table;
static_assert(sizeof(_NVME_IOmon_NS_Stat_Table) == 2500);
static_assert(offsetof(_NVME_IOmon_NS_Stat_Table, write) == 512);
static_assert(offsetof(_NVME_IOmon_NS_Stat_Table, fail_count_read) == 1024);
static_assert(offsetof(_NVME_IOmon_NS_Stat_Table, fail_count_write) == 1088);
static_assert(offsetof(_NVME_IOmon_NS_Stat_Table, success_count_read) == 1152);
static_assert(offsetof(_NVME_IOmon_NS_Stat_Table, success_count_write) == 1408);
static_assert(offsetof(_NVME_IOmon_NS_Stat_Table, io_tick_r) == 1664);
static_assert(offsetof(_NVME_IOmon_NS_Stat_Table, io_tick_w) == 1920);
static_assert(offsetof(_NVME_IOmon_NS_Stat_Table, inflight) == 2176);
static_assert(offsetof(_NVME_IOmon_NS_Stat_Table, time_in_queue) == 2240);
static_assert(offsetof(_NVME_IOmon_NS_Stat_Table, cpu_tick) == 2496);

// The idle time of one namespace in each of the windows, microseconds of one second.
struct _NVME_IOmon_Statistic_Idle_Time_Data {
    QRX_U32 idle_time_slide_window1;
    QRX_U32 idle_time_slide_window2;
    QRX_U32 idle_time_slide_window3;
    QRX_U32 idle_time_slide_window4;
    QRX_U32 idle_time_slide_window5;
    QRX_U32 idle_time_slide_window6;
    QRX_U32 idle_time_slide_window7;
    QRX_U32 idle_time_slide_window8;
    QRX_U32 idle_time_slide_window9;
    QRX_U32 idle_time_slide_window10;
};
using NVME_IOmon_Statistic_Idle_Time_Data = _NVME_IOmon_Statistic_Idle_Time_Data;
static_assert(sizeof(_NVME_IOmon_Statistic_Idle_Time_Data) == 4 * kIomonWindows);
static_assert(offsetof(_NVME_IOmon_Statistic_Idle_Time_Data, idle_time_slide_window10) == 36);

struct _NVME_IOmon_Statistics_Table {
    NVME_IOmon_Statistic_Idle_Time_Data statistic_data[kIomonNamespaces];
    QRX_U8 cursor;  // the window, from 0, that was completed last; the next one of the ring is being filled
    QRX_U8 tag;     // how often the ring has come round; it wraps
    QRX_U8 reserved[2];
};
using NVME_IOmon_Statistics_Table = _NVME_IOmon_Statistics_Table;
static_assert(sizeof(_NVME_IOmon_Statistics_Table) == 1284);
static_assert(offsetof(_NVME_IOmon_Statistics_Table, cursor) == 1280);
static_assert(offsetof(_NVME_IOmon_Statistics_Table, tag) == 1281);
