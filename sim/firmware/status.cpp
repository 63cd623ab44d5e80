#include "sim/firmware/status.h"

#include <algorithm>
#include <array>

namespace qrx::sim {

namespace {

struct Name {
    QRX_U32 status;
    const char* text;
};

// The statuses that the model produces and those that its users inject most.
constexpr auto kNames = std::to_array<Name>({
    {0x000, "success"},
    {0x001, "invalid opcode"},
    {0x002, "invalid field"},
    {0x004, "data transfer error"},
    {0x005, "aborted, power loss"},
    {0x006, "internal error"},
    {0x007, "abort requested"},
    {0x00B, "invalid namespace or format"},
    {0x00C, "command sequence error"},
    {0x015, "operation denied"},
    {0x080, "LBA out of range"},
    {0x081, "capacity exceeded"},
    {0x082, "namespace not ready"},
    {0x101, "invalid queue identifier"},
    {0x105, "asynchronous event request limit exceeded"},
    {0x106, "invalid firmware slot"},
    {0x107, "invalid firmware image"},
    {0x109, "invalid log page"},
    {0x10A, "invalid format"},
    {0x10B, "firmware activation requires conventional reset"},
    {0x10D, "feature identifier not saveable"},
    {0x10E, "feature not changeable"},
    {0x110, "firmware activation requires NVM subsystem reset"},
    {0x111, "firmware activation requires controller reset"},
    {0x113, "firmware activation prohibited"},
    {0x114, "overlapping range"},
    {0x115, "namespace insufficient capacity"},
    {0x116, "namespace identifier unavailable"},
    {0x118, "namespace already attached"},
    {0x119, "namespace is private"},
    {0x11A, "namespace not attached"},
    {0x11B, "thin provisioning not supported"},
    {0x11C, "controller list invalid"},
    {0x11F, "invalid controller identifier"},
    {0x120, "invalid secondary controller state"},
    {0x121, "invalid number of controller resources"},
    {0x122, "invalid resource identifier"},
    {0x280, "write fault"},
    {0x281, "unrecovered read error"},
    {0x285, "compare failure"},
    {0x701, "failed"},
    {0x703, "invalid request"},
    {0x704, "invalid parameter"},
    {0x705, "not supported"},
    {0x706, "invalid HD ID"},
    {0x707, "invalid LD ID"},
    {0x708, "no resource"},
    {0x709, "operation in progress"},
    {0x70A, "BE attach success but identify NS fail"},
    {0x70B, "no empty BE NS slot"},
    {0x70C, "NS still attached"},
    {0x733, "LD is not redundant"},
    {0x734, "LD is not fully inited"},
    {0x735, "LD is not functional"},
    {0x736, "LD is functional"},
    {0x737, "PD size is too small"},
    {0x738, "import no table"},
    {0x739, "import already in table"},
    {0x73A, "import foreign"},
    {0x73B, "HD is assigned"},
    {0x73C, "invalid RAID mode"},
    {0x73D, "invalid HD count"},
    {0x73E, "invalid SBS"},
    {0x73F, "no available ID"},
    {0x740, "HD sector size mismatch"},
    {0x741, "create namespace cap out of range"},
    {0x742, "LD has BGA"},
    {0x743, "no BGA activity"},
    {0x744, "invalid BGA action"},
    {0x745, "BGA is running"},
    {0x746, "BGA is not running"},
    {0x747, "rebuild source fail"},
    {0x748, "rebuild target is too small"},
    {0x749, "media patrol is running"},
    {0x74A, "invalid namespace count"},
});
static_assert(std::is_sorted(kNames.begin(), kNames.end(),
                             [](const Name& left, const Name& right) { return left.status < right.status; }));

}  // namespace

std::string status_name(QRX_U32 nvme_status)
{
    const auto* const found =
        std::find_if(kNames.begin(), kNames.end(), [&](const Name& name) { return name.status == nvme_status; });
    return found == kNames.end() ? "unknown status" : found->text;
}

}  // namespace qrx::sim
