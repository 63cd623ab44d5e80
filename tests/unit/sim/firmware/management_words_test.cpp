// The management interface beyond the VPD: the form with the head in the command words, what the endpoint tells of the
// controller, admin commands in messages, and the VPD area of earlier tools.
#include "api/src/interface/wire/mi.h"
#include "tests/unit/sim/firmware/rig.h"

namespace qrx::sim {
namespace {

constexpr QRX_U32 kInvalidField = 0x002;
constexpr QRX_U32 kSequenceError = 0x00C;
constexpr QRX_U32 kHead = 0x0884;  // a Management Interface command

using Bytes = std::vector<QRX_U8>;

class ManagementWords : public testing::Test {
protected:
    static nvme_admin_cmd words(QRX_U8 opcode, QRX_U32 head, QRX_U32 message_opcode, QRX_U32 dw0, QRX_U32 dw1)
    {
        nvme_admin_cmd command{};
        command.opcode = opcode;
        command.cdw10 = head;
        command.cdw11 = message_opcode;
        command.cdw12 = dw0;
        command.cdw13 = dw1;
        return command;
    }
    Completion receive(QRX_U32 message_opcode, QRX_U32 dw0 = 0, QRX_U32 dw1 = 0, QRX_U32 head = kHead)
    {
        return rig.admin(words(0x1E, head, message_opcode, dw0, dw1));
    }
    Completion send(QRX_U32 message_opcode, QRX_U32 dw0, QRX_U32 dw1, Bytes data, QRX_U32 head = kHead)
    {
        return rig.machine().admin({}, words(0x1D, head, message_opcode, dw0, dw1), data);
    }
    // An admin command in a message, its answer in `answer`.
    Completion admin(QRX_U8 opcode, QRX_U32 sqe10, QRX_U32 offset = 0, QRX_U32 length = 0)
    {
        Bytes message(4168);
        message[0] = 0x84;
        message[1] = 0x10;
        message[4] = opcode;
        std::memcpy(&message[28], &offset, 4);
        std::memcpy(&message[32], &length, 4);
        std::memcpy(&message[44], &sqe10, 4);
        nvme_admin_cmd command{};
        command.opcode = 0x1D;
        command.cdw11 = 1041;
        const Completion sent = rig.machine().admin({}, command, message);
        if (sent.status != kGood) {
            return sent;
        }
        command.opcode = 0x1E;
        command.cdw11 = 0;
        answer.assign(4120, kUntouched);
        return rig.machine().admin({}, command, answer);
    }

