// `identify`.
#include "cli/Functions/standard/identify.h"

#include <algorithm>

#include "api/src/interface/wire/nvme.h"
#include "tests/unit/cli/controller_data.h"
#include "tests/unit/cli/health_texts.h"
#include "tests/unit/cli/storage_fixture.h"

namespace {

using namespace qrx::test;

const Outcome kDuplicate{1, "Duplicated option specified.\n"};

const std::string kControllerPage =
    "\n"
    "NVME identify Information :\n"
    "\n"
    "VID:                     0x7a51\n"
    "SSVID:                   0x1234\n"
    "SN:                      SN-0042           \n"
    "MN:                      Model of 40 characters, exactly as long.\n"
    "FR:                      FW 1.2\n"
    "RAB:                     0x11\n"
    "IEEE[0]:                 0xa1\n"
    "IEEE[1]:                 0xb2\n"
    "IEEE[2]:                 0xc3\n"
    "MIC:                     0x12\n"
    "MDTS:                    0x13\n"
    "OACS:                    0x1415\n"
    "ACL:                     0x16\n"
    "AERL:                    0x17\n"
    "FRMW:                    0x18\n"
    "LPA:                     0x19\n"
    "ELPE:                    0x1a\n"
    "NPSS:                    0x1b\n"
    "AVSCC:                   0x1c\n"
    "TNVMCAP_LOW:             0x123456789abcdef0\n"
    "TNVMCAP_HIGH:            0xfedcba9876543210\n"
    "UNVMCAP_LOW:             0x400c0000001\n"
    "UNVMCAP_HIGH:            0x21\n"
    "TNVMCAP(Bytes):          2596069104\n"
    "TNVMCAP(GB):             1221679586\n"
    "UNVMCAP(Bytes):          3221225473\n"
    "UNVMCAP(GB):             4099\n"
    "SQES:                    0x66\n"
    "CQES:                    0x44\n"
    "NN:                      0x80000055\n"
    "ONCS:                    0x2122\n"
    "FUSES:                   0x2324\n"
    "FNA:                     0x25\n"
    "VWC:                     0x26\n"
    "AWUN:                    0x2728\n"
    "AWUPF:                   0x292a\n"
    "NVSCC:                   0x2b\n"
    "ACWU:                    0x2c2d\n"
    "SQLS:                    0x2e2f3031\n"
    "SUBNQN:                  nqn.2014-08.org: [31m                                      Z200\n"
    "\n";

// Namespace data with a value of its own in every field.
_nvme_id_ns someNamespace()
{
    _nvme_id_ns ns{};
    ns.nsze = 0x123456789ABCDEF0;
    ns.ncap = 0x1122334455667788;
    ns.nuse = 0x99;
    ns.nsfeat = 0x0A;
    ns.nlbaf = 1;
    ns.flbas = 0x0C;
    ns.mc = 0x0D;
    ns.dpc = 0x0E;
    ns.dps = 0x0F;
    ns.nmic = 0x10;
    ns.rescap = 0x11;
    ns.fpi = 0x92;
    ns.dlfeat = 0x13;
    ns.nawun = 0x1415;
    ns.nawupf = 0x1617;
    ns.nacwu = 0x1819;
    for (QRX_U8 i = 0; i < 8; ++i) {
        ns.eui64[i] = static_cast<QRX_U8>(0xE0 + i);
    }
    ns.lbaf[0] = {.ms = 0, .ds = 9, .rp = 2};
    ns.lbaf[1] = {.ms = 0x4041, .ds = 0x0C, .rp = 0x43};
    ns.lbaf[2] = {.ms = 0x55, .ds = 0x55, .rp = 0x55};
    return ns;
}

std::string namespaceHead(const char* nlbaf)
{
    return std::string(
               "NSZE:                0x123456789abcdef0\n"
               "NCAP:                0x1122334455667788\n"
               "NUSE:                0x99\n"
               "NSFEAT:              0xa\n"
               "nlbaf:               ") +
           nlbaf +
           "\n"
           "flbas:               0xc\n"
           "mc:                  0xd\n"
           "dpc:                 0xe\n"
           "dps:                 0xf\n"
           "nmic:                0x10\n"
           "rescap:              0x11\n"
           "fpi:                 0x92\n"
           "dlfeat:              0x13\n"
           "nawun:               0x1415\n"
           "nawupf:              0x1617\n"
           "nacwu:               0x1819\n"
           "eui64[0]:            0xe0\n"
           "eui64[1]:            0xe1\n"
           "eui64[2]:            0xe2\n"
           "eui64[3]:            0xe3\n"
           "eui64[4]:            0xe4\n"
           "eui64[5]:            0xe5\n"
           "eui64[6]:            0xe6\n"
           "eui64[7]:            0xe7\n";
}

const std::string kNamespacePage = namespaceHead("0x1") +
                                   "[LBAF]               0\n"
                                   "  MS:                0x0\n"
                                   "  DS:                0x9\n"
                                   "  RP:                0x2\n"
                                   "[LBAF]               1\n"
                                   "  MS:                0x4041\n"
                                   "  DS:                0xc\n"
                                   "  RP:                0x43\n";

// The dump of a page, reckoned here by itself.
std::string dumpOf(const Bytes& page)
{
    std::string text = "[RAW Data]\n      00 01 02 03 04 05 06 07 08 09 10 11 12 13 14 15 \n";
    char piece[32];
    for (std::size_t i = 0; i < page.size(); ++i) {
        if (i % 16 == 0) {
            std::snprintf(piece, sizeof(piece), "\n%04zu  ", i);
            text += piece;
        }
        std::snprintf(piece, sizeof(piece), "%02x ", page[i]);
        text += piece;
    }
    return text + "\n";
}

class IdentifyCommand : public StorageTest {
protected:
    static Command identify(QRX_U32 cns, QRX_U32 nsid = 0)
    {
        return Command::admin(6, nsid, {cns}).receives(4096).carries(Bytes(4096)).on(1);
    }
    static Command ofController() { return identify(1).data(bytesOf(someController())); }
    static Command ofNamespace(QRX_U32 nsid) { return identify(0, nsid).data(bytesOf(someNamespace())); }
};

TEST_F(IdentifyCommand, HelpIsAlwaysWellMeant)
{
    for (auto words :
         {Line{"identify"}, Line{"identify", "-h"}, Line{"identify", "--help"}, Line{"identify", "-c", "1", "-h"},
          Line{"identify", "--output", "x"}, Line{"identify", "word"}}) {
        EXPECT_EQ(command(words), (Outcome{0, expected::kIdentifyPage}));
    }
}

TEST_F(IdentifyCommand, TheController)
{
    machine.expect(ofController());
    EXPECT_EQ(command({"identify", "-c", "1"}), (Outcome{0, kControllerPage}));
    machine.expect(ofController());
    EXPECT_EQ(command({"identify", "--cns=0x101"}), (Outcome{0, kControllerPage}));  // 8 bits of it
}

TEST_F(IdentifyCommand, TheControllerIdentifierHasNoEffect)
{
    machine.expect(ofController());
    EXPECT_EQ(command({"identify", "-c", "1", "-i", "5"}), (Outcome{0, kControllerPage}));
    machine.expect(ofController());
    EXPECT_EQ(command({"identify", "-c", "1", "--cntid=0x7"}), (Outcome{0, kControllerPage}));
}

TEST_F(IdentifyCommand, ControlCharactersDoNotReachTheTerminal)
{
    auto id = someController();
    set(id.sn, "   \x1b]0;owned\x07");
    set(id.mn,
        "\x9b"
        "31m\r\n\t model");
    set(id.fr, "\x7f\xff\x01", '\0');
    machine.expect(identify(1).data(bytesOf(id)));
    const std::string page = command({"identify", "-c", "1"}).stream;
    EXPECT_NE(page.find("SN:                      ?]0;owned?       \n"), std::string::npos);
    EXPECT_NE(page.find("MN:                      ?31m??? model                           \n"), std::string::npos);
    EXPECT_NE(page.find("FR:                      ???\n"), std::string::npos);
}

TEST_F(IdentifyCommand, BlankFieldsAndANegativeCapacity)
{
    auto id = someController();
    set(id.sn, "");
    set(id.fr, "", '\0');
    set(id.tnvmcap, 0x8000000000000000, 0);
    set(id.unvmcap, 0x3FFFFFFF, 0);
    machine.expect(identify(1).data(bytesOf(id)));
    const std::string page = command({"identify", "-c", "1"}).stream;
    EXPECT_NE(page.find("SN:                      \nMN:"), std::string::npos);
    EXPECT_NE(page.find("FR:                      \nRAB:"), std::string::npos);
    EXPECT_NE(page.find("TNVMCAP(Bytes):          0\nTNVMCAP(GB):             0\n"
                        "UNVMCAP(Bytes):          1073741823\nUNVMCAP(GB):             0\n"),
              std::string::npos);
    set(id.tnvmcap, 0x2000000000000000, 0);  // 2^61 bytes
    machine.expect(identify(1).data(bytesOf(id)));
    EXPECT_NE(command({"identify", "-c", "1"}).stream.find("TNVMCAP(GB):             -2147483648\n"),
              std::string::npos);
}

TEST_F(IdentifyCommand, AnEmptySubnqn)
{
    auto id = someController();
    set(id.subnqn, "", '\0');
    machine.expect(identify(1).data(bytesOf(id)));
    EXPECT_NE(
        command({"identify", "-c", "1"}).stream.find("SUBNQN:                  " + std::string(60, ' ') + "0\n\n"),
        std::string::npos);
}

TEST_F(IdentifyCommand, ANamespace)
{
    machine.expect(ofNamespace(1));
    EXPECT_EQ(command({"identify", "-c", "0", "-n", "1"}), (Outcome{0, kNamespacePage}));
    machine.expect(ofNamespace(0x7FFFFFFF));
    EXPECT_EQ(command({"identify", "-c", "0x0", "--namespace=0xffffffff"}), (Outcome{0, kNamespacePage}));
    machine.expect(ofNamespace(0xFFFFFFFF));
    EXPECT_EQ(command({"identify", "-c", "0x100", "-n", "-0x1"}), (Outcome{0, kNamespacePage}));
}

TEST_F(IdentifyCommand, WithoutCnsItIsANamespaceToo)
{
    machine.expect(ofNamespace(1));
    EXPECT_EQ(command({"identify", "-n", "1"}), (Outcome{0, kNamespacePage}));
    machine.expect(ofNamespace(0));
    EXPECT_EQ(command({"identify", "-n", "0"}), (Outcome{0, kNamespacePage}));
    machine.expect(ofNamespace(0));
    EXPECT_EQ(command({"identify", "--rawdata"}),
              (Outcome{0, kNamespacePage + dumpOf(bytesOf(someNamespace())), "\n"}));
    machine.expect(ofNamespace(0));
    EXPECT_EQ(command({"identify", "-i", "3"}), (Outcome{0, kNamespacePage}));
}

TEST_F(IdentifyCommand, FormatsAreCountedInEightBits)
{
    auto ns = someNamespace();
    ns.nlbaf = 255;
    machine.expect(identify(0, 1).data(bytesOf(ns)));
    EXPECT_EQ(command({"identify", "-n", "1"}), (Outcome{0, namespaceHead("0xff")}));

    ns.nlbaf = 254;
    Bytes page = bytesOf(ns);
    page[128 + 4 * 254] = 0x33;
    page[128 + 4 * 254 + 3] = 0x77;
    machine.expect(identify(0, 1).data(page));
    const std::string text = command({"identify", "-n", "1"}).stream;
    const std::string last =
        "[LBAF]               254\n  MS:                0x33\n  DS:                0x0\n  RP:                0x77\n";
    ASSERT_GT(text.size(), last.size());
    EXPECT_EQ(text.substr(text.size() - last.size()), last);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 24 + 255 * 4);
}

