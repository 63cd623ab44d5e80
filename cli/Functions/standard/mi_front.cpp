// What the commands that make the head of a message of options share.
#include "cli/Functions/standard/mi_front.h"

#include <algorithm>
#include <cassert>

#include "api/src/interface/globals.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"

namespace qrx::mi {

Front::Front(PCommand_Info row, std::initializer_list<std::span<const NumberOption>> tables, bool receives)
    : row_(row), receives_(receives)
{
    assert(tables.size() <= tables_.size());
    std::copy(tables.begin(), tables.end(), tables_.begin());
    for (const auto& table : tables_) {
        for (const NumberOption& option : table) {
            options_.add(option.letter, option.name);
        }
    }
    options_.add('f', receives ? "outputfile" : "data");
}

std::optional<int> Front::read(int argc, char** argv)
{
    OptionScan scan(argc, argv, options_.letters(), options_.rows());
    if (const auto result =
            readOptions(scan, row_, options_.known(), 0, [&](int letter) { return take(letter, scan.word()); })) {
        return result;
    }
    if (scan.repeated(options_.known())) {
        return duplicateOption();
    }
    if (output_.hasFailed()) {
        return output_.refuse(row_);
    }
    if (input_.hasFailed()) {
        return input_.refuse(row_);
    }
    return std::nullopt;
}

bool Front::take(int letter, const char* word)
{
    if (letter == 'f') {
        (void)(receives_ ? output_.open(word) : input_.open(word));  // a failure is told when all options are good
        return true;
    }
    for (const auto& table : tables_) {
        for (const NumberOption& option : table) {
            if (option.letter == letter) {
                return qrx::take(readExact(word, option.bits), values_[static_cast<unsigned char>(letter)]) ||
                       complain("%s: Invalid %s\n", option.label, option.text);
            }
        }
    }
    return true;
}

nvmemi_message_header Front::header(QRX_U8 type) const
{
    nvmemi_message_header header{};
    header.message_type = value('0') & 0x7F;
    header.IC = value('1') & 1;
    header.ROR = value('2') & 1;
    header.CSI = value('3') & 1;
    header.NVMe_MI_Msg_Type = type & 0xF;
    return header;
}

nvmemi_command_request_message Front::request() const
{
    nvmemi_command_request_message request{};
    request.header = header(kMiCommand);
    request.Opcode = opcode();
    request.Request_DW0 = value('6');
    request.Request_DW1 = value('7');
    return request;
}

void debugHead(const nvmemi_message_header& header, QRX_U8 opcode)
{
    if (dbg_enable == 0) {
        return;
    }
    print("message_type: 0x%x\n", unsigned{header.message_type});
    print("IC: 0x%x\n", unsigned{header.IC});
    print("ROR: 0x%x\n", unsigned{header.ROR});
    print("NVMe_MI_Msg_Type: 0x%x\n", unsigned{header.NVMe_MI_Msg_Type});
    print("CSI: 0x%x\n", unsigned{header.CSI});
    print("Opcode: 0x%x\n", unsigned{opcode});
}

}  // namespace qrx::mi
