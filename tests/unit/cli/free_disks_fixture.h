// For the commands that look for free disks by themselves.
#pragma once

#include <algorithm>
#include <vector>

#include "api/src/interface/wire/pd.h"
#include "tests/unit/cli/storage_fixture.h"

namespace qrx::test {

class FreeDisksTest : public StorageTest {
protected:
    // PDs 0 to the last one named, of which those named are free.
    void expectPds(QRX_U16 count, const std::vector<QRX_U16>& free)
    {
        current().MaxPD = static_cast<QRX_U8>(count);
        current().PortCount = 1;
        for (QRX_U16 id = 0; id < count; ++id) {
            NVME_PD_Info pd{};
            pd.ID = id;
            pd.Status = std::find(free.begin(), free.end(), id) != free.end() ? kPdMediaPatrol : kPdAssigned;
            machine.expect(pdFetch(id).data(envelope(pd)));
        }
    }
    static Command pdFetch(QRX_U32 id) { return page(0xE1, 0x5001).word(14, id); }
};

}  // namespace qrx::test
