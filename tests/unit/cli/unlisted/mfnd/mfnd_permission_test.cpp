// `mfnd-cmdpermission`.
#include "tests/unit/cli/unlisted/mfnd/mfnd_fixture.h"

namespace {

using namespace qrx::test;

const std::string kPage = helpOf(":For getting and setting MFND operation.", mfnd_cmdpermission_help);

struct Permission {
    QRX_U8 opcode;
    QRX_U8 flags;
};

// A list, with the rest of each entry and of the page as given.
Bytes listOf(const std::vector<Permission>& permissions, QRX_U8 filler = 0)
{
    Bytes bytes{static_cast<QRX_U8>(permissions.size()), filler, filler, filler};
    for (const Permission& permission : permissions) {
        bytes.insert(bytes.end(),
                     {permission.opcode, static_cast<QRX_U8>(permission.flags | (filler & 0xF0)), filler, filler});
    }
    return padded(bytes, 4096, filler);
}

class MfndPermission : public MfndTest {
protected:
    // To the first controller, whatever the current one is.
    static Command get()
    {
        return Command::passthru(0xD2).word(10, 6).flag(0).receives(4096).carries(Bytes(4096)).on(0);
    }
    static Command set(const std::vector<Permission>& permissions)
    {
        return Command::passthru(0xD1).word(10, 7).flag(0).sends(listOf(permissions)).on(0);
    }
    void sets(const std::string& text, const std::vector<Permission>& permissions)
    {
        machine.expect(set(permissions));
        EXPECT_EQ(unlisted({"mfnd-cmdpermission", "-a", "set", "-e", text}), (Outcome{0, ""})) << text;
        machine.verify();
    }
};

TEST_F(MfndPermission, Help)
{
    EXPECT_EQ(unlisted({"mfnd-cmdpermission"}), (Outcome{1, kPage}));
    EXPECT_EQ(unlisted({"mfnd-cmdpermission", "-h"}), (Outcome{0, kPage}));
    EXPECT_EQ(unlisted({"mfnd-cmdpermission", "-x"}),
              (Outcome{0, "", "", "mfnd-cmdpermission: illegal option -- x\n"}));
}

TEST_F(MfndPermission, SendsTheEntriesOfTheText)
{
    sets("0xaa:1,0xab:0,0xac:1", {{0xAA, 1}, {0xAB, 0}, {0xAC, 1}});
    sets("0xff:15", {{0xFF, 15}});
    sets("0x0:17", {{0, 1}});  // the low four bits
    sets("3:0xaa", {{0xAA, 3}});
    sets("0xaa", {{0xAA, 0}});
    sets("\"0xaa:1,0xab:2\"", {{0xAA, 1}, {0xAB, 2}});
    sets("0xff:9", {{0xFF, 9}});
    sets(",,0xaa::1,,0xab:1,", {{0xAA, 1}, {0xAB, 1}});
    sets("", {});
}

TEST_F(MfndPermission, ATextOfTheGreatestLengthIsTakenWhole)
{
    const std::string text = "0x10:1,0x11:1,0x12:1,0x13:1,0x14:1,0x15:1,0x16:1,0x17:1,0x18:001";
    ASSERT_EQ(text.size(), 64U);
    std::vector<Permission> permissions;
    for (QRX_U8 i = 0; i < 9; ++i) {
        permissions.push_back({static_cast<QRX_U8>(0x10 + i), 1});
    }
    sets(text, permissions);
    const std::string longer = text + "0";
    for (const std::string& word : {longer, std::string(3000, '1')}) {
        EXPECT_EQ(unlisted({"mfnd-cmdpermission", "-a", "set", "-e", word}),
                  (Outcome{0, "-e : invalid length '" + word + "', the maximum size is 64 bytes.\n"}));
    }
}

TEST_F(MfndPermission, ATextOfAnotherFormChangesNothing)
{
    for (const char* entry :
         {"x", "1", "0xaa:x", "0xaa:-1", "0x1aa:1", "0x100:1", "-0x1:1", "0xaa:1 ", "0x:1", "0xag:1", "1g0xaa:1"}) {
        for (const bool second : {false, true}) {
            EXPECT_EQ(
                unlisted({"mfnd-cmdpermission", "-a", "set", "-e", (second ? "0xaa:1," : "") + std::string(entry)}),
                (Outcome{
                    1, std::string("-e : invalid entry '") + entry + "', should be <opcode>:<flag> such as 0xaa:1\n"}));
        }
    }
    EXPECT_EQ(unlisted({"mfnd-cmdpermission", "-a", "set", "-e", "'0xaa:1'"}),
              (Outcome{0, "", "Please use double quotation mark to include strings.\n"}));
}

TEST_F(MfndPermission, DebugShowsTheListAndTheWords)
{
    dbg_enable = 1;
    machine.expect(set({{0xAA, 1}, {0xAB, 14}}));
    EXPECT_EQ(unlisted({"mfnd-cmdpermission", "--action", "SET", "--entry", "0xaa:1,0xab:14"}),
              (Outcome{0,
                       "pChildCtrlPermissionList->numOfEntries: 2\n"
                       "#0, opcode:0xaa, flags:1\n"
                       "#1, opcode:0xab, flags:14\n"
                       "CDW[0] : 0x000000d1\n"
                       "CDW[10]: 0x00000007\n"}));
}

std::string told(const std::string& index, const std::string& opcode, const std::string& flags,
                 const std::string& allowed, const std::string& changeable)
{
    return row(20, "Entry#:", index) + "Admin Command Opcode: " + opcode + "\n" + row(20, "Flags:", flags) +
           "Command on Child Ctrl: " + allowed + "\nChangeable on Child Ctrl: " + changeable + "\n\n";
}

TEST_F(MfndPermission, ShowsTheList)
{
    machine.expect(get().data(listOf({{0, 0}, {0xFE, 1}, {3, 2}, {4, 15}}, 0xEE)));
    EXPECT_EQ(unlisted({"mfnd-cmdpermission", "-a", "get"}),
              (Outcome{0, "Command Permission:\n" + told("0", "0", "0", "Not Allow", "No") +
                              told("1", "254", "1", "Allow", "No") + told("2", "3", "2", "Not Allow", "Yes") +
                              told("3", "4", "15", "Allow", "Yes")}));
    machine.expect(get().data(listOf({}, 0xEE)));
    EXPECT_EQ(unlisted({"mfnd-cmdpermission", "-a", "get"}), (Outcome{0, "Command Permission:\nNo entries exist\n"}));
}

TEST_F(MfndPermission, ShowsAsManyEntriesAsTheListCanTellOf)
{
    const std::vector<Permission> permissions(255, {0x80, 3});
    std::string page = "Command Permission:\n";
    for (unsigned i = 0; i < 255; ++i) {
        page += told(std::to_string(i), "128", "3", "Allow", "Yes");
    }
    machine.expect(get().data(listOf(permissions)));
    EXPECT_EQ(unlisted({"mfnd-cmdpermission", "-a", "get"}), (Outcome{0, page}));
}

TEST_F(MfndPermission, FailuresGiveOne)
{
    machine.expect(get().data(listOf({{1, 1}})).status(2));
    EXPECT_EQ(
        unlisted({"mfnd-cmdpermission", "-a", "get"}),
        (Outcome{1, "\nUnable to get child controller admin command permission (Error Code: 0x2)\n", kInvalidField}));
    machine.expect(set({{0xAA, 1}}).status(2));
    EXPECT_EQ(
        unlisted({"mfnd-cmdpermission", "-a", "set", "-e", "0xaa:1"}),
        (Outcome{1, "\nUnable to set child controller admin command permission (Error Code: 0x2)\n", kInvalidField}));
}

TEST_F(MfndPermission, RefusesBadWordsDuplicatesAndWhatIsMissing)
{
    EXPECT_EQ(unlisted({"mfnd-cmdpermission", "-a", "put"}),
              (Outcome{0, "-a : invalid action 'put', should be get or set\n"}));
    EXPECT_EQ(unlisted({"mfnd-cmdpermission", "-a", "get", "-a", "get"}), (Outcome{1, kDuplicate}));
    EXPECT_EQ(unlisted({"mfnd-cmdpermission", "-e", "0xaa:1", "-e", "0xaa:1"}), (Outcome{1, kDuplicate}));
    EXPECT_EQ(unlisted({"mfnd-cmdpermission", "-e", "0xaa:1"}), (Outcome{1, needs("mfnd-cmdpermission", 'a')}));
    EXPECT_EQ(unlisted({"mfnd-cmdpermission", "-a", "set"}), (Outcome{1, needs("mfnd-cmdpermission", 'o')}));
}

// A list that is full already takes no more.
TEST_F(MfndPermission, TheListStaysInBounds)
{
    _MSFT_CHILD_CTRL_PERMISSION_LIST list{};
    list.numOfEntries = 254;
    const Outcome outcome = outcomeOf([&] { return prepareChildCtrlPermissionData("0xaa:1,0xab:1", &list) ? 1 : 0; });
    EXPECT_EQ(outcome, (Outcome{0, "-e : invalid entry '0xab:1', should be <opcode>:<flag> such as 0xaa:1\n"}));
    EXPECT_EQ(list.numOfEntries, 255);
    EXPECT_EQ(list.entries[254].adminCmdOpcode, 0xAA);
    EXPECT_EQ(list.entries[255].adminCmdOpcode, 0);
}

}  // namespace
