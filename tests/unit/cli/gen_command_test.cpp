// `gen`.
#include <unistd.h>

#include <filesystem>

#include "tests/unit/cli/mi_fixture.h"

namespace {

using namespace qrx::test;

class GenCommand : public MiTest {
protected:
    GenCommand() : before_(std::filesystem::current_path()) { std::filesystem::current_path(scratch.path("")); }
    ~GenCommand() override { std::filesystem::current_path(before_); }
    GenCommand(const GenCommand&) = delete;
    GenCommand& operator=(const GenCommand&) = delete;

    static bool made() { return std::filesystem::exists("prp_data"); }
    // That the command writes exactly this block, shows it and says nothing else.
    static void expectBlock(std::initializer_list<std::string> words, const Bytes& beginning)
    {
        std::filesystem::remove("prp_data");
        const Bytes block = padded(beginning, 4096);
        std::string text;
        char piece[8];
        for (std::size_t i = 0; i < block.size(); ++i) {
            std::snprintf(piece, sizeof(piece), "0x%02x ", block[i]);
            text += (i % 16 == 0 ? "\n" : "") + std::string(piece);
        }
        EXPECT_EQ(command(words), (Outcome{0, text + "\n"}));
        EXPECT_EQ(contentOf("prp_data"), textOf(block));
        EXPECT_EQ(file, nullptr);
    }
    // The space of a namespace with a value of its own in every field.
    static Bytes space()
    {
        Bytes bytes(384);
        const Bytes nsze{0x08, 0x07, 0x06, 0x05, 0, 0, 0, 0};
        const Bytes ncap{0x14, 0x13, 0x12, 0x11, 0, 0, 0, 0};
        std::copy(nsze.begin(), nsze.end(), bytes.begin());
        std::copy(ncap.begin(), ncap.end(), bytes.begin() + 8);
        bytes[26] = 0x21;
        bytes[29] = 0x22;
        bytes[30] = 0x23;
        return bytes;
    }

private:
    std::filesystem::path before_;
};

TEST_F(GenCommand, Help)
{
    for (auto words : {Line{"gen", "-h"}, Line{"gen", "--help"}, Line{"gen", "-t", "attachns", "-h"}}) {
        EXPECT_EQ(command(words), (Outcome{0, expected::kGenPage}));
    }
    EXPECT_FALSE(made());
}

TEST_F(GenCommand, TheTypeIsRequired)
{
    EXPECT_EQ(command({"gen"}), (Outcome{0, "gen: option -t is required\n"}));
    EXPECT_EQ(command({"gen", "--nsze=1"}), (Outcome{0, "gen: option -t is required\n"}));
    EXPECT_FALSE(made());
}

TEST_F(GenCommand, AListOfControllers)
{
    expectBlock({"gen", "-t", "attachns", "--list=0,1"}, {2, 0, 0, 0, 1, 0});
    expectBlock({"gen", "--type=AttachNS", "--list", "513,65535,7"}, {3, 0, 0x01, 0x02, 0xFF, 0xFF, 7, 0});
    expectBlock({"gen", "-t", "attachns", "-0", "12"}, {1, 0, 12, 0});
    expectBlock({"gen", "-t", "attachns"}, {});
}

TEST_F(GenCommand, EmptyPiecesOfAListAreNone)
{
    expectBlock({"gen", "-t", "attachns", "--list=,5,,6,"}, {2, 0, 5, 0, 6, 0});
    expectBlock({"gen", "-t", "attachns", "--list="}, {});
}

TEST_F(GenCommand, IdsHaveSixteenBits)
{
    for (const char* list : {"--list=65536", "--list=0,65538", "--list=99999999999"}) {  // cut, it would be another one
        EXPECT_EQ(command({"gen", "-t", "attachns", list}),
                  (Outcome{0, "--list : controller ids should be a number\n"}));
    }
    EXPECT_FALSE(made());
    expectBlock({"gen", "-t", "attachns", "--list=65535"}, {1, 0, 0xFF, 0xFF});
}

TEST_F(GenCommand, AListFillsTheBlockAndNotMore)
{
    std::string list = "1000";
    Bytes block{0xFF, 0x07, 0xE8, 0x03};
    for (int i = 1; i < 2047; ++i) {
        list += ",1000";
        block.insert(block.end(), {0xE8, 0x03});
    }
    expectBlock({"gen", "-t", "attachns", "--list=" + list}, block);
    std::filesystem::remove("prp_data");
    EXPECT_EQ(command({"gen", "-t", "attachns", "--list=" + list + ",1"}),
              (Outcome{0, "--list : at most 2047 controller ids\n"}));
    EXPECT_FALSE(made());
}

TEST_F(GenCommand, TheSpaceOfANamespace)
{
    expectBlock(
        {"gen", "-t", "createns", "--nsze=0x5060708", "--ncap=0x11121314", "--flbas=0x21", "--dps=34", "--nmic=0x23"},
        space());
    expectBlock({"gen", "-t", "CREATENS", "-1", "84281096", "-2", "286397204", "-3", "33", "-4", "0x22", "-5", "35"},
                space());
    Bytes block(27);
    block[0] = block[8] = 0xD0;
    block[1] = block[9] = 0x07;
    block[26] = 1;
    expectBlock({"gen", "-t", "createns", "--nsze=2000", "--ncap=2000", "--flbas=1", "--dps=0", "--nmic=0"}, block);
    expectBlock({"gen", "-t", "createns"}, {});
}

TEST_F(GenCommand, SizesHaveAThirtyTwoBitNumberWithItsSign)
{
    expectBlock({"gen", "-t", "createns", "--nsze=0xffffffff", "--ncap=-0x2"},
                {0xFF, 0xFF, 0xFF, 0x7F, 0, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF});
    expectBlock({"gen", "-t", "createns", "--nsze=99999999999", "--ncap=-0xffffffffff"},
                {0xFF, 0xFF, 0xFF, 0x7F, 0, 0, 0, 0, 0x00, 0x00, 0x00, 0x80, 0xFF, 0xFF, 0xFF, 0xFF});
}

TEST_F(GenCommand, TheOtherFieldsHaveEightBits)
{
    Bytes block(31);
    block[26] = 2;
    block[29] = 0xFF;
    expectBlock({"gen", "-t", "createns", "--flbas=258", "--dps=-0x1", "--nmic=0x100"}, block);
}

TEST_F(GenCommand, OutputIsAnotherNameOfTheSize)
{
    expectBlock({"gen", "-t", "createns", "--output", "5"}, {5});
    expectBlock({"gen", "-t", "createns", "--output=0x1234"}, {0x34, 0x12});
    EXPECT_EQ(command({"gen", "-t", "createns", "--output", "file"}),
              (Outcome{0, "--nsze : invalid nsze value 'file'\n"}));
}

TEST_F(GenCommand, OnlyTheBlockOfTheTypeIsWritten)
{
    expectBlock({"gen", "-t", "attachns", "--list=3", "--nsze=77", "--nmic=1"}, {1, 0, 3, 0});
    expectBlock({"gen", "-t", "createns", "--list=3", "--nsze=77"}, {77});
}

TEST_F(GenCommand, AnExistingFileIsOverwritten)
{
    std::ofstream("prp_data") << std::string(5000, 'x');
    ASSERT_EQ(command({"gen", "-t", "attachns", "--list=3"}).result, 0);
    EXPECT_EQ(contentOf("prp_data"), textOf(padded({1, 0, 3, 0}, 4096)));
}

TEST_F(GenCommand, AFileThatCannotBeWritten)
{
    std::filesystem::create_symlink("/dev/full", "prp_data");
    EXPECT_EQ(command({"gen", "-t", "attachns"}).result, 1);
    const std::string text = command({"gen", "-t", "attachns"}).stream;
    const std::string complaint = "gen: cannot write 'prp_data': No space left on device; the file is incomplete\n";
    ASSERT_GT(text.size(), complaint.size());
    EXPECT_EQ(text.substr(text.size() - complaint.size()), complaint);
    std::filesystem::remove("prp_data");
    std::filesystem::create_directory("prp_data");
    EXPECT_EQ(command({"gen", "-t", "attachns"}), (Outcome{1, "gen: cannot open 'prp_data': Is a directory\n"}));
}

TEST_F(GenCommand, BadValuesMakeNoFile)
{
    constexpr std::array<const char*, 3> kCases[] = {
        {"-t", "attach", "-t : invalid type 'attach'\n"},
        {"--list", "0,x", "--list : controller ids should be a number\n"},
        {"--list", "0,-1", "--list : controller ids should be a number\n"},
        {"--list", "0x1", "--list : controller ids should be a number\n"},
        {"--list", "0, 1", "--list : controller ids should be a number\n"},
        {"--nsze", "x", "--nsze : invalid nsze value 'x'\n"},
        {"--ncap", "-1", "--ncap : invalid ncap value '-1'\n"},
        {"--flbas", "1x", "--flbas : invalid flbas value '1x'\n"},
        {"--dps", "x", "--dps : invalid dps value 'x'\n"},
        {"--nmic", "x", "--nmic : invalid nmic value 'x'\n"},
    };
    for (const auto& [option, value, complaint] : kCases) {
        EXPECT_EQ(command({"gen", "-t", "attachns", option, value, "-h"}), (Outcome{0, complaint}));
    }
    EXPECT_EQ(command({"gen", "-z"}), (Outcome{0, "", "", "gen: illegal option -- z\n"}));
    EXPECT_FALSE(made());
}

TEST_F(GenCommand, Duplicates)
{
    for (auto words : {Line{"gen", "-t", "attachns", "-t", "createns"}, Line{"gen", "--list=1", "--list=2"},
                       Line{"gen", "--nsze=1", "--nsze=1"}, Line{"gen", "--nsze=1", "--output=1"},
                       Line{"gen", "-2", "1", "--ncap=1"}, Line{"gen", "--flbas=1", "--flbas=1"},
                       Line{"gen", "--dps=1", "--dps=1"}, Line{"gen", "--nmic=1", "--nmic=1"}}) {
        EXPECT_EQ(command(words), (Outcome{1, "Duplicated option specified.\n"}));
    }
    EXPECT_FALSE(made());
}

}  // namespace
