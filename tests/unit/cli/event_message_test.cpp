// The words for what happened to a controller.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "api/src/interface/wire/event.h"
#include "cli/Public/errorMsg.h"

namespace {

// Compares the message of every code, and of those that have none.
void expectMessages(QRX_U32 classCode, const std::map<QRX_U32, std::string>& messages)
{
    for (QRX_U32 code = 0; code < 300; ++code) {
        const auto row = messages.find(code);
        EXPECT_EQ(EventMessage(classCode, code), row == messages.end() ? "Unknown error" : row->second) << code;
    }
    EXPECT_STREQ(EventMessage(classCode, 0xFFFFFFFF), "Unknown error");
}

TEST(EventMessages, OfTheAdapter)
{
    expectMessages(1, {{0, "Background activity rate changed to %d%%"},
                       {1, "Shutdown command received from host"},
                       {8, "Auto-rebuild has been disabled"},
                       {9, "Auto-rebuild has been enabled"},
                       {10, "No configuration exist"}});
    EXPECT_STREQ(_evtAdapterMsg(8), "Auto-rebuild has been disabled");
}

TEST(EventMessages, OfAPhysicalDisk)
{
    expectMessages(2, {{0, "physical disk %d is plugged in"},
                       {1, "physical disk %d is plugged out"},
                       {2, "physical disk %d is set down"},
                       {3, "request to physical disk %d is timed out"},
                       {4, "physical disk %d read write error"},
                       {5, "physical disk %d DFT added"},
                       {6, "physical disk %d DFT is removed and fixed"},
                       {7, "physical disk %d DFT is removed but not fixed"},
                       {10, "Capacity of physical disk %d is too small to be used for auto-rebuild"},
                       {20, "Physical disk %d read error"},
                       {21, "Physical disk %d write error"}});
    EXPECT_STREQ(_evtPDMsg(3), "request to physical disk %d is timed out");
}

TEST(EventMessages, OfAVirtualDisk)
{
    expectMessages(3, {{0, "virtual disk %d is offline"},
                       {1, "virtual disk %d is online"},
                       {2, "virtual disk %d is degraded"},
                       {4, "virtual disk %d is created"},
                       {5, "virtual disk %d is deleted"},
                       {7, "Import virtual disk %d completed"},
                       {9, "physical disk of virtual disk %d is missing"},
                       {10, "init on virtual disk %d started"},
                       {13, "init on virtual disk %d aborted"},
                       {14, "init on virtual disk %d completed"},
                       {15, "init on virtual disk %d is %d%% done"},
                       {16, "init on virtual disk %d terminated"},
                       {20, "rebuild on virtual disk %d started"},
                       {23, "rebuild on virtual disk %d aborted"},
                       {24, "rebuild on virtual disk %d completed"},
                       {25, "rebuild on virtual disk %d is %d%% done"},
                       {26, "rebuild on virtual disk %d terminated"},
                       {30, "media Patrol on virtual disk %d started"},
                       {33, "media Patrol on virtual disk %d aborted"},
                       {34, "media Patrol on virtual disk %d completed"},
                       {35, "media Patrol on virtual disk %d is %d%% done"},
                       {36, "media Patrol on virtual disk %d terminated"}});
    EXPECT_STREQ(_evtVDMsg(36), "media Patrol on virtual disk %d terminated");
}

TEST(EventMessages, OfNamespacesAndMakersThereAreNoneYet)
{
    for (QRX_U32 code = 0; code < 10; ++code) {
        EXPECT_STREQ(EventMessage(4, code), "Not define yet.");
        EXPECT_STREQ(EventMessage(5, code), "Not define yet.");
        EXPECT_STREQ(_evtNSMsg(code), "Not define yet.");
        EXPECT_STREQ(_evtOEMMsg(code), "Not define yet.");
    }
}

TEST(EventMessages, OfAnUnknownClass)
{
    for (const QRX_U32 classCode : {0U, 6U, 255U, 0xFFFFFFFFU}) {
        EXPECT_STREQ(EventMessage(classCode, 0), "Unknown event");
    }
}

}  // namespace
