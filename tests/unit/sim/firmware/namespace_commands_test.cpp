// Namespaces: how they are made, attached and shared, and each refusal.
#include <gmock/gmock.h>

#include "api/src/interface/wire/ns.h"
#include "tests/unit/sim/firmware/storage_rig.h"

namespace qrx::sim {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

QRX_U32 create_ns(Rig& rig, QRX_U32 parent_plus_one, QRX_U64 sectors, QRX_U32 owner = 0)
{
    return rig
        .vendor(owner << 24 | parent_plus_one << 16 | 0x04E5, static_cast<QRX_U32>(sectors >> 32),
                static_cast<QRX_U32>(sectors))
        .status;
}

TEST(InitializeNs, DividesADriveIntoEqualParts)
{
    Rig rig("jbof");
    EXPECT_EQ(rig.vendor(0x000302E5, 4).status, kGood);
    ASSERT_EQ(rig.controller().namespaces.size(), 8U);
    const Namespace& last = rig.controller().namespaces[7];
    EXPECT_EQ(last.nsid, 8);
    EXPECT_EQ(last.parent, 3);
    EXPECT_EQ(last.sectors, kSectors / 4);
    EXPECT_TRUE(last.waiting);
    EXPECT_FALSE(last.shared);
}

TEST(InitializeNs, IsRefused)
{
    Rig rig("jbof");
    EXPECT_EQ(rig.vendor(0x000902E5, 1).status, 0x706U);
    EXPECT_EQ(rig.vendor(0x000302E5, 0).status, 0x74AU);
    EXPECT_EQ(rig.vendor(0x000302E5, 9).status, 0x74AU) << "MaxNSPerVD is 8";
    EXPECT_EQ(rig.vendor(0x000002E5, 2).status, 0x70CU) << "its namespace is attached";
    fail_drive(rig, 3);
    EXPECT_EQ(rig.vendor(0x000302E5, 1).status, 0x701U);
    Rig few = Rig::of_text(
        R"({"controllers": [{"adapter": {"features": ["namespace"], "max_ns": 3}, "drives": [{"id": 0}, {"id": 1}]}]})");
    EXPECT_EQ(few.vendor(0x000002E5, 3).status, kGood);
    EXPECT_EQ(few.vendor(0x000102E5, 1).status, 0x70BU) << "no namespace id is left";
    EXPECT_EQ(few.vendor(0x000002E5, 2).status, kGood) << "divided anew";
    EXPECT_EQ(few.controller().namespaces.size(), 2U);
}

TEST(CreateNs, TakesTheRoomThatIsLeft)
{
    Rig rig("jbof");
    EXPECT_EQ(create_ns(rig, 4, 2097152, 1), kGood);
    EXPECT_EQ(rig.controller().namespaces[4].sectors, 2097152U);
    EXPECT_EQ(rig.controller().namespaces[4].owner, 1);
    EXPECT_EQ(create_ns(rig, 4, kSectors - 2097152 + 1), 0x741U);
    EXPECT_EQ(create_ns(rig, 4, kSectors - 2097152), kGood);
    EXPECT_EQ(create_ns(rig, 4, 1), 0x741U) << "full";
    EXPECT_EQ(create_ns(rig, 4, 0), 0x741U);
    EXPECT_EQ(create_ns(rig, 4, QRX_U64{1} << 32), 0x741U) << "the high word counts";
}

TEST(CreateNs, IsRefused)
{
    Rig rig("jbof");
    EXPECT_EQ(create_ns(rig, 0, 1), 0x706U);
    EXPECT_EQ(create_ns(rig, 9, 1), 0x706U);
    EXPECT_EQ(create_ns(rig, 4, 1, 34), 0x704U) << "host functions are 0 to 33";
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(create_ns(rig, 4, 1), kGood);
    }
    EXPECT_EQ(create_ns(rig, 4, 1), 0x74AU) << "MaxNSPerVD is 8";
    fail_drive(rig, 3);
    EXPECT_EQ(create_ns(rig, 4, 1), 0x701U);
    Rig raid("raid");
    EXPECT_EQ(create_ns(raid, 1, 1), 0x741U) << "its namespace takes all of it";
    EXPECT_EQ(create_ns(raid, 9, 1), 0x707U);
    fail_drive(raid, 2);
    EXPECT_EQ(create_ns(raid, 2, 1), 0x735U) << "offline";
}

TEST(NamespaceAttachment, ShowsAndHidesTheNamespace)
{
    Rig rig("lab");
    EXPECT_EQ(created(rig, 1, 0x3), kGood);
    rig.identify(0, 1);
    EXPECT_TRUE(rig.all_from(0, 0)) << "not attached: a page of zeros";
    EXPECT_EQ(attach(rig, 1, 0, {0}).status, kGood);
    rig.identify(0, 1);
    EXPECT_EQ(rig.at<QRX_U64>(0), QRX_U64{kSectors});
    rig.identify(2);
    EXPECT_EQ(rig.at<QRX_U32>(0), 1U);
    ASSERT_EQ(rig.machine().controllers()[0].namespaces.size(), 1U);
    rig.vendor(0x00E5);
    EXPECT_EQ(rig.at<NVME_NS_Info>(8).Status, kNsValid | kNsActive);
    EXPECT_EQ(attach(rig, 1, 1, {0}).status, kGood);
    EXPECT_TRUE(rig.machine().controllers()[0].namespaces.empty());
    rig.vendor(0x00E5);
    EXPECT_EQ(rig.at<NVME_NS_Info>(8).Status, kNsValid);
    rig.identify(1);
    EXPECT_EQ(rig.at<QRX_U16>(256) & 8, 8) << "OACS says that it can";
}

