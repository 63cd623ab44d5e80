#include "sim/firmware/pair_mailbox.h"

#include <algorithm>
#include <cstring>

namespace qrx::sim {

bool PairMailbox::addressed(const nvme_admin_cmd& command)
{
    return command.cdw10 == wire::kPageSize / sizeof(QRX_U32) && command.cdw15 == kFrameSignWord;
}

bool PairMailbox::keep(std::span<const QRX_U8> frame)
{
    clear();
    const auto head = wire::read<_NVMESendData>(frame);
    if (!head || frame.size() < wire::kPageSize || std::memcmp(head->sign, kFrameSign, sizeof(kFrameSign)) != 0 ||
        head->cmd_length == 0 || head->cmd_length > words.size() || head->data_offset != kSendDataOffset ||
        head->data_length > kRequestMax) {
        return false;
    }
    std::copy_n(std::begin(head->vendor_cmd), head->cmd_length, words.begin());
    const auto record = frame.subspan(kSendDataOffset, head->data_length);
    request.assign(record.begin(), record.end());
    pending = true;
    return true;
}

void PairMailbox::clear()
{
    pending = false;
    words = {};
    request.clear();
}

}  // namespace qrx::sim
