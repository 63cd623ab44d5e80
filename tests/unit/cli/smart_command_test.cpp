// `smart`.
#include "cli/Functions/smart/smart.h"

#include <cstring>

#include "tests/unit/cli/health_texts.h"
#include "tests/unit/cli/storage_fixture.h"

namespace {

using namespace qrx::test;

const Outcome kDuplicate{1, "Duplicated option specified.\n"};
const Outcome kRequired{0, "smart: option -i is required\n"};

void set(QRX_U8 (&counter)[16], QRX_U64 low, QRX_U64 high = 0)
{
    std::memcpy(counter, &low, 8);
    std::memcpy(counter + 8, &high, 8);
}

// A log with a value of its own in every field.
_qrx_smart_log someLog()
{
    _qrx_smart_log log{};
    log.critical_warning = 0x05;
    log.temperature[0] = 0x3B;  // 315 Kelvin
    log.temperature[1] = 0x01;
    log.avail_spare = 97;
    log.spare_thresh = 11;
    log.percent_used = 203;
    set(log.data_units_read, 2000000);
    set(log.data_units_written, 1001);
    set(log.host_reads, 30003);
    set(log.host_writes, 40004);
    set(log.ctrl_busy_time, 505);
    set(log.power_cycles, 66);
    set(log.power_on_hours, 7007);
    set(log.unsafe_shutdowns, 8);
    set(log.media_errors, 0, 1);  // 2^64
    set(log.num_err_log_entries, 10);
    log.warning_temp_time = 0x80000001;
    log.critical_comp_time = 12;
    log.temp_sensor[0] = 0xAAAA;
    log.tmt1tc = 13;
    log.tmt2tc = 14;
    log.ttftmt1 = 15;
    log.ttftmt2 = 0xFFFFFFFF;
    return log;
}

const std::string kHead =
    "\n"
    "NVME SMART Information :\n"
    "Notice: Please refer to NVMe Specific v1.3, Get Log Page - SMART / Health Information Log definition\n"
    "\n"
    "Critical Warning                                      : 0x05\n";
const std::string kSpare =
    "Available Spare                                       : 97%\n"
    "Available Spare Threshold                             : 11%\n"
    "Percentage Used                                       : 203%\n";
const std::string kWarm = "Composite Temperature                                 : 42 Celsius\n";
const std::string kUnits =
    "Data Units Read                                       : 2000000 (1024 GB)\n"
    "Data Units Written                                    : 1001 (1 GB)\n";
const std::string kPlainUnits =
    "Data Units Read                                       : 2000000\n"
    "Data Units Written                                    : 1001\n";
const std::string kRest =
    "Host Read Commands                                    : 30003\n"
    "Host Write Commands                                   : 40004\n"
    "Controller Busy Time                                  : 505\n"
    "Power Cycles                                          : 66\n"
    "Power On Hours                                        : 7007\n"
    "Unsafe Shutdowns                                      : 8\n"
    "Media and Data Integrity Errors                       : 18446744073709551616\n"
    "Num Err Log Entries                                   : 10\n"
    "Warning Composite Temperature Time                    : -2147483647\n"
    "Critical Composite Temperature Time                   : 12\n"
    "Thermal Management Temperature 1 Transition Count     : 13\n"
    "Thermal Management Temperature 2 Transition Count     : 14\n"
    "Total Time For Thermal Management Temperature 1       : 15\n"
    "Total Time For Thermal Management Temperature 2       : -1\n"
    "\n";
const std::string kDiskPage = kHead + kWarm + kSpare + kUnits + kRest;
const std::string kHbaPage = kHead + kWarm + kSpare + "\n";
const std::string kNamespacePage = kHead + kWarm + kSpare + kPlainUnits + kRest;

class SmartCommand : public StorageTest {
protected:
    static Command ofController() { return test_(Command::admin(2, 0xFFFFFFFF, {0x7F0002})); }
    static Command ofNamespace(QRX_U32 nsid)
    {
        return test_(Command::vendor(0x08E5 | nsid << 16).word(9, 512).word(10, 127).flag(0x1601));
    }
    static Command ofDisk(QRX_U32 disk)
    {
        return test_(
            Command::passthru(0xC2).word(1, disk).word(10, 0x7F0002).word(14, 2).word(15, 0xFFFFFFFF).flag(0xC403));
    }

private:
    static Command test_(Command command)
    {
        return std::move(command).receives(512).carries(Bytes(512)).data(bytesOf(someLog())).on(1);
    }
};

TEST_F(SmartCommand, Help)
{
    EXPECT_EQ(command({"smart"}), (Outcome{1, expected::kSmartPage}));
    for (auto words : {Line{"smart", "-h"}, Line{"smart", "--help"}, Line{"smart", "-i", "0", "-h"},
                       Line{"smart", "-u", "1"}, Line{"smart", "-o", "hba", "-o", "hba", "-h"}}) {
        EXPECT_EQ(command(words), (Outcome{0, expected::kSmartPage}));
    }
}

TEST_F(SmartCommand, OfADisk)
{
    machine.expect(ofDisk(3));
    EXPECT_EQ(command({"smart", "-i", "3"}), (Outcome{0, kDiskPage}));
    machine.expect(ofDisk(0x7FFFFFFF));  // not checked against the disks that there are
    EXPECT_EQ(command({"smart", "--pd_id=99999999999", "--output", "x"}), (Outcome{0, kDiskPage}));
    machine.expect(ofDisk(0));
    EXPECT_EQ(command({"smart", "-i", "0", "-n", "7"}), (Outcome{0, kDiskPage}));
}

TEST_F(SmartCommand, OfTheControllerTheFirstLinesAlone)
{
    machine.expect(ofController());
    EXPECT_EQ(command({"smart", "-o", "hba"}), (Outcome{0, kHbaPage}));
    machine.expect(ofController());
    EXPECT_EQ(command({"smart", "--object=HBA"}), (Outcome{0, kHbaPage}));
}

TEST_F(SmartCommand, OfANamespace)
{
    machine.expect(ofNamespace(0x2345));
    EXPECT_EQ(command({"smart", "-o", "ns", "-n", "9029"}), (Outcome{0, kNamespacePage}));
    machine.expect(ofNamespace(5));  // 16 bits of it
    EXPECT_EQ(command({"smart", "-n", "65541", "-o", "NS"}), (Outcome{0, kNamespacePage}));
}

TEST_F(SmartCommand, OfARepeatedNamespaceTheLastOneStands)
{
    machine.expect(ofNamespace(9));
    EXPECT_EQ(command({"smart", "-o", "ns", "-n", "4", "-n", "9"}), (Outcome{0, kNamespacePage}));
}

TEST_F(SmartCommand, ATemperatureOfZero)
{
    auto log = someLog();
    log.temperature[0] = log.temperature[1] = 0;
    const std::string cold = "Composite Temperature                                 : -273 Celsius\n";
    machine.expect(ofDisk(0).data(bytesOf(log)));
    EXPECT_EQ(command({"smart", "-i", "0"}), (Outcome{0, kHead + cold + kSpare + kUnits + kRest}));
    machine.expect(ofController().data(bytesOf(log)));
    EXPECT_EQ(command({"smart", "-o", "hba"}), (Outcome{0, kHead + cold + kSpare + "\n"}));
    machine.expect(ofNamespace(1).data(bytesOf(log)));
    EXPECT_EQ(command({"smart", "-o", "ns", "-n", "1"}),
              (Outcome{0, kHead + "Composite Temperature                                 : 0\n" + kSpare + kPlainUnits +
                              kRest}));
}

TEST_F(SmartCommand, ThePrintersWithEitherMode)
{
    const auto printed = [](auto printer, int hbaMode) {
        return outcomeOf([&] {
                   printer(someLog(), hbaMode);
                   return 0;
               })
            .stream;
    };
    EXPECT_EQ(printed(showLogSmartInfo, 0), kDiskPage);
    EXPECT_EQ(printed(showLogSmartInfo, 1), kHbaPage);
    EXPECT_EQ(printed(showLogSmartInfo_no_calculator, 0), kNamespacePage);
    EXPECT_EQ(printed(showLogSmartInfo_no_calculator, 1), kHbaPage);
}

TEST(Int128, IsReadFromItsLittleEnd)
{
    EXPECT_EQ(int128_to_double({}), 0.0L);
    EXPECT_EQ(int128_to_double({0x34, 0x12}), 0x1234);
    EXPECT_EQ(int128_to_double({0, 0, 0, 0, 0, 0, 0, 0x80}), 9223372036854775808.0L);
    EXPECT_EQ(int128_to_double({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}), 0x1p120L);
}

TEST_F(SmartCommand, BadValues)
{
    EXPECT_EQ(command({"smart", "-i", "x"}), (Outcome{0, "-i : invalid NVMe Controller id 'x'\n"}));
    EXPECT_EQ(command({"smart", "-i", "-1"}), (Outcome{0, "-i : invalid NVMe Controller id '-1'\n"}));
    EXPECT_EQ(command({"smart", "-i", "0x1"}), (Outcome{0, "-i : invalid NVMe Controller id '0x1'\n"}));
    EXPECT_EQ(command({"smart", "-o", "ns", "-n", "0"}), (Outcome{0, "-n : invalid namespace id '0'\n"}));
    EXPECT_EQ(command({"smart", "-n", "1x"}), (Outcome{0, "-n : invalid namespace id '1x'\n"}));
    EXPECT_EQ(command({"smart", "-o", "pd", "-h"}), (Outcome{0, "-o : invalid object 'pd'\n"}));
    EXPECT_EQ(command({"smart", "-z"}), (Outcome{0, "", "", "smart: illegal option -- z\n"}));
}

TEST_F(SmartCommand, OneBasedIds)
{
    g_oneBaseMode = 1;
    EXPECT_EQ(command({"smart", "-i", "0"}), (Outcome{0, "-i : invalid NVMe Controller id '0'\n"}));
    machine.expect(ofDisk(0));
    EXPECT_EQ(command({"smart", "-i", "1"}), (Outcome{0, kDiskPage}));
    machine.expect(ofNamespace(1));
    EXPECT_EQ(command({"smart", "-o", "ns", "-n", "1"}), (Outcome{0, kNamespacePage}));
}

TEST_F(SmartCommand, OneSourceIsNeeded)
{
    const Outcome notBoth{0, "smart: option -i is not required\n"};
    EXPECT_EQ(command({"smart", "-i", "0", "-o", "hba"}), notBoth);
    EXPECT_EQ(command({"smart", "-o", "hba", "-o", "hba", "-i", "0"}), notBoth);
    EXPECT_EQ(command({"smart", "--output", "x"}), kRequired);
    EXPECT_EQ(command({"smart", "-n", "1"}), kRequired);
    EXPECT_EQ(command({"smart", "word"}), kRequired);
    EXPECT_EQ(command({"smart", "-o", "ns"}), kRequired);
}

TEST_F(SmartCommand, Duplicates)
{
    EXPECT_EQ(command({"smart", "-i", "0", "-i", "1"}), kDuplicate);
    EXPECT_EQ(command({"smart", "-o", "hba", "-o", "hba"}), kDuplicate);
    EXPECT_EQ(command({"smart", "-o", "hba", "-o", "ns"}), kDuplicate);
}

TEST_F(SmartCommand, AFailurePrintsItsTextAndIsReturned)
{
    machine.expect(ofDisk(9).status(0x706));
    EXPECT_EQ(command({"smart", "-i", "9"}),
              (Outcome{0x706, "get smart info failed.\n", "Invalid HD ID (Status Code: 0x706)\n"}));
    machine.expect(ofController().status(2));
    EXPECT_EQ(command({"smart", "-o", "hba"}),
              (Outcome{2, "get smart info failed.\n", "Invalid Field in Command (Status Code: 0x2)\n"}));
    machine.expect(ofNamespace(1).error(5));
    EXPECT_EQ(command({"smart", "-o", "ns", "-n", "1"}),
              (Outcome{-1, "get smart info failed.\n", "Unknown error (Status Code: 0xffffffff)\n"}));
}

TEST_F(SmartCommand, DebugLinesOfTheNamespaceAlone)
{
    dbg_enable = 1;
    machine.expect(ofNamespace(0x2345));
    EXPECT_EQ(command({"smart", "-o", "ns", "-n", "9029"}),
              (Outcome{0, "CDW[0]  : 0x000000e2\nCDW[9]  : 0x00000200\nCDW[10] : 0x0000007f\nCDW[12] : 0x234508e5\n" +
                              kNamespacePage}));
    machine.expect(ofDisk(0));
    EXPECT_EQ(command({"smart", "-i", "0"}), (Outcome{0, kDiskPage}));
    machine.expect(ofController());
    EXPECT_EQ(command({"smart", "-o", "hba"}), (Outcome{0, kHbaPage}));
}

}  // namespace
