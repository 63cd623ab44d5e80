#include "sim/firmware/vpd.h"

#include <array>
#include <cstring>
#include <numeric>

#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/vpd.h"
#include "sim/firmware/text.h"

namespace qrx::sim {

namespace {

constexpr QRX_U8 kFormat = 1;
constexpr QRX_U8 kUnit = 8;  // bytes in which the image counts offsets and lengths of areas
constexpr QRX_U8 kEnglish = 0x19;
constexpr QRX_U8 kLetters = 3U << 6;  // a field of 8-bit letters; its length is in the lower bits
constexpr QRX_U8 kNoMoreFields = 0xC1;
constexpr QRX_U8 kAddInCard = 0x30;
constexpr QRX_U8 kPower = 25;       // W, as Identify tells it
constexpr QRX_U8 kFirstPower = 10;  // W, before the host allows more

using Image = std::array<QRX_U8, sizeof(vpd_elements)>;

// The byte that makes the sum of all 0.
QRX_U8 checksum(std::span<const QRX_U8> bytes)
{
    return static_cast<QRX_U8>(0U - std::accumulate(bytes.begin(), bytes.end(), 0U));
}

template <std::size_t Size>
void put_text(QRX_U8& kind, QRX_U8 (&field)[Size], std::string_view text)
{
    kind = kLetters | Size;
    pad_with_blanks(field, text);
}

vpd_product_info_area product(const VpdFacts& facts, std::string_view version)
{
    vpd_product_info_area area{};
    area.IPMI_Format_Version_Number = kFormat;
    area.Product_Info_Area_Length = sizeof(area) / kUnit;
    area.Language_Code = kEnglish;
    put_text(area.Manufacturer_Name_Type_Length, area.Manufacturer_Name, "QRX");
    put_text(area.Product_Name_Type_Length, area.Product_Name, facts.model);
    put_text(area.Product_Part_Model_Number_Type_Length, area.Product_Part_Model_Number, facts.model);
    put_text(area.Product_Version_Type_Length, area.Product_Version, version);
    put_text(area.Product_Serial_Number_Type_Length, area.Product_Serial_Number, facts.serial);
    area.End_of_Record = kNoMoreFields;
    return area;
}

vpd_nvme_multirecord_area nvme(const VpdFacts& facts)
{
    vpd_nvme_multirecord_area record{};
    record.NVMe_Record_Type_ID = kVpdNvmeRecord;
    record.Record_format_version = kVpdRecordFormat;
    record.Record_Length = sizeof(record) - kVpdRecordHead;
    record.Management_Endpoint_Form_Factor = kAddInCard;
    record.Initial_12V_Power_Supply_Requirements = kFirstPower;
    record.Maximum_12V_Power_Supply_Requirements = kPower;
    record.Maximum_Thermal_Load = kPower;
    std::memcpy(record.Total_NVM_Capacity, &facts.capacity, sizeof(facts.capacity));
    return record;
}

vpd_nvme_pcie_port_multirecord_area port(const VpdFacts& facts)
{
    vpd_nvme_pcie_port_multirecord_area record{};
    record.NVMe_PCIe_Port_Record_Type_ID = kVpdPciePortRecord;
    record.Record_format_version = kVpdRecordFormat | kVpdLastRecord;
    record.Record_Length = sizeof(record) - kVpdRecordHead;
    record.PCIe_Link_Speed = facts.link_speeds;
    record.PCIe_Maximum_Link_Width = facts.link_width;
    record.Ref_Clk_Capability = 1;
    return record;
}

// Fills in the checksums of the record that lies at `offset`: of its data, then of its head.
void seal_record(std::span<QRX_U8> image, std::size_t offset, std::size_t size)
{
    const auto record = image.subspan(offset, size);
    record[3] = checksum(record.subspan(kVpdRecordHead));
    record[4] = checksum(record.first(kVpdRecordHead - 1));
}

Image make_image(const VpdFacts& facts, std::string_view version)
{
    constexpr std::size_t kProduct = offsetof(vpd_elements, vpd_product_info_area);
    constexpr std::size_t kNvme = offsetof(vpd_elements, vpd_nvme_multirecord_area);
    constexpr std::size_t kPort = offsetof(vpd_elements, vpd_nvme_pcie_port_multirecord_area);
    static_assert(kProduct % kUnit == 0 && kNvme % kUnit == 0);
    vpd_elements elements{};
    elements.vpd_common_header.IPMI_Format_Version_Number = kFormat;
    elements.vpd_common_header.Product_Info_Area_Starting_Offset = kProduct / kUnit;
    elements.vpd_common_header.MultiRecord_Info_Area_Starting_Offset = kNvme / kUnit;
    elements.vpd_product_info_area = product(facts, version);
    elements.vpd_nvme_multirecord_area = nvme(facts);
    elements.vpd_nvme_pcie_port_multirecord_area = port(facts);
    Image image{};
    (void)wire::write(image, 0, elements);
    const std::span<QRX_U8> bytes(image);
    bytes[kProduct - 1] = checksum(bytes.first(kProduct - 1));
    bytes[kNvme - 1] = checksum(bytes.subspan(kProduct, kNvme - kProduct - 1));
    seal_record(bytes, kNvme, sizeof(vpd_nvme_multirecord_area));
    seal_record(bytes, kPort, sizeof(vpd_nvme_pcie_port_multirecord_area));
    return image;
}

std::vector<QRX_U8> store(const Image& image, std::size_t size)
{
    std::vector<QRX_U8> bytes(image.begin(), image.end());
    bytes.resize(size, Vpd::kErased);
    return bytes;
}

}  // namespace

Vpd factory_vpd(const VpdFacts& facts)
{
    return {store(make_image(facts, "01"), Vpd::kEepromSize), store(make_image(facts, "02"), Vpd::kSpiSize)};
}

}  // namespace qrx::sim