TEST_F(IdentifyCommand, TheRawPageFollowsABlankLine)
{
    machine.expect(ofController());
    EXPECT_EQ(command({"identify", "-c", "1", "--rawdata"}),
              (Outcome{0, kControllerPage + dumpOf(bytesOf(someController())), "\n"}));
    machine.expect(ofNamespace(1));
    EXPECT_EQ(command({"identify", "-c", "0", "-n", "1", "-r", "any"}),
              (Outcome{0, kNamespacePage + dumpOf(bytesOf(someNamespace())), "\n"}));
}

TEST_F(IdentifyCommand, AnyOtherStructureIsShownAsItStands)
{
    const Bytes page = pattern(4096);
    const Outcome shown{0, dumpOf(page)};
    machine.expect(identify(2).data(page));
    EXPECT_EQ(command({"identify", "-c", "2", "-n", "0"}), shown);
    machine.expect(identify(255).data(page));
    EXPECT_EQ(command({"identify", "-c", "255", "--rawdata"}), shown);
    machine.expect(identify(0x13, 0xABCDEF).data(page));
    EXPECT_EQ(command({"identify", "-c", "19", "-n", "0xabcdef"}), shown);
}

TEST_F(IdentifyCommand, ANamespaceNeedsItsId)
{
    const Outcome required{0, "identify: option -n is required\n"};
    EXPECT_EQ(command({"identify", "-c", "0"}), required);
    EXPECT_EQ(command({"identify", "-c", "0x100", "-i", "1"}), required);
    EXPECT_EQ(command({"identify", "-c", "g0x1"}), required);  // hexadecimal, and no number at its start
    const Outcome zero{0, "namespace ID can not be zero when you identify namespace. (NS ID: 0x0)\n"};
    EXPECT_EQ(command({"identify", "-c", "0", "-n", "0"}), zero);
    EXPECT_EQ(command({"identify", "-c", "0", "-n", ""}), zero);
}

