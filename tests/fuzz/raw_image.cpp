// Fuzzes the check of a raw firmware image: whatever its headers tell, nothing outside of the image is read, and a
// component that is found to be good has the checksum that its header tells.
//
// The input: three bytes of size, then pieces, each with a byte of choices, three bytes of place, a byte of length and
// that many bytes. An image is too large to be an input itself.
#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "api/src/function/flash/common/image.h"
#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/image.h"

namespace {

constexpr std::uint32_t kMost = 0x90000;  // bytes of an image
constexpr std::uint32_t kPlaces[] = {kImageCcp, kImageDqp, kImageMep};
constexpr std::uint8_t kAtComponent = 1;  // the place is counted from a component's header
constexpr std::uint8_t kRepair = 2;       // then the checksum of that component is made right
constexpr std::uint8_t kDigit = 4;        // in the layout with a digest

std::uint32_t number(std::span<const std::uint8_t> bytes)
{
    return bytes[0] | std::uint32_t{bytes[1]} << 8U | std::uint32_t{bytes[2]} << 16U;
}

void repair(std::span<std::uint8_t> image, std::uint32_t place, std::uint32_t body)
{
    auto header = qrx::wire::read<_image_hdr_t>(image, place);
    const std::size_t from = std::size_t{place} + body;
    if (header && from <= image.size() && header->image_size <= image.size() - from) {
        header->crc = crcMake(image.data() + from, header->image_size);
        (void)qrx::wire::write(image, place, *header);
    }
}

// The checksum again, a bit at a time.
std::uint32_t slowCrc(std::span<const std::uint8_t> bytes)
{
    std::uint32_t crc = 0xFFFFFFFF;
    for (const std::uint8_t byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc & 1U) != 0 ? crc >> 1U ^ 0xEDB88320U : crc >> 1U;
        }
    }
    return __builtin_bswap32(crc);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::span<const std::uint8_t> input(data, size);
    if (input.size() < 3) {
        return 0;
    }
    const std::uint32_t length = number(input) % (kMost + 1);
    input = input.subspan(3);
    // Of just its size: what is read behind it is seen.
    const std::unique_ptr<std::uint8_t[]> memory(new std::uint8_t[length]());
    const std::span<std::uint8_t> image(memory.get(), length);

    while (input.size() >= 5) {
        const std::uint8_t choice = input[0];
        const std::uint32_t component = kPlaces[(choice >> 4U) % 3U];
        const std::size_t place =
            (choice & kAtComponent) != 0 ? component + number(input.subspan(1)) % 0x200U : number(input.subspan(1));
        const std::size_t count = std::min<std::size_t>(input[4], input.size() - 5);
        for (std::size_t i = 0; i < count && place + i < image.size(); ++i) {
            image[place + i] = input[5 + i];
        }
        if ((choice & kRepair) != 0) {
            repair(image, component, (choice & kDigit) != 0 ? kBodyDigit : kBodyNoDigit);
        }
        input = input.subspan(5 + count);
    }

    bool all[2] = {true, true};
    for (const std::uint32_t place : kPlaces) {
        for (const std::uint32_t body : {kBodyNoDigit, kBodyDigit}) {
            const bool good = fwImgCheck(image.data(), length, place, place + body) == 0;
            all[body == kBodyDigit] = all[body == kBodyDigit] && good;
            if (good) {
                const auto header = qrx::wire::read<_image_hdr_t>(image, place);
                assert(header && place + body + std::uint64_t{header->image_size} <= length);
                if (header->image_size < 0x1000) {
                    assert(slowCrc(image.subspan(place + body, header->image_size)) == header->crc);
                }
            }
        }
    }
    assert(qrx::componentsFit(image.data(), length) == (all[0] || all[1]));
    const std::uint32_t sum = checksumResult(image.data(), length);
    assert(length % qrx::wire::kPageSize == 0 || sum == 1);
    return 0;
}
