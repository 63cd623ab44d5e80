// `vpdread`, `vpdwrite` and `mi_passthruwrite`.
#include <array>

#include "tests/unit/cli/mi_fixture.h"

namespace {

using namespace qrx::test;

const Outcome kDuplicate{1, "Duplicated option specified.\n"};
constexpr char kReadDone[] = "MI send for VPD read success.\n";
constexpr char kWriteDone[] = "MI send for VPD write success.\n";

// --- vpdread ------------------------------------------------------------------------------------------------------

class VpdRead : public MiTest {
protected:
    static Command send(QRX_U32 offset, QRX_U32 length) { return miSend(vpdMessage(5, offset, length), 259); }
    static Command receive() { return miReceive().data(pattern(4096, 3)); }
    static Bytes answered(std::size_t length) { return some(pattern(4096, 3), 8, length); }
};

TEST_F(VpdRead, Help)
{
    EXPECT_EQ(command({"vpdread"}), (Outcome{1, expected::kVpdReadPage}));
    for (auto words : {Line{"vpdread", "-h"}, Line{"vpdread", "--help"}, Line{"vpdread", "-o", "0", "-h"}}) {
        EXPECT_EQ(command(words), (Outcome{0, expected::kVpdReadPage}));
    }
}

TEST_F(VpdRead, ShowsWhatStandsBehindTheAnswersHead)
{
    machine.expect(send(0x10, 0x20));
    machine.expect(receive());
    EXPECT_EQ(command({"vpdread", "-o", "0x10", "-l", "32"}),
              (Outcome{0, kReadDone, range("0x10", "0x20") + "content.....\n" + rows(answered(32))}));
}

TEST_F(VpdRead, ALengthThatIsNoMultipleOfARow)
{
    machine.expect(send(0xFFFF, 13));
    machine.expect(receive());
    EXPECT_EQ(command({"vpdread", "--offset=65535", "--datalen=0xd"}),
              (Outcome{0, kReadDone, range("0xffff", "0xd") + "content.....\n" + rows(answered(13))}));
}

TEST_F(VpdRead, OfNoBytes)
{
    machine.expect(send(0, 0));
    machine.expect(receive());
    EXPECT_EQ(command({"vpdread", "-o", "0", "-l", "0"}),
              (Outcome{0, kReadDone, range("0x0", "0x0") + "content.....\n\n"}));
}

TEST_F(VpdRead, AsMuchAsAnAnswerBrings)
{
    machine.expect(send(0, 4088));
    machine.expect(receive());
    EXPECT_EQ(command({"vpdread", "-o", "0", "-l", "4088"}),
              (Outcome{0, kReadDone, range("0x0", "0xff8") + "content.....\n" + rows(answered(4088))}));
}

TEST_F(VpdRead, ALengthOverTheAnswerIsRefusedBeforeAnythingIsSent)
{
    EXPECT_EQ(command({"vpdread", "-o", "0", "-l", "4089"}),
              (Outcome{1, "vpdread: data length 4089 is over the 4088 bytes of one answer\n"}));
    EXPECT_EQ(command({"vpdread", "-o", "0", "-l", "0xffff", "-f", path("out")}),
              (Outcome{1, "vpdread: data length 65535 is over the 4088 bytes of one answer\n"}));
    EXPECT_EQ(file, nullptr);
}

TEST_F(VpdRead, OffsetAndLengthHaveSixteenBits)
{
    machine.expect(send(0x2345, 2));
    machine.expect(receive());
    EXPECT_EQ(command({"vpdread", "-o", "0x12345", "-l", "65538"}),
              (Outcome{0, kReadDone, range("0x2345", "0x2") + "content.....\n" + rows(answered(2))}));
}

TEST_F(VpdRead, AStatusInTheAnswerIsNotLookedAt)
{
    Bytes answer = pattern(4096, 3);
    answer[0] = 0x84;
    answer[1] = 0x88;
    answer[4] = 0x04;
    machine.expect(send(0, 8));
    machine.expect(miReceive().data(answer));
    EXPECT_EQ(command({"vpdread", "-o", "0", "-l", "8"}),
              (Outcome{0, kReadDone, range("0x0", "0x8") + "content.....\n" + rows(answered(8))}));
}

TEST_F(VpdRead, OfAShortAnswerTheRestIsZero)
{
    machine.expect(send(0, 16));
    machine.expect(miReceive().data(some(pattern(4096, 3), 0, 12)));
    EXPECT_EQ(command({"vpdread", "-o", "0", "-l", "16"}),
              (Outcome{0, kReadDone, range("0x0", "0x10") + "content.....\n" + rows(padded(answered(4), 16))}));
}

TEST_F(VpdRead, TheFileTakesTheData)
{
    machine.expect(send(4, 300));
    machine.expect(receive());
    EXPECT_EQ(command({"vpdread", "-o", "4", "-l", "300", "-f", scratch.file("out", "what was there before")}),
              (Outcome{0, kReadDone, range("0x4", "0x12c")}));
    EXPECT_EQ(contentOf(path("out")), textOf(answered(300)));
    EXPECT_EQ(file, nullptr);
}

TEST_F(VpdRead, TheFileMayBeQuotedAndNamedByTheLongOption)
{
    for (const std::string& name : {"\"" + path("one") + "\"", "\"" + path("two"), path("three")}) {
        machine.expect(send(0, 4));
        machine.expect(receive());
        EXPECT_EQ(command({"vpdread", "-o", "0", "-l", "4", "--outputfile", name}).result, 0);
    }
    for (const char* name : {"one", "two", "three"}) {
        EXPECT_EQ(contentOf(path(name)), textOf(answered(4))) << name;
    }
}

TEST_F(VpdRead, TheFileIsMadeBeforeTheOptionsAreCompared)
{
    EXPECT_EQ(command({"vpdread", "-f", path("out")}), (Outcome{0, "vpdread: option -o is required\n"}));
    EXPECT_TRUE(std::ifstream(path("out")).good());
    EXPECT_EQ(contentOf(path("out")), "");
    EXPECT_EQ(file, nullptr);
}

TEST_F(VpdRead, AFileThatCannotBeOpenedStopsTheCommand)
{
    const std::string name = path("no/such/directory");
    EXPECT_EQ(command({"vpdread", "-o", "0", "-l", "8", "-f", name}),
              (Outcome{1, "vpdread: cannot open '" + name + "': No such file or directory\n"}));
}

TEST_F(VpdRead, DataThatCannotBeWrittenIsNotLostInSilence)
{
    machine.expect(send(0, 4));
    machine.expect(receive());
    EXPECT_EQ(command({"vpdread", "-o", "0", "-l", "4", "-f", "/dev/full"}),
              (Outcome{1,
                       std::string(kReadDone) +
                           "vpdread: cannot write '/dev/full': No space left on device; the file is incomplete\n",
                       range("0x0", "0x4")}));
    EXPECT_EQ(file, nullptr);
}

TEST_F(VpdRead, AFailedSendEndsIt)
{
    machine.expect(send(0, 8).status(2));
    EXPECT_EQ(command({"vpdread", "-o", "0", "-l", "8", "-f", scratch.file("out", "old")}),
              (Outcome{2, "MI send for VPD read failed.\n",
                       range("0x0", "0x8") + "Invalid Field in Command (Status Code: 0x2)\n"}));
    EXPECT_EQ(contentOf(path("out")), "");
    EXPECT_EQ(file, nullptr);
    machine.expect(send(0, 8).error(5));
    EXPECT_EQ(command({"vpdread", "-o", "0", "-l", "8"}),
              (Outcome{-1, "MI send for VPD read failed.\n",
                       range("0x0", "0x8") + "Unknown error (Status Code: 0xffffffff)\n"}));
}

TEST_F(VpdRead, AFailedReceiveEndsIt)
{
    machine.expect(send(0, 8));
    machine.expect(miReceive().status(0x0C));
    const Outcome outcome = command({"vpdread", "-o", "0", "-l", "8", "-f", path("out")});
    EXPECT_EQ(outcome.result, 0x0C);
    EXPECT_EQ(outcome.stream, "MI receive for VPD read failed.\n");
    EXPECT_EQ(contentOf(path("out")), "");
    EXPECT_EQ(file, nullptr);
}

TEST_F(VpdRead, OptionsAreChecked)
{
    EXPECT_EQ(command({"vpdread", "-o", "x", "-h"}), (Outcome{0, "-o: Invalid offset value\n"}));
    EXPECT_EQ(command({"vpdread", "-o", "-1"}), (Outcome{0, "-o: Invalid offset value\n"}));
    EXPECT_EQ(command({"vpdread", "-l", "8k", "-h"}), (Outcome{0, "-l: Invalid data length value\n"}));
    EXPECT_EQ(command({"vpdread", "-l", "8"}), (Outcome{0, "vpdread: option -o is required\n"}));
    EXPECT_EQ(command({"vpdread", "-o", "8"}), (Outcome{0, "vpdread: option -l is required\n"}));
    EXPECT_EQ(command({"vpdread", "--output", "x"}), (Outcome{0, "vpdread: option -o is required\n"}));
    EXPECT_EQ(command({"vpdread", "-o", "0", "-o", "0"}), kDuplicate);
    EXPECT_EQ(command({"vpdread", "-l", "0", "-l", "0"}), kDuplicate);
    EXPECT_EQ(command({"vpdread", "-f", path("a"), "-f", path("b")}), kDuplicate);
    EXPECT_EQ(command({"vpdread", "-z"}), (Outcome{0, "", "", "vpdread: illegal option -- z\n"}));
}

// --- vpdwrite and mi_passthruwrite --------------------------------------------------------------------------------

class VpdWrite : public MiTest {
protected:
    // The request of a file of `file` bytes, with `data` in it.
    static Bytes request(QRX_U32 offset, const Bytes& data, std::size_t file)
    {
        Bytes message = vpdMessage(6, offset, static_cast<QRX_U32>(data.size()), 1040 + file);
        std::copy(data.begin(), data.end(), message.begin() + 16);
        return message;
    }
    std::string fileOf(const Bytes& bytes) const { return scratch.file("in", textOf(bytes)); }
    // What vpdwrite shows of the file.
    static std::string shown(const Bytes& bytes)
    {
        std::string text = "spi write data.....";
        char piece[8];
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            std::snprintf(piece, sizeof(piece), "0x%02x ", bytes[i]);
            text += (i % 16 == 0 ? "\n" : "") + std::string(piece);
        }
        return text + "\n";
    }
};

