// The calls of a program that the simulator answers.
#pragma once

#include "api/src/interface/wire/types.h"

namespace qrx::sim {

// The arguments are those of the system call named, addresses being the caller's.
enum class CallKind : QRX_U32 {
    open,      // dirfd, path, flags, mode
    fstat,     // fd, struct stat*
    stat,      // dirfd, path, struct stat*, AT_ flags
    statx,     // dirfd, path, AT_ flags, mask, struct statx*
    access,    // dirfd, path, mode, AT_ flags
    readlink,  // dirfd, path, buffer, size
    xattr,     // dirfd, path, AT_ flags: any reading of extended attributes
    ioctl,     // fd, request, argument
};

// True for each request of the NVMe driver. Such a request never reaches a real device.
[[nodiscard]] constexpr bool is_nvme_request(unsigned long request)
{
    return (request & 0xfff0) == 0x4e40;
}

// The requests of block devices that are answered, beside all of the NVMe driver's.
enum BlockRequest : QRX_U32 {
    kBlockReadOnly = 0x125e,
    kBlockSectors = 0x1260,
    kBlockFlush = 0x1261,
    kBlockSectorSize = 0x1268,
    kBlockPhysicalSectorSize = 0x127b,
    kBlockBytes = 0x80081272,
};
inline constexpr QRX_U32 kBlockRequests[] = {kBlockReadOnly,           kBlockSectors, kBlockFlush, kBlockSectorSize,
                                             kBlockPhysicalSectorSize, kBlockBytes};

}  // namespace qrx::sim
