// `info -o hba`: the page of one controller.
#include <algorithm>
#include <array>
#include <cctype>
#include <span>
#include <string>

#include "api/src/interface/api.h"
#include "cli/Functions/simple/info_fetch.h"
#include "cli/Functions/simple/simple_info.h"
#include "cli/Public/frame/controller.h"
#include "cli/Public/frame/device_text.h"
#include "cli/Public/frame/lines.h"

namespace {

using qrx::Lines;

constexpr int kWidth = 36;
constexpr std::size_t kSubnqnSize = 256;

struct BitWord {
    QRX_U32 bit;
    const char* word;
};
constexpr std::array<BitWord, 8> kRaidModeWords{{{0, "RAID0 "},
                                                 {1, "RAID1 "},
                                                 {4, "RAID5 "},
                                                 {6, "RAID6 "},
                                                 {3, "RAID10 "},
                                                 {5, "RAID50 "},
                                                 {7, "RAID60 "},
                                                 {2, "JBOD "}}};
constexpr std::array<BitWord, 5> kBgaWords{
    {{0, "Initialization "}, {1, "Rebuild "}, {2, "Sync "}, {3, "Migrate "}, {4, "MediaPatrol "}}};
constexpr std::array<BitWord, 3> kStripeWords{{{0, "128KB "}, {1, "256KB "}, {2, "512KB "}}};

// The words of the bits that are set, in the order of the table.
std::string wordsOf(QRX_U32 bits, std::span<const BitWord> words)
{
    std::string text;
    for (const BitWord& row : words) {
        if ((bits >> row.bit & 1) != 0) {
            text += row.word;
        }
    }
    return text;
}

std::string featureWords(QRX_U32 features)
{
    std::string text = (features & kFeatureImport) != 0 ? "Import " : "";
    text += (features & kFeatureRaid) != 0 ? "RAID " : "JBOF ";
    return text + wordsOf(features, std::array<BitWord, 3>{{{3, "Namespace "}, {4, "Dump "}, {5, "NMIC "}}});
}

std::string revision(const NVME_Adapter_Info& info)
{
    constexpr std::array<const char*, 4> kSkuLetters{"V", "D", "B", "A"};
    const std::string step = std::to_string(info.RevisionID & 0x0F);
    std::string text;
    if ((info.RevisionID & 1U << 4) != 0) {
        text = "A" + step;
    } else if ((info.RevisionID & 1U << 5) != 0) {
        text = "B" + step;
    }
    return info.SKUID < kSkuLetters.size() ? text + kSkuLetters.at(info.SKUID) : text;
}

const char* cacheWord(QRX_U8 cache)
{
    constexpr std::array<const char*, 2> kWords{"Off ", "On "};
    return cache < kWords.size() ? kWords.at(cache) : "Unknown";
}

const char* widthWord(QRX_U8 lanes)
{
    switch (lanes) {
    case 1:
        return "1x";
    case 2:
        return "2x";
    case 4:
        return "4x";
    case 8:
        return "8x";
    default:
        return "Unknown";
    }
}

const char* speedWord(QRX_U8 speed)
{
    switch (speed) {
    case 1:
        return "2.5Gb/s";
    case 2:
        return "5Gb/s";
    case 3:
        return "8Gb/s";
    default:
        return "Unknown";
    }
}

// The virtual functions that follow the physical one in its host's routing order.
void printVirtualFunctions(const Lines& lines, const NVME_Adapter_Info& info, unsigned count)
{
    constexpr unsigned kFunctionsPerDevice = 8;
    lines.number("Visible VF Num:", count);
    for (unsigned i = 1; i <= count; ++i) {
        const unsigned function = info.FunctionNumber + i;
        const unsigned wrapped = function / kFunctionsPerDevice;
        lines.textf("   VF BDF:", "%02x:%02x.%02x", info.BusNumber, wrapped != 0 ? wrapped : info.DeviceNumber,
                    function % kFunctionsPerDevice);
    }
}

void printSubnqn(const Lines& lines, QRX_U8 AdapterID)
{
    const char* stored = QRX_Adapter_GetDeviceSUBNQN(AdapterID);
    const std::string subnqn(stored, std::find(stored, stored + kSubnqnSize, '\0'));
    if (!subnqn.empty() && std::isprint(static_cast<unsigned char>(subnqn.front())) != 0) {
        lines.text("SUBNQN:", qrx::printable(subnqn).c_str());
    } else {
        lines.text("SUBNQN:",
                   getTotoalPDCnt(AdapterID) != 0 ? "Not found" : "Not found, make sure SSD is already installed");
    }
}

void printPorts(const Lines& lines, std::span<const NVME_PCIe_Info> ports)
{
    for (const NVME_PCIe_Info& port : ports) {
        if (port.Type == kPcieEndOfList) {
            return;
        }
        if (port.Type != kPcieEndPoint && port.Type != kPcieRootComplex) {
            continue;
        }
        lines.number(port.Type == kPcieEndPoint ? "End Point:" : "Root Complex:", port.Id);
        lines.text("  Link width:", widthWord(port.LinkWidth));
        lines.text("  PCIe speed:", speedWord(port.Speed));
    }
}

}  // namespace