TEST_F(VpdWrite, Help)
{
    EXPECT_EQ(command({"vpdwrite"}), (Outcome{1, expected::kVpdWritePage}));
    EXPECT_EQ(command({"vpdwrite", "-h"}), (Outcome{0, expected::kVpdWritePage}));
    EXPECT_EQ(command({"mi_passthruwrite", "--help"}), (Outcome{0, expected::kMiPassthruWritePage}));
    EXPECT_EQ(command({"mi_passthruwrite"}), (Outcome{0, "mi_passthruwrite: option -o is required\n"}));
}

TEST_F(VpdWrite, SendsTheFileAndShowsItTwice)
{
    const Bytes data = pattern(32, 200);
    machine.expect(miSend(request(0, data, 32), 267));
    EXPECT_EQ(command({"vpdwrite", "-o", "0", "-l", "32", "-f", fileOf(data)}),
              (Outcome{0, shown(data) + kWriteDone, range("0x0", "0x20") + rows(data)}));
    EXPECT_EQ(file, nullptr);
}

TEST_F(VpdWrite, TheTwinShowsItOnceAndShorter)
{
    const Bytes data{0x00, 0x01, 0x0F, 0x10, 0xAB, 0xFF, 0x07, 0x70, 0x0A};
    machine.expect(miSend(request(0, data, 9), 261));
    EXPECT_EQ(command({"mi_passthruwrite", "-o", "0", "-l", "9", "-f", fileOf(data)}),
              (Outcome{0, kWriteDone, range("0x0", "0x9") + "\n0x0 0x1 0xf 0x10 0xab 0xff 0x7 0x70 \n0xa \n"}));
    EXPECT_EQ(file, nullptr);
}

