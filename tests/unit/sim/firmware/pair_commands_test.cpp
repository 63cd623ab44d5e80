// The pair command road: the two halves, the frame, and every request that is answered.
#include <cstring>

#include "tests/unit/sim/firmware/rig.h"

namespace qrx::sim {

namespace {

class Pair : public testing::Test {
protected:
    static nvme_admin_cmd half(QRX_U8 opcode)
    {
        nvme_admin_cmd command{};
        command.opcode = opcode;
        command.cdw10 = 1024;
        command.cdw15 = 0x585251;
        return command;
    }
    static std::array<QRX_U8, 4096> frame(std::initializer_list<QRX_U16> words, std::span<const QRX_U8> record = {})
    {
        std::array<QRX_U8, 4096> bytes{};
        _NVMESendData head{};
        std::memcpy(head.sign, "QRX", 4);
        head.cmd_length = static_cast<QRX_U8>(words.size());
        head.data_offset = 16;
        head.data_length = static_cast<QRX_U16>(record.size());
        std::copy_n(words.begin(), std::min<std::size_t>(words.size(), 4), std::begin(head.vendor_cmd));
        std::memcpy(bytes.data(), &head, sizeof(head));
        std::copy(record.begin(), record.end(), bytes.begin() + 16);
        return bytes;
    }
    QRX_U32 send(std::array<QRX_U8, 4096> bytes) { return rig_.machine().admin({}, half(0xCB), bytes).status; }
    QRX_U32 receive() { return rig_.admin(half(0xCE)).status; }

    // A whole pair command. Returns the answer behind its envelope, which must tell `cmd_status`.
    void ask(std::initializer_list<QRX_U16> words, QRX_U8 cmd_status, std::span<const QRX_U8> record = {})
    {
        EXPECT_EQ(send(frame(words, record)), kGood);
        EXPECT_EQ(receive(), kGood);
        EXPECT_EQ(rig_.bytes(0, 8), envelope(cmd_status));
        if (cmd_status != 0) {
            EXPECT_TRUE(rig_.all_from(8, 0));
        }
    }
    static std::array<QRX_U8, 16> list(QRX_U16 start, QRX_U8 count)
    {
        RequestHeader header{};
        header.requestType = 2;
        header.start = start;
        header.numRequested = count;
        std::array<QRX_U8, 16> bytes{};
        std::memcpy(bytes.data(), &header, sizeof(header));
        return bytes;
    }
    // The head of an answered list.
    static std::string answered(QRX_U16 start, QRX_U8 requested, QRX_U8 returned, QRX_U16 next)
    {
        RequestHeader header{};
        header.requestType = 2;
        header.start = start;
        header.numRequested = requested;
        header.numReturned = returned;
        header.nextStart = next;
        return raw(header);
    }

