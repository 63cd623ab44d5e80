// The sizes of namespaces, as a list and as answers to a question.
#include "cli/Functions/storage/namespace_sizes.h"

#include "tests/unit/cli/unlisted/virtual_disk/fixture.h"

namespace {

using namespace qrx::test;

const std::string kPrompt = "Please type namespace size list:";
const std::string kQuestion =
    "        \n"
    "        e.g.\n"
    "            Create two namespace which are 20GB and 30GB\n"
    "            20,30\n"
    "\n"
    "            Create two namespace and last one use all remaining size of VD\n"
    "            20,0\n"
    "\n"
    "            Create one namespace and use all of VD\n"
    "            0\n"
    "\n"
    "            or type enter directly without any character.\n"
    "\n"
    "Available Size of VD for creating namespace : 100 GB\n" +
    kPrompt;

std::string wrong(const std::string& gigabytes)
{
    return "The namespace size is wrong(" + gigabytes + " GB), please type again.\n";
}

constexpr QRX_U64 sectors(QRX_U64 gigabytes, QRX_U32 sectorSize = 512)
{
    return (gigabytes << 30) / sectorSize;
}

class NamespaceSizes : public VirtualDiskTest {
protected:
    NamespaceSizes()
    {
        // What was there before must not stay.
        std::fill(std::begin(vd.NSSize), std::end(vd.NSSize), QRX_U64{0xABCD});
        vd.NSCount = 0x4321;
        vd.MemberCount = 7;
    }
    Outcome assign(const std::string& list)
    {
        return outcomeOf([&] { return assignNamespaceList(&vd, &room, list.c_str()) ? 1 : 0; });
    }
    // The whole record.
    [[nodiscard]] Bytes with(const std::vector<QRX_U64>& sizes) const
    {
        NVME_Create_VD expected{};
        expected.MemberCount = 7;
        expected.NSCount = static_cast<QRX_U16>(sizes.size());
        std::copy_n(sizes.begin(), std::min<std::size_t>(sizes.size(), 64), expected.NSSize);
        return bytesOf(expected);
    }

