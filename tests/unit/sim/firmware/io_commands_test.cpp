// I/O commands: bounds, data that stays, and the counters of the health log.
#include <cerrno>

#include "tests/unit/sim/firmware/rig.h"

namespace qrx::sim {

namespace {

class Io : public testing::Test {
protected:
    Completion io(QRX_U8 opcode, QRX_U64 lba, QRX_U32 sectors, std::span<QRX_U8> data, QRX_U32 nsid = 1, Node node = {})
    {
        nvme_admin_cmd command{};
        command.opcode = opcode;
        command.nsid = nsid;
        command.cdw10 = static_cast<QRX_U32>(lba);
        command.cdw11 = static_cast<QRX_U32>(lba >> 32);
        command.cdw12 = sectors - 1;
        return rig_.machine().io(node, command, data);
    }

    std::array<QRX_U8, 1024> pattern_ = [] {
        std::array<QRX_U8, 1024> bytes{};
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            bytes[i] = static_cast<QRX_U8>(i * 7 + 1);
        }
        return bytes;
    }();
    std::array<QRX_U8, 1024> buffer_{};
    Rig rig_ = Rig::of_text(R"({"controllers": [{"drives": [{"id": 0}],
        "virtual_disks": [{"id": 0, "raid_mode": "raid0", "members": [0]}],
        "namespaces": [{"nsid": 1, "sectors": 5000000000}, {"nsid": 2, "sectors": 8, "sector_size": 4096},
                       {"nsid": 3, "sectors": 8, "active": false}]}]})");
};

TEST_F(Io, WhatIsWrittenIsRead)
{
    EXPECT_EQ(io(1, 4999999998, 2, pattern_).status, kGood);
    EXPECT_EQ(io(2, 4999999998, 2, buffer_).status, kGood);
    EXPECT_EQ(buffer_, pattern_);
    EXPECT_EQ(io(2, 4999999997, 2, buffer_).status, kGood);
    EXPECT_EQ(std::count(buffer_.begin(), buffer_.begin() + 512, 0), 512);
    EXPECT_TRUE(std::equal(buffer_.begin() + 512, buffer_.end(), pattern_.begin()));
}

TEST_F(Io, CompareTellsADifference)
{
    EXPECT_EQ(io(1, 5, 2, pattern_).status, kGood);
    EXPECT_EQ(io(5, 5, 2, pattern_).status, kGood);
    pattern_[1023] ^= 1;
    EXPECT_EQ(io(5, 5, 2, pattern_).status, 0x285U);
    EXPECT_EQ(io(5, 900, 2, buffer_).status, kGood) << "never written reads as zeros";
}

TEST_F(Io, WriteZeroesClearsAndTakesNoData)
{
    EXPECT_EQ(io(1, 5, 2, pattern_).status, kGood);
    EXPECT_EQ(io(8, 6, 65536, {}).status, kGood);
    EXPECT_EQ(io(2, 5, 2, buffer_).status, kGood);
    EXPECT_TRUE(std::equal(buffer_.begin(), buffer_.begin() + 512, pattern_.begin()));
    EXPECT_EQ(std::count(buffer_.begin() + 512, buffer_.end(), 0), 512);
    EXPECT_EQ(rig_.controller().namespaces[0].data.sectors.size(), 1U);
    pattern_.fill(0);
    EXPECT_EQ(io(1, 5, 2, pattern_).status, kGood);
    EXPECT_TRUE(rig_.controller().namespaces[0].data.sectors.empty()) << "zeros are not kept";
}

TEST_F(Io, WhatWasMadeUncorrectableCannotBeReadUntilItIsWritten)
{
    const auto sector = std::span(buffer_).first(512);
    EXPECT_EQ(io(1, 4, 2, pattern_).status, kGood);
    EXPECT_EQ(io(4, 5, 2, {}).status, kGood);
    EXPECT_EQ(io(2, 4, 1, sector).status, kGood);
    EXPECT_EQ(io(2, 7, 1, sector).status, kGood);
    for (const QRX_U64 lba : {4U, 5U, 6U}) {
        buffer_.fill(0xA5);
        EXPECT_EQ(io(2, lba, 2, buffer_).status, 0x281U) << lba;
        EXPECT_EQ(std::count(buffer_.begin(), buffer_.end(), 0xA5), 1024) << "nothing is read";
        EXPECT_EQ(io(5, lba, 2, buffer_).status, 0x281U) << lba;
    }
    EXPECT_EQ(io(1, 5, 1, std::span(pattern_).first(512)).status, kGood);
    EXPECT_EQ(io(2, 4, 2, buffer_).status, kGood);
    EXPECT_EQ(io(2, 5, 2, buffer_).status, 0x281U);
    EXPECT_EQ(io(8, 6, 1, {}).status, kGood);
    EXPECT_EQ(io(2, 5, 2, buffer_).status, kGood);
    EXPECT_TRUE(rig_.controller().namespaces[0].data.uncorrectable.empty());
}

