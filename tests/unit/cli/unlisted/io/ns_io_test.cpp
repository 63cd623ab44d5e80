// `read`, `write`, `compare`, `writezero`, `writeuncor`.
#include <array>

#include "tests/unit/cli/unlisted/io/io_fixture.h"

namespace {

using namespace qrx::test;

const Outcome kDuplicate{1, "Duplicated option specified.\n"};
const std::string kWords[] = {"read", "write", "compare", "writezero", "writeuncor"};

class NamespaceIo : public IoTest {};

TEST_F(NamespaceIo, HelpNamesTheOptions)
{
    for (const std::string& word : kWords) {
        EXPECT_EQ(unlisted({word}), (Outcome{1, helpOf(word)}));
        EXPECT_EQ(unlisted({word, "-n", "1", "-h"}), (Outcome{0, helpOf(word)}));
        EXPECT_EQ(unlisted({word, "--help"}), (Outcome{0, helpOf(word)}));
        EXPECT_NE(helpOf(word).find("JBOF Support Only"), std::string::npos);
        EXPECT_EQ(helpOf(word).find("Description:"), 0U);
    }
}

// --- The words of the commands ---------------------------------------------------------------------------------------

TEST_F(NamespaceIo, ReadPutsEachOptionInItsPlace)
{
    machine.expect(io(2, 0x11, {0x22, 0x1, 0xF4000033, 0xDE, 0x44, 0x66660055})
                       .receives(16)
                       .carries(Bytes(16))
                       .data(pattern(16, 9)));
    EXPECT_EQ(unlisted({"read", "-n", "0x11", "-s", "0x100000022", "-l", "0x33", "-z", "16", "--eilbrt=0x44",
                        "--elbat=0x55", "--elbatm=0x6666", "--prinfo=0xd", "--fua=1", "--lr=1", "--dsmip=1",
                        "--dsmsr=1", "--dsmal=1", "--dsmaf=14"}),
              (Outcome{0, "Read success.\n" + raw(pattern(16, 9))}));
}

TEST_F(NamespaceIo, EachFieldOfReadByItself)
{
    const std::pair<std::string, std::array<QRX_U32, 4>> fields[] = {
        {"--eilbrt=2147483647", {0, 0, 0x7FFFFFFF, 0}},
        {"--elbat=65535", {0, 0, 0, 0xFFFF}},
        {"--elbatm=65535", {0, 0, 0, 0xFFFF0000}},
        {"--prinfo=15", {0x3C000000, 0, 0, 0}},
        {"--fua=1", {0x40000000, 0, 0, 0}},
        {"--lr=1", {0x80000000, 0, 0, 0}},
        {"--dsmip=1", {0, 0x80, 0, 0}},
        {"--dsmsr=1", {0, 0x40, 0, 0}},
        {"--dsmal=3", {0, 0x30, 0, 0}},
        {"--dsmaf=15", {0, 0x0F, 0, 0}},
        {"--eilbrt=0xffffffff", {0, 0, 0xFFFFFFFF, 0}},
        {"--eilbrt=4294967295", {0, 0, 0xFFFFFFFF, 0}},
        {"--datasize=0", {0, 0, 0, 0}},
    };
    for (const auto& [option, w] : fields) {
        machine.expect(io(2, 1, {0, 0, w[0], w[1], w[2], w[3]}));
        EXPECT_EQ(unlisted({"read", "-n", "1", "-s", "0", "-l", "0", option}), (Outcome{0, "Read success.\n\n"}))
            << option;
    }
}

TEST_F(NamespaceIo, TheShortOptionsOfRead)
{
    machine.expect(io(2, 1, {2, 0, 0xC0000003, 0x95, 0x10, 0x120011}).receives(4).data({1, 2, 3, 4}));
    EXPECT_EQ(unlisted({"read", "-n", "1",  "-s", "2",  "-l", "3",  "-0", "16", "-1", "17", "-2", "18", "-4", "0",
                        "-5",   "1",  "-6", "1",  "-7", "1",  "-8", "0",  "-9", "1",  "-a", "5",  "-z", "4"}),
              (Outcome{0, "Read success.\n\n0x01 0x02 0x03 0x04 \n"}));
}

TEST_F(NamespaceIo, WriteHasADirectiveTypeAndNamesItsTagsShorter)
{
    const Bytes data = pattern(512, 40);
    machine.expect(io(1, 7, {0x89ABCDEF, 0x01234567, 0x00D00000 | 0xFFFF, 0x49, 0x44, 0x00660055}).sends(data));
    EXPECT_EQ(unlisted({"write", "--nsid", "7", "--slba", "0x123456789abcdef", "--nlb", "65535", "--dtype=13",
                        "--ilbrt=0x44", "--lbat=0x55", "--lbatm=0x66", "--dsmsr=1", "--dsmaf=9", "--datasize=512",
                        "--inputfile", fileOf(data)}),
              (Outcome{0, "Write success.\n"}));
    EXPECT_EQ(file, nullptr);
    machine.expect(io(1, 1, {0, 0, 0xFC000000, 0, 0, 0}));
    EXPECT_EQ(unlisted({"write", "-n", "1", "-s", "0", "-l", "0", "-4", "15", "-5", "1", "-6", "1"}),
              (Outcome{0, "Write success.\n"}));
}

TEST_F(NamespaceIo, CompareHasNoUseOfItsData)
{
    const Bytes data = pattern(100, 3);
    machine.expect(io(5, 2, {5, 0, 0x48000006, 0, 0x44, 0x00660055}).sends(data));
    EXPECT_EQ(unlisted({"compare", "-n", "2", "-s", "5", "-l", "6", "--eilbrt=0x44", "--elbat=0x55", "--elbatm=0x66",
                        "--prinfo=2", "--fua=1", "-f", fileOf(data)}),
              (Outcome{0, "Compare success.\n"}));
}

TEST_F(NamespaceIo, WriteZeroMayDeallocate)
{
    machine.expect(io(8, 3, {9, 0, 0xCE00000A, 0, 0x44, 0x00660055}));
    EXPECT_EQ(unlisted({"writezero", "-n", "3", "-s", "9", "-l", "10", "--ilbrt=0x44", "--lbat=0x55", "--lbatm=0x66",
                        "--deac=1", "--prinfo=3", "--fua=1", "--lr=1"}),
              (Outcome{0, "Write zero success.\n"}));
    machine.expect(io(8, 3, {0, 0, 0x02000000, 0, 0, 0}));
    EXPECT_EQ(unlisted({"writezero", "-n", "3", "-s", "0", "-l", "0", "-3", "1"}),
              (Outcome{0, "Write zero success.\n"}));
}

TEST_F(NamespaceIo, WriteUncorrectableIsARangeAlone)
{
    machine.expect(io(4, 3, {0x7FFFFFFF, 0, 0xFFFF, 0, 0, 0}));
    EXPECT_EQ(unlisted({"writeuncor", "-n", "3", "-s", "2147483647", "-l", "0xffff"}),
              (Outcome{0, "Write uncorrectable success.\n"}));
    for (const std::string all : {"0xFFFFFFFF", "4294967295"}) {
        machine.expect(io(4, 0xFFFFFFFF, {1, 0, 2, 0, 0, 0}));
        EXPECT_EQ(unlisted({"writeuncor", "-n", all, "-s", "1", "-l", "2"}),
                  (Outcome{0, "Write uncorrectable success.\n"}));
    }
}

TEST_F(NamespaceIo, TheStartingLbaHasSixtyFourBits)
{
    const std::pair<std::string, std::array<QRX_U32, 2>> starts[] = {
        {"4294967296", {0, 1}},
        {"18446744073709551615", {0xFFFFFFFF, 0xFFFFFFFF}},
        {"0xfedcba9876543210", {0x76543210, 0xFEDCBA98}},
        {"2147483648", {0x80000000, 0}},
    };
    for (const auto& [text, words] : starts) {
        machine.expect(io(4, 1, {words[0], words[1], 0, 0, 0, 0}));
        EXPECT_EQ(unlisted({"writeuncor", "-n", "1", "-s", text, "-l", "0"}),
                  (Outcome{0, "Write uncorrectable success.\n"}));
    }
}

// --- Lengths ---------------------------------------------------------------------------------------------------------

TEST_F(NamespaceIo, WriteWithoutALengthSendsNoData)
{
    machine.expect(io(1, 1, {0, 0, 512, 0, 0, 0}));
    EXPECT_EQ(unlisted({"write", "-n", "1", "-s", "0", "-l", "512"}), (Outcome{0, "Write success.\n"}));
    machine.expect(io(1, 1, {0, 0, 512, 0, 0, 0}));
    EXPECT_EQ(unlisted({"write", "-n", "1", "-s", "0", "-l", "512", "-f", fileOf(pattern(512))}),
              (Outcome{0, "Write success.\n"}));
}

TEST_F(NamespaceIo, WriteSendsTheSmallestOfItsLengths)
{
    const auto sent = [this](std::size_t fileLength, const std::string& size, std::size_t wanted) {
        const Bytes content = pattern(fileLength, 5);
        auto expected = io(1, 1, {0, 0, 0, 0, 0, 0});
        if (wanted != 0) {
            expected = io(1, 1, {0, 0, 0, 0, 0, 0})
                           .sends(Bytes(content.begin(), content.begin() + static_cast<std::ptrdiff_t>(wanted)));
        }
        machine.expect(expected);
        EXPECT_EQ(unlisted({"write", "-n", "1", "-s", "0", "-l", "0", "-z", size, "-f", fileOf(content)}),
                  (Outcome{0, "Write success.\n"}))
            << fileLength << " " << size;
    };
    sent(100, "512", 100);
    sent(1000, "512", 512);
    sent(0xFFFF, "0x20001", 0xFFFF);
    sent(0x10000, "512", 0);  // of the file's length 16 bits count
    sent(0x10010, "512", 0x10);
    sent(0x2FFFF, "0x40000", 0xFFFF);
    sent(512, "0xffffffff", 512);
    sent(0, "512", 0);
}

TEST_F(NamespaceIo, CompareSendsTheFileUpToItsLimit)
{
    for (const std::size_t length : {0x20000U, 0x20001U, 0x30000U}) {
        const Bytes content = pattern(length, 5);
        machine.expect(io(5, 1, {0, 0, 255, 0, 0, 0}).sends(Bytes(content.begin(), content.begin() + 0x20000)));
        EXPECT_EQ(unlisted({"compare", "-n", "1", "-s", "0", "-l", "255", "-f", fileOf(content)}),
                  (Outcome{0, "Compare success.\n"}));
    }
    machine.expect(io(5, 1, {0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(unlisted({"compare", "-n", "1", "-s", "0", "-l", "0"}), (Outcome{0, "Compare success.\n"}));
    EXPECT_EQ(file, nullptr);
}

TEST_F(NamespaceIo, ReadFetchesAtMostItsLimit)
{
    for (const std::string size : {"0x20000", "0x20001", "2147483647", "0xffffffff"}) {
        const Bytes data = pattern(0x20000, 77);
        machine.expect(io(2, 1, {0, 0, 0, 0, 0, 0}).receives(0x20000).carries(Bytes(0x20000)).data(data));
        EXPECT_EQ(unlisted({"read", "-n", "1", "-s", "0", "-l", "0", "-z", size, "-f", scratch.file("out", "old")}),
                  (Outcome{0, "Read success.\n"}));
        EXPECT_TRUE(contentOf(scratch.path("out")) == textOf(data)) << size;
    }
    EXPECT_EQ(file, nullptr);
}

// --- Outcomes --------------------------------------------------------------------------------------------------------

TEST_F(NamespaceIo, EachFailureHasItsLine)
{
    const std::pair<QRX_U8, Outcome> failures[] = {
        {2, {0x281, "Read failed.(error 0x281)\n"}},
        {1, {0x281, "Write failed. (result:0x281)\n"}},
        {5, {0x281, "Compare failed.(error 0x281)\n"}},
        {8, {0x281, "Write zero failed. (result:0x281)\n"}},
        {4, {0x281, "Write uncorrectable failed.(error 0x281)\n"}},
    };
    for (std::size_t i = 0; i < std::size(failures); ++i) {
        machine.expect(io(failures[i].first, 1, {0, 0, 0, 0, 0, 0}).status(0x281));
        EXPECT_EQ(unlisted({kWords[i], "-n", "1", "-s", "0", "-l", "0"}), failures[i].second);
    }
    machine.expect(io(2, 1, {0, 0, 0, 0, 0, 0}).error(5));
    EXPECT_EQ(unlisted({"read", "-n", "1", "-s", "0", "-l", "0"}), (Outcome{-1, "Read failed.(error 0xffffffff)\n"}));
}

TEST_F(NamespaceIo, AFailedReadLeavesTheFileEmpty)
{
    machine.expect(io(2, 1, {0, 0, 0, 0, 0, 0}).receives(8).status(0x80));
    EXPECT_EQ(unlisted({"read", "-n", "1", "-s", "0", "-l", "0", "-z", "8", "-f", scratch.file("out", "old")}),
              (Outcome{0x80, "Read failed.(error 0x80)\n"}));
    EXPECT_EQ(contentOf(scratch.path("out")), "");
    EXPECT_EQ(file, nullptr);
}

TEST_F(NamespaceIo, DataThatCannotBeSavedIsNotLostInSilence)
{
    machine.expect(io(2, 1, {0, 0, 0, 0, 0, 0}).receives(8).data(pattern(8)));
    EXPECT_EQ(unlisted({"read", "-n", "1", "-s", "0", "-l", "0", "-z", "8", "-f", "/dev/full"}),
              (Outcome{1,
                       "Read success.\nread: cannot write '/dev/full': No space left on device; the file is "
                       "incomplete\n"}));
}

TEST_F(NamespaceIo, AFileThatCannotBeOpenedStopsTheCommand)
{
    const std::string name = scratch.path("no/such/directory");
    for (const std::string word : {"read", "write", "compare"}) {
        const std::string said = std::string(word).append(": cannot open '").append(name);
        EXPECT_EQ(unlisted({word, "-n", "1", "-s", "0", "-l", "0", "-f", name}),
                  (Outcome{1, said + "': No such file or directory\n"}));
    }
    EXPECT_EQ(unlisted({"write", "-n", "1", "-s", "0", "-l", "0", "-f", scratch.path("")}),
              (Outcome{1, "write: cannot read '" + scratch.path("") + "': Is a directory\n"}));
    EXPECT_EQ(file, nullptr);
}

TEST_F(NamespaceIo, DebugShowsTheWords)
{
    dbg_enable = 1;
    const std::string words =
        "cdw[10]: 0x00000001\ncdw[11]: 0x00000000\ncdw[12]: 0x00000002\ncdw[13]: 0x00000000\ncdw[14]: 0x00000000\n"
        "cdw[15]: 0x00000000\n";
    const std::pair<std::string, std::string> lines[] = {{"read", "PRP data len: 0x0\n" + words + "Read success.\n\n"},
                                                         {"write", "PRP data len: 0x0\n" + words + "Write success.\n"},
                                                         {"compare", words + "Compare success.\n"},
                                                         {"writezero", words + "Write zero success.\n"},
                                                         {"writeuncor", words + "Write uncorrectable success.\n"}};
    const QRX_U8 opcodes[] = {2, 1, 5, 8, 4};
    for (std::size_t i = 0; i < std::size(lines); ++i) {
        machine.expect(io(opcodes[i], 1, {1, 0, 2, 0, 0, 0}));
        EXPECT_EQ(unlisted({lines[i].first, "-n", "1", "-s", "1", "-l", "2"}), (Outcome{0, lines[i].second}));
    }
}

// --- Checks ----------------------------------------------------------------------------------------------------------

TEST_F(NamespaceIo, ARaidControllerIsRefusedWhenAllOptionsAreGood)
{
    current().Features |= kFeatureRaid;
    for (const std::string& word : kWords) {
        EXPECT_EQ(unlisted({word, "-n", "1", "-s", "0", "-l", "0"}),
                  (Outcome{35, "This feature is support JBOF only.\n"}));
        EXPECT_EQ(unlisted({word, "-n", "1", "-s", "0"}), (Outcome{0, word + ": option -l is required\n"}));
        EXPECT_EQ(unlisted({word, "-n", "1", "-n", "1"}), kDuplicate);
    }
    EXPECT_EQ(unlisted({"write", "-n", "1", "-s", "0", "-l", "0", "-f", scratch.path("none")}),
              (Outcome{35, "This feature is support JBOF only.\n"}));
}

TEST_F(NamespaceIo, RequiresNamespaceStartAndNumber)
{
    for (const std::string& word : kWords) {
        EXPECT_EQ(unlisted({word, "-s", "0", "-l", "0"}), (Outcome{0, word + ": option -n is required\n"}));
        EXPECT_EQ(unlisted({word, "--output", "x"}), (Outcome{0, word + ": option -n is required\n"}));
        EXPECT_EQ(unlisted({word, "-n", "0", "-l", "0"}), (Outcome{0, word + ": option -s is required\n"}));
        EXPECT_EQ(unlisted({word, "-n", "0", "-s", "0"}), (Outcome{0, word + ": option -l is required\n"}));
    }
}

TEST_F(NamespaceIo, NoOptionMayComeTwice)
{
    const std::pair<std::string, std::string> letters[] = {{"read", "nsl012456789az"},
                                                           {"write", "nsl0123456789az"},
                                                           {"compare", "nsl012456"},
                                                           {"writezero", "nsl0123456"},
                                                           {"writeuncor", "nsl"}};
    for (const auto& [word, all] : letters) {
        for (const char letter : all) {
            const std::string option = std::string("-") + letter;
            EXPECT_EQ(unlisted({word, option, "0", option, "0"}), kDuplicate) << word << option;
        }
    }
    EXPECT_EQ(unlisted({"read", "-f", scratch.path("a"), "-f", scratch.path("b")}), kDuplicate);
    EXPECT_EQ(unlisted({"compare", "-f", fileOf({}), "-f", fileOf({})}), kDuplicate);
}

TEST_F(NamespaceIo, LettersOfOtherCommandsAreIllegal)
{
    const std::pair<std::string, std::string> others[] = {{"read", "3"},       {"compare", "3"},   {"compare", "z"},
                                                          {"compare", "7"},    {"writezero", "f"}, {"writezero", "a"},
                                                          {"writeuncor", "0"}, {"writeuncor", "z"}};
    for (const auto& [word, letter] : others) {
        const std::string said = std::string(word).append(": illegal option -- ").append(letter);
        EXPECT_EQ(unlisted({word, "-" + letter, "0"}), (Outcome{0, "", "", said + "\n"}));
    }
    EXPECT_EQ(unlisted({"write", "--eilbrt=1"}), (Outcome{0, "", "", "write: unrecognized option `--eilbrt=1'\n"}));
    EXPECT_EQ(unlisted({"read", "--ilbrt=1"}), (Outcome{0, "", "", "read: unrecognized option `--ilbrt=1'\n"}));
}

// What each option says about a word that is no number, and about a number that its field does not hold.
struct Complaint {
    std::string option;  // up to its value
    std::string tooLarge;
    std::string line;
};

class Complaints : public NamespaceIo {
protected:
    static void check(const std::string& word, std::initializer_list<Complaint> complaints)
    {
        for (const Complaint& complaint : complaints) {
            EXPECT_EQ(unlisted({word, complaint.option + "x", "-h"}), (Outcome{0, complaint.line}));
            for (const std::string& value : {std::string("-1"), std::string("-0x1"), std::string("0x1O"),
                                             std::string("0x10000000000000000"), complaint.tooLarge}) {
                EXPECT_EQ(unlisted({word, complaint.option + value, "-h"}), (Outcome{0, complaint.line})) << value;
            }
            if (complaint.option.back() == '=' && complaint.option != "--nsid=" && complaint.option != "--slba=" &&
                complaint.option != "--nlb=") {
                // The value was left out.
                const std::string bare = complaint.option.substr(0, complaint.option.size() - 1);
                EXPECT_EQ(unlisted({word, bare, "1"}), (Outcome{0, complaint.line}));
            }
        }
    }
};

TEST_F(Complaints, OfRead)
{
    check("read", {{"--nsid=", "4294967296", "-n: Invalid namespace id\n"},
                   {"--slba=", "18446744073709551616", "-s: Invalid starting LBA\n"},
                   {"--nlb=", "65536", "-l: Invalid number of LBA\n"},
                   {"--datasize=", "0x100000000", "-z: Invalid data size\n"},
                   {"--eilbrt=", "0x100000000", "--ilbrt: Invalid expected initial logical block reference tag\n"},
                   {"--elbat=", "65536", "--lbat: Invalid expected logical block application tag\n"},
                   {"--elbatm=", "65536", "--lbatm: Invalid expected logical block application tag mask\n"},
                   {"--prinfo=", "16", "--prinfo: Invalid protection information field\n"},
                   {"--fua=", "2", "--fua: Invalid force unit access\n"},
                   {"--lr=", "2", "--lr: Invalid limited retry\n"},
                   {"--dsmip=", "2", "--dsmip: Invalid dataset management incompressible\n"},
                   {"--dsmsr=", "2", "--dsmsr: Invalid dataset management sequential request\n"},
                   {"--dsmal=", "4", "--dsmal: Invalid dataset management access latency\n"},
                   {"--dsmaf=", "16", "--dsmaf: Invalid dataset management access frequency\n"}});
}

TEST_F(Complaints, OfWrite)
{
    check("write", {{"--nsid=", "4294967296", "-n: Invalid namespace id\n"},
                    {"--slba=", "18446744073709551616", "-s: Invalid starting LBA\n"},
                    {"--nlb=", "0x10000", "-l: Invalid number of LBA\n"},
                    {"--datasize=", "0x100000000", "-z: Invalid data size\n"},
                    {"--ilbrt=", "4294967296", "--ilbrt: Invalid initial logical block reference tag\n"},
                    {"--lbat=", "65536", "--lbat: Invalid logical block application tag\n"},
                    {"--lbatm=", "65536", "--lbatm: Invalid logical block application tag mask\n"},
                    {"--dtype=", "16", "--dtype: Invalid directive type\n"},
                    {"--prinfo=", "16", "--prinfo: Invalid protection information field\n"},
                    {"--fua=", "2", "--fua: Invalid force unit access\n"},
                    {"--lr=", "2", "--lr: Invalid limited retry\n"},
                    {"--dsmip=", "2", "--dsmip: Invalid dataset management incompressible\n"},
                    {"--dsmsr=", "2", "--dsmsr: Invalid dataset management sequential request\n"},
                    {"--dsmal=", "4", "--dsmal: Invalid dataset management access latency\n"},
                    {"--dsmaf=", "16", "--dsmaf: Invalid dataset management access frequency\n"}});
}

TEST_F(Complaints, OfCompareHaveOneDash)
{
    check("compare", {{"--nsid=", "4294967296", "-n: Invalid namespace id\n"},
                      {"--slba=", "18446744073709551616", "-s: Invalid starting LBA\n"},
                      {"--nlb=", "65536", "-l: Invalid number of LBA\n"},
                      {"--eilbrt=", "0x100000000", "-ilbrt: Invalid expected initial logical block reference tag\n"},
                      {"--elbat=", "65536", "-lbat: Invalid expected logical block application tag\n"},
                      {"--elbatm=", "65536", "-lbatm: Invalid expected logical block application tag mask\n"},
                      {"--prinfo=", "16", "-prinfo: Invalid protection information field\n"},
                      {"--fua=", "2", "-fua: Invalid force unit access\n"},
                      {"--lr=", "2", "-lr: Invalid limited retry\n"}});
}

TEST_F(Complaints, OfTheCommandsWithoutData)
{
    check("writezero", {{"--nsid=", "4294967296", "-n: Invalid namespace id\n"},
                        {"--ilbrt=", "4294967296", "--ilbrt: Invalid initial logical block reference tag\n"},
                        {"--deac=", "2", "--deac: Invalid deallocate\n"},
                        {"--lr=", "2", "--lr: Invalid limited retry\n"}});
    check("writeuncor", {{"--nsid=", "4294967296", "-n: Invalid namespace id\n"},
                         {"--slba=", "18446744073709551616", "-s: Invalid starting LBA\n"},
                         {"--nlb=", "65536", "-l: Invalid number of LBA\n"}});
}

}  // namespace
