#include "api/src/device/linux/NVMEDevice.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>

#include "api/src/interface/wire/command.h"
#include "api/src/interface/wire/nvme_ioctl.h"
#include "tests/unit/support/bytes.h"
#include "tests/unit/support/libc.h"

namespace {

using namespace qrx::test;

constexpr QRX_U32 kDriverFailed = 0xFFFFFFFF;

struct CloseDevice {
    void operator()(PDevice device) const { device->closeHandle(device); }
};
using OwnedDevice = std::unique_ptr<Device, CloseDevice>;

// An NVMe device over a driver that keeps what it gets.
class NvmeDevice : public testing::Test {
protected:
    NvmeDevice()
    {
        fd = open("/dev/null", O_RDWR | O_CLOEXEC);
        device.reset(CreateSimpleNVMEDeviceInstance(fd));
        libc.onIoctl = [this](int got_fd, unsigned long got_request, void* argument) {
            ++calls;
            EXPECT_EQ(got_fd, fd);
            request = got_request;
            std::memcpy(&sent, argument, sizeof(sent));
            const std::size_t length = sent.data_len;
            auto* data = reinterpret_cast<QRX_U8*>(sent.addr);
            if (data != nullptr) {
                data_sent.assign(data, data + (whole_page ? 4096 : length));
                std::copy_n(answer.begin(), std::min(answer.size(), whole_page ? 4096 : length), data);
            }
            static_cast<nvme_admin_cmd*>(argument)->result = result;
            errno = EIO;
            return status;
        };
    }

    // The record that is expected on the wire, but for the buffer's address.
    void expectSent(nvme_admin_cmd expected)
    {
        EXPECT_EQ(sent.addr % 4096, 0U);
        EXPECT_NE(sent.addr, 0U);
        expected.addr = sent.addr;
        EXPECT_EQ(bytesOf(sent), bytesOf(expected));
    }

    QRX_U32 send(QRX_U8 opc_code, Bytes* in, Bytes* out)
    {
        return device->sendCommand(device.get(), opc_code, 0, nullptr, 0, in != nullptr ? in->data() : nullptr,
                                   in != nullptr ? static_cast<QRX_U16>(in->size()) : QRX_U16{0},
                                   out != nullptr ? out->data() : nullptr,
                                   out != nullptr ? static_cast<QRX_U16>(out->size()) : QRX_U16{0});
    }

    Libc libc;
    int fd = -1;
    OwnedDevice device;

    int status = 0;
    QRX_U32 result = 0;
    Bytes answer;
    bool whole_page = true;

