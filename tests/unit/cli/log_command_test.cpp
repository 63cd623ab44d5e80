// `log`: the switch, the pages as they are read, and the file that takes them.
#include <pty.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "api/src/device/common/DeviceManagement.h"
#include "cli/Functions/simple/simple_log.h"
#include "cli/Public/utility.h"
#include "tests/unit/cli/file_texts.h"
#include "tests/unit/cli/storage_fixture.h"
#include "tests/unit/support/libc.h"

namespace {

using namespace qrx::test;

constexpr char kPage[] =
    "Description:For show/on/off SPI log\n"
    "log <-a show [--outputfile=log.txt] |on|off > [-h]\n"
    "\n"
    "Options:\n"
    "    -a,  --action show and set on/off.\n"
    "           show, show SPI log\n"
    "           on, enable SPI log\n"
    "           off, disable SPI log\n"
    "    --outputfile <outputfile>\n"
    "         Output data into output file.\n"
    "    -h,  --help\n"
    "Examples:\n"
    "    log -a show\n"
    "    Show SPI log\n"
    "\n"
    "    log -a show --outputfile=log.txt\n"
    "    Show SPI log into text file which named \"log.txt\"\n"
    "\n"
    "    log -a on\n"
    "    Enable SPI log\n"
    "\n"
    "    log -a off\n"
    "    Disable SPI log\n"
    "\n";

const std::string kUnable = "\nUnable to get SPI log from NVMe Controller\n";
const std::string kSuccess = "cmd success\n";

// A page of the log that claims `length` bytes of text.
Bytes logPage(const std::string& text, QRX_U32 length)
{
    Bytes page(16 + text.size(), 0xEE);  // the head is not read, but for the length
    for (unsigned i = 0; i < 4; ++i) {
        page[8 + i] = static_cast<QRX_U8>(length >> 8 * i);
    }
    std::copy(text.begin(), text.end(), page.begin() + 16);
    return page;
}

Bytes logPage(const std::string& text)
{
    return logPage(text, static_cast<QRX_U32>(text.size()));
}

class LogCommand : public StorageTest {
protected:
    static Command statusRead() { return page(0x2FE, 0x1401).word(10, 1023); }
    static Command pageRead() { return page(0xFE, 0x1401).word(10, 1023); }
    static Command switched(QRX_U32 on) { return plain(0x3FE, 0x5001).word(14, on); }

    void isOn(QRX_U8 on = 1) { machine.expect(statusRead().data(envelope(Bytes{on, 0xEE, 0xEE, 0xEE}))); }
    void pages(const std::vector<std::string>& texts)
    {
        for (const std::string& text : texts) {
            machine.expect(pageRead().data(logPage(text)));
        }
        machine.expect(pageRead().data(logPage("")));
    }
    // `log -a show` of a log that is on and has these pages.
    Outcome show(const std::vector<std::string>& texts)
    {
        isOn();
        pages(texts);
        return command({"log", "-a", "show"});
    }
    Outcome showTo(const std::string& name, const std::vector<std::string>& texts)
    {
        isOn();
        pages(texts);
        return command({"log", "-a", "show", "--outputfile=" + name});
    }

