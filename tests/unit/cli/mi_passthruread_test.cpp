// `mi_passthruread`.
#include "api/src/interface/wire/nvme.h"
#include "cli/Functions/standard/identify.h"
#include "tests/unit/cli/mi_fixture.h"

namespace {

using namespace qrx::test;

constexpr char kDone[] = "MI send for VPD read success.\n";

class MiPassthruRead : public MiTest {
protected:
    // The first page of the message, byte by byte.
    static Bytes message(QRX_U32 disk)
    {
        Bytes bytes(4096);
        bytes[0] = 0x84;
        bytes[1] = 0x10;
        bytes[4] = 0xC2;
        put32(bytes, 8, disk);
        put32(bytes, 44, 1);
        put32(bytes, 60, 6);
        return bytes;
    }
    static Command send(QRX_U32 disk) { return miSend(message(disk), 1023); }
    static Command receive() { return miReceive().data(answer()); }
    static Bytes answer()
    {
        Bytes bytes = pattern(4096, 40);
        const std::string serial = "SERIAL OF THE DRIVE ";
        std::copy(serial.begin(), serial.end(), bytes.begin() + 8 + 4);
        return bytes;
    }
    // What the drive said: all of the answer behind its head, and zeros up to a page.
    static Bytes data() { return padded(some(answer(), 8, 4088), 4096); }
    static std::string words(const Bytes& bytes)
    {
        std::string text;
        char piece[8];
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            std::snprintf(piece, sizeof(piece), "0x%02x ", bytes[i]);
            text += (i % 4 == 0 ? "\nCDW" + std::to_string(i / 4) + " " : "") + std::string(piece);
        }
        return text;
    }
    static std::string sent(QRX_U32 disk)
    {
        return "after mi_prp_data as below:" + words(some(message(disk), 0, 64)) + "\n\n";
    }
    static std::string detail(const Bytes& page)
    {
        return outcomeOf([&] {
                   _showIDDetail(std::span<const QRX_U8>(page).first<4096>());
                   return 0;
               })
            .stream;
    }
    static std::string shown() { return "content.....\n" + words(some(data(), 0, 512)) + "\n" + detail(data()); }
};

TEST_F(MiPassthruRead, TheBareCommandIdentifiesTheFirstDrive)
{
    machine.expect(send(0));
    machine.expect(receive());
    const Outcome outcome = command({"mi_passthruread"});
    EXPECT_EQ(outcome, (Outcome{0, sent(0) + kDone + shown(), range("0x0", "0x0")}));
    EXPECT_NE(outcome.stream.find("\nCDW0 0x84 0x10 0x00 0x00 \nCDW1 0xc2 0x00 0x00 0x00 \nCDW2 0x00 "),
              std::string::npos);
    EXPECT_NE(outcome.stream.find("\nCDW15 0x06 0x00 0x00 0x00 \n\nMI send"), std::string::npos);
    EXPECT_NE(outcome.stream.find("\nCDW127 "), std::string::npos);
    EXPECT_EQ(outcome.stream.find("\nCDW128 "), std::string::npos);
    EXPECT_NE(outcome.stream.find("SN:                      SERIAL OF THE DRIVE \n"), std::string::npos);
}

TEST_F(MiPassthruRead, TheDriveStandsInTheMessageAndNothingElse)
{
    machine.expect(send(0x12345678));
    machine.expect(receive());
    EXPECT_EQ(command({"mi_passthruread", "-i", "0x12345678", "-o", "0x56789", "-l", "99999"}),
              (Outcome{0, sent(0x12345678) + kDone + shown(), range("0x56789", "0x1869f")}));
    machine.expect(send(3));
    machine.expect(receive());
    EXPECT_EQ(command({"mi_passthruread", "--pdid=3", "--offset=1", "--datalen=2"}),
              (Outcome{0, sent(3) + kDone + shown(), range("0x1", "0x2")}));
}

TEST_F(MiPassthruRead, TheFileTakesAWholePage)
{
    machine.expect(send(2));
    machine.expect(receive());
    EXPECT_EQ(command({"mi_passthruread", "-i", "2", "-f", path("id.bin"), "-l", "4096"}),
              (Outcome{0, sent(2) + kDone + detail(data()), range("0x0", "0x1000")}));
    EXPECT_EQ(contentOf(path("id.bin")), textOf(data()));
    EXPECT_EQ(file, nullptr);
}

TEST_F(MiPassthruRead, WithoutALengthTheFileStaysEmpty)
{
    machine.expect(send(0));
    machine.expect(receive());
    EXPECT_EQ(command({"mi_passthruread", "--outputfile", "\"" + scratch.file("out", "old") + "\""}),
              (Outcome{0, sent(0) + kDone + detail(data()), range("0x0", "0x0")}));
    EXPECT_EQ(contentOf(path("out")), "");
}