TEST(NamespaceAttachment, ReachesAllHostFunctionsAtOnce)
{
    Rig rig("lab");
    EXPECT_EQ(created(rig, 1, 0x3), kGood);
    std::vector<QRX_U16> all;
    for (QRX_U16 id = 0; id < 34; ++id) {
        all.push_back(id);
    }
    EXPECT_EQ(attach(rig, 1, 0, all).status, kGood);
    EXPECT_EQ(attached(rig, 1), all);
    EXPECT_EQ(attach(rig, 1, 1, {0, 33}).status, kGood);
    EXPECT_EQ(attached(rig, 1).size(), 32U);
    EXPECT_TRUE(rig.machine().controllers()[0].namespaces.empty());
}

TEST(NamespaceAttachment, IsDoneWholeOrNotAtAll)
{
    Rig rig("jbof");
    EXPECT_EQ(attach(rig, 4, 0, {0}).status, 0x118U) << "attached already";
    EXPECT_EQ(attach(rig, 4, 0, {0, 1}).status, 0x118U);
    EXPECT_THAT(attached(rig, 4), ElementsAre(0));
    EXPECT_EQ(attach(rig, 1, 0, {1}).status, 0x119U) << "private to 0";
    EXPECT_EQ(attach(rig, 4, 1, {0, 1}).status, 0x11AU) << "not attached to 1";
    EXPECT_THAT(attached(rig, 4), ElementsAre(0));
    EXPECT_EQ(attach(rig, 4, 0, {1}).status, kGood);
    EXPECT_THAT(attached(rig, 4), ElementsAre(0, 1));
    EXPECT_EQ(attach(rig, 4, 1, {0, 1}).status, kGood);
    EXPECT_THAT(attached(rig, 4), IsEmpty());
}

TEST(NamespaceAttachment, IsRefused)
{
    Rig rig("jbof");
    EXPECT_EQ(attach(rig, 4, 0, {34}).status, 0x11FU);
    EXPECT_EQ(attach(rig, 4, 0, {}).status, 0x11CU) << "empty";
    EXPECT_EQ(attach(rig, 4, 0, {1, 1}).status, 0x11CU) << "twice";
    EXPECT_EQ(attach(rig, 4, 0, {2, 1}).status, 0x11CU) << "out of order";
    EXPECT_EQ(attach(rig, 4, 0, {1}, QRX_U16{2048}).status, 0x11CU) << "more than a list holds";
    EXPECT_EQ(attach(rig, 4, 2, {1}).status, 0x002U);
    EXPECT_EQ(attach(rig, 30, 0, {0}).status, 0x00BU);
    nvme_admin_cmd command{};
    command.opcode = 0x15;
    command.nsid = 4;
    EXPECT_EQ(rig.machine().admin({}, command, {}).status, 0x002U) << "no list";
    Rig plain = Rig::of_text(R"({"controllers": [{"adapter": {"features": ["raid"]}}]})");
    EXPECT_EQ(attach(plain, 1, 0, {0}).status, 0x001U);
    plain.identify(1);
    EXPECT_EQ(plain.at<QRX_U16>(256) & 8, 0);
    Rig virtual_function = Rig::of_text(
        R"({"controllers": [{"controller_id": 2, "adapter": {"features": ["namespace"]}, "drives": [{"id": 0}],
            "namespaces": [{"nsid": 1}]}]})");
    EXPECT_EQ(attach(virtual_function, 1, 1, {2}).status, 0x015U);
}

TEST(Sharing, IsSetAndTakenBack)
{
    Rig rig("jbof");
    EXPECT_EQ(rig.vendor(0x000103E5, 1).status, kGood);
    rig.vendor(0x000105E5);
    EXPECT_EQ(rig.page[8], 1);
    EXPECT_EQ(attach(rig, 1, 0, {5}).status, kGood);
    EXPECT_EQ(rig.vendor(0x000103E5, 0x0500).status, 0x70CU) << "still attached to 0 as well";
    EXPECT_EQ(attach(rig, 1, 1, {0}).status, kGood);
    EXPECT_EQ(rig.vendor(0x000103E5, 0x0500).status, kGood);
    rig.vendor(0x000105E5);
    EXPECT_EQ(rig.page[8], 0);
    EXPECT_EQ(rig.page[9], 5);
    EXPECT_EQ(attach(rig, 1, 0, {0}).status, 0x119U);
}

TEST(Sharing, IsRefused)
{
    Rig rig("jbof");
    EXPECT_EQ(rig.vendor(0x001E03E5, 1).status, 0x704U) << "no such namespace";
    EXPECT_EQ(rig.vendor(0x000103E5, 2).status, 0x704U) << "neither shared nor private";
    EXPECT_EQ(rig.vendor(0x000103E5, 0x2200).status, 0x704U) << "host functions are 0 to 33";
    Rig plain = Rig::of_text(R"({"controllers": [{"adapter": {"features": ["raid"]}, "drives": [{"id": 0}],
        "virtual_disks": [{"id": 0, "raid_mode": "jbod", "members": [0]}], "namespaces": [{"nsid": 1}]}]})");
    EXPECT_EQ(plain.vendor(0x000103E5, 1).status, 0x705U);
}
}  // namespace

}  // namespace qrx::sim
