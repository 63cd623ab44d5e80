// One admin command of a handler, from its words to its answer.
#include "cli/Public/frame/admin_command.h"

#include <cassert>
#include <cstddef>
#include <cstring>
#include <iterator>

#include "api/src/interface/agent.h"
#include "cli/Public/frame/report.h"

namespace qrx {

namespace {

// The channel takes mutable buffers in both directions, and writes only to those of data_out.
void* asInput(const void* data)
{
    return const_cast<void*>(data);
}

QRX_U16 length(std::size_t size)
{
    assert(size <= wire::kPageSize);
    return static_cast<QRX_U16>(size);
}

}  // namespace

AdminCommand& AdminCommand::word(unsigned index, QRX_U32 value)
{
    assert(index < std::size(record_.CDW));
    record_.CDW[index] = value;
    filled_ |= 1U << index;
    record_.cdw_flag = static_cast<QRX_U16>(filled_);
    return *this;
}

AdminCommand& AdminCommand::flag(QRX_U16 cdw_flag)
{
    record_.cdw_flag = cdw_flag;
    return *this;
}

AdminCommand& AdminCommand::controlId(QRX_U16 control_id)
{
    record_.control_id = control_id;
    return *this;
}

void AdminCommand::debug() const
{
    for (const unsigned index : {0U, 10U, 11U, 12U, 13U, 14U, 15U}) {
        if ((filled_ & 1U << index) != 0) {
            debug({index});
        }
    }
}

void AdminCommand::debug(std::initializer_list<unsigned> words) const
{
    for (const unsigned index : words) {
        if (dbg_enable != 0) {
            print(index < 10 ? "CDW[%u] : 0x%08x\n" : "CDW[%u]: 0x%08x\n", index, record_.CDW[index]);
        }
    }
}

int AdminCommand::send(QRX_U8 adapter) const
{
    return static_cast<int>(QRX_Adapter_PassthruAdmin(adapter, asInput(&record_), nullptr, 0, nullptr, 0, nullptr));
}

int AdminCommand::transmit(std::span<const QRX_U8> data, QRX_U8 adapter, QRX_U32* result) const
{
    return static_cast<int>(QRX_Adapter_PassthruAdmin(adapter, asInput(&record_), asInput(data.data()),
                                                      length(data.size()), nullptr, 0, result));
}

int AdminCommand::receive(std::span<QRX_U8> data, QRX_U8 adapter, QRX_U32* result) const
{
    return static_cast<int>(
        QRX_Adapter_PassthruAdmin(adapter, asInput(&record_), nullptr, 0, data.data(), length(data.size()), result));
}

int AdminCommand::receiveQuietly(std::span<QRX_U8> data, QRX_U8 adapter) const
{
    return static_cast<int>(QRX_Adapter_PassthruAdmin_no_status_code(adapter, asInput(&record_), nullptr, 0,
                                                                     data.data(), length(data.size())));
}

AdminCommand vendorCommand(QRX_U8 group, QRX_U8 subOpcode, QRX_U16 unit, QRX_U32 opcode)
{
    return AdminCommand(opcode).word(12, vendorWord(group, subOpcode, unit));
}

int carryOut(const AdminCommand& command, const char* failure, const char* success)
{
    command.debug();
    return report(command.send(), failure, success);
}

bool Response::isSigned() const
{
    return std::memcmp(page_.data(), kFrameSign, 3) == 0;
}

bool Response::checkSign() const
{
    const bool good = isSigned();
    if (!good && dbg_enable != 0) {
        print("receive sign get 0x%x 0x%x 0x%x expect 0x%x 0x%x 0x%x\n", page_[0], page_[1], page_[2], kFrameSign[0],
              kFrameSign[1], kFrameSign[2]);
    }
    return good;
}

}  // namespace qrx
