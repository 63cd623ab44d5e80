// What goes on beside a program on a simulated machine, between its calls: time, and hands that reach in from outside.
#pragma once

namespace qrx::sim {

class Attendant {
public:
    Attendant() = default;
    Attendant(const Attendant&) = delete;
    Attendant& operator=(const Attendant&) = delete;
    virtual ~Attendant() = default;

    // Readable (poll) when somebody asks for something.
    [[nodiscard]] virtual int descriptor() const = 0;
    // Lets the machine's time catch up. Called before every call is answered.
    virtual void tick() = 0;
    // Answers whoever asks. Call it only when the descriptor is readable.
    virtual void serve() = 0;
};

}  // namespace qrx::sim