TEST_F(MiPassthruRead, OptionsMayRepeatAndTheLastOneCounts)
{
    machine.expect(send(1));
    machine.expect(receive());
    EXPECT_EQ(
        command({"mi_passthruread", "-i", "0", "-l", "7", "-f", path("a"), "-l", "8", "-i", "1", "-f", path("b")}),
        (Outcome{0, sent(1) + kDone + detail(data()), range("0x0", "0x8")}));
    EXPECT_EQ(contentOf(path("a")), "");
    EXPECT_EQ(contentOf(path("b")), textOf(some(data(), 0, 8)));
}

TEST_F(MiPassthruRead, ALengthOverTheAnswerIsRefusedBeforeAnythingIsSent)
{
    for (const auto& [word, value] : {std::pair("4097", "4097"), {"0x10000", "65536"}, {"-0x1", "4294967295"}}) {
        EXPECT_EQ(command({"mi_passthruread", "-f", path("out"), "-l", word}),
                  (Outcome{1, std::string("mi_passthruread: data length ") + value +
                                  " is over the 4096 bytes of Identify\n"}));
    }
    EXPECT_EQ(file, nullptr);
}

TEST_F(MiPassthruRead, FilesThatCannotBeWritten)
{
    const std::string name = path("no/such/directory");
    EXPECT_EQ(command({"mi_passthruread", "-f", name}),
              (Outcome{1, "mi_passthruread: cannot open '" + name + "': No such file or directory\n"}));
    machine.expect(send(0));
    machine.expect(receive());
    EXPECT_EQ(command({"mi_passthruread", "-f", "/dev/full", "-l", "16"}),
              (Outcome{1,
                       sent(0) + kDone +
                           "mi_passthruread: cannot write '/dev/full': No space left on device; the file is "
                           "incomplete\n" +
                           detail(data()),
                       range("0x0", "0x10")}));
    EXPECT_EQ(file, nullptr);
}

TEST_F(MiPassthruRead, FailuresEndItWithTheirStatus)
{
    machine.expect(send(9).status(0x706));
    EXPECT_EQ(command({"mi_passthruread", "-i", "9", "-f", path("out"), "-l", "8"}),
              (Outcome{0x706, sent(9) + "MI send for VPD read failed.\n",
                       range("0x0", "0x8") + "Invalid HD ID (Status Code: 0x706)\n"}));
    machine.expect(send(9).error(5));
    EXPECT_EQ(command({"mi_passthruread", "-i", "9"}),
              (Outcome{-1, sent(9) + "MI send for VPD read failed.\n",
                       range("0x0", "0x0") + "Unknown error (Status Code: 0xffffffff)\n"}));
    machine.expect(send(9));
    machine.expect(miReceive().status(2));
    EXPECT_EQ(command({"mi_passthruread", "-i", "9", "-f", path("out"), "-l", "8"}),
              (Outcome{2, sent(9) + "MI receive for VPD read failed.\n",
                       range("0x0", "0x8") + "Invalid Field in Command (Status Code: 0x2)\n"}));
    EXPECT_EQ(contentOf(path("out")), "");
    EXPECT_EQ(file, nullptr);
}

TEST_F(MiPassthruRead, OptionsAreChecked)
{
    EXPECT_EQ(command({"mi_passthruread", "-i", "x", "-h"}), (Outcome{0, "-o: Invalid pd id value\n"}));
    EXPECT_EQ(command({"mi_passthruread", "-i", "-0x1"}), (Outcome{0, "-o: Invalid pd id value\n"}));
    EXPECT_EQ(command({"mi_passthruread", "-o", "x", "-h"}), (Outcome{0, "-o: Invalid offset value\n"}));
    EXPECT_EQ(command({"mi_passthruread", "-l", "x", "-h"}), (Outcome{0, "-l: Invalid data length value\n"}));
    EXPECT_EQ(command({"mi_passthruread", "-z"}), (Outcome{0, "", "", "mi_passthruread: illegal option -- z\n"}));
    EXPECT_EQ(command({"mi_passthruread", "-h"}), (Outcome{0, expected::kMiPassthruReadPage}));
    EXPECT_EQ(command({"mi_passthruread", "-i", "0", "--help"}), (Outcome{0, expected::kMiPassthruReadPage}));
}

TEST_F(MiPassthruRead, OneBasedIds)
{
    g_oneBaseMode = 1;
    EXPECT_EQ(command({"mi_passthruread", "-i", "0"}), (Outcome{0, "-o: Invalid pd id value\n"}));
    machine.expect(send(0));
    machine.expect(receive());
    EXPECT_EQ(command({"mi_passthruread", "-i", "1"}).result, 0);
}

}  // namespace
