// The converters, dumps, file helpers and arithmetic that handlers share.
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "cli/Public/errorMsg.h"
#include "cli/Public/messages.h"
#include "cli/Public/utility.h"
#include "tests/unit/cli/run.h"

namespace {

using qrx::test::Bytes;
using qrx::test::Outcome;
using qrx::test::outcomeOf;

constexpr char kDumpHead[] = "[RAW Data]\n      00 01 02 03 04 05 06 07 08 09 10 11 12 13 14 15 \n";

std::string dumped(Bytes data, int length)
{
    return outcomeOf([&] {
               dumpContent(data.data(), length);
               return 0;
           })
        .stream;
}

TEST(DumpContent, SeventeenBytesAreTwoRowsWithDecimalLabels)
{
    Bytes data;
    for (int i = 0; i < 17; ++i) {
        data.push_back(static_cast<QRX_U8>(0xF0 + i));
    }
    EXPECT_EQ(dumped(data, 17), std::string(kDumpHead) +
                                    "\n0000  f0 f1 f2 f3 f4 f5 f6 f7 f8 f9 fa fb fc fd fe ff "
                                    "\n0016  00 \n");
}

TEST(DumpContent, NothingIsTheHeadingAndAnEmptyLine)
{
    EXPECT_EQ(dumped({1}, 0), std::string(kDumpHead) + "\n");
    EXPECT_EQ(dumped({1}, -1), std::string(kDumpHead) + "\n");
}

TEST(ShowRawData, BreaksTheLineBeforeEverySixteenthByte)
{
    const auto shown = [](const Bytes& data, int length) {
        return outcomeOf([&] {
                   _showRAWData(data.data(), length);
                   return 0;
               })
            .stream;
    };
    std::string row = "\n";
    for (int i = 0; i < 16; ++i) {
        row += "0xab ";
    }
    EXPECT_EQ(shown(Bytes(17, 0xab), 17), row + "\n0xab \n");
    EXPECT_EQ(shown({1}, 0), "\n");
    EXPECT_EQ(shown({1}, -5), "\n");
}

TEST(IsNumber, TakesDigitsAndNothing)
{
    EXPECT_TRUE(isNumber(""));
    EXPECT_TRUE(isNumber("0123456789"));
    for (const char* text : {"-1", "+1", "1 ", "0x1", "1.0", "\xb2"}) {
        EXPECT_FALSE(isNumber(text)) << text;
    }
}

TEST(Strlwr, LowersInPlace)
{
    char text[] = "--VID=0xAB_z";
    EXPECT_EQ(strlwr(text), text);
    EXPECT_STREQ(text, "--vid=0xab_z");
}

TEST(RaidMode, WordsCodesAndTexts)
{
    struct Row {
        const char* word;
        int code;
        const char* text;
    };
    for (const Row& row : {Row{"0", 0, "RAID0"},
                           {"1", 1, "RAID1"},
                           {"10", 16, "RAID10"},
                           {"5", 5, "RAID5"},
                           {"50", 80, "RAID50"},
                           {"6", 6, "RAID6"},
                           {"60", 96, "RAID60"},
                           {"JBOD", 15, "JBOD"}}) {
        EXPECT_EQ(chooseRaidMode(row.word), row.code);
        EXPECT_STREQ(RaidModeStr(static_cast<QRX_U8>(row.code)), row.text);
    }
    for (const char* word : {"jbod", "", "00", "RAID0", "2"}) {
        EXPECT_EQ(chooseRaidMode(word), 255) << word;
    }
    EXPECT_STREQ(RaidModeStr(2), "unknown");
    EXPECT_STREQ(RaidModeStr(255), "unknown");
}

TEST(BgaAction, Words)
{
    EXPECT_EQ(chooseBGAAction("start"), 0);
    EXPECT_EQ(chooseBGAAction("stop"), 3);
    EXPECT_EQ(chooseBGAAction("START"), 255);
    EXPECT_EQ(chooseBGAAction(""), 255);
}

TEST(PowNvme, CutsToThirtyTwoBits)
{
    EXPECT_EQ(pow_nvme(2, 12), 4096U);
    EXPECT_EQ(pow_nvme(2, 31), 0x80000000U);
    EXPECT_EQ(pow_nvme(2, 32), 0U);
    EXPECT_EQ(pow_nvme(3, 21), 10460353203U & 0xFFFFFFFFU);
    EXPECT_EQ(pow_nvme(0, 0), 1U);
    EXPECT_EQ(pow_nvme(0, 5), 0U);
    EXPECT_EQ(pow_nvme(255, 255), 0U);
}

TEST(CalCrc32, HasNoFinalInversion)
{
    std::string text = "123456789";
    auto* bytes = reinterpret_cast<QRX_U8*>(text.data());
    EXPECT_EQ(calCRC32(bytes, 9), 0xCBF43926U ^ 0xFFFFFFFFU);
    EXPECT_EQ(calCRC32(bytes, 0), 0xFFFFFFFFU);
}

TEST(ErrorMessage, Words)
{
    EXPECT_STREQ(ErrorMessage(0), "No error");
    EXPECT_STREQ(ErrorMessage(1), "Failed");
    EXPECT_STREQ(ErrorMessage(2), "Unknown error");
    EXPECT_STREQ(ErrorMessage(255), "Unknown error");
}

TEST(Messages, Texts)
{
    EXPECT_STREQ(ErrorDuplicate, "Duplicated option specified.\n");
    EXPECT_STREQ(OptionRequired, "%s: option -%c is required\n");
    EXPECT_STREQ(OptionValNotRequired, "%s: option -%c is not required\n");
    EXPECT_STREQ(OptionNotRequired, "%s: option rawfiles is only using for action: update\n");
    EXPECT_STREQ(fmt_Str64, "%-*s %ls\n");
    EXPECT_STREQ(CLI_VERSION, "1.0.0.1046");
}

class FileHelpers : public testing::Test {
protected:
    FileHelpers()
    {
        std::string name = testing::TempDir() + "qrx_cli_XXXXXX";
        folder = mkdtemp(name.data());
    }
    ~FileHelpers() override
    {
        close_file();
        std::filesystem::remove_all(folder);
    }
    FileHelpers(const FileHelpers&) = delete;
    FileHelpers& operator=(const FileHelpers&) = delete;