TEST_F(VpdWrite, BehindAShortFileZerosAreSent)
{
    const Bytes data = padded(pattern(4, 50), 8);
    machine.expect(miSend(request(0, data, 4), 260));
    EXPECT_EQ(command({"vpdwrite", "-o", "0", "-l", "8", "-f", fileOf(pattern(4, 50))}),
              (Outcome{0, shown(pattern(4, 50)) + kWriteDone, range("0x0", "0x8") + rows(data)}));
}

TEST_F(VpdWrite, OfALongFileTheBeginningIsSentAndTheMessageIsAsLong)
{
    const Bytes content = pattern(1000, 9);
    const Bytes data = some(content, 0, 20);
    machine.expect(miSend(request(0, data, 1000), 509));
    EXPECT_EQ(command({"vpdwrite", "-o", "0", "-l", "20", "-f", fileOf(content)}),
              (Outcome{0, shown(data) + kWriteDone, range("0x0", "0x14") + rows(data)}));
    machine.expect(miSend(request(0, {}, 1000), 509));
    EXPECT_EQ(command({"vpdwrite", "-o", "0", "-l", "0", "-f", fileOf(content)}),
              (Outcome{0, std::string("spi write data.....\n") + kWriteDone, range("0x0", "0x0") + "\n"}));
}

