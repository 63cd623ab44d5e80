// The controller's host functions as Virtualization Management sees them: the flexible resources of the primary ones
// (the physical functions), those of the secondary ones (the virtual functions), and whether these are online.
#pragma once

#include <array>
#include <vector>

#include "api/src/interface/wire/types.h"
#include "sim/firmware/host.h"

namespace qrx::sim {

struct HostFunction {
    enum Resource : QRX_U8 { kQueues, kInterrupts, kResources };

    QRX_U16 id = 0;
    std::array<QRX_U16, kResources> resources{};  // flexible ones that it has
    std::array<QRX_U16, kResources> wanted{};     // a primary one's from its next reset on
    bool online = false;                          // of a secondary one

    friend bool operator==(const HostFunction&, const HostFunction&) = default;
};

struct HostFunctions {
    static constexpr QRX_U16 kPrimary = 2;         // ids 0 and 1; those behind them are secondary
    static constexpr QRX_U16 kPool = 256;          // flexible resources of a kind that the controller has
    static constexpr QRX_U16 kSecondaryMost = 16;  // of a kind for one secondary function
    static constexpr QRX_U16 kOnlineLeast = 2;     // queues: that for admin commands and one more

    std::vector<HostFunction> changed;  // those that are not as they were delivered, in order of id

    friend bool operator==(const HostFunctions&, const HostFunctions&) = default;

    // Virtualization Management. The result tells how many resources there are now.
    Completion manage(const nvme_admin_cmd& command);
    // A controller level reset: the primary functions get what they are to have.
    void reset();
    [[nodiscard]] HostFunction function(QRX_U16 id) const;

private:
    void store(const HostFunction& function);
    // Resources of a kind that nobody but `besides` has, or is to have.
    [[nodiscard]] QRX_U32 left(HostFunction::Resource kind, QRX_U16 besides) const;
    Completion allocate(HostFunction function, HostFunction::Resource kind, QRX_U32 count);
    Completion assign(HostFunction function, HostFunction::Resource kind, QRX_U32 count);
    Completion switch_on(HostFunction function);
};

}  // namespace qrx::sim
