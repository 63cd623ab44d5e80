// `aer`.
#include "cli/Functions/simple/simple_aer.h"

#include <cstddef>
#include <iterator>
#include <span>
#include <string>

#include "api/src/interface/agent.h"
#include "api/src/interface/wire/aer.h"
#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"

const char simple_aer_sh[] = ":For show PCIe AER registers of PD";
const char simple_aer_help[] =
    "\n"
    "aer -i <id> [-h]\n"
    "\n"
    "Options:\n"
    "    -i, --id <PD id>\n"
    "    -h, --help\n"
    "Examples:\n"
    "    aer -i 0\n"
    "    Show PCIe Advanced Error Reporting registers of PD 0\n"
    "\n";

namespace {

constexpr char kLetters[] = "i:t:a:\x01:h";
constexpr option kLong[] = {
    {"id", required_argument, nullptr, 'i'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

constexpr QRX_U8 kSubReadAer = 0x0C;

// Bits of a register, counted from its first byte on.
struct Field {
    const char* name;
    unsigned bit;
    unsigned width;
};

constexpr Field kId[] = {{"CID", 0, 16}, {"CVER", 16, 4}, {"NEXT", 20, 12}};
// Status, mask and severity of the same errors differ in how the names end.
constexpr Field kUncorrectable[] = {
    {"DLPE", 4, 1},  {"PT", 12, 1},  {"FCPE", 13, 1}, {"CT", 14, 1},    {"CA", 15, 1},
    {"UC", 16, 1},   {"RO", 17, 1},  {"MT", 18, 1},   {"ECRCE", 19, 1}, {"URE", 20, 1},
    {"ACSV", 21, 1}, {"UIE", 22, 1}, {"MCBT", 23, 1}, {"AOEB", 24, 1},  {"TPBE", 25, 1},
};
constexpr Field kCorrectable[] = {
    {"RE", 0, 1},  {"BT", 6, 1},    {"BD", 7, 1},   {"RR", 8, 1},
    {"RT", 12, 1}, {"ANFE", 13, 1}, {"CIE", 14, 1}, {"HLO", 15, 1},
};
constexpr Field kControl[] = {
    {"FEP", 0, 5}, {"EGC", 5, 1},  {"EGE", 6, 1},   {"ECC", 7, 1},
    {"ECE", 8, 1}, {"MHRC", 9, 1}, {"MHRE", 10, 1}, {"TPLP", 11, 1},
};
constexpr Field kHeaderLog[] = {
    {"HB3", 0, 8},   {"HB2", 8, 8},    {"HB1", 16, 8},   {"HB0", 24, 8},   {"HB7", 32, 8}, {"HB6", 40, 8},
    {"HB5", 48, 8},  {"HB4", 56, 8},   {"HB11", 64, 8},  {"HB10", 72, 8},  {"HB9", 80, 8}, {"HB8", 88, 8},
    {"HB15", 96, 8}, {"HB14", 104, 8}, {"HB13", 112, 8}, {"HB12", 120, 8},
};
constexpr Field kPrefixLog[] = {
    {"TPL1B3", 0, 8},  {"TPL1B2", 8, 8},   {"TPL1B1", 16, 8},  {"TPL1B0", 24, 8},  {"TPL2B3", 32, 8}, {"TPL2B2", 40, 8},
    {"TPL2B1", 48, 8}, {"TPL2B0", 56, 8},  {"TPL3B3", 64, 8},  {"TPL3B2", 72, 8},  {"TPL3B1", 80, 8}, {"TPL3B0", 88, 8},
    {"TPL4B3", 96, 8}, {"TPL4B2", 104, 8}, {"TPL4B1", 112, 8}, {"TPL4B0", 120, 8},
};

struct Register {
    const char* heading;
    std::size_t offset;  // in the record
    std::span<const Field> fields;
    const char* ending;  // of the names
};

constexpr Register kRegisters[] = {
    {" AER Capability ID\n", offsetof(AER_Data, AERID), kId, ""},
    {" AER Uncorrectable Error Status Register\n", offsetof(AER_Data, AERUCES), kUncorrectable, "S"},
    {" AER Uncorrectable Error Status Register\n", offsetof(AER_Data, AERUCEM), kUncorrectable, "M"},
    {" AER Uncorrectable Error Severity Register\n", offsetof(AER_Data, AERUCESEV), kUncorrectable, "SEV"},
    {" AER Correctable Error Status Register\n", offsetof(AER_Data, AERCS), kCorrectable, "S"},
    {" AER Correctable Error Mask Register\n", offsetof(AER_Data, AERCEM), kCorrectable, "M"},
    {" AER Capabilities and Control Register\n", offsetof(AER_Data, AERCC), kControl, ""},
    {" AER Header Log Register\n", offsetof(AER_Data, AERHL), kHeaderLog, ""},
    {" AER TLP Prefix Log Register\n", offsetof(AER_Data, AERTLP), kPrefixLog, ""},
};

// The field of the register at `offset` of the payload. No field crosses a 32-bit word.
unsigned valueOf(const qrx::Response& response, std::size_t offset, const Field& field)
{
    constexpr unsigned kWordBits = 32;
    const auto word = response.record<QRX_U32>(offset + field.bit / kWordBits * sizeof(QRX_U32));
    return word.value_or(0) >> field.bit % kWordBits & ((1U << field.width) - 1);
}

void showRegisters(const qrx::Response& response)
{
    for (const Register& row : kRegisters) {
        qrx::print("%s", row.heading);
        for (const Field& field : row.fields) {
            const std::string name = std::string(field.name) + row.ending;
            qrx::print("   %-8s: 0x%x\n", name.c_str(), valueOf(response, row.offset, field));
        }
    }
}

}  // namespace

int get_pd_aer(QRX_U32 pd_id)
{
    const auto command = qrx::vendorCommand(kGroupPd, kSubReadAer).word(10, qrx::kWholePage).word(14, pd_id);
    command.debug();
    qrx::Response response;
    if (const int status = command.receive(response.bytes())) {
        return qrx::refuse(status, "Read aer failed.\n");
    }
    const QRX_U8 verdict = response.checkSign() ? response.status() : QRX_U8{1};
    if (verdict != 0) {
        if (dbg_enable != 0) {
            qrx::print("Fail, status:\n");
        }
        return qrx::refuse(verdict, "Fail:%s\n", _vcErrorMessage(verdict));
    }
    showRegisters(response);
    return 0;
}

int doSaer(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    QRX_U32 id = 0;
    if (const auto result = qrx::readOptions(scan, pCmdInfo, "i", 0, [&](int) {
            return qrx::take(qrx::readId(scan.word()), id) || qrx::complain("-i : invalid pd id '%s'\n", scan.word());
        })) {
        return *result;
    }
    if (!scan.has('i')) {
        return qrx::optionRequired(pCmdInfo, 'i');
    }
    if (scan.repeated("i")) {
        return qrx::duplicateOption();
    }
    return get_pd_aer(id);
}
