#include "api/src/device/common/PairCMDDevice.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/unit/support/capture.h"
#include "tests/unit/support/libc.h"
#include "tests/unit/support/scripted_machine.h"

namespace {

using namespace qrx::test;

constexpr QRX_U32 kSign = 0x585251;

// The send frame: head, request record, and what stood in the page before.
Bytes frame(QRX_U8 words, const std::vector<QRX_U16>& vendor_cmd, const Bytes& record, Bytes before = Bytes(4096))
{
    std::fill_n(before.begin(), 17, QRX_U8{0});
    NVMESendData head{};
    std::memcpy(head.sign, "QRX", 4);
    head.cmd_length = words;
    head.data_offset = 16;
    head.data_length = static_cast<QRX_U16>(record.size());
    std::copy(vendor_cmd.begin(), vendor_cmd.end(), head.vendor_cmd);
    const Bytes bytes = bytesOf(head);
    std::copy(bytes.begin(), bytes.end(), before.begin());
    std::copy(record.begin(), record.end(), before.begin() + 16);
    return before;
}

class PairDevice : public testing::Test {
protected:
    PairDevice()
    {
        nvme = machine.makeDevice(0);
        lock.lock = [](PQRXLock self) { self->lockName[0] = static_cast<char>(self->lockName[0] + 1); };
        lock.unlock = [](PQRXLock self) { self->lockName[1] = static_cast<char>(self->lockName[1] + 1); };
        nvme->m_lock = &lock;
        pair = CreatePairCMDDeviceInstance(nvme);
    }
    ~PairDevice() override { pair->closeHandle(pair); }

    static Command half(QRX_U8 code) { return Command::admin(code, 0, {1024, 0, 0, 0, 0, kSign}); }
    int locked() const { return lock.lockName[0]; }
    int unlocked() const { return lock.lockName[1]; }

