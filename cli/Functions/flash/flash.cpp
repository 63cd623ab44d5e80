// `flash`: the options, what they allow together, and which update they ask for.
#include "cli/Functions/flash/flash.h"

#include <array>
#include <cstdio>
#include <cstring>

#include "api/src/interface/globals.h"
#include "api/src/interface/wire/image.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"

namespace {

using qrx::complain;
using qrx::optionRequired;
using qrx::refuse;
using qrx::take;

constexpr char kLetters[] = "f:t:\x01:o:i:s:c:b:q:h";
constexpr option kLong[] = {
    {"file", required_argument, nullptr, 'f'},
    {"type", required_argument, nullptr, 't'},
    qrx::kOutputRow,
    {"object", required_argument, nullptr, 'o'},
    {"id", required_argument, nullptr, 'i'},
    {"fs", optional_argument, nullptr, 's'},
    {"ca", optional_argument, nullptr, 'c'},
    {"bp_id", optional_argument, nullptr, 'b'},
    {"slot_info", optional_argument, nullptr, 'q'},
    qrx::kHelpRow,
    qrx::kEndRow,
};

constexpr int kHba = 0;
constexpr int kPd = 1;
constexpr qrx::Keyword kObjects[] = {{"hba", kHba}, {"pd", kPd}, {"hd", kPd}};
constexpr qrx::Keyword kTypes[] = {{"raw", 0}};
constexpr qrx::Keyword kQueries[] = {{"firmware", 0}};

constexpr int kSlots = 8;
constexpr int kActions = 8;
constexpr int kBootPartitions = 2;
constexpr QRX_U8 kRawSlot = 1;
constexpr QRX_U8 kPlain = 0;
constexpr QRX_U8 kRaw = 1;

struct Wish {
    std::array<char, 1024> filename{};  // empty: no file was given
    std::int32_t ID = gCurrentAdapter;
    QRX_U8 fs = 1;
    QRX_U8 ca = 1;
    QRX_U8 bp_id = 0;
    bool hbaFlash = false;
    bool hdFlash = false;
    bool type_raw = false;
    bool queryFW = false;

    // CDW10 of the commit to a disk.
    [[nodiscard]] QRX_U32 commitWord() const { return fs | QRX_U32{ca} << 3U | QRX_U32{bp_id} << 31U; }
};

// A decimal number below `limit`. Nothing where an optional argument was left out.
std::optional<std::int32_t> readBelow(int limit)
{
    const auto number = qrx::readNumber(optarg);
    return number && *number < limit ? number : std::nullopt;
}

// Everything between the quotes, or the whole word.
bool readFilename(const char* word, std::array<char, 1024>& filename)
{
    const std::size_t quote = word[0] == '"' ? 1 : 0;
    const std::size_t length = quote != 0 ? std::strcspn(word + quote, "\"") : std::strlen(word);
    filename.fill('\0');
    if (length >= filename.size()) {
        return complain("-f : file name is too long\n");
    }
    std::memcpy(filename.data(), word + quote, length);
    return true;
}

bool readObject(const char* word, Wish& wish)
{
    const auto object = qrx::keyword(word, kObjects);
    if (!object) {
        return complain("-o : invalid object '%s'\n", word);
    }
    (*object == kHba ? wish.hbaFlash : wish.hdFlash) = true;
    return true;
}

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 'f':
        return readFilename(word, wish.filename);
    case 't':
        wish.type_raw = true;
        return qrx::keyword(word, kTypes) || complain("-t : invalid type '%s'\n", word);
    case 'o':
        return readObject(word, wish);
    case 'i':
        return take(qrx::readId(word), wish.ID) || complain("-i : invalid id '%s'.\n", word);
    case 's':
        return take(readBelow(kSlots), wish.fs) || complain("-s : invalid firmware slot '%s'.\n", word);
    case 'c':
        return take(readBelow(kActions), wish.ca) || complain("-c : invalid commit action '%s'.\n", word);
    case 'b':
        return take(readBelow(kBootPartitions), wish.bp_id) || complain("-b : invalid boot partition id '%s'.\n", word);
    default:
        wish.queryFW = true;
        return qrx::keyword(word, kQueries) || complain("-q : invalid query '%s'\n", word);
    }
}

