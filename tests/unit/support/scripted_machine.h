// A machine whose controllers follow a script: the commands a test expects, in order, each with its answer.
//
//     ScriptedMachine machine;
//     machine.addController({.path = "/dev/nvme3", .bdf = "03:00.00"});            // slot 0
//     machine.expect(Command::vendor(0x00E0).flag(0x5001).receives(4096).data(envelope(info)));
//     machine.expect(Command::admin(6, 0, {1}).receives(4096).on(1).status(2));     // on slot 1
//
// Every field of a command is compared. A command that differs or comes too much fails the test at once and gets
// status 1; one that is still waited for at the end fails it then.
#pragma once

#include <array>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "api/src/device/common/Device.h"
#include "api/src/interface/wire/command.h"
#include "tests/unit/support/bytes.h"

namespace qrx::test {

enum class Road { kAdmin, kNvm, kPassthru };  // sendCommand, sendNVM, sendPassthruAdmin

// One command with everything that a device sees of it, and the answer.
struct Command {
    // sendCommand with `cdw` as CDW10 onward.
    static Command admin(QRX_U8 opcode, QRX_U32 nsid = 0, std::vector<QRX_U32> cdw = {});
    // sendNVM, in the same form.
    static Command nvm(QRX_U8 opcode, QRX_U32 nsid = 0, std::vector<QRX_U32> cdw = {});
    // sendPassthruAdmin of a record whose words are all 0 but CDW0.
    static Command passthru(QRX_U32 cdw0);
    // The same with CDW0 226 and CDW12 given.
    static Command vendor(QRX_U32 cdw12);

    // What is expected.
    Command word(std::size_t index, QRX_U32 value) &&;  // CDW[index], sendPassthruAdmin only
    Command flag(QRX_U16 cdw_flag) &&;                  // cdw_flag, sendPassthruAdmin only
    Command sends(Bytes data) &&;                       // the data to the device, whole; its size is the length
    Command receives(std::size_t length) &&;            // the length of the buffer for the answer
    Command carries(Bytes data) &&;                     // what that buffer begins with when the command is sent
    Command wantsResult() &&;                           // a place for Completion Dword 0 is given
    Command on(unsigned slot) &&;                       // slot of the device table, 0 by default

    // The answer. `data` goes into the buffer as far as it fits; the rest of the buffer stays as it was.
    Command status(QRX_U32 value) &&;
    Command data(Bytes bytes) &&;
    Command result(QRX_U32 dword0) &&;  // implies wantsResult
    Command error(int error) &&;        // the driver fails: status -1 and this errno

    [[nodiscard]] std::string describe() const;

    Road road = Road::kPassthru;
    unsigned slot = 0;
    QRX_U8 opcode = 0;                // sendCommand and sendNVM
    QRX_U32 nsid = 0;                 // sendCommand and sendNVM
    std::vector<QRX_U32> cdw;         // sendCommand and sendNVM
    std::array<QRX_U32, 18> words{};  // sendPassthruAdmin
    QRX_U16 cdw_flag = 0;             // sendPassthruAdmin
    Bytes in;
    std::size_t out_length = 0;
    std::optional<Bytes> out_before;  // not compared when empty
    bool params = false;

    QRX_U32 reply_status = 0;
    QRX_U32 reply_result = 0;
    Bytes reply_data;
    int reply_errno = 0;
};

// What a controller is to discovery.
struct Identity {
    std::string path = "/dev/nvme0";
    std::string bdf = "03:00.00";
    std::string subnqn = {};  // as given, without padding
    int slot_id = -1;
};

class ScriptedMachine {
public:
    ScriptedMachine();   // empties the device table
    ~ScriptedMachine();  // reports what is still waited for, and empties the table again
    ScriptedMachine(const ScriptedMachine&) = delete;
    ScriptedMachine& operator=(const ScriptedMachine&) = delete;

    // Puts a controller into the next slot: a pair device over a scripted NVMe device. Returns the slot.
    unsigned addController(const Identity& identity = {});
    // Appends to the script.
    void expect(Command command);
    // Fails the test if commands are still waited for, and forgets them.
    void verify();
    // Forgets what is still waited for.
    void clear() { script_.clear(); }

    // A scripted NVMe device that stands in no slot. Commands to it carry `slot`. Freed by its closeHandle.
    PDevice makeDevice(unsigned slot);

    // One command as a device got it, answered by the script.
    QRX_U32 carryOut(const Command& got, void* out_data, QRX_U32* params);
    // How many of its devices have been closed.
    [[nodiscard]] int closed() const { return *closed_; }

private:
    std::deque<Command> script_;
    std::shared_ptr<int> closed_ = std::make_shared<int>(0);
};

}  // namespace qrx::test
