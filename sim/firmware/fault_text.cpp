// The text form of a fault.
#include <array>
#include <string>

#include "sim/firmware/errno_name.h"
#include "sim/firmware/fault_injector.h"
#include "sim/firmware/key_value.h"

namespace qrx::sim {

namespace {

constexpr QRX_U64 kAny64 = ~QRX_U64{0};
constexpr QRX_U64 kMaxStatus = 0x7FFF;
constexpr QRX_U64 kMaxDelay = QRX_U64{3600} * 1000 * 1000;  // an hour

class Parser {
public:
    explicit Parser(std::string_view text) : text_(text) {}

    Result<Fault> parse()
    {
        for (const KeyValue& piece : split_key_values(text_)) {
            read(piece);  // after a failure nothing that fails is told any more
        }
        check();
        if (!error_.empty()) {
            return Failure{"fault '" + std::string(text_) + "': " + error_};
        }
        return fault_;
    }

private:
    void fail(const std::string& text)
    {
        if (error_.empty()) {
            error_ = text;
        }
    }

    // Puts the number into `field`, which must not have one yet.
    template <class Number>
    void number(const KeyValue& piece, std::optional<Number>& field, QRX_U64 least, QRX_U64 most)
    {
        const auto value = parse_number(piece.value);
        if (field) {
            fail("'" + std::string(piece.key) + "' is given twice");
        } else if (!value || *value < least || *value > most) {
            fail("'" + std::string(piece.value) + "' is no value of '" + std::string(piece.key) +
                 "'; allowed are numbers from " + std::to_string(least) + " to " + std::to_string(most));
        } else {
            field = static_cast<Number>(*value);
        }
    }

    void queue(const KeyValue& piece)
    {
        if (fault_.admin_queue) {
            fail("'queue' is given twice");
        } else if (piece.value != "admin" && piece.value != "io") {
            fail("'" + std::string(piece.value) + "' is no value of 'queue'; allowed are 'admin' and 'io'");
        } else {
            fault_.admin_queue = piece.value == "admin";
        }
    }

    void error_number(const KeyValue& piece)
    {
        const auto error = parse_errno(piece.value);
        if (fault_.error) {
            fail("'errno' is given twice");
        } else if (!error) {
            fail("'" + std::string(piece.value) + "' is no value of 'errno'; allowed are numbers from 1 to 4095 and " +
                 errno_names());
        } else {
            fault_.error = error;
        }
    }

    void delay(const KeyValue& piece)
    {
        struct Unit {
            std::string_view name;
            QRX_U64 microseconds;
        };
        // "s" last: the others end with it too.
        static constexpr std::array<Unit, 3> kUnits{{{"us", 1}, {"ms", 1000}, {"s", 1000ULL * 1000}}};
        std::optional<QRX_U64> time;
        for (const Unit& unit : kUnits) {
            if (piece.value.ends_with(unit.name)) {
                const auto count = parse_number(piece.value.substr(0, piece.value.size() - unit.name.size()));
                if (count && *count <= kMaxDelay / unit.microseconds) {
                    time = *count * unit.microseconds;
                }
                break;
            }
        }
        if (fault_.delay) {
            fail("'delay' is given twice");
        } else if (!time) {
            fail("'" + std::string(piece.value) +
                 "' is no value of 'delay'; allowed are a number and 'us', 'ms' or 's', at most 3600s");
        } else {
            fault_.delay = std::chrono::microseconds(*time);
        }
    }

    void read(const KeyValue& piece)
    {
        if (piece.key == "corrupt") {
            if (piece.has_value) {
                number(piece, fault_.corrupt, 0, kAny64);
            } else {
                number({piece.key, "1", true}, fault_.corrupt, 0, kAny64);
            }
        } else if (piece.key == "nth") {
            number(piece, fault_.nth, 1, kAny64);
        } else if (piece.key == "every") {
            number(piece, fault_.every, 1, kAny64);
        } else if (piece.key == "opcode") {
            number(piece, fault_.opcode, 0, 0xFF);
        } else if (piece.key == "command") {
            number(piece, fault_.command, 0, 0xFFFF);
        } else if (piece.key == "device") {
            number(piece, fault_.device, 0, 0xFFFFFFFF);
        } else if (piece.key == "status") {
            number(piece, fault_.status, 1, kMaxStatus);
        } else if (piece.key == "short") {
            number(piece, fault_.shorten, 0, 0xFFFFFFFF);
        } else if (piece.key == "cmd-status") {
            number(piece, fault_.cmd_status, 0, 0xFF);
        } else if (piece.key == "unsigned" && !piece.has_value) {
            if (fault_.unsign) {
                fail("'unsigned' is given twice");
            }
            fault_.unsign = true;
        } else if (piece.key == "queue") {
            queue(piece);
        } else if (piece.key == "errno") {
            error_number(piece);
        } else if (piece.key == "delay") {
            delay(piece);
        } else {
            fail("unknown word '" + std::string(piece.key) +
                 "'; allowed are nth=, every=, opcode=, command=, queue=, device= to choose commands, and status=, "
                 "errno=, short=, cmd-status=, unsigned, corrupt, corrupt=, delay= for what befalls them");
        }
    }

    void check()
    {
        if (fault_.status && fault_.error) {
            fail("status and errno exclude each other");
        }
        if (fault_.nth && fault_.every) {
            fail("nth and every exclude each other");
        }
        if ((fault_.status || fault_.error) && fault_.damages()) {
            fail("a command that ends with status or errno has no answer to be damaged");
        }
        if (!fault_.status && !fault_.error && !fault_.damages() && !fault_.delay) {
            fail("it does nothing; add status=, errno=, short=, cmd-status=, unsigned, corrupt or delay=");
        }
    }

    std::string_view text_;
    Fault fault_;
    std::string error_;
};

}  // namespace

Result<Fault> parse_fault(std::string_view text)
{
    return Parser(text).parse();
}

}  // namespace qrx::sim
