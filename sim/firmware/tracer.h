// Writes down every command, one line each, as it ends:
//
//     3 nvme0 admin vendor-read(0xe2) read-pd-info(0x00e1) cdw12=0xe1 cdw14=0x5 in=4096 -> success cmd_status=0x6
//     4 nvme0n1 io read(0x02) nsid=0x1 cdw10=0x8 cdw12=0x7 in=4096 -> LBA out of range(0x80)
//     5 nvme0 admin identify(0x06) cdw10=0x1 in=4096 -> errno ENODEV
//
// that is: the number of the command, from 1; the node; the queue; the opcode's name and value; for a vendor command
// its name and the low half of its CDW12; the words that are not 0, of flags, rsvd1, nsid, cdw2, cdw3, metadata_len,
// cdw10 to cdw15 and timeout_ms; the data, as "in=" from the device or "out=" to it (by the opcode; "data=" for one
// whose opcode says both or neither) and the bytes of the host's buffer, or nothing when there is none; and behind
// the arrow how it ended: "success" or the status' name and value, then the result and the cmd_status where they are
// not 0; or "errno" and its name.
#pragma once

#include <ostream>

#include "sim/firmware/decorator.h"

namespace qrx::sim {

class Tracer : public Decorator {
public:
    // Both must outlive the tracer. Each line is flushed, so that a trace is whole when a program is killed.
    Tracer(Host& inner, std::ostream& out) : Decorator(inner), out_(out) {}

    Completion admin(const Node& node, const nvme_admin_cmd& command, std::span<QRX_U8> data) override;
    Completion io(const Node& node, const nvme_admin_cmd& command, std::span<QRX_U8> data) override;

private:
    void write_line(const Node& node, bool admin_queue, const nvme_admin_cmd& command, std::span<const QRX_U8> data,
                    const Completion& completion);

    std::ostream& out_;
    QRX_U64 count_ = 0;
};

}  // namespace qrx::sim
