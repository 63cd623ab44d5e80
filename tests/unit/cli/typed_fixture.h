// A machine for the commands that use the typed interface: that of the storage commands, and its pair command road.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>

#include "tests/unit/api/pair_script.h"
#include "tests/unit/cli/run_unlisted.h"
#include "tests/unit/cli/storage_fixture.h"

namespace qrx::test {

// Requests to the current controller, and their answers.
class TypedTest : public StorageTest {
protected:
    static Bytes joined(Bytes front, const Bytes& back)
    {
        const std::size_t length = front.size();
        front.resize(length + back.size());
        std::copy(back.begin(), back.end(), front.begin() + static_cast<std::ptrdiff_t>(length));
        return front;
    }
    // What a request about the one disk `id` sends, and what a device may make of it in its answer.
    static Bytes header(QRX_U16 id)
    {
        return {0, 0, 2, 0, static_cast<QRX_U8>(id & 0xFF), static_cast<QRX_U8>(id >> 8), 1, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    }
    template <class Record>
    static Bytes listed(const Record& record)
    {
        return joined(pattern(sizeof(RequestHeader)), bytesOf(record));
    }

    PairScript pair{machine, 1};
    PairScript other{machine, 0};
};

// The help block.
inline std::string helpPage(const char* brief, const char* text)
{
    return std::string("Description") + brief + text;
}

}  // namespace qrx::test
