// The pair command road: the two halves, the frame, and every request that is answered.
#include "tests/unit/sim/firmware/pair.h"

namespace qrx::sim {

namespace {

TEST_F(Pair, AdapterInfo)
{
    ask({224, 0}, 0);
    const Controller& controller = rig_.controller();
    EXPECT_EQ(rig_.bytes(8, 160), raw(controller.adapter.record(controller.address)));
    EXPECT_TRUE(rig_.all_from(168, 0));
}

TEST_F(Pair, ConfigIsReadAndWritten)
{
    ask({224, 1}, 0);
    EXPECT_EQ(rig_.bytes(8, 16), raw(rig_.controller().config.record()));
    std::array<QRX_U8, 16> record{};
    record[1] = 32;
    ask({224, 2}, 0, record);
    EXPECT_TRUE(rig_.all_from(8, 0));
    EXPECT_EQ(rig_.controller().config, (AdapterConfig{0, 32}));
    record[1] = 3;
    ask({224, 2}, 4, record);
    ask({224, 2}, 3, std::span(record).first(15));
    EXPECT_EQ(rig_.controller().config, (AdapterConfig{0, 32}));
}

TEST_F(Pair, PdInfoListsFromAnIdOn)
{
    const Controller& controller = rig_.controller();
    ask({225, 0}, 0, list(2, 2));
    EXPECT_EQ(rig_.bytes(8, 16 + 2 * 104), answered(2, 2, 2, 5) + raw(controller.pd_record(*controller.find_drive(2))) +
                                               raw(controller.pd_record(*controller.find_drive(4))));
    EXPECT_TRUE(rig_.all_from(8 + 16 + 2 * 104, 0));
    ask({225, 0}, 0, list(6, 255));
    EXPECT_EQ(rig_.bytes(8, 16 + 104), answered(6, 255, 1, 0) + raw(controller.pd_record(*controller.find_drive(6))));
    ask({225, 0}, 6, list(3, 1));
    ask({225, 0}, 6, list(65535, 1));
    ask({225, 0}, 4, list(0, 0));
    ask({225, 0}, 3, std::span<const QRX_U8>(list(0, 1)).first(15));
}

TEST_F(Pair, VdInfoListsFromAnIdOn)
{
    const Controller& controller = rig_.controller();
    ask({226, 0}, 0, list(1, 1));
    EXPECT_EQ(rig_.bytes(8, 16 + 180), answered(1, 1, 1, 2) + raw(controller.vd_record(controller.virtual_disks[1])));
    EXPECT_TRUE(rig_.all_from(8 + 16 + 180, 0));
    ask({226, 0}, 7, list(3, 1));
    ask({226, 0}, 4, list(0, 0));
    ask({226, 0}, 3);
}

TEST_F(Pair, VdConfigTellsIdAndName)
{
    ask({226, 1}, 0, list(2, 1));
    NVME_VD_Config config{};
    config.ID = 2;
    std::memcpy(config.Name, "VD_2", 4);
    EXPECT_EQ(rig_.bytes(8, 16 + 24), answered(2, 1, 1, 3) + raw(config));
    ask({226, 1}, 7, list(9, 1));
    ask({226, 1}, 3);
}

TEST_F(Pair, BackgroundStatusOfDrivesAndVirtualDisks)
{
    ask({227, 2}, 0, list(1, 2));
    EXPECT_EQ(rig_.bytes(8, 16 + 16), answered(1, 2, 2, 3) + std::string("\0\0\1\0\0\0\0\0\0\3\2\x3d\1\0\0\0", 16));
    ask({227, 2}, 7, list(5, 1));
    ask({227, 1}, 0, list(1, 1));
    EXPECT_EQ(rig_.bytes(8, 16 + 8), answered(1, 1, 1, 2) + std::string("\0\0\1\0\0\0\0\0", 8));
    ask({227, 1}, 6, list(3, 1));
    ask({227, 1}, 3);
    ask({227, 2}, 3);
}

TEST_F(Pair, BackgroundStatusOfAPatrolledDrive)
{
    Rig rig("gallery");
    auto bytes = frame({227, 1}, list(1, 1));
    EXPECT_EQ(rig.machine().admin({2, 0}, half(0xCB), bytes).status, kGood);
    EXPECT_EQ(rig.admin(half(0xCE), {2, 0}).status, kGood);
    EXPECT_EQ(rig.bytes(0, 32), envelope(0) + answered(1, 1, 1, 2) + std::string("\0\6\1\x50\1\0\0\0", 8));
}

TEST_F(Pair, NamespacesOfAVirtualDisk)
{
    const Controller& controller = rig_.controller();
    ask({229, 1, 1}, 0);
    EXPECT_EQ(rig_.bytes(8, 96), raw(controller.ns_record(controller.namespaces[1])));
    EXPECT_TRUE(rig_.all_from(8 + 96, 0));
    ask({229, 1, 255}, 0);
    EXPECT_EQ(rig_.bytes(8 + 2 * 96, 96), raw(controller.ns_record(controller.namespaces[2])));
    ask({229, 1, 3}, 7);
    ask({229, 1, 256}, 7);
}

TEST_F(Pair, AListHoldsAsManyRecordsAsFit)
{
    // Every id up to the most that a machine has, so that records are left over.
    std::string drives;
    for (int id = 0; id < 64; ++id) {
        drives += (id == 0 ? "" : ",") + std::string("{\"id\": ") + std::to_string(id) + "}";
    }
    rig_ = Rig::of_text("{\"controllers\": [{\"adapter\": {\"ports\": 64}, \"drives\": [" + drives + "]}]}");
    ask({225, 0}, 0, list(0, 64));
    EXPECT_EQ(rig_.bytes(8, 16), answered(0, 64, 39, 39));
    ask({225, 0}, 0, list(39, 64));
    EXPECT_EQ(rig_.bytes(8, 16), answered(39, 64, 25, 0));
}

TEST_F(Pair, LedOfAnEndPoint)
{
    NVME_LED led{};
    led.status = 3;
    ask({224, 7}, 0, bytes_of(led));
    EXPECT_EQ(rig_.controller().board.led(kPcieEndPoint, 0), 3);
    led.status = 4;
    ask({224, 7}, 4, bytes_of(led));
    led.status = 1;
    led.id = 9;
    ask({224, 7}, 4, bytes_of(led));
    ask({224, 7}, 3, std::span<const QRX_U8>(bytes_of(led)).first(7));
    EXPECT_EQ(rig_.controller().board.led(kPcieEndPoint, 0), 3);
}

TEST_F(Pair, AnOemItemComesBackAsItWasSent)
{
    std::vector<QRX_U8> item(17 + 300, 0x5A);
    const QRX_U8 head[] = {2, 0, 300 & 0xFF, 300 >> 8};
    std::copy(std::begin(head), std::end(head), item.begin());
    ask({225, 3}, 0, item);
    EXPECT_EQ(rig_.bytes(8, item.size()), std::string(item.begin(), item.end()));
    EXPECT_TRUE(rig_.all_from(8 + item.size(), 0));
    EXPECT_EQ(rig_.controller().events.entries.back().sentence(), "PD 2 got an OEM item of 300 bytes");
    ask({225, 3}, 3, std::span(item).first(316));
    item[2] = 45;
    ask({225, 3}, 3, item);
    ask({225, 3}, 3, std::span(item).first(16));
    const std::vector<QRX_U8> nowhere = [] {
        std::vector<QRX_U8> bytes(17);
        bytes[0] = 3;
        return bytes;
    }();
    ask({225, 3}, 6, nowhere);
}

TEST_F(Pair, RequestsThatAreNotAnsweredAreNotSupported)
{
    ask({224, 3}, 5);
    ask({228, 0}, 5);
    ask({254, 5}, 5);
    ask({0}, 5);
    ask({224 + 0x100, 0}, 5);
    ask({224, 0x100}, 5);
    ask({0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF}, 5);
}

TEST_F(Pair, WithoutRaidTheRaidRequestsAreNotSupported)
{
    Rig rig("jbof");
    const NVME_Create_VD long_enough{};
    for (const auto& words : {std::pair(224, 1), std::pair(224, 2), std::pair(226, 0), std::pair(226, 1),
                              std::pair(226, 2), std::pair(226, 3), std::pair(226, 4), std::pair(226, 6),
                              std::pair(227, 2), std::pair(227, 4), std::pair(227, 6), std::pair(227, 7),
                              std::pair(227, 8), std::pair(227, 9), std::pair(227, 10), std::pair(229, 1)}) {
        auto bytes =
            frame({static_cast<QRX_U16>(words.first), static_cast<QRX_U16>(words.second)}, bytes_of(long_enough));
        EXPECT_EQ(rig.machine().admin({}, half(0xCB), bytes).status, kGood);
        EXPECT_EQ(rig.admin(half(0xCE)).status, kGood);
        EXPECT_EQ(rig.bytes(0, 8), envelope(5)) << words.first << ", " << words.second;
    }
    auto bytes = frame({225, 0}, list(0, 1));
    EXPECT_EQ(rig.machine().admin({}, half(0xCB), bytes).status, kGood);
    EXPECT_EQ(rig.admin(half(0xCE)).status, kGood);
    EXPECT_EQ(rig.bytes(0, 8), envelope(0));
}

TEST_F(Pair, AReceiveNeedsASend)
{
    EXPECT_EQ(receive(), 0x00CU);
    EXPECT_TRUE(rig_.all_from(0, kUntouched));
    ask({224, 0}, 0);
    EXPECT_EQ(receive(), 0x00CU) << "an answer is given once";
}

TEST_F(Pair, ASecondSendReplacesTheFirst)
{
    EXPECT_EQ(send(frame({0xFFFF})), kGood);
    ask({224, 0}, 0);
}

TEST_F(Pair, BothHalvesNeedTheirWords)
{
    for (const QRX_U8 opcode : {QRX_U8{0xCB}, QRX_U8{0xCE}}) {
        EXPECT_EQ(send(frame({224, 0})), kGood);
        auto bytes = frame({224, 0});
        nvme_admin_cmd command = half(opcode);
        command.cdw10 = 1023;
        EXPECT_EQ(rig_.machine().admin({}, command, bytes).status, 0x002U);
        command = half(opcode);
        command.cdw15 = 0x585250;
        EXPECT_EQ(rig_.machine().admin({}, command, bytes).status, 0x002U);
        EXPECT_EQ(rig_.machine().admin({}, half(opcode), std::span(bytes).first(4095)).status, 0x002U);
    }
}

TEST_F(Pair, AFrameThatIsNoneIsRefusedAndNothingIsLeft)
{
    const auto refused = [&](auto spoil) {
        EXPECT_EQ(send(frame({224, 0})), kGood);
        auto bytes = frame({224, 0});
        spoil(bytes);
        EXPECT_EQ(send(bytes), 0x002U);
        EXPECT_EQ(receive(), 0x00CU);
    };
    refused([](auto& bytes) { bytes[0] = 'q'; });
    refused([](auto& bytes) { bytes[3] = 1; });
    refused([](auto& bytes) { bytes[4] = 0; });
    refused([](auto& bytes) { bytes[4] = 5; });
    refused([](auto& bytes) { bytes[5] = 17; });
    refused([](auto& bytes) {
        bytes[6] = 0xF1;  // 4081 bytes: one more than the page holds
        bytes[7] = 0x0F;
    });
}

TEST_F(Pair, WordsBeyondThoseSentDoNotCount)
{
    auto bytes = frame({224, 0});
    bytes[4] = 1;
    bytes[10] = 7;
    EXPECT_EQ(send(bytes), kGood);
    EXPECT_EQ(receive(), kGood);
    EXPECT_EQ(rig_.bytes(0, 8), envelope(0)) << "224 alone is 224, 0";
}

TEST_F(Pair, ARequestThatWaitsSurvivesSavingAndLoading)
{
    EXPECT_EQ(send(frame({225, 0}, list(0, 1))), kGood);
    const auto loaded = load_machine(save_machine(rig_.machine()), "state");
    ASSERT_TRUE(loaded) << loaded.error();
    EXPECT_TRUE((*loaded)->parts() == rig_.machine().parts());
    EXPECT_EQ((*loaded)->admin({}, half(0xCE), rig_.page).status, kGood);
    EXPECT_EQ(rig_.bytes(0, 24), envelope(0) + answered(0, 1, 1, 1));
}

}  // namespace

}  // namespace qrx::sim
