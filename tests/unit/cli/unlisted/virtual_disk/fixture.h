// A machine for the earlier commands for virtual disks: that of the storage commands, whose second controller answers
// on the pair command road too.
#pragma once

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "api/src/interface/wire/ns.h"
#include "api/src/interface/wire/pd.h"
#include "api/src/interface/wire/vd.h"
#include "tests/unit/api/pair_script.h"
#include "tests/unit/cli/input.h"
#include "tests/unit/cli/run_unlisted.h"
#include "tests/unit/cli/storage_fixture.h"

namespace qrx::test {

inline const Outcome kDuplicate{1, "Duplicated option specified.\n"};
inline const Outcome kNoRaid{34, "This feature is not support JBOF.\n"};

class VirtualDiskTest : public StorageTest {
protected:
    // The header of a request about one disk.
    static Bytes one(QRX_U16 id)
    {
        return {0, 0, 2, 0, static_cast<QRX_U8>(id & 0xFF), static_cast<QRX_U8>(id >> 8), 1, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    }
    void expectPd(QRX_U16 id, QRX_U8 status = 0, QRX_U8 cmd_status = 0)
    {
        NVME_PD_Info_Request answer{};
        answer.pd_info.ID = id;
        answer.pd_info.Status = status;
        pair.expect({225, 0}, one(id), bytesOf(answer), cmd_status);
    }
    void expectVd(QRX_U16 id, QRX_U8 cmd_status = 0) { pair.expect({226, 0}, one(id), pattern(196), cmd_status); }
    // What is done around a change: the controller's record and its namespaces, and a look at each of its VDs.
    void expectNotification(const std::vector<NVME_NS_Info>& namespaces = {}, QRX_U8 vds = 0)
    {
        NVME_Adapter_Info adapter{};
        adapter.PortCount = 2;
        adapter.MaxVD = vds;
        adapter.MaxNS = 8;
        pair.expect({224, 0}, {}, bytesOf(adapter));
        Bytes list;
        for (const NVME_NS_Info& ns : namespaces) {
            const Bytes bytes = bytesOf(ns);
            list.insert(list.end(), bytes.begin(), bytes.end());
        }
        machine.expect(page(0x00E5, 0x1001).data(envelope(list)));
        for (QRX_U16 id = 0; id < vds; ++id) {
            expectVd(id);
        }
    }
    static NVME_NS_Info namespaceOf(QRX_U16 vd, QRX_U8 nsid, QRX_U8 status)
    {
        NVME_NS_Info ns{};
        ns.NSID = nsid;
        ns.device_type = kNsParentVd;
        ns.ID = vd;
        ns.Status = status;
        return ns;
    }
    // Namespace Attachment for all host functions.
    static Command attachment(QRX_U8 nsid, QRX_U32 select)
    {
        Bytes list{34, 0};
        for (QRX_U8 id = 0; id < 34; ++id) {
            list.push_back(id);
            list.push_back(0);
        }
        return Command::admin(21, nsid, {select}).sends(padded(list, 4096)).on(1);
    }

    PairScript pair{machine, 1};
};

}  // namespace qrx::test
