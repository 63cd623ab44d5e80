#include "api/src/interface/agent.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "tests/unit/support/capture.h"
#include "tests/unit/support/scripted_machine.h"

namespace {

using namespace qrx::test;

std::string shown(QRX_U32 status)
{
    StdoutCapture out;
    StreamCapture elsewhere;
    _showStatusCode(status);
    EXPECT_EQ(elsewhere.text(), "");
    return out.text();
}

std::string line(const std::string& text, QRX_U32 status)
{
    char number[16];
    std::snprintf(number, sizeof(number), "%x", status);
    return text + " (Status Code: 0x" + number + ")\n";
}

TEST(StatusText, SuccessPrintsNothing)
{
    EXPECT_EQ(shown(0), "");
}

TEST(StatusText, GenericCodesAreLookedUpByTheWholeStatus)
{
    const std::map<QRX_U32, std::string> texts = {
        {1, "Invalid Command Opcode"},
        {2, "Invalid Field in Command"},
        {3, "Command ID Conflict"},
        {4, "Data Transfer Error"},
        {5, "Commands Aborted due to Power Loss Notification"},
        {6, "Internal Error"},
        {7, "Command Abort Requested"},
        {8, "Command Aborted due to SQ Deletion"},
        {9, "Command Aborted due to Failed Fused Command"},
        {10, "Command Aborted due to Missing Fused Command"},
        {11, "Invalid Namespace or Format"},
        {12, "Command Sequence Error"},
        {13, "Invalid SGL Segment Descriptor"},
        {14, "Invalid Number of SGL Descriptors"},
        {15, "Data SGL Length Invalid"},
        {16, "Metadata SGL Length Invalid"},
        {17, "SGL Descriptor Type Invalid"},
        {18, "Invalid Use of Controller Memory Buffer"},
        {19, "PRP Offset Invalid"},
        {20, "Atomic Write Unit Exceeded"},
        {21, "Operation Denied"},
        {22, "SGL Offset Invalid"},
        {24, "Host Identifier Inconsistent Format"},
        {25, "Keep Alive Timeout Expired"},
        {26, "Keep Alive Timeout Invalid"},
        {27, "Command Aborted due to Preempt and Abort"},
        {28, "Sanitize Failed"},
        {29, "Sanitize In Progress"},
        {30, "SGL Data Block Granularity Invalid"},
        {31, "Command Not Supported for Queue in CMB"},
        {128, "LBA Out of Range"},
        {129, "Capacity Exceeded"},
        {130, "Namespace Not Ready"},
        {131, "Reservation Conflict"},
        {132, "Format In Progress"},
    };
    for (QRX_U32 status = 1; status < 256; ++status) {
        const auto found = texts.find(status);
        EXPECT_EQ(shown(status), line(found != texts.end() ? found->second : "Unknown Status", status));
    }
}

TEST(StatusText, AnyBitAboveTheCodeMakesAGenericStatusUnknown)
{
    EXPECT_EQ(shown(0x4002), "Unknown Status (Status Code: 0x4002)\n");  // Do Not Retry
    EXPECT_EQ(shown(0x2002), "Unknown Status (Status Code: 0x2002)\n");  // More
    EXPECT_EQ(shown(0x281), "Unknown Status (Status Code: 0x281)\n");    // media errors
}

TEST(StatusText, CommandSpecificCodes)
{
    const std::map<QRX_U32, std::string> texts = {
        {0, "Completion Queue Invalid"},
        {1, "Invalid Queue Identifier"},
        {2, "Invalid Queue Size"},
        {3, "Abort Command Limit Exceeded"},
        {5, "Asynchronous Event Request Limit Exceeded"},
        {6, "Invalid Firmware Slot"},
        {7, "Invalid Firmware Image"},
        {8, "Invalid Interrupt Vector"},
        {9, "Invalid Log Page"},
        {10, "Invalid Format"},
        {11, "Firmware Activation Requires Conventional Reset"},
        {12, "Invalid Queue Deletion"},
        {13, "Feature Identifier Not Saveable"},
        {14, "Feature Not Changeable"},
        {15, "Feature Not Namespace Specific"},
        {16, "Firmware Activation Requires NVM Subsystem Reset"},
        {17, "Firmware Activation Requires Reset"},
        {18, "Firmware Activation Requires Maximum Time Violation"},
        {19, "Firmware Activation Prohibited"},
        {20, "Overlapping Range"},
        {21, "Namespace Insufficient Capacity"},
        {22, "Namespace Identifier Unavailable"},
        {24, "Namespace Already Attached"},
        {25, "Namespace Is Private"},
        {26, "Namespace Not Attached"},
        {27, "Thin Provisioning Not Supported"},
        {28, "Controller List Invalid"},
        {29, "Device Self-test In Progress"},
        {30, "Boot Partition Write Prohibited"},
        {31, "Invalid Controller Identifier"},
        {32, "Invalid Secondary Controller State"},
        {33, "Invalid Number of Controller Resources"},
        {34, "Invalid Resource Identifier"},
    };
    for (QRX_U32 code = 0; code < 256; ++code) {
        const auto found = texts.find(code);
        const std::string text = found != texts.end() ? found->second : "Unknown error";
        EXPECT_EQ(_cssErrorMessage(code), text);
        EXPECT_EQ(_cssErrorMessage(code | 0x4100), text);
        EXPECT_EQ(shown(0x100 | code), line(text, 0x100 | code));
    }
}

TEST(StatusText, TypesOneThreeAndFiveAreAllCommandSpecific)
{
    EXPECT_EQ(shown(0x10B), "Firmware Activation Requires Conventional Reset (Status Code: 0x10b)\n");
    EXPECT_EQ(shown(0x301), "Invalid Queue Identifier (Status Code: 0x301)\n");
    EXPECT_EQ(shown(0x506), "Invalid Firmware Slot (Status Code: 0x506)\n");
    EXPECT_EQ(shown(0x4106), "Invalid Firmware Slot (Status Code: 0x4106)\n");
}

TEST(StatusText, FirmwareCodes)
{
    const std::map<QRX_U32, std::string> texts = {
        {0, "No error"},
        {1, "Failed"},
        {3, "Invalid request"},
        {4, "Invalid parameter"},
        {5, "Not supported"},
        {6, "Invalid HD ID"},
        {7, "Invalid LD ID"},
        {8, "No resource"},
        {9, "Operation in progress"},
        {10, "BE attach success but identify NS fail"},
        {11, "No empty BE NS slot"},
        {12, "NS still attached"},
        {51, "LD is not redundant"},
        {52, "LD is not fully inited"},
        {53, "LD is not functional"},
        {54, "LD is functional"},
        {55, "PD size is too small"},
        {56, "Import no table"},
        {57, "Import already in table"},
        {58, "Import foreign"},
        {59, "HD is assigned"},
        {60, "Invalid RAID mode"},
        {61, "Invalid HD count"},
        {62, "Invalid SBS"},
        {63, "No available ID"},
        {64, "HD sector size mismatch"},
        {65, "Create namespace cap out of range"},
        {66, "LD has BGA"},
        {67, "No BGA activity"},
        {68, "Invalid BGA action"},
        {69, "BGA is running"},
        {70, "BGA is not running"},
        {71, "Rebuild source fail."},
        {72, "Rebuild target is too small"},
        {73, "Media patrol is running"},
        {74, "Invalid Namespace count"},
    };
    for (QRX_U32 code = 0; code < 256; ++code) {
        const auto found = texts.find(code);
        const std::string text = found != texts.end() ? found->second : "Unknown error";
        EXPECT_EQ(_vcErrorMessage(code), text);
        EXPECT_EQ(_vcErrorMessage(code | 0x4700), text);
        EXPECT_EQ(shown(0x700 | code), line(text, 0x700 | code));
    }
}

TEST(StatusText, ADriverFailureReadsAsAnUnknownFirmwareError)
{
    EXPECT_EQ(shown(0xFFFFFFFF), "Unknown error (Status Code: 0xffffffff)\n");
}

class VendorChannel : public testing::Test {
protected:
    VendorChannel()
    {
        machine.addController({.path = "/dev/nvme0"});
        machine.addController({.path = "/dev/nvme1"});
    }
    ScriptedMachine machine;
    StdoutCapture out;
};

TEST_F(VendorChannel, PassthruHandsTheWholeRecordOnAndReturnsTheAnswer)
{
    _qrx_admin_command_format record{};
    Command expected = Command::passthru(0xE2).receives(4096).flag(0x7001).result(0xC0FFEE01).data(pattern(4096)).on(1);
    for (QRX_U32 i = 0; i < 18; ++i) {
        record.CDW[i] = 0xE2 + 0x01010100 * i;
        expected.words[i] = 0xE2 + 0x01010100 * i;
    }
    record.cdw_flag = 0x7001;
    machine.expect(expected);
    Bytes page(4096);
    QRX_U32 result = 0;
    EXPECT_EQ(QRX_Adapter_PassthruAdmin(1, &record, nullptr, 0, page.data(), 4096, &result), 0U);
    EXPECT_EQ(result, 0xC0FFEE01);
    EXPECT_EQ(page, pattern(4096));
    EXPECT_EQ(out.text(), "");
}

TEST_F(VendorChannel, PassthruSendsData)
{
    _qrx_admin_command_format record{};
    record.CDW[0] = 199;
    machine.expect(Command::passthru(199).sends(pattern(512)));
    Bytes data = pattern(512);
    EXPECT_EQ(QRX_Adapter_PassthruAdmin(0, &record, data.data(), 512, nullptr, 0, nullptr), 0U);
}

TEST_F(VendorChannel, PassthruPrintsTheTextOfAFailureToStandardOutput)
{
    _qrx_admin_command_format record{};
    record.CDW[0] = 226;
    machine.expect(Command::passthru(226).status(0x706));
    StreamCapture elsewhere;
    EXPECT_EQ(QRX_Adapter_PassthruAdmin(0, &record, nullptr, 0, nullptr, 0, nullptr), 0x706U);
    EXPECT_EQ(out.text(), "Invalid HD ID (Status Code: 0x706)\n");
    EXPECT_EQ(elsewhere.text(), "");
}

TEST_F(VendorChannel, TheReservedStatusIsPassedOnInSilence)
{
    _qrx_admin_command_format record{};
    machine.expect(Command::passthru(0).status(65535));
    EXPECT_EQ(QRX_Adapter_PassthruAdmin(0, &record, nullptr, 0, nullptr, 0, nullptr), 65535U);
    machine.expect(Command::admin(6).status(65535));
    EXPECT_EQ(QRX_Adapter_Admin(0, 6, 0, nullptr, 0, nullptr, 0, nullptr, 0), 65535U);
    EXPECT_EQ(out.text(), "");
}

TEST_F(VendorChannel, ARefusalInsideTheAnswerPrintsNothing)
{
    _qrx_admin_command_format record{};
    machine.expect(Command::passthru(0).receives(4096).data(envelope(Bytes{}, 1)));
    Bytes page(4096);
    EXPECT_EQ(QRX_Adapter_PassthruAdmin(0, &record, nullptr, 0, page.data(), 4096, nullptr), 0U);
    EXPECT_EQ(page[4], 1);
    EXPECT_EQ(out.text(), "");
}

TEST_F(VendorChannel, TheSilentFormPrintsNothing)
{
    _qrx_admin_command_format record{};
    record.CDW[0] = 226;
    record.CDW[14] = 7;
    machine.expect(Command::passthru(226).word(14, 7).sends(pattern(16)).receives(32).data(pattern(32, 9)).status(2));
    Bytes data = pattern(16);
    Bytes answer(32);
    EXPECT_EQ(QRX_Adapter_PassthruAdmin_no_status_code(0, &record, data.data(), 16, answer.data(), 32), 2U);
    EXPECT_EQ(answer, pattern(32, 9));
    EXPECT_EQ(out.text(), "");
}

TEST_F(VendorChannel, AdminHandsItsArgumentsOn)
{
    QRX_U32 cdw[] = {0x11111111, 0x22222222, 0x33333333};
    Bytes data = pattern(24);
    Bytes answer(48);
    machine.expect(Command::admin(21, 0x44444444, {0x11111111, 0x22222222, 0x33333333})
                       .sends(pattern(24))
                       .receives(48)
                       .data(pattern(48, 5))
                       .on(1));
    EXPECT_EQ(QRX_Adapter_Admin(1, 21, 0x44444444, cdw, 3, data.data(), 24, answer.data(), 48), 0U);
    EXPECT_EQ(answer, pattern(48, 5));
    machine.expect(Command::admin(6, 0, {0x11111111}).status(0x10B));
    EXPECT_EQ(QRX_Adapter_Admin(0, 6, 0, cdw, 1, nullptr, 0, nullptr, 0), 0x10BU);
    EXPECT_EQ(out.text(), "Firmware Activation Requires Conventional Reset (Status Code: 0x10b)\n");
}

TEST_F(VendorChannel, NvmHandsItsArgumentsOnAndPrintsNothing)
{
    QRX_U32 cdw[] = {5, 6};
    Bytes data = pattern(512);
    Bytes answer(8);
    machine.expect(Command::nvm(1, 3, {5, 6}).sends(pattern(512)).receives(8).data(pattern(8, 2)).status(0x80).on(1));
    EXPECT_EQ(QRX_Adapter_NVM(1, 1, 3, cdw, 2, data.data(), 512, answer.data(), 8), 0x80U);
    EXPECT_EQ(answer, pattern(8, 2));
    EXPECT_EQ(out.text(), "");
}

TEST_F(VendorChannel, ADriverFailureIsReturnedAsMinusOne)
{
    _qrx_admin_command_format record{};
    machine.expect(Command::passthru(0).error(EINTR));
    EXPECT_EQ(QRX_Adapter_PassthruAdmin(0, &record, nullptr, 0, nullptr, 0, nullptr), 0xFFFFFFFF);
    EXPECT_EQ(out.text(), "Unknown error (Status Code: 0xffffffff)\n");
}

TEST_F(VendorChannel, ASlotWithoutAControllerGivesStatusOneAndItsText)
{
    _qrx_admin_command_format record{};
    EXPECT_EQ(QRX_Adapter_PassthruAdmin(2, &record, nullptr, 0, nullptr, 0, nullptr), 1U);
    EXPECT_EQ(out.text(), "Invalid Command Opcode (Status Code: 0x1)\n");
    EXPECT_EQ(QRX_Adapter_PassthruAdmin_no_status_code(255, &record, nullptr, 0, nullptr, 0), 1U);
    EXPECT_EQ(QRX_Adapter_NVM(2, 1, 0, nullptr, 0, nullptr, 0, nullptr, 0), 1U);
    EXPECT_EQ(out.text(), "Invalid Command Opcode (Status Code: 0x1)\n");
}

}  // namespace
