// `new_vpdread`, `new_vpdwrite` and the earlier `vpd`.
#include "tests/unit/cli/unlisted/management/front_fixture.h"

namespace {

using namespace qrx::test;

// --- new_vpdread -----------------------------------------------------------------------------------------------------

class NewVpdRead : public FrontTest {
protected:
    static Bytes answer() { return pattern(4096, 3); }
    static Command receive(QRX_U32 offset, QRX_U32 length)
    {
        return receiveData({0x0884, 5, offset, length}).data(answer());
    }
    static constexpr char kDone[] = "MI send for VPD read success.\n";
};

TEST_F(NewVpdRead, Help)
{
    checkHelp("new_vpdread");
    EXPECT_EQ(helpOf("new_vpdread").find("Description:Read VPD via standard 1.1 MI-Send and MI-Receive\n"), 0U);
}

TEST_F(NewVpdRead, ReceivesAndSendsNothing)
{
    machine.expect(receive(0, 32));
    EXPECT_EQ(unlisted({"new_vpdread", "-o", "0", "-l", "32"}),
              (Outcome{0, kDone, range("0x0", "0x20") + "content.....\n" + rows(some(answer(), 0, 32))}));
    machine.expect(receive(0x2345, 0xd));
    EXPECT_EQ(unlisted({"new_vpdread", "--offset", "0x12345", "--datalen", "0x1000d"}),
              (Outcome{0, kDone, range("0x2345", "0xd") + "content.....\n" + rows(some(answer(), 0, 13))}));
}

TEST_F(NewVpdRead, AnAnswerIsAPage)
{
    machine.expect(receive(0, 4096));
    EXPECT_EQ(unlisted({"new_vpdread", "-o", "0", "-l", "4096"}),
              (Outcome{0, kDone, range("0x0", "0x1000") + "content.....\n" + rows(answer())}));
    EXPECT_EQ(unlisted({"new_vpdread", "-o", "0", "-l", "4097"}),
              (Outcome{1, "new_vpdread: data length 4097 is over the 4096 bytes of one answer\n"}));
}

TEST_F(NewVpdRead, TheFileTakesTheData)
{
    machine.expect(receive(4, 300));
    EXPECT_EQ(unlisted({"new_vpdread", "-o", "4", "-l", "300", "--outputfile", path("out")}),
              (Outcome{0, kDone, range("0x4", "0x12c")}));
    EXPECT_EQ(contentOf(path("out")), textOf(some(answer(), 0, 300)));
    const std::string none = path("no/such");
    EXPECT_EQ(unlisted({"new_vpdread", "-o", "0", "-l", "8", "-f", none}),
              (Outcome{1, "new_vpdread: cannot open '" + none + "': No such file or directory\n"}));
}

TEST_F(NewVpdRead, TellsOfAFailure)
{
    machine.expect(receive(0, 8).status(2));
    EXPECT_EQ(unlisted({"new_vpdread", "-o", "0", "-l", "8"}),
              (Outcome{2, "MI receive for VPD read failed.\n",
                       range("0x0", "0x8") + "Invalid Field in Command (Status Code: 0x2)\n"}));
}

TEST_F(NewVpdRead, OptionsAreChecked)
{
    checkNumbers("new_vpdread", {{"-o", "-o: Invalid offset value\n"}, {"-l", "-l: Invalid data length value\n"}});
    EXPECT_EQ(unlisted({"new_vpdread", "-l", "8"}), (Outcome{0, "new_vpdread: option -o is required\n"}));
    EXPECT_EQ(unlisted({"new_vpdread", "-o", "8"}), (Outcome{0, "new_vpdread: option -l is required\n"}));
    EXPECT_EQ(unlisted({"new_vpdread", "-f", path("a"), "-f", path("b")}), kDuplicate);
}

// --- new_vpdwrite ----------------------------------------------------------------------------------------------------

class NewVpdWrite : public FrontTest {
protected:
    static Command send(QRX_U32 offset, const Bytes& data)
    {
        return sendData({0x0884, 6, offset, static_cast<QRX_U32>(data.size())}, data);
    }
    static std::string shown(const Bytes& bytes) { return "spi write data....." + raw(bytes); }
    static constexpr char kDone[] = "MI send for VPD write success.\n";
};

TEST_F(NewVpdWrite, Help)
{
    checkHelp("new_vpdwrite");
    EXPECT_EQ(helpOf("new_vpdwrite").find("Description:Write VPD via standard 1.1 MI-Send\n"), 0U);
}

TEST_F(NewVpdWrite, SendsThePayloadAlone)
{
    const Bytes data = pattern(20, 9);
    machine.expect(send(0, data));
    EXPECT_EQ(unlisted({"new_vpdwrite", "-o", "0", "-l", "20", "-f", fileOf(data)}),
              (Outcome{0, shown(data) + kDone, rows(data)}));
    machine.expect(send(5, padded(data, 24)));
    EXPECT_EQ(unlisted({"new_vpdwrite", "-o", "5", "-l", "24", "-f", fileOf(data)}),
              (Outcome{0, shown(data) + kDone, rows(padded(some(data, 5, 15), 24), 5)}));
    machine.expect(send(0, some(data, 0, 8)));
    EXPECT_EQ(unlisted({"new_vpdwrite", "-o", "0", "-l", "8", "--outputfile", fileOf(data)}),
              (Outcome{0, shown(some(data, 0, 8)) + kDone, rows(some(data, 0, 8))}));
    machine.expect(send(0, {}));
    EXPECT_EQ(unlisted({"new_vpdwrite", "-o", "0", "-l", "0", "-f", fileOf(data)}),
              (Outcome{0, shown({}) + kDone, "\n"}));
    EXPECT_EQ(file, nullptr);
}

TEST_F(NewVpdWrite, APayloadFillsThePageAndNotMore)
{
    const Bytes content = pattern(5000, 77);
    machine.expect(send(0, some(content, 0, 4096)));
    EXPECT_EQ(unlisted({"new_vpdwrite", "-o", "0", "-l", "4096", "-f", fileOf(content)}).result, 0);
    EXPECT_EQ(unlisted({"new_vpdwrite", "-o", "0", "-l", "4097", "-f", fileOf(content)}),
              (Outcome{1, "new_vpdwrite: data length 4097 is over the 4096 bytes of one command\n"}));
}

TEST_F(NewVpdWrite, TellsOfAFailure)
{
    machine.expect(send(0, pattern(4)).status(2));
    EXPECT_EQ(unlisted({"new_vpdwrite", "-o", "0", "-l", "4", "-f", fileOf(pattern(4))}),
              (Outcome{2, shown(pattern(4)) + "MI send for VPD write failed.\n",
                       rows(pattern(4)) + "Invalid Field in Command (Status Code: 0x2)\n"}));
    const std::string none = path("none");
    EXPECT_EQ(unlisted({"new_vpdwrite", "-o", "0", "-l", "4", "-f", none}),
              (Outcome{1, "new_vpdwrite: cannot open '" + none + "': No such file or directory\n"}));
}

TEST_F(NewVpdWrite, OptionsAreChecked)
{
    checkNumbers("new_vpdwrite", {{"-o", "-o: Invalid offset value\n"}, {"-l", "-l: Invalid data length value\n"}});
    EXPECT_EQ(unlisted({"new_vpdwrite", "-l", "8"}), (Outcome{0, "new_vpdwrite: option -o is required\n"}));
    EXPECT_EQ(unlisted({"new_vpdwrite", "-o", "8"}), (Outcome{0, "new_vpdwrite: option -l is required\n"}));
    EXPECT_EQ(unlisted({"new_vpdwrite", "-o", "8", "-l", "8"}), (Outcome{0, "new_vpdwrite: option -f is required\n"}));
}

// --- vpd -------------------------------------------------------------------------------------------------------------

class OldVpd : public FrontTest {
protected:
    static Command readPage() { return Command::admin(2, 0, {0x004000C0}).receives(256).carries(Bytes(256)).on(1); }
    static Command write(const Bytes& block) { return Command::admin(199, 0, {64}).sends(block).on(1); }
    static constexpr char kDone[] = "Write VPD via vendor specific successful.\n";
};

TEST_F(OldVpd, Help)
{
    checkHelp("vpd");
    EXPECT_EQ(helpOf("vpd").find("Description:Read and write VPD data\nvpd <-t [read|vsw]> [--outputfile <outputfile>]"
                                 "[--inputfile <inputfile>][-o offset][-l data_len][-h]\n"),
              0U);
}

TEST_F(OldVpd, ReadsALogPage)
{
    machine.expect(readPage().data(pattern(256, 5)));
    EXPECT_EQ(unlisted({"vpd", "-t", "read"}), (Outcome{0, raw(pattern(256, 5))}));
    machine.expect(readPage().data(pattern(256, 5)));
    EXPECT_EQ(unlisted({"vpd", "--type", "READ", "-o", "7", "-l", "0x9", "--outputfile", path("out")}),
              (Outcome{0, ""}));
    EXPECT_EQ(contentOf(path("out")), textOf(pattern(256, 5)));
    machine.expect(readPage().status(0x109));
    EXPECT_EQ(unlisted({"vpd", "-t", "read"}),
              (Outcome{0x109, "Read VPD failed.\n", "Invalid Log Page (Status Code: 0x109)\n"}));
    const std::string none = path("no/such");
    EXPECT_EQ(unlisted({"vpd", "-t", "read", "-1", none}),
              (Outcome{1, "vpd: cannot open '" + none + "': No such file or directory\n"}));
}

TEST_F(OldVpd, WritesABlock)
{
    for (const std::size_t length : {0U, 10U, 256U, 300U, 5000U}) {
        const Bytes content = pattern(length, 5);
        machine.expect(write(padded(some(content, 0, std::min<std::size_t>(length, 256)), 256)));
        EXPECT_EQ(unlisted({"vpd", "-t", "vsw", "--inputfile", fileOf(content)}), (Outcome{0, kDone})) << length;
    }
    EXPECT_EQ(file, nullptr);
    machine.expect(write(padded(pattern(3), 256)).status(2));
    EXPECT_EQ(unlisted({"vpd", "-t", "VSW", "-2", fileOf(pattern(3))}),
              (Outcome{2, "Write VPD via vendor specific failed.\n", "Invalid Field in Command (Status Code: 0x2)\n"}));
}

TEST_F(OldVpd, AWriteNeedsAFile)
{
    EXPECT_EQ(unlisted({"vpd", "-t", "vsw"}), (Outcome{0, "Please provide input file.\n"}));
    const std::string none = path("none");
    EXPECT_EQ(unlisted({"vpd", "-t", "vsw", "-2", none}),
              (Outcome{1, "vpd: cannot open '" + none + "': No such file or directory\n"}));
    EXPECT_EQ(unlisted({"vpd", "-t", "vsw", "-2", path("")}),
              (Outcome{1, "vpd: cannot read '" + path("") + "': Is a directory\n"}));
}

TEST_F(OldVpd, BothFilesMayBeNamed)
{
    const std::string input = fileOf(pattern(256, 8));
    for (const bool outputFirst : {false, true}) {
        machine.expect(readPage().data(pattern(256, 5)));
        const auto first = outputFirst ? std::pair("-1", path("out")) : std::pair("-2", input);
        const auto second = outputFirst ? std::pair("-2", input) : std::pair("-1", path("out"));
        EXPECT_EQ(unlisted({"vpd", "-t", "read", first.first, first.second, second.first, second.second}),
                  (Outcome{0, ""}));
        EXPECT_EQ(contentOf(path("out")), textOf(pattern(256, 5)));
        machine.expect(write(pattern(256, 8)));
        EXPECT_EQ(unlisted({"vpd", "-t", "vsw", first.first, first.second, second.first, second.second}),
                  (Outcome{0, kDone}));
    }
}

TEST_F(OldVpd, OneFileIsNotBoth)
{
    const std::string file = fileOf(pattern(256, 8));
    EXPECT_EQ(unlisted({"vpd", "-t", "read", "-2", file, "-1", file}),
              (Outcome{1, "vpd: '" + file + "' is the input file\n"}));
    EXPECT_EQ(contentOf(file), textOf(pattern(256, 8)));
    EXPECT_EQ(unlisted({"vpd", "-t", "vsw", "-1", file, "-2", file}),
              (Outcome{1, "vpd: '" + file + "' is the output file\n"}));
    EXPECT_EQ(contentOf(file), "") << "emptied in the option pass";
}

TEST_F(OldVpd, ADeviceMayBeBoth)
{
    machine.expect(readPage().data(pattern(256, 5)));
    EXPECT_EQ(unlisted({"vpd", "-t", "read", "-2", "/dev/null", "-1", "/dev/null"}), (Outcome{0, ""}));
    machine.expect(write(Bytes(256)));
    EXPECT_EQ(unlisted({"vpd", "-t", "vsw", "-1", "/dev/null", "-2", "/dev/null"}), (Outcome{0, kDone}));
}

TEST_F(OldVpd, OptionsAreChecked)
{
    EXPECT_EQ(unlisted({"vpd", "-o", "7k", "-h"}), (Outcome{0, "-o : invalid offset '7k'\n"}));
    EXPECT_EQ(unlisted({"vpd", "-l", "-1", "-h"}), (Outcome{0, "-l : invalid data_len '-1'\n"}));
    EXPECT_EQ(unlisted({"vpd", "-o", "0", "-o", "0"}), kDuplicate);
    EXPECT_EQ(unlisted({"vpd", "-l", "0", "-l", "0"}), kDuplicate);
    EXPECT_EQ(unlisted({"vpd", "-t", "write", "-h"}), (Outcome{0, "-t : invalid type 'write'\n"}));
    EXPECT_EQ(unlisted({"vpd", "-o", "0"}), (Outcome{0, "vpd: option -t is required\n"}));
    for (const std::string option : {"-t", "-1", "-2"}) {
        const std::string value = option == "-t" ? "read" : path("x");
        EXPECT_EQ(unlisted({"vpd", option, value, option, value}), kDuplicate);
    }
}

}  // namespace
