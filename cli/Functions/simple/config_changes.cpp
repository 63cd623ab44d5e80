#include "cli/Functions/simple/config_changes.h"

#include "cli/Public/frame/option_scan.h"
#include "cli/Public/frame/report.h"

namespace qrx::config {
namespace {

constexpr Keyword kSwitch[] = {{"off", 0}, {"on", 1}};
constexpr Keyword kRates[] = {{"high", kRateHigh}, {"medium", kRateMedium}, {"low", kRateLow}};

}  // namespace

bool readAutoRebuild(const char* word, Changes& changes)
{
    changes.autoRebuild = keyword(word, kSwitch);
    return changes.autoRebuild || complain("-c : invalid auto rebuild mode '%s'\n", word);
}

bool readRate(const char* word, Changes& changes)
{
    changes.BGARate = keyword(word, kRates);
    return changes.BGARate || complain("-r : invalid BGA rate '%s'\n", word);
}

bool apply(const Changes& changes, NVME_Adapter_Config& config)
{
    const bool switches = take(changes.autoRebuild, config.AutoRebuildOn);
    const bool rates = take(changes.BGARate, config.BGARate);
    return switches || rates || complain("Invalid setting(s) for HBA\n");
}

}  // namespace qrx::config
