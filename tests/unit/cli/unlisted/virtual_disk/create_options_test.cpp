// `create`: its options, and what it refuses before it asks the controller.
#include <numeric>

#include "tests/unit/cli/unlisted/virtual_disk/create_fixture.h"

namespace {

using namespace qrx::test;

class CreateOptions : public CreateTest {};

const std::string kPage =
    "Description:For create VD with a name and namespaces of given sizes.\n"
    "create -d <physical disk id list> -r <0|1|10|JBOD> [-n <name>] [-i <quick|none>] [-b <128|256|512>] [-h]\n"
    "\n"
    "Options:\n"
    "    -n, --name <name>\n"
    "        Name of the VD, at most 16 digits, letters, blanks and underscores.\n"
    "        (DEFAULT:VD_<number>, with the first number that is free)\n"
    "    -r, --raidmode <0|1|10|JBOD>\n"
    "        RAID level.\n"
    "    -p, --paritydisks <number of parity disks>\n"
    "        Only with RAID 6 and RAID 60.\n"
    "    -d, --pdid <physical disk id list>\n"
    "        Physical disk IDs used to create the VD, separated by commas.\n"
    "    -i, --init <quick|none>\n"
    "        (DEFAULT:quick) initialization of the VD.\n"
    "    -b, --stripblocksize <128|256|512>\n"
    "        (DEFAULT:128) stripe block size in KB unit.\n"
    "    -x, --xsize <namespace size list>\n"
    "        (DEFAULT:0) sizes of the namespaces in GB, separated by commas.\n"
    "        0 is all that the others leave. An empty list is asked for.\n"
    "    -h, --help\n"
    "\n"
    "Examples:\n"
    "    create -d 0,1 -r 1\n"
    "    Create a RAID 1 VD using disk 0, 1 with one namespace\n"
    "\n"
    "    create -d 0,1 -r 0 -n data -b 512 -x 20,0\n"
    "    Create a RAID 0 VD with the name data and two namespaces, of which the first has 20 GB\n"
    "\n";

TEST_F(CreateOptions, Help)
{
    EXPECT_EQ(unlisted({"create"}), (Outcome{1, kPage}));
    EXPECT_EQ(unlisted({"create", "-h"}), (Outcome{0, kPage}));
    EXPECT_EQ(unlisted({"create", "-r", "0", "--help"}), (Outcome{0, kPage}));
    runAsJbof();
    EXPECT_EQ(unlisted({"create"}), (Outcome{1, kPage}));
}

TEST_F(CreateOptions, EachHasALongForm)
{
    NVME_Create_VD vd = plan(kRaid6, {7, 5, 3, 1}, "My_name 16 chars");
    vd.StripeBlockSize = 1024;
    vd.NumParityDisk = 3;
    vd.InitializationOption = 3;
    const std::vector<QRX_U64> sizes{QRX_U64{11} << 21, QRX_U64{12} << 21};
    expectAll(vd, sizes);
    EXPECT_EQ(unlisted({"create", "--name", "\"My_name 16 chars\"", "--raidmode=6", "--paritydisks", "3", "--pdid",
                        "7,5,3,1", "--init", "NONE", "--stripblocksize", "512", "--xsize", "11,12", "--output", "x"}),
              kCreated);
    expectAll(vd, sizes);
    EXPECT_EQ(unlisted({"create", "-nMy_name 16 chars", "-r6", "-p3", "-d7,5,3,1", "-inone", "-b512", "-x11,12", "\x01",
                        "x"}),
              kCreated);
}

TEST_F(CreateOptions, StripeBlockSizeAndInitialization)
{
    const std::pair<const char*, QRX_U16> kStripes[] = {{"128", 256}, {"256", 512}, {"512", 1024}};
    for (const auto& [word, sectors] : kStripes) {
        NVME_Create_VD vd = plan(kRaid0, {1, 2});
        vd.StripeBlockSize = sectors;
        expectAll(vd);
        EXPECT_EQ(unlisted({"create", "-n", "data", "-r", "0", "-d", "1,2", "-i", "Quick", "-b", word}), kCreated);
    }
}

TEST_F(CreateOptions, BadValues)
{
    const std::string long17 = "-n : length of name should be no more than 16 characters\n";
    EXPECT_EQ(unlisted({"create", "-n", "12345678901234567"}), (Outcome{1, long17}));
    EXPECT_EQ(unlisted({"create", "-n", std::string(3000, 'x')}), (Outcome{1, long17}));
    EXPECT_EQ(unlisted({"create", "-n", "'x'"}),
              (Outcome{1, "", "Please use double quotation mark to include strings.\n"}));
    EXPECT_EQ(unlisted({"create", "-r", "2"}), (Outcome{1, "-r : invalid raid mode 2\n"}));
    EXPECT_EQ(unlisted({"create", "-r", "jbod"}), (Outcome{1, "-r : invalid raid mode jbod\n"}));
    EXPECT_EQ(unlisted({"create", "-p", "2x"}), (Outcome{1, "-p : invalid number of parity disks '2x'\n"}));
    EXPECT_EQ(unlisted({"create", "-p", "-2"}), (Outcome{1, "-p : invalid number of parity disks '-2'\n"}));
    EXPECT_EQ(unlisted({"create", "-i", "slow"}), (Outcome{1, "-i : invalid initialization mode 'slow'\n"}));
    EXPECT_EQ(unlisted({"create", "-b", "64"}), (Outcome{1, "-b : invalid stripe block size '64'.\n"}));
    EXPECT_EQ(unlisted({"create", "-z"}), (Outcome{1, "", "", "create: illegal option -- z\n"}));
    EXPECT_EQ(unlisted({"create", "-x", std::string(2049, '1')}),
              (Outcome{1, "-x : length of namespace size list should be no more than 2048 characters\n"}));
    EXPECT_EQ(unlisted({"create", "-x", std::string(70000, '"')}),
              (Outcome{1, "-x : length of namespace size list should be no more than 2048 characters\n"}));
    EXPECT_EQ(unlisted({"create", "-x", "'1'"}),
              (Outcome{1, "", "Please use double quotation mark to include strings.\n"}));
}

TEST_F(CreateOptions, ABadValueEndsTheScan)
{
    EXPECT_EQ(unlisted({"create", "-i", "x", "-h"}), (Outcome{1, "-i : invalid initialization mode 'x'\n"}));
}

TEST_F(CreateOptions, IdsThatAreNoneOfAPd)
{
    for (const char* list :
         {"", ",1", "1,", "1,,2", "-1", "x", " 1", "1,y", "65536", "0,99999999999", "0,4294967296"}) {
        EXPECT_EQ(unlisted({"create", "-r", "0", "-d", list}),
                  (Outcome{1, std::string("-d : invalid PD ID '") + list + "'\n"}));
    }
    g_oneBaseMode = 1;
    EXPECT_EQ(unlisted({"create", "-r", "0", "-d", "1,0"}), (Outcome{1, "-d : invalid PD ID '1,0'\n"}));
    EXPECT_EQ(unlisted({"create", "-r", "0", "-d", "65537"}), (Outcome{1, "-d : invalid PD ID '65537'\n"}));
}

TEST_F(CreateOptions, MembersKeepTheirOrderAndAreCountedOnce)
{
    const std::pair<const char*, std::vector<QRX_U16>> kLists[] = {{"0,1", {0, 1}},        {"3,0,3,0", {3, 0}},
                                                                   {"1x,2 y,1", {1, 2}},   {"255,0", {255, 0}},
                                                                   {"32,00033", {32, 33}}, {"65535,256", {65535, 256}}};
    for (const auto& [list, members] : kLists) {
        expectAll(plan(kRaid0, members));
        EXPECT_EQ(unlisted({"create", "-n", "data", "-r", "0", "-d", list}), kCreated) << list;
    }
}

TEST_F(CreateOptions, OneBasedIdsOfMembers)
{
    g_oneBaseMode = 1;
    expectAll(plan(kRaid0, {0, 65535}));
    EXPECT_EQ(unlisted({"create", "-n", "data", "-r", "0", "-d", "1,65536"}), kCreated);
}

// The ids 0 to count - 1, each twice.
std::string idsBelow(int count)
{
    std::string list;
    for (int id = 0; id < count; ++id) {
        list += (list.empty() ? "" : ",") + std::to_string(id) + "," + std::to_string(id);
    }
    return list;
}

TEST_F(CreateOptions, AsManyMembersAsThereIsRoomFor)
{
    std::vector<QRX_U16> all(32);
    std::iota(all.begin(), all.end(), QRX_U16{0});
    expectAll(plan(kRaid0, all));
    EXPECT_EQ(unlisted({"create", "-n", "data", "-r", "0", "-d", idsBelow(32)}), kCreated);
    const Outcome tooMany{1, "-d : number of PDs should be no more than 32\n"};
    EXPECT_EQ(unlisted({"create", "-n", "data", "-r", "0", "-d", idsBelow(33)}), tooMany);
    EXPECT_EQ(unlisted({"create", "-n", "data", "-r", "0", "-d", idsBelow(5000)}), tooMany);
}

TEST_F(CreateOptions, AControllerWithoutRaidRefusesBeforeAnythingElse)
{
    runAsJbof();
    EXPECT_EQ(unlisted({"create", "-r", "0", "-r", "0"}), kNoRaid);
    EXPECT_EQ(unlisted({"create", "-n", "data"}), kNoRaid);
}

TEST_F(CreateOptions, Duplicates)
{
    for (auto words : {Line{"create", "-r", "0", "-r", "0"}, Line{"create", "-p", "2", "-p", "2"},
                       Line{"create", "-d", "0", "-d", "0"}, Line{"create", "-n", "?", "-n", "a"},
                       Line{"create", "-i", "quick", "-i", "none"}, Line{"create", "-b", "128", "-b", "128"}}) {
        EXPECT_EQ(unlisted(words), kDuplicate);
    }
}

TEST_F(CreateOptions, OfRepeatedSizesTheLastOnesStand)
{
    expectAll(plan(kRaid0, {1, 2}), {QRX_U64{7} << 21});
    EXPECT_EQ(unlisted({"create", "-n", "data", "-r", "0", "-d", "1,2", "-x", "6", "-x", "7"}), kCreated);
}

TEST_F(CreateOptions, EachMissingOptionIsTold)
{
    EXPECT_EQ(unlisted({"create", "-n", "?"}),
              (Outcome{1, "create: option -r is required\ncreate: option -d is required\n"}));
    EXPECT_EQ(unlisted({"create", "-d", "0"}), (Outcome{1, "create: option -r is required\n"}));
    EXPECT_EQ(unlisted({"create", "-r", "0"}), (Outcome{1, "create: option -d is required\n"}));
}

TEST_F(CreateOptions, LettersOfAName)
{
    for (const char* name : {"a-b", "a.b", "tab\t", "\xC3\xA4", "a\"b"}) {
        EXPECT_EQ(unlisted({"create", "-n", name, "-r", "JBOD", "-d", "0,1", "-p", "2"}),
                  (Outcome{1, std::string("-n, name must be numeric, character, space or underline. Now is ") + name +
                                  "\n"}));
    }
}

TEST_F(CreateOptions, ParityDisksAreForModesThatHaveThem)
{
    const std::pair<const char*, const char*> kModes[] = {{"0", "R0"}, {"1", "R1"},  {"10", "R10"},
                                                          {"5", "NA"}, {"50", "NA"}, {"JBOD", "JBOD"}};
    for (const auto& [mode, word] : kModes) {
        EXPECT_EQ(unlisted({"create", "-r", mode, "-d", "0,1,2", "-p", "0"}),
                  (Outcome{1, std::string("RAID mode ") + word + " don't support the setting of parity disks.\n"}));
    }
}

std::string idsUpTo(int count)
{
    std::string list = "0";
    for (int id = 1; id < count; ++id) {
        list += "," + std::to_string(id);
    }
    return list;
}

TEST_F(CreateOptions, NumbersOfMembersThatAModeRefuses)
{
    struct Row {
        const char* mode;
        std::vector<int> counts;
        const char* message;
    };
    const Row kRows[] = {{"JBOD", {2, 32}, "JBOD only support 1 PD.\n"},
                         {"0", {1}, "RAID0 needs at least 2 PD.\n"},
                         {"1", {1, 3, 4, 32}, "RAID1 needs exactly 2 PDs.\n"},
                         {"10", {1, 2, 3, 5, 31}, "RAID10 needs at least 4 or more even number of PDs.\n"},
                         {"5", {1, 2}, "RAID5 needs at least 3 PDs.\n"},
                         {"50", {1, 4, 5, 7, 31}, "RAID50 needs least 6 or more even number of PDs.\n"},
                         {"6", {1, 2}, "RAID6 needs least 3 PDs.\n"},
                         {"60", {1, 4, 5, 7, 31}, "RAID60 needs least 6 or more even number of PDs.\n"}};
    for (const Row& row : kRows) {
        for (const int count : row.counts) {
            EXPECT_EQ(unlisted({"create", "-r", row.mode, "-d", idsUpTo(count)}), (Outcome{1, row.message}))
                << row.mode << " of " << count;
        }
    }
}

TEST_F(CreateOptions, NumbersOfMembersThatAModeTakes)
{
    struct Row {
        const char* word;
        QRX_U8 mode;
        std::vector<int> counts;
        QRX_U8 parity;
    };
    const Row kRows[] = {{"JBOD", 15, {1}, 0},      {"0", 0, {2, 3, 32}, 0},  {"1", 1, {2}, 0},
                         {"10", 16, {4, 6, 32}, 0}, {"5", 5, {3, 4, 32}, 0},  {"50", 80, {6, 8, 32}, 0},
                         {"6", 6, {3, 4, 32}, 2},   {"60", 96, {6, 8, 32}, 4}};
    for (const Row& row : kRows) {
        for (const int count : row.counts) {
            std::vector<QRX_U16> members(static_cast<std::size_t>(count));
            std::iota(members.begin(), members.end(), QRX_U16{0});
            NVME_Create_VD vd = plan(row.mode, members);
            vd.NumParityDisk = row.parity;
            expectAll(vd);
            EXPECT_EQ(unlisted({"create", "-n", "data", "-r", row.word, "-d", idsUpTo(count)}), kCreated)
                << row.word << " of " << count;
        }
    }
}

TEST_F(CreateOptions, NumbersOfParityDisksThatAModeRefuses)
{
    for (const char* parity : {"", "0", "1", "4", "5", "258", "4294967298", "99999999999"}) {
        EXPECT_EQ(unlisted({"create", "-r", "6", "-d", "0,1,2,3", "-p", parity}),
                  (Outcome{1, "Number of parity disks should be at least 2 and less than 4.\n"}))
            << parity;
    }
    for (const char* parity : {"0", "2", "3", "5", "8", "10", "260"}) {
        EXPECT_EQ(unlisted({"create", "-r", "60", "-d", "0,1,2,3,4,5,6,7", "-p", parity}),
                  (Outcome{1, "RAID60 need even number of parity disks between 4 and 8.\n"}))
            << parity;
    }
    // The number of members comes first.
    EXPECT_EQ(unlisted({"create", "-r", "6", "-d", "0,1", "-p", "9"}), (Outcome{1, "RAID6 needs least 3 PDs.\n"}));
}

TEST_F(CreateOptions, NumbersOfParityDisksThatAModeTakes)
{
    const std::pair<const char*, QRX_U8> kRaid6Takes[] = {{"2", 2}, {"3", 3}, {"7", 7}};
    for (const auto& [word, parity] : kRaid6Takes) {
        NVME_Create_VD vd = plan(kRaid6, {0, 1, 2, 3, 4, 5, 6, 7});
        vd.NumParityDisk = parity;
        expectAll(vd);
        EXPECT_EQ(unlisted({"create", "-n", "data", "-r", "6", "-d", "0,1,2,3,4,5,6,7", "-p", word}), kCreated);
    }
    const std::pair<const char*, QRX_U8> kRaid60Takes[] = {{"4", 4}, {"6", 6}};
    for (const auto& [word, parity] : kRaid60Takes) {
        NVME_Create_VD vd = plan(kRaid60, {0, 1, 2, 3, 4, 5, 6, 7});
        vd.NumParityDisk = parity;
        expectAll(vd);
        EXPECT_EQ(unlisted({"create", "-n", "data", "-r", "60", "-d", "0,1,2,3,4,5,6,7", "-p", word}), kCreated);
    }
}

}  // namespace
