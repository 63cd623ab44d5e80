#include "sim/firmware/event_ring.h"

#include <algorithm>
#include "api/src/interface/wire/event_text.h"

namespace qrx::sim {

namespace {

constexpr std::size_t kAlignment = 4;

constexpr std::size_t aligned(std::size_t size)
{
    return (size + kAlignment - 1) / kAlignment * kAlignment;
}

// Calls `each` with every line, its line feed included.
template <class Each>
void for_each_line(std::string_view lines, Each each)
{
    while (!lines.empty()) {
        const std::size_t length = std::min(lines.find('\n'), lines.size() - 1) + 1;
        each(lines.substr(0, length));
        lines.remove_prefix(length);
    }
}

std::string two_digits(QRX_U64 number)
{
    const std::string digits = std::to_string(number);
    return digits.size() < 2 ? "0" + digits : digits;
}

}  // namespace

std::size_t EventPage::size() const
{
    std::size_t bytes = 0;
    for_each_line(lines, [&](std::string_view line) { bytes += aligned(line.size()); });
    return bytes;
}

void EventRing::add(QRX_U64 seconds, std::string_view message)
{
    constexpr std::size_t kMessageMax = sizeof(NVME_SA_Evt_Item::msg);
    sequence = sequence % (kSequences - 1) + 1;
    std::string line = spi_seq + two_digits(sequence) + spi_time + two_digits(seconds) + spi_msg;
    line += message.substr(0, kMessageMax);
    line += '\n';
    pages.resize(std::max<std::size_t>(pages.size(), page + 1U));
    if (pages[page].size() + aligned(line.size()) > kPageBytes) {
        page = static_cast<QRX_U8>((page + 1U) % kEventPages);
        pages.resize(std::max<std::size_t>(pages.size(), page + 1U));
        pages[page].lines.clear();
    }
    pages[page].lines += line;
}

void EventRing::add_history(QRX_U32 count)
{
    constexpr QRX_U64 kBegin = 1764547200;  // 2025-12-01 00:00:00 UTC
    constexpr QRX_U64 kStep = 600;
    constexpr QRX_U32 kSteps = 11;  // from the start of a patrol to its end
    for (QRX_U32 i = 0; i < count; ++i) {
        const QRX_U32 step = i % kSteps;
        const std::string what = step == 0            ? "_MP_START"
                                 : step == kSteps - 1 ? "_MP_COMPLETE"
                                                      : "_MP_PROGRESS_" + std::to_string(step * 10) + "%";
        add(kBegin + i * kStep, event_message(QRX_NVME_EVT_CLASS_VD, 0, what, QRX_NVME_EVT_SEVERITY_NOTIFY));
    }
}

void EventRing::put_page(std::size_t index, std::span<QRX_U8> text) const
{
    std::fill(text.begin(), text.end(), QRX_U8{0});
    if (index >= pages.size()) {
        return;
    }
    std::size_t at = 0;
    for_each_line(pages[index].lines, [&](std::string_view line) {
        if (at < text.size()) {
            std::copy_n(line.begin(), std::min(line.size(), text.size() - at),
                        text.begin() + static_cast<std::ptrdiff_t>(at));
        }
        at += aligned(line.size());
    });
}

std::vector<std::string_view> EventRing::newest_first() const
{
    std::vector<std::string_view> all;
    for (std::size_t i = 1; i <= kEventPages; ++i) {
        const std::size_t index = (page + i) % kEventPages;  // from the oldest page to the one being written
        if (index < pages.size()) {
            for_each_line(pages[index].lines, [&](std::string_view line) { all.push_back(line); });
        }
    }
    std::reverse(all.begin(), all.end());
    return all;
}

std::string event_message(QRX_U8 subject, QRX_U16 id, std::string_view what, QRX_U8 severity)
{
    std::string message = kEventClassWords.at(subject);
    if (subject != QRX_NVME_EVT_CLASS_ADAPTER) {
        message += std::to_string(id);
    }
    return message.append(what).append(kEventSeverityWords.at(severity));
}

}  // namespace qrx::sim
