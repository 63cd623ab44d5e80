// `cse`.
#include "cli/Functions/simple/simple_cse.h"

#include "tests/unit/cli/file_texts.h"
#include "tests/unit/cli/run_unlisted.h"
#include "tests/unit/cli/storage_fixture.h"

namespace {

using namespace qrx::test;

class Cse : public StorageTest {
protected:
    // The count and the opcodes, two bytes each, in a page of zeros.
    static Bytes request(const std::vector<QRX_U16>& opcodes)
    {
        Bytes bytes{static_cast<QRX_U8>(opcodes.size()), static_cast<QRX_U8>(opcodes.size() >> 8)};
        for (const QRX_U16 opcode : opcodes) {
            bytes.push_back(static_cast<QRX_U8>(opcode));
            bytes.push_back(static_cast<QRX_U8>(opcode >> 8));
        }
        return padded(bytes, 4096);
    }
    static Command enable(QRX_U32 cdw14, const std::vector<QRX_U16>& opcodes)
    {
        return Command::passthru(0xC7)
            .word(10, 1023)
            .word(12, 0x16E0)
            .word(14, cdw14)
            .flag(0x5401)
            .on(1)
            .sends(request(opcodes));
    }
    static Command list()
    {
        return Command::admin(2, 0xFFFFFFFF, {0x3FF0005}).receives(4096).carries(Bytes(4096)).on(1);
    }
    // A log in which these admin and I/O opcodes are supported. All other bits of every entry are set.
    static Bytes log(const std::vector<std::size_t>& admin, const std::vector<std::size_t>& io)
    {
        Bytes bytes(4096, 0xFF);
        for (std::size_t entry = 0; entry < 512; ++entry) {
            bytes[4 * entry] = 0xFE;
        }
        for (const std::size_t opcode : admin) {
            bytes[4 * opcode] = 1;
        }
        for (const std::size_t opcode : io) {
            bytes[4 * (256 + opcode)] = 1;
        }
        return bytes;
    }
    const std::string kPage = std::string("Description") + simple_cse_sh + simple_cse_help;
    const Outcome kDone{0, "cse command success.\n"};
};

TEST_F(Cse, Help)
{
    EXPECT_TRUE(
        std::string(simple_cse_help).starts_with("\ncse [-a <on|off> -c <PF|VF> -l <OPcodes> | --list | -h ]\n"));
    EXPECT_EQ(simple_cse_sh[0], ':');
    EXPECT_EQ(unlisted({"cse"}), (Outcome{1, kPage}));
    EXPECT_EQ(unlisted({"cse", "-h"}), (Outcome{0, kPage}));
    EXPECT_EQ(unlisted({"cse", "--list", "--help"}), (Outcome{0, kPage}));
}

TEST_F(Cse, OpcodesOfEachKindOfFunction)
{
    machine.expect(enable(0x101, {0xC2, 0xC3, 0xC7}));
    EXPECT_EQ(unlisted({"cse", "-a", "on", "-c", "VF", "-l", "0xc2,0xc3,0xc7"}), kDone);
    machine.expect(enable(0, {10}));
    EXPECT_EQ(unlisted({"cse", "-a", "off", "-c", "PF", "-l", "10"}), kDone);
    machine.expect(enable(0x100, {0x123}));
    EXPECT_EQ(unlisted({"cse", "--action=ON", "--ctl=pf", "--opcode=0x123"}), kDone);
    machine.expect(enable(1, {1024, 0}));
    EXPECT_EQ(unlisted({"cse", "-a", "Off", "-c", "vf", "-l", "1024,0"}), kDone);
    machine.expect(enable(0x100, {}));
    EXPECT_EQ(unlisted({"cse", "-a", "on", "--list"}), kDone) << "goes before --list; physical functions, no opcode";
    machine.expect(enable(0x100, {1, 2}));
    EXPECT_EQ(unlisted({"cse", "-a", "on", "-l", ",1,,2,"}), kDone) << "nothing between two commas is no opcode";
}

TEST_F(Cse, ARefusalIsReturned)
{
    machine.expect(enable(0x100, {1}).status(0x704));
    EXPECT_EQ(unlisted({"cse", "-a", "on", "-l", "1"}),
              (Outcome{0x704, "cse command failed.(error code: 0x704)\n", "Invalid parameter (Status Code: 0x704)\n"}));
    machine.expect(enable(0x100, {1}).status(1));
    EXPECT_EQ(unlisted({"cse", "-a", "on", "-l", "1"}).stream, "cse command failed.(error code: 0x01)\n");
}

TEST_F(Cse, BadValues)
{
    EXPECT_EQ(unlisted({"cse", "-a", "open"}), (Outcome{0, "-a : invalid action 'open'.\n"}));
    EXPECT_EQ(unlisted({"cse", "-c", "XF"}), (Outcome{0, "-c : invalid action 'XF'.\n"}));
    EXPECT_EQ(unlisted({"cse", "-a", "on", "-l", "1,c2"}), (Outcome{0, "-l : OPcode should be a number\n"}));
    EXPECT_EQ(unlisted({"cse", "-a", "on", "-l", "-1"}), (Outcome{0, "-l : OPcode should be a number\n"}));
    for (const std::string item : {"1025", "0x401", "99999999999", "0x100000001", "-0x1"}) {
        EXPECT_EQ(unlisted({"cse", "-a", "on", "-l", "1," + item + ",2"}),
                  (Outcome{0, "invalid OPcode '" + item + "', out of range\n"}));
    }
    EXPECT_EQ(unlisted({"cse", "-z"}), (Outcome{0, "", "", "cse: illegal option -- z\n"}));
}

TEST_F(Cse, AsManyOpcodesAsTheRequestHolds)
{
    std::string list = "7";
    std::vector<QRX_U16> opcodes{7};
    for (QRX_U16 i = 1; i < 1023; ++i) {
        list += "," + std::to_string(i);
        opcodes.push_back(i);
    }
    machine.expect(enable(0, opcodes));
    EXPECT_EQ(unlisted({"cse", "-a", "off", "-l", list}), kDone);
    EXPECT_EQ(unlisted({"cse", "-a", "off", "-l", list + ",8"}), (Outcome{0, "-l : at most 1023 OPcodes\n"}));
}

TEST_F(Cse, Checks)
{
    const Outcome duplicate{1, "Duplicated option specified.\n"};
    EXPECT_EQ(unlisted({"cse", "-a", "on", "-a", "on"}), duplicate);
    EXPECT_EQ(unlisted({"cse", "-c", "PF", "-c", "PF"}), duplicate);
    EXPECT_EQ(unlisted({"cse", "-l", "1", "-l", "2"}), duplicate);
    EXPECT_EQ(unlisted({"cse", "--list", "--list"}), duplicate);
    const Outcome required{0, "cse: option -a is required\n"};
    EXPECT_EQ(unlisted({"cse", "-c", "PF"}), required);
    EXPECT_EQ(unlisted({"cse", "-l", "1"}), required);
    EXPECT_EQ(unlisted({"cse", "stray"}), required);
}

TEST_F(Cse, TheListInTens)
{
    machine.expect(list().data(log({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 0xC2, 0xFF}, {0x00, 0xFE})));
    EXPECT_EQ(unlisted({"cse", "--list"}), (Outcome{0,
                                                    "Opcodes Supported List(hexadecimal):\n"
                                                    "    Admin Opcodes:\n"
                                                    "      0x00 0x01 0x02 0x03 0x04 0x05 0x06 0x07 0x08 0x09 \n"
                                                    "      0xc2 0xff \n"
                                                    "    I/O Opcodes:\n"
                                                    "      0x00 0xfe \n"
                                                    "\n"
                                                    "Total # of support OPcode:    14\n"}));
    machine.expect(list().data(log({}, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10})));
    EXPECT_EQ(unlisted({"cse", "--list", "-c", "VF", "-l", "5"}),
              (Outcome{0,
                       "Opcodes Supported List(hexadecimal):\n"
                       "    Admin Opcodes:\n"
                       "      \n"
                       "    I/O Opcodes:\n"
                       "      0x01 0x02 0x03 0x04 0x05 0x06 0x07 0x08 0x09 0x0a \n"
                       "      \n"
                       "\n"
                       "Total # of support OPcode:    10\n"}));
}

TEST_F(Cse, TheListMayFail)
{
    machine.expect(list().status(0x109));
    EXPECT_EQ(unlisted({"cse", "--list"}), (Outcome{0x109, "\nFailed to get commands supported and effects log.\n",
                                                    "Invalid Log Page (Status Code: 0x109)\n"}));
}

TEST_F(Cse, DebugLines)
{
    dbg_enable = 1;
    machine.expect(enable(0x101, {0xC2, 0x123}));
    Bytes shown = request({0xC2, 0x123});
    shown.resize(1024);
    EXPECT_EQ(unlisted({"cse", "-a", "on", "-c", "VF", "-l", "0xc2,0x123"}),
              (Outcome{0,
                       "CDW[0] : 0x000000c7\nCDW[10]: 0x000003ff\nCDW[12]: 0x000016e0\nCDW[14]: 0x00000101\n"
                       "Total Cnt= 02\n" +
                           rawOf(shown) + "cse command success.\n"}));
}

}  // namespace