enum class Pass { kGood, kBad, kHelp };

Pass readAll(qrx::OptionScan& scan, Wish& wish)
{
    constexpr std::string_view kKnown = "ftoiscbq";
    for (int letter; (letter = scan.next()) != qrx::OptionScan::kEnd;) {
        if (letter == qrx::OptionScan::kError) {
            return Pass::kBad;
        }
        if (kKnown.find(static_cast<char>(letter)) == std::string_view::npos) {
            return Pass::kHelp;
        }
        if (!read(letter, scan.word(), wish)) {
            return Pass::kBad;
        }
    }
    return Pass::kGood;
}

int query(const qrx::OptionScan& scan, const Wish& wish)
{
    constexpr QRX_U8 kOfController = 0;
    constexpr QRX_U8 kOfDisk = 1;
    const auto id = static_cast<QRX_U32>(wish.ID);
    if (wish.hbaFlash) {
        if (scan.has('i')) {
            return refuse(1, "illegal option 'i'\n");
        }
        showSlotInfo(gCurrentAdapter, kOfController, id);
    } else if (wish.hdFlash) {
        showSlotInfo(gCurrentAdapter, kOfDisk, id);
    } else {
        std::puts("Unknown slot information request.");
    }
    return 0;
}

// Names the options that are missing. True when there are none.
bool isComplete(const qrx::OptionScan& scan, const Wish& wish, PCommand_Info row)
{
    bool complete = scan.has('o');
    if (!wish.type_raw) {
        for (const char letter : {'c', 's'}) {
            if (!scan.has(letter)) {
                optionRequired(row, letter);
                complete = false;
            }
        }
    }
    // An empty name is none: a script whose variable is not set must not commit what a device got from somebody else.
    if (wish.ca != kCommitActivateAtReset && wish.ca != kCommitActivateNow && wish.filename[0] == '\0') {
        optionRequired(row, 'f');
        complete = false;
    }
    if (wish.hdFlash && !scan.has('i')) {
        optionRequired(row, 'i');
        complete = false;
    }
    return complete;
}

int updateController(const qrx::OptionScan& scan, Wish& wish)
{
    if (scan.has('i')) {
        return refuse(1, "'-o hba' does not support '-i' action\n");
    }
    if (wish.type_raw && scan.has('c')) {
        return refuse(1, "'-t raw' does not support '-c' action\n");
    }
    if (wish.type_raw && scan.has('s')) {
        return refuse(1, "'-t raw' does not support '-s' action\n");
    }
    return static_cast<int>(updateAdapterFlash(gCurrentAdapter, wish.filename.data(),
                                               wish.type_raw ? kRawSlot : wish.fs, wish.ca,
                                               wish.type_raw ? kRaw : kPlain));
}

}  // namespace

int doFlash(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    const Pass pass = readAll(scan, wish);
    if (pass == Pass::kHelp) {
        return qrx::showHelp(pCmdInfo, 0);
    }
    if (argc == 1) {
        return qrx::showHelp(pCmdInfo, 1);
    }
    if (scan.repeated("fiscbtq")) {
        return qrx::duplicateOption();
    }
    if (pass == Pass::kBad) {
        return 1;
    }
    if (!scan.has('o')) {
        optionRequired(pCmdInfo, 'o');
    }
    if (wish.queryFW) {
        return query(scan, wish);
    }
    if (!isComplete(scan, wish, pCmdInfo)) {
        return 1;
    }
    if (wish.hbaFlash) {
        return updateController(scan, wish);
    }
    return static_cast<int>(updateHdFlash(gCurrentAdapter, wish.filename.data(), static_cast<QRX_U32>(wish.ID),
                                          wish.commitWord(), wish.ca));
}
