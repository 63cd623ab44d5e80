// `identify`: controller and namespace data in words.
#include <cstddef>
#include <iterator>
#include <string>

#include "api/src/interface/wire/nvme.h"
#include "cli/Functions/standard/identify.h"
#include "cli/Public/frame/device_text.h"
#include "cli/Public/frame/lines.h"
#include "cli/Public/frame/report.h"

namespace {

using qrx::Lines;

constexpr std::size_t kSubnqnShown = 60;  // characters; the byte behind them is shown as a number

struct Capacity {  // in bytes, 128 bits wide
    QRX_U64 low;
    QRX_U64 high;
};
static_assert(sizeof(Capacity) == sizeof(QRX_IDENTIFY_CONTROLLER_DATA::tnvmcap));

Capacity capacityOf(const QRX_U8 (&field)[16])
{
    return qrx::wire::read<Capacity>(field).value_or(Capacity{});
}

std::string subnqnText(const QRX_U8 (&subnqn)[256])
{
    const std::string text(subnqn, subnqn + kSubnqnShown);
    return qrx::printable(text, ' ') + std::to_string(subnqn[kSubnqnShown]);
}

}  // namespace

void _showIDDetail(std::span<const QRX_U8, qrx::wire::kPageSize> page)
{
    const auto id = qrx::wire::read<QRX_IDENTIFY_CONTROLLER_DATA>(page).value_or(QRX_IDENTIFY_CONTROLLER_DATA{});
    const Capacity total = capacityOf(id.tnvmcap);
    const Capacity unallocated = capacityOf(id.unvmcap);
    const auto text = [](std::span<const QRX_U8> field) { return qrx::fieldText(field, field.size()); };
    const Lines lines(24);
    qrx::print("\nNVME identify Information :\n\n");
    lines.hex("VID:", id.vid);
    lines.hex("SSVID:", id.ssvid);
    lines.text("SN:", text(id.sn).c_str());
    lines.text("MN:", text(id.mn).c_str());
    lines.text("FR:", text(id.fr).c_str());
    lines.hex("RAB:", id.rab);
    lines.hex("IEEE[0]:", id.ieee[0]);
    lines.hex("IEEE[1]:", id.ieee[1]);
    lines.hex("IEEE[2]:", id.ieee[2]);
    lines.hex("MIC:", id.cmic);
    lines.hex("MDTS:", id.mdts);
    lines.hex("OACS:", id.oacs);
    lines.hex("ACL:", id.acl);
    lines.hex("AERL:", id.aerl);
    lines.hex("FRMW:", id.frmw);
    lines.hex("LPA:", id.lpa);
    lines.hex("ELPE:", id.elpe);
    lines.hex("NPSS:", id.npss);
    lines.hex("AVSCC:", id.avscc);
    lines.hex64("TNVMCAP_LOW:", total.low);
    lines.hex64("TNVMCAP_HIGH:", total.high);
    lines.hex64("UNVMCAP_LOW:", unallocated.low);
    lines.hex64("UNVMCAP_HIGH:", unallocated.high);
    lines.number64("TNVMCAP(Bytes):", total.low);
    lines.number("TNVMCAP(GB):", total.low >> 30);
    lines.number64("UNVMCAP(Bytes):", unallocated.low);
    lines.number("UNVMCAP(GB):", unallocated.low >> 30);
    lines.hex("SQES:", id.sqes);
    lines.hex("CQES:", id.cqes);
    lines.hex("NN:", id.nn);
    lines.hex("ONCS:", id.oncs);
    lines.hex("FUSES:", id.fuses);
    lines.hex("FNA:", id.fna);
    lines.hex("VWC:", id.vwc);
    lines.hex("AWUN:", id.awun);
    lines.hex("AWUPF:", id.awupf);
    lines.hex("NVSCC:", id.nvscc);
    lines.hex("ACWU:", id.acwu);
    lines.hex("SQLS:", id.sgls);
    lines.text("SUBNQN:", subnqnText(id.subnqn).c_str());
    qrx::print("\n");
}

void _showNSDetail(std::span<const QRX_U8, qrx::wire::kPageSize> page)
{
    const auto ns = qrx::wire::read<_nvme_id_ns>(page).value_or(_nvme_id_ns{});
    const Lines lines(20);
    lines.hex64("NSZE:", ns.nsze);
    lines.hex64("NCAP:", ns.ncap);
    lines.hex64("NUSE:", ns.nuse);
    lines.hex("NSFEAT:", ns.nsfeat);
    lines.hex("nlbaf:", ns.nlbaf);
    lines.hex("flbas:", ns.flbas);
    lines.hex("mc:", ns.mc);
    lines.hex("dpc:", ns.dpc);
    lines.hex("dps:", ns.dps);
    lines.hex("nmic:", ns.nmic);
    lines.hex("rescap:", ns.rescap);
    lines.hex("fpi:", ns.fpi);
    lines.hex("dlfeat:", ns.dlfeat);
    lines.hex("nawun:", ns.nawun);
    lines.hex("nawupf:", ns.nawupf);
    lines.hex("nacwu:", ns.nacwu);
    for (std::size_t i = 0; i < std::size(ns.eui64); ++i) {
        lines.hex(("eui64[" + std::to_string(i) + "]:").c_str(), ns.eui64[i]);
    }
    // The count is 8 bits wide: an nlbaf of 255 stands for none. What lies behind the sixteen formats of the record
    // is inside the page.
    const auto formats = static_cast<QRX_U8>(ns.nlbaf + 1);
    for (std::size_t i = 0; i < formats; ++i) {
        const auto format = qrx::wire::read<nvme_lbaf>(page, offsetof(_nvme_id_ns, lbaf) + i * sizeof(nvme_lbaf));
        lines.number("[LBAF]", i);
        lines.hex("  MS:", format ? format->ms : 0);
        lines.hex("  DS:", format ? format->ds : 0);
        lines.hex("  RP:", format ? format->rp : 0);
    }
}
