#include "api/src/device/linux/SystemBIOS.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>
#include <string_view>

#include "api/src/function/log/log.h"
#include "api/src/interface/wire/buffer.h"

namespace {

constexpr char kEntryPointFile[] = "/sys/firmware/dmi/tables/smbios_entry_point";
constexpr char kTableFile[] = "/sys/firmware/dmi/tables/DMI";
constexpr std::size_t kEntryPointMax = 32;
constexpr std::size_t kEntryPoint64 = 24;  // bytes of the 64-bit form
constexpr std::size_t kEntryPoint32 = 31;  // bytes of the 32-bit form
constexpr std::size_t kHeaderSize = 4;     // of a structure
constexpr u8 kSystemSlot = 9;
constexpr u8 kEndOfTable = 127;

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
using Bytes = std::unique_ptr<u8, Free>;

Bytes readBytes(off_t base, std::size_t* length, const char* filename)
{
    return Bytes(static_cast<u8*>(read_SM_file(base, length, filename)));
}

// A little-endian number at `buf`, which has the bytes.
template <class Number>
Number numberAt(const u8* buf)
{
    Number number;
    std::memcpy(&number, buf, sizeof(number));
    return number;
}

bool begins(const u8* buf, std::size_t size, std::string_view signature)
{
    return size >= signature.size() && std::memcmp(buf, signature.data(), signature.size()) == 0;
}

// The length that an entry point gives itself is at most what is read of one, adds up, and lies in what was read.
bool entryPointHolds(const u8* buf, std::size_t size, u8 length, std::size_t expected)
{
    if (length > kEntryPointMax) {
        std::fprintf(stderr, "Entry point length too large (%u bytes, expected %u).\n", unsigned{length},
                     static_cast<unsigned>(expected));
        return false;
    }
    return size >= expected && length <= size && checksum(buf, length) != 0;
}

// Closes a descriptor and says so when that fails.
class File {
public:
    File(const char* name, int fd) : name_(name), fd_(fd) {}
    ~File()
    {
        if (close(fd_) != 0) {
            std::perror(name_);
        }
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    [[nodiscard]] int fd() const { return fd_; }

private:
    const char* name_;
    int fd_;
};

}  // namespace

int get_SMBIOS_slot_ID(char* bus_dev_fun, int* slot_id)
{
    *slot_id = -1;
    unsigned bus = 0;
    std::sscanf(bus_dev_fun, "%x:", &bus);
    const int Bus_Num = static_cast<int>(bus);

    std::size_t size = kEntryPointMax;
    const Bytes entry = readBytes(0, &size, kEntryPointFile);
    if (entry != nullptr) {
        if (size >= kEntryPoint64 && begins(entry.get(), size, "_SM3_")) {
            smbios3_decode(entry.get(), kTableFile, kTableFileStartsAtTable, size, Bus_Num, slot_id);
        } else if (size >= kEntryPoint32 && begins(entry.get(), size, "_SM_")) {
            smbios_decode(entry.get(), kTableFile, kTableFileStartsAtTable, size, Bus_Num, slot_id);
        } else {
            add_log("format error\n");
        }
    }
    if (*slot_id >= 0) {
        add_log("Get SMBIOS Bus Num:%d, Slot ID:%d\n", Bus_Num, *slot_id);
    } else {
        add_log(" SMBIOS Bus Num is not found...\n");
    }
    return 0;
}

int smbios3_decode(u8* buf, const char* devmem, u32 flags, std::size_t headerSizeOffset, int Bus_Num,
                   int* SMBIOS_SlotID)
{
    if (headerSizeOffset < kEntryPoint64 || !entryPointHolds(buf, headerSizeOffset, buf[6], kEntryPoint64)) {
        return 0;
    }
    const u32 ver = (u32{buf[7]} << 16U) + (u32{buf[8]} << 8U) + buf[9];
    const auto address = numberAt<std::uint64_t>(buf + 16);
    if ((flags & kTableFileStartsAtTable) == 0 && address >> 32U != 0) {
        std::fputs("64-bit addresses not supported, sorry.\n", stderr);
        return 0;
    }
    dmi_table(static_cast<off_t>(address), numberAt<u32>(buf + 12), 0, ver, devmem, flags | kStopAtEndOfTable,
              headerSizeOffset, Bus_Num, SMBIOS_SlotID);
    return 1;
}

int smbios_decode(u8* buf, const char* devmem, u32 flags, std::size_t headerSizeOffset, int Bus_Num, int* SMBIOS_SlotID)
{
    if (headerSizeOffset < kEntryPoint32 || !entryPointHolds(buf, headerSizeOffset, buf[5], kEntryPoint32) ||
        !begins(buf + 16, 5, "_DMI_") || checksum(buf + 16, 15) == 0) {
        return 0;
    }
    // Versions that firmware is known to report wrongly.
    struct Fixup {
        u16 reported;
        u16 meant;
    };
    constexpr Fixup kFixups[] = {{0x021F, 0x0203}, {0x0221, 0x0203}, {0x0233, 0x0206}};
    u32 ver = (u32{buf[6]} << 8U) + buf[7];
    for (const Fixup& fixup : kFixups) {
        if (ver == fixup.reported) {
            std::fprintf(stderr, "SMBIOS version fixup (2.%d -> 2.%d).\n", fixup.reported & 0xFF, fixup.meant & 0xFF);
            ver = fixup.meant;
            break;
        }
    }
    dmi_table(numberAt<u32>(buf + 24), numberAt<u16>(buf + 22), numberAt<u16>(buf + 28), ver << 8U, devmem, flags,
              headerSizeOffset, Bus_Num, SMBIOS_SlotID);
    return 1;
}

void dmi_table(off_t base, u32 len, u16 num, u32 ver, const char* devmem, u32 flags, std::size_t headerSizeOffset,
               int Bus_Num, int* SMBIOS_SlotID)
{
    const off_t offset = (flags & kTableFileStartsAtTable) != 0 ? 0 : base + static_cast<off_t>(headerSizeOffset);
    std::size_t length = len;
    const Bytes table = readBytes(offset, &length, devmem);
    if (table == nullptr) {
        std::fputs("Failed to read table, sorry.\n", stderr);
        return;
    }
    // The file may be shorter than the entry point says: what was read is the table.
    dmi_table_decode(table.get(), static_cast<u32>(length), num, static_cast<u16>(ver >> 8U), flags, Bus_Num,
                     SMBIOS_SlotID);
}

void dmi_table_decode(u8* buf, u32 len, u16 num, u16 ver, u32 flags, int Bus_Num, int* SMBIOS_SlotID)
{
    std::size_t at = 0;
    for (u16 i = 0; num == 0 || i < num; ++i) {
        if (len - at < kHeaderSize) {
            return;
        }
        dmi_header h{};
        to_dmi_header(&h, buf + at, len - at);
        if (h.length < kHeaderSize) {
            std::fprintf(stderr, "Invalid entry length (%u). DMI table is broken! Stop.\n\n", unsigned{h.length});
            return;
        }
        // The strings end with two zero bytes.
        std::size_t next = at + h.length;
        while (next + 2 <= len && (buf[next] != 0 || buf[next + 1] != 0)) {
            ++next;
        }
        next += 2;
        if (next > len) {
            return;  // cut: not decoded
        }
        dmi_decode(&h, ver, Bus_Num, SMBIOS_SlotID);
        at = next;
        if (h.type == kEndOfTable && (flags & kStopAtEndOfTable) != 0) {
            return;
        }
    }
}

void to_dmi_header(dmi_header* h, u8* data, std::size_t available)
{
    h->type = data[0];
    h->length = data[1];
    h->handle = numberAt<u16>(data + 2);
    h->data = data;
    h->available = available;
}

void dmi_decode(const dmi_header* h, u16 /*ver*/, int Bus_Num, int* SMBIOS_SlotID)
{
    constexpr std::size_t kCurrentUsage = 7;
    constexpr std::size_t kSlotId = 9;
    constexpr std::size_t kBusNumber = 15;
    constexpr u8 kInUse = 4;
    if (h->type != kSystemSlot || h->available <= kBusNumber) {
        return;
    }
    if (h->data[kCurrentUsage] == kInUse && h->data[kBusNumber] == Bus_Num) {
        *SMBIOS_SlotID = h->data[kSlotId];
    }
}

void* read_SM_file(off_t base, std::size_t* max_len, const char* filename)
{
    const int fd = open(filename, O_RDONLY);
    if (fd < 0) {
        if (errno != ENOENT) {
            std::perror(filename);
        }
        return nullptr;
    }
    const File file(filename, fd);
    struct stat status {};
    if (fstat(fd, &status) == 0) {
        if (base >= status.st_size) {
            std::fprintf(stderr, "%s: Can't read data beyond EOF\n", filename);
            return nullptr;
        }
        *max_len = std::min(*max_len, static_cast<std::size_t>(status.st_size - base));
    }
    Bytes bytes(static_cast<u8*>(std::malloc(*max_len)));
    if (bytes == nullptr) {
        std::perror("malloc");
        return nullptr;
    }
    if (lseek(fd, base, SEEK_SET) < 0) {
        std::fprintf(stderr, "%s: ", filename);
        std::perror("lseek");
        return nullptr;
    }
    if (myread(fd, bytes.get(), *max_len, filename) != 0) {
        return nullptr;
    }
    return bytes.release();
}

int myread(int fd, u8* buf, std::size_t count, const char* prefix)
{
    std::size_t done = 0;
    while (done < count) {
        const ssize_t got = read(fd, buf + done, count - done);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            std::perror(prefix);
            return -1;
        }
        if (got == 0) {
            std::fprintf(stderr, "%s: Unexpected end of file\n", prefix);
            return -1;
        }
        done += static_cast<std::size_t>(got);
    }
    return 0;
}

