// The access to a register of the controller.
#include "cli/Public/frame/register.h"

#include "tests/unit/cli/storage_fixture.h"

namespace {

using namespace qrx;
using namespace qrx::test;

class Register : public StorageTest {};

TEST_F(Register, IsReadAsFourBytes)
{
    dbg_enable = 1;
    machine.expect(
        plain(0x00A509E0, 0x3401).word(13, 0xE1234568).receives(4).carries(Bytes(4)).data({0x11, 0x22, 0x33, 0x44}));
    Bytes data(4);
    EXPECT_EQ(outcomeOf([&] {
                  const auto command = registerRead(0xA5, 0xE1234568);
                  command.debug();
                  return command.receive(data);
              }),
              (Outcome{0, "CDW[0] : 0x000000e2\nCDW[10]: 0x00000000\nCDW[12]: 0x00a509e0\nCDW[13]: 0xe1234568\n"}));
    EXPECT_EQ(data, (Bytes{0x11, 0x22, 0x33, 0x44}));
}

TEST_F(Register, IsWrittenWithoutData)
{
    dbg_enable = 1;
    machine.expect(plain(0x00A50AE0, 0x7001).word(13, 0xE1234568).word(14, 0x89ABCDEF).status(0x704));
    EXPECT_EQ(outcomeOf([] {
                  const auto command = registerWrite(0xA5, 0xE1234568, 0x89ABCDEF);
                  command.debug();
                  return command.send();
              }),
              (Outcome{0x704, "CDW[0] : 0x000000e2\nCDW[12]: 0x00a50ae0\nCDW[13]: 0xe1234568\nCDW[14]: 0x89abcdef\n",
                       "Invalid parameter (Status Code: 0x704)\n"}));
}

}  // namespace
