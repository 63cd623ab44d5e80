#include "sim/firmware/adapter.h"

#include <algorithm>

#include "sim/firmware/text.h"

namespace qrx::sim {

namespace {

NVME_Version_Info record_of(const Version& version)
{
    return {version.major, version.minor, version.oem, version.build};
}

constexpr std::array<QRX_U8, 3> kRates{0, 2, 32};

}  // namespace

NVME_Adapter_Info Adapter::record(const PciAddress& address) const
{
    NVME_Adapter_Info info{};
    info.UEFIVersion = record_of(uefi);
    info.FirmwareVersion = record_of(firmware);
    info.VID = kControllerVendorId;
    info.SVID = subsystem_vendor_id;
    info.DID = kControllerDeviceId;
    info.SDID = subsystem_device_id;
    info.RevisionID = revision;
    info.PortCount = ports;
    info.MaxPDPerVD = max_pd_per_vd;
    info.MaxVD = max_vd;
    info.MaxPD = max_pd;
    info.MaxNSPerVD = max_ns_per_vd;
    info.MaxNS = max_ns;
    info.VisibleVfNum[0] = visible_vf_host0;
    info.VisibleVfNum[1] = visible_vf_host1;
    info.MaxFlashSize = flash_size;
    info.MaxBufferSize = buffer_size;
    info.SupportRAIDMode = raid_modes;
    info.Cache = cache;
    info.SupportBGAFeature = background;
    info.StripeSizeSupported = stripes;
    info.SKUID = sku;
    info.Features = features;
    info.OEMFeatures = oem_features;
    const std::size_t count = std::min(pcie.size(), kPcieInfoMax);
    for (std::size_t i = 0; i < count; ++i) {
        info.PCIeInfo[i] = {pcie[i].type, pcie[i].id, pcie[i].speed, pcie[i].width};
    }
    if (count < kPcieInfoMax) {
        info.PCIeInfo[count].Type = kPcieEndOfList;
    }
    pad_with_zeros(info.BuildDate, build_date);
    info.BusNumber = address.bus;
    if (routing_number) {
        info.FunctionNumber = static_cast<QRX_U8>(address.device << 3 | address.function);
    } else {
        info.DeviceNumber = address.device;
        info.FunctionNumber = address.function;
    }
    return info;
}

NVME_Adapter_Config AdapterConfig::record() const
{
    NVME_Adapter_Config config{};
    config.AutoRebuildOn = auto_rebuild;
    config.BGARate = rate;
    return config;
}

Verdict AdapterConfig::set(QRX_U8 new_auto_rebuild, QRX_U8 new_rate)
{
    const bool rate_known = std::find(kRates.begin(), kRates.end(), new_rate) != kRates.end();
    // A host that changes one of them sends the other back as it was reported, whatever that was.
    if ((new_auto_rebuild > 1 && new_auto_rebuild != auto_rebuild) || (!rate_known && new_rate != rate)) {
        return Verdict::kInvalidParameter;
    }
    auto_rebuild = new_auto_rebuild;
    rate = new_rate;
    return Verdict::kGood;
}

}  // namespace qrx::sim
