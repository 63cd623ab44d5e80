// The words for what happened to a controller and what is behind it.
#include "cli/Public/errorMsg.h"

#include <algorithm>
#include <array>
#include <span>

#include "api/src/interface/wire/event.h"

namespace {

struct Message {
    QRX_U32 code;
    const char* text;
};

constexpr auto kAdapterMessages = std::to_array<Message>({
    {QRX_NVME_EVT_BGA_CHANGE, "Background activity rate changed to %d%%"},
    {QRX_NVME_EVT_SHUTDOWN, "Shutdown command received from host"},
    {QRX_NVME_EVT_AUTOREBUILD_OFF, "Auto-rebuild has been disabled"},
    {QRX_NVME_EVT_AUTOREBUILD_ON, "Auto-rebuild has been enabled"},
    {QRX_NVME_EVT_NO_CONFIGURATION, "No configuration exist"},
});

constexpr auto kPdMessages = std::to_array<Message>({
    {QRX_NVME_EVT_PD_ONLINE, "physical disk %d is plugged in"},
    {QRX_NVME_EVT_PD_OFFLINE, "physical disk %d is plugged out"},
    {QRX_NVME_EVT_PD_SET_DOWN, "physical disk %d is set down"},
    {QRX_NVME_EVT_PD_TIME_OUT, "request to physical disk %d is timed out"},
    {QRX_NVME_EVT_PD_RW_ERROR, "physical disk %d read write error"},
    {QRX_NVME_EVT_PD_DFT_ADD, "physical disk %d DFT added"},
    {QRX_NVME_EVT_PD_DFT_REMOVE_FIX, "physical disk %d DFT is removed and fixed"},
    {QRX_NVME_EVT_PD_DFT_REMOVE_NOT_FIX, "physical disk %d DFT is removed but not fixed"},
    {QRX_NVME_EVT_PD_REBUILD_TARGETTOOSMALL, "Capacity of physical disk %d is too small to be used for auto-rebuild"},
    {QRX_NVME_EVT_PD_READ_ERROR, "Physical disk %d read error"},
    {QRX_NVME_EVT_PD_WRITE_ERROR, "Physical disk %d write error"},
});

constexpr auto kVdMessages = std::to_array<Message>({
    {QRX_NVME_EVT_VD_OFFLINE, "virtual disk %d is offline"},
    {QRX_NVME_EVT_VD_ONLINE, "virtual disk %d is online"},
    {QRX_NVME_EVT_VD_DEGRADED, "virtual disk %d is degraded"},
    {QRX_NVME_EVT_VD_CREATED, "virtual disk %d is created"},
    {QRX_NVME_EVT_VD_DELETE, "virtual disk %d is deleted"},
    {QRX_NVME_EVT_VD_IMPORT_COMPLETE, "Import virtual disk %d completed"},
    {QRX_NVME_EVT_VD_PD_MISSING, "physical disk of virtual disk %d is missing"},
    {QRX_NVME_EVT_VD_INIT_START, "init on virtual disk %d started"},
    {QRX_NVME_EVT_VD_INIT_ABORT, "init on virtual disk %d aborted"},
    {QRX_NVME_EVT_VD_INIT_COMPLETE, "init on virtual disk %d completed"},
    {QRX_NVME_EVT_VD_INIT_PROGRESS, "init on virtual disk %d is %d%% done"},
    {QRX_NVME_EVT_VD_INIT_TERMINATED, "init on virtual disk %d terminated"},
    {QRX_NVME_EVT_VD_REBUILD_START, "rebuild on virtual disk %d started"},
    {QRX_NVME_EVT_VD_REBUILD_ABORT, "rebuild on virtual disk %d aborted"},
    {QRX_NVME_EVT_VD_REBUILD_COMPLETE, "rebuild on virtual disk %d completed"},
    {QRX_NVME_EVT_VD_REBUILD_PROGRESS, "rebuild on virtual disk %d is %d%% done"},
    {QRX_NVME_EVT_VD_REBUILD_TERMINATED, "rebuild on virtual disk %d terminated"},
    {QRX_NVME_EVT_VD_MP_START, "media Patrol on virtual disk %d started"},
    {QRX_NVME_EVT_VD_MP_ABORT, "media Patrol on virtual disk %d aborted"},
    {QRX_NVME_EVT_VD_MP_COMPLETE, "media Patrol on virtual disk %d completed"},
    {QRX_NVME_EVT_VD_MP_PROGRESS, "media Patrol on virtual disk %d is %d%% done"},
    {QRX_NVME_EVT_VD_MP_TERMINATED, "media Patrol on virtual disk %d terminated"},
});

const char* find(std::span<const Message> messages, QRX_U32 code)
{
    const auto found =
        std::find_if(messages.begin(), messages.end(), [code](const Message& row) { return row.code == code; });
    return found == messages.end() ? "Unknown error" : found->text;
}

}  // namespace

const char* EventMessage(QRX_U32 classCode, QRX_U32 code)
{
    switch (classCode) {
    case QRX_NVME_EVT_CLASS_ADAPTER:
        return _evtAdapterMsg(code);
    case QRX_NVME_EVT_CLASS_PD:
        return _evtPDMsg(code);
    case QRX_NVME_EVT_CLASS_VD:
        return _evtVDMsg(code);
    case QRX_NVME_EVT_CLASS_NS:
        return _evtNSMsg(code);
    case QRX_NVME_EVT_CLASS_OEM:
        return _evtOEMMsg(code);
    default:
        return "Unknown event";
    }
}

const char* _evtAdapterMsg(QRX_U32 code)
{
    return find(kAdapterMessages, code);
}

const char* _evtPDMsg(QRX_U32 code)
{
    return find(kPdMessages, code);
}

const char* _evtVDMsg(QRX_U32 code)
{
    return find(kVdMessages, code);
}

const char* _evtNSMsg(QRX_U32 /*code*/)
{
    return "Not define yet.";
}

const char* _evtOEMMsg(QRX_U32 /*code*/)
{
    return "Not define yet.";
}
