#include "cli/Functions/storage/mode_rules.h"

#include <algorithm>
#include <array>
#include <cassert>

#include "cli/Public/frame/report.h"

namespace {

struct ModeRule {
    QRX_U8 mode;
    const char* word;
    QRX_U8 least;                 // members
    QRX_U8 most;                  // members
    bool even;                    // an even number of members, and of parity disks
    QRX_U8 parity;                // the least parity disks, and how many there are unless told otherwise; 0: none
    const char* complaint;        // about the number of members
    const char* parityComplaint;  // takes the number of members
};

constexpr QRX_U8 kMost = kVdMembersMax;
constexpr char kRaid6Parity[] = "Number of parity disks should be at least 2 and less than %d.\n";
constexpr char kRaid60Parity[] = "RAID60 need even number of parity disks between 4 and %d.\n";

constexpr std::array<ModeRule, 8> kRules{{
    {kJbod, "JBOD", 1, 1, false, 0, "JBOD only support 1 PD.\n", nullptr},
    {kRaid0, "R0", 2, kMost, false, 0, "RAID0 needs at least 2 PD.\n", nullptr},
    {kRaid1, "R1", 2, 2, false, 0, "RAID1 needs exactly 2 PDs.\n", nullptr},
    {kRaid10, "R10", 4, kMost, true, 0, "RAID10 needs at least 4 or more even number of PDs.\n", nullptr},
    {kRaid5, "NA", 3, kMost, false, 0, "RAID5 needs at least 3 PDs.\n", nullptr},
    {kRaid50, "NA", 6, kMost, true, 0, "RAID50 needs least 6 or more even number of PDs.\n", nullptr},
    {kRaid6, "NA", 3, kMost, false, 2, "RAID6 needs least 3 PDs.\n", kRaid6Parity},
    {kRaid60, "NA", 6, kMost, true, 4, "RAID60 needs least 6 or more even number of PDs.\n", kRaid60Parity},
}};

const ModeRule* findRule(QRX_U8 mode)
{
    const auto* const found =
        std::find_if(kRules.begin(), kRules.end(), [mode](const ModeRule& rule) { return rule.mode == mode; });
    return found == kRules.end() ? nullptr : found;
}

bool takes(const ModeRule& rule, int members)
{
    return members >= rule.least && members <= rule.most && !(rule.even && members % 2 != 0);
}

bool takesParity(const ModeRule& rule, std::int32_t parity, int members)
{
    return parity >= rule.parity && parity < members && !(rule.even && parity % 2 != 0);
}

}  // namespace

const char* RaidModeStrInCreate(QRX_U8 RaidMode)
{
    const ModeRule* const rule = findRule(RaidMode);
    return rule != nullptr ? rule->word : "NA";
}

bool qrx::vd::applyModeRule(NVME_Create_VD& vd, std::optional<std::int32_t> parity)
{
    const ModeRule* const rule = findRule(vd.RAIDMode);
    assert(rule != nullptr);  // the option takes no other mode
    if (parity && rule->parity == 0) {
        return complain("RAID mode %s don't support the setting of parity disks.\n", RaidModeStrInCreate(vd.RAIDMode));
    }
    if (!takes(*rule, vd.MemberCount)) {
        return complain("%s", rule->complaint);
    }
    if (parity && !takesParity(*rule, *parity, vd.MemberCount)) {
        return complain(rule->parityComplaint, vd.MemberCount);
    }
    vd.NumParityDisk = static_cast<QRX_U8>(parity.value_or(rule->parity));
    return true;
}
