// A way in: where calls come from and go back to.
#pragma once

namespace qrx::sim {

class Channel {
public:
    Channel() = default;
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;
    virtual ~Channel() = default;

    // Readable (poll) when a call waits.
    [[nodiscard]] virtual int descriptor() const = 0;
    // Answers what waits, one call at least if there is one. Call it only when the descriptor is readable.
    virtual void serve() = 0;
    // True when no process is left that could call.
    [[nodiscard]] virtual bool deserted() = 0;
};

}  // namespace qrx::sim
