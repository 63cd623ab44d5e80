// Data structures of the NVM Express base standard: Identify and log pages.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/types.h"

namespace qrx {

// The Identify command, and what it answers (CNS).
inline constexpr QRX_U8 kIdentify = 6;
inline constexpr QRX_U8 kIdentifyNamespace = 0;
inline constexpr QRX_U8 kIdentifyController = 1;

}  // namespace qrx

// Identify Controller data.
struct nvme_id_psd {
    QRX_U16 mp;  // maximum power, in units told by flags
    QRX_U8 rsvd2;
    QRX_U8 flags;
    QRX_U32 enlat;  // entry latency, microseconds
    QRX_U32 exlat;  // exit latency, microseconds
    QRX_U8 rrt;
    QRX_U8 rrl;
    QRX_U8 rwt;
    QRX_U8 rwl;
    QRX_U16 idlp;
    QRX_U8 ips;
    QRX_U8 rsvd19;
    QRX_U16 actp;
    QRX_U8 apws;
    QRX_U8 rsvd23[9];
};
static_assert(sizeof(nvme_id_psd) == 32);

struct nvme_id_ctrl {
    QRX_U16 vid;
    QRX_U16 ssvid;
    QRX_U8 sn[20];  // blank-padded text
    QRX_U8 mn[40];  // blank-padded text
    QRX_U8 fr[8];   // blank-padded text
    QRX_U8 rab;
    QRX_U8 ieee[3];
    QRX_U8 cmic;
    QRX_U8 mdts;  // power of two of pages; 0 no limit
    QRX_U16 cntlid;
    QRX_U32 ver;
    QRX_U32 rtd3r;  // microseconds
    QRX_U32 rtd3e;  // microseconds
    QRX_U32 oaes;
    QRX_U32 ctratt;
    QRX_U16 rrls;
    QRX_U8 rsvd102[9];
    QRX_U8 cntrltype;
    QRX_U8 fguid[16];
    QRX_U16 crdt1;
    QRX_U16 crdt2;
    QRX_U16 crdt3;
    QRX_U8 rsvd134[119];
    QRX_U8 nvmsr;
    QRX_U8 vwci;
    QRX_U8 mec;
    QRX_U16 oacs;
    QRX_U8 acl;
    QRX_U8 aerl;
    QRX_U8 frmw;
    QRX_U8 lpa;
    QRX_U8 elpe;  // 0's based
    QRX_U8 npss;  // 0's based
    QRX_U8 avscc;
    QRX_U8 apsta;
    QRX_U16 wctemp;  // Kelvin
    QRX_U16 cctemp;  // Kelvin
    QRX_U16 mtfa;    // units of 100 ms
    QRX_U32 hmpre;
    QRX_U32 hmmin;
    QRX_U8 tnvmcap[16];  // bytes
    QRX_U8 unvmcap[16];  // bytes
    QRX_U32 rpmbs;
    QRX_U16 edstt;
    QRX_U8 dsto;
    QRX_U8 fwug;
    QRX_U16 kas;
    QRX_U16 hctma;
    QRX_U16 mntmt;  // Kelvin
    QRX_U16 mxtmt;  // Kelvin
    QRX_U32 sanicap;
    QRX_U32 hmminds;
    QRX_U16 hmmaxd;
    QRX_U16 nsetidmax;
    QRX_U16 endgidmax;
    QRX_U8 anatt;
    QRX_U8 anacap;
    QRX_U32 anagrpmax;
    QRX_U32 nanagrpid;
    QRX_U32 pels;
    QRX_U8 rsvd356[156];
    QRX_U8 sqes;
    QRX_U8 cqes;
    QRX_U16 maxcmd;
    QRX_U32 nn;
    QRX_U16 oncs;
    QRX_U16 fuses;
    QRX_U8 fna;
    QRX_U8 vwc;
    QRX_U16 awun;
    QRX_U16 awupf;
    QRX_U8 nvscc;
    QRX_U8 nwpc;
    QRX_U16 acwu;
    QRX_U8 rsvd534[2];
    QRX_U32 sgls;
    QRX_U32 mnan;
    QRX_U8 rsvd544[224];
    QRX_U8 subnqn[256];  // zero-padded text
    QRX_U8 rsvd1024[1024];
    nvme_id_psd psd[32];
    QRX_U8 vs[1024];
};
static_assert(sizeof(nvme_id_ctrl) == 4096);
static_assert(offsetof(nvme_id_ctrl, fr) == 64);
static_assert(offsetof(nvme_id_ctrl, cntlid) == 78);
static_assert(offsetof(nvme_id_ctrl, cntrltype) == 111);
static_assert(offsetof(nvme_id_ctrl, oacs) == 256);
static_assert(offsetof(nvme_id_ctrl, avscc) == 264);
static_assert(offsetof(nvme_id_ctrl, tnvmcap) == 280);
static_assert(offsetof(nvme_id_ctrl, sanicap) == 328);
static_assert(offsetof(nvme_id_ctrl, pels) == 352);
static_assert(offsetof(nvme_id_ctrl, sqes) == 512);
static_assert(offsetof(nvme_id_ctrl, nn) == 516);
static_assert(offsetof(nvme_id_ctrl, nvscc) == 530);
static_assert(offsetof(nvme_id_ctrl, sgls) == 536);
static_assert(offsetof(nvme_id_ctrl, subnqn) == 768);
static_assert(offsetof(nvme_id_ctrl, psd) == 2048);
using QRX_IDENTIFY_CONTROLLER_DATA = nvme_id_ctrl;
using QRX_ID_CONTROLLER = nvme_id_ctrl;

