// `dumphba`.
#include "cli/Functions/simple/simple_dumphba.h"

#include <cstring>

#include "tests/unit/cli/file_texts.h"
#include "tests/unit/cli/storage_fixture.h"
#include "tests/unit/support/libc.h"

namespace {

using namespace qrx::test;

const std::string kPage =
    "Description:For dump hba info data structure\n"
    "dumphba [--outputfile <outputfile>] [-a show] [-h]\n"
    "\n"
    "Options:\n"
    "    --outputfile <outputfile>\n"
    "         Output data into output file.\n"
    "    -a, --show\n"
    "        show parts value of HBA info readable.\n"
    "    -h, --help\n"
    "Examples:\n"
    "    dumphba \n"
    "    Output raw data\n"
    "\n"
    "    dumphba --outputfile=raw_data\n"
    "    Output raw data into file \"raw_data\"\n"
    "\n"
    "    dumphba -a show\n"
    "    Output parts value of HBA info.\n"
    "\n";
const std::string kSuccess = "cmd success\n";
const Outcome kNoFile{19, "File is not exist.\n"};

// A page whose settings are told apart, with these bytes at the head of the adapter's part.
Bytes settings(std::initializer_list<QRX_U8> switches, QRX_U8 setDefault, QRX_U8 level)
{
    Bytes bytes = pattern(4096);
    const QRX_U8 gpio[] = {0x78, 0x56, 0x34, 0xF2, 0x0D, 0xF0, 0xFE, 0xCA, 0x21, 0x43, 0x65, 0x07, setDefault};
    std::memcpy(bytes.data() + 64, gpio, sizeof(gpio));
    std::copy(switches.begin(), switches.end(), bytes.begin() + 448);
    bytes[448 + 40] = level;
    return bytes;
}

class DumphbaCommand : public StorageTest {
protected:
    static Command fetch() { return page(0x0FE0, 0x1401).word(10, 1023); }
    [[nodiscard]] std::string path(const std::string& name) const { return scratch.path(name); }

