// A machine for `flash`: the worker runs at once and in the caller's thread, and a wait costs no time.
#pragma once

#include <string>
#include <vector>

#include "api/src/function/progressbar/common/ProgressBarManagement.h"
#include "cli/Functions/flash/flash.h"
#include "tests/unit/cli/storage_fixture.h"
#include "tests/unit/support/flash_image.h"
#include "tests/unit/support/libc.h"

namespace qrx::test {

inline constexpr char kStarted[] = "start to flash NVMe Controller firmware\n";
inline constexpr char kSuccess[] = "flash NVMe Controller firmware success. Please shutdown and power on the system.\n";
inline constexpr char kStartRefused[] =
    "start to flash NVMe Controller firmware failed (Invalid firmware image, please check image and try again.)\n";
inline std::string failedWith(int code)
{
    return "Flash NVMe Controller firmware failed (error code: " + std::to_string(code) +
           ", Invalid firmware image, please check image and try again.)\n";
}

class FlashTest : public StorageTest {
protected:
    FlashTest()
    {
        progressbar_management_init();
        bar = progressbar_management_get_instance(1);
        bar->startThread = [](PQRXProgressBar _this, QRXThreadFunction func, void* mem, QRX_U32) {
            _this->m_percentage = 0;
            _this->m_result = 0;
            _this->m_status = 1;
            func(mem);
        };
        qrx::flashPause = [] { ++pauses; };
        pauses = 0;
        current().MaxFlashSize = kMost;
    }
    ~FlashTest() override
    {
        qrx::flashPause = saved_pause_;
        progressbar_management_close();
    }

    static constexpr std::size_t kMost = 0x800000;

    // What the controller gets of an image: segments by sendCommand, then the commit.
    static test::Command segment(std::size_t number, const Bytes& data)
    {
        return test::Command::admin(17, 0, {1023, static_cast<QRX_U32>(number * 1024)}).sends(data).on(1);
    }
    static test::Command commit(QRX_U32 slot, QRX_U32 action)
    {
        return test::Command::admin(16, 0, {slot | action << 3U}).on(1);
    }
    // Up to the segment that fails, where there is one.
    void expectSegments(const Bytes& image, std::size_t failing = ~std::size_t{0})
    {
        const std::vector<Bytes> segments = segmentsOf(image);
        for (std::size_t i = 0; i < segments.size() && i <= failing; ++i) {
            machine.expect(segment(i, segments[i]).status(i == failing ? 1 : 0));
        }
    }
    std::string fileOf(const Bytes& image) { return scratch.file("image", textOf(image)); }

    Libc libc;
    Scratch scratch;
    PQRXProgressBar bar = nullptr;
    static inline int pauses = 0;

private:
    void (*saved_pause_)() = qrx::flashPause;
};

}  // namespace qrx::test
