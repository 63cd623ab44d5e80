// `mi_receive` and `new_mi_receive`.
#include "tests/unit/cli/unlisted/management/front_fixture.h"

namespace {

using namespace qrx::test;

// --- mi_receive ------------------------------------------------------------------------------------------------------

class MiReceive : public FrontTest {
protected:
    static Bytes answer()
    {
        Bytes bytes = pattern(4096, 3);
        put32(bytes, 4, 0xABCDEF12);
        return bytes;
    }
    static Command receive() { return miReceive().data(answer()); }
    static constexpr char kHead[] = "Status:0x12\nNVMe_Management_Response:0xabcdef\n";
};

TEST_F(MiReceive, Help)
{
    checkHelp("mi_receive");
    EXPECT_EQ(helpOf("mi_receive").find("Description:Standard MI-Receive for management interface command set\n"), 0U);
}

TEST_F(MiReceive, ShowsTheHeadAndTheData)
{
    machine.expect(receive());
    EXPECT_EQ(unlisted({"mi_receive", "-l", "13"}),
              (Outcome{0, kHead, "content.....\n" + rows(some(answer(), 8, 13))}));
    machine.expect(receive());
    EXPECT_EQ(unlisted({"mi_receive", "--datalen", "1024"}),
              (Outcome{0, kHead, "content.....\n" + rows(some(answer(), 8, 1024))}));
    machine.expect(receive());
    EXPECT_EQ(unlisted({"mi_receive", "--output", "x"}), (Outcome{0, kHead, "content.....\n\n"}));
}

TEST_F(MiReceive, ADecimalLengthHasALimit)
{
    EXPECT_EQ(unlisted({"mi_receive", "-l", "1025"}),
              (Outcome{0, "-l: invalid length '1025', the maximum size is 1024\n"}));
    machine.expect(receive());
    EXPECT_EQ(unlisted({"mi_receive", "-l", "0x500"}),
              (Outcome{0, kHead, "content.....\n" + rows(some(answer(), 8, 0x500))}));
}

TEST_F(MiReceive, AHexadecimalLengthEndsWithTheAnswer)
{
    machine.expect(receive());
    EXPECT_EQ(unlisted({"mi_receive", "-l", "0xff8"}),
              (Outcome{0, kHead, "content.....\n" + rows(some(answer(), 8, 4088))}));
    EXPECT_EQ(unlisted({"mi_receive", "-l", "0xff9"}),
              (Outcome{1, "mi_receive: data length 4089 is over the 4088 bytes of one answer\n"}));
    EXPECT_EQ(unlisted({"mi_receive", "-l", "-0x1"}),
              (Outcome{1, "mi_receive: data length 4294967295 is over the 4088 bytes of one answer\n"}));
}

TEST_F(MiReceive, TheFileTakesTheData)
{
    machine.expect(receive());
    EXPECT_EQ(unlisted({"mi_receive", "-l", "300", "-f", scratch.file("out", "old")}), (Outcome{0, kHead}));
    EXPECT_EQ(contentOf(path("out")), textOf(some(answer(), 8, 300)));
    EXPECT_EQ(file, nullptr);
    machine.expect(receive());
    EXPECT_EQ(
        unlisted({"mi_receive", "-l", "3", "-f", "/dev/full"}),
        (Outcome{1, std::string(kHead) +
                        "mi_receive: cannot write '/dev/full': No space left on device; the file is incomplete\n"}));
    const std::string none = path("no/such");
    EXPECT_EQ(unlisted({"mi_receive", "--outputfile", none}),
              (Outcome{1, "mi_receive: cannot open '" + none + "': No such file or directory\n"}));
}

TEST_F(MiReceive, TellsOfAFailure)
{
    machine.expect(miReceive().status(0x0C));
    const Outcome outcome = unlisted({"mi_receive", "-l", "8", "-f", path("out")});
    EXPECT_EQ(outcome.result, 0x0C);
    EXPECT_EQ(outcome.stream, "MI receive failed.\n");
    EXPECT_EQ(contentOf(path("out")), "");
}

TEST_F(MiReceive, OptionsAreChecked)
{
    checkNumbers("mi_receive", {{"-l", "-l: Invalid data length value\n"}});
    EXPECT_EQ(unlisted({"mi_receive", "-f", path("a"), "-f", path("b")}), kDuplicate);
}

// --- new_mi_receive --------------------------------------------------------------------------------------------------

class NewMiReceive : public FrontTest {
protected:
    static constexpr char kEnd[] = "release response_info.\nall flow done.\n";
};

TEST_F(NewMiReceive, Help)
{
    checkHelp("new_mi_receive");
    EXPECT_EQ(
        helpOf("new_mi_receive").find("Description:Standard 1.1 MI-Receive for management interface command set\n"),
        0U);
}

TEST_F(NewMiReceive, ShowsTheDataFromTheFirstDwordOn)
{
    const Bytes answer = pattern(4096, 3);
    machine.expect(receiveData({0x8984, 0xC5, 0, 0x20}).data(answer));
    EXPECT_EQ(unlisted({"new_mi_receive", "--msgtype", "4", "--ic", "1", "--ror", "1", "--csi", "1", "--opcode", "0xc5",
                        "--req_dw0", "0", "--req_dw1", "32", "-l", "32"}),
              (Outcome{0, kEnd, "content.....\n" + rows(some(answer, 0, 32))}));
    machine.expect(receiveData({0x0800, 5, 0x1D, 0}).data(answer));
    EXPECT_EQ(unlisted({"new_mi_receive", "-5", "5", "-6", "0x1d", "-l", "12"}),
              (Outcome{0, kEnd, "content.....\n" + rows(some(answer, 29, 12), 29)}));
    machine.expect(receiveData({0x0800, 5, 0, 0}).data(answer));
    EXPECT_EQ(unlisted({"new_mi_receive", "-5", "5"}), (Outcome{0, kEnd, "content.....\n\n"}));
}

TEST_F(NewMiReceive, NothingIsShownFromBehindTheAnswer)
{
    const Bytes answer = pattern(4096, 3);
    machine.expect(receiveData({0x0800, 0, 4090, 0}).data(answer));
    EXPECT_EQ(unlisted({"new_mi_receive", "-6", "4090", "-l", "4096"}),
              (Outcome{0, kEnd, "content.....\n" + rows(some(answer, 4090, 6), 4090)}));
    machine.expect(receiveData({0x0800, 0, 0xFFFFFFFF, 0}).data(answer));
    EXPECT_EQ(unlisted({"new_mi_receive", "-6", "0xffffffff", "-l", "8"}), (Outcome{0, kEnd, "content.....\n\n"}));
    EXPECT_EQ(unlisted({"new_mi_receive", "-l", "4097"}),
              (Outcome{1, "new_mi_receive: data length 4097 is over the 4096 bytes of one answer\n"}));
}

TEST_F(NewMiReceive, TheFileTakesWhatIsShown)
{
    const Bytes answer = pattern(4096, 3);
    machine.expect(receiveData({0x0800, 0, 4, 0}).data(answer));
    EXPECT_EQ(unlisted({"new_mi_receive", "-6", "4", "-l", "9", "--outputfile", path("out")}),
              (Outcome{0, kEnd, "content.....\n" + rows(some(answer, 4, 9), 4)}));
    EXPECT_EQ(contentOf(path("out")), textOf(some(answer, 4, 9)));
    EXPECT_EQ(file, nullptr);
    const std::string none = path("no/such");
    EXPECT_EQ(unlisted({"new_mi_receive", "-f", none}),
              (Outcome{1, "new_mi_receive: cannot open '" + none + "': No such file or directory\n"}));
    machine.expect(receiveData({0x0800, 0, 0, 0}).data(answer));
    EXPECT_EQ(unlisted({"new_mi_receive", "-l", "1", "-f", "/dev/full"}).result, 1);
}

TEST_F(NewMiReceive, TellsOfAFailure)
{
    machine.expect(receiveData({0x0800, 9, 0, 0}).status(1));
    EXPECT_EQ(unlisted({"new_mi_receive", "-5", "9"}),
              (Outcome{1, std::string("MI receive failed.\n") + kEnd, "Invalid Command Opcode (Status Code: 0x1)\n"}));
}

TEST_F(NewMiReceive, OptionsAreChecked)
{
    checkNumbers("new_mi_receive", {{"--msgtype", "--msgtype: Invalid message type\n"},
                                    {"--ic", "--ic: Invalid IC\n"},
                                    {"--ror", "--ror: Invalid ROR\n"},
                                    {"--csi", "--csi: Invalid CSI\n"},
                                    {"--opcode", "--opcode: Invalid OPcode\n"},
                                    {"--req_dw0", "--req_dw0: Invalid Request DW0\n"},
                                    {"--req_dw1", "--req_dw1: Invalid Request DW1\n"},
                                    {"-l", "-l: Invalid data length\n"}});
}

}  // namespace
