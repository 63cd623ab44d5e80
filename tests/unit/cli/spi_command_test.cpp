// `spi`.
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#include <thread>

#include "cli/Public/utility.h"
#include "tests/unit/cli/hardware_texts.h"
#include "tests/unit/cli/storage_fixture.h"
#include "tests/unit/support/libc.h"

namespace {

using namespace qrx::test;

// The plain dump, reckoned here by itself.
std::string rawOf(const Bytes& data)
{
    std::string text;
    char piece[8];
    for (std::size_t i = 0; i < data.size(); ++i) {
        std::snprintf(piece, sizeof(piece), "0x%02x ", data[i]);
        text += (i % 16 == 0 ? "\n" : "") + std::string(piece);
    }
    return text + "\n";
}

std::string contentOf(const std::string& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

std::string textOf(const Bytes& bytes)
{
    return {bytes.begin(), bytes.end()};
}

class SpiCommand : public StorageTest {
protected:
    ~SpiCommand() override { EXPECT_EQ(file, nullptr) << "the file was left open"; }

    static Command readBlock() { return Command::admin(2, 0, {0x03FF00C0}).receives(4096).carries(Bytes(4096)).on(1); }
    static Command writeBlock(Bytes data)
    {
        return Command::admin(0xC7, 0, {0x400, 0, 0x08E0}).sends(std::move(data)).on(1);
    }
    static Outcome written(const Bytes& shown)
    {
        return {0, "spi write data....." + rawOf(shown) + "Write SPI successful.\n"};
    }
    [[nodiscard]] std::string path(const std::string& name) const { return scratch.path(name); }

    Scratch scratch;
    const Outcome kRead{0, "Read SPI successful.\n"};
};

TEST_F(SpiCommand, Help)
{
    EXPECT_EQ(command({"spi"}), (Outcome{1, expected::kSpiPage}));
    EXPECT_EQ(command({"spi", "-h"}), (Outcome{0, expected::kSpiPage}));
    EXPECT_EQ(command({"spi", "-t", "read", "--help"}), (Outcome{0, expected::kSpiPage}));
}

TEST_F(SpiCommand, ReadsABlockAndShowsIt)
{
    const Bytes block = pattern(4096);
    machine.expect(readBlock().data(block));
    EXPECT_EQ(command({"spi", "-t", "read"}), (Outcome{0, rawOf(block) + "Read SPI successful.\n"}));
    machine.expect(readBlock());
    EXPECT_EQ(command({"spi", "--type=READ"}), (Outcome{0, rawOf(Bytes(4096)) + "Read SPI successful.\n"}));
}

TEST_F(SpiCommand, ReadsABlockIntoAFile)
{
    const Bytes block = pattern(4096, 9);
    for (const std::string option : {"--outputfile=", "-1"}) {
        machine.expect(readBlock().data(block));
        EXPECT_EQ(command({"spi", "-t", "read", option + path("raw_data")}), kRead);
        EXPECT_EQ(contentOf(path("raw_data")), textOf(block));
        scratch.file("raw_data", "longer than a block: " + std::string(5000, 'x'));
    }
    machine.expect(readBlock().data(block));
    EXPECT_EQ(command({"spi", "--outputfile", "\"" + path("raw_data") + "\"", "-t", "read"}), kRead);
    EXPECT_EQ(contentOf(path("raw_data")), textOf(block));
}

TEST_F(SpiCommand, AFailedReadSaysSoAndLeavesAnEmptyFile)
{
    machine.expect(readBlock().status(0x109));
    EXPECT_EQ(command({"spi", "-t", "read", "--outputfile", path("raw_data")}),
              (Outcome{0x109, "Read SPI failed.\n", "Invalid Log Page (Status Code: 0x109)\n"}));
    EXPECT_EQ(contentOf(path("raw_data")), "");
    machine.expect(readBlock().data(pattern(4096)).error(5));
    EXPECT_EQ(command({"spi", "-t", "read"}),
              (Outcome{-1, "Read SPI failed.\n", "Unknown error (Status Code: 0xffffffff)\n"}));
}

TEST_F(SpiCommand, NothingIsReadForAFileThatCannotBeOpened)
{
    const std::string name = path("no/such/file");
    EXPECT_EQ(command({"spi", "-t", "read", "--outputfile", name}),
              (Outcome{1, "spi: cannot open '" + name + "': No such file or directory\n"}));
}

TEST_F(SpiCommand, AFileThatDoesNotHoldTheBlockIsTold)
{
    machine.expect(readBlock().data(pattern(4096)));
    EXPECT_EQ(command({"spi", "-t", "read", "--outputfile", "/dev/full"}),
              (Outcome{1, "spi: cannot write '/dev/full': No space left on device; the file is incomplete\n"}));
}

TEST_F(SpiCommand, WritesABlockFromAFile)
{
    const Bytes block = pattern(4096, 3);
    const std::string name = scratch.file("f", textOf(block));
    for (const std::string option : {"--inputfile=", "-2"}) {
        machine.expect(writeBlock(block));
        EXPECT_EQ(command({"spi", "-t", "WRITE", option + name}), written(block));
    }
}

TEST_F(SpiCommand, AShortFileIsPaddedWithZeros)
{
    const Bytes ten = pattern(10, 3);
    machine.expect(writeBlock(padded(ten, 4096)));
    EXPECT_EQ(command({"spi", "-t", "write", "--inputfile", scratch.file("f", textOf(ten))}), written(ten));
    machine.expect(writeBlock(Bytes(4096)));
    EXPECT_EQ(command({"spi", "-t", "write", "--inputfile", scratch.file("empty", "")}), written({}));
}

TEST_F(SpiCommand, ALongFileIsCut)
{
    const Bytes big = pattern(5000, 3);
    const Bytes block(big.begin(), big.begin() + 4096);
    machine.expect(writeBlock(block));
    EXPECT_EQ(command({"spi", "-t", "write", "--inputfile", scratch.file("big", textOf(big))}), written(block));
}

TEST_F(SpiCommand, AFailedWriteSaysSo)
{
    const Bytes ten = pattern(10);
    const std::string name = scratch.file("f", textOf(ten));
    const std::string shown = "spi write data....." + rawOf(ten) + "Write SPI failed.\n";
    machine.expect(writeBlock(padded(ten, 4096)).status(0x15));
    EXPECT_EQ(command({"spi", "-t", "write", "--inputfile", name}),
              (Outcome{0x15, shown, "Operation Denied (Status Code: 0x15)\n"}));
    machine.expect(writeBlock(padded(ten, 4096)).error(5));
    EXPECT_EQ(command({"spi", "-t", "write", "--inputfile", name}),
              (Outcome{-1, shown, "Unknown error (Status Code: 0xffffffff)\n"}));
}

TEST_F(SpiCommand, NothingIsWrittenWithoutAFile)
{
    EXPECT_EQ(command({"spi", "-t", "write"}), (Outcome{0, "Please provide input file.\n"}));
    EXPECT_EQ(command({"spi", "-t", "write", "--outputfile", path("o")}), (Outcome{0, "Please provide input file.\n"}));
    EXPECT_EQ(command({"spi", "-t", "write", "--inputfile", path("none")}), (Outcome{1, "File is not exist.\n"}));
    EXPECT_EQ(command({"spi", "-t", "write", "--inputfile", path(".")}),
              (Outcome{1, "spi: cannot read '" + path(".") + "': Is a directory\n"}));
}

TEST_F(SpiCommand, AFileForTheOtherDirectionDoesNoHarm)
{
    const Bytes block = pattern(4096, 5);
    const std::string name = scratch.file("in", textOf(block));
    machine.expect(readBlock().data(pattern(4096, 6)));
    EXPECT_EQ(command({"spi", "-t", "read", "--outputfile", path("out"), "--inputfile", name}), kRead);
    EXPECT_EQ(contentOf(path("out")), textOf(pattern(4096, 6)));
    EXPECT_EQ(contentOf(name), textOf(block));
    machine.expect(readBlock().data(pattern(4096, 7)));
    EXPECT_EQ(command({"spi", "--inputfile", name, "--outputfile", path("out"), "-t", "read"}), kRead);
    EXPECT_EQ(contentOf(path("out")), textOf(pattern(4096, 7)));
    machine.expect(writeBlock(block));
    EXPECT_EQ(command({"spi", "-t", "write", "--inputfile", name, "--outputfile", path("out")}), written(block));
    EXPECT_EQ(contentOf(path("out")), "") << "opened in the option pass";
    machine.expect(writeBlock(block));
    EXPECT_EQ(command({"spi", "-t", "write", "--outputfile", path("no/such"), "--inputfile", name}), written(block));
    machine.expect(readBlock().data(block));
    EXPECT_EQ(command({"spi", "-t", "read", "--inputfile", path("none")}),
              (Outcome{0, rawOf(block) + "Read SPI successful.\n"}));
}

TEST_F(SpiCommand, TheInputFileIsNeverTheOutputFileToo)
{
    const Bytes block = pattern(4096, 5);
    const std::string name = scratch.file("in", textOf(block));
    ASSERT_EQ(symlink(name.c_str(), path("other").c_str()), 0);
    for (const std::string& output : {name, path("other"), "\"" + name + "\""}) {
        machine.expect(writeBlock(block));
        EXPECT_EQ(command({"spi", "-t", "write", "--inputfile", name, "--outputfile", output}), written(block));
        EXPECT_EQ(command({"spi", "-t", "read", "--inputfile", name, "--outputfile", output}),
                  (Outcome{1, "spi: '" + output + "' is the input file\n"}));
        EXPECT_EQ(contentOf(name), textOf(block));
    }
    EXPECT_EQ(command({"spi", "-t", "write", "--outputfile", name, "--inputfile", path("other")}),
              (Outcome{1, "File is not exist.\n"}));
    EXPECT_EQ(contentOf(name), "") << "opened in the option pass";
}

TEST_F(SpiCommand, APipeLosesNothingToAFileForTheOtherDirection)
{
    const Bytes ten = pattern(10, 4);
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    std::thread writer([&] { std::ofstream(path("pipe")) << textOf(ten); });
    machine.expect(writeBlock(padded(ten, 4096)));
    EXPECT_EQ(command({"spi", "-t", "write", "--inputfile", path("pipe"), "--outputfile", path("out")}), written(ten));
    writer.join();
}

TEST_F(SpiCommand, BadValues)
{
    EXPECT_EQ(command({"spi", "-t", "erase"}), (Outcome{0, "-t : invalid type 'erase'\n"}));
    EXPECT_EQ(command({"spi", "stray"}), (Outcome{0, "spi: option -t is required\n"}));
    EXPECT_EQ(command({"spi", "--outputfile", path("made")}), (Outcome{0, "spi: option -t is required\n"}));
    EXPECT_TRUE(std::ifstream(path("made")).is_open()) << "opened in the option pass";
    EXPECT_EQ(command({"spi", "-z"}), (Outcome{0, "", "", "spi: illegal option -- z\n"}));
    const std::string name = scratch.file("in", "x");
    for (auto words :
         {Line{"spi", "-t", "read", "-t", "read"}, Line{"spi", "-t", "read", "-1", path("a"), "-1", path("a")},
          Line{"spi", "-t", "write", "-2", name, "-2", name}}) {
        EXPECT_EQ(command(words), (Outcome{1, "Duplicated option specified.\n"}));
    }
}

TEST_F(SpiCommand, HasNoDebugLines)
{
    dbg_enable = 1;
    machine.expect(readBlock());
    EXPECT_EQ(command({"spi", "-t", "read", "--outputfile", path("out")}), kRead);
}

}  // namespace
