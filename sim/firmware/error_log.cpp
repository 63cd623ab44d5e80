#include "sim/firmware/error_log.h"

namespace qrx::sim {

nvme_error_log_entry ErrorEntry::record() const
{
    nvme_error_log_entry entry{};
    if (number == 0) {
        return entry;
    }
    entry.error_count = number;
    entry.sqid = queue;
    entry.cmdid = command;
    entry.status_field = static_cast<QRX_U16>(status << 1);
    entry.parm_error_location = 0xFFFF;  // not tied to one field of the command
    entry.lba = lba;
    entry.nsid = nsid;
    return entry;
}

void ErrorLog::add(ErrorEntry entry)
{
    entry.number = ++count;
    entries[(count - 1) % kEntries] = entry;
}

std::array<nvme_error_log_entry, ErrorLog::kEntries> ErrorLog::log() const
{
    std::array<nvme_error_log_entry, kEntries> page{};
    for (std::size_t i = 0; i < kEntries && i < count; ++i) {
        page[i] = entries[(count - 1 - i) % kEntries].record();
    }
    return page;
}

}  // namespace qrx::sim
