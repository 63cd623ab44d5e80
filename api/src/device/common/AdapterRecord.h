// The vendor command that reads a controller's identity and capabilities, and the record out of its answer.
#pragma once

#include <array>
#include <optional>
#include <span>

#include "api/src/interface/wire/adapter.h"
#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/command.h"
#include "api/src/interface/wire/envelope.h"

namespace qrx {

// One page of command data.
using Page = std::array<QRX_U8, wire::kPageSize>;

inline constexpr QRX_U8 kSubReadAdapterInfo = 0x00;
inline constexpr QRX_U8 kSubSetTime = 0x03;
inline constexpr QRX_U8 kSubReadVdInfo = 0x00;

constexpr _qrx_admin_command_format readAdapterCommand()
{
    _qrx_admin_command_format command{};
    command.CDW[0] = kVendorRead;
    command.CDW[12] = vendorWord(kGroupAdapter, kSubReadAdapterInfo);
    command.cdw_flag = 0x5001;
    return command;
}

// The firmware's verdict in the envelope of a page.
inline QRX_U8 commandStatus(const Page& page)
{
    return page[offsetof(_NVMEReceiveData, cmd_status)];
}

// The record behind the envelope, of which nothing is checked here.
template <class Record>
Record payload(const Page& page)
{
    static_assert(kReceiveDataOffset + sizeof(Record) <= wire::kPageSize);
    return *wire::read<Record>(page, kReceiveDataOffset);
}

}  // namespace qrx
