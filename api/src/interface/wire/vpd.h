// The controller's Vital Product Data: the first bytes of an IPMI FRU image. Every area and record of it is followed
// by, or holds, a checksum that makes its bytes sum to 0.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/types.h"

// Offsets are in units of 8 bytes; 0 stands for an area that is not there.
struct vpd_common_header {
    QRX_U8 IPMI_Format_Version_Number;  // 1
    QRX_U8 Internal_Use_Area_Starting_Offset;
    QRX_U8 Chassis_Info_Area_Starting_Offset;
    QRX_U8 Board_Info_Area_Starting_Offset;
    QRX_U8 Product_Info_Area_Starting_Offset;
    QRX_U8 MultiRecord_Info_Area_Starting_Offset;
    QRX_U8 Reserved;
    QRX_U8 Common_Header_Checksum;
};
static_assert(sizeof(vpd_common_header) == 8);

// Each field of text stands behind a byte with its length in bits 5 to 0 and its kind in bits 7 and 6 (3: 8-bit
// letters).
struct vpd_product_info_area {
    QRX_U8 IPMI_Format_Version_Number;  // 1
    QRX_U8 Product_Info_Area_Length;    // in units of 8 bytes
    QRX_U8 Language_Code;               // 0x19: English
    QRX_U8 Manufacturer_Name_Type_Length;
    QRX_U8 Manufacturer_Name[8];
    QRX_U8 Product_Name_Type_Length;
    QRX_U8 Product_Name[24];
    QRX_U8 Product_Part_Model_Number_Type_Length;
    QRX_U8 Product_Part_Model_Number[40];
    QRX_U8 Product_Version_Type_Length;
    QRX_U8 Product_Version[2];
    QRX_U8 Product_Serial_Number_Type_Length;
    QRX_U8 Product_Serial_Number[20];
    QRX_U8 Asset_Tag_Type_Length;    // 0: none
    QRX_U8 FRU_File_ID_Type_Length;  // 0: none
    QRX_U8 End_of_Record;            // 0xC1: no further field
    QRX_U8 Reserved[6];
    QRX_U8 Product_Info_Area;  // checksum of the area
};
static_assert(sizeof(vpd_product_info_area) == 112);
static_assert(offsetof(vpd_product_info_area, Manufacturer_Name) == 4);
static_assert(offsetof(vpd_product_info_area, Product_Name) == 13);
static_assert(offsetof(vpd_product_info_area, Product_Part_Model_Number) == 38);
static_assert(offsetof(vpd_product_info_area, Product_Version) == 79);
static_assert(offsetof(vpd_product_info_area, Product_Serial_Number) == 82);
static_assert(offsetof(vpd_product_info_area, Asset_Tag_Type_Length) == 102);
static_assert(offsetof(vpd_product_info_area, End_of_Record) == 104);
static_assert(offsetof(vpd_product_info_area, Reserved) == 105);
static_assert(offsetof(vpd_product_info_area, Product_Info_Area) == 111);

// A record of the MultiRecord area has a head of 5 bytes: kind, format (bits 3 to 0: 2; bit 7: the last record),
// bytes behind the head, and the checksums of those and of the head.
inline constexpr QRX_U8 kVpdNvmeRecord = 0x0B;
inline constexpr QRX_U8 kVpdPciePortRecord = 0x0C;
inline constexpr QRX_U8 kVpdRecordFormat = 0x02;
inline constexpr QRX_U8 kVpdLastRecord = 0x80;
inline constexpr std::size_t kVpdRecordHead = 5;

