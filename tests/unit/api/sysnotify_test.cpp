// What is done for the operating system around a change of virtual disks.
#include "api/src/function/sysnotify/sysnotify.h"

#include <gtest/gtest.h>

#include <cstdarg>
#include <string>

#include "api/src/interface/wire/adapter.h"
#include "api/src/interface/wire/ns.h"
#include "tests/unit/api/pair_script.h"
#include "tests/unit/support/capture.h"

namespace {

std::string logged;

}  // namespace

// The linker sends the calls of add_log here (--wrap).
extern "C" __attribute__((format(printf, 1, 2))) void __wrap__Z7add_logPKcz(const char* format, ...)
{
    char line[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line, sizeof(line), format, arguments);
    va_end(arguments);
    logged += line;
}

namespace {

using namespace qrx::test;

constexpr char kOnlyOneVd[] =
    "\nNamespace attachment only support VD count is 1. Please reboot your system to update namespace status.\n";

NVME_NS_Info record(QRX_U8 nsid, QRX_U8 status, QRX_U8 type = kNsParentVd)
{
    NVME_NS_Info ns{};
    ns.NSID = nsid;
    ns.device_type = type;
    ns.Status = status;
    return ns;
}

class SysNotify : public testing::Test {
protected:
    SysNotify()
    {
        logged.clear();
        machine.addController();
        machine.addController();
        adapter.MaxVD = 3;
        adapter.MaxNS = 8;
    }
    void expectLists(const std::vector<NVME_NS_Info>& records)
    {
        pair.expect({224, 0}, {}, bytesOf(adapter));
        Bytes list;
        for (const NVME_NS_Info& ns : records) {
            const Bytes bytes = bytesOf(ns);
            list.insert(list.end(), bytes.begin(), bytes.end());
        }
        machine.expect(Command::vendor(0x00E5).flag(0x1001).receives(4096).on(1).data(envelope(list)));
    }
    // One question for each of the three indices; those with `true` are there.
    void expectVds(const std::vector<bool>& there)
    {
        for (std::size_t index = 0; index < there.size(); ++index) {
            pair.expect({226, 0}, {0, 0, 2, 0, static_cast<QRX_U8>(index), 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0},
                        pattern(196), there[index] ? QRX_U8{0} : QRX_U8{7});
        }
    }
    static Command attachment(QRX_U8 nsid, QRX_U32 select)
    {
        Bytes list{34, 0};
        for (QRX_U8 id = 0; id < 34; ++id) {
            list.push_back(id);
            list.push_back(0);
        }
        return Command::admin(21, nsid, {select}).sends(padded(list, 4096)).on(1);
    }

    GlobalsGuard globals;
    ScriptedMachine machine;
    PairScript pair{machine, 1};
    NVME_Adapter_Info adapter{};
    StdoutCapture out;
};

TEST_F(SysNotify, AfterACreateTheWaitingNamespacesAreAttached)
{
    expectLists({record(5, kNsWaitsForAttach), record(6, kNsActive | kNsValid), record(0, 0),
                 record(7, kNsWaitsForAttach, kNsParentPd), record(255, kNsWaitsForAttach),
                 record(254, kNsWaitsForAttach | kNsValid)});
    expectVds({false, true, false});
    machine.expect(attachment(5, 0));
    machine.expect(attachment(254, 0));
    EXPECT_EQ(after_create_vd(1), 0U);
    EXPECT_EQ(logged,
              "Ready to attach NS ID 5\n\nAttached NS 5 to controller\n"
              "Ready to attach NS ID 254\n\nAttached NS 254 to controller\n");
}

TEST_F(SysNotify, BeforeADeleteTheActiveNamespacesAreDetached)
{
    expectLists({record(5, kNsWaitsForAttach), record(6, kNsActive), record(7, kNsActive, kNsParentPd),
                 record(255, kNsActive)});
    expectVds({true, false, false});
    machine.expect(attachment(6, 1));
    EXPECT_EQ(before_delete_vd(1, 9), 0U);
    EXPECT_EQ(logged, "Ready to detach NS ID 6\n\nDetached NS 6 to controller\n");
}

TEST_F(SysNotify, AFailureOfOneDoesNotStopTheOthers)
{
    expectLists({record(5, kNsWaitsForAttach), record(6, kNsWaitsForAttach)});
    expectVds({true, false, false});
    machine.expect(attachment(5, 0).status(0x118));
    machine.expect(attachment(6, 0));
    EXPECT_EQ(after_create_vd(1), 0U);
    EXPECT_EQ(logged, "Ready to attach NS ID 5\nReady to attach NS ID 6\n\nAttached NS 6 to controller\n");
    EXPECT_EQ(out.text(), "Namespace Already Attached (Status Code: 0x118)\n");
}

TEST_F(SysNotify, NoVdOrMoreThanOneIsLeftToARestart)
{
    for (const std::vector<bool>& there : {std::vector<bool>{false, false, false}, {true, false, true}}) {
        for (auto* hook : {+[] { return after_create_vd(1); }, +[] { return before_delete_vd(1, 0); }}) {
            logged.clear();
            expectLists({record(5, kNsWaitsForAttach | kNsActive)});
            expectVds(there);
            EXPECT_EQ(hook(), 0U);
            EXPECT_EQ(logged, kOnlyOneVd);
        }
    }
}

TEST_F(SysNotify, OnlyTheControllersOwnNumberOfRecordsCounts)
{
    adapter.MaxNS = 1;
    expectLists({record(5, kNsActive), record(6, kNsActive)});
    expectVds({true, false, false});
    machine.expect(attachment(5, 1));
    EXPECT_EQ(before_delete_vd(1, 0), 0U);

    adapter.MaxNS = 255;  // more than a page holds
    expectLists(std::vector<NVME_NS_Info>(42, record(8, kNsActive)));
    expectVds({true, false, false});
    for (int i = 0; i < 42; ++i) {
        machine.expect(attachment(8, 1));
    }
    EXPECT_EQ(before_delete_vd(1, 0), 0U);
}

TEST_F(SysNotify, AControllerThatCannotBeReadEndsTheHook)
{
    pair.expect({224, 0}, {}, {}, 1);
    EXPECT_EQ(after_create_vd(1), 1U);
    EXPECT_EQ(logged, "");
    pair.expect({224, 0}, {}, {}, 1);
    EXPECT_EQ(before_delete_vd(1, 0), 1U);
    EXPECT_EQ(logged,
              "\nFailed to read virtual disk name space information (error 0x1: Failed). "
              "Please shutdown and power on the system.\n");
}

TEST_F(SysNotify, NamespacesThatCannotBeReadEndTheHook)
{
    for (auto* hook : {+[] { return after_create_vd(1); }, +[] { return before_delete_vd(1, 0); }}) {
        pair.expect({224, 0}, {}, bytesOf(adapter));
        machine.expect(Command::vendor(0x00E5).flag(0x1001).receives(4096).on(1).data(envelope(Bytes{}, 0x2C)));
        EXPECT_NE(hook(), 0U);
    }
    EXPECT_EQ(logged,
              "\nFailed to read virtual disk name space information (error 0x2c: Unknown error). "
              "Please shutdown and power on the system.\n");
}

TEST_F(SysNotify, TheOtherHooksSendNothing)
{
    EXPECT_EQ(before_create_vd(1), 0U);
    EXPECT_EQ(after_delete_vd(1), 0U);
    EXPECT_EQ(after_import_vd(1), 0U);
    EXPECT_EQ(logged, "");
}

}  // namespace