TEST_F(VpdWrite, TheListingStartsAtTheOffsetThoughTheDataDoesNot)
{
    const Bytes data = pattern(12, 30);
    const Bytes listed = padded(some(data, 5, 7), 12);
    machine.expect(miSend(request(5, data, 12), 262));
    EXPECT_EQ(command({"vpdwrite", "-o", "5", "-l", "12", "-f", fileOf(data)}),
              (Outcome{0, shown(data) + kWriteDone, range("0x5", "0xc") + rows(listed, 5)}));
    machine.expect(miSend(request(0xFFFF, data, 12), 262));
    EXPECT_EQ(command({"mi_passthruwrite", "-o", "0xffff", "-l", "12", "-f", fileOf(data)}),
              (Outcome{0, kWriteDone, range("0xffff", "0xc") + rows(Bytes(12), 0xFFFF, "0x%x ")}));
}

TEST_F(VpdWrite, AMessageFillsThePageAndNotMore)
{
    const Bytes content = pattern(3056, 77);
    const Bytes data = padded(content, 4080);
    machine.expect(miSend(request(0, data, 3056), 1023));
    EXPECT_EQ(command({"vpdwrite", "-o", "0", "-l", "4080", "-f", fileOf(content)}),
              (Outcome{0, shown(content) + kWriteDone, range("0x0", "0xff0") + rows(data)}));
    const std::string name = fileOf(pattern(3057));
    for (const char* word : {"vpdwrite", "mi_passthruwrite"}) {
        EXPECT_EQ(command({word, "-o", "0", "-l", "8", "-f", name}),
                  (Outcome{1, std::string(word) + ": '" + name + "' has more than 3056 bytes\n"}));
    }
    EXPECT_EQ(file, nullptr);
}

TEST_F(VpdWrite, ALengthOverTheMessageIsRefusedBeforeAnythingIsSent)
{
    machine.expect(miSend(request(0, Bytes(1024), 0), 259));
    EXPECT_EQ(command({"vpdwrite", "-o", "0", "-l", "1024", "-f", fileOf({})}).result, 0);
    EXPECT_EQ(command({"vpdwrite", "-o", "0", "-l", "1025", "-f", fileOf({})}),
              (Outcome{1, "vpdwrite: data length 1025 is over the 1024 bytes of the message of a file of 0 bytes\n"}));
    EXPECT_EQ(
        command({"mi_passthruwrite", "-o", "0", "-l", "0xffff", "-f", fileOf(pattern(3056))}),
        (Outcome{
            1, "mi_passthruwrite: data length 65535 is over the 4080 bytes of the message of a file of 3056 bytes\n"}));
}

TEST_F(VpdWrite, TheControllerIsToldOfWholeDwords)
{
    const Bytes data = pattern(7, 60);
    machine.expect(miSend(request(0, data, 7), 260));  // of 1047 bytes, 261 dwords
    EXPECT_EQ(command({"vpdwrite", "-o", "0", "-l", "7", "-f", fileOf(data)}).result, 0);
    EXPECT_EQ(command({"vpdwrite", "-o", "0", "-l", "1029", "-f", fileOf(data)}),
              (Outcome{1, "vpdwrite: data length 1029 is over the 1028 bytes of the message of a file of 7 bytes\n"}));
}

