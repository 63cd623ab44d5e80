// `oemdata`: its options, and the record that it writes.
#include "cli/Functions/simple/simple_oemdata.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <string_view>

#include "cli/Functions/simple/oem_record.h"
#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/debug_dump.h"
#include "cli/Public/frame/free_text.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"

const char simple_oemdata_help[] = R"(
oemdata [-v <SubsystemVendor ID/SVID> -d <SubDevice ID/SDID> -s <Serial Number> -m <Model Number>] [-h]

Options:
    -v, --ssvid <SubsystemVendor ID/SVID>
    -d, --sdid <SubDevice ID/SDID>
    -s, --sn <Serial Number>
    -m, --model <Model Number>
    -h,  --help
Examples:
    oemdata -v 0x5c2e -d 0x3319 -s serialnumber -m model
    Write Subvendor ID 0x5c2e, SubDevice ID 0x3319, serial number 'serialnumber' and model number 'model' into OEM data

)";

namespace {

using qrx::complain;
using qrx::FreeText;
using qrx::readHexOrNumber;
using qrx::take;

// The options of an earlier, wider record are still known to the scanner: -n, -c, -o, -i, -l, -f, -e, -r, -1, -y, -z,
// -g and -u show the help, -k, -p, -w and -t are checked and dropped. --read has no short form.
constexpr char kLetters[] = "v:d:s:m:n:c:o:i:l:f:e:r:1:y:z:g:u:t:k:p:w:\x01:h";
constexpr option kLong[] = {
    {"ssvid", required_argument, nullptr, 'v'},
    {"sdid", required_argument, nullptr, 'd'},
    {"sn", required_argument, nullptr, 's'},
    {"model", required_argument, nullptr, 'm'},
    {"nsid", required_argument, nullptr, 'n'},
    {"cid", required_argument, nullptr, 'c'},
    {"object", required_argument, nullptr, 'o'},
    {"vid", required_argument, nullptr, 'i'},
    {"did", required_argument, nullptr, 'l'},
    {"fw", required_argument, nullptr, 'f'},
    {"ieee", required_argument, nullptr, 'e'},
    {"req", required_argument, nullptr, 'r'},
    {"inputfile", required_argument, nullptr, '1'},
    {"offset", required_argument, nullptr, 'y'},
    {"len", required_argument, nullptr, 'z'},
    {"nguid", required_argument, nullptr, 'g'},
    {"eui64", required_argument, nullptr, 'u'},
    {"type", required_argument, nullptr, 't'},
    {"sku", required_argument, nullptr, 'k'},
    {"pn", required_argument, nullptr, 'p'},
    {"wwid", required_argument, nullptr, 'w'},
    {"read", no_argument, nullptr, 'R'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};
constexpr std::string_view kKnown = "vdsmkpwtR";

constexpr qrx::Keyword kTypes[] = {{"pf", 0}, {"ns", 1}};
constexpr std::size_t kSkuMax = 10;
constexpr int kWwidMax = 8;
constexpr std::string_view DEFAULT_SERIAL_NUMBER = "                    ";
constexpr std::string_view DEFAULT_MODEL_NAME = "Tessura_NVMe_Controller                 ";
static_assert(DEFAULT_SERIAL_NUMBER.size() == sizeof(NVMEOEMData::SN));
static_assert(DEFAULT_MODEL_NAME.size() == sizeof(NVMEOEMData::model));

// What the record is to hold.
struct Wish {
    QRX_U16 SVID = 0;
    QRX_U16 SDID = 0;
    std::array<QRX_U8, sizeof(NVMEOEMData::SN)> sn{};
    std::array<QRX_U8, sizeof(NVMEOEMData::model)> model{};
};

// The text of an option that has no effect any more.
bool checkShort(int letter, const char* word)
{
    const FreeText text(word);
    return text.good() && text.fits(letter, kSkuMax);
}

// Counts the bytes of a text such as 01:23:45, of which nothing is kept. Too many are worth a warning.
bool countBytes(const char* word)
{
    const FreeText text(word);
    const auto isDigit = [&](std::size_t at) {
        return at < text.view().size() && std::isxdigit(static_cast<unsigned char>(text.view()[at])) != 0;
    };
    int bytes = 0;
    for (std::size_t at = 0; at < text.view().size(); at += 3) {
        bytes += isDigit(at) && isDigit(at + 1) ? 1 : 0;
    }
    if (bytes > kWwidMax) {
        qrx::print("-w : out off range, it only allow 8 bytes data\n");
    }
    return text.good();
}

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 'v':
        return take(readHexOrNumber(word), wish.SVID) || complain("-v : invalid sub vendor id '%s'\n", word);
    case 'd':
        return take(readHexOrNumber(word), wish.SDID) || complain("-d : invalid sub device id '%s'\n", word);
    case 's':
        return FreeText(word).store(letter, wish.sn, ' ');
    case 'm':
        return FreeText(word).store(letter, wish.model, ' ');
    case 'k':
    case 'p':
        return checkShort(letter, word);
    case 'w':
        return countBytes(word);
    case 't':
        return qrx::keyword(word, kTypes) || complain("-t : invalid option '%s'.\n", word);
    default:
        return true;  // --read
    }
}

