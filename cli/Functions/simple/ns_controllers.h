// The controllers that a namespace is attached to, or detached from.
#pragma once

#include <string_view>

#include "api/src/interface/wire/ns.h"
#include "api/src/interface/wire/types.h"

namespace qrx::ns {

inline constexpr char kInvalidController[] = "invalid controller id '%s'\n";

// Stores a number less `base`; false after a complaint, of which `negative` takes the word.
bool readShifted(const char* word, int base, int& field, const char* notNumber, const char* negative);

// Appends comma-separated ids less `base` to the list; false after a complaint. Empty elements are passed over.
bool addControllers(std::string_view list, int base, NVME_NS_ATTACHMENT_PRP& controllers);

// Whether the current controller has the command; tells when not.
bool hasAttachment();

// What is said of it first.
constexpr const char* attachmentWord(bool attaches)
{
    return attaches ? "Attach" : "Detach";
}

// Sends Namespace Attachment to the current controller. Returns the device's status, whose text is printed.
int sendAttachment(bool attaches, QRX_U32 nsid, NVME_NS_ATTACHMENT_PRP& controllers);

}  // namespace qrx::ns
