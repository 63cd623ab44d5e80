// `mi_admin_send` and `mi_admin_receive`.
#include "api/src/interface/wire/nvme.h"
#include "cli/Functions/smart/smart.h"
#include "cli/Functions/standard/identify.h"
#include "tests/unit/cli/unlisted/management/front_fixture.h"

namespace {

using namespace qrx::test;

// --- mi_admin_send ---------------------------------------------------------------------------------------------------

class MiAdminSend : public FrontTest {
protected:
    static Command send(const Bytes& message) { return miSend(message, 1041); }
    static Bytes message(QRX_U8 byte0 = 0, QRX_U8 byte1 = 0x10, QRX_U8 opcode = 0)
    {
        Bytes bytes(4168);
        bytes[0] = byte0;
        bytes[1] = byte1;
        bytes[4] = opcode;
        return bytes;
    }
    static constexpr char kDone[] = "MI admin send success.\n";
};

TEST_F(MiAdminSend, Help)
{
    checkHelp("mi_admin_send");
    const std::string page = helpOf("mi_admin_send");
    EXPECT_EQ(page.find("Description:Standard MI-Send for admin command set\n"), 0U);
    for (const char* const word : {"--mi_msgtype", "--cflags", "--ctrlid"}) {
        EXPECT_NE(page.find(word), std::string::npos);
        EXPECT_EQ(unlisted({"mi_admin_send", std::string(word) + "=1"}),
                  (Outcome{0, "", "", "mi_admin_send: unrecognized option `" + std::string(word) + "=1'\n"}));
    }
}

TEST_F(MiAdminSend, EachOptionHasItsPlace)
{
    Bytes all = message(0x84, 0x91, 0xA6);
    const std::size_t places[] = {8, 12, 16, 20, 24, 36, 40, 44, 48, 52, 56, 60, 64};
    const char* const names[] = {"1", "2", "3", "4", "5", "8", "9", "10", "11", "12", "13", "14", "15"};
    for (std::size_t i = 0; i < std::size(places); ++i) {
        Bytes one = message();
        put32(one, places[i], 0x01020300 + static_cast<QRX_U32>(i));
        put32(all, places[i], 0x01020300 + static_cast<QRX_U32>(i));
        machine.expect(send(one));
        EXPECT_EQ(unlisted({"mi_admin_send", std::string("--sqe_dw") + names[i], std::to_string(0x01020300 + i)}),
                  (Outcome{0, kDone}))
            << names[i];
    }
    put32(all, 28, 0x28);
    put32(all, 32, 0x32);
    machine.expect(send(all));
    EXPECT_EQ(
        unlisted({"mi_admin_send", "-0", "4",         "-1", "1",         "-2", "1",         "-3", "1",         "-5",
                  "0xa6",          "-6", "0x28",      "-7", "0x32",      "-8", "0x1020300", "-9", "0x1020301", "-a",
                  "0x1020302",     "-b", "0x1020303", "-c", "0x1020304", "-d", "0x1020305", "-e", "0x1020306", "-g",
                  "0x1020307",     "-i", "0x1020308", "-j", "0x1020309", "-k", "0x102030a", "-l", "0x102030b", "-m",
                  "0x102030c"}),
        (Outcome{0, kDone}));
    Bytes page = message(0x84, 0x10, 2);  // Get Log Page of every namespace
    put32(page, 8, 0xFFFFFFFF);
    put32(page, 44, 0x7F0002);
    machine.expect(send(page));
    EXPECT_EQ(unlisted({"mi_admin_send", "--msgtype", "4", "--ic", "1", "--opcode", "2", "--sqe_dw1", "0xFFFFFFFF",
                        "--sqe_dw10", "0x7F0002"}),
              (Outcome{0, kDone}));
    machine.expect(send(message(0, 0x10, 6)));
    EXPECT_EQ(unlisted({"mi_admin_send", "--opcode=6", "--ic=2", "--ror=2", "--csi=2", "--msgtype=128"}),
              (Outcome{0, kDone}));
}

TEST_F(MiAdminSend, AFileChangesNothing)
{
    machine.expect(send(message(0, 0x10, 6)));
    EXPECT_EQ(unlisted({"mi_admin_send", "--opcode", "6", "-f", fileOf(pattern(64))}), (Outcome{0, kDone}));
    EXPECT_EQ(file, nullptr);
    const std::string none = path("none");
    EXPECT_EQ(unlisted({"mi_admin_send", "--opcode", "6", "--data", none}),
              (Outcome{1, "mi_admin_send: cannot open '" + none + "': No such file or directory\n"}));
}

TEST_F(MiAdminSend, TellsOfAFailure)
{
    machine.expect(send(message(0, 0x10, 6)).status(2));
    EXPECT_EQ(unlisted({"mi_admin_send", "--opcode", "6"}),
              (Outcome{2, "MI admin send failed.\n", "Invalid Field in Command (Status Code: 0x2)\n"}));
}

TEST_F(MiAdminSend, DebugShowsTheMessage)
{
    dbg_enable = 1;
    Bytes wanted = message(0x84, 0x10, 6);
    put32(wanted, 8, 0xABC);
    put32(wanted, 28, 0x28);
    put32(wanted, 32, 0x32);
    put32(wanted, 44, 1);
    put32(wanted, 64, 0x7FFFFFFF);
    machine.expect(send(wanted));
    EXPECT_EQ(unlisted({"mi_admin_send", "--msgtype", "4", "--ic", "1", "--opcode", "6", "--sqe_dw1", "0xabc",
                        "--offset", "0x28", "--data_len", "0x32", "--sqe_dw10", "1", "--sqe_dw15", "0x7fffffff"}),
              (Outcome{0,
                       "message_type: 0x4\nIC: 0x1\nROR: 0x0\nNVMe_MI_Msg_Type: 0x2\nCSI: 0x0\nOpcode: 0x6\n"
                       "SQE DW1: 0x00000abc\nSQE DW2: 0x00000000\nSQE DW3: 0x00000000\nSQE DW4: 0x00000000\n"
                       "SQE DW5: 0x00000000\nData_Offset: 0x00000028\nData_Length: 0x00000032\n"
                       "SQE DW8: 0x00000000\nSQE DW9: 0x00000000\nSQE DW10: 0x00000001\nSQE DW11: 0x00000000\n"
                       "SQE DW12: 0x00000000\nSQE DW13: 0x00000000\nSQE DW14: 0x00000000\nSQE DW15: 0x7fffffff\n"
                       "Admin DW10: 0x00000000\nAdmin DW11: 0x00000411\nAdmin DW12: 0x00000000\n"
                       "MI admin send success.\n"}));
}

TEST_F(MiAdminSend, OptionsAreChecked)
{
    const std::initializer_list<std::pair<std::string, std::string>> complaints = {
        {"--msgtype", "--msgtype: Invalid message type\n"},
        {"--ic", "--ic: Invalid IC\n"},
        {"--ror", "--ror: Invalid ROR\n"},
        {"--csi", "--csi: Invalid CSI\n"},
        {"--opcode", "--opcode: Invalid OPcode\n"},
        {"--offset", "--offset: Invalid offset\n"},
        {"--data_len", "--data_len: Invalid data length\n"},
        {"--sqe_dw1", "--sqe_dw1: Invalid SQE DW1\n"},
        {"--sqe_dw2", "--sqe_dw2: Invalid SQE DW2\n"},
        {"--sqe_dw3", "--sqe_dw3: Invalid SQE DW3\n"},
        {"--sqe_dw4", "--sqe_dw4: Invalid SQE DW4\n"},
        {"--sqe_dw5", "--sqe_dw5: Invalid SQE DW5\n"},
        {"--sqe_dw8", "--sqe_dw8: Invalid SQE DW8\n"},
        {"--sqe_dw9", "--sqe_dw3: Invalid SQE DW9\n"},
        {"--sqe_dw10", "--sqe_dw10: Invalid SQE DW10\n"},
        {"--sqe_dw11", "--sqe_dw11: Invalid SQE DW11\n"},
        {"--sqe_dw12", "--sqe_dw12: Invalid SQE DW12\n"},
        {"--sqe_dw13", "--sqe_dw13: Invalid SQE DW13\n"},
        {"--sqe_dw14", "--sqe_dw14: Invalid SQE DW14\n"},
        {"--sqe_dw15", "--sqe_dw15: Invalid SQE DW15\n"}};
    checkNumbers("mi_admin_send", complaints);
    checkWords("mi_admin_send", complaints);
    EXPECT_EQ(unlisted({"mi_admin_send", "-f", fileOf({}), "-f", fileOf({})}), kDuplicate);
    EXPECT_EQ(unlisted({"mi_admin_send", "--opcode", "256"}), (Outcome{0, "--opcode: Invalid OPcode\n"}));
}

// --- mi_admin_receive ------------------------------------------------------------------------------------------------

class MiAdminReceive : public FrontTest {
protected:
    static Bytes answer()
    {
        Bytes bytes = pattern(4120, 3);
        put32(bytes, 4, 0xABCDEF12);
        put32(bytes, 8, 0x808);
        put32(bytes, 12, 0x1212);
        put32(bytes, 16, 0x1616);
        return bytes;
    }
    static Command receive() { return Command::admin(30, 0, {}).receives(4120).carries(Bytes(4120)).on(1); }
    static Bytes data() { return some(answer(), 20, 4096); }
};

TEST_F(MiAdminReceive, Help)
{
    checkHelp("mi_admin_receive");
    EXPECT_EQ(helpOf("mi_admin_receive").find("Description:Standard MI-Receive for admin command set\n"), 0U);
}

TEST_F(MiAdminReceive, ShowsTheDataAsItStands)
{
    machine.expect(receive().data(answer()));
    EXPECT_EQ(unlisted({"mi_admin_receive", "-l", "13"}),
              (Outcome{0, "Status:0x12\ncontent.....\n", "RAW data.....\n" + rows(some(data(), 0, 13))}));
    machine.expect(receive().data(answer()));
    EXPECT_EQ(unlisted({"mi_admin_receive", "--datalen", "4096"}),
              (Outcome{0, "Status:0x12\ncontent.....\n", "RAW data.....\n" + rows(data())}));
    machine.expect(receive().data(answer()));
    EXPECT_EQ(unlisted({"mi_admin_receive", "--output", "x"}),
              (Outcome{0, "Status:0x12\ncontent.....\n", "RAW data.....\n\n"}));
}

TEST_F(MiAdminReceive, ShowsTheDataInWords)
{
    const Bytes page = data();
    std::array<QRX_U8, 4096> bytes{};
    std::copy(page.begin(), page.end(), bytes.begin());
    const std::string identify = outcomeOf([&] {
                                     _showIDDetail(bytes);
                                     return 0;
                                 }).stream;
    const std::string smart = outcomeOf([&] {
                                  showLogSmartInfo(qrx::wire::read<_qrx_smart_log>(page).value(), 0);
                                  return 0;
                              }).stream;
    const std::pair<std::string, std::string> shows[] = {{"idctrl", identify}, {"SMART", smart}, {"IdCtrl", identify}};
    for (const auto& [word, text] : shows) {
        EXPECT_GT(text.size(), 200U);
        machine.expect(receive().data(answer()));
        EXPECT_EQ(unlisted({"mi_admin_receive", "-s", word, "-l", "8"}),
                  (Outcome{0, "Status:0x12\ncontent.....\n" + text, "RAW data.....\n" + rows(some(page, 0, 8))}));
    }
}

TEST_F(MiAdminReceive, TheFileTakesAllOfTheData)
{
    machine.expect(receive().data(answer()));
    EXPECT_EQ(unlisted({"mi_admin_receive", "-l", "16", "-s", "smart", "-f", scratch.file("out", "old")}),
              (Outcome{0, "Status:0x12\n"}));
    EXPECT_EQ(contentOf(path("out")), textOf(data()));
    EXPECT_EQ(file, nullptr);
    machine.expect(receive().data(answer()));
    EXPECT_EQ(unlisted({"mi_admin_receive", "-l", "5000", "-f", scratch.file("out", "old")}),
              (Outcome{0, "Status:0x12\n"}));
    EXPECT_EQ(contentOf(path("out")), textOf(data()));
    machine.expect(receive().data(answer()));
    EXPECT_EQ(unlisted({"mi_admin_receive", "-f", "/dev/full"}),
              (Outcome{1,
                       "Status:0x12\nmi_admin_receive: cannot write '/dev/full': No space left on device; the file "
                       "is incomplete\n"}));
    const std::string none = path("no/such");
    EXPECT_EQ(unlisted({"mi_admin_receive", "-f", none}),
              (Outcome{1, "mi_admin_receive: cannot open '" + none + "': No such file or directory\n"}));
}

TEST_F(MiAdminReceive, DebugShowsTheCompletion)
{
    dbg_enable = 1;
    machine.expect(receive().data(answer()));
    EXPECT_EQ(unlisted({"mi_admin_receive", "-l", "0"}),
              (Outcome{0,
                       "Status:0x12\nCompletion_Queue_Entry_Dword0:0x808\nCompletion_Queue_Entry_Dword1:0x1212\n"
                       "Completion_Queue_Entry_Dword3:0x1616\ncontent.....\n",
                       "RAW data.....\n\n"}));
}

TEST_F(MiAdminReceive, TellsOfAFailure)
{
    machine.expect(receive().status(2));
    EXPECT_EQ(unlisted({"mi_admin_receive", "-l", "8", "-f", path("out")}),
              (Outcome{2, "MI admin receive failed.\n", "Invalid Field in Command (Status Code: 0x2)\n"}));
    EXPECT_EQ(contentOf(path("out")), "");
}

TEST_F(MiAdminReceive, OptionsAreChecked)
{
    checkNumbers("mi_admin_receive", {{"-l", "-l: Invalid data length value\n"}});
    EXPECT_EQ(unlisted({"mi_admin_receive", "-l", "4097"}),
              (Outcome{1, "mi_admin_receive: data length 4097 is over the 4096 bytes of one answer\n"}));
    EXPECT_EQ(unlisted({"mi_admin_receive", "-s", "raw", "-h"}), (Outcome{0, "-s : invalid show type 'raw'\n"}));
    EXPECT_EQ(unlisted({"mi_admin_receive", "-s", "smart", "-s", "smart"}), kDuplicate);
    EXPECT_EQ(unlisted({"mi_admin_receive", "-f", path("a"), "-f", path("b")}), kDuplicate);
}

}  // namespace
