// Fuzzes what `info` makes of a controller's answers: every page, of a controller that answers whatever it likes.
#include "api/src/interface/wire/adapter.h"
#include "tests/fuzz/fuzzed_controller.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2 + sizeof(NVME_Adapter_Info)) {
        return 0;
    }
    qrx::fuzz::FuzzedController controller({data, size});
    const std::uint8_t page = controller.nextByte();
    dbg_enable = (page & 0x80) != 0;
    gSpecificAdapterFlag = (page & 0x40) != 0;

    NVME_Adapter_Info info;  // as start-up read it
    std::memcpy(&info, controller.nextBytes(sizeof(info)).data(), sizeof(info));
    g_pAdInfos = &info;

    switch (page & 7) {
    case 0:
        controller.run({"info", "-o", "hba", "--all"});
        break;
    case 1:
        controller.run({"info", "-o", "pd"});
        break;
    case 2:
        controller.run({"info", "-o", "vd"});
        break;
    case 3:
        controller.run({"info", "-o", "ns"});
        break;
    case 4:
        controller.run({"info", "-o", "ns", "-t", "vd", "-v", "0"});
        break;
    case 5:
        controller.run({"info", "-o", "pd", "-i", "1"});
        break;
    case 6:
        controller.run({"info", "-o", "vd", "-i", "1"});
        break;
    default:
        controller.run({"info", "-o", "ns", "-i", "1"});
        break;
    }
    return 0;
}
