// The commands that read and write a namespace.
#include "cli/Functions/standard/ns_io.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "api/src/interface/agent.h"
#include "api/src/interface/globals.h"
#include "api/src/interface/wire/buffer.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/input_file.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/option_set.h"
#include "cli/Public/frame/output_file.h"
#include "cli/Public/frame/raid_only.h"
#include "cli/Public/utility.h"

namespace {

using namespace qrx::io;

constexpr std::size_t kMostData = 0x20000;  // bytes of one command
constexpr std::size_t kWords = 6;           // CDW10 to CDW15
constexpr unsigned kAll = kRead | kWrite | kCompare | kWriteZero | kWriteUncor;
constexpr unsigned kWithTags = kRead | kWrite | kCompare | kWriteZero;
constexpr unsigned kWithUse = kRead | kWrite;  // tell what use the data will have
constexpr unsigned kNoWord = 0;

// An option with a number, and where in the command the number goes. The names of tags are those of what is expected;
// the others leave out the first letter.
struct Field {
    unsigned kinds;  // the commands that have it
    char letter;
    const char* name;   // long
    const char* label;  // in a complaint
    const char* text;   // what it is, in a complaint
    bool tag;
    unsigned cdw;  // 12 to 15, or kNoWord
    unsigned shift;
    unsigned bits;
};

constexpr Field kFields[] = {
    {kAll, 'n', "nsid", "-n", "namespace id", false, kNoWord, 0, 32},
    {kAll, 's', "slba", "-s", "starting LBA", false, kNoWord, 0, 64},
    {kAll, 'l', "nlb", "-l", "number of LBA", false, 12, 0, 16},
    {kWithTags, '0', "eilbrt", "--ilbrt", "initial logical block reference tag", true, 14, 0, 32},
    {kWithTags, '1', "elbat", "--lbat", "logical block application tag", true, 15, 0, 16},
    {kWithTags, '2', "elbatm", "--lbatm", "logical block application tag mask", true, 15, 16, 16},
    {kWrite, '3', "dtype", "--dtype", "directive type", false, 12, 20, 4},
    {kWriteZero, '3', "deac", "--deac", "deallocate", false, 12, 25, 1},
    {kWithTags, '4', "prinfo", "--prinfo", "protection information field", false, 12, 26, 4},
    {kWithTags, '5', "fua", "--fua", "force unit access", false, 12, 30, 1},
    {kWithTags, '6', "lr", "--lr", "limited retry", false, 12, 31, 1},
    {kWithUse, '7', "dsmip", "--dsmip", "dataset management incompressible", false, 13, 7, 1},
    {kWithUse, '8', "dsmsr", "--dsmsr", "dataset management sequential request", false, 13, 6, 1},
    {kWithUse, '9', "dsmal", "--dsmal", "dataset management access latency", false, 13, 4, 2},
    {kWithUse, 'a', "dsmaf", "--dsmaf", "dataset management access frequency", false, 13, 0, 4},
    {kWithUse, 'z', "datasize", "-z", "data size", false, kNoWord, 0, 32},
};
constexpr char kFile = 'f';

const Field* fieldOf(const IoCommand& command, int letter)
{
    const auto* const found = std::find_if(std::begin(kFields), std::end(kFields), [&](const Field& field) {
        return field.letter == letter && (field.kinds & command.kind) != 0;
    });
    return found != std::end(kFields) ? found : nullptr;
}

qrx::OptionSet optionsOf(const IoCommand& command)
{
    qrx::OptionSet options;
    for (const Field& field : kFields) {
        if ((field.kinds & command.kind) == 0) {
            continue;
        }
        const bool required = std::string_view("nsl").find(field.letter) != std::string_view::npos;
        options.add(field.letter, field.tag && !command.expects ? field.name + 1 : field.name,
                    required ? required_argument : optional_argument);
    }
    if (command.fileName != nullptr) {
        options.add(kFile, command.fileName);
    }
    return options;
}

struct Wish {
    std::array<QRX_U64, 128> values{};  // by letter
    qrx::InputFile input;
    qrx::OutputFile output;

