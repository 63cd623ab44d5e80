// The vendor commands that diagnose the controller: error status, crash, queues, stall, a disk taken offline, ports.
#include <algorithm>

#include "api/src/interface/wire/io_queues.h"
#include "sim/firmware/controller.h"
#include "sim/firmware/opcodes.h"
#include "sim/firmware/reply.h"

namespace qrx::sim {

std::optional<Completion> Controller::diagnose(const nvme_admin_cmd& command, std::span<QRX_U8> data)
{
    const auto argument = static_cast<QRX_U16>(command.cdw12 >> 16);
    switch (static_cast<QRX_U16>(command.cdw12)) {
    case vendor::kReadErrorStatus:
        return complete(status::kSuccess, diagnostics.error_status);
    case vendor::kClearErrorStatus:
        diagnostics.error_status = 0;
        tell(Event::kAdapter, 0, "has its error status cleared");
        return complete(Verdict::kGood);
    case vendor::kCrash:
        crash();
        return complete(Verdict::kGood);
    case vendor::kReadIoQueues:
        return read_io_queues(data);
    case vendor::kDelay:
        diagnostics.stall = QRX_U64{argument & 0xFFU} * 1000;  // none goes on: this command has waited for its end
        return complete(Verdict::kGood);
    case vendor::kCheckAlive:
        return complete(Verdict::kGood);
    case vendor::kSwitchPorts:
        return complete(switch_ports(argument));
    case vendor::kTakeOffline:
        return complete(take_offline(argument));
    case vendor::kReadVdmLog:
        return read_log(vdm_console(), data);
    case vendor::kReadVdmLogStatus:
        return read_log_status(vdm_console(), data);
    case vendor::kSwitchVdmLog:
        return complete(switch_log(vdm_console(), command.cdw14));
    default:
        return std::nullopt;
    }
}

void Controller::crash()
{
    diagnostics.error_status |= Diagnostics::kCrashLog;
    mailbox.clear();
    endpoint = {};
    restart();
    tell(Event::kAdapter, 0, "has crashed as it was told to; firmware " + slots.running() + " runs again", {},
         QRX_NVME_EVT_SEVERITY_CRITICAL);
}

Completion Controller::read_io_queues(std::span<QRX_U8> data) const
{
    // This host has what its driver was granted; nobody uses the other functions.
    const QRX_U32 granted = features.values[*Features::index(feature::kNumberOfQueues)];
    IOQNData queues{};
    queues.maxCtrl = std::min<QRX_U32>(
        kFirstVirtualFunction + adapter_record().VisibleVfNum[0] + adapter_record().VisibleVfNum[1], kHostFunctions);
    if (controller_id < queues.maxCtrl) {
        queues.ioqnh[controller_id].NIOQ = static_cast<QRX_U8>((granted & 0xFFFF) + 1);
    }
    return reply_with(data, queues);
}

void Controller::note_message(const std::string& line)
{
    if (diagnostics.vdm_on) {
        diagnostics.vdm_log.add(clock, line);
    }
}

Verdict Controller::switch_ports(QRX_U16 dual)
{
    if (dual > 1) {
        return Verdict::kInvalidParameter;
    }
    diagnostics.dual_port = dual == 1;
    tell(Event::kAdapter, 0, diagnostics.dual_port ? "has two ports" : "has a single port");
    return Verdict::kGood;
}

Verdict Controller::take_offline(QRX_U16 pd)
{
    Drive* const drive = drive_of(pd);
    if (drive == nullptr) {
        return Verdict::kInvalidPd;
    }
    if (drive->failed) {
        return Verdict::kFailed;  // it is already
    }
    set_down(*drive, "is taken offline", "_OFFLINE", QRX_NVME_EVT_SEVERITY_WARNING);
    return Verdict::kGood;
}

}  // namespace qrx::sim
