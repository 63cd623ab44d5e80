// Fuzzes what `oemdata` and `dumphba` make of the records that a controller has stored. Whatever it holds, what is
// written is a valid record.
#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/oem.h"
#include "cli/Functions/simple/oem_record.h"
#include "tests/fuzz/fuzzed_controller.h"

namespace {

using qrx::fuzz::FuzzedController;

QRX_U32 sumOfWords(std::span<const QRX_U8> bytes)
{
    QRX_U32 sum = 0;
    for (; bytes.size() >= sizeof(sum); bytes = bytes.subspan(sizeof(sum))) {
        sum += *qrx::wire::read<QRX_U32>(bytes);
    }
    return sum;
}

// Makes of the answer an OEM record with a good signature and checksum; its length stays as it came.
void seal(std::span<QRX_U8> page)
{
    auto record = qrx::wire::read<NVMEOEMData>(page);
    if (!record || record->data_length > page.size()) {
        return;
    }
    std::copy_n(kOemSign, sizeof(record->sign), record->sign);
    record->zerochksum = 0;
    (void)qrx::wire::write(page, 0, *record);
    record->zerochksum = 0U - sumOfWords(page.first(record->data_length));
    (void)qrx::wire::write(page, 0, *record);
}

void inspect(std::span<const QRX_U8> sent)
{
    const auto record = qrx::wire::read<NVMEOEMData>(sent);
    if (sent.empty()) {
        return;
    }
    const bool valid = record && sent.size() == qrx::wire::kPageSize && record->data_length == kOemDataLength &&
                       std::memcmp(record->sign, kOemSign, sizeof(record->sign)) == 0 &&
                       record->data_offset == kOemDataOffset && sumOfWords(sent.first(kOemDataLength)) == 0;
    if (!valid) {
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedController controller({data, size}, seal, inspect);
    const std::uint8_t choice = controller.nextByte();
    dbg_enable = (choice & 0x80) != 0;
    switch (choice & 7) {
    case 0:
        controller.run({"dumphba"});
        break;
    case 1:
        controller.run({"dumphba", "-a", "show"});
        break;
    case 2:
        controller.run({"oemdata", "-v", "1", "-d", "2"});
        break;
    case 3:
        controller.run({"oemdata", "-s", "SERIAL"});
        break;
    case 4:
        controller.run({"oemdata", "-m", "MODEL"});
        break;
    default: {
        std::array<QRX_U8, qrx::wire::kPageSize> page{};
        (void)getoemdata(1, page.data());
        break;
    }
    }
    return 0;
}
