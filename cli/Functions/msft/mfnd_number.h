// How the commands of the multi-function device read their numbers: hexadecimal where the text holds "0x", otherwise
// decimal digits; none below 0; and a limit for most.
#pragma once

#include <cstdint>

#include "api/src/interface/wire/types.h"

namespace qrx {

struct MfndNumber {
    char letter;          // of the option, in the complaint about a text that is no number
    const char* subject;  // in that complaint: "-i : CCID should be a number"
    const char* noun;     // in the others: "invalid CCID '%s'"
    std::int64_t below;   // the least that is out of range; kMfndNoLimit: what does not fit saturates
};

inline constexpr std::int64_t kMfndNoLimit = 0;
inline constexpr std::int64_t kMfndId = 0x10000;
inline constexpr std::int64_t kMfndSelector = 16;

inline constexpr MfndNumber kMfndCcid{'i', "CCID", "CCID", kMfndId};
inline constexpr MfndNumber kMfndSel{'s', "SEL", "SEL", kMfndSelector};

// Stores the number, cut to the width of `value`; false after a complaint.
bool readMfndNumber(const char* word, const MfndNumber& rule, QRX_U32& value);

// Why a text is not the number that is asked for.
enum class MfndFault : QRX_U8 { kNone, kNoNumber, kNegative, kOutOfRange };

// Stores the number where there is no fault. `word` may be null, which is no number.
MfndFault judgeMfndNumber(const char* word, std::int64_t below, QRX_U32& value);

}  // namespace qrx
