#include "sim/transport/descriptor_cache.h"

#include <fcntl.h>
#include <linux/kcmp.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>

namespace qrx::sim {
namespace {

// Our own descriptor of the caller's open file, or an empty one where the kernel doesn't give it.
UniqueFd share(pid_t pid, int fd)
{
    UniqueFd process(static_cast<int>(syscall(SYS_pidfd_open, pid, 0)));
    if (!process) {
        constexpr unsigned kThread = O_EXCL;  // for one that does not lead its process, where the kernel has it
        process.reset(static_cast<int>(syscall(SYS_pidfd_open, pid, kThread)));
    }
    return UniqueFd(process ? static_cast<int>(syscall(SYS_pidfd_getfd, process.get(), fd, 0)) : -1);
}

}  // namespace

std::optional<Node> DescriptorCache::find(const Caller& caller, int fd)
{
    static const pid_t own = getpid();
    const auto known =
        std::ranges::find_if(entries_, [&](const Entry& entry) { return entry.fd == fd && entry.pid == caller.pid(); });
    if (known != entries_.end() && syscall(SYS_kcmp, own, known->pid, KCMP_FILE, known->kept.get(), fd) == 0) {
        return known->node;
    }
    const std::optional<FileIdentity> identity = caller.identity(fd);
    const std::optional<Node> node = identity ? files_.find(*identity) : std::nullopt;
    if (!node) {
        return std::nullopt;
    }
    UniqueFd kept = share(caller.pid(), fd);
    const std::optional<FileIdentity> kept_identity = kept ? identity_of(kept.get()) : std::nullopt;
    if (kept_identity == identity) {  // the caller's other threads may have changed it in between
        Entry& entry = known != entries_.end() ? *known : entries_.at(next_++ % entries_.size());
        entry = {caller.pid(), fd, std::move(kept), *node};
    }
    return node;
}

}  // namespace qrx::sim