int checksum(const u8* buf, std::size_t len)
{
    u8 sum = 0;
    for (std::size_t i = 0; i < len; ++i) {
        sum = static_cast<u8>(sum + buf[i]);
    }
    return sum == 0 ? 1 : 0;
}

const char* dmi_string(const dmi_header* dm, u8 s)
{
    if (s == 0) {
        return "Not Specified";
    }
    // The strings follow the formatted area one after the other; an empty one ends them.
    std::size_t at = dm->length;
    while (at < dm->available && dm->data[at] != 0) {
        const auto* text = reinterpret_cast<const char*>(dm->data + at);
        const std::size_t length = strnlen(text, dm->available - at);
        if (length == dm->available - at) {
            break;  // cut
        }
        if (--s == 0) {
            return text;
        }
        at += length + 1;
    }
    return "<BAD INDEX>";
}

const char* dmi_slot_current_usage(u8 code)
{
    constexpr const char* kUsages[] = {"Other", "Unknown", "Available", "In Use", "Unavailable"};
    return code >= 1 && code <= std::size(kUsages) ? kUsages[code - 1] : "<OUT OF SPEC>";
}

void dmi_slot_segment_bus_func(u16 code1, u8 code2, u8 code3, const char* prefix)
{
    if (code1 != 0xFFFF || code2 != 0xFF || code3 != 0xFF) {
        std::printf("%sBus Address: %04x:%02x:%02x.%x\n", prefix, unsigned{code1}, unsigned{code2}, code3 >> 3U,
                    code3 & 7U);
    }
}
