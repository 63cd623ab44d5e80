// `qos`.
#include "cli/Functions/simple/simple_qos.h"

#include <array>

#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/lines.h"
#include "cli/Public/frame/number.h"

const char simple_qos_sh[] = ":For get and set QoS of physical and virtual functions";
const char simple_qos_help[] =
    "\n"
    "qos -a [<get -i <PH/VF ID> | set -i <PH/VF ID> --ir <iops read> --iw <iops write> --br <bandwidth read> --bw "
    "<bandwidth write> ] [-h]\n"
    "\n"
    "Options:\n"
    "    -a, --action <get|set>\n"
    "        get, show the limits of a function\n"
    "        set, set all limits of a function\n"
    "    -i, --id <PH/VF ID>\n"
    "        0 and 1: physical functions\n"
    "        2 to 33: virtual functions 0 to 31\n"
    "    --ir <iops read>, --iw <iops write>\n"
    "        In thousands, 5 at least. 0: disable.\n"
    "    --br <bandwidth read>, --bw <bandwidth write>\n"
    "        In Mib, 50 at least. 0: disable.\n"
    "    -h, --help\n"
    "    Accept value by decimal or hexadecimal.\n"
    "Examples:\n"
    "    qos -a get -i 0\n"
    "    Show the limits of physical function 0\n"
    "\n"
    "    qos -a set -i 2 --ir 10 --iw 5 --br 100 --bw 0\n"
    "    Limit virtual function 0 to 10K reads and 5K writes a second, and 100 Mib of reads\n"
    "\n";

namespace {

using qrx::complain;

constexpr char kLetters[] = "a:i:0:1:2:3:c:\x01:h";
constexpr option kLong[] = {
    {"action", required_argument, nullptr, 'a'},
    {"id", required_argument, nullptr, 'i'},
    {"ir", required_argument, nullptr, '0'},
    {"iw", required_argument, nullptr, '1'},
    {"br", required_argument, nullptr, '2'},
    {"bw", required_argument, nullptr, '3'},
    {"control", required_argument, nullptr, 'c'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

constexpr QRX_U8 kSubSet = 0x17;
constexpr QRX_U8 kSubGet = 0x18;

enum Action { kNoAction, kGet, kSet };
constexpr qrx::Keyword kActions[] = {{"get", kGet}, {"set", kSet}};
constexpr qrx::Keyword kControls[] = {{"on", 1}, {"off", 0}};  // of no effect

// The limits, in the order in which they are asked for.
struct Limit {
    char letter;
    const char* name;     // as it is typed
    const char* meaning;  // in complaints
    const char* shown;    // in the complaint about one that is too small
    QRX_U16 least;        // but for 0
};
constexpr std::array<Limit, 4> kLimits{{
    {'0', "ir", "IOPS read", "ir", kQosIopsMin},
    {'1', "iw", "IOPS write", "iw", kQosIopsMin},
    {'2', "br", "bandwidth read", "iw", kQosBandwidthMin},  // its complaint bears another's name
    {'3', "bw", "bandwidth write", "bw", kQosBandwidthMin},
}};

struct Wish {
    int action = kNoAction;
    QRX_U16 host = 0;
    std::array<QRX_U32, kLimits.size()> limits{};
};

bool readHost(const char* word, QRX_U16& host)
{
    const auto number = qrx::readHexOrNumber(word);
    if (!number) {
        return complain("-i : invalid host id '%s'\n", word);
    }
    if (*number < 0 || *number > kQosHostIdMax) {
        return complain("-i : host id out of range , the range is from 0 to 33\n");
    }
    host = static_cast<QRX_U16>(*number);
    return true;
}

bool readLimit(const char* word, const Limit& row, QRX_U32& limit)
{
    constexpr int kMost = 0xFFFF;  // what the command has room for
    const auto number = qrx::readHexOrNumber(word);
    if (!number || *number < 0 || *number > kMost) {
        return complain("--%s : invalid %s '%s'\n", row.name, row.meaning, word);
    }
    if (*number != 0 && *number < row.least) {
        return complain("--%s : invalid value '%s', it should more than %u.\n", row.shown, word, unsigned{row.least});
    }
    limit = static_cast<QRX_U32>(*number);
    return true;
}

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 'a':
        return qrx::take(qrx::keyword(word, kActions), wish.action) || complain("-a : invalid action '%s'.\n", word);
    case 'i':
        return readHost(word, wish.host);
    case 'c':
        return qrx::keyword(word, kControls).has_value() || complain("-a : invalid action '%s'.\n", word);
    default: {
        const auto place = static_cast<std::size_t>(letter - kLimits.front().letter);
        return readLimit(word, kLimits.at(place), wish.limits.at(place));
    }
    }
}

int get(QRX_U16 host)
{
    std::array<QRX_U8, qrx::wire::kPageSize> page{};
    page.fill(0xFF);  // limits that the controller left unsaid must not pass for none
    const auto command = qrx::vendorCommand(kGroupAdapter, kSubGet, host).word(10, 0);
    command.debug();
    const int status = command.receive(page);
    showQoSTable(host, *qrx::wire::read<QoSTable>(page));
    return qrx::reportCode(status, "Get QoS");
}

int set(QRX_U16 host, const std::array<QRX_U32, kLimits.size()>& limits)
{
    const auto [ir, iw, br, bw] = limits;
    const auto command =
        qrx::vendorCommand(kGroupAdapter, kSubSet, host).word(10, 0).word(13, iw << 16U | ir).word(14, bw << 16U | br);
    command.debug();
    return qrx::reportCode(command.send(), "Set QoS");
}

void showLimit(const qrx::Lines& lines, const char* label, QRX_U16 value, const char* unit)
{
    value == 0 ? lines.text(label, "disable") : lines.textf(label, "%d%s", value, unit);
}

}  // namespace

void showQoSTable(QRX_U16 hostId, const QoSTable& table)
{
    constexpr int kWidth = 23;
    const qrx::Lines lines(kWidth);
    lines.number("Host ID:", hostId);
    showLimit(lines, "IOPS Read:", table.IOPS_read, "K");
    showLimit(lines, "IOPS Write:", table.IOPS_write, "K");
    showLimit(lines, "BandWidth Read:", table.bandwidth_read, "Mib");
    showLimit(lines, "BandWidth Write:", table.bandwidth_write, "Mib");
}

int doQOS(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result = qrx::readOptions(scan, pCmdInfo, "ai0123c", 0,
                                             [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("ai0123c")) {
        return qrx::duplicateOption();
    }
    if (const auto result = qrx::requireOptions(scan, pCmdInfo, "ai")) {
        return *result;
    }
    switch (wish.action) {
    case kGet:
        return get(wish.host);
    case kSet:
        if (const auto result = qrx::requireOptions(scan, pCmdInfo, "0123")) {
            return *result;
        }
        return set(wish.host, wish.limits);
    default:
        return qrx::refuse(0, "Invalid QoS command.\n");
    }
}
