// `event`.
#include "cli/Functions/simple/simple_event.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>

#include "api/src/interface/globals.h"
#include "cli/Functions/simple/event_ring.h"
#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/device_text.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"

const char simple_event_help[] =
    "\n"
    "event <-c event count>[-h] \n"
    "Options:\n"
    "    -c,--count <event count>\n"
    "        If count is zero, it will show all events\n"
    "        If count is not zero, it will show latest specific events.\n"
    "    -h, --help\n"
    "Examples:\n"
    "    event -c 0 \n"
    "    Get total events from current NVMe Controller.\n"
    "    event -c 20\n"
    "    Get latest 20 events from current NVMe Controller.\n"
    "\n";

namespace {

constexpr char kLetters[] = "c:\x01:h";
constexpr option kLong[] = {
    {"count", optional_argument, nullptr, 'c'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

constexpr QRX_U8 kSubReadEvents = 4;

// Reads the pages of the ring one by one. Returns the status of the last.
int readRing(qrx::EventRing& ring)
{
    qrx::AdminCommand command = qrx::vendorCommand(kGroupDump, kSubReadEvents);
    command.word(10, qrx::kWholePage).word(13, 0).word(14, qrx::wire::kPageSize);
    int status = 0;
    for (QRX_U32 page = 0; page < kEventPages; ++page) {
        command.debug();  // with the offset of the page before
        command.word(13, page * QRX_U32{qrx::wire::kPageSize});
        qrx::Response response;
        status = command.receive(response.bytes());
        if (status != 0) {
            qrx::print("\n event request fail\n");
            continue;
        }
        ring.addPage(response.bytes());
    }
    return status;
}

int formatError(std::string_view line)
{
    std::printf("Command format has error: %s\n", qrx::printable(line).c_str());
    return 0;
}

// Copies `text` to a field, which is zeroed behind it; false when it does not fit.
template <std::size_t N>
bool store(std::string_view text, char (&field)[N])
{
    if (text.size() > N) {
        return false;
    }
    std::fill(std::copy(text.begin(), text.end(), field), field + N, '\0');
    return true;
}

// The text of a field, fit for a terminal.
template <std::size_t N>
std::string textOf(const char (&field)[N])
{
    return qrx::printable({field, strnlen(field, N)});
}

}  // namespace

void _showTime(QRX_U32 evt_ul_time, std::span<char> buf)
{
    if (evt_ul_time <= kEventClockSet) {
        std::snprintf(buf.data(), buf.size(), "%lu seconds from the boot time.",
                      static_cast<unsigned long>(evt_ul_time));
        return;
    }
    const std::time_t seconds = evt_ul_time;
    std::tm parts{};
    (void)localtime_r(&seconds, &parts);
    if (std::strftime(buf.data(), buf.size(), "%Y-%m-%d %H:%M:%S", &parts) == 0 && !buf.empty()) {
        buf[0] = '\0';
    }
}

void _showEvt(const _NVME_SA_Evt_Item* pevtItem)
{
    std::array<char, 40> time{};
    _showTime(pevtItem->time, time);
    qrx::print("Seq:%s\nTime:%s\nMessage:%s\n", textOf(pevtItem->seq).c_str(), time.data(),
               textOf(pevtItem->msg).c_str());
}

int _eventParser(std::string_view line, PNVME_SA_Evt_Item pevtItem)
{
    const std::size_t seq = line.find(spi_seq);
    const std::size_t time = line.find(spi_time);
    const std::size_t msg = line.find(spi_msg);
    constexpr std::size_t kNone = std::string_view::npos;
    if (seq == kNone || time == kNone || msg == kNone || seq > time || time > msg) {
        return formatError(line);
    }
    const std::size_t number = seq + std::strlen(spi_seq);
    const std::size_t seconds = time + std::strlen(spi_time);
    if (!store(line.substr(number, time - number), pevtItem->seq)) {
        return formatError(line);
    }
    pevtItem->time = qrx::strtoul32(std::string(line.substr(seconds, msg - seconds)).c_str(), 10);
    if (!store(line.substr(msg + std::strlen(spi_msg)), pevtItem->msg)) {
        return formatError(line);
    }
    return 1;
}

int getPageEventSA(int showEventCounts)
{
    qrx::EventRing ring;
    if (!ring.isUsable()) {
        return qrx::refuse(1, "event: not enough memory\n");
    }
    const int status = readRing(ring);
    if (ring.count() == 0) {
        std::puts("No events");
        return status;
    }
    const std::size_t shown = ring.show(static_cast<std::size_t>(std::max(showEventCounts, 0)));
    std::printf("Total events: %d\n", static_cast<int>(shown));
    return 0;
}

int doSEvent(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    int count = 0;
    if (const auto result = qrx::readOptions(scan, pCmdInfo, "c", 1, [&](int) {
            return qrx::take(qrx::readNumber(optarg), count) ||
                   qrx::complain("-c : invalid count '%s'.\n", scan.word());
        })) {
        return *result;
    }
    return getPageEventSA(count);
}
