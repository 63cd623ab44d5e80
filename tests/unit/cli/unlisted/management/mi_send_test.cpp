// `mi_send` and `new_mi_send`.
#include "tests/unit/cli/unlisted/management/front_fixture.h"

namespace {

using namespace qrx::test;

constexpr char kDone[] = "MI send success.\n";
const std::initializer_list<std::pair<std::string, std::string>> kComplaints = {
    {"--msgtype", "--msgtype: Invalid message type\n"},
    {"--ic", "--ic: Invalid IC\n"},
    {"--ror", "--ror: Invalid ROR\n"},
    {"--csi", "--csi: Invalid CSI\n"},
    {"--opcode", "--opcode: Invalid OPcode\n"},
    {"--req_dw0", "--req_dw0: Invalid Request DW0\n"},
    {"--req_dw1", "--req_dw1: Invalid Request DW1\n"},
};

// --- mi_send ---------------------------------------------------------------------------------------------------------

class MiSend : public FrontTest {
protected:
    static Bytes message(QRX_U8 byte0, QRX_U8 byte1, QRX_U8 opcode, QRX_U32 dw0, QRX_U32 dw1, const Bytes& data = {},
                         std::size_t file = 0)
    {
        Bytes bytes(1040 + file);
        bytes[0] = byte0;
        bytes[1] = byte1;
        bytes[4] = opcode;
        put32(bytes, 8, dw0);
        put32(bytes, 12, dw1);
        std::copy(data.begin(), data.end(), bytes.begin() + 16);
        return bytes;
    }
};

TEST_F(MiSend, Help)
{
    checkHelp("mi_send");
    EXPECT_EQ(helpOf("mi_send").find("Description:Standard MI-Send for management interface command set\n"), 0U);
    EXPECT_NE(helpOf("mi_send").find("\nNotice: Please remember to send mi_receive for getting data when mi_send is "
                                     "success.\n\n"),
              std::string::npos);
}

TEST_F(MiSend, WithoutAFileSendsARequestWithNoListing)
{
    machine.expect(miSend(message(0, 0x08, 5, 0, 0), 259));
    EXPECT_EQ(unlisted({"mi_send", "--opcode", "5"}), (Outcome{0, kDone}));
    machine.expect(miSend(message(0, 0x08, 0, 0x11, 0x80000000), 259));
    EXPECT_EQ(unlisted({"mi_send", "--req_dw0", "0x11", "--req_dw1", "0x80000000"}), (Outcome{0, kDone}));
    machine.expect(miSend(message(0, 0x08, 0, 0xFFFFFFFF, 0xFFFFFFFE), 259));
    EXPECT_EQ(unlisted({"mi_send", "--req_dw0", "0xFFFFFFFF", "--req_dw1", "4294967294"}), (Outcome{0, kDone}));
}

TEST_F(MiSend, EachOptionHasItsPlace)
{
    machine.expect(miSend(message(0x84, 0x89, 0xAB, 0x12345678, 0x22, {}), 259));
    EXPECT_EQ(unlisted({"mi_send", "--msgtype", "4", "--ic", "1", "--ror", "1", "--csi", "1", "--opcode", "0xab",
                        "--req_dw0", "0x12345678", "--req_dw1", "0x22"}),
              (Outcome{0, kDone}));
    const std::pair<std::string, Bytes> single[] = {
        {"-0127", message(0x7F, 0x08, 0, 0, 0)},  {"-0128", message(0, 0x08, 0, 0, 0)},
        {"-11", message(0x80, 0x08, 0, 0, 0)},    {"-12", message(0, 0x08, 0, 0, 0)},
        {"-21", message(0, 0x88, 0, 0, 0)},       {"-22", message(0, 0x08, 0, 0, 0)},
        {"-31", message(0, 0x09, 0, 0, 0)},       {"-32", message(0, 0x08, 0, 0, 0)},
        {"-50xff", message(0, 0x08, 0xFF, 0, 0)}, {"-60xfedcba98", message(0, 0x08, 0, 0xFEDCBA98, 0)},
        {"-79", message(0, 0x08, 0, 0, 9)},
    };
    for (const auto& [option, wanted] : single) {
        machine.expect(miSend(wanted, 259));
        EXPECT_EQ(unlisted({"mi_send", option}), (Outcome{0, kDone})) << option;
    }
}

TEST_F(MiSend, TheFileIsTheData)
{
    const Bytes data = pattern(12, 30);
    machine.expect(miSend(message(0x84, 0x08, 6, 0, 12, data, 12), 262));
    EXPECT_EQ(unlisted({"mi_send", "--msgtype=4", "--ic=1", "--opcode=6", "--req_dw1=12", "--data", fileOf(data)}),
              (Outcome{0, kDone, rows(data)}));
    EXPECT_EQ(file, nullptr);
    machine.expect(miSend(message(0, 0x08, 6, 0, 20, data, 12), 262));
    EXPECT_EQ(unlisted({"mi_send", "-5", "6", "-7", "20", "-f", fileOf(data)}),
              (Outcome{0, kDone, rows(padded(data, 20))}));
    machine.expect(miSend(message(0, 0x08, 6, 0, 5, some(data, 0, 5), 12), 262));
    EXPECT_EQ(unlisted({"mi_send", "-5", "6", "-7", "5", "-f", fileOf(data)}),
              (Outcome{0, kDone, rows(some(data, 0, 5))}));
    machine.expect(miSend(message(0, 0x08, 6, 0, 0, {}, 12), 262));
    EXPECT_EQ(unlisted({"mi_send", "-5", "6", "-f", fileOf(data)}), (Outcome{0, kDone, "\n"}));
}

TEST_F(MiSend, TheListingStartsAtTheFirstDword)
{
    const Bytes data = pattern(12, 30);
    machine.expect(miSend(message(0, 0x08, 6, 5, 12, data, 12), 262));
    EXPECT_EQ(unlisted({"mi_send", "-5", "6", "-6", "5", "-7", "12", "-f", fileOf(data)}),
              (Outcome{0, kDone, rows(padded(some(data, 5, 7), 12), 5)}));
    machine.expect(miSend(message(0, 0x08, 6, 0xFFFFFFFF, 12, data, 12), 262));
    EXPECT_EQ(unlisted({"mi_send", "-5", "6", "-6", "0xffffffff", "-7", "12", "-f", fileOf(data)}),
              (Outcome{0, kDone, rows(Bytes(12), 0xFFFFFFFF)}));
}

TEST_F(MiSend, AMessageFillsThePageAndNotMore)
{
    const Bytes content = pattern(3056, 77);
    machine.expect(miSend(message(0, 0x08, 0, 0, 4080, content, 3056), 1023));
    EXPECT_EQ(unlisted({"mi_send", "-7", "4080", "-f", fileOf(content)}).result, 0);
    const std::string name = fileOf(pattern(3057));
    EXPECT_EQ(unlisted({"mi_send", "-f", name}), (Outcome{1, "mi_send: '" + name + "' has more than 3056 bytes\n"}));
    EXPECT_EQ(unlisted({"mi_send", "-7", "1029", "-f", fileOf(pattern(4))}),
              (Outcome{1, "mi_send: data length 1029 is over the 1028 bytes of the message of a file of 4 bytes\n"}));
    EXPECT_EQ(
        unlisted({"mi_send", "-7", "0xffffffff", "-f", fileOf(pattern(4))}),
        (Outcome{1, "mi_send: data length 4294967295 is over the 1028 bytes of the message of a file of 4 bytes\n"}));
    EXPECT_EQ(file, nullptr);
}

TEST_F(MiSend, TellsOfAFailure)
{
    machine.expect(miSend(message(0, 0x08, 9, 0, 0), 259).status(2));
    EXPECT_EQ(unlisted({"mi_send", "-5", "9"}),
              (Outcome{2, "MI send failed.\n", "Invalid Field in Command (Status Code: 0x2)\n"}));
    const std::string none = path("none");
    EXPECT_EQ(unlisted({"mi_send", "-f", none}),
              (Outcome{1, "mi_send: cannot open '" + none + "': No such file or directory\n"}));
}

TEST_F(MiSend, DebugShowsTheRequest)
{
    dbg_enable = 1;
    machine.expect(miSend(message(0xFF, 0x89, 0xC3, 0x15, 2, pattern(2), 2), 259));
    EXPECT_EQ(unlisted({"mi_send", "-0", "127", "-1", "1", "-2", "1", "-3", "1", "-5", "0xc3", "-6", "0x15", "-7", "2",
                        "-f", fileOf(pattern(2))}),
              (Outcome{0,
                       "offset  mi_prp_data->Request_DW0: 0x15\ndatalen mi_prp_data->Request_DW1: 0x2\n"
                       "message_type: 0x7f\nIC: 0x1\nROR: 0x1\nNVMe_MI_Msg_Type: 0x1\nCSI: 0x1\nOpcode: 0xc3\n"
                       "prpDataLen: 0x412\nMI send success.\n",
                       rows(Bytes(2), 0x15)}));
}

TEST_F(MiSend, OptionsAreChecked)
{
    checkNumbers("mi_send", kComplaints);
    checkWords("mi_send", kComplaints);
    EXPECT_EQ(unlisted({"mi_send", "-f", fileOf({}), "-f", fileOf({})}), kDuplicate);
    EXPECT_EQ(unlisted({"mi_send", "-l", "1"}), (Outcome{0, "", "", "mi_send: illegal option -- l\n"}));
    EXPECT_EQ(unlisted({"mi_send", "--opcode", "0x106"}), (Outcome{0, "--opcode: Invalid OPcode\n"}));
}

// --- new_mi_send -----------------------------------------------------------------------------------------------------

class NewMiSend : public FrontTest {};

TEST_F(NewMiSend, Help)
{
    checkHelp("new_mi_send");
    EXPECT_EQ(helpOf("new_mi_send").find("Description:Standard 1.1 MI-Send for management interface command set\n"),
              0U);
}

TEST_F(NewMiSend, WithoutAFileSendsTheHeadAlone)
{
    machine.expect(sendData({0x0984, 0xAB, 0x12345678, 0x22}, {}));
    EXPECT_EQ(unlisted({"new_mi_send", "--msgtype", "4", "--ic", "1", "--ror", "0", "--csi", "1", "--opcode", "0xab",
                        "--req_dw0", "0x12345678", "--req_dw1", "0x22"}),
              (Outcome{0, "MI send success.\nall flow done\n"}));
    machine.expect(sendData({0x8800, 0, 0, 0}, {}));
    EXPECT_EQ(unlisted({"new_mi_send", "--ror", "3", "--ic", "2", "--csi", "2", "-l", "9999"}),
              (Outcome{0, "MI send success.\nall flow done\n"}));
    machine.expect(sendData({0x0800, 0, 0xFFFFFFFF, 0x80000000}, {}));
    EXPECT_EQ(unlisted({"new_mi_send", "--req_dw0", "0xffffffff", "--req_dw1", "2147483648"}),
              (Outcome{0, "MI send success.\nall flow done\n"}));
}

TEST_F(NewMiSend, SendsAsMuchOfTheFileAsItIsTold)
{
    const Bytes data = pattern(20, 8);
    machine.expect(sendData({0x0884, 6, 3, 20}, some(data, 0, 12)));
    EXPECT_EQ(unlisted({"new_mi_send", "-0", "4", "-1", "1", "-5", "6", "-6", "3", "-7", "20", "-l", "12", "-f",
                        fileOf(data)}),
              (Outcome{0, "MI send success.\nrelease buffer\nclose file\nall flow done\n",
                       rows(padded(some(data, 3, 9), 12), 3)}));
    machine.expect(sendData({0x0800, 0, 0, 0}, padded(data, 24)));
    EXPECT_EQ(unlisted({"new_mi_send", "--datalen", "24", "--data", fileOf(data)}),
              (Outcome{0, "MI send success.\nrelease buffer\nclose file\nall flow done\n", rows(padded(data, 24))}));
    machine.expect(sendData({0x0800, 0, 0, 0}, {}));
    EXPECT_EQ(unlisted({"new_mi_send", "-f", fileOf(data)}),
              (Outcome{0, "MI send success.\nrelease buffer\nclose file\nall flow done\n", "\n"}));
    EXPECT_EQ(file, nullptr);
}

TEST_F(NewMiSend, APayloadFillsThePageAndNotMore)
{
    const Bytes content = pattern(5000, 77);
    machine.expect(sendData({0x0800, 0, 0, 0}, some(content, 0, 4096)));
    EXPECT_EQ(unlisted({"new_mi_send", "-l", "4096", "-f", fileOf(content)}).result, 0);
    EXPECT_EQ(unlisted({"new_mi_send", "-l", "4097", "-f", fileOf(content)}),
              (Outcome{1, "new_mi_send: data length 4097 is over the 4096 bytes of one command\n"}));
    EXPECT_EQ(unlisted({"new_mi_send", "-l", "4294967295", "-f", fileOf(content)}),
              (Outcome{1, "new_mi_send: data length 4294967295 is over the 4096 bytes of one command\n"}));
}

TEST_F(NewMiSend, TellsOfAFailure)
{
    machine.expect(sendData({0x0800, 9, 0, 0}, {}).status(2));
    EXPECT_EQ(unlisted({"new_mi_send", "-5", "9"}),
              (Outcome{2, "MI send failed.\nall flow done\n", "Invalid Field in Command (Status Code: 0x2)\n"}));
    const std::string none = path("none");
    EXPECT_EQ(unlisted({"new_mi_send", "-f", none}),
              (Outcome{1, "new_mi_send: cannot open '" + none + "': No such file or directory\n"}));
}

TEST_F(NewMiSend, DebugShowsTheRequest)
{
    dbg_enable = 1;
    machine.expect(sendData({0x0984, 0xC3, 0x15, 0x16}, {}));
    EXPECT_EQ(unlisted({"new_mi_send", "-0", "4", "-1", "1", "-3", "1", "-5", "0xc3", "-6", "0x15", "-7", "0x16", "-l",
                        "0x17"}),
              (Outcome{0,
                       "datalen: 0x17\nmessage_type: 0x4\nIC: 0x1\nROR: 0x0\nNVMe_MI_Msg_Type: 0x1\nCSI: 0x1\n"
                       "Opcode: 0xc3\nreq_dw0: 0x15\nreq_dw1: 0x16\nMI send success.\nall flow done\n"}));
}

TEST_F(NewMiSend, OptionsAreChecked)
{
    checkNumbers("new_mi_send", kComplaints);
    checkNumbers("new_mi_send", {{"-l", "-l: Invalid data length\n"}});
}

}  // namespace