    int calls = 0;
    unsigned long request = 0;
    nvme_admin_cmd sent{};
    Bytes data_sent;
};

TEST_F(NvmeDevice, SendsEachAdminCommandWithItsOpcodeAndTimeout)
{
    const std::pair<QRX_U8, QRX_U8> opcodes[] = {{2, 0x02},   {6, 0x06},   {13, 0x0D}, {16, 0x10}, {17, 0x11},
                                                 {21, 0x15},  {28, 0x1C},  {29, 0x1D}, {30, 0x1E}, {128, 0x80},
                                                 {199, 0xC7}, {251, 0xCB}, {252, 0xCE}};
    for (const auto& [code, opcode] : opcodes) {
        QRX_U32 cdw[] = {0xA0A0A0A0, 0xB1B1B1B1, 0xC2C2C2C2, 0xD3D3D3D3, 0xE4E4E4E4, 0xF5F5F5F5};
        EXPECT_EQ(device->sendCommand(device.get(), code, 0x12345678, cdw, 6, nullptr, 0, nullptr, 0), 0U);
        EXPECT_EQ(request, 0xc0484e41U);
        nvme_admin_cmd expected{};
        expected.opcode = opcode;
        expected.nsid = 0x12345678;
        expected.cdw10 = 0xA0A0A0A0;
        expected.cdw11 = 0xB1B1B1B1;
        expected.cdw12 = 0xC2C2C2C2;
        expected.cdw13 = 0xD3D3D3D3;
        expected.cdw14 = 0xE4E4E4E4;
        expected.cdw15 = 0xF5F5F5F5;
        expected.timeout_ms = code == 16 ? 160000 : 0;
        expectSent(expected);
    }
    EXPECT_EQ(calls, 13);
}

TEST_F(NvmeDevice, RefusesEveryOtherOpcodeWithoutSendingIt)
{
    const Bytes known = {2, 6, 13, 16, 17, 21, 28, 29, 30, 128, 199, 251, 252};
    for (int code = 0; code < 256; ++code) {
        if (std::find(known.begin(), known.end(), code) == known.end()) {
            EXPECT_EQ(send(static_cast<QRX_U8>(code), nullptr, nullptr), 1U) << code;
        }
    }
    EXPECT_EQ(calls, 0);
}

TEST_F(NvmeDevice, OneWordFillsCdw10Alone)
{
    QRX_U32 cdw[] = {7, 8};
    device->sendCommand(device.get(), 6, 0, cdw, 1, nullptr, 0, nullptr, 0);
    nvme_admin_cmd expected{};
    expected.opcode = 6;
    expected.cdw10 = 7;
    expectSent(expected);
}

TEST_F(NvmeDevice, DataToTheDeviceIsSentFromAZeroedPage)
{
    for (const QRX_U16 length : {QRX_U16{1}, QRX_U16{100}}) {
        Bytes in = pattern(length);
        EXPECT_EQ(send(199, &in, nullptr), 0U);
        nvme_admin_cmd expected{};
        expected.opcode = 0xC7;
        expected.data_len = length;
        expectSent(expected);
        EXPECT_EQ(data_sent, padded(pattern(length), 4096));
    }
}

TEST_F(NvmeDevice, ABufferForTheAnswerIsSentAlongAndFilled)
{
    answer = pattern(4096, 50);
    Bytes out = pattern(200);
    EXPECT_EQ(send(6, nullptr, &out), 0U);
    nvme_admin_cmd expected{};
    expected.opcode = 6;
    expected.data_len = 200;
    expectSent(expected);
    EXPECT_EQ(data_sent, padded(pattern(200), 4096));
    EXPECT_EQ(out, Bytes(answer.begin(), answer.begin() + 200));
}

TEST_F(NvmeDevice, AWholePageTravelsEachWay)
{
    answer = pattern(4096, 50);
    Bytes out = pattern(4096);
    EXPECT_EQ(send(6, nullptr, &out), 0U);
    EXPECT_EQ(sent.data_len, 4096U);
    EXPECT_EQ(data_sent, pattern(4096));
    EXPECT_EQ(out, answer);
}

TEST_F(NvmeDevice, WithBothBuffersTheFirstIsSentAndTheSecondFilled)
{
    answer = pattern(4096, 50);
    Bytes in = pattern(64);
    Bytes out(512);
    EXPECT_EQ(send(30, &in, &out), 0U);
    EXPECT_EQ(sent.data_len, 64U);
    EXPECT_EQ(data_sent, padded(pattern(64), 4096));
    EXPECT_EQ(out, Bytes(answer.begin(), answer.begin() + 512));
}

TEST_F(NvmeDevice, WithoutDataTheAddressStillPointsAtAPage)
{
    EXPECT_EQ(send(6, nullptr, nullptr), 0U);
    nvme_admin_cmd expected{};
    expected.opcode = 6;
    expectSent(expected);
    EXPECT_EQ(data_sent, Bytes(4096));
}

TEST_F(NvmeDevice, AFailureIsReturnedAndLeavesTheBufferAlone)
{
    answer = pattern(4096, 50);
    for (const int failure : {0x2, 0x106, 0x4002, -1}) {
        status = failure;
        Bytes out = pattern(32);
        EXPECT_EQ(send(16, nullptr, &out), static_cast<QRX_U32>(failure));
        EXPECT_EQ(out, pattern(32));
    }
}

TEST_F(NvmeDevice, AFailedFirmwareDownloadAlwaysReadsAsOne)
{
    for (const int failure : {0x106, 0x2, -1}) {
        status = failure;
        EXPECT_EQ(send(17, nullptr, nullptr), 1U);
    }
}

TEST_F(NvmeDevice, AStandardCommandMayCarryMoreThanAPage)
{
    whole_page = false;
    Bytes in = pattern(4168, 3);
    EXPECT_EQ(send(29, &in, nullptr), 0U);
    EXPECT_EQ(sent.data_len, 4168U);
    EXPECT_EQ(sent.addr % 4096, 0U);
    EXPECT_EQ(data_sent, in);
    answer = pattern(8192, 50);
    Bytes out(8192);
    EXPECT_EQ(send(30, nullptr, &out), 0U);
    EXPECT_EQ(sent.data_len, 8192U);
    EXPECT_EQ(out, answer);
}

TEST_F(NvmeDevice, RefusesLengthsAboveTheirLimitInEitherDirection)
{
    Bytes huge(8193);
    EXPECT_EQ(send(6, &huge, nullptr), 1U);
    EXPECT_EQ(send(6, nullptr, &huge), 1U);
    Bytes small(8);
    EXPECT_EQ(send(6, &small, &huge), 1U);
    Bytes large(4097);
    _qrx_admin_command_format record{};
    QRX_U32 dword0 = 77;
    EXPECT_EQ(device->sendPassthruAdmin(device.get(), &record, large.data(), 4097, nullptr, 0, &dword0), 1U);
    EXPECT_EQ(device->sendPassthruAdmin(device.get(), &record, nullptr, 0, large.data(), 65535, &dword0), 1U);
    EXPECT_EQ(dword0, 77U);
    EXPECT_EQ(calls, 0);
}

TEST_F(NvmeDevice, RefusesMissingPointersAndTooManyWords)
{
    QRX_U32 cdw[7] = {};
    _qrx_admin_command_format record{};
    PDevice d = device.get();
    EXPECT_EQ(d->sendCommand(nullptr, 6, 0, cdw, 1, nullptr, 0, nullptr, 0), 1U);
    EXPECT_EQ(d->sendCommand(d, 6, 0, cdw, 1, nullptr, 1, nullptr, 0), 1U);
    EXPECT_EQ(d->sendCommand(d, 6, 0, cdw, 1, nullptr, 0, nullptr, 1), 1U);
    EXPECT_EQ(d->sendCommand(d, 6, 0, nullptr, 1, nullptr, 0, nullptr, 0), 1U);
    EXPECT_EQ(d->sendCommand(d, 6, 0, cdw, 7, nullptr, 0, nullptr, 0), 1U);
    EXPECT_EQ(d->sendNVM(nullptr, 2, 0, cdw, 1, nullptr, 0, nullptr, 0), 1U);
    EXPECT_EQ(d->sendNVM(d, 2, 0, cdw, 7, nullptr, 0, nullptr, 0), 1U);
    EXPECT_EQ(d->sendNVM(d, 2, 0, cdw, 1, nullptr, 0, nullptr, 512), 1U);
    EXPECT_EQ(d->sendNVM(d, 1, 0, cdw, 1, nullptr, 512, nullptr, 0), 1U);
    EXPECT_EQ(d->sendPassthruAdmin(nullptr, &record, nullptr, 0, nullptr, 0, nullptr), 1U);
    EXPECT_EQ(d->sendPassthruAdmin(d, nullptr, nullptr, 0, nullptr, 0, nullptr), 1U);
    EXPECT_EQ(d->sendPassthruAdmin(d, &record, nullptr, 9, nullptr, 0, nullptr), 1U);
    EXPECT_EQ(d->sendPassthruAdmin(d, &record, nullptr, 0, nullptr, 9, nullptr), 1U);
    EXPECT_EQ(calls, 0);
}

TEST_F(NvmeDevice, ACommandNeedsNoMemory)
{
    const Bytes all = pattern(8192);
    for (const std::size_t length : {16U, 4096U, 8192U, 16U}) {
        const Bytes expected(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(length));
        Bytes pages = expected;
        pages.resize(length > 4096 ? 8192 : 4096);
        Bytes seen;
        libc.onIoctl = [&](int, unsigned long, void* argument) {
            auto* command = static_cast<nvme_admin_cmd*>(argument);
            EXPECT_EQ(command->addr % 4096, 0U);
            auto* data = reinterpret_cast<QRX_U8*>(command->addr);
            seen.assign(data, data + pages.size());
            data[0] ^= 0xFF;
            return 0;
        };
        Bytes given = expected;
        libc.failAllocation(1);
        EXPECT_EQ(send(13, &given, nullptr), 0U) << length;
        EXPECT_EQ(seen, pages) << length;
        Bytes got = expected;
        libc.failAllocation(1);
        EXPECT_EQ(send(6, nullptr, &got), 0U) << length;
        EXPECT_EQ(got[0], all[0] ^ 0xFF);
        _qrx_admin_command_format record{};
        got = Bytes(16, 7);
        libc.failAllocation(1);
        EXPECT_EQ(device->sendPassthruAdmin(device.get(), &record, nullptr, 0, got.data(), 16, nullptr), 0U);
        EXPECT_EQ(got[0], 7 ^ 0xFF);
    }
}

_qrx_admin_command_format recordOfDistinctWords()
{
    _qrx_admin_command_format record{};
    for (QRX_U32 i = 0; i < 18; ++i) {
        record.CDW[i] = 0xE2000000 + 0x00010203 * (i + 1);
    }
    record.cdw_flag = 0x5001;
    record.control_id = 0xFFFF;
    return record;
}

nvme_admin_cmd asSent(const _qrx_admin_command_format& record)
{
    nvme_admin_cmd command;
    std::memcpy(&command, record.CDW, sizeof(command));
    command.data_len = 0;
    return command;
}

TEST_F(NvmeDevice, PassthruSendsTheWordsAsTheyAre)
{
    _qrx_admin_command_format record = recordOfDistinctWords();
    result = 0xCAFE0001;
    QRX_U32 dword0 = 0;
    EXPECT_EQ(device->sendPassthruAdmin(device.get(), &record, nullptr, 0, nullptr, 0, &dword0), 0U);
    EXPECT_EQ(request, 0xc0484e41U);
    expectSent(asSent(record));
    EXPECT_EQ(dword0, 0xCAFE0001);
    EXPECT_EQ(bytesOf(record), bytesOf(recordOfDistinctWords()));
}

TEST_F(NvmeDevice, PassthruSendsTheSameBytesWhateverTheFlagWord)
{
    _qrx_admin_command_format record = recordOfDistinctWords();
    record.cdw_flag = 0;
    device->sendPassthruAdmin(device.get(), &record, nullptr, 0, nullptr, 0, nullptr);
    expectSent(asSent(recordOfDistinctWords()));
}

TEST_F(NvmeDevice, PassthruHasNoOpcodeFilter)
{
    for (QRX_U32 opcode = 0; opcode < 256; ++opcode) {
        _qrx_admin_command_format record{};
        record.CDW[0] = opcode;
        EXPECT_EQ(device->sendPassthruAdmin(device.get(), &record, nullptr, 0, nullptr, 0, nullptr), 0U);
        EXPECT_EQ(sent.opcode, opcode);
        EXPECT_EQ(sent.timeout_ms, 0U);
    }
    EXPECT_EQ(calls, 256);
}

TEST_F(NvmeDevice, PassthruSendsItsData)
{
    _qrx_admin_command_format record = recordOfDistinctWords();
    Bytes in = pattern(4096);
    EXPECT_EQ(device->sendPassthruAdmin(device.get(), &record, in.data(), 4096, nullptr, 0, nullptr), 0U);
    nvme_admin_cmd expected = asSent(record);
    expected.data_len = 4096;
    expectSent(expected);
    EXPECT_EQ(data_sent, pattern(4096));
}

TEST_F(NvmeDevice, PassthruFillsTheAnswerEvenWhenTheCommandFails)
{
    answer = pattern(4096, 50);
    for (const int failure : {0, 0x106, 0x7FF, -1}) {
        status = failure;
        result = 0xCAFE0002;
        QRX_U32 dword0 = 0;
        Bytes out = pattern(48);
        _qrx_admin_command_format record{};
        record.CDW[0] = 0x11;  // no special case on this road
        EXPECT_EQ(device->sendPassthruAdmin(device.get(), &record, nullptr, 0, out.data(), 48, &dword0),
                  static_cast<QRX_U32>(failure));
        EXPECT_EQ(data_sent, padded(pattern(48), 4096));
        EXPECT_EQ(out, Bytes(answer.begin(), answer.begin() + 48));
        EXPECT_EQ(dword0, 0xCAFE0002);
    }
}

TEST_F(NvmeDevice, PassthruWithBothBuffersSendsTheFirstAndFillsTheSecond)
{
    answer = pattern(4096, 50);
    Bytes in = pattern(64);
    Bytes out(512);
    _qrx_admin_command_format record{};
    EXPECT_EQ(device->sendPassthruAdmin(device.get(), &record, in.data(), 64, out.data(), 512, nullptr), 0U);
    EXPECT_EQ(sent.data_len, 64U);
    EXPECT_EQ(data_sent, padded(pattern(64), 4096));
    EXPECT_EQ(out, Bytes(answer.begin(), answer.begin() + 512));
}

TEST_F(NvmeDevice, IoCommandsUseTheCallersBufferAndTheirOwnIoctl)
{
    whole_page = false;
    const std::pair<QRX_U8, unsigned long> roads[] = {
        {1, 0x402c4e42}, {2, 0x402c4e42}, {4, 0xc0484e43}, {5, 0x402c4e42}, {8, 0xc0484e43}};
    for (const auto& [opcode, wanted] : roads) {
        Bytes in = pattern(8192);
        QRX_U32 cdw[] = {0xA1, 0xA2, 0xA3};
        EXPECT_EQ(device->sendNVM(device.get(), opcode, 9, cdw, 3, in.data(), 8192, nullptr, 0), 0U);
        EXPECT_EQ(request, wanted);
        nvme_admin_cmd expected{};
        expected.opcode = opcode;
        expected.nsid = 9;
        expected.addr = reinterpret_cast<std::uintptr_t>(in.data());
        expected.data_len = 8192;
        expected.cdw10 = 0xA1;
        expected.cdw11 = 0xA2;
        expected.cdw12 = 0xA3;
        EXPECT_EQ(bytesOf(sent), bytesOf(expected));
    }
}

TEST_F(NvmeDevice, IoCommandsReadIntoTheAnswersBuffer)
{
    whole_page = false;
    answer = pattern(1024, 50);
    Bytes out(1024);
    EXPECT_EQ(device->sendNVM(device.get(), 2, 1, nullptr, 0, nullptr, 0, out.data(), 1024), 0U);
    EXPECT_EQ(sent.addr, reinterpret_cast<std::uintptr_t>(out.data()));
    EXPECT_EQ(sent.data_len, 1024U);
    EXPECT_EQ(out, answer);
    status = 0x281;
    EXPECT_EQ(device->sendNVM(device.get(), 2, 1, nullptr, 0, nullptr, 0, out.data(), 1024), 0x281U);
    status = -1;
    EXPECT_EQ(device->sendNVM(device.get(), 2, 1, nullptr, 0, nullptr, 0, out.data(), 1024), kDriverFailed);
}

TEST_F(NvmeDevice, IoCommandsTakeLengthsOfMoreThanSixteenBits)
{
    whole_page = false;
    Bytes in = pattern(0x20000, 7);
    EXPECT_EQ(device->sendNVM(device.get(), 5, 1, nullptr, 0, in.data(), 0x20000, nullptr, 0), 0U);
    EXPECT_EQ(sent.data_len, 0x20000U);
    EXPECT_EQ(data_sent, in);
}

TEST_F(NvmeDevice, RefusesEveryOtherIoOpcode)
{
    for (int opcode = 0; opcode < 256; ++opcode) {
        if (opcode != 1 && opcode != 2 && opcode != 4 && opcode != 5 && opcode != 8) {
            EXPECT_EQ(device->sendNVM(device.get(), static_cast<QRX_U8>(opcode), 1, nullptr, 0, nullptr, 0, nullptr, 0),
                      1U);
        }
    }
    EXPECT_EQ(calls, 0);
}

TEST_F(NvmeDevice, TellsTheNamespaceOfItsDescriptor)
{
    libc.onIoctl = [this](int got_fd, unsigned long got_request, void*) {
        EXPECT_EQ(got_fd, fd);
        request = got_request;
        return 0x01020304;
    };
    Bytes out = pattern(8);
    EXPECT_EQ(NVMEDevice_Identify_BY_NS(device.get(), out.data(), 4), 0);
    EXPECT_EQ(request, 0x4e40U);
    Bytes expected = pattern(8);
    std::copy_n(Bytes{4, 3, 2, 1}.begin(), 4, expected.begin());
    EXPECT_EQ(out, expected);
    libc.onIoctl = [](int, unsigned long, void*) { return -1; };
    EXPECT_EQ(NVMEDevice_Identify_BY_NS(device.get(), out.data(), 8), 0);
    EXPECT_EQ(Bytes(out.begin(), out.begin() + 4), Bytes(4, 0xFF));
}

TEST_F(NvmeDevice, RefusesToTellTheNamespaceIntoTooLittle)
{
    QRX_U32 value = 7;
    EXPECT_EQ(NVMEDevice_Identify_BY_NS(nullptr, &value, 4), 1);
    EXPECT_EQ(NVMEDevice_Identify_BY_NS(device.get(), nullptr, 4), 1);
    EXPECT_EQ(NVMEDevice_Identify_BY_NS(device.get(), &value, 3), 1);
    EXPECT_EQ(value, 7U);
}

TEST_F(NvmeDevice, IsItsOwnNvmeDeviceWithoutALock)
{
    EXPECT_EQ(device->getNVMEDevice(device.get()), device.get());
    EXPECT_EQ(device->m_lock, nullptr);
}

TEST_F(NvmeDevice, ClosingItClosesItsDescriptor)
{
    libc.closed.clear();
    device.reset();
    EXPECT_EQ(libc.closed, std::vector<int>{fd});
}

std::string lockNameOf(Libc& libc, QRX_U16 index)
{
    std::string name;
    libc.onSemOpen = [&name](const char* given, int) {
        name = given;
        errno = EACCES;
        return static_cast<sem_t*>(SEM_FAILED);
    };
    const OwnedDevice device(CreateNVMEDeviceInstance(open("/dev/null", O_RDWR | O_CLOEXEC), index));
    EXPECT_EQ(device->m_lock->m_handle, nullptr);
    return name;
}

TEST(NvmeDeviceLock, IsNamedByTheTableIndex)
{
    Libc libc;
    EXPECT_EQ(lockNameOf(libc, 0), "qrxd00");
    EXPECT_EQ(lockNameOf(libc, 1), "qrxd01");
    EXPECT_EQ(lockNameOf(libc, 10), "qrxd0:");
    EXPECT_EQ(lockNameOf(libc, 0x0103), "qrxd13");
}

TEST(NvmeDeviceMemory, ShortMemoryGivesNoDevice)
{
    Libc libc;
    libc.failAllocation(1);
    EXPECT_EQ(CreateNVMEDeviceInstance(1, 0), nullptr);
    libc.failAllocation(1);
    EXPECT_EQ(CreateSimpleNVMEDeviceInstance(1), nullptr);
    libc.failAllocation(2);
    const OwnedDevice unlocked(CreateNVMEDeviceInstance(open("/dev/null", O_RDWR | O_CLOEXEC), 0));
    EXPECT_EQ(unlocked->m_lock, nullptr);
}

TEST(AlignedMemory, IsAlignedAndFreedByItsRawPointer)
{
    void* raw = nullptr;
    void* aligned = qx_memalign(4096, 4096, &raw);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(aligned) % 4096, 0U);
    EXPECT_GE(aligned, raw);
    std::memset(aligned, 0xA5, 4096);
    std::free(raw);
    Libc libc;
    libc.failAllocation(1);
    EXPECT_EQ(qx_memalign(4096, 4096, &raw), nullptr);
}

}  // namespace