    Scratch scratch;
};

TEST_F(DumphbaCommand, Help)
{
    EXPECT_STREQ(simple_dumphba_help, kPage.c_str() + kPage.find('\n'));
    for (auto words : {Line{"dumphba", "-h"}, Line{"dumphba", "--help"}, Line{"dumphba", "-a", "show", "-h"}}) {
        EXPECT_EQ(command(words), (Outcome{0, kPage}));
    }
}

TEST_F(DumphbaCommand, TheBareWordDumpsThePage)
{
    machine.expect(fetch().data(pattern(4096)));
    EXPECT_EQ(command({"dumphba"}), (Outcome{0, rawOf(pattern(4096)) + kSuccess}));
    machine.expect(fetch().data(pattern(4096, 9)));
    EXPECT_EQ(command({"dumphba", "--output", "x"}), (Outcome{0, rawOf(pattern(4096, 9)) + kSuccess}));
}

TEST_F(DumphbaCommand, ShowsSettingsThatAreOn)
{
    machine.expect(fetch().data(settings({1, 0x80, 2, 3}, 4, 5)));
    EXPECT_EQ(command({"dumphba", "-a", "show"}), (Outcome{0,
                                                           "\n\n"
                                                           "QXF Function:                    On\n"
                                                           "SRIOV Function:                  On\n"
                                                           "Debug message in SPI:            On\n"
                                                           "MI-VPD buffer switch:            SPI\n"
                                                           "Debug Level:                     Error only\n"
                                                           "[GPIO Feature]                   \n"
                                                           "  Function Switch:               0xf2345678\n"
                                                           "  Level:                         0xcafef00d\n"
                                                           "  Value:                         0x7654321\n"
                                                           "  Set Default:                   On\n"
                                                           "\n\n"
                                                           "cmd success\n"}));
}

// One switch on at a time, so that no line can take another's.
TEST_F(DumphbaCommand, EachSwitchHasItsLine)
{
    const auto shown = [this](std::initializer_list<QRX_U8> switches, QRX_U8 setDefault, QRX_U8 level) {
        machine.expect(fetch().data(settings(switches, setDefault, level)));
        std::string text = command({"dumphba", "--action=SHOW"}).stream;
        std::string values;
        for (const char* label : {"QXF Function:", "SRIOV Function:", "Debug message in SPI:", "MI-VPD buffer switch:",
                                  "Debug Level:", "  Set Default:"}) {
            const std::size_t at = text.find(label) + 33;
            values += text.substr(at, text.find('\n', at) - at) + ",";
        }
        return values;
    };
    EXPECT_EQ(shown({0, 0, 0, 0}, 0, 0), "Off,Off,Off,EEPROM,Normal,Off,");
    EXPECT_EQ(shown({1, 0, 0, 0}, 0, 0), "Off,Off,On,EEPROM,Normal,Off,");
    EXPECT_EQ(shown({0, 1, 0, 0}, 0, 0), "On,Off,Off,EEPROM,Normal,Off,");
    EXPECT_EQ(shown({0, 0, 1, 0}, 0, 0), "Off,On,Off,EEPROM,Normal,Off,");
    EXPECT_EQ(shown({0, 0, 0, 1}, 0, 0), "Off,Off,Off,SPI,Normal,Off,");
    EXPECT_EQ(shown({0, 0, 0, 0}, 1, 0), "Off,Off,Off,EEPROM,Normal,On,");
    EXPECT_EQ(shown({0, 0, 0, 0}, 0, 1), "Off,Off,Off,EEPROM,Error only,Off,");
}

TEST_F(DumphbaCommand, AFileGetsTheWholePageAndNothingIsShown)
{
    for (auto words : {Line{"dumphba", "--outputfile", path("raw_data")},
                       Line{"dumphba", "--outputfile=" + path("raw_data"), "-a", "show"},
                       Line{"dumphba", "-a", "show", "-1", '"' + path("raw_data") + '"'},
                       Line{"dumphba", "-1", '"' + path("raw_data") + "\"behind"}}) {
        (void)scratch.file("raw_data", "what was there before");
        machine.expect(fetch().data(pattern(4096, 3)));
        EXPECT_EQ(command(words), (Outcome{0, kSuccess}));
        EXPECT_EQ(contentOf(path("raw_data")), textOf(pattern(4096, 3)));
    }
}

TEST_F(DumphbaCommand, WithoutTheFileNothingIsSent)
{
    EXPECT_EQ(command({"dumphba", "--outputfile", path("none/x")}), kNoFile);
    EXPECT_EQ(command({"dumphba", "--outputfile", path("none/x"), "-a", "show"}), kNoFile);
    EXPECT_EQ(command({"dumphba", "--outputfile", "."}), kNoFile);
    EXPECT_EQ(command({"dumphba", "--outputfile", ""}), kNoFile);
    EXPECT_EQ(command({"dumphba", "--outputfile", std::string(5000, 'n')}), kNoFile);
    EXPECT_EQ(command({"dumphba", "--outputfile", "'x'"}),
              (Outcome{19, kNoFile.stream, "Please use double quotation mark to include strings.\n"}));
}

TEST_F(DumphbaCommand, TheLastFileCounts)
{
    EXPECT_EQ(command({"dumphba", "--outputfile", path("one"), "--outputfile", path("none/x")}), kNoFile);
    EXPECT_EQ(contentOf(path("one")), "");
    machine.expect(fetch().data(pattern(4096, 5)));
    EXPECT_EQ(command({"dumphba", "--outputfile", path("none/x"), "--outputfile", path("two")}),
              (Outcome{0, kSuccess}));
    EXPECT_EQ(contentOf(path("two")), textOf(pattern(4096, 5)));
}

TEST_F(DumphbaCommand, AFileThatCannotBeWrittenIsSaidToBeIncomplete)
{
    machine.expect(fetch().data(pattern(4096)));
    EXPECT_EQ(command({"dumphba", "--outputfile", "/dev/full"}),
              (Outcome{1, "dumphba: cannot write '/dev/full': No space left on device; the file is incomplete\n"}));
}

TEST_F(DumphbaCommand, TheFileIsEmptiedBeforeALaterOptionIsRefused)
{
    EXPECT_EQ(command({"dumphba", "--outputfile", scratch.file("old", "old"), "-a", "list"}),
              (Outcome{0, "-a : invalid action 'list'.\n"}));
    EXPECT_EQ(contentOf(path("old")), "");
    EXPECT_EQ(command({"dumphba", "--outputfile", scratch.file("old", "old"), "-z"}),
              (Outcome{0, "", "", "dumphba: illegal option -- z\n"}));
    EXPECT_EQ(contentOf(path("old")), "");
}

TEST_F(DumphbaCommand, OneActionAtMost)
{
    EXPECT_EQ(command({"dumphba", "-a", "show", "-a", "SHOW"}), (Outcome{1, "Duplicated option specified.\n"}));
    EXPECT_EQ(command({"dumphba", "-a", "show", "--outputfile", path("none/x"), "-a", "show"}),
              (Outcome{1, "Duplicated option specified.\n"}));
}

TEST_F(DumphbaCommand, OptionsAreRefused)
{
    EXPECT_EQ(command({"dumphba", "-a", ""}), (Outcome{0, "-a : invalid action ''.\n"}));
    EXPECT_EQ(command({"dumphba", "--show"}), (Outcome{0, "", "", "dumphba: unrecognized option `--show'\n"}));
    EXPECT_EQ(command({"dumphba", "-a"}), (Outcome{0, "", "", "dumphba: option requires an argument -- a\n"}));
}

TEST_F(DumphbaCommand, AFailureNamesTheControllerByItsIndex)
{
    machine.expect(fetch().data(pattern(4096)).status(0x704));
    EXPECT_EQ(command({"dumphba", "-a", "show"}),
              (Outcome{0x704, "\nUnable to dump NVMe Controller info from NVMe Controller 1\n",
                       "Invalid parameter (Status Code: 0x704)\n"}));
    machine.expect(fetch().error(5).status(0xFFFFFFFF));
    EXPECT_EQ(command({"dumphba", "--outputfile", scratch.file("old", "old")}).result, -1);
    EXPECT_EQ(contentOf(path("old")), "");
}

TEST_F(DumphbaCommand, DebugShowsTheWords)
{
    dbg_enable = 1;
    machine.expect(fetch().data(Bytes(4096)));
    EXPECT_EQ(command({"dumphba", "--outputfile", path("raw")}),
              (Outcome{0, "CDW[0] : 0x000000e2\nCDW[10]: 0x000003ff\nCDW[12]: 0x00000fe0\n" + kSuccess}));
}

}  // namespace