TEST_F(IdentifyCommand, BadValues)
{
    EXPECT_EQ(command({"identify", "-c", "one"}),
              (Outcome{0, "-c : invalid controller or namespace structure 'one'\n"}));
    EXPECT_EQ(command({"identify", "-c", "-1", "-h"}),
              (Outcome{0, "-c : invalid controller or namespace structure '-1'\n"}));
    EXPECT_EQ(command({"identify", "-i", "0X1"}), (Outcome{0, "-i : invalid controller identifier '0X1'\n"}));
    EXPECT_EQ(command({"identify", "-n", "1x"}), (Outcome{0, "-n : invalid namespace id '1x'\n"}));
    EXPECT_EQ(command({"identify", "-z"}), (Outcome{0, "", "", "identify: illegal option -- z\n"}));
}

TEST_F(IdentifyCommand, AnOptionalArgumentThatWasLeftOut)
{
    EXPECT_EQ(command({"identify", "-c", "1", "--cntid"}), (Outcome{0, "-i : invalid controller identifier ''\n"}));
    EXPECT_EQ(command({"identify", "-c", "0", "--namespace", "1"}), (Outcome{0, "-n : invalid namespace id ''\n"}));
}

TEST_F(IdentifyCommand, Duplicates)
{
    for (auto words : {Line{"identify", "-c", "1", "-c", "1"}, Line{"identify", "-i", "1", "-i", "1"},
                       Line{"identify", "-n", "1", "-n", "1"}, Line{"identify", "--rawdata", "--rawdata"},
                       Line{"identify", "-c", "0", "-c", "0"}}) {
        EXPECT_EQ(command(words), kDuplicate);
    }
}

TEST_F(IdentifyCommand, AFailurePrintsItsTextAndIsReturned)
{
    machine.expect(identify(1).status(0x0B));
    EXPECT_EQ(command({"identify", "-c", "1"}),
              (Outcome{0x0B, "get identify info failed.\n", "Invalid Namespace or Format (Status Code: 0xb)\n"}));
    machine.expect(identify(9).error(5));
    EXPECT_EQ(command({"identify", "-c", "9"}),
              (Outcome{-1, "get identify info failed.\n", "Unknown error (Status Code: 0xffffffff)\n"}));
}

}  // namespace
