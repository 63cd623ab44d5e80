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

// The lines that the pages of `identify` and of `id` share, each under its two labels: null where a page leaves the
// line out.
class LabelledLines {
public:
    explicit LabelledLines(qrx::IdPage page) : page_(page) {}

    void hex(const char* identify, const char* id, QRX_U32 value) const
    {
        show(identify, id, [&](const char* label) { lines_.hex(label, value); });
    }
    void hex64(const char* identify, const char* id, QRX_U64 value) const
    {
        show(identify, id, [&](const char* label) { lines_.hex64(label, value); });
    }
    void number(const char* identify, const char* id, QRX_U64 value) const
    {
        show(identify, id, [&](const char* label) { lines_.number(label, value); });
    }
    void number64(const char* identify, const char* id, QRX_U64 value) const
    {
        show(identify, id, [&](const char* label) { lines_.number64(label, value); });
    }
    void text(const char* identify, const char* id, const std::string& value) const
    {
        show(identify, id, [&](const char* label) { lines_.text(label, value.c_str()); });
    }

private:
    template <class Print>
    void show(const char* identify, const char* id, Print print) const
    {
        if (const char* const label = page_ == qrx::IdPage::kOfIdentify ? identify : id) {
            print(label);
        }
    }

    Lines lines_{24};
    qrx::IdPage page_;
};

}  // namespace

void qrx::showIdPage(std::span<const QRX_U8, wire::kPageSize> page, IdPage form)
{
    const auto id = wire::read<QRX_IDENTIFY_CONTROLLER_DATA>(page).value_or(QRX_IDENTIFY_CONTROLLER_DATA{});
    const Capacity total = capacityOf(id.tnvmcap);
    const Capacity unallocated = capacityOf(id.unvmcap);
    const auto text = [](std::span<const QRX_U8> field) { return fieldText(field, field.size()); };
    const LabelledLines lines(form);
    print("\nNVME identify Information :\n\n");
    lines.hex("VID:", "vid:", id.vid);
    lines.hex("SSVID:", "ssvid:", id.ssvid);
    lines.text("SN:", "Serial Number:", text(id.sn));
    lines.text("MN:", "Model Number:", text(id.mn));
    lines.text("FR:", "Firmware Revision:", text(id.fr));
    lines.hex("RAB:", "rab:", id.rab);
    lines.hex("IEEE[0]:", "ieee[0]:", id.ieee[0]);
    lines.hex("IEEE[1]:", "ieee[1]:", id.ieee[1]);
    lines.hex("IEEE[2]:", "ieee[2]:", id.ieee[2]);
    lines.hex("MIC:", nullptr, id.cmic);
    lines.hex("MDTS:", "mdts:", id.mdts);
    lines.hex("OACS:", "oacs:", id.oacs);
    lines.hex("ACL:", "acl:", id.acl);
    lines.hex("AERL:", "aerl:", id.aerl);
    lines.hex("FRMW:", "frmw:", id.frmw);
    lines.hex("LPA:", "lpa:", id.lpa);
    lines.hex("ELPE:", "elpe:", id.elpe);
    lines.hex("NPSS:", "npss:", id.npss);
    lines.hex("AVSCC:", "avscc:", id.avscc);
    lines.hex64("TNVMCAP_LOW:", "tnvmcap_low:", total.low);
    lines.hex64("TNVMCAP_HIGH:", "tnvmcap_high:", total.high);
    lines.hex64("UNVMCAP_LOW:", "unvmcap_low:", unallocated.low);
    lines.hex64("UNVMCAP_HIGH:", "unvmcap_high:", unallocated.high);
    lines.number64("TNVMCAP(Bytes):", "TNVMCAP(Bytes):", total.low);
    lines.number("TNVMCAP(GB):", "TNVMCAP(GB):", total.low >> 30);
    lines.number64("UNVMCAP(Bytes):", "UNVMCAP(Bytes):", unallocated.low);
    lines.number("UNVMCAP(GB):", "UNVMCAP(GB):", unallocated.low >> 30);
    lines.hex("SQES:", "sqes:", id.sqes);
    lines.hex("CQES:", "cqes:", id.cqes);
    lines.hex("NN:", "nn:", id.nn);
    lines.hex("ONCS:", "oncs:", id.oncs);
    lines.hex("FUSES:", "fuses:", id.fuses);
    lines.hex("FNA:", "fna:", id.fna);
    lines.hex("VWC:", "vwc:", id.vwc);
    lines.hex("AWUN:", nullptr, id.awun);
    lines.hex("AWUPF:", nullptr, id.awupf);
    lines.hex("NVSCC:", "nvscc:", id.nvscc);
    lines.hex("ACWU:", nullptr, id.acwu);
    lines.hex("SQLS:", "sgls:", id.sgls);
    lines.text("SUBNQN:", nullptr, subnqnText(id.subnqn));
    lines.text(nullptr, "subnqn:", text(id.subnqn));
}

void _showIDDetail(std::span<const QRX_U8, qrx::wire::kPageSize> page)
{
    qrx::showIdPage(page, qrx::IdPage::kOfIdentify);
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