    Scratch scratch;
};

TEST_F(LogCommand, Help)
{
    EXPECT_EQ(command({"log"}), (Outcome{1, kPage}));
    for (auto words : {Line{"log", "-h"}, Line{"log", "--help"}, Line{"log", "-t", "x"}, Line{"log", "--type=x"},
                       Line{"log", "-a", "on", "-h"}, Line{"log", "-a", "on", "-a", "on", "-t", "x"}}) {
        EXPECT_EQ(command(words), (Outcome{0, kPage}));
    }
    EXPECT_EQ(command({"log", "-z"}), (Outcome{0, "", "", "log: illegal option -- z\n"}));
}

TEST_F(LogCommand, SwitchesOnAndOff)
{
    for (const char* word : {"on", "ON", "On"}) {
        machine.expect(switched(1));
        EXPECT_EQ(command({"log", "-a", word}), (Outcome{0, kSuccess}));
    }
    machine.expect(switched(0));
    EXPECT_EQ(command({"log", "--action=off", "--output", "x"}), (Outcome{0, kSuccess}));
    machine.expect(switched(0).status(0x705));
    EXPECT_EQ(command({"log", "-a", "off"}), (Outcome{0x705, "cmd failed.\n", "Not supported (Status Code: 0x705)\n"}));
    machine.expect(switched(1).error(EIO));
    EXPECT_EQ(command({"log", "-a", "on"}).result, -1);
}

TEST_F(LogCommand, ABadActionReturnsZero)
{
    EXPECT_EQ(command({"log", "-a", "start"}), (Outcome{0, "-a : invalid action 'start'.\n"}));
    EXPECT_EQ(command({"log", "-a", "", "-h"}), (Outcome{0, "-a : invalid action ''.\n"}));
}

TEST_F(LogCommand, TwoActionsAreRefused)
{
    EXPECT_EQ(command({"log", "-a", "on", "-a", "off"}), (Outcome{1, "Duplicated option specified.\n"}));
    EXPECT_EQ(command({"log", "-a", "show", "--action", "show"}), (Outcome{1, "Duplicated option specified.\n"}));
}

TEST_F(LogCommand, WithoutAnActionAFileIsMadeAllTheSame)
{
    const std::string name = scratch.file("x", "before");
    EXPECT_EQ(command({"log", "--outputfile=" + name}), (Outcome{1, "Error action!\n"}));
    EXPECT_EQ(contentOf(name), "");
    EXPECT_EQ(command({"log", "--output", "x"}), (Outcome{1, "Error action!\n"}));
    EXPECT_EQ(command({"log", "--outputfile=" + scratch.path("no/such")}), (Outcome{1, "Error action!\n"}));
    EXPECT_EQ(file, nullptr);
}

TEST_F(LogCommand, ShowsEveryPage)
{
    EXPECT_EQ(show({"one\ntwo", "three\n"}), (Outcome{0, "one\ntwothree\n" + kSuccess}));
    const std::string whole(4080, 'w');
    EXPECT_EQ(show({whole, whole, "."}), (Outcome{0, whole + whole + "." + kSuccess}));
}

TEST_F(LogCommand, AnyValueButZeroIsOn)
{
    isOn(0x80);
    pages({"text\n"});
    EXPECT_EQ(command({"log", "-a", "SHOW"}), (Outcome{0, "text\n" + kSuccess}));
}

TEST_F(LogCommand, AnEmptyLogIsToldAsSuch)
{
    EXPECT_EQ(show({}), (Outcome{0, "No SPI log\n" + kSuccess}));
}

TEST_F(LogCommand, ALogThatIsOffIsNotRead)
{
    isOn(0);
    EXPECT_EQ(command({"log", "-a", "show"}), (Outcome{1, kUnable}));
}

TEST_F(LogCommand, AWrongSignatureMeansOff)
{
    for (const Bytes& answer : {Bytes{'Q', 'R', 'Y', 0, 0, 0, 0, 0, 1}, Bytes{'X', 'R', 'X', 0, 0, 0, 0, 0, 1},
                                Bytes{'Q', 'X', 'X', 0, 0, 0, 0, 0, 1}, Bytes{}}) {
        machine.expect(statusRead().data(answer));
        EXPECT_EQ(command({"log", "-a", "show"}), (Outcome{1, kUnable}));
    }
}

TEST_F(LogCommand, TheVerdictOfTheStatusIsNotLookedAt)
{
    machine.expect(statusRead().data(envelope(Bytes{1}, 5)));
    pages({"text\n"});
    EXPECT_EQ(command({"log", "-a", "show"}), (Outcome{0, "text\n" + kSuccess}));
}

TEST_F(LogCommand, AStatusThatCannotBeReadDoesNotStopTheRead)
{
    machine.expect(statusRead().status(0x705));
    pages({"text\n"});
    EXPECT_EQ(command({"log", "-a", "show"}),
              (Outcome{0, kUnable + "text\n" + kSuccess, "Not supported (Status Code: 0x705)\n"}));
}

TEST_F(LogCommand, APageThatCannotBeReadEndsTheCommandWithItsStatus)
{
    isOn();
    machine.expect(pageRead().data(logPage("text\n")));
    machine.expect(pageRead().status(6));
    EXPECT_EQ(command({"log", "-a", "show"}), (Outcome{6, "text\n" + kUnable, "Internal Error (Status Code: 0x6)\n"}));
    isOn();
    machine.expect(pageRead().error(EIO));
    EXPECT_EQ(command({"log", "-a", "show"}).result, -1);
}

TEST_F(LogCommand, ALengthBeyondThePageIsRefused)
{
    isOn();
    machine.expect(pageRead().data(logPage("text", 4081)));
    EXPECT_EQ(command({"log", "-a", "show"}), (Outcome{1, "Error SPI data length: 4081\n"}));
    isOn();
    machine.expect(pageRead().data(logPage("text", 0xFFFF)));
    EXPECT_EQ(command({"log", "-a", "show"}), (Outcome{1, "Error SPI data length: 65535\n"}));
}

TEST_F(LogCommand, OfTheLengthSixteenBitsCount)
{
    isOn();
    machine.expect(pageRead().data(logPage("text", 0xABCD0004)));
    machine.expect(pageRead().data(logPage("text", 0x10000)));
    EXPECT_EQ(command({"log", "-a", "show"}), (Outcome{0, "text" + kSuccess}));
}

TEST_F(LogCommand, ZeroBytesBehindALineFeedAreOneBlank)
{
    const std::string zero(1, '\0');
    EXPECT_EQ(show({"a\n" + zero + "b\n" + zero + zero + zero + "c\n" + zero}),
              (Outcome{0, "a\n b\n c\n " + kSuccess}));
    EXPECT_EQ(show({"a" + zero + zero + "b\n"}), (Outcome{0, "a" + zero + zero + "b\n" + kSuccess}));
    EXPECT_EQ(show({zero + "a\n", zero + "b\n"}), (Outcome{0, zero + "a\n" + zero + "b\n" + kSuccess}));
    EXPECT_EQ(show({"a\n" + std::string(4078, '\0')}), (Outcome{0, "a\n " + kSuccess}));
}

TEST_F(LogCommand, BytesAreShownAsTheyCome)
{
    std::string text;
    for (int byte = 1; byte < 256; ++byte) {
        text += static_cast<char>(byte);
    }
    EXPECT_EQ(show({text}), (Outcome{0, text + kSuccess}));
}

TEST_F(LogCommand, OnATerminalControlCharactersAreNot)
{
    int control = -1;
    int terminal = -1;
    ASSERT_EQ(openpty(&control, &terminal, nullptr, nullptr, nullptr), 0);
    FILE* const shown = fdopen(terminal, "w");
    isOn();
    pages({"a\tb\r\nc\rd\x1B[31m\x9B\x7F\n", "e\r", "\nf\r", "g\r"});
    pCmdTable = generalCmdTableV1;
    cmdTableSize = static_cast<QRX_U16>(generalCmdTableV1Size());
    const int result = outcomeOf([&] {
                           stream = shown;
                           Words words{"log", "-a", "show"};
                           return cmdDispatcher(words.argc(), words.argv());
                       }).result;
    std::fclose(shown);
    std::string text;
    char byte = 0;
    while (read(control, &byte, 1) == 1) {  // until there is nothing left behind the closed terminal
        text += byte;                       // which puts a carriage return in front of each line feed
    }
    EXPECT_EQ(result, 0);
    EXPECT_EQ(text, "a\tb\r\r\nc?d?[31m??\r\ne\r\r\nf?g?cmd success\r\n");
    close(control);
}

TEST_F(LogCommand, ALogWithoutEndIsGivenUp)
{
    machine.clear();
    static QRX_U32 reads;
    reads = 0;
    PDevice device = GetDeviceManagementInstance()->m_devs[1]->getNVMEDevice(GetDeviceManagementInstance()->m_devs[1]);
    device->sendPassthruAdmin = [](PDevice, void*, void*, QRX_U16, void* out, QRX_U16, QRX_U32*) -> QRX_U32 {
        const Bytes answer = reads++ == 0 ? envelope(Bytes{1}) : logPage("x");
        std::copy(answer.begin(), answer.end(), static_cast<QRX_U8*>(out));
        return 0;
    };
    EXPECT_EQ(command({"log", "-a", "show"}),
              (Outcome{1, std::string(65536, 'x') + "The SPI log has no end: only its first 65536 pages are shown\n"}));
    EXPECT_EQ(reads, 65537U);
}

TEST_F(LogCommand, TheFileGetsWhatTheScreenGets)
{
    const std::string name = scratch.file("log.txt", "before");
    const std::string zeros("one\n\0\0two\n\0", 11);
    EXPECT_EQ(showTo(name, {zeros, "three\n"}), (Outcome{0, "one\n two\n three\n" + kSuccess}));
    EXPECT_EQ(contentOf(name), "one\n two\n three\n");
    EXPECT_EQ(file, nullptr);
    EXPECT_EQ(showTo(name, {}), (Outcome{0, "No SPI log\n" + kSuccess}));
    EXPECT_EQ(contentOf(name), "");
}

TEST_F(LogCommand, TheNameOfTheFileMayBeQuoted)
{
    EXPECT_EQ(showTo('"' + scratch.path("my log") + '"', {"text\n"}).result, 0);
    EXPECT_EQ(contentOf(scratch.path("my log")), "text\n");
    EXPECT_EQ(showTo('"' + scratch.path("my log"), {"open\n"}).result, 0);
    EXPECT_EQ(contentOf(scratch.path("my log")), "open\n");
}

TEST_F(LogCommand, OfSeveralFilesTheLastOneCounts)
{
    const std::string first = scratch.file("first", "before");
    const std::string second = scratch.path("second");
    isOn();
    pages({"text\n"});
    EXPECT_EQ(command({"log", "--outputfile", first, "-a", "show", "--outputfile", second}).result, 0);
    EXPECT_EQ(contentOf(first), "");
    EXPECT_EQ(contentOf(second), "text\n");
}

TEST_F(LogCommand, AFileThatCannotBeOpenedStopsTheRead)
{
    const std::string name = scratch.path("no/such/file");
    EXPECT_EQ(command({"log", "-a", "show", "--outputfile=" + name}),
              (Outcome{1, "log: cannot open '" + name + "': No such file or directory\n"}));
    const std::string tooLong(1024, 'x');
    EXPECT_EQ(command({"log", "-a", "show", "--outputfile=" + tooLong}),
              (Outcome{1, "log: cannot open '" + tooLong + "': File name too long\n"}));
    machine.expect(switched(1));  // which has no use for the file
    EXPECT_EQ(command({"log", "-a", "on", "--outputfile=" + name}), (Outcome{0, kSuccess}));
}

TEST_F(LogCommand, AFullDiskIsToldAndTheScreenGetsTheRest)
{
    EXPECT_EQ(showTo("/dev/full", {"one\n", "two\n"}),
              (Outcome{1,
                       "one\ntwo\n"
                       "log: cannot write '/dev/full': No space left on device; the file is incomplete\n"}));
    EXPECT_EQ(file, nullptr);
}

TEST_F(LogCommand, AFileThatEndsTooEarlyIsToldOnStandardError)
{
    const std::string name = scratch.path("x");
    isOn();
    machine.expect(pageRead().data(logPage("text\n")));
    machine.expect(pageRead().status(6));
    EXPECT_EQ(
        command({"log", "-a", "show", "--outputfile=" + name}),
        (Outcome{6, "text\n" + kUnable, "Internal Error (Status Code: 0x6)\n", "log: '" + name + "' is incomplete\n"}));
    EXPECT_EQ(contentOf(name), "text\n");
    EXPECT_EQ(file, nullptr);

    isOn();
    machine.expect(pageRead().data(logPage("text", 5000)));
    EXPECT_EQ(command({"log", "-a", "show", "--outputfile=" + name}), (Outcome{1, "Error SPI data length: 5000\n"}));
    EXPECT_EQ(contentOf(name), "");
}

TEST_F(LogCommand, AFailedReadKeepsItsStatusWhereTheFileIsIncompleteToo)
{
    isOn();
    machine.expect(pageRead().data(logPage("text\n")));
    machine.expect(pageRead().status(6));
    EXPECT_EQ(
        command({"log", "-a", "show", "--outputfile=/dev/full"}),
        (Outcome{
            6, "text\n" + kUnable + "log: cannot write '/dev/full': No space left on device; the file is incomplete\n",
            "Internal Error (Status Code: 0x6)\n"}));
}

TEST_F(LogCommand, DebugLines)
{
    dbg_enable = 1;
    const std::string status = "CDW[0] : 0x000000e2\nCDW[10]: 0x000003ff\nCDW[12]: 0x000002fe\n";
    const std::string read = "CDW[0] : 0x000000e2\nCDW[10]: 0x000003ff\nCDW[12]: 0x000000fe\n";
    EXPECT_EQ(show({"text\n"}), (Outcome{0, status + read + "text\n" + read + kSuccess}));
    machine.expect(switched(1));
    EXPECT_EQ(command({"log", "-a", "on"}),
              (Outcome{0, "CDW[0] : 0x000000e2\nCDW[12]: 0x000003fe\nCDW[14]: 0x00000001\n" + kSuccess}));
    machine.expect(statusRead().data(Bytes{0x51, 0x0A, 0xBC}));
    EXPECT_EQ(command({"log", "-a", "show"}),
              (Outcome{1, status + "receive sign get 0x51 0xa 0xbc expect 0x51 0x52 0x58\n" + kUnable}));
}

}  // namespace
