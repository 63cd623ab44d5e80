// The options of `flash`: what is refused, in which order, and the query of the slots.
#include <gtest/gtest.h>

#include "tests/unit/cli/flash_fixture.h"

namespace {

using namespace qrx::test;

const std::string kPage =
    "Description:Update flash image."
    "\n"
    "flash  -o <hba [-t type]|pd> [-i <ID>] -f <file> [-s <firmware slot>] [-c <commit action>] [-b <boot partition "
    "id>][-q firmware] [-h]\n"
    "\n"
    "Options: \n"
    "    -o, --object <hba|pd>\n"
    "        Object name of the object to update firmware.\n"
    "        hba - NVMe Controller, default\n"
    "        pd  - Physical Disk\n"
    "    -t, --type <raw>\n"
    "        Update raw image with specific items\n"
    "        raw - Update all items of raw image\n"
    "    -i  --id\n"
    "           current NVMe Controller SSD backend RC/Slot ID of PD info command\n"
    "           If want to update disk firmware, this value is necessary\n"
    "    -c, --ca <commit action>\n"
    "        Downloaded image replaces the image specified by the Firmware Slot field. The image is activated at the "
    "next reset.\n"
    "        Notice: Windows only accept 1 and 2.\n"
    "        Hali-Default value is 1\n"
    "    -f, --file <file name and path>\n"
    "    -s, --fs <firmware slot>\n"
    "           If slot is zero, then the controller shall choose the firmware slot.(Max slot: 7)\n"
    "    -b, --bp_id <boot partition id>\n"
    "    -q, --query\n"
    "        firmware, query slot information of NVMe controller or PD.\n"
    "    -h, --help\n"
    "\n"
    "Examples:\n"
    "    flash -o hba -f raw.bin -c 1 -s 1\n"
    "    Update firmware image raw.bin with commit action is 1 and firmware slot 1 from current NVMe Controller \n"
    "\n"
    "    flash -o pd -i 0 -f raw.bin -s 1 -c 1\n"
    "    Update firmware image raw.bin to back-end device id 0 witch firmware slot 1 and commit action is 1\n"
    "\n"
    "    flash -o hba -t raw -f raw.bin\n"
    "    Update whole raw image raw.bin\n"
    "\n"
    "    flash -o hba -q firmware \n"
    "    Show slot count, active slot and next active slot\n"
    "\n"
    "    flash -o pd -i 0 -q firmware \n"
    "    Show slot count, active slot and next active slot of PD id 0 in current NVMe Controller\n"
    "\n";

std::string required(char letter)
{
    return std::string("flash: option -") + letter + " is required\n";
}

class FlashOptions : public FlashTest {
protected:
    static void refused(std::initializer_list<std::string> words, const std::string& lines, int result = 1)
    {
        EXPECT_EQ(command(words), (Outcome{result, lines})) << testing::PrintToString(std::vector<std::string>(words));
    }
};

TEST_F(FlashOptions, Help)
{
    EXPECT_EQ(command({"flash"}), (Outcome{1, kPage}));
    EXPECT_EQ(command({"flash", "-h"}), (Outcome{0, kPage}));
    EXPECT_EQ(command({"flash", "-o", "hba", "-c", "2", "-s", "1", "--help"}), (Outcome{0, kPage}));
}

TEST_F(FlashOptions, ABadValueEndsThePassAtOnce)
{
    refused({"flash", "-c", "8", "-s", "9"}, "-c : invalid commit action '8'.\n");
    refused({"flash", "-c", "x"}, "-c : invalid commit action 'x'.\n");
    refused({"flash", "-c", "-1"}, "-c : invalid commit action '-1'.\n");
    refused({"flash", "-c", "0x1"}, "-c : invalid commit action '0x1'.\n");
    refused({"flash", "-s", "8"}, "-s : invalid firmware slot '8'.\n");
    refused({"flash", "-s", "4294967297"}, "-s : invalid firmware slot '4294967297'.\n");
    refused({"flash", "-s", "257"}, "-s : invalid firmware slot '257'.\n");
    refused({"flash", "-b", "2"}, "-b : invalid boot partition id '2'.\n");
    refused({"flash", "-b", "b"}, "-b : invalid boot partition id 'b'.\n");
    refused({"flash", "-q", "slots"}, "-q : invalid query 'slots'\n");
    refused({"flash", "-t", "plain"}, "-t : invalid type 'plain'\n");
    refused({"flash", "-o", "vd"}, "-o : invalid object 'vd'\n");
    refused({"flash", "-i", "x"}, "-i : invalid id 'x'.\n");
    refused({"flash", "-i", "-1"}, "-i : invalid id '-1'.\n");
    refused({"flash", "-f", std::string(1024, 'n')}, "-f : file name is too long\n");
}

TEST_F(FlashOptions, ALongOptionWithoutItsValueIsRefused)
{
    refused({"flash", "-o", "hba", "--fs"}, "-s : invalid firmware slot ''.\n");
    refused({"flash", "-o", "hba", "--ca"}, "-c : invalid commit action ''.\n");
    refused({"flash", "-o", "hba", "--bp_id"}, "-b : invalid boot partition id ''.\n");
    refused({"flash", "-o", "hba", "--slot_info"}, "-q : invalid query ''\n");
}

TEST_F(FlashOptions, TheScannersComplaintsAreRefusalsToo)
{
    EXPECT_EQ(command({"flash", "-x"}), (Outcome{1, "", "", "flash: illegal option -- x\n"}));
    EXPECT_EQ(command({"flash", "-o"}), (Outcome{1, "", "", "flash: option requires an argument -- o\n"}));
}

TEST_F(FlashOptions, DuplicatesAreRefusedBeforeAllElse)
{
    const std::string line = "Duplicated option specified.\n";
    refused({"flash", "-f", "a", "-f", "b"}, line);
    refused({"flash", "-i", "1", "-i", "1"}, line);
    refused({"flash", "-s", "1", "--fs=1"}, line);
    refused({"flash", "-c", "1", "-c", "1"}, line);
    refused({"flash", "-b", "1", "-b", "1"}, line);
    refused({"flash", "-t", "raw", "-t", "raw"}, line);
    refused({"flash", "-q", "firmware", "-q", "firmware"}, line);
    refused({"flash", "-c", "1", "-c", "9"}, "-c : invalid commit action '9'.\n" + line);
}

TEST_F(FlashOptions, MissingOptionsAreAllNamed)
{
    refused({"flash", "-o", "hba", "-f", "x"}, required('c') + required('s'));
    refused({"flash", "-o", "hba", "-f", "x", "-c", "1"}, required('s'));
    refused({"flash", "-o", "hba", "-f", "x", "-s", "1"}, required('c'));
    refused({"flash", "-o", "hba", "-c", "1", "-s", "1"}, required('f'));
    refused({"flash", "-o", "hba", "-t", "raw"}, required('f'));
    refused({"flash", "-o", "hba"}, required('c') + required('s') + required('f'));
    refused({"flash", "-o", "pd", "-f", "x", "-s", "1", "-c", "1"}, required('i'));
    refused({"flash", "-o", "pd", "-s", "1", "-c", "1"}, required('f') + required('i'));
    refused({"flash", "-o", "pd", "-s", "1", "-c", "1", "-i", "0"}, required('f'));
    refused({"flash", "-o", "pd", "-c", "2"}, required('s') + required('i'));
    refused({"flash", "-o", "hba", "-o", "pd", "-c", "2", "-s", "1"}, required('i'));
    refused({"flash", "-c", "2", "-s", "1"}, required('o'));
    for (const char* object : {"hba", "pd"}) {  // an empty name is none
        refused({"flash", "-o", object, "-f", "", "-c", "1", "-s", "1"},
                required('f') + (object[0] == 'p' ? required('i') : ""));
    }
    refused({"flash", "-i", "1"}, required('o') + required('c') + required('s') + required('f'));
}

TEST_F(FlashOptions, TheControllerTakesNoId)
{
    refused({"flash", "-o", "hba", "-i", "1", "-c", "2", "-s", "1"}, "'-o hba' does not support '-i' action\n");
    refused({"flash", "-o", "pd", "-o", "hba", "-i", "1", "-c", "2", "-s", "1"},
            "'-o hba' does not support '-i' action\n");
    refused({"flash", "-o", "hba", "-i", "1", "-t", "raw", "-f", "x", "-c", "1"},
            "'-o hba' does not support '-i' action\n");
}

TEST_F(FlashOptions, WordsAreTakenInAnyCaseAndNumbersMayBeEmpty)
{
    machine.expect(commit(0, 2));
    EXPECT_EQ(command({"flash", "-o", "HBA", "--ca=2", "-s", ""}), (Outcome{0, std::string(kStarted) + kSuccess}));
    machine.expect(commit(7, 2));
    EXPECT_EQ(command({"flash", "--object", "Hba", "--ca=2", "--fs=7", "--bp_id=1", "--output", "x"}),
              (Outcome{0, std::string(kStarted) + kSuccess}));
}

TEST_F(FlashOptions, TheNameOfTheFileMayStandInQuotes)
{
    const Bytes image = pattern(8);
    const std::string path = fileOf(image);
    for (const std::string& word : {"\"" + path + "\"", "\"" + path, "\"" + path + "\"and more"}) {
        expectSegments(image);
        machine.expect(commit(1, 1));
        EXPECT_EQ(command({"flash", "-o", "hba", "-c", "1", "-s", "1", "--file", word}),
                  (Outcome{0, std::string(kStarted) + kSuccess}));
    }
}

class FlashQuery : public FlashTest {
protected:
    static Bytes identity()
    {
        Bytes bytes = pattern(4096);
        bytes[260] = 0xFA;  // bits 3:1 are 5
        return bytes;
    }
    static Bytes log()
    {
        Bytes bytes = pattern(512);
        bytes[0] = 0xEB;  // active 3, next 6
        return bytes;
    }
    static Command identify() { return Command::admin(6, 0, {1}).receives(4096).on(1); }
    static Command readLog() { return Command::admin(2, 0xFFFFFFFF, {0x7F0003}).receives(512).on(1); }
    static Command diskIdentify(QRX_U32 id)
    {
        return Command::passthru(0xC2).word(1, id).word(10, 1).word(14, 6).flag(0x4403).receives(4096).on(1);
    }
    static Command diskReadLog(QRX_U32 id)
    {
        return Command::passthru(0xC2)
            .word(1, id)
            .word(10, 0x7F0003)
            .word(14, 2)
            .word(15, 0xFFFFFFFF)
            .flag(0xC403)
            .receives(512)
            .on(1);
    }
    static inline const std::string kSlots = "Slot count: 5\nActive Slot: 3, Next Active Slot: 6\n";
};

TEST_F(FlashQuery, OfTheController)
{
    machine.expect(identify().data(identity()));
    machine.expect(readLog().data(log()));
    EXPECT_EQ(command({"flash", "-o", "hba", "-q", "Firmware"}), (Outcome{0, "", kSlots}));
    machine.expect(identify().data(identity()));
    machine.expect(readLog().data(log()));
    EXPECT_EQ(command({"flash", "-o", "pd", "-o", "hba", "--slot_info=firmware", "-f", "x"}), (Outcome{0, "", kSlots}));
    EXPECT_EQ(command({"flash", "-o", "hba", "-i", "1", "-q", "firmware"}), (Outcome{1, "illegal option 'i'\n"}));
}

TEST_F(FlashQuery, OfADisk)
{
    machine.expect(diskIdentify(9).data(identity()));
    machine.expect(diskReadLog(9).data(log()));
    EXPECT_EQ(command({"flash", "-o", "pd", "-i", "9", "-q", "firmware"}), (Outcome{0, "", kSlots}));
    machine.expect(diskIdentify(1).data(identity()));  // without an id: the number of the controller
    machine.expect(diskReadLog(1).data(log()));
    EXPECT_EQ(command({"flash", "-o", "hd", "-q", "firmware"}), (Outcome{0, "", kSlots}));
}

TEST_F(FlashQuery, WithoutAnObject)
{
    EXPECT_EQ(command({"flash", "-q", "firmware"}), (Outcome{0, required('o'), "Unknown slot information request.\n"}));
}

TEST_F(FlashQuery, AFailureEndsItAndTheLowByteDecides)
{
    const std::string field = "Invalid Field in Command (Status Code: 0x2)\n";
    machine.expect(identify().status(2));
    EXPECT_EQ(command({"flash", "-o", "hba", "-q", "firmware"}),
              (Outcome{0, "", field + "Get Firmware Slot Count Fail\n"}));
    machine.expect(identify().data(identity()));
    machine.expect(readLog().status(2));
    EXPECT_EQ(command({"flash", "-o", "hba", "-q", "firmware"}),
              (Outcome{0, "", "Slot count: 5\n" + field + "Get Firmware Slot Information Fail\n"}));
    machine.expect(diskIdentify(2).status(2));
    EXPECT_EQ(command({"flash", "-o", "pd", "-i", "2", "-q", "firmware"}),
              (Outcome{0, "", field + "Get Firmware Slot Count Fail\n"}));
    machine.expect(diskIdentify(2).data(identity()));
    machine.expect(diskReadLog(2).status(2));
    EXPECT_EQ(command({"flash", "-o", "pd", "-i", "2", "-q", "firmware"}),
              (Outcome{0, "", "Slot count: 5\n" + field + "Get Firmware Slot Information Fail\n"}));
    machine.expect(diskIdentify(2).data(identity()).status(0x100));
    machine.expect(diskReadLog(2).data(log()).status(0x700));
    EXPECT_EQ(command({"flash", "-o", "pd", "-i", "2", "-q", "firmware"}),
              (Outcome{0, "",
                       "Completion Queue Invalid (Status Code: 0x100)\nSlot count: 5\n"
                       "No error (Status Code: 0x700)\nActive Slot: 3, Next Active Slot: 6\n"}));
}

TEST_F(FlashQuery, OfAnUnknownType)
{
    EXPECT_EQ(outcomeOf([] {
                  showSlotInfo(1, 2, 0);
                  return 0;
              }),
              (Outcome{0, "", "Unknown type, please check it again.\n"}));
}

}  // namespace