TEST_F(Io, RangesOfUncorrectableSectorsJoinAndSplit)
{
    using Ranges = std::map<QRX_U64, QRX_U64>;
    const Ranges& ranges = rig_.controller().namespaces[0].data.uncorrectable;
    io(4, 10, 10, {});
    io(4, 30, 10, {});
    EXPECT_EQ(ranges, (Ranges{{10, 20}, {30, 40}}));
    io(4, 20, 5, {});
    EXPECT_EQ(ranges, (Ranges{{10, 25}, {30, 40}})) << "joins the one before";
    io(4, 26, 4, {});
    EXPECT_EQ(ranges, (Ranges{{10, 25}, {26, 40}})) << "joins the one behind";
    io(4, 25, 1, {});
    EXPECT_EQ(ranges, (Ranges{{10, 40}})) << "joins both";
    io(8, 15, 5, {});
    EXPECT_EQ(ranges, (Ranges{{10, 15}, {20, 40}}));
    io(4, 12, 20, {});
    EXPECT_EQ(ranges, (Ranges{{10, 40}})) << "covers";
    io(8, 5, 10, {});
    io(8, 35, 10, {});
    EXPECT_EQ(ranges, (Ranges{{15, 35}}));
    io(4, 0, 5, {});
    io(8, 0, 100, {});
    EXPECT_EQ(ranges, (Ranges{}));
}

TEST_F(Io, WriteZeroesMayDeallocate)
{
    EXPECT_EQ(io(1, 5, 2, pattern_).status, kGood);
    nvme_admin_cmd command{};
    command.opcode = 8;
    command.nsid = 1;
    command.cdw10 = 5;
    command.cdw12 = 1 | 1U << 25;
    EXPECT_EQ(rig_.machine().io({}, command, {}).status, kGood);
    EXPECT_TRUE(rig_.controller().namespaces[0].data.sectors.empty());
}

TEST_F(Io, BoundsAreKept)
{
    for (const QRX_U8 opcode : {QRX_U8{1}, QRX_U8{2}, QRX_U8{4}, QRX_U8{5}, QRX_U8{8}}) {
        EXPECT_EQ(io(opcode, 4999999999, 2, buffer_).status, 0x080U);
        EXPECT_EQ(io(opcode, 5000000000, 1, buffer_).status, 0x080U);
        EXPECT_EQ(io(opcode, ~0ULL, 2, buffer_).status, 0x080U);
    }
}

TEST_F(Io, DataMustHaveTheLengthOfItsSectors)
{
    EXPECT_EQ(io(2, 0, 1, buffer_).status, 0x004U);
    EXPECT_EQ(io(1, 0, 3, buffer_).status, 0x004U);
    EXPECT_EQ(io(2, 0, 257, buffer_).status, 0x002U) << "more than the largest transfer";
    std::vector<QRX_U8> largest(131072);
    EXPECT_EQ(io(2, 0, 256, largest).status, kGood);
}

TEST_F(Io, NamespacesOfLargeSectors)
{
    std::vector<QRX_U8> sector(4096, 9);
    EXPECT_EQ(io(1, 7, 1, sector, 2).status, kGood);
    sector.assign(4096, 0);
    EXPECT_EQ(io(2, 7, 1, sector, 2).status, kGood);
    EXPECT_EQ(std::count(sector.begin(), sector.end(), 9), 4096);
}

TEST_F(Io, NamespacesThatAreNotThere)
{
    EXPECT_EQ(io(2, 0, 1, buffer_, 0).status, 0x00BU);
    EXPECT_EQ(io(2, 0, 1, buffer_, 33).status, 0x00BU);
    EXPECT_EQ(io(2, 0, 1, buffer_, 3).status, 0x002U) << "not attached";
    EXPECT_EQ(io(2, 0, 1, buffer_, 4).status, 0x002U);
    EXPECT_EQ(io(0, 0, 1, {}, 1).status, kGood);
    EXPECT_EQ(io(0, 0, 1, {}, 0xFFFFFFFF).status, kGood) << "flush of all";
    EXPECT_EQ(io(0, 0, 1, {}, 4).status, 0x002U);
    EXPECT_EQ(io(9, 0, 1, {}, 1).status, 0x001U);
}

TEST_F(Io, ANodeTakesCommandsForItsOwnNamespace)
{
    const auto sector = std::span(buffer_).first(512);
    EXPECT_EQ(io(2, 0, 1, sector, 1, {0, 1}).error, 0);
    EXPECT_EQ(io(2, 0, 1, sector, 2, {0, 1}).error, EINVAL);
    EXPECT_EQ(io(2, 0, 1, sector, 3, {0, 3}).error, ENODEV) << "not attached: no node";
    EXPECT_EQ(io(2, 0, 1, sector, 1, {5, 0}).error, ENODEV);
}

TEST_F(Io, CountersGrow)
{
    const Health before = rig_.controller().health;
    io(1, 0, 2, pattern_);
    io(2, 0, 2, buffer_);
    io(5, 0, 2, buffer_);
    io(8, 0, 2, {});
    Health expected = before;
    expected.host_writes += 2;
    expected.sectors_written += 2;
    expected.host_reads += 2;
    expected.sectors_read += 4;
    EXPECT_EQ(rig_.controller().health, expected);
}

TEST_F(Io, ASectorThatCannotBeReadIsAMediaError)
{
    Health expected = rig_.controller().health;
    io(4, 0, 4, {});
    io(2, 0, 2, buffer_);
    io(5, 0, 2, buffer_);
    expected.media_errors += 2;
    EXPECT_EQ(rig_.controller().health, expected);
}

TEST_F(Io, DataSurvivesSavingAndLoading)
{
    io(1, 4999999998, 2, pattern_);
    io(4, 100, 7, {});
    io(4, 4999999990, 8, {});
    const auto loaded = load_machine(save_machine(rig_.machine()), "state");
    ASSERT_TRUE(loaded) << loaded.error();
    EXPECT_TRUE((*loaded)->parts() == rig_.machine().parts());
    EXPECT_EQ((*loaded)->parts().controllers[0].namespaces[0].data.sectors.size(), 2U);
}

}  // namespace

}  // namespace qrx::sim