    [[nodiscard]] QRX_U64 value(char letter) const { return values[static_cast<unsigned char>(letter)]; }
};

// Stores the option's argument, null where it was left out; false after a complaint.
bool read(const IoCommand& command, int letter, const char* argument, const char* word, Wish& wish)
{
    if (letter == kFile) {
        (void)(command.kind == kRead ? wish.output.open(word) : wish.input.open(word));  // a failure is told later
        return true;
    }
    const Field& field = *fieldOf(command, letter);
    if (qrx::take(qrx::readExact(argument, field.bits), wish.values[static_cast<unsigned char>(letter)])) {
        return true;
    }
    const char* const label = command.oneDash && field.label[1] == '-' ? field.label + 1 : field.label;
    return qrx::complain("%s: Invalid %s%s\n", label, field.tag && command.expects ? "expected " : "", field.text);
}

std::array<QRX_U32, kWords> wordsOf(const IoCommand& command, const Wish& wish)
{
    std::array<QRX_U32, kWords> words{static_cast<QRX_U32>(wish.value('s')),
                                      static_cast<QRX_U32>(wish.value('s') >> 32)};
    for (const Field& field : kFields) {
        if ((field.kinds & command.kind) != 0 && field.cdw != kNoWord) {
            words.at(field.cdw - 10) |= static_cast<QRX_U32>(wish.value(field.letter) << field.shift);
        }
    }
    return words;
}

// How much of a file of `length` bytes goes along.
std::size_t lengthOf(const IoCommand& command, const Wish& wish, QRX_U64 length)
{
    const QRX_U64 wanted = command.kind == kWrite ? std::min<QRX_U64>(length & 0xFFFF, wish.value('z')) : length;
    return static_cast<std::size_t>(std::min<QRX_U64>(wanted, kMostData));
}

// Reads the data to send into `block`. Nothing when the file that was named cannot be read.
std::optional<std::size_t> load(const IoCommand& command, Wish& wish, std::span<QRX_U8> block)
{
    const auto head = wish.input.readHead(block);
    return head ? std::optional<std::size_t>(lengthOf(command, wish, head->length)) : std::nullopt;
}

void debug(const IoCommand& command, std::size_t length, const std::array<QRX_U32, kWords>& words)
{
    if (dbg_enable == 0) {
        return;
    }
    if (command.kind == kRead || command.kind == kWrite) {
        qrx::print("PRP data len: 0x%x\n", static_cast<unsigned>(length));
    }
    for (std::size_t i = 0; i < words.size(); ++i) {
        qrx::print("cdw[%zu]: 0x%08x\n", 10 + i, words.at(i));
    }
}

// Sends the command with its data, and delivers what was read.
int send(const IoCommand& command, PCommand_Info row, Wish& wish, std::span<QRX_U8> data)
{
    std::array<QRX_U32, kWords> words = wordsOf(command, wish);
    debug(command, data.size(), words);
    const bool reads = command.kind == kRead;
    const auto length = static_cast<QRX_U32>(data.size());
    const auto status = static_cast<int>(
        QRX_Adapter_NVM(gCurrentAdapter, command.opcode, static_cast<QRX_U32>(wish.value('n')), words.data(),
                        words.size(), length == 0 || reads ? nullptr : data.data(), reads ? 0 : length,
                        length == 0 || !reads ? nullptr : data.data(), reads ? length : 0));
    if (status != 0) {
        return command.tellsResult
                   ? qrx::refuse(status, "%s failed. (result:0x%x)\n", command.name, static_cast<unsigned>(status))
                   : qrx::refuse(status, "%s failed.(error 0x%x)\n", command.name, static_cast<unsigned>(status));
    }
    qrx::print("%s success.\n", command.name);
    if (!reads) {
        return 0;
    }
    if (wish.output.isNamed()) {
        return wish.output.save(row, data);
    }
    _showRAWData(data.data(), static_cast<int>(length));
    return 0;
}

}  // namespace

int qrx::io::carryOut(int argc, char** argv, PCommand_Info row, const IoCommand& command)
{
    const OptionSet options = optionsOf(command);
    OptionScan scan(argc, argv, options.letters(), options.rows());
    Wish wish;
    if (const auto result = readOptions(scan, row, options.known(), 0,
                                        [&](int letter) { return read(command, letter, optarg, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated(options.known())) {
        return duplicateOption();
    }
    if (const auto result = requireOptions(scan, row, "nsl")) {
        return *result;
    }
    if (refusedInRaid()) {
        return kRaidResult;
    }
    if (wish.output.hasFailed()) {
        return wish.output.refuse(row);
    }
    alignas(wire::kPageSize) std::array<QRX_U8, kMostData> block{};
    std::size_t length = 0;
    if (command.kind == kRead) {
        length = static_cast<std::size_t>(std::min<QRX_U64>(wish.value('z'), kMostData));
    } else if (scan.has(kFile)) {
        const auto loaded = load(command, wish, block);
        if (!loaded) {
            return wish.input.refuse(row);
        }
        length = *loaded;
    }
    return send(command, row, wish, std::span(block).first(length));
}
