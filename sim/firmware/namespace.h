// A namespace: what the host sees as a block device.
#pragma once

#include <array>
#include <string_view>
#include <vector>

#include "api/src/interface/wire/ns.h"
#include "api/src/interface/wire/nvme.h"
#include "sim/firmware/host.h"
#include "sim/firmware/io_statistics.h"
#include "sim/firmware/sparse_store.h"

namespace qrx::sim {

struct Namespace {
    QRX_U8 nsid = 1;
    QRX_U8 parent_kind = kNsParentVd;
    QRX_U16 parent = 0;  // id of the virtual or physical disk
    bool valid = true;
    bool waiting = false;  // for its attachment to the host
    bool active = true;    // attached
    QRX_U64 sectors = 0;
    QRX_U32 sector_size = 512;       // bytes: 512 or 4096
    bool shared = false;             // between controllers
    QRX_U8 owner = 0;                // the controller it is private to
    std::vector<QRX_U16> elsewhere;  // other host functions it is attached to, in order
    std::array<QRX_U8, 16> nguid{};
    std::array<QRX_U8, 8> eui64{};
    SparseStore data;
    QRX_U64 sectors_read = 0;     // by hosts since it was made, of 512 bytes
    QRX_U64 sectors_written = 0;  // likewise
    QRX_U64 host_reads = 0;
    QRX_U64 host_writes = 0;
    IoStatistics io;  // since power-on; of a controller's namespaces alone

    friend bool operator==(const Namespace&, const Namespace&) = default;

    // Gives it identifiers of its own, made from the serial number of its controller and its `generation`: the
    // how-manieth namespace of that controller it is, or 0 for one that was there from the start.
    void derive_identifiers(std::string_view serial, QRX_U64 generation = 0);
    // The host functions it is attached to, in order; `function` is the one that asks.
    [[nodiscard]] std::vector<QRX_U16> attached_to(QRX_U16 function) const;
    // `parent_status`: the status code of the virtual disk it lies on, 0 on a physical disk.
    [[nodiscard]] NVME_NS_Info record(QRX_U8 parent_status) const;
    [[nodiscard]] NMIC_Data sharing() const;
    [[nodiscard]] _nvme_id_ns identify() const;
    // What has been read and written, as a health log in which everything else is 0.
    [[nodiscard]] _qrx_smart_log health() const;
    // So many commands of so many bytes each.
    void count_reads(QRX_U64 commands, QRX_U64 bytes);
    void count_writes(QRX_U64 commands, QRX_U64 bytes);
    [[nodiscard]] NamespaceNode node() const;
};

}  // namespace qrx::sim
