// What `create` sends.
#pragma once

#include "tests/unit/cli/unlisted/virtual_disk/fixture.h"

namespace qrx::test {

inline const Outcome kCreated{0, "Create virtual disk successfully.\n"};

// 200 GB and a few sectors.
inline constexpr NVME_PreCreate_VD kRoom{0x5A5A5A5A, 512, (QRX_U64{200} << 21) + 5};

class CreateTest : public VirtualDiskTest {
protected:
    // As it is sent, but for QueryLDSize and the namespaces.
    static NVME_Create_VD plan(QRX_U8 mode, const std::vector<QRX_U16>& members, const std::string& name = "data")
    {
        NVME_Create_VD vd{};
        vd.RAIDMode = mode;
        vd.MemberCount = static_cast<QRX_U8>(members.size());
        vd.StripeBlockSize = 256;
        std::copy(members.begin(), members.end(), vd.PDIDs);
        std::memcpy(vd.Name, name.data(), name.size());
        return vd;
    }
    void expectMembers(const NVME_Create_VD& vd)
    {
        for (QRX_U8 i = 0; i < vd.MemberCount; ++i) {
            expectPd(vd.PDIDs[i]);
        }
    }
    void expectQuery(NVME_Create_VD vd, QRX_U8 cmd_status = 0, const NVME_PreCreate_VD& room = kRoom)
    {
        vd.QueryLDSize = 1;
        pair.expect({226, 3}, bytesOf(vd), bytesOf(room), cmd_status);
    }
    // `sizes` in sectors.
    void expectCreate(NVME_Create_VD vd, const std::vector<QRX_U64>& sizes, QRX_U8 cmd_status = 0)
    {
        vd.NSCount = static_cast<QRX_U16>(sizes.size());
        std::copy(sizes.begin(), sizes.end(), vd.NSSize);
        pair.expect({226, 3}, bytesOf(vd), {}, cmd_status);
    }
    // All of it, with a name of its own.
    void expectAll(const NVME_Create_VD& vd, const std::vector<QRX_U64>& sizes = {0})
    {
        expectMembers(vd);
        expectQuery(vd);
        expectCreate(vd, sizes);
        expectNotification();
    }
    // Those up to it have been found well.
    void expectUpToSizes()
    {
        expectMembers(plan(kRaid1, {0, 1}));
        expectQuery(plan(kRaid1, {0, 1}));
    }
};

}  // namespace qrx::test