    Rig rig{"jbof"};
    Bytes answer;
};

TEST_F(ManagementWords, AReceiveBringsTheDataAloneAndNeedsNoSend)
{
    const Completion done = receive(5, 8 + 4, 3);
    EXPECT_EQ(done.status, kGood);
    EXPECT_EQ(done.result, 0U);
    EXPECT_EQ(rig.bytes(0, 3), "QRX");
    EXPECT_TRUE(rig.all_from(3, 0));
    EXPECT_EQ(receive(5, 0, 256).status, kGood);
    const std::string image = rig.bytes(0, 256);
    EXPECT_EQ(image, std::string(rig.controller().vpd.eeprom.begin(), rig.controller().vpd.eeprom.end()));
}

TEST_F(ManagementWords, ASendBringsTheDataAlone)
{
    EXPECT_EQ(send(6, 90, 4, {'N', 'E', 'W', '!', '?'}).status, kGood);
    EXPECT_EQ(receive(5, 90, 4).status, kGood);
    EXPECT_EQ(rig.bytes(0, 4), "NEW!");
    EXPECT_EQ(rig.controller().events.entries.back().text, "has 4 bytes of VPD written at 90 of the EEPROM");
    nvme_admin_cmd first{};
    first.opcode = 0x1E;
    EXPECT_EQ(rig.admin(first).status, kSequenceError) << "no answer waits";
}

TEST_F(ManagementWords, TheStatusOfTheAnswerIsTheResult)
{
    EXPECT_EQ(receive(5, 0, 257).result, 4U);
    EXPECT_TRUE(rig.all_from(0, 0));
    EXPECT_EQ(receive(5, 0xFFFFFFFF, 2).result, 4U);
    EXPECT_EQ(receive(7).result, 3U);
    EXPECT_EQ(send(6, 0, 5, {1, 2, 3, 4}).result, 6U);
    EXPECT_EQ(send(6, 255, 2, {1, 2}).result, 4U);
    EXPECT_EQ(receive(6, 0, 4).result, 6U) << "no data comes with a Receive";
}

TEST_F(ManagementWords, WhatIsNoRequestIsRefused)
{
    for (const QRX_U32 head : {0x0885U, 0x8884U, 0x1084U, 0x0084U}) {
        EXPECT_EQ(receive(5, 0, 4, head).status, kInvalidField) << head;
        EXPECT_EQ(send(6, 0, 1, {1}, head).status, kInvalidField) << head;
    }
}

TEST_F(ManagementWords, ASendForgetsTheAnswerThatWaited)
{
    Bytes message(1040);
    message[0] = 0x84;
    message[1] = 0x08;
    message[4] = 5;
    nvme_admin_cmd command{};
    command.opcode = 0x1D;
    command.cdw11 = 259;
    EXPECT_EQ(rig.machine().admin({}, command, message).status, kGood);
    EXPECT_EQ(receive(5, 0, 1).status, kGood);
    EXPECT_FALSE(rig.controller().endpoint.answer.empty()) << "a Receive of its own takes nothing of it";
    EXPECT_EQ(send(6, 0, 0, {}).status, kGood);
    EXPECT_TRUE(rig.controller().endpoint.answer.empty());
}

TEST_F(ManagementWords, TellsOfTheSubsystemItsPortAndItsController)
{
    EXPECT_EQ(receive(0).result, 0U);
    EXPECT_EQ(rig.bytes(0, 3), std::string("\0\1\1", 3));
    EXPECT_EQ(receive(0, 1U << 24).result, 0U);
    const auto port = rig.at<port_info_data_structure>(0);
    EXPECT_EQ(port.Port_Type, 1);
    EXPECT_EQ(port.Maximum_MCTP_Transmission_Unit_Size, 64);
    EXPECT_EQ(port.Port_Type_Specific.pcie.PCIe_Supported_Link_Speeds_Vector, 7);
    EXPECT_EQ(port.Port_Type_Specific.pcie.PCIe_Current_Link_Speed, 3);
    EXPECT_EQ(port.Port_Type_Specific.pcie.PCIe_Negotiated_Link_Width, 8);
    EXPECT_EQ(receive(0, 1U << 24 | 1U << 16).result, 4U) << "there is one port";
    EXPECT_EQ(receive(0, 2U << 24).result, 0U);
    EXPECT_EQ(rig.bytes(0, 4), std::string("\1\0\0\0", 4));
    EXPECT_EQ(receive(0, 3U << 24).result, 0U);
    const auto controller = rig.at<controller_info_data_structure>(0);
    EXPECT_EQ(controller.PCIe_Routing_ID_Information, 1);
    EXPECT_EQ(controller.PCIe_Routing_ID, 0x0300);
    EXPECT_EQ(controller.PCI_Vendor_ID, rig.controller().vendor_id);
    EXPECT_EQ(controller.PCI_Device_ID, rig.controller().device_id);
    EXPECT_EQ(controller.PCI_Subsystem_Device_ID, 0x1001);
    EXPECT_EQ(receive(0, 3U << 24 | 1).result, 4U);
    EXPECT_EQ(receive(0, 9U << 24).result, 4U);
}

TEST_F(ManagementWords, TellsOfTheSubsystemsHealth)
{
    EXPECT_EQ(receive(1).result, 0U);
    const auto health = rig.at<nvm_subsystem_health_data_structure>(0);
    EXPECT_EQ(health.nvm_subsystem_status.Drive_Functional, 1);
    EXPECT_EQ(health.nvm_subsystem_status.Reset_Not_Required, 1);
    EXPECT_EQ(health.Smart_Warnings, 0xFF);
    EXPECT_EQ(health.Composite_Temperature, 38);
    EXPECT_EQ(health.Percentage_Drive_Life_Used, 1);
    EXPECT_EQ(health.composite_controller_status.Ready, 1);
}

// --- Admin commands in messages --------------------------------------------------------------------------------------

TEST_F(ManagementWords, TheControllersOwnIdentifyComesInAnAdminAnswer)
{
    ASSERT_EQ(rig.identify(1).status, kGood);
    const std::string identify = rig.bytes(0, 4096);
    EXPECT_EQ(admin(0x06, 1).status, kGood);
    EXPECT_EQ(std::string(answer.begin(), answer.begin() + 20), std::string("\x04\x90") + std::string(18, '\0'));
    EXPECT_EQ(std::string(answer.begin() + 20, answer.begin() + 4116), identify);
    EXPECT_EQ(admin(0x06, 1, 4, 20).status, kGood);
    EXPECT_EQ(std::string(answer.begin() + 20, answer.begin() + 40), identify.substr(4, 20));
    EXPECT_EQ(std::string(answer.begin() + 40, answer.end()), std::string(4080, '\0'));
}

TEST_F(ManagementWords, SoDoLogsAndFeatures)
{
    ASSERT_EQ(rig.log_page(2, 512).status, kGood);
    const std::string log = rig.bytes(0, 512);
    EXPECT_EQ(admin(0x02, 0x007F0002).status, kGood);
    EXPECT_EQ(std::string(answer.begin() + 20, answer.begin() + 532), log);
    EXPECT_EQ(admin(0x0A, 0x02).status, kGood);  // power state
    EXPECT_EQ(answer[4], 0);
}

TEST_F(ManagementWords, AnAdminCommandThatFailsTellsSoInItsCompletion)
{
    EXPECT_EQ(admin(0x06, 0x77).status, kGood);
    QRX_U32 dword3 = 0;
    std::memcpy(&dword3, &answer[16], 4);
    EXPECT_EQ(dword3, 0x002U << 17);
    EXPECT_EQ(std::string(answer.begin() + 20, answer.end()), std::string(4100, '\0'));
}

TEST_F(ManagementWords, OtherAdminCommandsAndOtherPiecesAreRefusedInTheAnswer)
{
    EXPECT_EQ(admin(0x0D, 0).status, kGood);
    EXPECT_EQ(answer[4], 3);
    EXPECT_EQ(admin(0x06, 1, 4097).status, kGood);
    EXPECT_EQ(answer[4], 4);
    EXPECT_EQ(admin(0x06, 1, 4, 4093).status, kGood);
    EXPECT_EQ(answer[4], 4);
    EXPECT_EQ(admin(0x06, 1, 0xFFFFFFFF, 0xFFFFFFFF).status, kGood);
    EXPECT_EQ(answer[4], 4);
}

TEST_F(ManagementWords, TheStateKeepsALongAnswer)
{
    Bytes message(4168);
    message[0] = 0x84;
    message[1] = 0x10;
    message[4] = 0x06;
    message[44] = 1;
    nvme_admin_cmd command{};
    command.opcode = 0x1D;
    command.cdw11 = 1041;
    EXPECT_EQ(rig.machine().admin({}, command, message).status, kGood);
    EXPECT_EQ(rig.controller().endpoint.answer.size(), 4120U);
    const std::string text = save_machine(rig.machine());
    rig = Rig::of_text(text);
    EXPECT_EQ(save_machine(rig.machine()), text);
}

// --- The VPD area of earlier tools -----------------------------------------------------------------------------------

class VpdArea : public testing::Test {
protected:
    QRX_U32 write(Bytes data, QRX_U32 cdw10 = 64, QRX_U32 cdw12 = 0)
    {
        nvme_admin_cmd command{};
        command.opcode = 0xC7;
        command.cdw10 = cdw10;
        command.cdw12 = cdw12;
        return rig.machine().admin({}, command, data).status;
    }

