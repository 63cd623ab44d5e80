#include "tests/unit/support/scripted_machine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <sstream>

#include "api/src/device/common/DeviceManagement.h"
#include "api/src/device/common/PairCMDDevice.h"

namespace qrx::test {
namespace {

struct ScriptedDevice : Device {
    ScriptedMachine* machine = nullptr;
    std::shared_ptr<int> closed;
    unsigned slot = 0;
};

ScriptedDevice& scripted(PDevice device)
{
    return *static_cast<ScriptedDevice*>(device);
}

Bytes copyOf(const void* data, std::size_t length)
{
    EXPECT_TRUE(data != nullptr || length == 0) << "a device refuses a length without data";
    if (data == nullptr || length == 0) {
        return {};
    }
    Bytes bytes(length);
    std::memcpy(bytes.data(), data, length);
    return bytes;
}

QRX_U32 plainCommand(Road road, PDevice _this, QRX_U8 opc_code, QRX_U32 name_space, const QRX_U32* cmd,
                     QRX_U8 cmd_length, const void* in_data, QRX_U32 in_data_length, void* out_data,
                     QRX_U32 out_data_length)
{
    Command got;
    got.road = road;
    got.slot = scripted(_this).slot;
    got.opcode = opc_code;
    got.nsid = name_space;
    got.cdw.assign(cmd, cmd + cmd_length);
    got.in = copyOf(in_data, in_data_length);
    got.out_length = out_data_length;
    got.out_before = copyOf(out_data, out_data_length);
    return scripted(_this).machine->carryOut(got, out_data, nullptr);
}

QRX_U32 sendCommand(PDevice _this, QRX_U8 opc_code, QRX_U32 name_space, QRX_U32* cmd, QRX_U8 cmd_length, void* in_data,
                    QRX_U16 in_data_length, void* out_data, QRX_U16 out_data_length)
{
    return plainCommand(Road::kAdmin, _this, opc_code, name_space, cmd, cmd_length, in_data, in_data_length, out_data,
                        out_data_length);
}

QRX_U32 sendNVM(PDevice _this, QRX_U8 opc_code, QRX_U32 name_space, QRX_U32* cmd, QRX_U8 cmd_length, void* in_data,
                QRX_U32 in_data_length, void* out_data, QRX_U32 out_data_length)
{
    return plainCommand(Road::kNvm, _this, opc_code, name_space, cmd, cmd_length, in_data, in_data_length, out_data,
                        out_data_length);
}

QRX_U32 sendPassthruAdmin(PDevice _this, void* pCmd, void* in_data, QRX_U16 in_data_length, void* out_data,
                          QRX_U16 out_data_length, QRX_U32* params)
{
    _qrx_admin_command_format record;
    std::memcpy(&record, pCmd, sizeof(record));
    Command got;
    got.road = Road::kPassthru;
    got.slot = scripted(_this).slot;
    std::copy(std::begin(record.CDW), std::end(record.CDW), got.words.begin());
    got.cdw_flag = record.cdw_flag;
    got.in = copyOf(in_data, in_data_length);
    got.out_length = out_data_length;
    got.out_before = copyOf(out_data, out_data_length);
    got.params = params != nullptr;
    return scripted(_this).machine->carryOut(got, out_data, params);
}

void closeScripted(PDevice _this)
{
    ++*scripted(_this).closed;
    delete &scripted(_this);
}

PDevice ownNvmeDevice(PDevice _this)
{
    return _this;
}

void putText(char* field, std::size_t size, const std::string& text)
{
    std::snprintf(field, size, "%s", text.c_str());
}

void describeBytes(std::ostream& out, const char* name, const Bytes& bytes)
{
    constexpr std::size_t kShown = 32;
    out << "\n  " << name << " " << bytes.size() << " bytes";
    char text[4];
    for (std::size_t i = 0; i < std::min(bytes.size(), kShown); ++i) {
        std::snprintf(text, sizeof(text), " %02x", bytes[i]);
        out << text;
    }
    out << (bytes.size() > kShown ? " ..." : "");
}

// Empty when the buffers agree in the first `expected.size()` bytes.
std::string difference(const char* name, const Bytes& expected, const Bytes& got)
{
    for (std::size_t i = 0; i < expected.size(); ++i) {
        if (i >= got.size() || expected[i] != got[i]) {
            std::ostringstream out;
            out << "\n" << name << " differs first at byte " << i << ": expected " << int{expected[i]} << ", got ";
            out << (i < got.size() ? std::to_string(got[i]) : "the end");
            return out.str();
        }
    }
    return {};
}

std::string differences(const Command& expected, const Command& got)
{
    std::ostringstream out;
    if (expected.road != got.road || expected.slot != got.slot || expected.opcode != got.opcode ||
        expected.nsid != got.nsid || expected.cdw != got.cdw || expected.words != got.words ||
        expected.cdw_flag != got.cdw_flag) {
        out << "\nthe command differs";
    }
    if (expected.out_length != got.out_length) {
        out << "\nthe length of the answer differs";
    }
    if (expected.params != got.params) {
        out << "\nCompletion Dword 0 is " << (got.params ? "" : "not ") << "wanted";
    }
    if (expected.in.size() != got.in.size()) {
        out << "\nthe length of the data to the device differs";
    } else {
        out << difference("the data to the device", expected.in, got.in);
    }
    if (expected.out_before) {
        out << difference("the buffer for the answer", *expected.out_before, *got.out_before);
    }
    return out.str();
}

}  // namespace

Command Command::admin(QRX_U8 opcode, QRX_U32 nsid, std::vector<QRX_U32> cdw)
{
    Command command;
    command.road = Road::kAdmin;
    command.opcode = opcode;
    command.nsid = nsid;
    command.cdw = std::move(cdw);
    return command;
}

Command Command::nvm(QRX_U8 opcode, QRX_U32 nsid, std::vector<QRX_U32> cdw)
{
    Command command = admin(opcode, nsid, std::move(cdw));
    command.road = Road::kNvm;
    return command;
}

Command Command::passthru(QRX_U32 cdw0)
{
    return Command{}.word(0, cdw0);
}

Command Command::vendor(QRX_U32 cdw12)
{
    return passthru(kVendorRead).word(12, cdw12);
}

Command Command::word(std::size_t index, QRX_U32 value) &&
{
    words.at(index) = value;
    return std::move(*this);
}

Command Command::flag(QRX_U16 value) &&
{
    cdw_flag = value;
    return std::move(*this);
}

Command Command::sends(Bytes bytes) &&
{
    in = std::move(bytes);
    return std::move(*this);
}

Command Command::receives(std::size_t length) &&
{
    out_length = length;
    return std::move(*this);
}

Command Command::carries(Bytes bytes) &&
{
    out_before = std::move(bytes);
    return std::move(*this);
}

Command Command::wantsResult() &&
{
    params = true;
    return std::move(*this);
}

Command Command::on(unsigned wanted_slot) &&
{
    slot = wanted_slot;
    return std::move(*this);
}

Command Command::status(QRX_U32 value) &&
{
    reply_status = value;
    return std::move(*this);
}

Command Command::data(Bytes bytes) &&
{
    reply_data = std::move(bytes);
    return std::move(*this);
}

Command Command::result(QRX_U32 dword0) &&
{
    reply_result = dword0;
    return std::move(*this).wantsResult();
}

Command Command::error(int value) &&
{
    reply_errno = value;
    return std::move(*this).status(0xFFFFFFFF);
}

std::string Command::describe() const
{
    std::ostringstream out;
    char text[48];
    out << "slot " << slot << ", ";
    if (road == Road::kPassthru) {
        out << "sendPassthruAdmin";
        for (std::size_t i = 0; i < words.size(); ++i) {
            if (words[i] != 0) {
                std::snprintf(text, sizeof(text), " CDW%zu=0x%x", i, words[i]);
                out << text;
            }
        }
        std::snprintf(text, sizeof(text), " cdw_flag=0x%x", cdw_flag);
        out << text << (params ? ", wants Completion Dword 0" : "");
    } else {
        std::snprintf(text, sizeof(text), " opcode %d nsid 0x%x", opcode, nsid);
        out << (road == Road::kAdmin ? "sendCommand" : "sendNVM") << text;
        for (std::size_t i = 0; i < cdw.size(); ++i) {
            std::snprintf(text, sizeof(text), " CDW%zu=0x%x", 10 + i, cdw[i]);
            out << text;
        }
    }
    describeBytes(out, "to the device:", in);
    out << "\n  answer: " << out_length << " bytes";
    if (out_before) {
        describeBytes(out, "in its buffer:", *out_before);
    }
    return out.str();
}

ScriptedMachine::ScriptedMachine()
{
    PDeviceManagement table = GetDeviceManagementInstance();
    table->Final(table);
}

ScriptedMachine::~ScriptedMachine()
{
    verify();
    PDeviceManagement table = GetDeviceManagementInstance();
    table->Final(table);
}

PDevice ScriptedMachine::makeDevice(unsigned slot)
{
    auto* device = new ScriptedDevice{};
    device->sendCommand = sendCommand;
    device->sendNVM = sendNVM;
    device->sendPassthruAdmin = sendPassthruAdmin;
    device->closeHandle = closeScripted;
    device->getNVMEDevice = ownNvmeDevice;
    device->machine = this;
    device->closed = closed_;
    device->slot = slot;
    return device;
}

unsigned ScriptedMachine::addController(const Identity& identity)
{
    PDeviceManagement table = GetDeviceManagementInstance();
    const unsigned slot = table->m_count;
    PDevice front = CreatePairCMDDeviceInstance(makeDevice(slot));
    putText(front->bus_dev_fun, sizeof(front->bus_dev_fun), identity.bdf);
    putText(front->device_path, sizeof(front->device_path), identity.path);
    putText(front->subnqn, sizeof(front->subnqn), identity.subnqn);
    front->slot_id = identity.slot_id;
    table->m_devs[slot] = front;
    ++table->m_count;
    return slot;
}

void ScriptedMachine::expect(Command command)
{
    script_.push_back(std::move(command));
}

void ScriptedMachine::verify()
{
    for (const Command& command : script_) {
        ADD_FAILURE() << "this command never came: " << command.describe();
    }
    script_.clear();
}

QRX_U32 ScriptedMachine::carryOut(const Command& got, void* out_data, QRX_U32* params)
{
    constexpr QRX_U32 kUnexpected = 1;
    if (script_.empty()) {
        ADD_FAILURE() << "no command is expected, but there came: " << got.describe();
        return kUnexpected;
    }
    const Command expected = std::move(script_.front());
    script_.pop_front();
    const std::string differs = differences(expected, got);
    if (!differs.empty()) {
        ADD_FAILURE() << "expected: " << expected.describe() << "\ngot: " << got.describe() << differs;
        return kUnexpected;
    }
    if (params != nullptr) {
        *params = expected.reply_result;
    }
    // As the NVMe device does it: sendCommand leaves the buffer alone when the command fails.
    const bool delivers = expected.road != Road::kAdmin || expected.reply_status == 0;
    const std::size_t length = std::min(expected.reply_data.size(), got.out_length);
    if (delivers && length != 0) {
        std::memcpy(out_data, expected.reply_data.data(), length);
    }
    if (expected.reply_errno != 0) {
        errno = expected.reply_errno;
    }
    return expected.reply_status;
}

}  // namespace qrx::test
