// Pair commands that make, change and take over virtual disks, and those that start and control activities.
#include "tests/unit/sim/firmware/pair.h"

namespace qrx::sim {

namespace {

class PairStorage : public Pair {
public:
    PairStorage() { rig_ = Rig("lab"); }

    static NVME_Create_VD request(QRX_U8 mode, std::initializer_list<QRX_U16> members)
    {
        NVME_Create_VD create{};
        create.RAIDMode = mode;
        create.MemberCount = static_cast<QRX_U8>(members.size());
        create.StripeBlockSize = 512;
        create.InitializationOption = 3;  // none
        std::copy(members.begin(), members.end(), std::begin(create.PDIDs));
        return create;
    }
    static NVME_Create_VD with_parity(QRX_U8 mode, QRX_U8 parity, std::initializer_list<QRX_U16> members)
    {
        NVME_Create_VD create = request(mode, members);
        create.NumParityDisk = parity;
        return create;
    }
    const VirtualDisk& vd() const { return rig_.controller().virtual_disks.at(0); }
    // The status of the virtual disk after each of these drives has failed, one after the other.
    std::vector<QRX_U8> status_without(std::initializer_list<QRX_U32> drives)
    {
        std::vector<QRX_U8> all;
        for (const QRX_U32 drive : drives) {
            EXPECT_FALSE(rig_.machine().controller(0)->fail_drive(drive));
            all.push_back(vd().status);
        }
        return all;
    }
};

TEST_F(PairStorage, CreateTakesNameAndNamespaceSizes)
{
    auto create = request(1, {3, 1});
    std::memcpy(create.Name, "SIXTEEN_LETTERS_", 16);
    create.NSCount = 3;
    create.NSSize[0] = 1000;
    create.NSSize[1] = 0;
    create.NSSize[2] = 8;
    ask({226, 3}, 0, bytes_of(create));
    EXPECT_EQ(vd().name, "SIXTEEN_LETTERS_");
    EXPECT_EQ(vd().stripe, 512);
    EXPECT_EQ(vd().members, (std::vector<QRX_U16>{3, 1}));
    const auto& made = rig_.controller().namespaces;
    ASSERT_EQ(made.size(), 3U);
    EXPECT_EQ(made[0].sectors, 1000U);
    EXPECT_EQ(made[1].sectors, 1875385008U - 1008);
    EXPECT_EQ(made[2].sectors, 8U);
}

TEST_F(PairStorage, QueryTellsTheSizeAndMakesNothing)
{
    auto create = request(0, {0, 1});
    create.QueryLDSize = 1;
    ask({226, 3}, 0, bytes_of(create));
    const auto answer = rig_.at<NVME_PreCreate_VD>(8);
    EXPECT_EQ(answer.SectorSize, 512U);
    EXPECT_EQ(answer.LBA, 2U * 1875385008);
    EXPECT_TRUE(rig_.controller().virtual_disks.empty());
}

TEST_F(PairStorage, CreateIsRefused)
{
    ask({226, 3}, 61, bytes_of(request(1, {0})));
    ask({226, 3}, 59, bytes_of(request(1, {0, 0})));
    ask({226, 3}, 3, std::span<const QRX_U8>(bytes_of(request(1, {0, 1}))).first(623));
    auto create = request(1, {0, 1});
    create.MemberCount = 33;
    ask({226, 3}, 61, bytes_of(create));
    create = request(1, {0, 1});
    create.NSCount = 65;
    ask({226, 3}, 74, bytes_of(create));
    create.NSCount = 1;
    create.NSSize[0] = 1875385009;
    ask({226, 3}, 65, bytes_of(create));
    create = request(1, {0, 1});
    create.Name[0] = 7;
    ask({226, 3}, 4, bytes_of(create));
    EXPECT_TRUE(rig_.controller().virtual_disks.empty());
}

constexpr QRX_U64 kShare = 1875385008;

TEST_F(PairStorage, Raid6HasTheParityDisksThatItIsToHave)
{
    auto create = with_parity(6, 3, {0, 1, 2, 3, 4});
    create.QueryLDSize = 1;
    ask({226, 3}, 0, bytes_of(create));
    EXPECT_EQ(rig_.at<NVME_PreCreate_VD>(8).LBA, 2 * kShare);
    create.QueryLDSize = 0;
    ask({226, 3}, 0, bytes_of(create));
    EXPECT_EQ(vd().sectors, 2 * kShare);
    EXPECT_EQ(vd().record({}).NumParityDisk, 3);
    EXPECT_EQ(status_without({0, 2, 4, 1}), (std::vector<QRX_U8>{kVdDegrade, kVdDegrade, kVdDegrade, kVdOffline}));
}

TEST_F(PairStorage, Raid60IsAskedForAllParityDisksAndTellsThoseOfEachHalf)
{
    ask({226, 3}, 0, bytes_of(with_parity(0x60, 6, {0, 1, 2, 3, 4, 5, 6, 7})));
    EXPECT_EQ(vd().sectors, 2 * kShare);
    EXPECT_EQ(vd().record({}).NumParityDisk, 3);
    EXPECT_EQ(
        status_without({0, 1, 2, 5, 6, 7, 4}),
        (std::vector<QRX_U8>{kVdDegrade, kVdDegrade, kVdDegrade, kVdDegrade, kVdDegrade, kVdDegrade, kVdOffline}));
}

TEST_F(PairStorage, NoNumberOfParityDisksIsThatOfTheMode)
{
    ask({226, 3}, 0, bytes_of(with_parity(6, 0, {0, 1, 2})));
    EXPECT_EQ(vd().sectors, kShare);
    EXPECT_EQ(vd().parity_disks, 2);
    ask({226, 3}, 0, bytes_of(with_parity(0x60, 0, {3, 4, 5, 6, 7, 8})));
    EXPECT_EQ(rig_.controller().virtual_disks.at(1).sectors, 2 * kShare);
    EXPECT_EQ(rig_.controller().virtual_disks.at(1).parity_disks, 2);
    rig_ = Rig("lab");
    ask({226, 3}, 0, bytes_of(with_parity(0x60, 4, {3, 4, 5, 6, 7, 8})));
    EXPECT_EQ(vd().sectors, 2 * kShare);
    EXPECT_EQ(vd().parity_disks, 2);
}

TEST_F(PairStorage, NumbersOfParityDisksThatCannotBeAreRefused)
{
    for (const QRX_U8 parity : std::initializer_list<QRX_U8>{1, 5, 6, 255}) {
        ask({226, 3}, 4, bytes_of(with_parity(6, parity, {0, 1, 2, 3, 4})));
    }
    for (const QRX_U8 parity : std::initializer_list<QRX_U8>{1, 2, 3, 5, 7, 8, 10, 254, 255}) {
        ask({226, 3}, 4, bytes_of(with_parity(0x60, parity, {0, 1, 2, 3, 4, 5, 6, 7})));
    }
    for (const QRX_U8 mode : std::initializer_list<QRX_U8>{0x00, 0x01, 0x10, 0x05, 0x50, 0x0F}) {
        auto create = with_parity(mode, 2, {0, 1, 2, 3, 4, 5});
        create.MemberCount = mode == 0x0F ? 1 : mode == 0x01 ? 2 : 6;
        ask({226, 3}, 4, bytes_of(create));
        create.QueryLDSize = 1;
        ask({226, 3}, 4, bytes_of(create));
    }
    ask({226, 3}, 61, bytes_of(with_parity(6, 9, {0, 1})));
    EXPECT_TRUE(rig_.controller().virtual_disks.empty());
}

TEST_F(PairStorage, ARedundantVirtualDiskIsInitializedQuicklyUnlessThatIsNotWanted)
{
    auto create = request(1, {0, 1});
    create.InitializationOption = 0;
    create.QueryLDSize = 1;
    ask({226, 3}, 0, bytes_of(create));
    EXPECT_TRUE(rig_.controller().virtual_disks.empty());
    create.QueryLDSize = 0;
    ask({226, 3}, 0, bytes_of(create));
    EXPECT_EQ(vd().status, kVdInitialization);
    ask({227, 2}, 0, list(0, 1));
    EXPECT_EQ(rig_.bytes(8 + 16, 5), std::string("\0\1\0\0\1", 5));
    ask({226, 4}, 66, bytes_of(NVME_VD_Delete{}));
    EXPECT_EQ(rig_.controller().ring.pages.at(0).lines,
              "[SEQ]01[TIME]00[MSG]VD0_CREATED_NOTIFY\n[SEQ]02[TIME]00[MSG]NS1_CREATED_NOTIFY\n"
              "[SEQ]03[TIME]00[MSG]VD0_INIT_START_NOTIFY\n");
    rig_.machine().advance(std::chrono::seconds(10));
    EXPECT_EQ(vd().status, kVdFunctional);
    EXPECT_FALSE(vd().initialized) << "its redundancy is not written";
    ask({226, 4}, 0, bytes_of(NVME_VD_Delete{}));
    ask({226, 3}, 0, bytes_of(request(1, {0, 1})));
    EXPECT_EQ(vd().status, kVdFunctional);
    EXPECT_FALSE(vd().activity);
}

TEST_F(PairStorage, WhatIsNotRedundantOrCannotBeInitializedIsMadeAllTheSame)
{
    auto create = request(0, {0, 1});
    create.InitializationOption = 0;
    ask({226, 3}, 0, bytes_of(create));
    EXPECT_FALSE(vd().activity);
    rig_ = Rig::of_text(
        R"({"controllers": [{"adapter": {"background": ["rebuild"]}, "drives": [{"id": 0}, {"id": 1}]}]})");
    create = request(1, {0, 1});
    create.InitializationOption = 0;
    ask({226, 3}, 0, bytes_of(create));
    EXPECT_EQ(vd().status, kVdFunctional);
    EXPECT_FALSE(vd().activity);
}

TEST_F(PairStorage, AnotherKindOfInitializationIsRefused)
{
    for (const QRX_U8 option : std::initializer_list<QRX_U8>{1, 2, 4, 255}) {
        auto create = request(1, {0, 1});
        create.InitializationOption = option;
        ask({226, 3}, 4, bytes_of(create));
        create.QueryLDSize = 1;
        ask({226, 3}, 4, bytes_of(create));
    }
    EXPECT_TRUE(rig_.controller().virtual_disks.empty());
}

TEST_F(PairStorage, LifeOfAVirtualDisk)
{
    ask({226, 3}, 0, bytes_of(request(1, {0, 1})));
    ask({227, 10}, 52, bytes_of(NVME_VD_MP{}));
    NVME_VD_Init init{};
    init.Init_Type = 2;
    ask({227, 6}, 0, bytes_of(init));
    ask({227, 6}, 69, bytes_of(init));
    ask({226, 4}, 66, bytes_of(NVME_VD_Delete{}));
    ask({227, 4, 1}, 0, list(0, 1));
    ask({227, 4, 9}, 68, list(0, 1));
    ask({227, 4, 2}, 0, list(0, 1));
    rig_.machine().advance(std::chrono::hours(1));
    ask({227, 10}, 0, bytes_of(NVME_VD_MP{}));
    ask({227, 4, 3}, 0, list(0, 1));
    ask({227, 4, 3}, 70, list(0, 1));
    EXPECT_FALSE(rig_.machine().controller(0)->fail_drive(0));
    ask({227, 7}, 0, bytes_of(NVME_Rebuild{0, 2, {}}));
    EXPECT_EQ(vd().members, (std::vector<QRX_U16>{2, 1}));
    rig_.machine().advance(std::chrono::hours(1));
    std::array<QRX_U8, 40> config{};
    config[6] = 1;
    std::memcpy(config.data() + 24, "RENAMED", 7);
    ask({226, 2}, 0, config);
    EXPECT_EQ(vd().name, "RENAMED");
    config[16] = 9;
    ask({226, 2}, 7, config);
    ask({226, 4}, 0, bytes_of(NVME_VD_Delete{}));
    ask({226, 4}, 7, bytes_of(NVME_VD_Delete{}));
}

TEST_F(PairStorage, MediaPatrolOfADrive)
{
    ask({227, 5}, 0, bytes_of(NVME_PD_MP{}));
    ask({227, 5}, 69, bytes_of(NVME_PD_MP{}));
    ask({226, 3}, 69, bytes_of(request(1, {0, 1})));
    ask({227, 3, 3}, 0, list(0, 1));
    ask({227, 3, 3}, 70, list(0, 1));
    ask({227, 3, 3}, 6, list(30, 1));
    NVME_PD_MP failed{};
    failed.PDID = 11;
    ask({227, 5}, 1, bytes_of(failed));
}

TEST_F(PairStorage, Import)
{
    rig_ = Rig("importable");
    ask({226, 6}, 0, list(1, 1));
    ask({226, 6}, 57, list(1, 1));
    ask({226, 6}, 58, list(2, 1));
    ask({225, 9}, 5, list(1, 1));
}

TEST_F(PairStorage, SeveralNamesAreSetTogetherOrNotAtAll)
{
    rig_ = Rig("degraded");
    std::vector<QRX_U8> request(16 + 3 * 24);
    request[6] = 3;
    const auto name = [&](std::size_t index, QRX_U8 id, std::string_view text) {
        request[16 + index * 24] = id;
        std::fill_n(request.begin() + static_cast<long>(16 + index * 24 + 8), 16, QRX_U8{0});
        std::copy(text.begin(), text.end(), request.begin() + static_cast<long>(16 + index * 24 + 8));
    };
    name(0, 0, "ALPHA");
    name(1, 1, "BETA");
    name(2, 9, "NOBODY");
    ask({226, 2}, 7, request);
    EXPECT_EQ(rig_.controller().virtual_disks[0].name, "VD_0");
    name(2, 2, "\a");
    ask({226, 2}, 4, request);
    EXPECT_EQ(rig_.controller().virtual_disks[0].name, "VD_0");
    name(2, 2, "GAMMA_IN_SIXTEEN");
    ask({226, 2}, 3, std::span(request).first(request.size() - 1));
    ask({226, 2}, 0, request);
    EXPECT_EQ(rig_.controller().virtual_disks[0].name, "ALPHA");
    EXPECT_EQ(rig_.controller().virtual_disks[1].name, "BETA");
    EXPECT_EQ(rig_.controller().virtual_disks[2].name, "GAMMA_IN_SIXTEEN");
    request[6] = 0;
    ask({226, 2}, 3, std::span(request).first(16));
}

TEST_F(PairStorage, SynchronizationWritesTheRedundancy)
{
    ask({226, 3}, 0, bytes_of(request(1, {0, 1})));
    ask({227, 8}, 3, std::span<const QRX_U8>(bytes_of(NVME_VD_Sync{})).first(7));
    ask({227, 8}, 7, bytes_of(NVME_VD_Sync{1, {}}));
    ask({227, 8}, 0, bytes_of(NVME_VD_Sync{}));
    ask({227, 8}, 69, bytes_of(NVME_VD_Sync{}));
    ask({227, 2}, 0, list(0, 1));
    EXPECT_EQ(rig_.bytes(8 + 16, 5), std::string("\0\4\0\0\1", 5));
    EXPECT_FALSE(vd().initialized);
    rig_.machine().advance(std::chrono::hours(2));
    EXPECT_TRUE(vd().initialized);
    EXPECT_EQ(rig_.controller().events.entries.back().sentence(), "VD 0 synchronization done");
    EXPECT_FALSE(rig_.machine().controller(0)->fail_drive(0));
    ask({227, 8}, 53, bytes_of(NVME_VD_Sync{}));
    ask({226, 3}, 0, bytes_of(request(0, {2, 3})));
    ask({227, 8}, 51, bytes_of(NVME_VD_Sync{1, {}}));
}

NVME_Migrate migration(QRX_U8 mode, std::initializer_list<QRX_U8> members)
{
    NVME_Migrate migrate{};
    migrate.RaidMode = mode;
    migrate.MemberCount = static_cast<QRX_U8>(members.size());
    std::copy(members.begin(), members.end(), std::begin(migrate.PDIDs));
    return migrate;
}

TEST_F(PairStorage, MigrationTakesMoreMembersAndAnotherMode)
{
    ask({226, 3}, 0, bytes_of(request(1, {0, 1})));
    const QRX_U64 before = vd().sectors;
    ask({227, 9}, 0, bytes_of(migration(5, {1, 2, 0, 3})));
    EXPECT_EQ(vd().raid_mode, 5);
    EXPECT_EQ(vd().members, (std::vector<QRX_U16>{1, 2, 0, 3}));
    EXPECT_EQ(vd().sectors, 3 * before);
    ask({227, 2}, 0, list(0, 1));
    EXPECT_EQ(rig_.bytes(8 + 16, 5), std::string("\0\5\0\0\1", 5));
    ask({227, 9}, 69, bytes_of(migration(6, {0, 1, 2, 3, 4})));
    ask({227, 4, 3}, 68, list(0, 1));
    ask({227, 4, 1}, 0, list(0, 1));
    ask({227, 4, 2}, 0, list(0, 1));
    rig_.machine().advance(std::chrono::hours(2));
    EXPECT_EQ(rig_.controller().events.entries.back().sentence(), "VD 0 migration done");
    EXPECT_TRUE(vd().initialized);
}

TEST_F(PairStorage, MigrationTakesAnotherNumberOfParityDisks)
{
    ask({226, 3}, 0, bytes_of(request(1, {0, 1})));
    auto migrate = migration(6, {0, 1, 2, 3, 4});
    migrate.NumParityDisk = 5;
    ask({227, 9}, 4, bytes_of(migrate));
    migrate.NumParityDisk = 3;
    ask({227, 9}, 0, bytes_of(migrate));
    EXPECT_EQ(vd().parity_disks, 3);
    EXPECT_EQ(vd().sectors, 2 * kShare);
    rig_.machine().advance(std::chrono::hours(2));
    ask({227, 9}, 0, bytes_of(migration(6, {0, 1, 2, 3, 4, 5})));
    EXPECT_EQ(vd().parity_disks, 2);
    EXPECT_EQ(vd().sectors, 4 * kShare);
}

TEST_F(PairStorage, MigrationGoesOnWithoutALostMember)
{
    ask({226, 3}, 0, bytes_of(request(1, {0, 1})));
    ask({227, 9}, 0, bytes_of(migration(5, {0, 1, 2})));
    EXPECT_FALSE(rig_.machine().controller(0)->fail_drive(2));
    EXPECT_EQ(vd().status, kVdDegrade);
    ASSERT_TRUE(vd().activity);
    EXPECT_EQ(vd().activity->type, QRX_NVME_BGA_TYPE_VD_MIGRATE);
    EXPECT_FALSE(rig_.machine().controller(0)->fail_drive(1));
    EXPECT_EQ(vd().status, kVdOffline);
    EXPECT_FALSE(vd().activity);
}

TEST_F(PairStorage, MigrationIsRefused)
{
    ask({226, 3}, 0, bytes_of(request(0, {0, 1})));
    ask({226, 3}, 0, bytes_of(request(1, {2, 3})));
    auto migrate = migration(5, {0, 1, 4});
    ask({227, 9}, 3, std::span<const QRX_U8>(bytes_of(migrate)).first(39));
    migrate.ID = 2;
    ask({227, 9}, 7, bytes_of(migrate));
    migrate.ID = 0;
    migrate.MemberCount = 33;
    ask({227, 9}, 61, bytes_of(migrate));
    ask({227, 9}, 60, bytes_of(migration(7, {0, 1, 4})));
    ask({227, 9}, 61, bytes_of(migration(5, {0, 1})));
    ask({227, 9}, 61, bytes_of(migration(5, {0, 4, 5})));  // PD 1 is left out
    ask({227, 9}, 59, bytes_of(migration(5, {0, 1, 2})));
    ask({227, 9}, 59, bytes_of(migration(5, {0, 1, 1})));
    ask({227, 9}, 6, bytes_of(migration(5, {0, 1, 60})));
    ask({227, 9}, 65, bytes_of(migration(1, {0, 1})));
    EXPECT_FALSE(rig_.machine().controller(0)->fail_drive(0));
    ask({227, 9}, 53, bytes_of(migration(5, {0, 1, 4})));
    EXPECT_EQ(vd().members, (std::vector<QRX_U16>{0, 1}));
}

TEST_F(PairStorage, WhatTheAdapterDoesNotOfferIsNotSupported)
{
    rig_ = Rig::of_text(
        R"({"controllers": [{"adapter": {"background": ["initialization", "rebuild", "media-patrol"]}, "drives": [{"id": 0}, {"id": 1}],
        "virtual_disks": [{"id": 0, "raid_mode": "raid1", "members": [0, 1]}]}]})");
    ask({227, 8}, 5, bytes_of(NVME_VD_Sync{}));
    ask({227, 9}, 5, bytes_of(migration(5, {0, 1, 4})));
}

}  // namespace

}  // namespace qrx::sim