    [[nodiscard]] std::string content(const std::string& name) const
    {
        std::ifstream in(folder / name);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    std::filesystem::path folder;
};

TEST_F(FileHelpers, WriteReadAndMeasure)
{
    ASSERT_EQ(open_file((folder / "x").c_str(), "w+b"), 0);
    write_file("abcdef", 6);
    EXPECT_EQ(get_file_length(), 6);
    write_file("gh", 2);  // the position stayed
    std::rewind(file);
    std::array<char, 16> back{};
    read_file(back.data(), 16);
    EXPECT_STREQ(back.data(), "abcdefgh");
    close_file();
    EXPECT_EQ(file, nullptr);
    EXPECT_EQ(content("x"), "abcdefgh");
}

TEST_F(FileHelpers, QuotesAreDroppedUpToTheClosingOneOrTheEnd)
{
    const std::string path = (folder / "my file").string();
    for (const std::string& name : {path, "\"" + path + "\"", "\"" + path, "\"" + path + "\"tail",
                                    "\"" + path + "\"tail\"", "\"" + path + "\"\""}) {
        ASSERT_EQ(open_file(name.c_str(), "wb"), 0) << name;
        write_file(name.data(), static_cast<int>(name.size()));
        close_file();
        EXPECT_EQ(content("my file"), name);
    }
}

TEST_F(FileHelpers, ANameHas1023CharactersWithoutItsQuotes)
{
    std::string path = folder.string();
    while (path.size() < 1023) {  // the longest way to the same folder, and a name of one letter at its end
        path += '/';
    }
    path.back() = 'x';
    const std::string quoted = "\"" + path + "\"";
    std::string followed = quoted;
    followed += path;
    for (const std::string& name : {path, quoted, followed}) {
        ASSERT_EQ(open_file(name.c_str(), "wb"), 0);
        close_file();
    }
    for (const std::string& name : {"/" + path, "\"/" + path + "\"", "\"/" + path}) {
        EXPECT_EQ(open_file(name.c_str(), "wb"), 1);
        EXPECT_EQ(errno, ENAMETOOLONG);
    }
}

TEST_F(FileHelpers, FailuresAreOne)
{
    EXPECT_EQ(open_file((folder / "none" / "x").c_str(), "wb"), 1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(file, nullptr);
    EXPECT_EQ(open_file(std::string(1024, 'a').c_str(), "wb"), 1);
    EXPECT_EQ(errno, ENAMETOOLONG);
    EXPECT_EQ(open_file("", "rb"), 1);
    EXPECT_EQ(open_file("\"", "rb"), 1);
    EXPECT_EQ(open_file("\"\"", "rb"), 1);
    EXPECT_EQ(outcomeOf([] { return open_file("'x'", "wb"); }),
              (Outcome{1, "", "Please use double quotation mark to include strings.\n"}));
    EXPECT_EQ(errno, EINVAL);
}

TEST_F(FileHelpers, ASecondOpenKeepsWhatTheFirstWrote)
{
    ASSERT_EQ(open_file((folder / "one").c_str(), "wb"), 0);
    write_file("1", 1);
    ASSERT_EQ(open_file((folder / "two").c_str(), "wb"), 0);
    EXPECT_EQ(content("one"), "1");
}

TEST_F(FileHelpers, WithoutAFileNothingHappens)
{
    char byte = 'x';
    read_file(&byte, 1);
    write_file(&byte, 1);
    close_file();
    EXPECT_EQ(byte, 'x');
    EXPECT_EQ(get_file_length(), 0);
}

}  // namespace
