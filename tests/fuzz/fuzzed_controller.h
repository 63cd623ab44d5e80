// A controller that answers whatever it likes: its speech is the fuzzer's input. For each command there is a byte that
// says how it ends, then bytes of data.
//
//     FuzzedController controller(data, size);
//     const std::uint8_t choice = controller.nextByte();
//     controller.run({"info", "-o", "pd"});
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <span>

#include "api/src/interface/wire/envelope.h"
#include "tests/fuzz/stage.h"

namespace qrx::fuzz {

// One at a time. It is the controller at index 0, and the only one; `stream` and standard output lead nowhere.
class FuzzedController {
public:
    // What is done to an answer that asks for it, and with the data of each command that carries some.
    using Repair = void (*)(std::span<QRX_U8> answer);
    using Inspect = void (*)(std::span<const QRX_U8> sent);

    explicit FuzzedController(std::span<const std::uint8_t> input, Repair repair = nullptr, Inspect inspect = nullptr)
        : speech_(input), repair_(repair), inspect_(inspect)
    {
        static Device device = makeDevice();
        std::memset(device.subnqn, 0, sizeof(device.subnqn));
        begin(device);
        current_ = this;
    }
    ~FuzzedController()
    {
        current_ = nullptr;
        g_pAdInfos = nullptr;
    }
    FuzzedController(const FuzzedController&) = delete;
    FuzzedController& operator=(const FuzzedController&) = delete;

    // The next of the speech; 0 behind its end.
    std::uint8_t nextByte()
    {
        if (speech_.empty()) {
            return 0;
        }
        const std::uint8_t byte = speech_.front();
        speech_ = speech_.subspan(1);
        return byte;
    }
    // As many as there are, up to `count`.
    std::span<const std::uint8_t> nextBytes(std::size_t count)
    {
        const auto bytes = speech_.first(std::min(count, speech_.size()));
        speech_ = speech_.subspan(bytes.size());
        return bytes;
    }

    // At most 8 words of at most 15 letters.
    static void run(std::initializer_list<const char*> words)
    {
        std::array<std::array<char, 16>, 8> storage{};
        std::array<char*, 9> argv{};
        std::size_t count = 0;
        for (const char* word : words) {
            std::strncpy(storage[count].data(), word, storage[count].size() - 1);
            argv[count] = storage[count].data();
            ++count;
        }
        cmdDispatcher(static_cast<int>(count), argv.data());
    }

private:
    // Bits of the byte that says how a command ends.
    enum : std::uint8_t { kFails = 1, kSigns = 2, kShort = 4, kRepairs = 8 };

    QRX_U32 answer(void* out_data, QRX_U32 out_data_length)
    {
        const std::uint8_t how = nextByte();
        auto* out = static_cast<QRX_U8*>(out_data);
        if (out != nullptr && (how & kFails) == 0) {
            const auto bytes =
                nextBytes((how & kShort) != 0 ? std::min<std::size_t>(out_data_length, nextByte()) : out_data_length);
            std::copy(bytes.begin(), bytes.end(), out);
            if ((how & kSigns) != 0 && out_data_length >= kReceiveDataOffset) {
                std::copy(std::begin(kFrameSign), std::end(kFrameSign), out);
                out[4] = 0;
            }
            if ((how & kRepairs) != 0 && repair_ != nullptr) {
                repair_({out, out_data_length});
            }
        }
        return (how & kFails) != 0 ? nextByte() * 0x10001U : 0;
    }

    void inspect(const void* in_data, QRX_U32 in_data_length) const
    {
        if (inspect_ != nullptr && in_data != nullptr) {
            inspect_({static_cast<const QRX_U8*>(in_data), in_data_length});
        }
    }

    static Device makeDevice()
    {
        Device device = fuzz::makeDevice();
        device.sendCommand = [](PDevice, QRX_U8, QRX_U32, QRX_U32*, QRX_U8, void* in, QRX_U16 in_length, void* out,
                                QRX_U16 length) {
            current_->inspect(in, in_length);
            return current_->answer(out, length);
        };
        device.sendNVM = [](PDevice, QRX_U8, QRX_U32, QRX_U32*, QRX_U8, void* in, QRX_U32 in_length, void* out,
                            QRX_U32 length) {
            current_->inspect(in, in_length);
            return current_->answer(out, length);
        };
        device.sendPassthruAdmin = [](PDevice, void*, void* in, QRX_U16 in_length, void* out, QRX_U16 length,
                                      QRX_U32*) {
            current_->inspect(in, in_length);
            return current_->answer(out, length);
        };
        return device;
    }

    inline static FuzzedController* current_ = nullptr;

    std::span<const std::uint8_t> speech_;
    Repair repair_;
    Inspect inspect_;
};

}  // namespace qrx::fuzz
