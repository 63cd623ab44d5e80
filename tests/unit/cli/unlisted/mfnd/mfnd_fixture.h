// What the tests of the multi-function device share.
#pragma once

#include <cstring>
#include <string>

#include "cli/Functions/msft/mfnd.h"
#include "tests/unit/cli/run_unlisted.h"
#include "tests/unit/cli/storage_fixture.h"

namespace qrx::test {

// Writes the low `size` bytes of a number.
inline void putNumber(Bytes& bytes, std::size_t at, std::size_t size, QRX_U32 value)
{
    for (std::size_t i = 0; i < size; ++i) {
        bytes.at(at + i) = static_cast<QRX_U8>(value >> 8 * i);
    }
}

inline void putText(Bytes& bytes, std::size_t at, const std::string& text)
{
    std::copy(text.begin(), text.end(), bytes.begin() + static_cast<long>(at));
}

// The help block of a command.
inline std::string helpOf(const std::string& brief, const char* help)
{
    return "Description" + brief + help;
}

// A row of a page: the label in its width, and the value.
inline std::string row(std::size_t width, std::string label, const std::string& value)
{
    label.resize(std::max(width, label.size()), ' ');
    return label + " " + value + "\n";
}

inline std::string needs(const std::string& command, char letter)
{
    return command + ": option -" + letter + " is required\n";
}

// What the channel prints of a failed command, on standard output.
inline const std::string kInvalidField = "Invalid Field in Command (Status Code: 0x2)\n";
inline const std::string kDuplicate = "Duplicated option specified.\n";

class MfndTest : public StorageTest {
protected:
    // A command to the current controller with CDW0 and CDW10.
    static Command sent(QRX_U32 cdw0, QRX_U32 cdw10, QRX_U16 flag = 0x401)
    {
        return Command::passthru(cdw0).word(10, cdw10).flag(flag).on(1);
    }
    // One that fills a page, which is zeroed until then.
    static Command fills(QRX_U32 cdw0, QRX_U32 cdw10, QRX_U16 flag = 0x401)
    {
        return sent(cdw0, cdw10, flag).receives(4096).carries(Bytes(4096));
    }
    static Outcome nothingSent(int result, const std::string& stream) { return {result, stream}; }
};

}  // namespace qrx::test
