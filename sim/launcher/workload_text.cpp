#include "sim/launcher/workload_text.h"

#include <algorithm>
#include <array>
#include <string>

#include "sim/firmware/key_value.h"

namespace qrx::sim {

namespace {

struct Field {
    std::string_view key;
    QRX_U64 least;
    QRX_U64 most;
};

enum Key : std::size_t { kNsid, kReads, kWrites, kBlocks, kSeconds };
constexpr std::array<Field, 5> kFields{{
    {"ns", 1, kIomonNamespaces},
    {"reads", 0, Workload::kMostCommands},
    {"writes", 0, Workload::kMostCommands},
    {"blocks", 1, Workload::kMostBlocks},
    {"seconds", 1, Workload::kMostSeconds},
}};

}  // namespace

Result<WorkloadRequest> parse_workload(std::string_view text)
{
    std::array<std::optional<QRX_U64>, kFields.size()> values{};
    for (const KeyValue& piece : split_key_values(text)) {
        const auto* const field =
            std::find_if(kFields.begin(), kFields.end(), [&](const Field& row) { return row.key == piece.key; });
        if (field == kFields.end()) {
            return Failure{"unknown word '" + std::string(piece.key) +
                           "'; allowed are ns=, reads=, writes=, blocks= and seconds="};
        }
        auto& value = values.at(static_cast<std::size_t>(field - kFields.begin()));
        if (value) {
            return Failure{"'" + std::string(piece.key) + "' is given twice"};
        }
        value = parse_number(piece.value);
        if (!value || *value < field->least || *value > field->most) {
            return Failure{"'" + std::string(piece.value) + "' is no value of '" + std::string(piece.key) +
                           "'; allowed are numbers from " + std::to_string(field->least) + " to " +
                           std::to_string(field->most)};
        }
    }
    WorkloadRequest request;
    request.workload.reads = values[kReads].value_or(0);
    request.workload.writes = values[kWrites].value_or(0);
    if (!values[kNsid] || request.workload.reads + request.workload.writes == 0) {
        return Failure{"'" + std::string(text) +
                       "' does not tell a namespace (ns=) and what happens to it (reads=, writes=)"};
    }
    request.nsid = static_cast<QRX_U32>(*values[kNsid]);
    request.workload.blocks = static_cast<QRX_U32>(values[kBlocks].value_or(request.workload.blocks));
    request.workload.duration = values[kSeconds].value_or(1) * 1000;
    return request;
}

}  // namespace qrx::sim
