#include "sim/firmware/namespace.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "sim/firmware/health.h"
#include "sim/firmware/text.h"

namespace qrx::sim {

namespace {

bool present(std::span<const QRX_U8> identifier)
{
    return std::any_of(identifier.begin(), identifier.end(), [](QRX_U8 byte) { return byte != 0; });
}

}  // namespace

void Namespace::derive_identifiers(std::string_view serial, QRX_U64 generation)
{
    // The second bit of the first byte marks an address that is administered locally: it belongs to no maker.
    static constexpr std::array<QRX_U8, 3> kOui{0x02, 0x51, 0x58};
    const QRX_U64 hash = stable_hash(serial, generation << 8 | nsid);
    std::copy(kOui.begin(), kOui.end(), eui64.begin());
    std::memcpy(eui64.data() + 3, &hash, 4);
    eui64[7] = nsid;
    nguid.fill(0);
    std::memcpy(nguid.data(), &hash, 8);
    std::copy(eui64.begin(), eui64.end(), nguid.begin() + 8);
}

std::vector<QRX_U16> Namespace::attached_to(QRX_U16 function) const
{
    std::vector<QRX_U16> functions = elsewhere;
    if (active) {
        functions.insert(std::upper_bound(functions.begin(), functions.end(), function), function);
    }
    return functions;
}

NVME_NS_Info Namespace::record(QRX_U8 parent_status) const
{
    NVME_NS_Info info{};
    info.NSID = nsid;
    info.device_type = parent_kind;
    info.ID = parent;
    info.Status =
        static_cast<QRX_U8>((valid ? kNsValid : 0) | (waiting ? kNsWaitsForAttach : 0) | (active ? kNsActive : 0));
    info.VDStatus = parent_status;
    info.LBADataSize = static_cast<QRX_U8>(std::countr_zero(sector_size));
    info.SectorSize = sector_size;
    info.LBA = sectors;
    return info;
}

NMIC_Data Namespace::sharing() const
{
    NMIC_Data state{};
    state.mode = shared ? 1 : 0;
    state.ctrlID = shared ? QRX_U8{0} : owner;
    return state;
}

_nvme_id_ns Namespace::identify() const
{
    _nvme_id_ns id{};
    id.nsze = sectors;
    id.ncap = sectors;
    id.nuse = sectors;
    id.nmic = shared ? 1 : 0;
    id.dlfeat = 1;  // sectors that were never written read as zeros
    const QRX_U64 bytes = sectors * sector_size;
    std::memcpy(id.nvmcap, &bytes, sizeof(bytes));
    std::copy(nguid.begin(), nguid.end(), std::begin(id.nguid));
    std::copy(eui64.begin(), eui64.end(), std::begin(id.eui64));
    id.lbaf[0].ds = static_cast<QRX_U8>(std::countr_zero(sector_size));
    return id;
}

_qrx_smart_log Namespace::health() const
{
    Health counted;
    counted.sectors_read = sectors_read;
    counted.sectors_written = sectors_written;
    counted.host_reads = host_reads;
    counted.host_writes = host_writes;
    const _qrx_smart_log all = counted.log(0);
    _qrx_smart_log log{};
    std::copy(std::begin(all.data_units_read), std::end(all.data_units_read), std::begin(log.data_units_read));
    std::copy(std::begin(all.data_units_written), std::end(all.data_units_written), std::begin(log.data_units_written));
    std::copy(std::begin(all.host_reads), std::end(all.host_reads), std::begin(log.host_reads));
    std::copy(std::begin(all.host_writes), std::end(all.host_writes), std::begin(log.host_writes));
    return log;
}

void Namespace::count_reads(QRX_U64 commands, QRX_U64 bytes)
{
    sectors_read += commands * (bytes / 512);
    host_reads += commands;
}

void Namespace::count_writes(QRX_U64 commands, QRX_U64 bytes)
{
    sectors_written += commands * (bytes / 512);
    host_writes += commands;
}

NamespaceNode Namespace::node() const
{
    const std::string uuid = present(nguid) ? to_hex(nguid) : present(eui64) ? to_hex(eui64) : std::string();
    return {nsid, sectors, sector_size, uuid};
}

}  // namespace qrx::sim