// LBA format.
struct nvme_lbaf {
    QRX_U16 ms;  // metadata bytes
    QRX_U8 ds;   // data size, a power of two of bytes
    QRX_U8 rp;   // relative performance
};
static_assert(sizeof(nvme_lbaf) == 4);
using QRX_NS_LBAF = nvme_lbaf;

// Identify Namespace data.
struct _nvme_id_ns {
    QRX_U64 nsze;  // sectors
    QRX_U64 ncap;  // sectors
    QRX_U64 nuse;  // sectors
    QRX_U8 nsfeat;
    QRX_U8 nlbaf;  // 0's based
    QRX_U8 flbas;
    QRX_U8 mc;
    QRX_U8 dpc;
    QRX_U8 dps;
    QRX_U8 nmic;  // bit 0: may be attached to more than one controller
    QRX_U8 rescap;
    QRX_U8 fpi;
    QRX_U8 dlfeat;
    QRX_U16 nawun;
    QRX_U16 nawupf;
    QRX_U16 nacwu;
    QRX_U16 nabsn;
    QRX_U16 nabo;
    QRX_U16 nabspf;
    QRX_U16 noiob;
    QRX_U8 nvmcap[16];  // bytes
    QRX_U8 rsvd64[40];
    QRX_U8 nguid[16];
    QRX_U8 eui64[8];
    nvme_lbaf lbaf[16];
    QRX_U8 rsvd192[192];
    QRX_U8 vs[3712];
};
static_assert(sizeof(_nvme_id_ns) == 4096);
static_assert(offsetof(_nvme_id_ns, nsfeat) == 24);
static_assert(offsetof(_nvme_id_ns, nvmcap) == 48);
static_assert(offsetof(_nvme_id_ns, nguid) == 104);
static_assert(offsetof(_nvme_id_ns, eui64) == 120);
static_assert(offsetof(_nvme_id_ns, lbaf) == 128);
static_assert(offsetof(_nvme_id_ns, vs) == 384);
using _QRX_ID_NS = _nvme_id_ns;
using QRX_ID_NS = _nvme_id_ns;

// SMART / Health Information log page (log 2). 16-byte counters are little-endian.
struct _qrx_smart_log {
    QRX_U8 critical_warning;
    QRX_U8 temperature[2];  // Kelvin
    QRX_U8 avail_spare;     // percent
    QRX_U8 spare_thresh;    // percent
    QRX_U8 percent_used;
    QRX_U8 rsvd6[26];
    QRX_U8 data_units_read[16];  // thousands of 512-byte units
    QRX_U8 data_units_written[16];
    QRX_U8 host_reads[16];
    QRX_U8 host_writes[16];
    QRX_U8 ctrl_busy_time[16];  // minutes
    QRX_U8 power_cycles[16];
    QRX_U8 power_on_hours[16];
    QRX_U8 unsafe_shutdowns[16];
    QRX_U8 media_errors[16];
    QRX_U8 num_err_log_entries[16];
    QRX_U32 warning_temp_time;   // minutes
    QRX_U32 critical_comp_time;  // minutes
    QRX_U16 temp_sensor[8];      // Kelvin, 0 not there
    QRX_U32 tmt1tc;
    QRX_U32 tmt2tc;
    QRX_U32 ttftmt1;  // seconds
    QRX_U32 ttftmt2;  // seconds
    QRX_U8 rsvd216[280];
};
static_assert(sizeof(_qrx_smart_log) == 512);
static_assert(offsetof(_qrx_smart_log, data_units_read) == 32);
static_assert(offsetof(_qrx_smart_log, num_err_log_entries) == 176);
static_assert(offsetof(_qrx_smart_log, warning_temp_time) == 192);
static_assert(offsetof(_qrx_smart_log, temp_sensor) == 200);
static_assert(offsetof(_qrx_smart_log, ttftmt2) == 228);

// Firmware Slot Information log page (log 3).
struct nvme_firmware_slot_log {
    QRX_U8 afi;  // bits 2 to 0: active slot; bits 6 to 4: slot of the next reset
    QRX_U8 rsvd1[7];
    QRX_U8 frs[7][8];  // revision in slots 1 to 7, text; zeros: empty
    QRX_U8 rsvd64[448];
};
static_assert(sizeof(nvme_firmware_slot_log) == 512);

// One entry of the Error Information log page (log 1).
struct nvme_error_log_entry {
    QRX_U64 error_count;  // 0: an empty entry
    QRX_U16 sqid;
    QRX_U16 cmdid;
    QRX_U16 status_field;  // the status code shifted left by 1
    QRX_U16 parm_error_location;
    QRX_U64 lba;
    QRX_U32 nsid;
    QRX_U8 vs;
    QRX_U8 trtype;
    QRX_U8 rsvd30[2];
    QRX_U64 cs;
    QRX_U16 trtype_spec_info;
    QRX_U8 rsvd42[22];
};
static_assert(sizeof(nvme_error_log_entry) == 64);
static_assert(offsetof(nvme_error_log_entry, nsid) == 24);

// Commands Supported and Effects log page (log 5).
struct nvme_effects_log {
    QRX_U32 acs[256];   // admin commands; bit 0: supported
    QRX_U32 iocs[256];  // I/O commands
    QRX_U8 rsvd2048[2048];
};
static_assert(sizeof(nvme_effects_log) == 4096);
