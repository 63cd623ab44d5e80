#include "sim/launcher/control_command.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>

#include "sim/firmware/aer.h"
#include "sim/firmware/factory.h"
#include "sim/firmware/key_value.h"
#include "sim/firmware/raid_rules.h"
#include "sim/launcher/show_board.h"
#include "sim/launcher/show_children.h"
#include "sim/launcher/workload_text.h"

namespace qrx::sim {
namespace {

struct Row {
    std::string_view name;
    std::string_view argument;  // as the usage shows it
    ControlArgument kind;
};

constexpr auto kRows = std::to_array<Row>({
    {"advance", "<30s|5m|2h>", ControlArgument::text},
    {"fail-drive", "<id>", ControlArgument::text},
    {"replace-drive", "<id>", ControlArgument::text},
    {"remove-drive", "<id>", ControlArgument::text},
    {"oem-data", "<what>", ControlArgument::text},
    {"hba-info", "<what>", ControlArgument::text},
    {"config-reads", "<id>=<answer>", ControlArgument::text},
    {"aer", "<id>=<error>", ControlArgument::text},
    {"io", "<what>", ControlArgument::text},
    {"child-event", "<id>=<event>", ControlArgument::text},
    {"reset", "", ControlArgument::none},
    {"firmware", "", ControlArgument::none},
    {"events", "", ControlArgument::none},
    {"show", "[pins|features|children|diagnostics]", ControlArgument::optional_text},
    {"save", "<file>", ControlArgument::file_to_write},
    {"mount-table", "<file>", ControlArgument::file_to_read},
    {"help", "", ControlArgument::none},
});

std::optional<unsigned> number_in(std::string_view text)
{
    unsigned value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

// "1:02:03.004"; the milliseconds only where there are some.
std::string time_text(QRX_U64 milliseconds)
{
    const QRX_U64 seconds = milliseconds / 1000;
    std::array<char, 48> text{};
    (void)std::snprintf(text.data(), text.size(), "%llu:%02llu:%02llu", static_cast<unsigned long long>(seconds / 3600),
                        static_cast<unsigned long long>(seconds / 60 % 60),
                        static_cast<unsigned long long>(seconds % 60));
    return text.data();
}

const char* status_word(QRX_U8 status)
{
    switch (status) {
    case kVdFunctional:
        return "functional";
    case kVdDegrade:
        return "degraded";
    case kVdOffline:
        return "offline";
    case kVdMissing:
        return "missing";
    case kVdForeign:
        return "foreign";
    case kVdImportable:
        return "importable";
    case kVdInitialization:
        return "initializing";
    case kVdRebuilding:
        return "rebuilding";
    default:
        return "in another state";
    }
}

std::string activity_text(const std::optional<BackgroundActivity>& activity)
{
    if (!activity) {
        return {};
    }
    const QRX_U64 left = activity->duration - std::min(activity->elapsed, activity->duration);
    return std::string(", ") + activity_name(activity->type) + " " + std::to_string(activity->percentage()) + "%" +
           (activity->running() ? ", " + time_text(left) + " left" : ", paused");
}

std::string workload_text(const std::optional<Workload>& load)
{
    return load ? ", read and written for another " + time_text(load->duration - load->elapsed) : std::string();
}

std::string members_text(const VirtualDisk& vd)
{
    std::string text;
    for (const QRX_U16 pd : vd.members) {
        text += (text.empty() ? "" : ", ") + (pd == kMissingMember ? std::string("missing") : std::to_string(pd));
    }
    return text;
}

std::string show_storage(const Controller& controller)
{
    std::string text = "controller " + std::to_string(controller.number) + ": " +
                       (controller.adapter.raid() ? "RAID" : "JBOF") + ", up " + time_text(controller.clock.uptime) +
                       "\n";
    for (const Drive& drive : controller.drives) {
        const char* const use = drive.failed ? "failed" : controller.assigned(drive.id) ? "assigned" : "free";
        text += "  PD " + std::to_string(drive.id) + ": " + use + ", " + std::to_string(drive.bytes() / 1000000000) +
                " GB, serial number " + drive.serial +
                (drive.importable ? ", carries another controller's configuration" : "") +
                activity_text(drive.activity) + "\n";
    }
    for (const VirtualDisk& vd : controller.virtual_disks) {
        const RaidRule* const rule = find_raid_rule(vd.raid_mode);
        text += "  VD " + std::to_string(vd.id) + ": " + std::string(rule != nullptr ? rule->name : "unknown mode") +
                " over PD " + members_text(vd) + ", " + status_word(vd.status) +
                (vd.initialized ? "" : ", not yet initialized") + activity_text(vd.activity) + "\n";
    }
    for (const Namespace& ns : controller.namespaces) {
        if (ns.valid) {
            text += "  NS " + std::to_string(ns.nsid) + ": on " + (ns.parent_kind == kNsParentVd ? "VD " : "PD ") +
                    std::to_string(ns.parent) + ", " + std::to_string(ns.sectors) + " sectors, " +
                    (ns.shared ? "shared, " : "private, ") + (ns.active ? "attached" : "not attached") +
                    workload_text(ns.io.workload) + "\n";
        }
    }
    return text;
}

Result<std::string> show(const Controller& controller, const std::string& what)
{
    if (what.empty()) {
        return show_storage(controller);
    }
    if (what == "pins") {
        return show_pins(controller);
    }
    if (what == "features") {
        return show_features(controller);
    }
    if (what == "children") {
        return show_children(controller);
    }
    if (what == "diagnostics") {
        return show_diagnostics(controller);
    }
    return Failure{"show: '" + what + "' is none of pins, features, children, diagnostics"};
}

std::string show_slots(const std::string& name, const NvmeFunction& function)
{
    const FirmwareSlots& slots = function.slots;
    std::string text = name + ": " + slots.running() + " runs, slot " + std::to_string(slots.active) +
                       (slots.next != 0 ? ", next slot " + std::to_string(slots.next) : "") +
                       (function.download.empty()
                            ? ""
                            : ", " + std::to_string(function.download.size()) + " bytes downloaded and not committed") +
                       "\n";
    for (unsigned slot = 1; slot <= slots.count; ++slot) {
        const FirmwareContent& content = slots.contents[slot - 1];
        text += "  slot " + std::to_string(slot) + ": " + (content.revision.empty() ? "empty" : content.revision);
        if (content.size != 0) {
            std::array<char, 64> detail{};
            (void)std::snprintf(detail.data(), detail.size(), ", %lu bytes, CRC 0x%08lx",
                                static_cast<unsigned long>(content.size), static_cast<unsigned long>(content.crc));
            text += (content.version.empty() ? "" : ", version " + content.version) + detail.data();
        }
        text += std::string(content.revoked ? ", revoked" : "") + (slots.writable(slot) ? "" : ", read-only") + "\n";
    }
    return text;
}

std::string show_firmware(const Controller& controller)
{
    std::string text = show_slots("controller " + std::to_string(controller.number), controller);
    for (const Drive& drive : controller.drives) {
        text += show_slots("PD " + std::to_string(drive.id), drive);
    }
    return text;
}

std::string list_events(const Controller& controller)
{
    std::string text;
    for (const Event& event : controller.events.entries) {
        text += time_text(event.uptime) + "  " + event.sentence() + "\n";
    }
    return text.empty() ? "nothing has happened yet\n" : text;
}

Result<Controller*> find_controller(Machine& machine, std::optional<unsigned> number)
{
    const auto& controllers = machine.parts().controllers;
    if (controllers.empty()) {
        return Failure{"the machine has no controller"};
    }
    Controller* const found = machine.controller(number.value_or(controllers.front().number));
    if (found != nullptr) {
        return found;
    }
    std::string numbers;
    for (const Controller& controller : controllers) {
        numbers += (numbers.empty() ? "" : ", ") + std::to_string(controller.number);
    }
    return Failure{"there is no controller " + std::to_string(*number) + "; there are " + numbers};
}

Result<std::string> done(const ControlRequest& request, const std::optional<Failure>& failure)
{
    return failure ? Result<std::string>(Failure{request.command + ": " + failure->text}) : std::string();
}

Result<std::string> put_error(Controller& controller, const ControlRequest& request)
{
    const KeyValue piece = split_key_value(request.argument);
    const std::optional<unsigned> id = number_in(piece.key);
    if (!id || !piece.has_value) {
        return Failure{"aer: '" + request.argument + "' is no drive id, '=' and error; errors are " + aer_errors()};
    }
    return done(request, controller.put_pcie_error(*id, piece.value));
}

Result<std::string> start_io(Controller& controller, const ControlRequest& request)
{
    const Result<WorkloadRequest> wanted = parse_workload(request.argument);
    return wanted ? done(request, controller.start_workload(wanted->nsid, wanted->workload))
                  : Failure{"io: " + wanted.error()};
}

Result<std::string> change_config_reads(Controller& controller, const ControlRequest& request)
{
    const KeyValue piece = split_key_value(request.argument);
    const std::optional<unsigned> id = number_in(piece.key);
    const auto answer = config_answer(piece.value);
    if (!id || !answer) {
        return Failure{"config-reads: '" + request.argument + "' is no drive id, '=' and answer; answers are " +
                       config_answers()};
    }
    return done(request, controller.answer_config_reads(*id, *answer));
}

Result<std::string> change_child(Controller& controller, const ControlRequest& request)
{
    const std::string_view argument = request.argument;
    const std::size_t equals = std::min(argument.find('='), argument.size());
    const std::optional<unsigned> id = number_in(argument.substr(0, equals));
    if (!id || *id > ChildControllers::kMaxId) {
        return Failure{"child-event: '" + request.argument + "' is no id of a child controller, '=' and event"};
    }
    return done(request, controller.befall_child(static_cast<QRX_U16>(*id),
                                                 argument.substr(std::min(equals + 1, argument.size()))));
}

Result<std::string> change_drive(Controller& controller, const ControlRequest& request)
{
    const std::optional<unsigned> id = number_in(request.argument);
    if (!id) {
        return Failure{request.command + ": '" + request.argument + "' is no drive id; ids are decimal numbers"};
    }
    std::optional<Failure> failure;
    if (request.command == "fail-drive") {
        failure = controller.fail_drive(*id);
    } else if (request.command == "replace-drive") {
        failure = controller.replace_drive(*id);
    } else {
        failure = controller.remove_drive(*id);
    }
    return done(request, failure);
}

}  // namespace

Result<ControlArgument> control_argument(std::string_view command)
{
    const auto* const found =
        std::find_if(kRows.begin(), kRows.end(), [command](const Row& row) { return row.name == command; });
    if (found != kRows.end()) {
        return found->kind;
    }
    std::string names;
    for (const Row& row : kRows) {
        names += (names.empty() ? "" : ", ") + std::string(row.name);
    }
    return Failure{"unknown command '" + std::string(command) + "'; known are " + names};
}

Result<Clock::Duration> parse_duration(std::string_view text)
{
    constexpr unsigned kMostSeconds = 1000U * 24 * 3600;
    constexpr std::array<std::pair<char, unsigned>, 3> kUnits{{{'s', 1}, {'m', 60}, {'h', 3600}}};
    const std::optional<unsigned> number = text.empty() ? std::nullopt : number_in(text.substr(0, text.size() - 1));
    for (const auto& [letter, seconds] : kUnits) {
        if (number && text.back() == letter && *number <= kMostSeconds / seconds) {
            return Clock::Duration(std::chrono::seconds(QRX_U64{*number} * seconds));
        }
    }
    return Failure{"'" + std::string(text) +
                   "' is no time; allowed are a number and a unit, such as 30s, 5m or 2h, up to 24000h"};
}

Result<std::string> carry_out(Machine& machine, const ControlRequest& request)
{
    const Result<ControlArgument> kind = control_argument(request.command);
    if (!kind) {
        return Failure{kind.error()};
    }
    if (request.command == "help") {
        return std::string(control_usage());
    }
    if (request.command == "save") {
        return save_machine(machine);
    }
    if (request.command == "mount-table") {
        machine.set_mount_table(request.argument);
        return std::string();
    }
    if (request.command == "advance") {
        const Result<Clock::Duration> duration = parse_duration(request.argument);
        if (!duration) {
            return Failure{"advance: " + duration.error()};
        }
        machine.advance(*duration);
        return std::string();
    }
    const Result<Controller*> controller = find_controller(machine, request.controller);
    if (!controller) {
        return Failure{controller.error()};
    }
    if (request.command == "show") {
        return show(**controller, request.argument);
    }
    if (request.command == "firmware") {
        return show_firmware(**controller);
    }
    if (request.command == "config-reads") {
        return change_config_reads(**controller, request);
    }
    if (request.command == "aer") {
        return put_error(**controller, request);
    }
    if (request.command == "io") {
        return start_io(**controller, request);
    }
    if (request.command == "child-event") {
        return change_child(**controller, request);
    }
    if (request.command == "reset") {
        (*controller)->reset();
        return std::string();
    }
    if (request.command == "events") {
        return list_events(**controller);
    }
    if (request.command == "oem-data") {
        return done(request, (*controller)->set_oem_data(request.argument));
    }
    if (request.command == "hba-info") {
        return done(request, (*controller)->settings.set_damage(request.argument));
    }
    return change_drive(**controller, request);
}

std::string_view control_usage()
{
    return R"(Usage: qrx_sim ctl [--controller <number>] [--control <socket> | --state <file>] <command>

Reaches into a simulated machine while programs run on it. A program under qrx_sim finds its machine by itself; from
another terminal give the socket that the other qrx_sim was started with, or the state file of a machine at rest.

  advance <30s|5m|2h>     let simulated time go by, on all controllers
  fail-drive <id>         make a drive fail
  replace-drive <id>      put a fresh drive in the place of another, or in an empty one
  remove-drive <id>       pull a drive
  oem-data <what>         the OEM record: factory, erased, bad-signature, bad-checksum or bad-length
  hba-info <what>         the stored settings: intact, bad-signature or bad-checksum
  config-reads <id>=<answer>
                          how reads of a drive's configuration space end: data, unsupported-request, retry, timeout,
                          abort, or none, never
  aer <id>=<error>        put an error into a drive's PCIe error registers, such as 1=completion-timeout; none clears
                          them
  io <what>               other programs read and write a namespace, such as ns=1,reads=9000,writes=500,blocks=8,
                          seconds=10; without blocks 8 at a time, without seconds within one
  child-event <id>=<event>
                          what befalls a child controller: fatal, health or other
  reset                   take the controller's power away and give it back: new firmware runs
  firmware                what the firmware slots of controller and drives hold
  events                  what has happened, with the time since power-on
  show                    drives, virtual disks and namespaces, a line each
  show pins               power and PERST# lines of the drives, and LEDs
  show features           switched features, the place of the VPD, the SPI flash
  show children           mode and privilege of the multi-function device, and its child controllers
  show diagnostics        error status, ports, a stall, the VDM log
  save <file>             write the machine's state to a file
  mount-table <file>      give the machine another mount table
  help                    show this page
)";
}

}  // namespace qrx::sim
