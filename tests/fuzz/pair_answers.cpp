// Fuzzes what the typed calls make of a controller's answers on the pair command road: each writes into no more memory
// than its caller has to give it, and on a failure into none. The first byte chooses the call, the next ones how many
// records or bytes it asks for; the rest is the controller's.
#include <array>
#include <cassert>
#include <functional>
#include <memory>
#include <vector>

#include "api/src/device/common/PairCMDDevice.h"
#include "api/src/interface/adapter.h"
#include "api/src/interface/bga.h"
#include "api/src/interface/dump.h"
#include "api/src/interface/event.h"
#include "api/src/interface/ns.h"
#include "api/src/interface/pd.h"
#include "api/src/interface/vd.h"
#include "tests/fuzz/fuzzed_controller.h"

namespace {

// The pair device of the fuzzed controller, in its place in the table.
class PairDevice {
public:
    PairDevice() : table_(GetDeviceManagementInstance()), fuzzed_(table_->m_devs[0])
    {
        table_->m_devs[0] = CreatePairCMDDeviceInstance(fuzzed_);
    }
    ~PairDevice()
    {
        PDevice pair = table_->m_devs[0];
        pair->closeHandle(pair);
        table_->m_devs[0] = fuzzed_;
    }
    PairDevice(const PairDevice&) = delete;
    PairDevice& operator=(const PairDevice&) = delete;

private:
    PDeviceManagement table_;
    PDevice fuzzed_;
};

struct Wish {
    QRX_U8 count = 0;
    QRX_U16 size = 0;
};

struct Call {
    std::function<std::size_t(Wish)> bytes;  // of the caller's memory
    std::function<QRX_U32(void*, Wish)> carryOut;
    bool changesRequest = false;  // it writes into its own request
};

template <class Id, class Record>
Call record(QRX_U32 (*call)(Id, Record*), bool changesRequest = false)
{
    return {[](Wish) { return sizeof(Record); },
            [call](void* memory, Wish) { return call(0, static_cast<Record*>(memory)); }, changesRequest};
}

template <class List>
Call list(QRX_U32 (*call)(QRX_U8, List*))
{
    return {[](Wish wish) { return sizeof(RequestHeader) + wish.count * (sizeof(List) - sizeof(RequestHeader)); },
            [call](void* memory, Wish wish) {
                auto* request = static_cast<List*>(memory);
                request->header = qrx::oneOf(wish.size);
                request->header.numRequested = wish.count;
                return call(0, request);
            },
            true};
}

const std::vector<Call>& calls()
{
    static const std::vector<Call> all{
        record(QRX_Adapter_GetInfo),
        record(QRX_Adapter_GetConfig),
        record(QRX_Adapter_SetConfig),
        record(QRX_Adapter_LED),
        list(QRX_PD_GetInfo),
        {[](Wish wish) { return sizeof(QRXItem_OEM_Data) + wish.size; },
         [](void* memory, Wish wish) {
             static_cast<PQRXItem_OEM_Data>(memory)->cbSize = wish.size;
             return QRX_PD_OEM(0, static_cast<PQRXItem_OEM_Data>(memory));
         },
         true},
        record(QRX_PD_Import),
        list(QRX_VD_GetInfo),
        list(QRX_VD_GetConfig),
        list(QRX_VD_SetConfig),
        record(QRX_VD_Create, true),
        {[](Wish) { return sizeof(NVME_PreCreate_VD); },
         [](void* memory, Wish) {
             NVME_Create_VD plan{};
             return QRX_VD_QuerySize(0, &plan, static_cast<PNVME_PreCreate_VD>(memory));
         }},
        {[](Wish) { return 0; }, [](void*, Wish wish) { return QRX_VD_Delete(0, wish.size); }},
        record(QRX_VD_Import),
        list(QRX_PD_GetBGAStatus),
        list(QRX_VD_GetBGAStatus),
        {[](Wish) { return 0; }, [](void*, Wish wish) { return QRX_VD_BGAControl(0, wish.size, wish.count); }},
        record(QRX_VD_Migrate),
        record(QRX_Event_Status),
        {[](Wish wish) { return wish.count * sizeof(NVME_NS_Info); },
         [](void* memory, Wish wish) {
             return QRX_NS_GetInfo_VD(0, static_cast<PNVME_NS_Info>(memory), wish.size, wish.count);
         }},
        record(QRX_Dump_Console),
        record(QRX_Dump_Status),
        record(QRX_Get_Dump_Cfg),
        record(QRX_Page_Event),
    };
    return all;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    qrx::fuzz::FuzzedController controller({data, size});
    const Call& call = calls()[controller.nextByte() % calls().size()];
    Wish wish;
    wish.count = controller.nextByte();
    wish.size = static_cast<QRX_U16>(controller.nextByte() | controller.nextByte() << 8U);

    const PairDevice pair;
    const std::size_t bytes = call.bytes(wish);
    const std::unique_ptr<QRX_U8[]> memory(new QRX_U8[bytes]);  // of exactly that size, so that a byte more is seen
    std::fill_n(memory.get(), bytes, QRX_U8{0xC3});
    const QRX_U32 status = call.carryOut(memory.get(), wish);
    assert(status <= 0xFF);
    if (status != 0 && !call.changesRequest) {
        assert(std::all_of(memory.get(), memory.get() + bytes, [](QRX_U8 byte) { return byte == 0xC3; }));
    }
    return 0;
}
