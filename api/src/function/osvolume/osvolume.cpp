#include "api/src/function/osvolume/osvolume.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <new>
#include <string_view>

#include "api/src/device/linux/NVMEDevice.h"
#include "api/src/function/log/log.h"
#include "api/src/function/systemdisk/systemdisk.h"

namespace {

constexpr char kMountTable[] = "/etc/mtab";
constexpr std::size_t kLongestLine = 1023;  // characters; what is behind them is dropped

struct CloseFile {
    void operator()(FILE* file) const { std::fclose(file); }
};

bool contains(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

// Reads up to the next line end. False at the end of the table: a last line without its end does not count.
bool readLine(FILE* table, std::string& line)
{
    line.clear();
    for (int c = 0; (c = std::getc(table)) != EOF;) {
        if (c == '\n') {
            // A zero byte in the table ends its line's text.
            line.resize(std::string_view(line.c_str()).size());
            return true;
        }
        if (line.size() < kLongestLine) {
            line.push_back(static_cast<char>(c));
        }
    }
    return false;
}

}  // namespace

std::vector<std::string> qrx::bootDevices(FILE* table)
{
    std::vector<std::string> devices;
    std::string line;
    while (readLine(table, line)) {
        if (!contains(line, "/dev/nvme")) {
            continue;
        }
        if (contains(line, "/mnt/") || contains(line, "/media/")) {
            break;
        }
        if (contains(line, "/boot")) {
            // The device comes first in a line, so the first "p" begins the partition's suffix.
            devices.push_back(line.substr(0, line.find('p')));
        }
    }
    return devices;
}

void os_vol_scan()
{
    scanPhysicalDisk();
}

void scanPhysicalDisk()
{
    const std::unique_ptr<FILE, CloseFile> table(std::fopen(kMountTable, "r"));
    if (table == nullptr) {
        if (errno == ENOMEM) {
            throw std::bad_alloc();
        }
        add_log("OS disk file:%s  does not exist!\n", kMountTable);
        return;
    }
    for (const std::string& device : qrx::bootDevices(table.get())) {
        addSystemDisk(device.c_str());
        add_log("scanPhysicalDisk found %s\n", device.c_str());
    }
}

void addSystemDisk(const char* path)
{
    const int fd = open(path, O_RDWR);
    if (fd < 0) {
        return;
    }
    PDevice device = CreateSimpleNVMEDeviceInstance(fd);
    if (device == nullptr) {
        close(fd);
        throw std::bad_alloc();
    }
    PNVMEDiskManagement disks = GetNVMEDiskManagementInstance();
    disks->addOSDisk(disks, device, path);
}
