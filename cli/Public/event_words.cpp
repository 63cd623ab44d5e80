// The text of a binary event.
#include "cli/Public/event_words.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "cli/Public/errorMsg.h"

namespace {

constexpr auto kSeverities = std::to_array<const char*>({"[INFO]", "[WARN]", "[CRIT]"});
constexpr auto kClasses = std::to_array<const char*>({"[UNKNOWN]", "[ADAPTER]", "[PD]", "[VD]", "[NS]"});

// The text of `code` in a table that is ordered by it, or `other`.
template <std::size_t N>
const char* wordOf(const std::array<const char*, N>& words, std::size_t code, const char* other)
{
    return code < N ? words[code] : other;
}

bool hasId(QRX_U16 eventClass)
{
    return eventClass >= QRX_NVME_EVT_CLASS_PD && eventClass <= QRX_NVME_EVT_CLASS_NS;
}

// A text that grows, and of which what does not fit is lost.
class Text {
public:
    void add(std::string_view piece)
    {
        const std::size_t length = std::min(piece.size(), qrx::kEventTextMax - length_);
        std::copy_n(piece.begin(), length, text_.begin() + static_cast<std::ptrdiff_t>(length_));
        length_ += length;
    }
    void add(QRX_U32 number)
    {
        std::array<char, 10> digits{};
        add({digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr});
    }
    // As the controller prints numbers and times: signed, and with two digits at least.
    void addTwoDigits(QRX_U32 number)
    {
        std::array<char, 12> digits{};
        (void)std::snprintf(digits.data(), digits.size(), "%02d", static_cast<std::int32_t>(number));
        add(digits.data());
    }
    [[nodiscard]] const qrx::EventText& text() const { return text_; }

private:
    qrx::EventText text_{};
    std::size_t length_ = 0;
};

}  // namespace

const char* getSeverityDesc(QRX_U8 severity)
{
    return wordOf(kSeverities, severity, "[UNKNOWN]");
}

const char* getClassDesc(QRX_U16 classCode)
{
    return wordOf(kClasses, classCode, "[UNKNOWN]");
}

const char* getEventDesc(QRX_U16 classCode, QRX_U16 code)
{
    return EventMessage(classCode, code);
}

qrx::EventText qrx::eventText(const NVME_Event_Item& item)
{
    Text text;
    text.add(spi_seq);
    text.addTwoDigits(item.SequenceNo);
    text.add(spi_time);
    text.addTwoDigits(item.TimeStamp);
    text.add(spi_msg);
    text.add(wordOf(kEventClassWords, item.Class, ""));
    if (hasId(item.Class)) {
        text.add(QRX_U32{item.DeviceID});
    }
    const auto word = std::find_if(kEventWords.begin(), kEventWords.end(), [&](const EventWord& known) {
        return known.event_class == item.Class && known.code == item.Code;
    });
    if (word != kEventWords.end()) {
        text.add(word->suffix);
        if (word->progress) {
            text.add(item.Params[0]);
            text.add(spi_vd_percentage);
        }
    }
    text.add(wordOf(kEventSeverityWords, item.Severity, ""));
    return text.text();
}
