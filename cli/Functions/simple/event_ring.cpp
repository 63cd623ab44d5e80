// The events of a controller's ring.
#include "cli/Functions/simple/event_ring.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "cli/Functions/simple/simple_event.h"
#include "cli/Public/frame/number.h"

namespace qrx {

namespace {

constexpr char kLineFeed = '\n';

// Takes tokens between line feeds out of a page's text. Zero bytes behind a line feed count as one blank in front of
// the next token; any other zero byte ends the text.
class Tokens {
public:
    explicit Tokens(std::span<char> text) : text_(text) {}

    // The next token, at least one character; empty at the end of the text.
    std::string_view next()
    {
        while (at_ < text_.size() && text_[at_] == kLineFeed) {
            ++at_;
        }
        if (at_ != 0 && at_ < text_.size() && text_[at_] == '\0' && text_[at_ - 1] == kLineFeed) {
            const auto behind = std::find_if(begin(), text_.end(), [](char c) { return c != '\0'; });
            at_ = static_cast<std::size_t>(behind - text_.begin()) - 1;
            text_[at_] = ' ';
        }
        const auto end = std::find_if(begin(), text_.end(), [](char c) { return c == kLineFeed || c == '\0'; });
        const std::string_view token(text_.data() + at_, static_cast<std::size_t>(end - begin()));
        at_ = end != text_.end() && *end == '\0' ? text_.size() : at_ + token.size();
        return token;
    }

private:
    std::span<char>::iterator begin() { return text_.begin() + static_cast<std::ptrdiff_t>(at_); }

    std::span<char> text_;
    std::size_t at_ = 0;
};

std::int32_t sequenceOf(const NVME_SA_Evt_Item& item)
{
    std::array<char, sizeof(item.seq) + 1> text{};
    std::memcpy(text.data(), item.seq, sizeof(item.seq));
    return strtol32(text.data(), 10);
}

}  // namespace

EventRing::EventRing()
    // From calloc, the system gives memory only for what is used of it.
    : items_(static_cast<NVME_SA_Evt_Item*>(std::calloc(kItemsMax, sizeof(NVME_SA_Evt_Item))))
{
}

void EventRing::addPage(std::span<QRX_U8> page)
{
    constexpr std::size_t kShortest = 2;
    if (page.size() <= kEventTextOffset) {
        return;
    }
    const std::span<QRX_U8> text = page.subspan(kEventTextOffset);
    Tokens tokens({reinterpret_cast<char*>(text.data()), text.size()});
    for (;;) {
        const std::string_view token = tokens.next();
        if (token.size() < kShortest || count_ == kItemsMax) {
            return;
        }
        count_ += static_cast<std::size_t>(_eventParser(token, &items_[count_]));
    }
}

// Events lie in page order, so that they make up one rising run, or where the ring has wrapped two: the newer run, and
// behind it what is left of the older one. Gives the end of the newer run, 0 when there is only one.
std::size_t EventRing::endOfNewerRun() const
{
    const std::int32_t last = sequenceOf(items_[count_ - 1]);
    std::int32_t highest = last;
    std::size_t end = 0;
    bool found = false;
    for (std::size_t i = count_; i != 0; --i) {
        const std::int32_t sequence = sequenceOf(items_[i - 1]);
        if (sequence > highest) {
            highest = sequence;
            end = found ? end : i;
        } else if (highest != last) {
            found = true;
        }
    }
    return end;
}

std::size_t EventRing::show(std::size_t wanted) const
{
    if (count_ == 0) {
        return 0;
    }
    const std::size_t most = wanted == 0 ? count_ : std::min(wanted, count_);
    const std::size_t wrap = endOfNewerRun();
    std::size_t shown = 0;
    for (std::size_t i = wrap; i != 0 && shown < most; --i, ++shown) {
        _showEvt(&items_[i - 1]);
    }
    for (std::size_t i = count_; i != wrap && shown < most; --i, ++shown) {
        _showEvt(&items_[i - 1]);
    }
    return most;
}

}  // namespace qrx
