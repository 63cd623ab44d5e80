// `create`: what it asks the controller, and what it makes.
#include "cli/Functions/storage/mode_rules.h"
#include "tests/unit/cli/unlisted/virtual_disk/create_fixture.h"

namespace {

using namespace qrx::test;

class Create : public CreateTest {
protected:
    static Outcome make(const std::string& name = "data")
    {
        return unlisted({"create", "-n", name, "-r", "1", "-d", "0,1"});
    }
};

TEST_F(Create, ADiskThatDoesNotAnswer)
{
    expectPd(4);
    expectPd(300, 0, 9);
    EXPECT_EQ(unlisted({"create", "-r", "0", "-d", "4,300,5"}), (Outcome{1, "Failed to get status for PD 300\n"}));
    g_oneBaseMode = 1;
    expectPd(300, 0, 9);
    EXPECT_EQ(unlisted({"create", "-r", "0", "-d", "301,5"}), (Outcome{1, "Failed to get status for PD 301\n"}));
}

TEST_F(Create, ADiskOfAnotherVd)
{
    expectPd(0, kPdAssigned | kPdMediaPatrol);
    EXPECT_EQ(make(), (Outcome{1, "assigned disk 0 can not be used to create VD.\n"}));
    g_oneBaseMode = 1;
    expectPd(0, kPdAssigned);
    EXPECT_EQ(unlisted({"create", "-r", "0", "-d", "1,2"}),
              (Outcome{1, "assigned disk 1 can not be used to create VD.\n"}));
}

TEST_F(Create, ABusyDisk)
{
    expectPd(0);
    expectPd(1, kPdMediaPatrol);
    EXPECT_EQ(make(), (Outcome{1, "Has BGA disk 1 can not be used to create VD.\n"}));
    g_oneBaseMode = 1;
    expectPd(0, kPdMediaPatrol);
    EXPECT_EQ(unlisted({"create", "-r", "0", "-d", "1,2"}),
              (Outcome{1, "Has BGA disk 1 can not be used to create VD.\n"}));
}

TEST_F(Create, OtherBitsOfADiskDoNotMatter)
{
    const NVME_Create_VD vd = plan(kRaid1, {0, 1});
    expectPd(0, 0xFC);
    expectPd(1, kPdFailed);
    expectQuery(vd);
    expectCreate(vd, {0});
    expectNotification();
    EXPECT_EQ(make(), kCreated);
}

TEST_F(Create, TheDefaultNameHasTheFirstFreeNumber)
{
    const NVME_Create_VD vd = plan(kRaid1, {0, 1}, "VD_2");
    expectMembers(vd);
    expectVd(0);
    expectVd(1);
    expectVd(2, 7);
    expectQuery(vd);
    expectCreate(vd, {0});
    expectNotification();
    EXPECT_EQ(unlisted({"create", "-r", "1", "-d", "0,1"}), kCreated);
}

TEST_F(Create, TheDefaultNameIsOneBasedToo)
{
    g_oneBaseMode = 1;
    const NVME_Create_VD vd = plan(kRaid1, {0, 1}, "VD_1");
    expectMembers(vd);
    expectVd(0, 1);
    expectQuery(vd);
    expectCreate(vd, {0});
    expectNotification();
    EXPECT_EQ(unlisted({"create", "-r", "1", "-d", "1,2"}), kCreated);
}

TEST_F(Create, WithoutAFreeNumberTheNameHasTheLargest)
{
    const NVME_Create_VD vd = plan(kRaid1, {0, 1}, "VD_65535");
    for (const QRX_U8 most : {QRX_U8{0}, QRX_U8{2}}) {
        for (const QRX_U8 oneBased : {QRX_U8{0}, QRX_U8{1}}) {
            current().MaxVD = most;
            g_oneBaseMode = oneBased;
            expectMembers(vd);
            for (QRX_U8 id = 0; id < most; ++id) {
                expectVd(id);
            }
            expectQuery(vd);
            expectCreate(vd, {0});
            expectNotification();
            EXPECT_EQ(unlisted({"create", "-r", "1", "-d", oneBased != 0 ? "1,2" : "0,1"}), kCreated);
        }
    }
}

TEST_F(Create, NamesFillTheirField)
{
    for (const char* name : {"", "0123456789abcdef", "A z_9"}) {
        expectAll(plan(kRaid1, {0, 1}, name));
        EXPECT_EQ(make(name), kCreated) << name;
    }
    expectAll(plan(kRaid1, {0, 1}, "in quotes"));
    EXPECT_EQ(make("\"in quotes\""), kCreated);
}

TEST_F(Create, AFailedQueryOfTheSize)
{
    const NVME_Create_VD vd = plan(kRaid1, {0, 1});
    expectMembers(vd);
    expectQuery(vd, 61);
    EXPECT_EQ(make(), (Outcome{0, "\nFailed to pre-create virtual disk.\n"}));
}

TEST_F(Create, AFailedCreationGivesItsStatus)
{
    const NVME_Create_VD vd = plan(kRaid1, {0, 1});
    expectMembers(vd);
    expectQuery(vd);
    expectCreate(vd, {0}, 0xFE);
    EXPECT_EQ(make(), (Outcome{0xFE, "\nFailed to create virtual disk.\n"}));
}

TEST_F(Create, TheNamespacesOfTheFirstVdAreAttached)
{
    const NVME_Create_VD vd = plan(kRaid1, {0, 1});
    expectMembers(vd);
    expectQuery(vd);
    expectCreate(vd, {0});
    expectNotification({namespaceOf(0, 5, kNsWaitsForAttach), namespaceOf(0, 6, kNsActive)}, 1);
    machine.expect(attachment(5, 0));
    EXPECT_EQ(make(), kCreated);
}

TEST_F(Create, ACreationWhoseNamespacesCannotBeListedHasFailed)
{
    const NVME_Create_VD vd = plan(kRaid1, {0, 1});
    expectMembers(vd);
    expectQuery(vd);
    expectCreate(vd, {0});
    pair.expect({224, 0}, {}, pattern(160), 9);
    EXPECT_EQ(make(), (Outcome{1, "\nFailed to create virtual disk.\n"}));
}

TEST_F(Create, ThirtyTwoNamespacesAreTheMost)
{
    const NVME_Create_VD vd = plan(kRaid1, {0, 1});
    std::string list = "1";
    for (int i = 1; i < 32; ++i) {
        list += ",1";
    }
    expectMembers(vd);
    expectQuery(vd);
    expectCreate(vd, std::vector<QRX_U64>(32, QRX_U64{1} << 21));
    expectNotification();
    EXPECT_EQ(unlisted({"create", "-n", "data", "-r", "1", "-d", "0,1", "-x", list}), kCreated);
    const Outcome tooMany{0, "\nFailed to create virtual disk, total namespace cannot over than 32.\n"};
    for (const int count : {33, 64, 65, 200}) {
        list = "1";
        for (int i = 1; i < count; ++i) {
            list += ",1";
        }
        expectUpToSizes();
        EXPECT_EQ(unlisted({"create", "-n", "data", "-r", "1", "-d", "0,1", "-x", list}), tooMany) << count;
    }
    // One that does not fit is asked for again first.
    const Input input("1\n");
    expectUpToSizes();
    expectCreate(vd, {QRX_U64{1} << 21});
    expectNotification();
    EXPECT_EQ(unlisted({"create", "-n", "data", "-r", "1", "-d", "0,1", "-x", list + ",1"}),
              (Outcome{0,
                       "The namespace size is wrong(201 GB), please type again.\n"
                       "Please type namespace size list:Create virtual disk successfully.\n"}));
}

TEST_F(Create, TheEndOfInputCreatesNothing)
{
    const Input input("");
    expectUpToSizes();
    EXPECT_EQ(unlisted({"create", "-n", "data", "-r", "1", "-d", "0,1", "-x", "0,0"}),
              (Outcome{1,
                       "The namespace size is wrong, it contain more than  two '0', please type again.\n"
                       "Please type namespace size list:\nNo namespace sizes, the virtual disk is not created.\n"}));
}

TEST_F(Create, WordsOfRaidModes)
{
    const std::pair<QRX_U8, std::string> kWords[] = {{0, "R0"},  {1, "R1"}, {16, "R10"}, {15, "JBOD"}, {5, "NA"},
                                                     {80, "NA"}, {6, "NA"}, {96, "NA"},  {2, "NA"},    {255, "NA"}};
    for (const auto& [mode, word] : kWords) {
        EXPECT_EQ(RaidModeStrInCreate(mode), word) << int{mode};
    }
}

}  // namespace
