// Format NVM of a controller without RAID.
#include "tests/unit/sim/firmware/rig.h"

namespace qrx::sim {
namespace {

class FormatCommand : public testing::Test {
protected:
    QRX_U32 format(QRX_U32 nsid, QRX_U32 cdw10)
    {
        nvme_admin_cmd command{};
        command.opcode = 0x80;
        command.nsid = nsid;
        command.cdw10 = cdw10;
        return rig.machine().admin({}, command, {}).status;
    }
    Completion io(QRX_U8 opcode, QRX_U32 nsid, std::span<QRX_U8> data)
    {
        nvme_admin_cmd command{};
        command.opcode = opcode;
        command.nsid = nsid;
        return rig.machine().io({}, command, data);
    }
    [[nodiscard]] const Namespace& space(std::size_t index) const { return rig.controller().namespaces.at(index); }

    Rig rig = Rig::of_text(R"({"controllers": [{"adapter": {"features": ["namespace"], "max_ns": 4},
        "drives": [{"id": 0, "sectors": 8000}, {"id": 1, "failed": true}],
        "namespaces": [{"nsid": 1, "parent_id": 0, "sectors": 4003}, {"nsid": 2, "parent_id": 0, "sectors": 1600},
                       {"nsid": 3, "parent_id": 1}]}]})");
};

TEST_F(FormatCommand, MakesTheNamespaceAnew)
{
    std::vector<QRX_U8> sector(512, 7);
    EXPECT_EQ(io(1, 1, sector).status, kGood);
    EXPECT_EQ(io(1, 2, sector).status, kGood);
    EXPECT_EQ(format(1, 1), kGood);
    EXPECT_EQ(space(0).sector_size, 4096U);
    EXPECT_EQ(space(0).sectors, 500U);
    EXPECT_TRUE(space(0).data == SparseStore{});
    EXPECT_EQ(space(1).sector_size, 512U);
    EXPECT_EQ(space(1).data.sectors.size(), 1U);
    EXPECT_EQ(io(2, 1, sector).status, 0x004U);
    sector.resize(4096);
    EXPECT_EQ(io(2, 1, sector).status, kGood);
    EXPECT_EQ(std::count(sector.begin(), sector.end(), 0), 4096);
    EXPECT_EQ(rig.controller().events.entries.back().text, "formatted with sectors of 4096 bytes");
    EXPECT_EQ(format(1, 0), kGood);
    EXPECT_EQ(space(0).sectors, 4000U);
}

TEST_F(FormatCommand, ErasesAsItIsTold)
{
    for (const QRX_U32 erase : {0U, 1U, 2U}) {
        std::vector<QRX_U8> sector(512, 7);
        EXPECT_EQ(io(1, 2, sector).status, kGood);
        EXPECT_EQ(format(2, erase << 9), kGood);
        EXPECT_TRUE(space(1).data.sectors.empty());
    }
    EXPECT_EQ(format(2, 3U << 9), 0x002U);
}

TEST_F(FormatCommand, Refusals)
{
    EXPECT_EQ(format(0, 0), 0x00BU);
    EXPECT_EQ(format(4, 0), 0x00BU);
    EXPECT_EQ(format(1, 2), 0x10AU) << "no such format";
    for (const QRX_U32 word : {1U << 4, 1U << 5, 1U << 8}) {
        EXPECT_EQ(format(1, word), 0x10AU) << "no metadata";
    }
    EXPECT_EQ(format(3, 0), 0x082U) << "its drive failed";
    EXPECT_EQ(format(0xFFFFFFFF, 1), 0x082U);
    EXPECT_EQ(space(0).sector_size, 512U) << "all or nothing";
}

TEST_F(FormatCommand, AControllerWithRaidHasNone)
{
    rig = Rig("raid");
    EXPECT_EQ(format(1, 0), 0x001U);
    ASSERT_EQ(rig.identify(1).status, kGood);
    EXPECT_EQ(rig.at<nvme_id_ctrl>(0).oacs & 2, 0);
}

TEST_F(FormatCommand, IdentifyTellsTheFormats)
{
    ASSERT_EQ(rig.identify(1).status, kGood);
    EXPECT_EQ(rig.at<nvme_id_ctrl>(0).oacs & 2, 2);
    EXPECT_EQ(format(1, 1), kGood);
    ASSERT_EQ(rig.identify(0, 1).status, kGood);
    const auto id = rig.at<_nvme_id_ns>(0);
    EXPECT_EQ(id.nlbaf, 1);
    EXPECT_EQ(id.flbas, 1);
    EXPECT_EQ(id.lbaf[0].ds, 9);
    EXPECT_EQ(id.lbaf[1].ds, 12);
    EXPECT_EQ(id.nsze, 500U);
}

TEST_F(FormatCommand, WhatIsLeftOfADriveIsReckonedInBytes)
{
    EXPECT_EQ(format(1, 1), kGood);
    // 8000 sectors of 512 bytes, less 500 of 4096 and 1600 of 512
    EXPECT_EQ(rig.vendor(0x000104E5, 0, 2401).status, 0x741U);
    EXPECT_EQ(rig.vendor(0x000104E5, 0, 2400).status, kGood);
}

TEST_F(FormatCommand, TheStateKeepsIt)
{
    EXPECT_EQ(format(1, 1), kGood);
    const std::string text = save_machine(rig.machine());
    rig = Rig::of_text(text);
    EXPECT_EQ(save_machine(rig.machine()), text);
    EXPECT_EQ(space(0).sector_size, 4096U);
}

}  // namespace
}  // namespace qrx::sim