    Rig rig_{"degraded"};
};

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

TEST_F(Pair, RequestsThatAreNotAnsweredAreNotSupported)
{
    ask({224, 3}, 5);
    ask({228, 1}, 5);
    ask({254, 0}, 5);
    ask({0}, 5);
    ask({0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF}, 5);
}

TEST_F(Pair, WithoutRaidTheRaidRequestsAreNotSupported)
{
    Rig rig("jbof");
    for (const auto& words : {std::pair(224, 1), std::pair(224, 2), std::pair(226, 0), std::pair(226, 1),
                              std::pair(227, 2), std::pair(229, 1)}) {
        auto bytes = frame({static_cast<QRX_U16>(words.first), static_cast<QRX_U16>(words.second)}, list(0, 1));
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
    EXPECT_EQ(send(frame({254, 0})), kGood);
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

// The bytes of a record.
template <class Record>
std::vector<QRX_U8> bytes_of(const Record& record)
{
    std::vector<QRX_U8> bytes(sizeof(record));
    std::memcpy(bytes.data(), &record, sizeof(record));
    return bytes;
}

class PairStorage : public Pair {
public:
    PairStorage() { rig_ = Rig("lab"); }

    static NVME_Create_VD request(QRX_U8 mode, std::initializer_list<QRX_U16> members)
    {
        NVME_Create_VD create{};
        create.RAIDMode = mode;
        create.MemberCount = static_cast<QRX_U8>(members.size());
        create.StripeBlockSize = 512;
        std::copy(members.begin(), members.end(), std::begin(create.PDIDs));
        return create;
    }
    const VirtualDisk& vd() const { return rig_.controller().virtual_disks.at(0); }
};

TEST_F(PairStorage, CreateTakesNameAndNamespaceSizes)
{
    auto create = request(1, {3, 1});
    std::memcpy(create.Name, "SIXTEEN_LETTERS_", 16);
    create.NSCount = 3;
    create.NSSize[0] = 1000;
    create.NSSize[1] = 0;
    create.NSSize[2] = 8;
    ask({226, 3}, 0, bytes_of(create));
    EXPECT_EQ(vd().name, "SIXTEEN_LETTERS_");
    EXPECT_EQ(vd().stripe, 512);
    EXPECT_EQ(vd().members, (std::vector<QRX_U16>{3, 1}));
    const auto& made = rig_.controller().namespaces;
    ASSERT_EQ(made.size(), 3U);
    EXPECT_EQ(made[0].sectors, 1000U);
    EXPECT_EQ(made[1].sectors, 1875385008U - 1008);
    EXPECT_EQ(made[2].sectors, 8U);
}

TEST_F(PairStorage, QueryTellsTheSizeAndMakesNothing)
{
    auto create = request(0, {0, 1});
    create.QueryLDSize = 1;
    ask({226, 3}, 0, bytes_of(create));
    const auto answer = rig_.at<NVME_PreCreate_VD>(8);
    EXPECT_EQ(answer.SectorSize, 512U);
    EXPECT_EQ(answer.LBA, 2U * 1875385008);
    EXPECT_TRUE(rig_.controller().virtual_disks.empty());
}

TEST_F(PairStorage, CreateIsRefused)
{
    ask({226, 3}, 61, bytes_of(request(1, {0})));
    ask({226, 3}, 59, bytes_of(request(1, {0, 0})));
    ask({226, 3}, 3, std::span<const QRX_U8>(bytes_of(request(1, {0, 1}))).first(623));
    auto create = request(1, {0, 1});
    create.MemberCount = 33;
    ask({226, 3}, 61, bytes_of(create));
    create = request(1, {0, 1});
    create.NSCount = 65;
    ask({226, 3}, 74, bytes_of(create));
    create.NSCount = 1;
    create.NSSize[0] = 1875385009;
    ask({226, 3}, 65, bytes_of(create));
    create = request(1, {0, 1});
    create.Name[0] = 7;
    ask({226, 3}, 4, bytes_of(create));
    EXPECT_TRUE(rig_.controller().virtual_disks.empty());
}

TEST_F(PairStorage, LifeOfAVirtualDisk)
{
    ask({226, 3}, 0, bytes_of(request(1, {0, 1})));
    ask({227, 10}, 52, bytes_of(NVME_VD_MP{}));
    NVME_VD_Init init{};
    init.Init_Type = 2;
    ask({227, 6}, 0, bytes_of(init));
    ask({227, 6}, 69, bytes_of(init));
    ask({226, 4}, 66, bytes_of(NVME_VD_Delete{}));
    ask({227, 4, 1}, 0, list(0, 1));
    ask({227, 4, 9}, 68, list(0, 1));
    ask({227, 4, 2}, 0, list(0, 1));
    rig_.machine().advance(std::chrono::hours(1));
    ask({227, 10}, 0, bytes_of(NVME_VD_MP{}));
    ask({227, 4, 3}, 0, list(0, 1));
    ask({227, 4, 3}, 70, list(0, 1));
    EXPECT_FALSE(rig_.machine().controller(0)->fail_drive(0));
    ask({227, 7}, 0, bytes_of(NVME_Rebuild{0, 2, {}}));
    EXPECT_EQ(vd().members, (std::vector<QRX_U16>{2, 1}));
    rig_.machine().advance(std::chrono::hours(1));
    std::array<QRX_U8, 40> config{};
    config[6] = 1;
    std::memcpy(config.data() + 24, "RENAMED", 7);
    ask({226, 2}, 0, config);
    EXPECT_EQ(vd().name, "RENAMED");
    config[16] = 9;
    ask({226, 2}, 7, config);
    ask({226, 4}, 0, bytes_of(NVME_VD_Delete{}));
    ask({226, 4}, 7, bytes_of(NVME_VD_Delete{}));
}

TEST_F(PairStorage, MediaPatrolOfADrive)
{
    ask({227, 5}, 0, bytes_of(NVME_PD_MP{}));
    ask({227, 5}, 69, bytes_of(NVME_PD_MP{}));
    ask({226, 3}, 69, bytes_of(request(1, {0, 1})));
    ask({227, 3, 3}, 0, list(0, 1));
    ask({227, 3, 3}, 70, list(0, 1));
    ask({227, 3, 3}, 6, list(30, 1));
    NVME_PD_MP failed{};
    failed.PDID = 11;
    ask({227, 5}, 1, bytes_of(failed));
}

TEST_F(PairStorage, Import)
{
    rig_ = Rig("importable");
    ask({226, 6}, 0, list(1, 1));
    ask({226, 6}, 57, list(1, 1));
    ask({226, 6}, 58, list(2, 1));
    ask({225, 9}, 5, list(1, 1));
}

TEST_F(PairStorage, SynchronizationAndMigrationAreNotSupported)
{
    ask({227, 8}, 5, bytes_of(NVME_VD_Sync{}));
    ask({227, 9}, 5, bytes_of(NVME_Migrate{}));
}

}  // namespace

}  // namespace qrx::sim
