// In which physical slot of the machine does a controller sit? The answer is in the System Slot structures of the
// SMBIOS tables that the kernel publishes.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>

using u8 = std::uint8_t;
using u16 = std::uint16_t;
using u32 = std::uint32_t;

// *slot_id becomes the id of the slot in use on the bus of `bus_dev_fun` ("<bus in hexadecimal>:..."), or -1.
// Always returns 0.
int get_SMBIOS_slot_ID(char* bus_dev_fun, int* slot_id);

// The steps of the search, in call order. All take the bus number sought and write *SMBIOS_SlotID on a match only.

// Flags of a decode.
inline constexpr u32 kTableFileStartsAtTable = 1U << 0;  // no file offset applies
inline constexpr u32 kStopAtEndOfTable = 1U << 1;        // stop at a structure of type 127

// Decode the 64-bit and the 32-bit form of the entry point at `buf`, of which `headerSizeOffset` bytes are there,
// and walk the table in the file `devmem`. 1 if the entry point was accepted.
int smbios3_decode(u8* buf, const char* devmem, u32 flags, std::size_t headerSizeOffset, int Bus_Num,
                   int* SMBIOS_SlotID);
int smbios_decode(u8* buf, const char* devmem, u32 flags, std::size_t headerSizeOffset, int Bus_Num,
                  int* SMBIOS_SlotID);

// Reads the table of `len` bytes and walks it.
void dmi_table(off_t base, u32 len, u16 num, u32 ver, const char* devmem, u32 flags, std::size_t headerSizeOffset,
               int Bus_Num, int* SMBIOS_SlotID);

// Walks a table in memory: `len` bytes at `buf`, at most `num` structures (0: no limit). Any bytes will do.
void dmi_table_decode(u8* buf, u32 len, u16 num, u16 ver, u32 flags, int Bus_Num, int* SMBIOS_SlotID);

// One structure of the table.
struct dmi_header {
    u8 type;
    u8 length;  // bytes of the formatted area, strings not counted
    u16 handle;
    u8* data;               // the structure in the table, not owned
    std::size_t available;  // bytes from `data` to the end of the table
};

// Fills the header from the `available` bytes at `data`, at least 4.
void to_dmi_header(dmi_header* h, u8* data, std::size_t available);

void dmi_decode(const dmi_header* h, u16 ver, int Bus_Num, int* SMBIOS_SlotID);

// Up to *max_len bytes of `filename` from `base` on, in memory that the caller frees; *max_len becomes their number.
// Null when it cannot be had: silently when there is no such file, else with a message on standard error.
void* read_SM_file(off_t base, std::size_t* max_len, const char* filename);

// Reads exactly `count` bytes. 0, or -1 with a message that begins with `prefix`.
int myread(int fd, u8* buf, std::size_t count, const char* prefix);

// 1 if the bytes add up to 0.
int checksum(const u8* buf, std::size_t len);

// For pages that show more of a structure; without a caller.
const char* dmi_string(const dmi_header* dm, u8 s);
const char* dmi_slot_current_usage(u8 code);
void dmi_slot_segment_bus_func(u16 code1, u8 code2, u8 code3, const char* prefix);
