// What the controller tells of its life: the event ring, and the debug console in its SPI flash.
#include <algorithm>
#include <array>

#include "api/src/interface/wire/command.h"
#include "api/src/interface/wire/spi_log.h"
#include "sim/firmware/controller.h"
#include "sim/firmware/opcodes.h"
#include "sim/firmware/reply.h"

namespace qrx::sim {

void Controller::tell(Event::Subject subject, QRX_U16 id, std::string text, std::string_view what, QRX_U8 severity)
{
    events.add(clock, subject, id, std::move(text));
    note(subject, id, what, severity, events.entries.back().sentence());
}

void Controller::note(Event::Subject subject, QRX_U16 id, std::string_view what, QRX_U8 severity,
                      std::string_view sentence)
{
    if (!what.empty()) {
        ring.add(clock.set ? clock.seconds() : clock.uptime / 1000, event_message(subject, id, what, severity));
    }
    if (settings.debug_dump && (!settings.errors_only || severity != QRX_NVME_EVT_SEVERITY_NOTIFY)) {
        spi_log.add(clock, sentence);
    }
}

void Controller::tell_progress(const VirtualDisk& vd, unsigned from, unsigned to)
{
    const char* const word = activity_word(vd.activity->type);
    for (unsigned tenth = from / 10 + 1; tenth <= to / 10 && tenth < 10 && *word != '\0'; ++tenth) {
        const std::string percentage = std::to_string(tenth * 10) + "%";
        note(Event::kVd, vd.id, std::string(word) + "_PROGRESS_" + percentage, QRX_NVME_EVT_SEVERITY_NOTIFY,
             "VD " + std::to_string(vd.id) + " " + activity_name(vd.activity->type) + " at " + percentage);
    }
}

void Controller::log_refusal(const nvme_admin_cmd& command, const Completion& completion)
{
    if (!settings.debug_dump || completion.status == status::kSuccess) {
        return;
    }
    const std::string name = command.opcode == kVendorRead ? vendor_command_name(static_cast<QRX_U16>(command.cdw12))
                                                           : admin_command_name(command);
    spi_log.add(clock, name + " refused: " + status_name(completion.status));
}

Completion Controller::read_events(QRX_U32 offset, QRX_U32 length, std::span<QRX_U8> data) const
{
    if (offset % wire::kPageSize != 0 || offset / wire::kPageSize >= kEventPages || length != wire::kPageSize) {
        return complete(Verdict::kInvalidParameter);
    }
    const std::span<QRX_U8> payload = open_reply(data, Verdict::kGood);
    constexpr std::size_t kText = kEventTextOffset - kReceiveDataOffset;
    if (payload.size() > kText) {
        ring.put_page(offset / wire::kPageSize, payload.subspan(kText));
    }
    return complete(status::kSuccess);
}

Verdict Controller::begin_log(Console console)
{
    if ((adapter.features & kFeatureDump) == 0) {
        return Verdict::kNotSupported;
    }
    console.log.read_until = 0;  // a host that asks begins to read
    return Verdict::kGood;
}

Verdict Controller::put_log(Console console, std::span<QRX_U8> payload)
{
    if ((adapter.features & kFeatureDump) == 0) {
        return Verdict::kNotSupported;
    }
    if (!console.on) {
        return Verdict::kInvalidRequest;
    }
    NVME_AP_Debug_Dump_Request head{};
    if (payload.size() > sizeof(head)) {
        head.length = static_cast<QRX_U32>(console.log.read(payload.subspan(sizeof(head))));
    }
    put(payload, 0, head);
    return Verdict::kGood;
}

Completion Controller::read_log_status(Console console, std::span<QRX_U8> data)
{
    const Verdict verdict = begin_log(console);
    if (verdict != Verdict::kGood) {
        return complete(verdict);
    }
    return reply_with(data, NVME_AP_Debug_Dump_Config{console.on ? QRX_U8{1} : QRX_U8{0}, {}});
}

Completion Controller::read_log(Console console, std::span<QRX_U8> data)
{
    std::array<QRX_U8, kLogTextMax + sizeof(NVME_AP_Debug_Dump_Request)> page{};
    const std::size_t room = std::min(data.size(), wire::kPageSize);
    const Verdict verdict =
        put_log(console, std::span(page).first(room > kReceiveDataOffset ? room - kReceiveDataOffset : std::size_t{0}));
    return verdict == Verdict::kGood ? reply_with(data, page) : complete(verdict);
}

Verdict Controller::switch_log(Console console, QRX_U32 word)
{
    if ((adapter.features & kFeatureDump) == 0) {
        return Verdict::kNotSupported;
    }
    if (word > 1) {
        return Verdict::kInvalidParameter;
    }
    const bool on = word == 1;
    if (on && !console.on) {
        console.log = {};  // it begins anew
    }
    if (on != console.on) {
        console.on = true;  // its own end is the last thing that it tells
        tell(Event::kAdapter, 0, std::string("has its ") + console.name + " switched " + (on ? "on" : "off"));
        console.on = on;
    }
    return Verdict::kGood;
}

void Controller::firmware_stored(unsigned target)
{
    tell(Event::kAdapter, 0,
         "has firmware " + slots.contents[target - 1U].revision + " in slot " + std::to_string(target) + " from now on",
         "_W_IMG_SUCCEEDED");
}

}  // namespace qrx::sim
