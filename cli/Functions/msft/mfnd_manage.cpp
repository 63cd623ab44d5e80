// `mfnd-manage`: makes, changes and deletes child controllers.
#include <array>
#include <cstdio>
#include <cstring>
#include <span>
#include <string_view>

#include "cli/Functions/msft/mfnd.h"
#include "cli/Functions/msft/mfnd_number.h"
#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/debug_dump.h"
#include "cli/Public/frame/free_text.h"
#include "cli/Public/frame/handler.h"

const char mfnd_manage_sh[] = ":For MFND management";

const char mfnd_manage_help[] = R"(
mfnd-manage -s <SEL> [-i <CCID>] [-c <CPFC>] [-f <FLAG>] [-l <CCPEC>] [-k <SN>] [<properties>] [<QoS>] [-h]

Options:
    -s,  --SEL
         0 create, 1 update, 2 delete, 3 reset
    -i,  --CCID
         Child controller ID, 0xFFFF means all child controllers. Required by update and delete.
    -c,  --CPFC
         Child controller count. Required by reset.
    -f,  --FLAG
         0 default settings, 1 properties are valid, 2 QoS is valid, 3 both are valid
    -l,  --CCPEC
         Child controller ID in child controller properties entry
    -k,  --SN
         Serial number, the maximum size is 36 bytes
  Properties:
    -z,  --IOQPC
         I/O queue pair count
    -y,  --MMCC
         MSI-X message count
    -x,  --NC
         Namespace count
    -w,  --SPUC
         Storage provision unit count
  QoS:
    -v,  --QP
         QoS policy: 0 reserve, 1 limit, 2 mix
    -u,  --RRBIM
         Reserved read bandwidth in MB
    -t,  --RWBIM
         Reserved write bandwidth in MB
    -r,  --LRBIM
         Limit read bandwidth in MB
    -q,  --LWBIM
         Limit write bandwidth in MB
    -p,  --RRRI
         Reserved random read IOPS
    -o,  --RRWI
         Reserved random write IOPS
    -n,  --LRRI
         Limit random read IOPS
    -m,  --LRWI
         Limit random write IOPS
    -h,  --help
Examples:
    mfnd-manage -s 0 -l 1 -k serialnumber -f 1 -z 4 -y 5 -x 2 -w 100
    Create child controller 1 with 4 I/O queue pairs, 5 MSI-X messages, 2 namespaces and 100 storage provision units

    mfnd-manage -s 1 -i 1 -l 1 -f 2 -v 1 -r 1000 -q 500
    Limit the bandwidth of child controller 1

    mfnd-manage -s 2 -i 0xFFFF
    Delete all child controllers

)";

namespace {

using Entry = _MSFT_CHILD_CTRL_ENTRY;
using Qos = _MSFT_CHILD_CTRL_QOS;

constexpr char kLetters[] = "s:i:c:f:z:y:x:w:v:u:t:r:q:p:o:n:m:l:k:l:\x01:h";
constexpr std::string_view kKnown = "sicfzyxwvutrqponmlk";
constexpr std::size_t kSerialLetters = sizeof(Entry::sn);

// Where the value of an option goes.
enum class Place : QRX_U8 {
    kCommand,  // not into the entry
    kEntry,    // into the entry, always
    kCounts,   // into the entry, if `-f` has bit 0
    kQos,      // into the entry, if `-f` has bit 1
};

struct Row {
    const char* name;  // long
    qrx::MfndNumber rule;
    Place place;
    std::size_t offset;  // in the entry
    std::size_t size;    // bytes there
};

constexpr Row parameter(char letter, const char* name, std::int64_t below, Place place, std::size_t offset,
                        std::size_t size)
{
    return {name, {letter, "it", "parameter", below}, place, offset, size};
}

constexpr Row qosNumber(char letter, const char* name, std::size_t offset)
{
    return parameter(letter, name, qrx::kMfndNoLimit, Place::kQos, offsetof(Entry, QOS) + offset, sizeof(QRX_U32));
}

constexpr auto kRows = std::to_array<Row>({
    {"SEL", qrx::kMfndSel, Place::kCommand, 0, 0},
    {"CCID", qrx::kMfndCcid, Place::kCommand, 0, 0},
    {"CPFC", {'c', "CPFC", "CPFC", qrx::kMfndId}, Place::kCommand, 0, 0},
    {"FLAG", {'f', "flag", "flag", qrx::kMfndId}, Place::kCommand, 0, 0},
    parameter('z', "IOQPC", qrx::kMfndId, Place::kCounts, offsetof(Entry, IO_queue_pair_cnt), 2),
    parameter('y', "MMCC", qrx::kMfndId, Place::kCounts, offsetof(Entry, MSI_X_msg_cnt), 2),
    parameter('x', "NC", qrx::kMfndId, Place::kCounts, offsetof(Entry, ns_cnt), 2),
    parameter('w', "SPUC", qrx::kMfndNoLimit, Place::kCounts, offsetof(Entry, storage_provision_unit_cnt), 4),
    parameter('v', "QP", 256, Place::kQos, offsetof(Entry, QOS) + offsetof(Qos, qos_policy), 1),
    qosNumber('u', "PRBIM", offsetof(Qos, reserved_read_bandwidth_in_MB)),
    qosNumber('t', "PWBIM", offsetof(Qos, reserved_write_bandwidth_in_MB)),
    qosNumber('r', "LRBIM", offsetof(Qos, limit_read_bandwidth_in_MB)),
    qosNumber('q', "LWBIM", offsetof(Qos, limit_write_bandwidth_in_MB)),
    qosNumber('p', "RRRI", offsetof(Qos, reserve_radnom_read_iops)),
    qosNumber('o', "RRWI", offsetof(Qos, reserve_random_write_iops)),
    qosNumber('n', "LRRI", offsetof(Qos, limit_random_read_iops)),
    qosNumber('m', "LRWI", offsetof(Qos, limit_random_write_iops)),
    parameter('l', "CCPEC", qrx::kMfndId, Place::kEntry, offsetof(Entry, ccid), 2),
});

constexpr auto kLong = [] {
    std::array<option, kRows.size() + 4> rows{};
    std::size_t count = 0;
    for (const Row& row : kRows) {
        rows[count++] = {row.name, required_argument, nullptr, row.rule.letter};
    }
    rows[count++] = {"SN", required_argument, nullptr, 'k'};
    rows[count++] = qrx::kOutputRow;
    rows[count++] = qrx::kHelpRow;
    rows[count] = qrx::kEndRow;
    return rows;
}();

// What was given: a value for each row, 0 for those that were not, and the serial number.
struct Wish {
    std::array<QRX_U32, kRows.size()> values{};
    std::array<QRX_U8, kSerialLetters> serial{};