    ScriptedMachine machine;
    QRXLock lock{};
    PDevice nvme = nullptr;
    PDevice pair = nullptr;
    StdoutCapture out;
};

TEST_F(PairDevice, SendsAFrameAndFetchesTheAnswerUnderTheLock)
{
    QRX_U32 cmd[] = {0xE2, 0x03, 0x1234};
    Bytes request = pattern(624);
    machine.expect(half(251).sends(frame(3, {0xE2, 0x03, 0x1234}, pattern(624))));
    machine.expect(half(252).receives(4096).data(padded(envelope(pattern(100, 7)), 4096, 0xEE)));
    Bytes answer(100);
    EXPECT_EQ(pair->sendCommand(pair, 250, 77, cmd, 3, request.data(), 624, answer.data(), 100), 0U);
    EXPECT_EQ(answer, pattern(100, 7));
    EXPECT_EQ(locked(), 1);
    EXPECT_EQ(unlocked(), 1);
    EXPECT_EQ(out.text(), "");
}

TEST_F(PairDevice, TheOpcodeMakesNoDifference)
{
    for (const QRX_U8 opcode : Bytes{0, 6, 250, 255}) {
        machine.expect(half(251).sends(frame(0, {}, {})));
        machine.expect(half(252).receives(4096).data(envelope(Bytes{})));
        EXPECT_EQ(pair->sendCommand(pair, opcode, 1, nullptr, 0, nullptr, 0, nullptr, 0), 0U);
    }
}

TEST_F(PairDevice, SendsFourWordsAtMostCutTo16Bits)
{
    QRX_U32 cmd[] = {0x1000E3, 0xFFFF0006, 0x12345678, 0xFFFFFFFF, 5, 6};
    machine.expect(half(251).sends(frame(4, {0xE3, 6, 0x5678, 0xFFFF}, {})));
    machine.expect(half(252).receives(4096).data(envelope(Bytes{})));
    EXPECT_EQ(pair->sendCommand(pair, 250, 0, cmd, 6, nullptr, 0, nullptr, 0), 0U);
}

TEST_F(PairDevice, TheRequestBeforeStaysBehindTheNewOne)
{
    Bytes first = pattern(200, 3);
    machine.expect(half(251).sends(frame(0, {}, first)));
    machine.expect(half(252).receives(4096).data(envelope(pattern(4088, 9))));
    EXPECT_EQ(pair->sendCommand(pair, 250, 0, nullptr, 0, first.data(), 200, nullptr, 0), 0U);

    Bytes second = pattern(8, 60);
    machine.expect(half(251).sends(frame(0, {}, second, frame(0, {}, first))));
    Bytes page = envelope(pattern(4088, 9));
    std::fill_n(page.begin(), 9, QRX_U8{0});
    machine.expect(half(252).receives(4096).carries(page).data(envelope(Bytes{})));
    EXPECT_EQ(pair->sendCommand(pair, 250, 0, nullptr, 0, second.data(), 8, nullptr, 0), 0U);
}

TEST_F(PairDevice, ARefusalIsReturnedAndLeavesTheAnswerAlone)
{
    machine.expect(half(251).sends(frame(0, {}, {})));
    machine.expect(half(252).receives(4096).data(envelope(pattern(100), 9)));
    Bytes answer = pattern(16, 80);
    EXPECT_EQ(pair->sendCommand(pair, 250, 0, nullptr, 0, nullptr, 0, answer.data(), 16), 9U);
    EXPECT_EQ(answer, pattern(16, 80));
    EXPECT_EQ(unlocked(), 1);
}

TEST_F(PairDevice, AWrongSignatureIsOneWhateverTheVerdict)
{
    for (const QRX_U8 cmd_status : Bytes{0, 9}) {
        for (std::size_t letter = 0; letter < 3; ++letter) {
            Bytes page = envelope(pattern(100), cmd_status);
            page[letter] ^= 0x20;
            machine.expect(half(251).sends(frame(0, {}, {})));
            machine.expect(half(252).receives(4096).data(page));
            Bytes answer = pattern(16, 80);
            EXPECT_EQ(pair->sendCommand(pair, 250, 0, nullptr, 0, nullptr, 0, answer.data(), 16), 1U);
            EXPECT_EQ(answer, pattern(16, 80));
        }
    }
}

TEST_F(PairDevice, AFailedSendIsNotFollowedByAReceive)
{
    machine.expect(half(251).sends(frame(0, {}, {})).status(0x106));
    EXPECT_EQ(pair->sendCommand(pair, 250, 0, nullptr, 0, nullptr, 0, nullptr, 0), 1U);
    EXPECT_EQ(locked(), 1);
    EXPECT_EQ(unlocked(), 1);
    EXPECT_EQ(out.text(), "");
}

TEST_F(PairDevice, AFailedReceiveIsOne)
{
    machine.expect(half(251).sends(frame(0, {}, {})));
    machine.expect(half(252).receives(4096).error(EIO));
    EXPECT_EQ(pair->sendCommand(pair, 250, 0, nullptr, 0, nullptr, 0, nullptr, 0), 1U);
    EXPECT_EQ(unlocked(), 1);
}

TEST_F(PairDevice, WorksWithoutALock)
{
    nvme->m_lock = nullptr;
    machine.expect(half(251).sends(frame(0, {}, {})));
    machine.expect(half(252).receives(4096).data(envelope(Bytes{})));
    EXPECT_EQ(pair->sendCommand(pair, 250, 0, nullptr, 0, nullptr, 0, nullptr, 0), 0U);
    EXPECT_EQ(locked(), 0);
}

TEST_F(PairDevice, TakesRequestsAndAnswersUpToTheFrame)
{
    Bytes request = pattern(4080);
    Bytes answer(4088);
    machine.expect(half(251).sends(frame(0, {}, pattern(4080))));
    machine.expect(half(252).receives(4096).data(envelope(pattern(4088, 4))));
    EXPECT_EQ(pair->sendCommand(pair, 250, 0, nullptr, 0, request.data(), 4080, answer.data(), 4088), 0U);
    EXPECT_EQ(answer, pattern(4088, 4));
}

TEST_F(PairDevice, RefusesWhatDoesNotFitOrIsMissing)
{
    Bytes large(5000);
    EXPECT_EQ(pair->sendCommand(pair, 250, 0, nullptr, 0, large.data(), 4081, nullptr, 0), 1U);
    EXPECT_EQ(pair->sendCommand(pair, 250, 0, nullptr, 0, nullptr, 0, large.data(), 4089), 1U);
    EXPECT_EQ(pair->sendCommand(pair, 250, 0, nullptr, 1, nullptr, 0, nullptr, 0), 1U);
    EXPECT_EQ(pair->sendCommand(pair, 250, 0, nullptr, 0, nullptr, 1, nullptr, 0), 1U);
    EXPECT_EQ(pair->sendCommand(pair, 250, 0, nullptr, 0, nullptr, 0, nullptr, 1), 1U);
    EXPECT_EQ(pair->sendCommand(nullptr, 250, 0, nullptr, 0, nullptr, 0, nullptr, 0), 1U);
    EXPECT_EQ(locked(), 0);
}

TEST_F(PairDevice, TheOtherRoadsDoNothing)
{
    _qrx_admin_command_format record{};
    EXPECT_EQ(pair->sendNVM(pair, 2, 1, nullptr, 0, nullptr, 0, nullptr, 0), 5U);
    EXPECT_EQ(pair->sendPassthruAdmin(pair, &record, nullptr, 0, nullptr, 0, nullptr), 1U);
    EXPECT_EQ(out.text(), "");
}

TEST_F(PairDevice, OwnsItsNvmeDevice)
{
    EXPECT_EQ(pair->getNVMEDevice(pair), nvme);
    PDevice other = CreatePairCMDDeviceInstance(machine.makeDevice(1));
    other->closeHandle(other);
    EXPECT_EQ(machine.closed(), 1);
}

TEST_F(PairDevice, StartsZeroedAndWithoutAnNvmeDeviceSendsNothing)
{
    PDevice empty = CreatePairCMDDeviceInstance(nullptr);
    EXPECT_EQ(empty->m_lock, nullptr);
    EXPECT_EQ(std::string(empty->subnqn, 256), std::string(256, '\0'));
    EXPECT_EQ(empty->sendCommand(empty, 250, 0, nullptr, 0, nullptr, 0, nullptr, 0), 1U);
    EXPECT_EQ(empty->getNVMEDevice(empty), nullptr);
    empty->closeHandle(empty);
}

TEST(PairDeviceMemory, ShortMemoryGivesNoDevice)
{
    Libc libc;
    libc.failAllocation(1);
    EXPECT_EQ(CreatePairCMDDeviceInstance(nullptr), nullptr);
}

}  // namespace
