// `aer`.
#include "cli/Functions/simple/simple_aer.h"

#include <sstream>

#include "api/src/interface/wire/aer.h"
#include "tests/unit/cli/run_unlisted.h"
#include "tests/unit/cli/storage_fixture.h"

namespace {

using namespace qrx::test;

// The page, a line for each field. `%` stands for its value.
constexpr char kLines[] =
    " AER Capability ID\n"
    "   CID     : %\n   CVER    : %\n   NEXT    : %\n"
    " AER Uncorrectable Error Status Register\n"
    "   DLPES   : %\n   PTS     : %\n   FCPES   : %\n   CTS     : %\n   CAS     : %\n   UCS     : %\n   ROS     : %\n"
    "   MTS     : %\n   ECRCES  : %\n   URES    : %\n   ACSVS   : %\n   UIES    : %\n   MCBTS   : %\n   AOEBS   : %\n"
    "   TPBES   : %\n"
    " AER Uncorrectable Error Status Register\n"
    "   DLPEM   : %\n   PTM     : %\n   FCPEM   : %\n   CTM     : %\n   CAM     : %\n   UCM     : %\n   ROM     : %\n"
    "   MTM     : %\n   ECRCEM  : %\n   UREM    : %\n   ACSVM   : %\n   UIEM    : %\n   MCBTM   : %\n   AOEBM   : %\n"
    "   TPBEM   : %\n"
    " AER Uncorrectable Error Severity Register\n"
    "   DLPESEV : %\n   PTSEV   : %\n   FCPESEV : %\n   CTSEV   : %\n   CASEV   : %\n   UCSEV   : %\n   ROSEV   : %\n"
    "   MTSEV   : %\n   ECRCESEV: %\n   URESEV  : %\n   ACSVSEV : %\n   UIESEV  : %\n   MCBTSEV : %\n   AOEBSEV : %\n"
    "   TPBESEV : %\n"
    " AER Correctable Error Status Register\n"
    "   RES     : %\n   BTS     : %\n   BDS     : %\n   RRS     : %\n   RTS     : %\n   ANFES   : %\n   CIES    : %\n"
    "   HLOS    : %\n"
    " AER Correctable Error Mask Register\n"
    "   REM     : %\n   BTM     : %\n   BDM     : %\n   RRM     : %\n   RTM     : %\n   ANFEM   : %\n   CIEM    : %\n"
    "   HLOM    : %\n"
    " AER Capabilities and Control Register\n"
    "   FEP     : %\n   EGC     : %\n   EGE     : %\n   ECC     : %\n   ECE     : %\n   MHRC    : %\n   MHRE    : %\n"
    "   TPLP    : %\n"
    " AER Header Log Register\n"
    "   HB3     : %\n   HB2     : %\n   HB1     : %\n   HB0     : %\n   HB7     : %\n   HB6     : %\n   HB5     : %\n"
    "   HB4     : %\n   HB11    : %\n   HB10    : %\n   HB9     : %\n   HB8     : %\n   HB15    : %\n   HB14    : %\n"
    "   HB13    : %\n   HB12    : %\n"
    " AER TLP Prefix Log Register\n"
    "   TPL1B3  : %\n   TPL1B2  : %\n   TPL1B1  : %\n   TPL1B0  : %\n   TPL2B3  : %\n   TPL2B2  : %\n"
    "   TPL2B1  : %\n   TPL2B0  : %\n   TPL3B3  : %\n   TPL3B2  : %\n   TPL3B1  : %\n   TPL3B0  : %\n"
    "   TPL4B3  : %\n   TPL4B2  : %\n   TPL4B1  : %\n   TPL4B0  : %\n";

// Where each field of the page lies in the 60 bytes: the first bit, and how many.
struct Place {
    unsigned bit;
    unsigned width;
};
std::vector<Place> places()
{
    std::vector<Place> all{{0, 16}, {16, 4}, {20, 12}};
    for (const unsigned byte : {4U, 8U, 12U}) {
        all.push_back({byte * 8 + 4, 1});
        for (unsigned bit = 12; bit <= 25; ++bit) {
            all.push_back({byte * 8 + bit, 1});
        }
    }
    for (const unsigned byte : {16U, 20U}) {
        for (const unsigned bit : {0U, 6U, 7U, 8U, 12U, 13U, 14U, 15U}) {
            all.push_back({byte * 8 + bit, 1});
        }
    }
    all.push_back({24 * 8, 5});
    for (unsigned bit = 5; bit <= 11; ++bit) {
        all.push_back({24 * 8 + bit, 1});
    }
    for (unsigned byte = 28; byte < 60; ++byte) {
        all.push_back({byte * 8, 8});
    }
    return all;
}

std::string pageOf(const std::vector<unsigned>& values)
{
    std::ostringstream text;
    std::size_t next = 0;
    for (const char c : std::string(kLines)) {
        if (c == '%') {
            text << "0x" << std::hex << values.at(next++);
        } else {
            text << c;
        }
    }
    EXPECT_EQ(next, values.size());
    return text.str();
}

class Aer : public StorageTest {
protected:
    static Command read(QRX_U32 id) { return page(0x0CE1, 0x5401).word(10, 1023).word(14, id); }
    const std::string kPage = std::string("Description") + simple_aer_sh + simple_aer_help;
};

TEST_F(Aer, Help)
{
    EXPECT_TRUE(std::string(simple_aer_help).starts_with("\naer -i <id> [-h]\n"));
    EXPECT_EQ(simple_aer_sh[0], ':');
    EXPECT_EQ(unlisted({"aer"}), (Outcome{1, kPage}));
    EXPECT_EQ(unlisted({"aer", "-h"}), (Outcome{0, kPage}));
    EXPECT_EQ(unlisted({"aer", "-t", "1"}), (Outcome{0, kPage}));
    EXPECT_EQ(unlisted({"aer", "-i", "0", "-a", "1"}), (Outcome{0, kPage}));
}

TEST_F(Aer, Checks)
{
    EXPECT_EQ(unlisted({"aer", "-i", "x"}), (Outcome{0, "-i : invalid pd id 'x'\n"}));
    EXPECT_EQ(unlisted({"aer", "-i", "-1"}), (Outcome{0, "-i : invalid pd id '-1'\n"}));
    EXPECT_EQ(unlisted({"aer", "-i", "0x1"}), (Outcome{0, "-i : invalid pd id '0x1'\n"}));
    EXPECT_EQ(unlisted({"aer", "stray"}), (Outcome{0, "aer: option -i is required\n"}));
    EXPECT_EQ(unlisted({"aer", "-i", "0", "-i", "1"}), (Outcome{1, "Duplicated option specified.\n"}));
    EXPECT_EQ(unlisted({"aer", "-z"}), (Outcome{0, "", "", "aer: illegal option -- z\n"}));
    g_oneBaseMode = 1;
    EXPECT_EQ(unlisted({"aer", "-i", "0"}), (Outcome{0, "-i : invalid pd id '0'\n"}));
}

TEST_F(Aer, AllBitsClear)
{
    machine.expect(read(0).data(envelope(AER_Data{})));
    EXPECT_EQ(unlisted({"aer", "-i", "0"}), (Outcome{0, pageOf(std::vector<unsigned>(places().size()))}));
}

TEST_F(Aer, EachFieldHasItsBits)
{
    const std::vector<Place> all = places();
    // Every field alone: with all of its bits, and with a value in which the lowest and the highest differ where it has
    // several.
    for (std::size_t i = 0; i < all.size(); ++i) {
        const unsigned full = (1U << all[i].width) - 1;
        for (const unsigned value : {full, full & (1U << (all[i].width - 1) | 2)}) {
            Bytes record(60);
            for (unsigned bit = 0; bit < all[i].width; ++bit) {
                const unsigned at = all[i].bit + bit;
                record[at / 8] = static_cast<QRX_U8>(record[at / 8] | (value >> bit & 1) << at % 8);
            }
            std::vector<unsigned> values(all.size());
            values[i] = value;
            machine.expect(read(9).data(envelope(record)));
            EXPECT_EQ(unlisted({"aer", "--id=9"}), (Outcome{0, pageOf(values)})) << i;
        }
    }
}

TEST_F(Aer, ReservedBitsAreNotShown)
{
    const std::vector<Place> all = places();
    Bytes record(60, 0xFF);
    for (const Place& place : all) {
        for (unsigned bit = place.bit; bit < place.bit + place.width; ++bit) {
            record[bit / 8] = static_cast<QRX_U8>(record[bit / 8] & ~(1U << bit % 8));
        }
    }
    machine.expect(read(2147483647).data(envelope(record)));
    EXPECT_EQ(unlisted({"aer", "-i", "99999999999"}), (Outcome{0, pageOf(std::vector<unsigned>(all.size()))}));
}

TEST_F(Aer, WhatWentWrong)
{
    machine.expect(read(3).data(envelope(AER_Data{})).status(2));
    EXPECT_EQ(unlisted({"aer", "-i", "3"}),
              (Outcome{2, "Read aer failed.\n", "Invalid Field in Command (Status Code: 0x2)\n"}));
    machine.expect(read(3).data(envelope(AER_Data{}, 6)));
    EXPECT_EQ(unlisted({"aer", "-i", "3"}), (Outcome{6, "Fail:Invalid HD ID\n"}));
    machine.expect(read(3).data(envelope(AER_Data{}, 200)));
    EXPECT_EQ(unlisted({"aer", "-i", "3"}), (Outcome{200, "Fail:Unknown error\n"}));
    Bytes foreign = envelope(AER_Data{});
    foreign[2] = 'Y';
    machine.expect(read(3).data(foreign));
    EXPECT_EQ(unlisted({"aer", "-i", "3"}), (Outcome{1, "Fail:Failed\n"}));
}

TEST_F(Aer, DebugLines)
{
    dbg_enable = 1;
    const std::string words = "CDW[0] : 0x000000e2\nCDW[10]: 0x000003ff\nCDW[12]: 0x00000ce1\nCDW[14]: 0x00000003\n";
    Bytes foreign = envelope(AER_Data{}, 6);
    foreign[2] = 'Y';
    machine.expect(read(3).data(foreign));
    EXPECT_EQ(
        unlisted({"aer", "-i", "3"}),
        (Outcome{1, words + "receive sign get 0x51 0x52 0x59 expect 0x51 0x52 0x58\nFail, status:\nFail:Failed\n"}));
    machine.expect(read(3).data(envelope(AER_Data{}, 5)));
    EXPECT_EQ(unlisted({"aer", "-i", "3"}), (Outcome{5, words + "Fail, status:\nFail:Not supported\n"}));
}

}  // namespace
