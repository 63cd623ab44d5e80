// Answers the system calls of the programs that run on a simulated machine: the one piece that all ways in share.
#pragma once

#include <sys/types.h>

#include <array>
#include <cstddef>

#include "api/src/interface/wire/types.h"
#include "sim/firmware/host.h"
#include "sim/transport/call_kind.h"
#include "sim/transport/caller.h"
#include "sim/transport/descriptor_cache.h"
#include "sim/transport/device_files.h"
#include "sim/transport/device_ioctl.h"
#include "sim/transport/machine_view.h"
#include "sim/transport/path_resolver.h"
#include "sim/transport/private_tree.h"
#include "sim/transport/unique_fd.h"

namespace qrx::sim {

struct Call {
    CallKind kind = CallKind::open;
    pid_t pid = 0;  // of the calling thread
    std::array<QRX_U64, 6> arguments{};
};

struct Reply {
    enum class Kind {
        pass_on,     // not ours: the kernel carries it out
        value,       // the call returns `value`
        error,       // it fails with errno `value`
        descriptor,  // it returns a new descriptor of `file` in the caller, with `close_on_exec`
    };

    Kind kind = Kind::pass_on;
    long value = 0;
    UniqueFd file;
    bool close_on_exec = false;
};

class CallServer {
public:
    // Throws std::system_error or std::filesystem::filesystem_error when the files cannot be laid out.
    explicit CallServer(Host& host);

    [[nodiscard]] Reply answer(const Call& call);
    // Tells that the machine may have changed otherwise than by a command.
    void machine_changed() { commands_ran_ = true; }
    [[nodiscard]] const PrivateTree& tree() const { return tree_; }

private:
    [[nodiscard]] Reply open(const Caller& caller, const Call& call);
    [[nodiscard]] Reply stat_descriptor(const Caller& caller, int fd, QRX_U64 address);
    [[nodiscard]] Reply stat_path(const Caller& caller, const Call& call);
    [[nodiscard]] Reply statx_path(const Caller& caller, const Call& call);
    [[nodiscard]] Reply access(const Caller& caller, const Call& call);
    [[nodiscard]] Reply readlink(const Caller& caller, const Call& call);
    [[nodiscard]] Reply xattr(const Caller& caller, const Call& call);
    [[nodiscard]] Reply ioctl(const Caller& caller, const Call& call);

    [[nodiscard]] Reply open_entry(const Resolution& at, int flags);
    // Looks up the path at `address` relative to `dirfd`. Native when it cannot be read: the kernel finds the words.
    [[nodiscard]] Resolution look_up(const Caller& caller, QRX_U64 dirfd, QRX_U64 address, bool follow);
    void refresh();

    Host& host_;
    MachineView view_;
    PrivateTree tree_;
    DeviceFiles devices_;
    DescriptorCache descriptors_{devices_};
    TransferBuffer transfer_;
    bool commands_ran_ = false;  // since the view was last compared
};

}  // namespace qrx::sim
