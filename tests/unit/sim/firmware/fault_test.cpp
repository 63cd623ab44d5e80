// Faults: their text form, which commands they choose, and what befalls those.
#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>
#include <chrono>

#include "api/src/interface/wire/command.h"
#include "sim/firmware/fault_injector.h"
#include "tests/unit/sim/firmware/rig.h"

namespace qrx::sim {

namespace {

using std::chrono::microseconds;
using testing::ElementsAre;

Fault fault(std::string_view text)
{
    const auto parsed = parse_fault(text);
    EXPECT_TRUE(parsed) << parsed.error();
    return parsed ? *parsed : Fault{};
}

TEST(FaultText, ReadsEveryWord)
{
    Fault expected;
    expected.nth = 3;
    expected.opcode = 0xE2;
    expected.command = 0x00E1;
    expected.admin_queue = true;
    expected.device = 5;
    expected.status = 0x706;
    expected.delay = microseconds(50000);
    EXPECT_EQ(fault("nth=3,opcode=0xe2,command=0x00e1,queue=admin,device=5,status=0x706,delay=50ms"), expected);
    expected = {};
    expected.every = 2;
    expected.admin_queue = false;
    expected.shorten = 100;
    expected.corrupt = 7;
    EXPECT_EQ(fault("every=2,queue=io,short=100,corrupt=7"), expected);
    EXPECT_EQ(fault("corrupt").corrupt, 1U);
    EXPECT_EQ(fault("cmd-status=0x4a").cmd_status, 0x4A);
    EXPECT_TRUE(fault("unsigned").unsign);
    EXPECT_EQ(fault("errno=EIO").error, EIO);
    EXPECT_EQ(fault("errno=5").error, 5);
    EXPECT_EQ(fault("delay=300us").delay, microseconds(300));
    EXPECT_EQ(fault("delay=2s").delay, microseconds(2000000));
    EXPECT_EQ(fault("delay=3600s").delay, microseconds(3600000000));
}

TEST(FaultText, SaysWhatIsWrongAndWhatIsAllowed)
{
    const std::string words =
        "; allowed are nth=, every=, opcode=, command=, queue=, device= to choose commands, and status=, errno=, "
        "short=, cmd-status=, unsigned, corrupt, corrupt=, delay= for what befalls them";
    EXPECT_EQ(parse_fault("").error(), "fault '': unknown word ''" + words);
    EXPECT_EQ(parse_fault("nht=3,status=2").error(), "fault 'nht=3,status=2': unknown word 'nht'" + words);
    EXPECT_EQ(parse_fault("status=2,").error(), "fault 'status=2,': unknown word ''" + words);
    EXPECT_EQ(parse_fault("nth=0,status=2").error(),
              "fault 'nth=0,status=2': '0' is no value of 'nth'; allowed are numbers from 1 to 18446744073709551615");
    EXPECT_EQ(parse_fault("opcode=256,status=2").error(),
              "fault 'opcode=256,status=2': '256' is no value of 'opcode'; allowed are numbers from 0 to 255");
    EXPECT_EQ(
        parse_fault("command=0x10000,status=2").error(),
        "fault 'command=0x10000,status=2': '0x10000' is no value of 'command'; allowed are numbers from 0 to 65535");
    EXPECT_EQ(parse_fault("status=0").error(),
              "fault 'status=0': '0' is no value of 'status'; allowed are numbers from 1 to 32767");
    EXPECT_EQ(parse_fault("status").error(),
              "fault 'status': '' is no value of 'status'; allowed are numbers from 1 to 32767");
    EXPECT_EQ(parse_fault("status=-1").error(),
              "fault 'status=-1': '-1' is no value of 'status'; allowed are numbers from 1 to 32767");
    EXPECT_EQ(parse_fault("status=0x").error(),
              "fault 'status=0x': '0x' is no value of 'status'; allowed are numbers from 1 to 32767");
    EXPECT_EQ(parse_fault("short=1k").error(),
              "fault 'short=1k': '1k' is no value of 'short'; allowed are numbers from 0 to 4294967295");
    EXPECT_EQ(parse_fault("device=x,corrupt").error(),
              "fault 'device=x,corrupt': 'x' is no value of 'device'; allowed are numbers from 0 to 4294967295");
    EXPECT_EQ(
        parse_fault("every=0,corrupt").error(),
        "fault 'every=0,corrupt': '0' is no value of 'every'; allowed are numbers from 1 to 18446744073709551615");
    EXPECT_EQ(parse_fault("corrupt=").error(),
              "fault 'corrupt=': '' is no value of 'corrupt'; allowed are numbers from 0 to 18446744073709551615");
    EXPECT_EQ(parse_fault("queue=nvm,corrupt").error(),
              "fault 'queue=nvm,corrupt': 'nvm' is no value of 'queue'; allowed are 'admin' and 'io'");
    EXPECT_EQ(
        parse_fault("errno=EWHAT").error(),
        "fault 'errno=EWHAT': 'EWHAT' is no value of 'errno'; allowed are numbers from 1 to 4095 and EIO, EINVAL, "
        "ENODEV, ENXIO, EACCES, EPERM, EINTR, EAGAIN, EBUSY, ENOMEM, EFAULT, ENOTTY, ENOSPC, ETIME, ETIMEDOUT, "
        "EREMOTEIO, ECANCELED");
    for (const std::string value : {"50", "ms", "1.5s", "3601s", "99999999999999999999us", "5m"}) {
        std::string expected = "fault 'delay=";
        expected += value;
        expected += "': '";
        expected += value;
        expected += "' is no value of 'delay'; allowed are a number and 'us', 'ms' or 's', at most 3600s";
        EXPECT_EQ(parse_fault("delay=" + value).error(), expected);
    }
}

TEST(FaultText, RefusesWhatDoesNotGoTogether)
{
    for (const std::string pair :
         {"nth=1,nth=1", "every=1,every=2", "opcode=1,opcode=1", "command=1,command=1", "queue=io,queue=io",
          "device=1,device=1", "status=1,status=1", "errno=1,errno=2", "short=1,short=1", "cmd-status=1,cmd-status=2",
          "unsigned,unsigned", "corrupt,corrupt", "delay=1s,delay=1s"}) {
        const std::string key = pair.substr(0, pair.find_first_of("=,"));
        std::string expected = "fault '";
        expected += pair;
        expected += "': '";
        expected += key;
        expected += "' is given twice";
        EXPECT_EQ(parse_fault(pair).error(), expected);
    }
    EXPECT_EQ(parse_fault("status=1,errno=1").error(), "fault 'status=1,errno=1': status and errno exclude each other");
    EXPECT_EQ(parse_fault("nth=1,every=1,corrupt").error(),
              "fault 'nth=1,every=1,corrupt': nth and every exclude each other");
    EXPECT_EQ(parse_fault("status=1,short=1").error(),
              "fault 'status=1,short=1': a command that ends with status or errno has no answer to be damaged");
    EXPECT_EQ(parse_fault("errno=1,corrupt").error(),
              "fault 'errno=1,corrupt': a command that ends with status or errno has no answer to be damaged");
    for (const std::string kind : {"short=1", "cmd-status=1", "unsigned"}) {
        EXPECT_FALSE(parse_fault("errno=1," + kind)) << kind;
        EXPECT_TRUE(parse_fault("nth=1," + kind)) << kind;
    }
    EXPECT_EQ(parse_fault("nth=1").error(),
              "fault 'nth=1': it does nothing; add status=, errno=, short=, cmd-status=, unsigned, corrupt or delay=");
}

class Faults : public testing::Test {
protected:
    void inject(std::initializer_list<std::string_view> texts)
    {
        std::vector<Fault> faults;
        for (const std::string_view text : texts) {
            faults.push_back(fault(text));
        }
        injector_.emplace(rig_.machine(), faults, [this](microseconds time) { slept_.push_back(time); });
    }
    Completion vendor(QRX_U32 cdw12 = 0x00E0, unsigned device = 0)
    {
        nvme_admin_cmd command{};
        command.opcode = 0xE2;
        command.cdw12 = cdw12;
        rig_.page.fill(kUntouched);
        return injector_->admin({device, 0}, command, rig_.page);
    }
    Completion set_time()
    {
        nvme_admin_cmd command{};
        command.opcode = 0xE2;
        command.cdw12 = 0x03E0;
        command.cdw14 = 7;
        return injector_->admin({}, command, {});
    }
    Completion read_sector()
    {
        nvme_admin_cmd command{};
        command.opcode = 0x02;
        command.nsid = 1;
        return injector_->io({}, command, std::span(rig_.page).first(512));
    }
    Completion log_page()
    {
        nvme_admin_cmd command{};
        command.opcode = 0x02;
        command.cdw10 = 0x007F0002;
        return injector_->admin({}, command, std::span(rig_.page).first(512));
    }
    std::vector<QRX_U32> statuses(int count)
    {
        std::vector<QRX_U32> all(static_cast<std::size_t>(count));
        std::generate(all.begin(), all.end(), [this] { return vendor().status; });
        return all;
    }

