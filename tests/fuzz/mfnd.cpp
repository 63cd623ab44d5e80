// Fuzzes the commands of the multi-function device. Of whatever the controller answers, nothing but printable ASCII and
// line ends comes out; of whatever a text of permissions holds, a list comes out that has the opcodes of the text.
//
// The input: a byte that chooses the command, a text up to a zero byte, and the controller's speech.
#include <algorithm>
#include <cassert>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "cli/Functions/msft/mfnd.h"
#include "tests/fuzz/fuzzed_controller.h"

namespace {

int call(CommandHandler handler, std::vector<std::string> words)
{
    std::vector<char*> argv;
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    Command_Info row = qrx::commandRow("mfnd", handler, "", "");
    return handler(static_cast<int>(words.size()), argv.data(), &row);
}

void run(unsigned which, const std::string& text)
{
    switch (which % 8) {
    case 0:
        call(doMFND_identify, {"mfnd", "-o", "mfnd"});
        break;
    case 1:
        call(doMFND_identify, {"mfnd", "-o", "child", "-i", text});
        break;
    case 2:
        call(doMFND_event, {"mfnd"});
        break;
    case 3:
        call(doMFND_child_ctrl_log_page, {"mfnd", "-i", "1", "-d", "2", "-l", text});
        break;
    case 4:
        call(doMFND_cmdpermission, {"mfnd", "-a", "get"});
        break;
    case 5:
        call(doMFND_cmdpermission, {"mfnd", "-a", "set", "-e", text});
        break;
    case 6:
        call(doMFND_properties, {"mfnd", "-a", "get"});
        break;
    default:
        call(doMFND_manage, {"mfnd", "-s", "0", "-f", "3", "-k", text, "-w", text, "-v", text});
        break;
    }
}

void checkPermissions(const std::string& text)
{
    _MSFT_CHILD_CTRL_PERMISSION_LIST list{};
    const bool good = prepareChildCtrlPermissionData(text.c_str(), &list);
    assert(list.numOfEntries <= (text.size() + 1) / 4);  // "0x1," is the shortest
    assert(!good || list.numOfEntries != 0 || text.find_first_not_of(',') == std::string::npos);
    const auto* const end = std::find_if(std::begin(list.entries), std::end(list.entries), [](const auto& entry) {
        return entry.adminCmdOpcode != 0 || entry.flags != 0;
    });
    assert(list.numOfEntries != 0 || end == std::end(list.entries));
}

bool isHarmless(char c)
{
    return c == '\n' || (c >= ' ' && c <= '~');
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2) {
        return 0;
    }
    const std::uint8_t* const end = std::find(data + 1, data + size, std::uint8_t{0});
    const std::string typed(data + 1, end);
    qrx::fuzz::FuzzedController controller({end, data + size});
    if (typed.size() < 64) {
        checkPermissions(typed);
    }
    char* text = nullptr;
    std::size_t length = 0;
    FILE* const nowhere = stream;
    stream = open_memstream(&text, &length);
    assert(stream != nullptr);
    run(data[0], typed);
    std::fclose(stream);
    stream = nowhere;
    // What the user typed comes back as it is.
    assert(!std::all_of(typed.begin(), typed.end(), isHarmless) || std::all_of(text, text + length, isHarmless));
    std::free(text);
    return 0;
}