struct vpd_nvme_multirecord_area {
    QRX_U8 NVMe_Record_Type_ID;  // kVpdNvmeRecord
    QRX_U8 Record_format_version;
    QRX_U8 Record_Length;
    QRX_U8 Record_Checksum;
    QRX_U8 Header_Checksum;
    QRX_U8 NVMe_MultiRecord_Area_Version_Number;
    QRX_U8 Management_Endpoint_Form_Factor;
    // Needs of power, in W unless the NVMe-MI standard says otherwise; 0: the rail is not used.
    QRX_U8 Initial_18V_Power_Supply_Requirements;
    QRX_U8 Maximum_18V_Power_Supply_Requirements;
    QRX_U8 Initial_33V_Power_Supply_Requirements;
    QRX_U8 Maximum_33V_Power_Supply_Requirements;
    QRX_U8 Reserved;
    QRX_U8 Maximum_33V_aux_Power_Supply_Requirements;
    QRX_U8 Initial_5V_Power_Supply_Requirements;
    QRX_U8 Maximum_5V_Power_Supply_Requirements;
    QRX_U8 Initial_12V_Power_Supply_Requirements;
    QRX_U8 Maximum_12V_Power_Supply_Requirements;
    QRX_U8 Maximum_Thermal_Load;    // W
    QRX_U8 Total_NVM_Capacity[13];  // bytes, little-endian; 0: not told
    QRX_U8 Reaserved1[27];
};
static_assert(sizeof(vpd_nvme_multirecord_area) == 58);
static_assert(offsetof(vpd_nvme_multirecord_area, NVMe_MultiRecord_Area_Version_Number) == kVpdRecordHead);
static_assert(offsetof(vpd_nvme_multirecord_area, Reserved) == 11);
static_assert(offsetof(vpd_nvme_multirecord_area, Maximum_33V_aux_Power_Supply_Requirements) == 12);
static_assert(offsetof(vpd_nvme_multirecord_area, Maximum_Thermal_Load) == 17);
static_assert(offsetof(vpd_nvme_multirecord_area, Total_NVM_Capacity) == 18);
static_assert(offsetof(vpd_nvme_multirecord_area, Reaserved1) == 31);

struct vpd_nvme_pcie_port_multirecord_area {
    QRX_U8 NVMe_PCIe_Port_Record_Type_ID;  // kVpdPciePortRecord
    QRX_U8 Record_format_version;
    QRX_U8 Record_Length;
    QRX_U8 Record_Checksum;
    QRX_U8 Header_Checksum;
    QRX_U8 NVMe_PCIe_Port_MultiRecord_Area_Version_Number;
    QRX_U8 PCIe_Port_Number;
    QRX_U8 Port_Information;
    QRX_U8 PCIe_Link_Speed;          // bit 0: 2.5 GT/s, bit 1: 5, bit 2: 8
    QRX_U8 PCIe_Maximum_Link_Width;  // lanes
    QRX_U8 MCTP_Support;             // 0: none
    QRX_U8 Ref_Clk_Capability;       // bit 0: common clock
    QRX_U8 Reserved[4];
};
static_assert(sizeof(vpd_nvme_pcie_port_multirecord_area) == 16);
static_assert(offsetof(vpd_nvme_pcie_port_multirecord_area, NVMe_PCIe_Port_MultiRecord_Area_Version_Number) ==
              kVpdRecordHead);
static_assert(offsetof(vpd_nvme_pcie_port_multirecord_area, PCIe_Link_Speed) == 8);
static_assert(offsetof(vpd_nvme_pcie_port_multirecord_area, Reserved) == 12);

// The first bytes of the image.
struct vpd_elements {
    ::vpd_common_header vpd_common_header;
    ::vpd_product_info_area vpd_product_info_area;
    ::vpd_nvme_multirecord_area vpd_nvme_multirecord_area;
    ::vpd_nvme_pcie_port_multirecord_area vpd_nvme_pcie_port_multirecord_area;
    QRX_U8 reserved[56];
};
static_assert(sizeof(vpd_elements) == 250);
static_assert(offsetof(vpd_elements, vpd_product_info_area) == 8);
static_assert(offsetof(vpd_elements, vpd_nvme_multirecord_area) == 120);
static_assert(offsetof(vpd_elements, vpd_nvme_pcie_port_multirecord_area) == 178);
static_assert(offsetof(vpd_elements, reserved) == 194);