    Rig rig_{"raid"};
    std::vector<microseconds> slept_;
    std::optional<FaultInjector> injector_;
};

TEST_F(Faults, NthHitsOnce)
{
    inject({"nth=3,status=0x706"});
    EXPECT_THAT(statuses(5), ElementsAre(0, 0, 0x706, 0, 0));
}

TEST_F(Faults, EveryHitsAgainAndAgain)
{
    inject({"every=2,status=6"});
    EXPECT_THAT(statuses(5), ElementsAre(0, 6, 0, 6, 0));
}

TEST_F(Faults, WithoutCountAllAreHit)
{
    inject({"status=6"});
    EXPECT_THAT(statuses(3), ElementsAre(6, 6, 6));
}

TEST_F(Faults, CountOnlyTheCommandsTheyChoose)
{
    inject({"command=0x00e1,nth=2,status=6"});
    EXPECT_EQ(vendor(0x00E1).status, 0U);
    EXPECT_EQ(vendor(0x00E0).status, 0U);
    EXPECT_EQ(vendor(0x000500E1).status, 6U);
}

TEST_F(Faults, ChooseByOpcodeAndQueue)
{
    inject({"opcode=2,queue=admin,status=6"});
    EXPECT_EQ(read_sector().status, 0U);
    EXPECT_EQ(log_page().status, 6U);
    EXPECT_EQ(vendor().status, 0U);
    inject({"opcode=2,queue=io,status=6"});
    EXPECT_EQ(read_sector().status, 6U);
    EXPECT_EQ(log_page().status, 0U);
    inject({"command=0,status=6"});
    EXPECT_EQ(log_page().status, 0U) << "no vendor command";
}

TEST_F(Faults, ChooseByDevice)
{
    inject({"device=4,status=6"});
    EXPECT_EQ(vendor(0x00E0, 0).status, 0U);
    EXPECT_EQ(vendor(0x00E0, 4).status, 6U);
}

TEST_F(Faults, StatusAndErrnoKeepTheCommandFromTheDevice)
{
    inject({"nth=1,status=0x706", "nth=2,errno=ETIMEDOUT"});
    Completion completion = set_time();
    EXPECT_EQ(completion.status, 0x706U);
    EXPECT_EQ(completion.error, 0);
    completion = set_time();
    EXPECT_EQ(completion.status, 0U);
    EXPECT_EQ(completion.error, ETIMEDOUT);
    EXPECT_FALSE(rig_.controller().clock.set);
    set_time();
    EXPECT_EQ(rig_.controller().clock.seconds(), 7U);
    inject({"status=6"});
    vendor();
    EXPECT_TRUE(rig_.all_from(0, kUntouched));
}

TEST_F(Faults, ShortLeavesTheRestOfTheBufferAsItWas)
{
    inject({"short=26"});
    EXPECT_EQ(vendor().status, 0U);
    EXPECT_EQ(rig_.bytes(0, 8), envelope(0));
    EXPECT_EQ(rig_.at<QRX_U16>(24), 0x7A51);
    EXPECT_TRUE(rig_.all_from(26, kUntouched));
    inject({"short=9999"});
    vendor();
    EXPECT_EQ(rig_.page[4095], 0);
}

TEST_F(Faults, CmdStatusStandsInTheEnvelopeAndTheRestIsAsItWas)
{
    inject({"cmd-status=74"});
    EXPECT_EQ(vendor().status, 0U);
    EXPECT_EQ(rig_.bytes(0, 8), envelope(74));
    EXPECT_EQ(rig_.at<QRX_U16>(24), 0x7A51);
}

TEST_F(Faults, TheAnswerOfAPairCommandHasAnEnvelopeToo)
{
    inject({"opcode=0xce,cmd-status=74"});
    const NVMESendData head{.sign = {'Q', 'R', 'X'},
                            .cmd_length = 2,
                            .data_offset = 16,
                            .data_length = 0,
                            .vendor_cmd = {kGroupAdapter, 0}};
    rig_.page.fill(0);
    ASSERT_TRUE(wire::write(rig_.page, 0, head));
    nvme_admin_cmd command{};
    command.opcode = kPairSend;
    command.cdw10 = 1024;
    command.cdw15 = kFrameSignWord;
    EXPECT_EQ(injector_->admin({}, command, rig_.page).status, 0U);
    command.opcode = kPairReceive;
    rig_.page.fill(kUntouched);
    EXPECT_EQ(injector_->admin({}, command, rig_.page).status, 0U);
    EXPECT_EQ(rig_.bytes(0, 8), envelope(74));
    EXPECT_EQ(rig_.at<QRX_U16>(24), 0x7A51);
}

TEST_F(Faults, UnsignedTakesTheFirstLetterOfTheSignatureAway)
{
    inject({"unsigned"});
    EXPECT_EQ(vendor().status, 0U);
    EXPECT_EQ(rig_.page[0], static_cast<QRX_U8>(~'Q'));
    EXPECT_EQ(rig_.page[1], 'R');
    EXPECT_EQ(rig_.at<QRX_U16>(24), 0x7A51);
}

TEST_F(Faults, AnAnswerTooShortForAnEnvelopeIsLeftAlone)
{
    inject({"short=7,cmd-status=74,unsigned"});
    vendor();
    EXPECT_EQ(rig_.page[0], 'Q');
    EXPECT_EQ(rig_.page[4], 0);
}

TEST_F(Faults, CorruptFlipsTheSameBytesForTheSameSeed)
{
    inject({});
    vendor();
    const auto whole = rig_.page;
    inject({"corrupt=5"});
    vendor();
    const auto first = rig_.page;
    EXPECT_NE(first, whole);
    vendor();
    EXPECT_EQ(rig_.page, first);
    inject({"corrupt=6"});
    vendor();
    EXPECT_NE(rig_.page, first);
    inject({"corrupt=5,short=8"});
    vendor();
    EXPECT_NE(rig_.bytes(0, 8), envelope(0));
    EXPECT_TRUE(rig_.all_from(8, kUntouched));
}

TEST_F(Faults, CommandsWithoutAnAnswerAreNotDamaged)
{
    inject({"corrupt,short=1"});
    nvme_admin_cmd command{};
    command.opcode = 0x01;
    command.nsid = 1;
    rig_.page.fill(3);
    EXPECT_EQ(injector_->io({}, command, std::span(rig_.page).first(512)).status, 0U);
    EXPECT_TRUE(rig_.all_from(0, 3));
    EXPECT_EQ(set_time().status, 0U);
}

TEST_F(Faults, DelaysAddUpAndTheFirstStatusDecides)
{
    inject({"nth=2,delay=5ms", "every=2,delay=2s,status=4", "status=6"});
    EXPECT_THAT(statuses(3), ElementsAre(6, 4, 6));
    EXPECT_THAT(slept_, ElementsAre(microseconds(5000), microseconds(2000000)));
}

TEST_F(Faults, PassTheMachineOn)
{
    inject({"status=6"});
    EXPECT_EQ(injector_->controllers(), rig_.machine().controllers());
    EXPECT_EQ(injector_->mount_table(), rig_.machine().mount_table());
}

}  // namespace

}  // namespace qrx::sim
