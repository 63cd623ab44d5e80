#include "sim/firmware/hba_settings.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>

#include "sim/firmware/text.h"

namespace qrx::sim {

void HbaSettings::fill(_hba_info& info) const
{
    pad_with_zeros(info.header.signature, "HALIIMGF");
    info.header.version = 1;
    info.header.section_hdr_size = sizeof(_hba_info_header);
    info.header.section_table_offset = sizeof(_hba_info_header);
    info.header.image_size = sizeof(_hba_info) - sizeof(_hba_info_header);
    _gpio_settings& gpio = info.gpio.switch_setting;
    gpio.enable = gpio_enable;
    gpio.active_high_low = gpio_levels;
    gpio.default_value = gpio_values;
    gpio.set_default_from_hba_info = gpio_from_settings ? 1 : 0;
    gpio.inversed_gpio_8_9_10_11 = gpio_inverse;
    _hba_info_adapter_page& page = info.adatper;
    page.debug_dump = debug_dump ? 1 : 0;
    page.flash_tools_enable = flash_tools ? 1 : 0;
    page.sriov_enable = sriov ? 1 : 0;
    page.vpd_buf_switch = vpd_in_spi ? 1 : 0;
    page.nguid_offset = nguid_offset;
    page.fuse_id = fuse_id;
    page.max_vf_num = max_vf;
    page.max_fe_ns_num = max_namespaces;
    page.support_vir_ns = virtual_namespaces ? 1 : 0;
    page.fw_log_level = errors_only ? 1 : 0;
    page.dsp_enable = dsp ? 1 : 0;
    page.fwdl.slot_select = firmware_slot;
}

void HbaSettings::seal(_hba_info& info) const
{
    if (damage == kBadSignature) {
        info.header.signature[0] ^= QRX_U8{0xFF};
    }
    info.header.chk_sum = 0;
    std::array<QRX_U32, sizeof(info) / sizeof(QRX_U32)> words{};
    std::memcpy(words.data(), &info, sizeof(info));
    info.header.chk_sum = 0U - std::accumulate(words.begin(), words.end(), QRX_U32{0});
    if (damage == kBadChecksum) {
        ++info.header.chk_sum;
    }
}

std::optional<Failure> HbaSettings::set_damage(std::string_view what)
{
    static constexpr std::array<std::string_view, 3> kWords{"intact", "bad-signature", "bad-checksum"};
    const auto* const found = std::find(kWords.begin(), kWords.end(), what);
    if (found == kWords.end()) {
        return Failure{"'" + std::string(what) + "' is none of intact, bad-signature, bad-checksum"};
    }
    damage = static_cast<QRX_U8>(found - kWords.begin());
    return std::nullopt;
}

}  // namespace qrx::sim
