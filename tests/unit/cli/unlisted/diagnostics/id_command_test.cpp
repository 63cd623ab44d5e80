// `id`: the disk that must be there, and the two pages of its Identify Controller data.
#include "cli/Functions/smart/idpd.h"

#include "tests/unit/api/pair_script.h"
#include "tests/unit/cli/controller_data.h"
#include "tests/unit/cli/run_unlisted.h"
#include "tests/unit/cli/storage_fixture.h"

namespace {

using namespace qrx::test;

const std::string kPage = std::string("Description:Get pd identify info.") + id_help;
const Outcome kUnable{1, "\nUnable to get identify of PD\n"};

const std::string kSimple =
    "\n"
    "NVME identify Information :\n"
    "\n"
    "PCI Vendor ID                       : 0x7a51\n"
    "Serial Number                       : SN-0042           \n"
    "Model Number                        : Model of 40 characters, exactly as long.\n"
    "Firmware Revision                   : FW 1.2\n"
    "Maximum Data Transfer Size          : 0x13\n"
    "Number of Namespaces                : 2147483733\n"
    "\n";

const std::string kDetail =
    "\n"
    "NVME identify Information :\n"
    "\n"
    "vid:                     0x7a51\n"
    "ssvid:                   0x1234\n"
    "Serial Number:           SN-0042           \n"
    "Model Number:            Model of 40 characters, exactly as long.\n"
    "Firmware Revision:       FW 1.2\n"
    "rab:                     0x11\n"
    "ieee[0]:                 0xa1\n"
    "ieee[1]:                 0xb2\n"
    "ieee[2]:                 0xc3\n"
    "mdts:                    0x13\n"
    "oacs:                    0x1415\n"
    "acl:                     0x16\n"
    "aerl:                    0x17\n"
    "frmw:                    0x18\n"
    "lpa:                     0x19\n"
    "elpe:                    0x1a\n"
    "npss:                    0x1b\n"
    "avscc:                   0x1c\n"
    "tnvmcap_low:             0x123456789abcdef0\n"
    "tnvmcap_high:            0xfedcba9876543210\n"
    "unvmcap_low:             0x400c0000001\n"
    "unvmcap_high:            0x21\n"
    "TNVMCAP(Bytes):          2596069104\n"
    "TNVMCAP(GB):             1221679586\n"
    "UNVMCAP(Bytes):          3221225473\n"
    "UNVMCAP(GB):             4099\n"
    "sqes:                    0x66\n"
    "cqes:                    0x44\n"
    "nn:                      0x80000055\n"
    "oncs:                    0x2122\n"
    "fuses:                   0x2324\n"
    "fna:                     0x25\n"
    "vwc:                     0x26\n"
    "nvscc:                   0x2b\n"
    "sgls:                    0x2e2f3031\n"
    "subnqn:                  nqn.2014-08.org:?[31m?\n";

class IdCommand : public StorageTest {
protected:
    IdCommand() { current().MaxPD = 200; }

    // The question whether disk `id` is there: type 2, one record from `id` on.
    void asked(QRX_U8 id, QRX_U8 verdict = 0)
    {
        pair.expect({225, 0}, {0, 0, 2, 0, id, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0}, Bytes(120), verdict);
    }
    static Command identify(QRX_U32 id)
    {
        return Command::passthru(0xC2)
            .word(1, id)
            .word(10, 1)
            .word(14, 6)
            .flag(0x4403)
            .receives(4096)
            .carries(Bytes(4096))
            .on(1);
    }
    void disk(QRX_U8 id)
    {
        asked(id);
        machine.expect(identify(id).data(bytesOf(someController())));
    }

    PairScript pair{machine, 1};
};

TEST_F(IdCommand, Help)
{
    EXPECT_EQ(unlisted({"id"}), (Outcome{1, kPage}));
    EXPECT_EQ(unlisted({"id", "-h"}), (Outcome{0, kPage}));
    EXPECT_EQ(std::string(id_sh), ":Get pd identify info.");
    EXPECT_EQ(kPage.substr(33, 48), "\nid -i <pd id> [-d <simple|detail>][-h]\n\nOptions");
    EXPECT_EQ(unlisted({"id", "-z"}), (Outcome{0, "", "", "id: illegal option -- z\n"}));
}

TEST_F(IdCommand, OptionsAreCheckedBeforeAnythingIsSent)
{
    EXPECT_EQ(unlisted({"id", "-d", "all"}), (Outcome{0, "-d : invalid description mode 'all'\n"}));
    EXPECT_EQ(unlisted({"id", "-d", "simple"}), (Outcome{0, "id: option -i is required\n"}));
    EXPECT_EQ(unlisted({"id", "-i", "1", "--pd_id=1"}), (Outcome{1, "Duplicated option specified.\n"}));
    EXPECT_EQ(unlisted({"id", "-i", "1", "-d", "simple", "--description=detail"}),
              (Outcome{1, "Duplicated option specified.\n"}));
}

TEST_F(IdCommand, TheSimplePageIsTheDefault)
{
    disk(0xC7);
    EXPECT_EQ(unlisted({"id", "-i", "199"}), (Outcome{0, kSimple}));
    disk(5);
    EXPECT_EQ(unlisted({"id", "--pd_id=5", "--description=SIMPLE", "--output", "x"}), (Outcome{0, kSimple}));
}

TEST_F(IdCommand, TheDetailPage)
{
    disk(5);
    EXPECT_EQ(unlisted({"id", "-i", "5", "-d", "Detail"}), (Outcome{0, kDetail}));
}

TEST_F(IdCommand, TheDebugLinesShowTheFilledWords)
{
    dbg_enable = 1;
    disk(5);
    EXPECT_EQ(unlisted({"id", "-i", "5"}),
              (Outcome{0, "CDW[0] : 0x000000c2\nCDW[10]: 0x00000001\nCDW[14]: 0x00000006\n" + kSimple}));
}

TEST_F(IdCommand, WhatIsNoNumberIsPassedOver)
{
    disk(0);
    EXPECT_EQ(unlisted({"id", "-i", "x5"}), (Outcome{0, kSimple}));
}

TEST_F(IdCommand, ADiskThatIsNotThereIsNotAskedForItsData)
{
    asked(5, 6);
    EXPECT_EQ(unlisted({"id", "-i", "5"}), kUnable);
}

TEST_F(IdCommand, AnIdBeyondTheControllersIsNotAskedFor)
{
    EXPECT_EQ(unlisted({"id", "-i", "200"}), kUnable);
    EXPECT_EQ(unlisted({"id", "-i", "65541"}), kUnable);
    EXPECT_EQ(unlisted({"id", "-i", "99999999999"}), kUnable);
    current().MaxPD = 0;
    EXPECT_EQ(unlisted({"id", "-i", "0"}), kUnable);
}

TEST_F(IdCommand, AFailureIsToldWithItsStatus)
{
    asked(5);
    machine.expect(identify(5).status(0x706));
    EXPECT_EQ(unlisted({"id", "-i", "5"}),
              (Outcome{0x706, "get identify info failed.\n", "Invalid HD ID (Status Code: 0x706)\n"}));
    asked(5);
    machine.expect(identify(5).error(EIO));
    EXPECT_EQ(unlisted({"id", "-i", "5", "-d", "detail"}).result, -1);
}

}  // namespace
