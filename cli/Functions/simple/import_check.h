// What an import asks before it is sent, whichever way it goes.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "api/src/interface/wire/types.h"
#include "api/src/interface/wire/vd.h"

namespace qrx {

// Store the argument of -i and of -l as it was read from `word`; false after a complaint.
bool takeController(std::optional<std::int32_t> id, const char* word, QRX_U8& adapter);
bool takeVd(std::optional<std::int32_t> id, const char* word, QRX_U16& vd);

// Whether a controller has these features; tells when not.
bool canImport(QRX_U8 adapter, QRX_U32 features);

// How one VD is taken over.
struct VdImport {
    int shown;                                // its id for the user
    std::function<bool(NVME_VD_Info&)> read;  // its record; false: could not be read
    std::function<bool()> send;               // the import; false: refused
    const char* success;                      // takes the id
};
// Imports a VD that is importable, and tells how it went.
void importVd(const VdImport& how);

}  // namespace qrx