TEST_F(VpdWrite, OffsetAndLengthHaveSixteenBits)
{
    const Bytes data = pattern(2, 60);
    machine.expect(miSend(request(0x2345, data, 2), 259));
    EXPECT_EQ(command({"mi_passthruwrite", "-o", "0x12345", "-l", "65538", "-f", fileOf(data)}).result, 0);
}

TEST_F(VpdWrite, AFileThatCannotBeReadIsNotSent)
{
    for (const std::string word : {"vpdwrite", "mi_passthruwrite"}) {
        EXPECT_EQ(command({word, "-o", "0", "-l", "8", "-f", path("none")}),
                  (Outcome{1, word + ": cannot open '" + path("none") + "': No such file or directory\n"}));
        EXPECT_EQ(command({word, "-o", "0", "-l", "8", "-f", path("")}),
                  (Outcome{1, word + ": cannot read '" + path("") + "': Is a directory\n"}));
    }
    EXPECT_EQ(file, nullptr);
}

TEST_F(VpdWrite, TheFileMayBeQuotedAndNamedByTheLongOption)
{
    const Bytes data = pattern(4);
    for (const std::string& name : {"\"" + fileOf(data) + "\"", "\"" + fileOf(data)}) {
        machine.expect(miSend(request(0, data, 4), 260));
        EXPECT_EQ(command({"vpdwrite", "-o", "0", "-l", "4", "--outputfile", name}).result, 0);
    }
    EXPECT_EQ(command({"vpdwrite", "-o", "0", "-l", "4", "--inputfile", fileOf(data)}),
              (Outcome{0, "", "", "vpdwrite: unrecognized option `--inputfile'\n"}));
}

TEST_F(VpdWrite, AFailurePrintsItsTextAndIsReturned)
{
    const Bytes data = pattern(4);
    machine.expect(miSend(request(0, data, 4), 260).status(0x706));
    EXPECT_EQ(command({"vpdwrite", "-o", "0", "-l", "4", "-f", fileOf(data)}),
              (Outcome{0x706, shown(data) + "MI send for VPD write failed.\n",
                       range("0x0", "0x4") + rows(data) + "Invalid HD ID (Status Code: 0x706)\n"}));
    machine.expect(miSend(request(0, data, 4), 260).error(5));
    EXPECT_EQ(command({"mi_passthruwrite", "-o", "0", "-l", "4", "-f", fileOf(data)}),
              (Outcome{-1, "MI send for VPD write failed.\n",
                       range("0x0", "0x4") + rows(data, 0, "0x%x ") + "Unknown error (Status Code: 0xffffffff)\n"}));
    EXPECT_EQ(file, nullptr);
}

TEST_F(VpdWrite, OptionsAreChecked)
{
    const std::string in = fileOf(pattern(4));
    for (const std::string word : {"vpdwrite", "mi_passthruwrite"}) {
        EXPECT_EQ(command({word, "-o", "x", "-h"}), (Outcome{0, "-o: Invalid offset value\n"}));
        EXPECT_EQ(command({word, "-l", "x", "-h"}), (Outcome{0, "-l: Invalid data length value\n"}));
        EXPECT_EQ(command({word, "-l", "8", "-f", in}), (Outcome{0, word + ": option -o is required\n"}));
        EXPECT_EQ(command({word, "-o", "8", "-f", in}), (Outcome{0, word + ": option -l is required\n"}));
        EXPECT_EQ(command({word, "-o", "8", "-l", "8"}), (Outcome{0, word + ": option -f is required\n"}));
        EXPECT_EQ(command({word, "-f", path("none")}), (Outcome{0, word + ": option -o is required\n"}));
        EXPECT_EQ(command({word, "-o", "0", "-o", "0"}), kDuplicate);
        EXPECT_EQ(command({word, "-l", "0", "-l", "0"}), kDuplicate);
        EXPECT_EQ(command({word, "-f", in, "-f", in}), kDuplicate);
        EXPECT_EQ(command({word, "-z"}), (Outcome{0, "", "", word + ": illegal option -- z\n"}));
    }
    EXPECT_EQ(file, nullptr);
}

}  // namespace
