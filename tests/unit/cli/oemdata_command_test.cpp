// `oemdata`.
#include "cli/Functions/simple/simple_oemdata.h"

#include <cstring>

#include "api/src/interface/api.h"
#include "tests/unit/cli/oem_fixture.h"

namespace {

using namespace qrx::test;

const std::string kPage =
    "Description:For write OEM data.\n"
    "oemdata [-v <SubsystemVendor ID/SVID> -d <SubDevice ID/SDID> -s <Serial Number> -m <Model Number>] [-h]\n"
    "\n"
    "Options:\n"
    "    -v, --ssvid <SubsystemVendor ID/SVID>\n"
    "    -d, --sdid <SubDevice ID/SDID>\n"
    "    -s, --sn <Serial Number>\n"
    "    -m, --model <Model Number>\n"
    "    -h,  --help\n"
    "Examples:\n"
    "    oemdata -v 0x5c2e -d 0x3319 -s serialnumber -m model\n"
    "    Write Subvendor ID 0x5c2e, SubDevice ID 0x3319, serial number 'serialnumber' and model number 'model' into "
    "OEM data\n"
    "\n";
const std::string kSuccess = "Set OEM data success.\n";
const std::string kDefaultModel = "Tessura_NVMe_Controller";
const std::string kStoredSn = "STORED-SERIAL";
const std::string kStoredModel = "STORED-MODEL";
const std::string kQuotes = "Please use double quotation mark to include strings.\n";

class OemdataCommand : public OemTest {
protected:
    // The controller holds `held`, and is to get `written` with what lay behind the record.
    void expectWrite(const Bytes& held, const Bytes& written)
    {
        machine.expect(fetchIds());
        machine.expect(readOem(oemPage(held)));
        machine.expect(writeOem(oemPage(written)));
        machine.expect(identify());
    }
    const Bytes stored = oemRecord(0xAAAA, 0xBBBB, kStoredSn, kStoredModel);
};

TEST_F(OemdataCommand, Help)
{
    EXPECT_STREQ(simple_oemdata_help, kPage.c_str() + kPage.find('\n'));
    EXPECT_EQ(command({"oemdata"}), (Outcome{1, kPage}));
    EXPECT_EQ(command({"oemdata", "-h"}), (Outcome{0, kPage}));
    EXPECT_EQ(command({"oemdata", "-s", "x", "--help"}), (Outcome{0, kPage}));
}

TEST_F(OemdataCommand, OptionsOfAnEarlierRecordShowTheHelp)
{
    for (const char* letter : {"-n", "-c", "-o", "-i", "-l", "-f", "-e", "-r", "-1", "-y", "-z", "-g", "-u"}) {
        EXPECT_EQ(command({"oemdata", letter, "1"}), (Outcome{0, kPage})) << letter;
        EXPECT_EQ(command({"oemdata", letter}).err,
                  std::string("oemdata: option requires an argument -- ") + letter[1] + "\n");
    }
    for (const char* name :
         {"nsid", "cid", "object", "vid", "did", "fw", "ieee", "req", "inputfile", "offset", "len", "nguid", "eui64"}) {
        EXPECT_EQ(command({"oemdata", std::string("--") + name, "1"}), (Outcome{0, kPage})) << name;
    }
}

TEST_F(OemdataCommand, WritesAllThatIsGiven)
{
    expectWrite(stored, oemRecord(0x5C2E, 0x3319, "serialnumber", "model"));
    EXPECT_EQ(command({"oemdata", "-v", "0x5c2e", "-d", "0x3319", "-s", "serialnumber", "-m", "model"}),
              (Outcome{0, kSuccess}));
    expectWrite(stored, oemRecord(23598, 13081, "serial number", "a model"));
    EXPECT_EQ(command({"oemdata", "--ssvid=23598", "--sdid", "13081", "--sn", "\"serial number\"",
                       "--model=\"a model\"", "--output", "x"}),
              (Outcome{0, kSuccess}));
}

TEST_F(OemdataCommand, KeepsWhatIsNotGiven)
{
    expectWrite(stored, oemRecord(0x1234, 0x5678, "ABC", kStoredModel));
    EXPECT_EQ(command({"oemdata", "-s", "ABC"}), (Outcome{0, kSuccess}));
    expectWrite(stored, oemRecord(0x1234, 0x5678, kStoredSn, "DEF"));
    EXPECT_EQ(command({"oemdata", "-m", "DEF"}), (Outcome{0, kSuccess}));
    expectWrite(stored, oemRecord(9, 0x5678, kStoredSn, kStoredModel));
    EXPECT_EQ(command({"oemdata", "-v", "9"}), (Outcome{0, kSuccess}));
    expectWrite(stored, oemRecord(0x1234, 8, kStoredSn, kStoredModel));
    EXPECT_EQ(command({"oemdata", "-d", "8"}), (Outcome{0, kSuccess}));
    expectWrite(stored, oemRecord(0x1234, 0x5678, kStoredSn, kStoredModel));
    EXPECT_EQ(command({"oemdata", "--output", "x"}), (Outcome{0, kSuccess}));
}

// All other fields of a record are written as the tool knows them.
TEST_F(OemdataCommand, OfAStoredRecordOnlyTheTextsAreKept)
{
    Bytes other = pattern(256, 5);
    std::memcpy(other.data(), "QRX ", 4);
    put16(other, 4, 256);
    sealOem(other, 256);
    Bytes written = oemRecord(0x1234, 0x5678, std::string(other.begin() + 76, other.begin() + 96),
                              std::string(other.begin() + 96, other.begin() + 136));
    expectWrite(other, written);
    EXPECT_EQ(command({"oemdata", "--read"}), (Outcome{0, kSuccess}));
}

TEST_F(OemdataCommand, OfABadRecordNothingIsKept)
{
    const Bytes written = oemRecord(0x1234, 0x5678, "ABC", kDefaultModel);
    Bytes bad = stored;
    ++bad[8];
    expectWrite(bad, written);
    EXPECT_EQ(command({"oemdata", "-s", "ABC"}), (Outcome{0, kSuccess}));
    bad = stored;
    bad[3] = 0;
    sealOem(bad);
    expectWrite(bad, written);
    EXPECT_EQ(command({"oemdata", "-s", "ABC"}), (Outcome{0, kSuccess}));
    for (const QRX_U16 length : std::initializer_list<QRX_U16>{0, 4097}) {
        bad = stored;
        put16(bad, 4, length);
        expectWrite(bad, written);
        EXPECT_EQ(command({"oemdata", "-s", "ABC"}), (Outcome{0, kSuccess}));
    }
    bad = stored;
    ++bad[8];
    expectWrite(bad, oemRecord(1, 2, "", kDefaultModel));
    EXPECT_EQ(command({"oemdata", "-v", "1", "-d", "2"}), (Outcome{0, kSuccess}));
}

TEST_F(OemdataCommand, AfterAFailedReadThePageIsAsTheReadLeftIt)
{
    machine.expect(fetchIds());
    machine.expect(readOem({}).status(0x701));
    machine.expect(writeOem(padded(oemRecord(0x1234, 0x5678, "ABC", kDefaultModel), 4096)));
    machine.expect(identify());
    EXPECT_EQ(command({"oemdata", "-s", "ABC"}), (Outcome{0, kSuccess}));
}

TEST_F(OemdataCommand, IdsAreCutToSixteenBits)
{
    const auto ids = [this](const char* v, const char* d, QRX_U16 SVID, QRX_U16 SDID) {
        expectWrite(stored, oemRecord(SVID, SDID, kStoredSn, kStoredModel));
        EXPECT_EQ(command({"oemdata", "-v", v, "-d", d}), (Outcome{0, kSuccess})) << v << " " << d;
    };
    ids("0x12345", "65537", 0x2345, 1);
    ids("0x1g", "g0x1", 1, 0);
    ids("", "99999999999", 0, 0xFFFF);
    ids("010", "0", 10, 0);
}

TEST_F(OemdataCommand, TextsOfTheFullLength)
{
    const std::string sn = "12345678901234567890";
    const std::string model = sn + "abcdefghijklmnopqrst";
    expectWrite(stored, oemRecord(0x1234, 0x5678, sn, model));
    EXPECT_EQ(command({"oemdata", "-s", sn, "-m", model}), (Outcome{0, kSuccess}));
    expectWrite(stored, oemRecord(0x1234, 0x5678, sn, model));
    EXPECT_EQ(command({"oemdata", "-s", '"' + sn + '"', "-m", '"' + model + '"'}), (Outcome{0, kSuccess}));
    expectWrite(stored, oemRecord(0x1234, 0x5678, "", ""));
    EXPECT_EQ(command({"oemdata", "-s", "", "-m", "\"\""}), (Outcome{0, kSuccess}));
    expectWrite(stored, oemRecord(0x1234, 0x5678, "\"x", kStoredModel));
    EXPECT_EQ(command({"oemdata", "-s", "\"x"}), (Outcome{0, kSuccess}));
}

TEST_F(OemdataCommand, RefusesTextsThatAreTooLong)
{
    for (const std::string& text : {std::string(21, 's'), std::string(5000, 's'), '"' + std::string(21, 's') + '"'}) {
        EXPECT_EQ(command({"oemdata", "-s", text}),
                  (Outcome{0, "-s : invalid length '" + text + "', the maximum size is 20 bytes.\n"}));
    }
    for (const std::string& text : {std::string(41, 'm'), std::string(64, 'm'), '"' + std::string(900, 'm') + '"'}) {
        EXPECT_EQ(command({"oemdata", "-m", text}),
                  (Outcome{0, "-m : invalid length '" + text + "', the maximum size is 40 bytes.\n"}));
    }
    for (const std::string letter : {"k", "p"}) {
        EXPECT_EQ(command({"oemdata", "-" + letter, "12345678901"}),
                  (Outcome{0, "-" + letter + " : invalid length '12345678901', the maximum size is 10 bytes.\n"}));
    }
}

TEST_F(OemdataCommand, RefusesSingleQuotes)
{
    for (const char* letter : {"-s", "-m", "-k", "-p", "-w"}) {
        EXPECT_EQ(command({"oemdata", letter, "'x'"}), (Outcome{0, "", kQuotes})) << letter;
    }
}

TEST_F(OemdataCommand, RefusesIdsThatAreNoNumbers)
{
    EXPECT_EQ(command({"oemdata", "-v", "5c2e"}), (Outcome{0, "-v : invalid sub vendor id '5c2e'\n"}));
    EXPECT_EQ(command({"oemdata", "-d", "-1"}), (Outcome{0, "-d : invalid sub device id '-1'\n"}));
    EXPECT_EQ(command({"oemdata", "-t", "hba"}), (Outcome{0, "-t : invalid option 'hba'.\n"}));
    EXPECT_EQ(command({"oemdata", "-x"}), (Outcome{0, "", "", "oemdata: illegal option -- x\n"}));
    EXPECT_EQ(command({"oemdata", "-R"}), (Outcome{0, "", "", "oemdata: illegal option -- R\n"}));
}

TEST_F(OemdataCommand, SomeOptionsAreCheckedAndDropped)
{
    for (auto words :
         {Line{"oemdata", "-k", "1234567890", "-k", "\"1234567890\""}, Line{"oemdata", "-p", "1234567890", "--pn=x"},
          Line{"oemdata", "--sku=", "-t", "PF", "--type", "ns", "-t", "nS"}, Line{"oemdata", "--read", "--read"},
          Line{"oemdata", "-w", "00:11:22:33:44:55:66:77", "--wwid=\"00:11:22:33:44:55:66:77\"", "-w", ""},
          Line{"oemdata", "-w", "no digits at all, but a longer text"},
          Line{"oemdata", "-w", "0g:0g:0g:0g:0g:0g:0g:0g:0g"}, Line{"oemdata", "-w", "g0:g0:g0:g0:g0:g0:g0:g0:g0"}}) {
        expectWrite(stored, oemRecord(0x1234, 0x5678, kStoredSn, kStoredModel));
        EXPECT_EQ(command(words), (Outcome{0, kSuccess})) << *(words.begin() + 1);
    }
}

TEST_F(OemdataCommand, WarnsOnceOfTooManyBytesAndGoesOn)
{
    const std::string warning = "-w : out off range, it only allow 8 bytes data\n";
    for (const std::string& word : {std::string("00:11:22:33:44:55:66:77:88"), std::string(3000, 'a')}) {
        expectWrite(stored, oemRecord(0x1234, 0x5678, "ABC", kStoredModel));
        EXPECT_EQ(command({"oemdata", "-w", word, "-s", "ABC"}), (Outcome{0, warning + kSuccess}));
    }
    EXPECT_EQ(command({"oemdata", "-w", "00:11:22:33:44:55:66:77:88", "-v", "x"}),
              (Outcome{0, warning + "-v : invalid sub vendor id 'x'\n"}));
}

TEST_F(OemdataCommand, EachFieldOnce)
{
    const Outcome twice{1, "Duplicated option specified.\n"};
    EXPECT_EQ(command({"oemdata", "-d", "0x10", "-v", "0x10", "-d", "0x11"}), twice);
    EXPECT_EQ(command({"oemdata", "-v", "1", "-v", "1"}), twice);
    EXPECT_EQ(command({"oemdata", "-s", "1", "--sn", "1"}), twice);
    EXPECT_EQ(command({"oemdata", "-m", "1", "-m", "1"}), twice);
}

TEST_F(OemdataCommand, IdsThatTheControllerDoesNotTellAreNeeded)
{
    const Outcome needsVid{0, "oemdata: option -v is required\n"};
    const Outcome needsDid{0, "oemdata: option -d is required\n"};
    machine.expect(fetchIds(0, 0));
    EXPECT_EQ(command({"oemdata", "-s", "x"}), needsVid);
    machine.expect(fetchIds(0, 5));
    EXPECT_EQ(command({"oemdata", "-d", "1"}), needsVid);
    machine.expect(fetchIds(5, 0));
    EXPECT_EQ(command({"oemdata", "-s", "x"}), needsDid);
    machine.expect(fetchIds(0, 0));
    EXPECT_EQ(command({"oemdata", "-v", "0"}), needsDid);
    machine.expect(fetchIds().status(0x701));
    EXPECT_EQ(command({"oemdata", "-d", "1"}), needsVid);
}

TEST_F(OemdataCommand, WithBothIdsTheControllerNeedTellNone)
{
    machine.expect(fetchIds(0, 0).status(2));
    machine.expect(readOem(oemPage(stored)));
    machine.expect(writeOem(oemPage(oemRecord(3, 4, kStoredSn, kStoredModel))));
    machine.expect(identify());
    EXPECT_EQ(command({"oemdata", "-v", "3", "-d", "4"}), (Outcome{0, kSuccess}));
}

TEST_F(OemdataCommand, AFailedWriteIsToldAndTheNameStays)
{
    std::strcpy(QRX_Adapter_GetDeviceSUBNQN(1), "old name");
    const auto fail = [this](QRX_U32 status) {
        machine.expect(fetchIds());
        machine.expect(readOem(oemPage(stored)));
        machine.expect(writeOem(oemPage(oemRecord(0x1234, 0x5678, "x", kStoredModel))).status(status));
        return command({"oemdata", "-s", "x"});
    };
    EXPECT_EQ(fail(0x704), (Outcome{0x704, "Set OEM data failed.(error code: 0x704)\n",
                                    "Invalid parameter (Status Code: 0x704)\n"}));
    EXPECT_EQ(fail(2), (Outcome{2, "Set OEM data failed.(error code: 0x02)\n",
                                "Invalid Field in Command (Status Code: 0x2)\n"}));
    const Outcome driver = fail(0xFFFFFFFF);
    EXPECT_EQ(driver.result, -1);
    EXPECT_EQ(driver.stream, "Set OEM data failed.(error code: 0xffffffff)\n");
    EXPECT_STREQ(QRX_Adapter_GetDeviceSUBNQN(1), "old name");
}

TEST_F(OemdataCommand, ASuccessRefreshesTheName)
{
    Bytes data(4096);
    std::memcpy(data.data() + 768, "nqn.new", 7);
    data[828] = 17;
    machine.expect(fetchIds());
    machine.expect(readOem(oemPage(stored)));
    machine.expect(writeOem(oemPage(oemRecord(0x1234, 0x5678, "x", kStoredModel))));
    machine.expect(identify().data(data));
    EXPECT_EQ(command({"oemdata", "-s", "x"}), (Outcome{0, kSuccess}));
    EXPECT_STREQ(QRX_Adapter_GetDeviceSUBNQN(1), (blankPadded("nqn.new", 60) + "17").c_str());
}

TEST_F(OemdataCommand, DebugShowsBothCommandsAndTheRecord)
{
    dbg_enable = 1;
    expectWrite(stored, oemRecord(0x4142, 0x4344, "ABC", "MODEL"));
    const Outcome outcome = command({"oemdata", "-v", "0x4142", "-d", "0x4344", "-s", "ABC", "-m", "MODEL"});
    EXPECT_EQ(outcome.result, 0);
    const Bytes record = oemRecord(0x4142, 0x4344, "ABC", "MODEL");
    std::string expected =
        "CDW[0] : 0x000000e2\nCDW[10]: 0x000003ff\nCDW[12]: 0x000004e0\n"
        "CDW[0] : 0x000000c7\nCDW[10]: 0x000003ff\nCDW[12]: 0x000013e0\n"
        "\n0000:";
    std::string row;
    char piece[8];
    for (std::size_t i = 0; i < record.size(); ++i) {
        std::snprintf(piece, sizeof(piece), "%02x ", record[i]);
        expected += piece;
        row += record[i] != 0 ? std::string(1, static_cast<char>(record[i])) : "";
        if (i % 16 == 15) {
            std::snprintf(piece, sizeof(piece), "%04x:", static_cast<unsigned>(i & 0xFFFF));
            expected += "          " + row + "\n" + piece;
            row.clear();
        }
    }
    EXPECT_EQ(outcome.stream, expected + "End list\n" + kSuccess);
}

}  // namespace
