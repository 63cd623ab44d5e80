// The settings record that the controller keeps in its flash.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/types.h"

struct _hba_info_header {
    QRX_U8 signature[8];
    QRX_U32 version;
    QRX_U32 select_bit;
    QRX_U32 auth;
    QRX_U32 encrypt;
    QRX_U32 num_of_section;
    QRX_U32 section_hdr_size;
    QRX_U32 section_table_offset;
    QRX_U32 flash_addr;
    QRX_U32 crc;
    QRX_U32 image_size;
    QRX_U8 image_type;
    QRX_U8 reserve[3];
    QRX_U32 cap1;
    QRX_U32 cap2;
    QRX_U32 chk_sum;
};
static_assert(sizeof(_hba_info_header) == 64);
static_assert(offsetof(_hba_info_header, cap1) == 52);

struct _gpio_settings {
    QRX_U32 enable;           // function switch, a bit for each GPIO
    QRX_U32 active_high_low;  // level
    QRX_U32 default_value;
    QRX_U8 set_default_from_hba_info;
    QRX_U8 inversed_gpio_8_9_10_11;
    QRX_U8 Reserved[50];
};
static_assert(sizeof(_gpio_settings) == 64);

union _hba_info_gpio_page {
    QRX_U8 gpio[64];
    _gpio_settings switch_setting;
};
static_assert(sizeof(_hba_info_gpio_page) == 64);

struct _hba_info_cpu_page {
    QRX_U8 cpu[64];
};
struct _hba_info_pcie_page {
    QRX_U8 pcie[128];
};

struct _raid_settings {
    QRX_U8 Auto_Rebuild_On;
    QRX_U8 RAID_Feature;
    QRX_U16 Bga_Rate;
    QRX_U8 RAID_Mode;
    QRX_U8 Reserved[3];
};
static_assert(sizeof(_raid_settings) == 8);

union _hba_info_raid_page {
    QRX_U8 raid[128];
    _raid_settings Raid_Setting;
};
static_assert(sizeof(_hba_info_raid_page) == 128);

struct _hba_info_fwdl {
    QRX_U8 slot_select;
    QRX_U8 rsv[3];
};

struct _hba_info_adapter_page {
    QRX_U8 debug_dump;          // debug messages go to the SPI log
    QRX_U8 flash_tools_enable;  // the manufacturing flash tool is on
    QRX_U8 sriov_enable;        // SR-IOV is on
    QRX_U8 vpd_buf_switch;      // where VPD lies: 0 EEPROM, else SPI flash
    QRX_U32 nguid_offset;
    QRX_U16 vendor_id;
    QRX_U16 device_id;
    QRX_U16 subvendor_id;
    QRX_U16 subdevice_id;
    QRX_U8 id_ctrl_sn[20];
    QRX_U8 fuse_id;
    QRX_U8 max_vf_num;
    QRX_U8 max_fe_ns_num;
    QRX_U8 support_vir_ns;
    QRX_U8 fw_log_level;  // 0 normal, else errors only
    QRX_U8 dsp_enable;
    QRX_U8 adapter[18];
    _hba_info_fwdl fwdl;
    QRX_U8 rsvd0;
    QRX_U8 rsvd1[2];
    QRX_U8 rsvd2[5];
};
static_assert(sizeof(_hba_info_adapter_page) == 72);
static_assert(offsetof(_hba_info_adapter_page, id_ctrl_sn) == 16);
static_assert(offsetof(_hba_info_adapter_page, fwdl) == 60);

struct _hba_info {
    _hba_info_header header;
    _hba_info_gpio_page gpio;
    _hba_info_cpu_page cpu;
    _hba_info_pcie_page pcie;
    _hba_info_raid_page raid;
    _hba_info_adapter_page adatper;
};
static_assert(sizeof(_hba_info) == 520);
static_assert(offsetof(_hba_info, raid) == 320);
static_assert(offsetof(_hba_info, adatper) == 448);
static_assert(offsetof(_hba_info, adatper) + offsetof(_hba_info_adapter_page, sriov_enable) == 450);
