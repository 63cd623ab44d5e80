// `log_vdm`: what differs from `log`, whose test has all that the two share.
#include "tests/unit/cli/file_texts.h"
#include "tests/unit/cli/run_unlisted.h"
#include "tests/unit/cli/storage_fixture.h"
#include "tests/unit/support/libc.h"

namespace {

using namespace qrx::test;

constexpr char kPage[] =
    "Description:For show/on/off VDM log\n"
    "log_vdm <-a show [--outputfile=log.txt] |on|off > [-h]\n"
    "\n"
    "Options:\n"
    "    -a,  --action show and set on/off.\n"
    "           show, show VDM log\n"
    "           on, enable VDM log\n"
    "           off, disable VDM log\n"
    "    --outputfile <outputfile>\n"
    "         Output data into output file.\n"
    "    -h,  --help\n"
    "Examples:\n"
    "    log_vdm -a show\n"
    "    Show VDM log\n"
    "\n"
    "    log_vdm -a show --outputfile=log.txt\n"
    "    Show VDM log into text file which named \"log.txt\"\n"
    "\n"
    "    log_vdm -a on\n"
    "    Enable VDM log\n"
    "\n"
    "    log_vdm -a off\n"
    "    Disable VDM log\n"
    "\n";

const std::string kUnable = "\nUnable to get VDM log from NVMe Controller\n";

class LogVdmCommand : public StorageTest {
protected:
    static Command statusRead() { return page(0x8FE, 0x1401).word(10, 1023); }
    static Command pageRead() { return page(0x6FE, 0x1401).word(10, 1023); }
    static Command switched(QRX_U32 on) { return plain(0x7FE, 0x5001).word(14, on); }
    static Bytes logPage(const std::string& text, QRX_U16 length)
    {
        Bytes page(16 + text.size());
        page[8] = static_cast<QRX_U8>(length & 0xFF);
        page[9] = static_cast<QRX_U8>(length >> 8);
        std::copy(text.begin(), text.end(), page.begin() + 16);
        return page;
    }
    void isOn(QRX_U8 on = 1) { machine.expect(statusRead().data(envelope(Bytes{on, 0xEE}))); }
};

TEST_F(LogVdmCommand, Help)
{
    EXPECT_EQ(unlisted({"log_vdm"}), (Outcome{1, kPage}));
    EXPECT_EQ(unlisted({"log_vdm", "-h"}), (Outcome{0, kPage}));
    EXPECT_EQ(unlisted({"log_vdm", "-t", "x"}), (Outcome{0, kPage}));
}

TEST_F(LogVdmCommand, SwitchesOnAndOff)
{
    machine.expect(switched(1));
    EXPECT_EQ(unlisted({"log_vdm", "-a", "ON"}), (Outcome{0, "cmd success\n"}));
    machine.expect(switched(0).status(0x705));
    EXPECT_EQ(unlisted({"log_vdm", "-a", "off"}),
              (Outcome{0x705, "cmd failed.\n", "Not supported (Status Code: 0x705)\n"}));
}

TEST_F(LogVdmCommand, TheShapeIsThatOfLog)
{
    EXPECT_EQ(unlisted({"log_vdm", "-a", "x"}), (Outcome{0, "-a : invalid action 'x'.\n"}));
    EXPECT_EQ(unlisted({"log_vdm", "-a", "on", "-a", "off"}), (Outcome{1, "Duplicated option specified.\n"}));
    EXPECT_EQ(unlisted({"log_vdm", "--output", "x"}), (Outcome{1, "Error action!\n"}));
    EXPECT_EQ(unlisted({"log_vdm", "-z"}), (Outcome{0, "", "", "log_vdm: illegal option -- z\n"}));
}

TEST_F(LogVdmCommand, ShowsItsPagesAndFillsTheFile)
{
    Scratch scratch;
    const std::string name = scratch.file("log.txt", "before");
    isOn();
    machine.expect(pageRead().data(logPage("one\n", 4)));
    machine.expect(pageRead().data(logPage("two\n", 4)));
    machine.expect(pageRead().data(logPage("", 0)));
    EXPECT_EQ(unlisted({"log_vdm", "-a", "show", "--outputfile=" + name}), (Outcome{0, "one\ntwo\ncmd success\n"}));
    EXPECT_EQ(contentOf(name), "one\ntwo\n");
}

TEST_F(LogVdmCommand, ItsNameIsInWhatItSays)
{
    isOn();
    machine.expect(pageRead().data(logPage("", 0)));
    EXPECT_EQ(unlisted({"log_vdm", "-a", "show"}), (Outcome{0, "No VDM log\ncmd success\n"}));
    isOn();
    machine.expect(pageRead().data(logPage("text", 4081)));
    EXPECT_EQ(unlisted({"log_vdm", "-a", "show"}), (Outcome{1, "Error VDM data length: 4081\n"}));
    isOn(0);
    EXPECT_EQ(unlisted({"log_vdm", "-a", "show"}), (Outcome{1, kUnable}));
    machine.expect(statusRead().status(6));
    machine.expect(pageRead().status(0x705));
    EXPECT_EQ(
        unlisted({"log_vdm", "-a", "show"}),
        (Outcome{0x705, kUnable + kUnable, "Internal Error (Status Code: 0x6)\nNot supported (Status Code: 0x705)\n"}));
}

}  // namespace
