// A machine for the commands that change the storage: two controllers, of which the second is the current one.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "api/src/interface/wire/adapter.h"
#include "tests/unit/cli/run.h"
#include "tests/unit/cli/storage_texts.h"

namespace qrx::test {

class StorageTest : public testing::Test {
protected:
    StorageTest()
    {
        machine.addController({.path = "/dev/nvme1", .bdf = "03:00.00"});
        machine.addController({.path = "/dev/nvme3", .bdf = "04:00.00"});
        for (NVME_Adapter_Info& record : records) {
            record.PortCount = 2;
            record.MaxPD = 2;
            record.MaxVD = 9;
            record.Features = kFeatureRaid | kFeatureImport | kFeatureNamespace;
        }
        g_pAdInfos = records.data();
        gNumAdaptersFound = 2;
        gCurrentAdapter = 1;
        gSpecificAdapterFlag = 0;
        g_oneBaseMode = 0;
        dbg_enable = 0;
    }

    // A command to the current controller without data.
    static test::Command plain(QRX_U32 cdw12, QRX_U16 flag) { return test::Command::vendor(cdw12).flag(flag).on(1); }
    // One that fills a page, which is zeroed until then.
    static test::Command page(QRX_U32 cdw12, QRX_U16 flag)
    {
        return plain(cdw12, flag).receives(4096).carries(Bytes(4096));
    }
    [[nodiscard]] NVME_Adapter_Info& current() { return records[1]; }
    void runAsJbof() { current().Features &= ~kFeatureRaid; }

    GlobalsGuard guard;
    ScriptedMachine machine;
    std::array<NVME_Adapter_Info, 3> records{};
};

using Line = std::initializer_list<std::string>;

}  // namespace qrx::test