    [[nodiscard]] QRX_U32 of(char letter) const { return values.at(indexOf(letter)); }

    static std::size_t indexOf(int letter)
    {
        std::size_t index = 0;
        while (index < kRows.size() && kRows[index].rule.letter != letter) {
            ++index;
        }
        return index;
    }
};

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    if (letter == 'k') {
        return qrx::FreeText(word).store('s', wish.serial, 0);  // the complaint names the other option
    }
    const std::size_t index = Wish::indexOf(letter);
    return qrx::readMfndNumber(word, kRows.at(index).rule, wish.values.at(index));
}

// Fills the entry at the head of the page. Its flags stay 0: what `-f` says is what is copied.
void compose(const Wish& wish, std::span<QRX_U8, qrx::wire::kPageSize> page)
{
    const QRX_U32 flag = wish.of('f');
    const bool counts = flag == 1 || flag == 3;
    const bool qos = flag == 2 || flag == 3;
    for (std::size_t i = 0; i < kRows.size(); ++i) {
        const Row& row = kRows[i];
        if (row.place == Place::kEntry || (row.place == Place::kCounts && counts) ||
            (row.place == Place::kQos && qos)) {
            std::memcpy(page.data() + row.offset, &wish.values[i], row.size);
        }
    }
    (void)qrx::wire::write(page, offsetof(Entry, sn), wish.serial);
}

// The option that the selector cannot do without and that is missing, or nothing.
char missing(const qrx::OptionScan& scan, QRX_U32 selector)
{
    if ((selector == qrx::kMfndUpdate || selector == qrx::kMfndDelete) && !scan.has('i')) {
        return 'i';
    }
    return selector == qrx::kMfndReset && !scan.has('c') ? 'c' : '\0';
}

}  // namespace

int doMFND_manage(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong.data());
    Wish wish;
    if (const auto result =
            qrx::readOptions(scan, pCmdInfo, kKnown, 0, [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated(kKnown)) {
        return qrx::duplicateOption();
    }
    if (!scan.has('s')) {
        return qrx::optionRequired(pCmdInfo, 's');
    }
    const auto selector = static_cast<QRX_U8>(wish.of('s'));
    if (const char letter = missing(scan, selector)) {
        return qrx::optionRequired(pCmdInfo, letter);
    }
    if (selector > qrx::kMfndReset) {
        std::printf("SEL is not support, sel=0x%x\n", selector);
        return 0;
    }
    qrx::AdminCommand command(qrx::kMfndManage);
    command.word(10, qrx::mfndWord(qrx::kMfndManageChild, static_cast<QRX_U16>(wish.of('i')), selector));
    if (selector == qrx::kMfndReset) {
        command.word(11, static_cast<QRX_U8>(wish.of('c')));
    }
    command.flag(0x401);
    command.debug();
    std::array<QRX_U8, qrx::wire::kPageSize> page{};
    compose(wish, page);
    qrx::debugDump(page);
    return qrx::reportCode(command.transmit(page), "mfnd_manage command");
}
