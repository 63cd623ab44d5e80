// Fuzzes the pages that a device fills and `smart`, `identify` and `passthru` print. Of whatever a device says, nothing
// but printable ASCII and line ends may come out: the rest could steer a terminal.
//
// The input is a byte that chooses the printer, and the device's page.
#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "api/src/interface/globals.h"
#include "api/src/interface/wire/buffer.h"
#include "cli/Functions/smart/smart.h"
#include "cli/Functions/standard/identify.h"
#include "cli/Public/utility.h"

namespace {

using Page = std::array<QRX_U8, qrx::wire::kPageSize>;

void print(unsigned which, const Page& page)
{
    const auto smart = qrx::wire::read<_qrx_smart_log>(page);
    assert(smart);
    const int hbaMode = (which & 4) != 0 ? 1 : 0;
    switch (which & 3) {
    case 0:
        _showIDDetail(page);
        break;
    case 1:
        _showNSDetail(page);
        break;
    case 2:
        showLogSmartInfo(*smart, hbaMode);
        break;
    default:
        showLogSmartInfo_no_calculator(*smart, hbaMode);
        break;
    }
}

bool isHarmless(char c)
{
    return c == '\n' || (c >= ' ' && c <= '~');
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    Page page{};
    std::copy_n(data + 1, std::min(size - 1, page.size()), page.begin());
    char* text = nullptr;
    std::size_t length = 0;
    stream = open_memstream(&text, &length);
    assert(stream != nullptr);
    print(data[0], page);
    std::fclose(stream);
    stream = nullptr;
    const std::string_view printed(text, length);
    assert(!printed.empty() && printed.back() == '\n');
    assert(std::all_of(printed.begin(), printed.end(), isHarmless));
    std::free(text);
    return 0;
}
