// `delete`.
#include <cerrno>

#include "api/src/interface/wire/bga.h"
#include "tests/unit/cli/system_disk.h"
#include "tests/unit/cli/unlisted/virtual_disk/fixture.h"
#include "tests/unit/support/libc.h"

namespace {

using namespace qrx::test;

const std::string kQuestion = "Are you sure you want to delete this virtual disk? (y or n)\n";
const std::string kAgain = "Please input y or n.\n";

const std::string kPage =
    "Description:For delete VD that is not in use.\n"
    "delete -i <vd id> [-o <vd>] [--waiveconfirmation] [-h]\n"
    "\n"
    "Options:\n"
    "    -o, --object <vd>\n"
    "        (DEFAULT:vd) delete a virtual disk.\n"
    "    -i, --id <vd id>\n"
    "        VD id.\n"
    "    --waiveconfirmation\n"
    "        Do not ask whether the VD is to be deleted.\n"
    "    -h, --help\n"
    "\n"
    "Examples:\n"
    "    delete -i 0\n"
    "    Delete VD id 0.\n"
    "\n"
    "    delete -o vd -i 0 --waiveconfirmation\n"
    "    Delete VD id 0 without a question.\n"
    "\n";

class Delete : public VirtualDiskTest {
protected:
    void expectActivity(QRX_U16 id, QRX_U8 status = QRX_NVME_BGA_STATUS_NONE, QRX_U8 cmd_status = 0)
    {
        NVME_BGA_REQUEST answer{};
        answer.data = {0, QRX_NVME_BGA_TYPE_VD_REBUILD, static_cast<QRX_U8>(id), 50, status, {}};
        pair.expect({227, 2}, one(id), bytesOf(answer), cmd_status);
    }
    // What the guard reads: one namespace on VD `vd`.
    void expectGuard(QRX_U16 vd)
    {
        current().MaxNS = 1;
        machine.expect(page(0x00E5, 0x1001).data(envelope(namespaceOf(vd, 0x37, kNsValid))));
        machine.expect(page(0x00E0, 0x5001).data(envelope(current())));
    }
    void expectDelete(QRX_U16 id, QRX_U8 cmd_status = 0)
    {
        pair.expect({226, 4}, {static_cast<QRX_U8>(id & 0xFF), static_cast<QRX_U8>(id >> 8), 0, 0, 0, 0, 0, 0}, {},
                    cmd_status);
    }
    // All of it, on a controller with two more VDs.
    void expectAll(QRX_U16 id)
    {
        expectVd(id);
        expectActivity(id);
        expectGuard(9);
        expectNotification({}, 3);
        expectDelete(id);
    }
    // Without a question.
    static Outcome remove(const std::string& id) { return unlisted({"delete", "-i", id, "--waiveconfirmation"}); }
    static Outcome ask(const std::string& id) { return unlisted({"delete", "-i", id}); }
    static Outcome deleted(const std::string& id, const std::string& before = "")
    {
        return {0, before + "Delete VD " + id + " successfully.\n"};
    }
};

TEST_F(Delete, Help)
{
    EXPECT_EQ(unlisted({"delete"}), (Outcome{1, kPage}));
    EXPECT_EQ(unlisted({"delete", "-h"}), (Outcome{0, kPage}));
    EXPECT_EQ(unlisted({"delete", "--waiveconfirmation", "--help"}), (Outcome{0, kPage}));
}

TEST_F(Delete, DeletesWithoutAQuestionWhereItIsWaived)
{
    expectAll(4);
    EXPECT_EQ(remove("4"), deleted("4"));
    expectAll(254);
    EXPECT_EQ(
        unlisted({"delete", "--waiveconfirmation", "--waiveconfirmation", "--object=VD", "--id=254", "--output", "x"}),
        deleted("254"));
    expectAll(0);
    EXPECT_EQ(unlisted({"delete", "--waive", "-o", "ld", "-i0"}), deleted("0"));
}

TEST_F(Delete, AsksFirst)
{
    for (const char* answer : {"y\n", "Y\n", "yes\n", "y"}) {
        const Input input(answer);
        expectAll(4);
        EXPECT_EQ(ask("4"), deleted("4", kQuestion)) << answer;
    }
    for (const char* answer : {"n\n", "N\n", "no\n", "never mind"}) {
        const Input input(answer);
        expectVd(4);
        EXPECT_EQ(ask("4"), (Outcome{0, kQuestion})) << answer;
    }
}

TEST_F(Delete, AsksAgainUntilItIsAnswered)
{
    const Input input("maybe\n\n yes\nyes\nnext line\n");
    expectAll(4);
    EXPECT_EQ(ask("4"), deleted("4", kQuestion + kAgain + kAgain + kAgain));
    EXPECT_EQ(Input::rest(), "next line\n");
}

TEST_F(Delete, TheEndOfInputDeletesNothing)
{
    const Input input("what\n");
    expectVd(4);
    EXPECT_EQ(ask("4"), (Outcome{1, kQuestion + kAgain + "No answer, the virtual disk is not deleted.\n"}));
}

TEST_F(Delete, AnInterruptedReadOfTheAnswerIsRepeated)
{
    const std::string typed = "y\n";
    std::size_t calls = 0;
    Libc libc;
    libc.onRead = [&](int, void* key, std::size_t) -> ssize_t {
        if (++calls % 2 != 0) {
            errno = EINTR;
            return -1;
        }
        *static_cast<char*>(key) = typed.at(calls / 2 - 1);
        return 1;
    };
    expectAll(4);
    EXPECT_EQ(ask("4"), deleted("4", kQuestion));
    EXPECT_EQ(calls, 4U);
}

TEST_F(Delete, AnAnswerThatCannotBeReadDeletesNothing)
{
    Libc libc;
    libc.onRead = [](int, void*, std::size_t) -> ssize_t {
        errno = EIO;
        return -1;
    };
    expectVd(4);
    EXPECT_EQ(ask("4"), (Outcome{1, kQuestion + "No answer, the virtual disk is not deleted.\n"}));
}

TEST_F(Delete, BadValues)
{
    for (const char* id : {"255", "256", "65536", "2147483647"}) {
        EXPECT_EQ(remove(id), (Outcome{1, std::string("-i : invalid id ") + id + "\n"}));
    }
    EXPECT_EQ(remove("4294967296"), (Outcome{1, "-i : invalid id 2147483647\n"}));
    EXPECT_EQ(remove("1x"), (Outcome{1, "-i : invalid id '1x'\n"}));
    EXPECT_EQ(remove("-1"), (Outcome{1, "-i : invalid id '-1'\n"}));
    EXPECT_EQ(unlisted({"delete", "-o", "pd"}), (Outcome{1, "-o : invalid object 'pd'\n"}));
    EXPECT_EQ(unlisted({"delete", "-z"}), (Outcome{1, "", "", "delete: illegal option -- z\n"}));
}

TEST_F(Delete, OneBasedIds)
{
    g_oneBaseMode = 1;
    EXPECT_EQ(remove("0"), (Outcome{1, "-i : invalid id '0'\n"}));
    EXPECT_EQ(remove("256"), (Outcome{1, "-i : invalid id 256\n"}));
    expectAll(254);
    EXPECT_EQ(remove("255"), deleted("255"));
    expectVd(0, 7);
    EXPECT_EQ(remove("1"), (Outcome{1, "\nUnable to get info of VD 1.\n"}));
    expectVd(0);
    expectActivity(0, QRX_NVME_BGA_STATUS_RUNNING);
    EXPECT_EQ(remove("1"), (Outcome{1, "\nUnable to delete VD 1. Because BGA is running.\n"}));
    const SystemDisk disk(machine);
    expectVd(0);
    expectActivity(0);
    expectGuard(0);
    EXPECT_EQ(remove("1"), (Outcome{1, "\nUnable to delete VD 1. Because it is a OS volume.\n"}));
}

TEST_F(Delete, TooManyAndTooFewOptions)
{
    EXPECT_EQ(unlisted({"delete", "-i", "0", "-i", "1"}), kDuplicate);
    EXPECT_EQ(unlisted({"delete", "-o", "vd", "-o", "vd"}), kDuplicate);
    const Outcome required{1, "delete: option -i is required\n"};
    EXPECT_EQ(unlisted({"delete", "-o", "vd"}), required);
    runAsJbof();
    EXPECT_EQ(unlisted({"delete", "--waiveconfirmation"}), required);
}

TEST_F(Delete, AControllerWithoutRaidRefusesWithTheNumberOfWords)
{
    runAsJbof();
    EXPECT_EQ(ask("0"), (Outcome{3, kNoRaid.stream}));
    EXPECT_EQ(unlisted({"delete", "-o", "vd", "-i", "0", "--waiveconfirmation"}), (Outcome{6, kNoRaid.stream}));
}

TEST_F(Delete, AVdThatDoesNotAnswerIsNotAskedAbout)
{
    expectVd(4, 7);
    EXPECT_EQ(ask("4"), (Outcome{1, "\nUnable to get info of VD 4.\n"}));
}

TEST_F(Delete, ABusyVdIsSpared)
{
    const Input input("y\n");
    expectVd(4);
    expectActivity(4, QRX_NVME_BGA_STATUS_RUNNING);
    EXPECT_EQ(ask("4"), (Outcome{1, kQuestion + "\nUnable to delete VD 4. Because BGA is running.\n"}));
}

TEST_F(Delete, APausedOrUnknownActivityIsTheFirmwaresToJudge)
{
    for (const bool known : {true, false}) {
        expectVd(4);
        expectActivity(4, known ? QRX_NVME_BGA_STATUS_PAUSE : QRX_NVME_BGA_STATUS_RUNNING, known ? 0 : 9);
        expectGuard(9);
        expectNotification();
        expectDelete(4);
        EXPECT_EQ(remove("4"), deleted("4"));
    }
}

TEST_F(Delete, AVdOfTheRunningSystemIsSpared)
{
    const SystemDisk disk(machine);
    expectVd(4);
    expectActivity(4);
    expectGuard(4);
    EXPECT_EQ(remove("4"), (Outcome{1, "\nUnable to delete VD 4. Because it is a OS volume.\n"}));
}

TEST_F(Delete, ASystemThatCannotBeLookedForIsNoReasonToRefuse)
{
    const SystemDisk disk(machine);
    expectVd(4);
    expectActivity(4);
    machine.expect(page(0x00E5, 0x1001).status(0x701));
    expectNotification();
    expectDelete(4);
    EXPECT_EQ(remove("4"), (Outcome{0, "Delete VD 4 successfully.\n", "Failed (Status Code: 0x701)\n"}));
}

TEST_F(Delete, TheNamespacesOfTheLastVdAreDetached)
{
    expectVd(4);
    expectActivity(4);
    expectGuard(9);
    expectNotification({namespaceOf(4, 5, kNsWaitsForAttach), namespaceOf(4, 6, kNsActive | kNsValid)}, 1);
    machine.expect(attachment(6, 1));
    expectDelete(4);
    EXPECT_EQ(remove("4"), deleted("4"));
}

TEST_F(Delete, AFailureGivesItsStatus)
{
    expectVd(4);
    expectActivity(4);
    expectGuard(9);
    expectNotification();
    expectDelete(4, 66);
    EXPECT_EQ(remove("4"), (Outcome{66, "Failed to delete VD 4.\n"}));
}

}  // namespace