void Adapter_PrintInfo(QRX_U8 AdapterID, const NVME_Adapter_Info& info, bool showSubnqn)
{
    const Lines lines(kWidth);
    const bool isRaid = !qrx::isJbof(info);

    int deviceNumber = AdapterID;
    GetAdapterIdFromDeviceName(AdapterID, &deviceNumber);
    lines.number("NVMe Controller ID", static_cast<QRX_U64>(deviceNumber));
    lines.text("Bus Device Fun:", QRX_Adapter_GetDeviceFun(AdapterID));
    if (get_sriov_enable() == 1 && info.SKUID == 0) {
        // Each test asks the current controller anew.
        for (unsigned host = 0; host < std::size(info.VisibleVfNum); ++host) {
            if (get_hostID(gCurrentAdapter) == host) {
                printVirtualFunctions(lines, info, info.VisibleVfNum[host]);
            }
        }
    }
    lines.text("Device:", QRX_Adapter_GetDevicePath(AdapterID));
    if (showSubnqn) {
        printSubnqn(lines, AdapterID);
    }
    const NVME_Version_Info& version = info.FirmwareVersion;
    lines.textf("Firmware Version:", "%d.%d.%d.%04d", version.MajorVersion, version.MinorVersion, version.OEMNumber,
                version.BuildNumber);
    lines.hex("VID:", info.VID);
    lines.hex("SVID:", info.SVID);
    lines.hex("DID:", info.DID);
    lines.hex("SDID:", info.SDID);
    lines.text("RevisionID:", revision(info).c_str());
    lines.number("Port Count:", info.PortCount);
    if (isRaid) {
        lines.number("Max PD of Per VD:", info.MaxPDPerVD);
        lines.number("Max VD:", info.MaxVD);
    }
    lines.number("Max PD:", info.MaxPD);
    lines.number(isRaid ? "Max NS of Per VD:" : "Max NS of Per PD:", info.MaxNSPerVD);
    lines.number("Max NS:", info.MaxNS);
    lines.id("Host ID:", get_hostID(AdapterID));
    lines.text("Supported RAID Mode:", isRaid ? wordsOf(info.SupportRAIDMode, kRaidModeWords).c_str() : "Not Support");
    lines.text("Cache:", cacheWord(info.Cache));
    if (isRaid) {
        lines.text("Supported BGA Features:", wordsOf(info.SupportBGAFeature, kBgaWords).c_str());
        lines.text("Support Stripe Size:", wordsOf(info.StripeSizeSupported, kStripeWords).c_str());
    }
    lines.text("Supported Features:", featureWords(info.Features).c_str());
    printPorts(lines, info.PCIeInfo);
}
