// The storage commands in words, for the tests of several of them.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "api/src/interface/wire/ns.h"
#include "tests/unit/sim/firmware/rig.h"

namespace qrx::sim {

inline constexpr QRX_U32 kSectors = 1875385008;

inline QRX_U32 create(QRX_U8 mode, QRX_U32 stripe_code = 0)
{
    return 0x03E2 | stripe_code << 16 | QRX_U32{mode} << 24;
}

inline QRX_U32 created(Rig& rig, QRX_U8 mode, QRX_U32 members, QRX_U32 namespaces = 0, QRX_U32 stripe_code = 0)
{
    return rig.vendor(create(mode, stripe_code), namespaces, members).status;
}

inline const VirtualDisk& vd(Rig& rig, std::size_t index = 0)
{
    return rig.controller().virtual_disks.at(index);
}

inline QRX_U32 initialize(Rig& rig, QRX_U32 id, QRX_U32 type = 2)
{
    return rig.vendor(0x06E3, type << 16 | id).status;
}

inline QRX_U32 rebuild(Rig& rig, QRX_U32 id, QRX_U32 pd)
{
    return rig.vendor(0x07E3, pd << 16 | id).status;
}

inline QRX_U32 control(Rig& rig, QRX_U32 id, QRX_U32 operation = 3)
{
    return rig.vendor(0x04E3, operation << 16 | id).status;
}

inline void fail_drive(Rig& rig, QRX_U32 id)
{
    EXPECT_FALSE(rig.machine().controller(0)->fail_drive(id));
}

inline std::vector<std::string> events(Rig& rig)
{
    std::vector<std::string> all;
    for (const Event& event : rig.controller().events.entries) {
        all.push_back(event.sentence());
    }
    return all;
}

inline Completion attach(Rig& rig, QRX_U32 nsid, QRX_U32 operation, std::vector<QRX_U16> ids,
                         std::optional<QRX_U16> count = {})
{
    nvme_admin_cmd command{};
    command.opcode = 0x15;
    command.nsid = nsid;
    command.cdw10 = operation;
    _controller_list_format list{};
    list.num_of_id = count.value_or(static_cast<QRX_U16>(ids.size()));
    std::copy(ids.begin(), ids.end(), std::begin(list.id));
    std::array<QRX_U8, 4096> page{};
    std::memcpy(page.data(), &list, sizeof(list));
    return rig.machine().admin({}, command, page);
}

inline std::vector<QRX_U16> attached(Rig& rig, QRX_U32 nsid)
{
    rig.identify(0x12, nsid);
    const auto list = rig.at<_controller_list_format>(0);
    return {std::begin(list.id), std::begin(list.id) + list.num_of_id};
}

}  // namespace qrx::sim