    Rig rig{"raid"};
};

TEST_F(VpdArea, IsTheBeginningOfTheSpiBlock)
{
    Bytes area(256);
    for (std::size_t i = 0; i < area.size(); ++i) {
        area[i] = static_cast<QRX_U8>(i ^ 0x5A);
    }
    EXPECT_EQ(write(area), kGood);
    EXPECT_EQ(rig.controller().events.entries.back().text, "has the VPD area of its SPI flash written");
    ASSERT_EQ(rig.log_page(0xC0, 4096).status, kGood);
    EXPECT_EQ(rig.bytes(0, 256), std::string(area.begin(), area.end()));
    EXPECT_TRUE(rig.all_from(256, 0xFF));
}

TEST_F(VpdArea, Refusals)
{
    EXPECT_EQ(write(Bytes(256), 63), kInvalidField);
    EXPECT_EQ(write(Bytes(255)), kInvalidField);
    EXPECT_EQ(write(Bytes(4096)), kInvalidField);
    EXPECT_EQ(write(Bytes(256), 64, 0x7777), kInvalidField);
    rig = Rig::of_text(R"({"controllers": [{"settings": {"protection": true}}]})");
    EXPECT_EQ(write(Bytes(256)), 0x015U);
}

}  // namespace
}  // namespace qrx::sim