    NVME_Create_VD vd{};
    NVME_PreCreate_VD room{0, 512, sectors(100) + 2097151};  // a sector short of 101 GB
};

TEST_F(NamespaceSizes, AreSectorsOnTheWire)
{
    EXPECT_EQ(assign("20,30"), (Outcome{0, ""}));
    EXPECT_EQ(bytesOf(vd), with({sectors(20), sectors(30)}));
    room.SectorSize = 4096;
    room.LBA = sectors(100, 4096);
    EXPECT_EQ(assign("1,99"), (Outcome{0, ""}));
    EXPECT_EQ(bytesOf(vd), with({0x40000, 0x18C0000}));
    room.SectorSize = 520;
    EXPECT_EQ(assign("3"), (Outcome{0, ""}));
    EXPECT_EQ(bytesOf(vd), with({(QRX_U64{3} << 30) / 520}));
}

TEST_F(NamespaceSizes, TheRestComesLast)
{
    const std::pair<const char*, std::vector<QRX_U64>> kLists[] = {{"20,0,30", {sectors(20), sectors(30), 0}},
                                                                   {"0,20,30", {sectors(20), sectors(30), 0}},
                                                                   {"20,30,0", {sectors(20), sectors(30), 0}},
                                                                   {"0", {0}},
                                                                   {"000,1", {sectors(1), 0}}};
    for (const auto& [list, sizes] : kLists) {
        EXPECT_EQ(assign(list), (Outcome{0, ""})) << list;
        EXPECT_EQ(bytesOf(vd), with(sizes)) << list;
    }
}

TEST_F(NamespaceSizes, EmptyElementsAreNone)
{
    EXPECT_EQ(assign(",,5,,6,"), (Outcome{0, ""}));
    EXPECT_EQ(bytesOf(vd), with({sectors(5), sectors(6)}));
    EXPECT_EQ(assign(","), (Outcome{0, ""}));
    EXPECT_EQ(bytesOf(vd), with({}));
}

TEST_F(NamespaceSizes, FillTheCapacityAndNotMore)
{
    EXPECT_EQ(assign("50,50,0"), (Outcome{0, ""}));
    EXPECT_EQ(bytesOf(vd), with({sectors(50), sectors(50), 0}));
    const Input input("100\n");
    EXPECT_EQ(assign("50,51"), (Outcome{0, wrong("101") + kPrompt}));
    EXPECT_EQ(bytesOf(vd), with({sectors(100)}));
}

TEST_F(NamespaceSizes, AWordThatIsNoNumberIsAskedForAgain)
{
    const Input input("7x\n 8\n-9\n20;30\n0x10\n4 \nnine\n8\nnext line\n");
    EXPECT_EQ(assign("0,12a"), (Outcome{0, wrong("12") + kPrompt + wrong("7") + kPrompt + wrong("8") + kPrompt +
                                               wrong("-9") + kPrompt + wrong("20") + kPrompt + wrong("0") + kPrompt +
                                               wrong("4") + kPrompt + wrong("0") + kPrompt}));
    EXPECT_EQ(bytesOf(vd), with({sectors(8)}));
    EXPECT_EQ(Input::rest(), "next line\n");
}

TEST_F(NamespaceSizes, TheFirstWordThatIsNoNumberIsTold)
{
    const Input input("0\n");
    EXPECT_EQ(assign("999,0,0,5y,6z"), (Outcome{0, wrong("5") + kPrompt}));
    EXPECT_EQ(bytesOf(vd), with({0}));
}

TEST_F(NamespaceSizes, MoreThanOneRestIsAskedForAgain)
{
    const std::string tooMany =
        "The namespace size is wrong, it contain more than  two '0', please type again.\n" + kPrompt;
    const Input input("0,1,0\n200,0,0\n1,0\n");
    EXPECT_EQ(assign("0,0"), (Outcome{0, tooMany + tooMany + tooMany}));
    EXPECT_EQ(bytesOf(vd), with({sectors(1), 0}));
}

TEST_F(NamespaceSizes, WithoutAListThereIsAQuestion)
{
    const Input input("20,0,30\nrest\n");
    EXPECT_EQ(assign(""), (Outcome{0, kQuestion}));
    EXPECT_EQ(bytesOf(vd), with({sectors(20), sectors(30), 0}));
    EXPECT_EQ(Input::rest(), "rest\n");
}

TEST_F(NamespaceSizes, AnAnswerNeedsNoLineEnd)
{
    const Input input("20");
    EXPECT_EQ(assign(""), (Outcome{0, kQuestion}));
    EXPECT_EQ(bytesOf(vd), with({sectors(20)}));
}

TEST_F(NamespaceSizes, AnEmptyAnswerIsAnEmptyList)
{
    const Input input("\n");
    EXPECT_EQ(assign(""), (Outcome{0, kQuestion}));
    EXPECT_EQ(bytesOf(vd), with({}));
}

TEST_F(NamespaceSizes, OneProductIsNotAsked)
{
    const Input input("");
    current().SKUID = 2;
    current().MaxNSPerVD = 1;
    EXPECT_EQ(assign(""), (Outcome{0, ""}));
    EXPECT_EQ(bytesOf(vd), with({}));
    EXPECT_EQ(assign("20"), (Outcome{0, ""}));
    EXPECT_EQ(bytesOf(vd), with({sectors(20)}));
    const Bytes before = bytesOf(vd);
    const std::pair<QRX_U8, QRX_U8> kAsked[] = {{2, 2}, {1, 1}, {2, 0}};
    for (const auto& [sku, most] : kAsked) {
        current().SKUID = sku;
        current().MaxNSPerVD = most;
        EXPECT_EQ(assign(""), (Outcome{1, kQuestion}));
        EXPECT_EQ(bytesOf(vd), before);
    }
}

TEST_F(NamespaceSizes, TheEndOfInputEndsTheQuestion)
{
    const Bytes before = bytesOf(vd);
    const Input input("0,0\n");
    EXPECT_EQ(assign("101"), (Outcome{1, wrong("101") + kPrompt +
                                             "The namespace size is wrong, it contain more than  two '0', please type "
                                             "again.\n" +
                                             kPrompt}));
    EXPECT_EQ(bytesOf(vd), before);
}

TEST_F(NamespaceSizes, NumbersBeyond32BitsSaturate)
{
    const Input input("2147483647,2147483647\n4294967297\n1\n");
    EXPECT_EQ(assign("99999999999999999999"), (Outcome{0, wrong("2147483647") + kPrompt + wrong("2147483647") +
                                                              kPrompt + wrong("2147483647") + kPrompt}));
    EXPECT_EQ(bytesOf(vd), with({sectors(1)}));
}

TEST_F(NamespaceSizes, AHugeVdHasRoomForHugeNamespaces)
{
    room = {0, 4096, ~QRX_U64{0}};
    EXPECT_EQ(assign("2147483647,2147483647"), (Outcome{0, ""}));
    EXPECT_EQ(bytesOf(vd), with({sectors(2147483647, 4096), sectors(2147483647, 4096)}));
    const Input input("0\n");
    EXPECT_NE(assign("").stream.find(" : 2147483647 GB\n"), std::string::npos);
}

TEST_F(NamespaceSizes, ASectorSizeThatIsNoneLeavesNoRoom)
{
    for (const QRX_U32 size : {0U, 0x40000001U, 0xFFFFFFFFU}) {
        room = {0, size, 1000};
        const Input input("0\n");
        EXPECT_EQ(assign("1"), (Outcome{0, wrong("1") + kPrompt})) << size;
        EXPECT_EQ(bytesOf(vd), with({0})) << size;
    }
    room = {0, 0x40000000, 3};
    EXPECT_EQ(assign("1,2"), (Outcome{0, ""}));
    EXPECT_EQ(bytesOf(vd), with({1, 2}));
}

TEST_F(NamespaceSizes, MoreThanTheRecordHoldsAreCountedOnly)
{
    room.LBA = sectors(5000);
    for (const std::size_t count : {64U, 65U, 1000U}) {
        std::string list = "3";
        for (std::size_t i = 1; i < count; ++i) {
            list += ",3";
        }
        EXPECT_EQ(assign(list), (Outcome{0, ""}));
        EXPECT_EQ(bytesOf(vd), with(std::vector<QRX_U64>(count, sectors(3))));
    }
}

TEST_F(NamespaceSizes, ALineThatIsTooLongIsNotCut)
{
    const Input input(std::string(2049, '0') + "\n" + std::string(2048, '0') + "\nrest\n");
    EXPECT_EQ(
        assign(""),
        (Outcome{0, kQuestion + "The namespace size list is too long (at most 2048 characters), please type again.\n" +
                        kPrompt}));
    EXPECT_EQ(bytesOf(vd), with({0}));
    EXPECT_EQ(Input::rest(), "rest\n");
}

}  // namespace
