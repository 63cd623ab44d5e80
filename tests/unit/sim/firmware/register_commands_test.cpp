// The registers of the PCIe interfaces.
#include <gmock/gmock.h>

#include "tests/unit/sim/firmware/rig.h"

namespace qrx::sim {

namespace {

constexpr QRX_U32 kInvalidParameter = 0x704;
constexpr QRX_U32 kAddress = 0xE3200000;

QRX_U32 read_word(QRX_U32 id)
{
    return 0x09E0 | id << 16;
}
QRX_U32 write_word(QRX_U32 id)
{
    return 0x0AE0 | id << 16;
}

// The value of a register; the read must succeed and touch 4 bytes alone.
QRX_U32 value_of(Rig& rig, QRX_U32 id, QRX_U32 address)
{
    EXPECT_EQ(rig.vendor(read_word(id), 0, address).status, kGood);
    EXPECT_TRUE(rig.all_from(4, kUntouched));
    return rig.at<QRX_U32>(0);
}

TEST(Registers, HoldWhatWasWrittenEachBehindItsInterface)
{
    Rig rig("raid");
    EXPECT_EQ(value_of(rig, 0, kAddress), 0U);
    EXPECT_EQ(rig.vendor(write_word(0), 0x0086BC1E, kAddress).status, kGood);
    EXPECT_EQ(rig.vendor(write_word(5), 0x11223344, kAddress).status, kGood);
    EXPECT_EQ(rig.vendor(write_word(0), 0x55667788, kAddress + 4).status, kGood);
    EXPECT_EQ(value_of(rig, 0, kAddress), 0x0086BC1EU);
    EXPECT_EQ(value_of(rig, 5, kAddress), 0x11223344U);
    EXPECT_EQ(value_of(rig, 0, kAddress + 4), 0x55667788U);
    EXPECT_EQ(value_of(rig, 2, kAddress), 0U);
    EXPECT_EQ(rig.vendor(write_word(0), 0, kAddress).status, kGood);
    EXPECT_EQ(value_of(rig, 0, kAddress), 0U);
}

TEST(Registers, OfAnInterfaceThatIsNotThereAreRefused)
{
    Rig rig("raid");  // one end point, four root complexes
    for (const QRX_U32 id : {1U, 6U, 255U}) {
        EXPECT_EQ(rig.vendor(read_word(id), 0, kAddress).status, kInvalidParameter) << id;
        EXPECT_TRUE(rig.all_from(0, kUntouched));
        EXPECT_EQ(rig.vendor(write_word(id), 1, kAddress).status, kInvalidParameter) << id;
    }
    EXPECT_TRUE(rig.controller().interfaces.empty());
}

TEST(Registers, StandAtMultiplesOfFour)
{
    Rig rig("raid");
    EXPECT_EQ(rig.vendor(read_word(0), 0, kAddress + 2).status, kInvalidParameter);
    EXPECT_EQ(rig.vendor(write_word(0), 1, kAddress + 1).status, kInvalidParameter);
    EXPECT_TRUE(rig.controller().interfaces.empty());
}

TEST(Registers, NeedRoomForTheAnswer)
{
    Rig rig("raid");
    nvme_admin_cmd command{};
    command.opcode = 0xE2;
    command.cdw12 = read_word(0);
    std::array<QRX_U8, 3> data{};
    EXPECT_EQ(rig.machine().admin({}, command, data).status, 0x002U);
}

TEST(Registers, TellTheLinkOfTheirInterface)
{
    Rig rig = Rig::of_text(R"({"controllers": [{"adapter": {"pcie": [
        {"type": "root-complex", "speed": 4, "width": 2}, {"type": "end-point", "speed": "2.5Gb/s", "width": 1},
        {"type": "root-complex", "speed": "8Gb/s", "width": 8}, {"type": "end-point", "speed": "5Gb/s", "width": 4}
    ]}}]})");
    EXPECT_EQ(value_of(rig, 0, 0xE3203148), 0x00110000U);
    EXPECT_EQ(value_of(rig, 1, 0xE3403148), 0x00420000U);
    EXPECT_EQ(value_of(rig, 2, 0xE2203148), 0x00240000U);
    EXPECT_EQ(value_of(rig, 3, 0xE2403148), 0x00830000U);
    EXPECT_EQ(value_of(rig, 3, 0xE2203148), 0U);  // another interface's place
    EXPECT_EQ(rig.vendor(write_word(2), 0xFFFFFFFF, 0xE2203148).status, kGood);
    EXPECT_EQ(value_of(rig, 2, 0xE2203148), 0x00240000U);
}

TEST(Registers, AreLostWithThePower)
{
    Rig rig("raid");
    EXPECT_EQ(rig.vendor(write_word(2), 7, kAddress).status, kGood);
    rig.machine().controller(0)->reset();
    EXPECT_EQ(value_of(rig, 2, kAddress), 0U);
}

TEST(Registers, AreKeptInTheState)
{
    Rig rig("raid");
    EXPECT_EQ(rig.vendor(write_word(3), 0xFFFFFFFF, 0xFFFFFFFC).status, kGood);
    EXPECT_EQ(rig.vendor(write_word(2), 7, kAddress).status, kGood);
    const std::string saved = save_machine(rig.machine());
    Rig again = Rig::of_text(saved);
    EXPECT_EQ(again.machine().parts(), rig.machine().parts());
    EXPECT_EQ(value_of(again, 3, 0xFFFFFFFC), 0xFFFFFFFFU);
}

TEST(Registers, AreSoManyAndNoMore)
{
    constexpr QRX_U32 kEmptySpace = 0xE4000000;
    Rig rig("raid");
    for (QRX_U32 i = 0; i < PcieInterface::kMostRegisters; ++i) {
        ASSERT_EQ(rig.vendor(write_word(0), i + 1, kEmptySpace + 4 * i).status, kGood);
    }
    EXPECT_EQ(rig.vendor(write_word(0), 1, kEmptySpace - 4).status, 0x701U);
    EXPECT_EQ(rig.vendor(write_word(0), 9, kEmptySpace).status, kGood);
    EXPECT_EQ(rig.vendor(write_word(0), 0, kEmptySpace + 4).status, kGood);
    EXPECT_EQ(rig.vendor(write_word(0), 1, kEmptySpace - 4).status, kGood);
}

std::string refusal(const std::string& interfaces)
{
    return load_machine("{\"controllers\": [{\"interfaces\": [" + interfaces + "]}]}", "x").error();
}

TEST(Registers, InAFileAreChecked)
{
    EXPECT_EQ(refusal(R"({"id": 2}, {"id": 2})"), "x:1: 'id' is the id of an earlier interface");
    EXPECT_EQ(refusal(R"({"registers": [{"address": 6, "value": 1}]})"), "x:1: 'address' is no multiple of 4");
    EXPECT_EQ(refusal(R"({"registers": [{"address": 4, "value": 1}, {"address": 4, "value": 2}]})"),
              "x:1: 'address' occurs twice");
    EXPECT_EQ(refusal(R"({"registers": [{"address": 4, "value": 0}]})"),
              "x:1: 'value' is 0; allowed are 1 to 4294967295");
    EXPECT_EQ(refusal(R"({"registers": [{"address": 4}]})"), "x:1: 'value' is missing");
}

}  // namespace

}  // namespace qrx::sim
