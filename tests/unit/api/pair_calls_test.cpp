// Every call of the typed interface: its frame, what it stores of the answer, and how it fails.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "api/src/interface/adapter.h"
#include "api/src/interface/bga.h"
#include "api/src/interface/dump.h"
#include "api/src/interface/event.h"
#include "api/src/interface/ns.h"
#include "api/src/interface/pd.h"
#include "api/src/interface/vd.h"
#include "tests/unit/api/pair_script.h"
#include "tests/unit/support/capture.h"

namespace {

using namespace qrx::test;

constexpr QRX_U8 kAdapter = 1;

// The caller's memory: a record at its start, and behind that what no call may touch.
class Memory {
public:
    explicit Memory(const Bytes& record) : words_(16384, 0xC3C3C3C3C3C3C3C3)
    {
        if (!record.empty()) {
            std::memcpy(words_.data(), record.data(), record.size());
        }
    }
    void* start() { return words_.data(); }
    [[nodiscard]] Bytes bytes() const
    {
        Bytes copy(words_.size() * sizeof(words_[0]));
        std::memcpy(copy.data(), words_.data(), copy.size());
        return copy;
    }

private:
    std::vector<QRX_U64> words_;  // so that any record is aligned
};

struct Call {
    const char* name;
    std::vector<QRX_U16> words;
    Bytes record;      // what the caller hands over
    std::size_t sent;  // bytes of it that travel
    std::size_t received;
    std::function<QRX_U32(void*)> carryOut;
    bool alwaysZero = false;
};

// A call that takes a record.
template <class Record>
std::function<QRX_U32(void*)> with(QRX_U32 (*call)(QRX_U8, Record*))
{
    return [call](void* record) { return call(kAdapter, static_cast<Record*>(record)); };
}

template <class Record>
std::function<QRX_U32(void*)> with(QRX_U32 (*call)(QRX_U16, Record*))
{
    return [call](void* record) { return call(kAdapter, static_cast<Record*>(record)); };
}

Bytes list(QRX_U8 count)
{
    return {0, 0, 2, 0, 0x05, 0x03, count, 0, 0, 0, 0, 0, 0, 0, 0, 0};
}

// numRequested records behind a header.
Bytes configs(QRX_U8 count)
{
    Bytes record = list(count);
    const Bytes bodies = pattern(std::size_t{count} * 24, 60);
    record.insert(record.end(), bodies.begin(), bodies.end());
    return record;
}

Bytes oemItem(QRX_U16 cbSize)
{
    Bytes item = pattern(17U + cbSize, 9);
    item[2] = static_cast<QRX_U8>(cbSize);
    item[3] = static_cast<QRX_U8>(cbSize >> 8U);
    return item;
}

std::function<QRX_U32(void*)> namespaces(QRX_U8 count)
{
    return
        [count](void* place) { return QRX_NS_GetInfo_VD(kAdapter, static_cast<PNVME_NS_Info>(place), 0x0102, count); };
}

// A call without a record of the caller's: `sent` is what it makes of its arguments.
Call made(const char* name, std::vector<QRX_U16> words, const Bytes& sent, const std::function<QRX_U32()>& carryOut)
{
    return {name, std::move(words), sent, sent.size(), 0, [carryOut](void*) { return carryOut(); }};
}

std::vector<Call> calls()
{
    return {
        {"Adapter_GetInfo", {224, 0}, {}, 0, 160, with(QRX_Adapter_GetInfo)},
        {"Adapter_GetConfig", {224, 1}, {}, 0, 16, with(QRX_Adapter_GetConfig)},
        {"Adapter_SetConfig", {224, 2}, pattern(16, 20), 16, 0, with(QRX_Adapter_SetConfig)},
        {"Adapter_LED", {224, 7}, pattern(8, 30), 8, 0, with(QRX_Adapter_LED)},
        {"PD_GetInfo", {225, 0}, list(1), 16, 120, with(QRX_PD_GetInfo)},
        {"PD_GetInfo of none", {225, 0}, list(0), 16, 16, with(QRX_PD_GetInfo)},
        {"PD_GetInfo of 3", {225, 0}, list(3), 16, 328, with(QRX_PD_GetInfo)},
        {"PD_GetInfo of all that fit", {225, 0}, list(39), 16, 4072, with(QRX_PD_GetInfo)},
        {"PD_GetInfo of one more", {225, 0}, list(40), 16, 4072, with(QRX_PD_GetInfo)},
        {"PD_GetInfo of 255", {225, 0}, list(255), 16, 4072, with(QRX_PD_GetInfo)},
        {"PD_OEM", {225, 3}, oemItem(0x0102), 275, 275, with(QRX_PD_OEM)},
        {"PD_OEM of a head", {225, 3}, oemItem(0), 17, 17, with(QRX_PD_OEM)},
        {"PD_OEM of all that fits", {225, 3}, oemItem(4063), 4080, 4080, with(QRX_PD_OEM)},
        {"PD_Import", {225, 9}, pattern(16, 40), 16, 0, with(QRX_PD_Import)},
        {"VD_GetInfo", {226, 0}, list(1), 16, 196, with(QRX_VD_GetInfo)},
        {"VD_GetInfo of 2", {226, 0}, list(2), 16, 376, with(QRX_VD_GetInfo)},
        {"VD_GetInfo of all that fit", {226, 0}, list(22), 16, 3976, with(QRX_VD_GetInfo)},
        {"VD_GetInfo of one more", {226, 0}, list(23), 16, 3976, with(QRX_VD_GetInfo)},
        {"VD_GetInfo of 255", {226, 0}, list(255), 16, 3976, with(QRX_VD_GetInfo)},
        {"VD_GetConfig", {226, 1}, list(1), 16, 40, with(QRX_VD_GetConfig)},
        {"VD_GetConfig of all that fit", {226, 1}, list(169), 16, 4072, with(QRX_VD_GetConfig)},
        {"VD_GetConfig of one more", {226, 1}, list(170), 16, 4072, with(QRX_VD_GetConfig)},
        {"VD_SetConfig", {226, 2}, configs(1), 40, 0, with(QRX_VD_SetConfig)},
        {"VD_SetConfig of none", {226, 2}, configs(0), 16, 0, with(QRX_VD_SetConfig)},
        {"VD_SetConfig of all that fit", {226, 2}, configs(169), 4072, 0, with(QRX_VD_SetConfig)},
        {"PD_GetBGAStatus", {227, 1}, list(1), 16, 24, with(QRX_PD_GetBGAStatus)},
        {"PD_GetBGAStatus of 255", {227, 1}, list(255), 16, 2056, with(QRX_PD_GetBGAStatus)},
        {"VD_GetBGAStatus", {227, 2}, list(1), 16, 24, with(QRX_VD_GetBGAStatus)},
        {"VD_GetBGAStatus of 255", {227, 2}, list(255), 16, 2056, with(QRX_VD_GetBGAStatus)},
        made("PD_BGAControl", {227, 3, 0x0708}, {0, 0, 2, 0, 0x0B, 0x0A, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0},
             [] { return QRX_PD_BGAControl(kAdapter, 0x0A0B, 0x0708); }),
        made("VD_BGAControl", {227, 4, 3}, {0, 0, 2, 0, 0x0D, 0x0C, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0},
             [] { return QRX_VD_BGAControl(kAdapter, 0x0C0D, 3); }),
        made("VD_BGAControl without an action", {227, 4, 0}, {0, 0, 2, 0, 0x0D, 0x0C, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0},
             [] { return QRX_VD_BGAControl(kAdapter, 0x0C0D, 0); }),
        made("PD_MP", {227, 5}, {0x0F, 0x0E, 0, 0, 0, 0, 0, 0}, [] { return QRX_PD_MP(kAdapter, 0x0E0F); }),
        made("VD_Init", {227, 6}, {0x13, 0x12, 0x14, 0, 0, 0, 0, 0},
             [] { return QRX_VD_Init(kAdapter, 0x1213, 0x14); }),
        {"VD_Rebuild", {227, 7}, pattern(8, 50), 8, 0, with(QRX_VD_Rebuild)},
        made("VD_Sync", {227, 8}, {0x16, 0x15, 0, 0, 0, 0, 0, 0}, [] { return QRX_VD_Sync(kAdapter, 0x1516); }),
        {"VD_Migrate", {227, 9}, pattern(40, 70), 40, 0, with(QRX_VD_Migrate)},
        made("VD_MP", {227, 10}, {0x18, 0x17, 0, 0, 0, 0, 0, 0}, [] { return QRX_VD_MP(kAdapter, 0x1718); }),
        {"Event_Status", {228, 1}, {}, 0, 8, with(QRX_Event_Status)},
        {"NS_GetInfo_VD", {229, 1, 0x0102}, {}, 0, 96, namespaces(1)},
        {"NS_GetInfo_VD of none", {229, 1, 0x0102}, {}, 0, 0, namespaces(0)},
        {"NS_GetInfo_VD of all that fit", {229, 1, 0x0102}, {}, 0, 4032, namespaces(42)},
        {"NS_GetInfo_VD of one more", {229, 1, 0x0102}, {}, 0, 4032, namespaces(43)},
        {"NS_GetInfo_VD of 255", {229, 1, 0x0102}, {}, 0, 4032, namespaces(255)},
        {"Dump_Console", {254, 0}, {}, 0, 4088, with(QRX_Dump_Console)},
        {"Dump_Status", {254, 1}, {}, 0, 8, with(QRX_Dump_Status)},
        {"Get_Dump_Cfg", {254, 2}, {}, 0, 8, with(QRX_Get_Dump_Cfg)},
        {"Set_Dump_Cfg", {254, 3}, pattern(8, 80), 8, 0, with(QRX_Set_Dump_Cfg)},
        {"Page_Event", {254, 4}, pattern(4096, 90), 4080, 4088, with(QRX_Page_Event), true},
    };
}

class PairCalls : public testing::TestWithParam<Call> {
protected:
    PairCalls()
    {
        machine.addController();
        machine.addController();
    }
    // Carries the call out, which must end with `status`, and leave the memory as it was.
    void fails(QRX_U32 status)
    {
        Memory memory(call.record);
        const Bytes before = memory.bytes();
        EXPECT_EQ(call.carryOut(memory.start()), call.alwaysZero ? 0U : status);
        EXPECT_EQ(memory.bytes(), before);
        EXPECT_EQ(out.text(), "");
        machine.verify();
    }

