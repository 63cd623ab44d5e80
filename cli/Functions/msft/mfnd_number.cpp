// Numbers, actions and the note about missing entries of the commands of the multi-function device.
#include "cli/Functions/msft/mfnd_number.h"

#include <array>
#include <cstdlib>
#include <cstring>

#include "cli/Functions/msft/mfnd.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/option_scan.h"
#include "cli/Public/frame/report.h"

namespace qrx {

namespace {

// The number before it saturates.
std::int64_t wholeNumber(const char* word)
{
    return std::strtoll(word, nullptr, std::strstr(word, "0x") != nullptr ? 16 : 10);
}

}  // namespace

MfndFault judgeMfndNumber(const char* word, std::int64_t below, QRX_U32& value)
{
    const std::optional<std::int32_t> number = readHexOrNumber(word);
    if (!number) {
        return MfndFault::kNoNumber;
    }
    if (*number < 0) {
        return MfndFault::kNegative;
    }
    if (below != kMfndNoLimit && wholeNumber(word) >= below) {
        return MfndFault::kOutOfRange;
    }
    value = static_cast<QRX_U32>(*number);
    return MfndFault::kNone;
}

bool readMfndNumber(const char* word, const MfndNumber& rule, QRX_U32& value)
{
    switch (judgeMfndNumber(word, rule.below, value)) {
    case MfndFault::kNoNumber:
        return complain("-%c : %s should be a number\n", rule.letter, rule.subject);
    case MfndFault::kNegative:
        return complain("invalid %s '%s'\n", rule.noun, word);
    case MfndFault::kOutOfRange:
        return complain("invalid %s '%s', out of range\n", rule.noun, word);
    default:
        return true;
    }
}

bool readMfndAction(const char* word, bool& set)
{
    constexpr std::array<Keyword, 2> kActions{{{"get", 0}, {"set", 1}}};
    return take(keyword(word, kActions), set) || complain("-a : invalid action '%s', should be get or set\n", word);
}

void tellMfndRest(std::size_t told, std::size_t held)
{
    if (told > held) {
        print("Only the first %u of %u entries are in the data that was read.\n", static_cast<unsigned>(held),
              static_cast<unsigned>(told));
    }
}

}  // namespace qrx