// The record as it is to be, of which the ids and the checksum are still missing.
NVMEOEMData startFrom(const NVMEOEMData& stored, int found)
{
    NVMEOEMData record{};
    if (found == kOemValid) {
        std::copy(std::begin(stored.SN), std::end(stored.SN), record.SN);
        std::copy(std::begin(stored.model), std::end(stored.model), record.model);
    } else {
        std::copy(DEFAULT_SERIAL_NUMBER.begin(), DEFAULT_SERIAL_NUMBER.end(), record.SN);
        std::copy(DEFAULT_MODEL_NAME.begin(), DEFAULT_MODEL_NAME.end(), record.model);
    }
    std::copy_n(kOemSign, sizeof(record.sign), record.sign);
    record.data_length = kOemDataLength;
    record.data_offset = kOemDataOffset;
    return record;
}

// Puts the record that is wished for at the head of the page, which holds what was read; what lies behind it stays.
void compose(const qrx::OptionScan& scan, const Wish& wish, int found, std::span<QRX_U8, qrx::wire::kPageSize> page)
{
    NVMEOEMData record = startFrom(*qrx::wire::read<NVMEOEMData>(page), found);
    record.subsystemVID = wish.SVID;
    record.subDevID = wish.SDID;
    if (scan.has('s')) {
        std::copy(wish.sn.begin(), wish.sn.end(), record.SN);
    }
    if (scan.has('m')) {
        std::copy(wish.model.begin(), wish.model.end(), record.model);
    }
    record.zerochksum = __checksumResult(&record, kOemDataLength, 0);
    (void)qrx::wire::write(page, 0, record);
}

int send(std::span<const QRX_U8, qrx::wire::kPageSize> page)
{
    const auto command =
        qrx::vendorCommand(kGroupAdapter, qrx::kSubWriteOem, 0, kVendorWrite).word(10, qrx::kOemWholePage);
    command.debug();
    qrx::debugDump(page.first<sizeof(NVMEOEMData)>());
    if (const int status = command.transmit(page)) {
        return qrx::refuse(status, "Set OEM data failed.(error code: 0x%02x)\n", static_cast<unsigned>(status));
    }
    qrx::print("Set OEM data success.\n");
    reinit_API_Layrer_SUBNQN();
    return 0;
}

}  // namespace

int doSOEMdata(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result =
            qrx::readOptions(scan, pCmdInfo, kKnown, 0, [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("vdsm")) {
        return qrx::duplicateOption();
    }
    QRX_U16 SVID = 0;
    QRX_U16 SDID = 0;
    (void)QRX_Adapter_GetSimpleInfo_SVID_SDID(&SVID, &SDID);
    if (!scan.has('v')) {
        if (SVID == 0) {
            return qrx::optionRequired(pCmdInfo, 'v');
        }
        wish.SVID = SVID;
    }
    if (!scan.has('d')) {
        if (SDID == 0) {
            return qrx::optionRequired(pCmdInfo, 'd');
        }
        wish.SDID = SDID;
    }
    std::array<QRX_U8, qrx::wire::kPageSize> page{};
    const int found = getoemdata(0, page.data());
    compose(scan, wish, found, page);
    return send(page);
}