    const Call& call = GetParam();
    const Bytes sent{call.record.begin(), call.record.begin() + static_cast<long>(call.sent)};
    GlobalsGuard globals;
    ScriptedMachine machine;
    PairScript pair{machine, kAdapter};
    StdoutCapture out;
};

TEST_P(PairCalls, SendsItsFrameAndStoresTheAnswer)
{
    const Bytes answer = pattern(4088, 3);
    pair.expect(call.words, sent, answer);
    Memory memory(call.record);
    Bytes expected = memory.bytes();
    std::copy_n(answer.begin(), call.received, expected.begin());
    EXPECT_EQ(call.carryOut(memory.start()), 0U);
    EXPECT_EQ(memory.bytes(), expected);
    EXPECT_EQ(out.text(), "");
}

TEST_P(PairCalls, ReturnsARefusalAndStoresNothing)
{
    pair.expect(call.words, sent, pattern(4088, 3), 9);
    fails(9);
    pair.expect(call.words, sent, pattern(4088, 3), 255);
    fails(255);
}

TEST_P(PairCalls, AWrongSignatureIsAFailure)
{
    for (std::size_t letter = 0; letter < 3; ++letter) {
        Bytes frame = envelope(pattern(4088, 3));
        frame[letter] = '?';
        pair.expectFrame(call.words, sent, frame);
        fails(1);
    }
}

TEST_P(PairCalls, AFailedHalfIsAFailure)
{
    pair.expectSendFailed(call.words, sent, 0x706);
    fails(1);
    pair.expectReceiveFailed(call.words, sent, 0xFFFFFFFF);
    fails(1);
}

std::string nameOf(const testing::TestParamInfo<Call>& info)
{
    std::string name = info.param.name;
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(All, PairCalls, testing::ValuesIn(calls()), nameOf);

class PairRefusals : public testing::Test {
protected:
    PairRefusals() { machine.addController(); }
    GlobalsGuard globals;
    ScriptedMachine machine;  // which expects no command at all
};

TEST_F(PairRefusals, WhatFitsNoFrameIsNotSent)
{
    for (const QRX_U8 count : Bytes{170, 255}) {
        Memory memory(configs(count));
        const Bytes before = memory.bytes();
        EXPECT_EQ(QRX_VD_SetConfig(0, static_cast<PNVME_VD_Config_Request>(memory.start())), 1U);
        EXPECT_EQ(memory.bytes(), before);
    }
    for (const QRX_U16 cbSize : std::initializer_list<QRX_U16>{4064, 65519, 65535}) {
        Memory memory(oemItem(cbSize));
        const Bytes before = memory.bytes();
        EXPECT_EQ(QRX_PD_OEM(0, static_cast<PQRXItem_OEM_Data>(memory.start())), 1U) << cbSize;
        EXPECT_EQ(memory.bytes(), before);
    }
}

TEST_F(PairRefusals, AControllerThatIsNotThereFailsEveryCall)
{
    NVME_Adapter_Config config{};
    EXPECT_EQ(QRX_Adapter_GetConfig(7, &config), 1U);
    EXPECT_EQ(QRX_Adapter_SetConfig(1088, &config), 1U);
}

TEST_F(PairRefusals, OemDataOfTheAdapterAreNotSupported)
{
    StdoutCapture out;
    EXPECT_EQ(QRX_Adapter_OEM(0, nullptr), 0U);
    EXPECT_EQ(out.text(), "not support now\n");
}

}  // namespace
