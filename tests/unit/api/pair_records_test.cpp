// The records of the pair command road, byte by byte: each field with a constant of its own.
#include <gtest/gtest.h>

#include "api/src/interface/wire/adapter.h"
#include "api/src/interface/wire/bga.h"
#include "api/src/interface/wire/dump.h"
#include "api/src/interface/wire/event.h"
#include "api/src/interface/wire/pair.h"
#include "api/src/interface/wire/pd.h"
#include "api/src/interface/wire/vd.h"
#include "tests/unit/support/bytes.h"

namespace {

using namespace qrx::test;

// Bytes of zero but for those given, each as {offset, value}.
Bytes zerosBut(std::size_t length, std::initializer_list<std::pair<std::size_t, QRX_U8>> given)
{
    Bytes bytes(length);
    for (const auto& [offset, value] : given) {
        bytes.at(offset) = value;
    }
    return bytes;
}

TEST(PairRecords, CreateVd)
{
    NVME_Create_VD record{};
    record.RAIDMode = 0x11;
    record.MemberCount = 0x12;
    record.RoundingScheme = 0x13;
    record.SubLDCount = 0x14;
    record.StripeBlockSize = 0x1516;
    record.NumParityDisk = 0x17;
    record.InitializationOption = 0x18;
    record.PDIDs[0] = 0x191A;
    record.PDIDs[31] = 0x1B1C;
    record.Name[0] = 0x1D;
    record.Name[15] = 0x1E;
    record.QueryLDSize = 0x1F;
    record.Auto_create = 0x20;
    record.NSCount = 0x2122;
    record.NSSize[0] = 0x232425262728292A;
    record.NSSize[63] = 0x2B2C2D2E2F303132;
    EXPECT_EQ(bytesOf(record),
              zerosBut(624, {{0, 0x11},   {1, 0x12},   {2, 0x13},   {3, 0x14},   {4, 0x16},   {5, 0x15},   {6, 0x17},
                             {8, 0x18},   {12, 0x1A},  {13, 0x19},  {74, 0x1C},  {75, 0x1B},  {76, 0x1D},  {91, 0x1E},
                             {104, 0x1F}, {105, 0x20}, {106, 0x22}, {107, 0x21}, {112, 0x2A}, {113, 0x29}, {114, 0x28},
                             {115, 0x27}, {116, 0x26}, {117, 0x25}, {118, 0x24}, {119, 0x23}, {616, 0x32}, {617, 0x31},
                             {618, 0x30}, {619, 0x2F}, {620, 0x2E}, {621, 0x2D}, {622, 0x2C}, {623, 0x2B}}));
}

TEST(PairRecords, PreCreateVd)
{
    NVME_PreCreate_VD record{};
    record.SectorSize = 0x11121314;
    record.LBA = 0x15161718191A1B1C;
    EXPECT_EQ(bytesOf(record),
              (Bytes{0, 0, 0, 0, 0x14, 0x13, 0x12, 0x11, 0x1C, 0x1B, 0x1A, 0x19, 0x18, 0x17, 0x16, 0x15}));
}

TEST(PairRecords, RequestHeader)
{
    RequestHeader record{};
    record.size = 0x1112;
    record.requestType = 0x13;
    record.start = 0x1415;
    record.numRequested = 0x16;
    record.numReturned = 0x17;
    record.nextStart = 0x1819;
    EXPECT_EQ(bytesOf(record), (Bytes{0x12, 0x11, 0x13, 0, 0x15, 0x14, 0x16, 0x17, 0x19, 0x18, 0, 0, 0, 0, 0, 0}));
}

TEST(PairRecords, SmallRequests)
{
    NVME_VD_Delete gone{};
    gone.ID = 0x1112;
    gone.ClearMBR = 0x13;
    EXPECT_EQ(bytesOf(gone), (Bytes{0x12, 0x11, 0x13, 0, 0, 0, 0, 0}));
    NVME_VD_Init init{};
    init.ID = 0x1415;
    init.Init_Type = 0x16;
    EXPECT_EQ(bytesOf(init), (Bytes{0x15, 0x14, 0x16, 0, 0, 0, 0, 0}));
    NVME_Rebuild rebuild{};
    rebuild.VDID = 0x1718;
    rebuild.PDID = 0x191A;
    EXPECT_EQ(bytesOf(rebuild), (Bytes{0x18, 0x17, 0x1A, 0x19, 0, 0, 0, 0}));
    NVME_VD_Sync sync{};
    sync.ID = 0x1B1C;
    EXPECT_EQ(bytesOf(sync), (Bytes{0x1C, 0x1B, 0, 0, 0, 0, 0, 0}));
    NVME_VD_MP vdPatrol{};
    vdPatrol.VDID = 0x1D1E;
    EXPECT_EQ(bytesOf(vdPatrol), (Bytes{0x1E, 0x1D, 0, 0, 0, 0, 0, 0}));
    NVME_PD_MP pdPatrol{};
    pdPatrol.PDID = 0x1F20;
    EXPECT_EQ(bytesOf(pdPatrol), (Bytes{0x20, 0x1F, 0, 0, 0, 0, 0, 0}));
    NVME_LED led{};
    led.id = 0x2122;
    led.status = 0x23;
    EXPECT_EQ(bytesOf(led), (Bytes{0x22, 0x21, 0x23, 0, 0, 0, 0, 0}));
}

TEST(PairRecords, Migrate)
{
    NVME_Migrate record{};
    record.ID = 0x1112;
    record.RaidMode = 0x13;
    record.MemberCount = 0x14;
    record.SubLDCount = 0x15;
    record.NumParityDisk = 0x16;
    record.PDIDs[0] = 0x17;
    record.PDIDs[31] = 0x18;
    EXPECT_EQ(bytesOf(record),
              zerosBut(40, {{0, 0x12}, {1, 0x11}, {2, 0x13}, {3, 0x14}, {4, 0x15}, {5, 0x16}, {8, 0x17}, {39, 0x18}}));
}

TEST(PairRecords, Configurations)
{
    NVME_Adapter_Config adapter{};
    adapter.AutoRebuildOn = 0x11;
    adapter.BGARate = 0x12;
    EXPECT_EQ(bytesOf(adapter), zerosBut(16, {{0, 0x11}, {1, 0x12}}));
    NVME_VD_Config_Request vd{};
    vd.header.numRequested = 0x13;
    vd.vd_config.ID = 0x1415;
    vd.vd_config.Name[0] = 0x16;
    vd.vd_config.Name[15] = 0x17;
    EXPECT_EQ(bytesOf(vd), zerosBut(40, {{6, 0x13}, {16, 0x15}, {17, 0x14}, {24, 0x16}, {39, 0x17}}));
    NVME_Debug_Dump_Config dump{};
    dump.dumpOn = 0x18;
    EXPECT_EQ(bytesOf(dump), zerosBut(8, {{0, 0x18}}));
}

TEST(PairRecords, Lists)
{
    NVME_PD_Info_Request pd{};
    pd.pd_info.ID = 0x1112;
    pd.pd_info.Status = 0x13;
    EXPECT_EQ(bytesOf(pd), zerosBut(120, {{16, 0x12}, {17, 0x11}, {18, 0x13}}));
    NVME_VD_Info_Request vd{};
    vd.vd_info.ID = 0x1415;
    vd.vd_info.reserved5[3] = 0x16;
    EXPECT_EQ(bytesOf(vd), zerosBut(196, {{16, 0x15}, {17, 0x14}, {195, 0x16}}));
    NVME_BGA_REQUEST activity{};
    activity.data.BgaType = 0x17;
    activity.data.ID = 0x18;
    activity.data.Percentage = 0x19;
    activity.data.BgaStatus = 0x1A;
    EXPECT_EQ(bytesOf(activity), zerosBut(24, {{17, 0x17}, {18, 0x18}, {19, 0x19}, {20, 0x1A}}));
}

TEST(PairRecords, EventsAndConsole)
{
    NVME_Event_Status status{};
    status.maxPage = 0x11;
    status.slotPerPage = 0x12;
    status.posEmptyPage = 0x13;
    status.posEmptySlotInPage = 0x14;
    status.sizeOfEventItem = 0x15;
    EXPECT_EQ(bytesOf(status), (Bytes{0x11, 0x12, 0x13, 0x14, 0x15, 0, 0, 0}));
    NVME_Page_EventRequest page{};
    page.Page = 0x16;
    page.Events[0].Class = 0x1718;
    page.Events[0].Code = 0x191A;
    page.Events[0].TimeStamp = 0x1B1C1D1E;
    page.Events[0].SequenceNo = 0x1F202122;
    page.Events[0].DeviceID = 0x2324;
    page.Events[0].Severity = 0x25;
    page.Events[0].Accurate = 0x26;
    page.Events[0].Params[0] = 0x27;
    page.Events[0].Params[3] = 0x28;
    page.Events[0].Oem_Class = 0x29;
    page.Events[0].Oem_Severity = 0x2A;
    page.Events[0].Oem_Code = 0x2B2C;
    page.Events[0].ParamCount = 0x2D;
    page.Events[62].Reserved[26] = 0x2E;
    EXPECT_EQ(bytesOf(page),
              zerosBut(4096, {{0, 0x16},  {4, 0x18},  {5, 0x17},  {6, 0x1A},   {7, 0x19},  {8, 0x1E},  {9, 0x1D},
                              {10, 0x1C}, {11, 0x1B}, {12, 0x22}, {13, 0x21},  {14, 0x20}, {15, 0x1F}, {16, 0x24},
                              {17, 0x23}, {18, 0x25}, {19, 0x26}, {20, 0x27},  {32, 0x28}, {36, 0x29}, {37, 0x2A},
                              {38, 0x2C}, {39, 0x2B}, {40, 0x2D}, {4035, 0x2E}}));
    NVME_Debug_Dump_Status size{};
    size.debugDumpBuffSize = 0x31323334;
    EXPECT_EQ(bytesOf(size), (Bytes{0x34, 0x33, 0x32, 0x31, 0, 0, 0, 0}));
    NVME_Debug_Dump_Request console{};
    console.length = 0x35363738;
    console.data[0] = 0x39;
    console.data[4087] = 0x3A;
    EXPECT_EQ(bytesOf(console), zerosBut(4096, {{0, 0x38}, {1, 0x37}, {2, 0x36}, {3, 0x35}, {8, 0x39}, {4095, 0x3A}}));
}

TEST(PairRecords, OemItem)
{
    QRXItem_OEM_Data record{};
    record.ID = 0x1112;
    record.cbSize = 0x1314;
    record.reserved[12] = 0x15;
    EXPECT_EQ(bytesOf(record), zerosBut(17, {{0, 0x12}, {1, 0x11}, {2, 0x14}, {3, 0x13}, {16, 0x15}}));
}

}  // namespace
