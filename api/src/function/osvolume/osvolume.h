// Finds the system disks: the block devices of our controllers that carry a /boot mount.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

// Reads the mount table and fills the list of system disks with what it finds. All throw std::bad_alloc: a disk that
// memory was short for must not count as none.
void os_vol_scan();
void scanPhysicalDisk();

// Opens the block device `path` and offers it to the list. A device that cannot be opened is left out in silence.
void addSystemDisk(const char* path);

namespace qrx {

// The block devices that the mount table `table` (lines as in /etc/mtab) names as carriers of /boot, in its order.
std::vector<std::string> bootDevices(FILE* table);

}  // namespace qrx
