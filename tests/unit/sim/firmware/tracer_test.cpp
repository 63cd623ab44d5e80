// The lines of a trace.
#include "sim/firmware/tracer.h"

#include <cerrno>
#include <sstream>

#include "tests/unit/sim/firmware/rig.h"

namespace qrx::sim {

namespace {

// Answers every command in the same way.
class FixedHost : public Host {
public:
    Completion completion;
    std::vector<QRX_U8> answer;

    [[nodiscard]] std::vector<ControllerNode> controllers() const override
    {
        ControllerNode node;
        node.number = 77;
        return {node};
    }
    [[nodiscard]] std::string mount_table() const override { return "mounts\n"; }
    Completion admin(const Node& /*node*/, const nvme_admin_cmd& /*command*/, std::span<QRX_U8> data) override
    {
        std::copy_n(answer.begin(), std::min(answer.size(), data.size()), data.begin());
        return completion;
    }
    Completion io(const Node& node, const nvme_admin_cmd& command, std::span<QRX_U8> data) override
    {
        return admin(node, command, data);
    }
};

class TracerTest : public testing::Test {
protected:
    std::string admin(const nvme_admin_cmd& command, std::size_t length, Node node = {})
    {
        std::vector<QRX_U8> data(length);
        out_.str("");
        tracer_.admin(node, command, data);
        return out_.str();
    }
    std::string io(const nvme_admin_cmd& command, std::size_t length, Node node = {})
    {
        std::vector<QRX_U8> data(length);
        out_.str("");
        tracer_.io(node, command, data);
        return out_.str();
    }

    FixedHost host_;
    std::ostringstream out_;
    Tracer tracer_{host_, out_};
};

TEST_F(TracerTest, NumbersTheCommandsOfAllNodes)
{
    nvme_admin_cmd identify{};
    identify.opcode = 0x06;
    identify.cdw10 = 1;
    EXPECT_EQ(admin(identify, 4096), "1 nvme0 admin identify(0x06) cdw10=0x1 in=4096 -> success\n");
    EXPECT_EQ(admin(identify, 4096, {11, 0}), "2 nvme11 admin identify(0x06) cdw10=0x1 in=4096 -> success\n");
    EXPECT_EQ(admin(identify, 4096, {1, 2}), "3 nvme1n2 admin identify(0x06) cdw10=0x1 in=4096 -> success\n");
}

TEST_F(TracerTest, NamesTheVendorCommand)
{
    nvme_admin_cmd command{};
    command.opcode = 0xE2;
    command.cdw12 = 0x00050FE0;
    EXPECT_EQ(admin(command, 4096),
              "1 nvme0 admin vendor-read(0xe2) read-hba-info(0x0fe0) cdw12=0x50fe0 in=4096 -> success\n");
    command.opcode = 0xC7;
    command.cdw12 = 0x13E0;
    EXPECT_EQ(admin(command, 4096),
              "2 nvme0 admin vendor-write(0xc7) write-oem-data(0x13e0) cdw12=0x13e0 data=4096 -> success\n");
    command.cdw12 = 0xABCD;
    EXPECT_EQ(admin(command, 0), "3 nvme0 admin vendor-write(0xc7) unknown(0xabcd) cdw12=0xabcd -> success\n");
}

TEST_F(TracerTest, TellsAtaCommandsFromThoseOfTheMultiFunctionDevice)
{
    nvme_admin_cmd command{};
    command.opcode = 0xD2;
    command.cdw10 = 0x105;
    EXPECT_EQ(admin(command, 512), "1 nvme0 admin child-query(0xd2) cdw10=0x105 in=512 -> success\n");
    command.cdw10 = 0x1;
    EXPECT_EQ(admin(command, 512), "2 nvme0 admin child-query(0xd2) cdw10=0x1 in=512 -> success\n");
    command.cdw14 = 0xEC;
    EXPECT_EQ(admin(command, 512), "3 nvme0 admin sata-from-drive(0xd2) cdw10=0x1 cdw14=0xec in=512 -> success\n");
    command.cdw10 = 0xEC8027;
    EXPECT_EQ(admin(command, 512), "4 nvme0 admin sata-from-drive(0xd2) cdw10=0xec8027 cdw14=0xec in=512 -> success\n");
    command.opcode = 0xD3;
    EXPECT_EQ(admin(command, 0), "5 nvme0 admin sata-to-drive(0xd3) cdw10=0xec8027 cdw14=0xec -> success\n");
}

TEST_F(TracerTest, TellsWhatAMessageAsksFor)
{
    nvme_admin_cmd command{};
    command.opcode = 0x1D;
    command.cdw11 = 0x103;
    const auto traced = [&](std::vector<QRX_U8> message) {
        out_.str("");
        tracer_.admin({}, command, message);
        return out_.str();
    };
    EXPECT_EQ(traced({0x84, 0x08, 0, 0, 5, 0, 0, 0, 0x10, 2, 0, 0, 0x20, 3, 0, 0}),
              "1 nvme0 admin mi-send(0x1d) vpd-read(0x05) dw0=0x210 dw1=0x320 cdw11=0x103 out=16 -> success\n");
    EXPECT_EQ(traced({0x84, 0x08, 0, 0, 6}),
              "2 nvme0 admin mi-send(0x1d) vpd-write(0x06) cdw11=0x103 out=5 -> success\n");
    std::vector<QRX_U8> tunnel(68);
    tunnel[1] = 0x10;
    tunnel[4] = 0xC2;
    tunnel[8] = 0x21;
    tunnel[44] = 0x22;
    tunnel[60] = 0x23;
    tunnel[64] = 0x24;
    EXPECT_EQ(traced(tunnel),
              "3 nvme0 admin mi-send(0x1d) tunnel-from-drive(0xc2) sqe1=0x21 sqe10=0x22 sqe14=0x23 "
              "sqe15=0x24 cdw11=0x103 out=68 -> success\n");
    tunnel[1] = 0x18;
    EXPECT_NE(traced(tunnel).find(" mi-send(0x1d) unknown(0xc2) "), std::string::npos);
    EXPECT_EQ(traced({0x84, 0x08, 0, 0}), "5 nvme0 admin mi-send(0x1d) cdw11=0x103 out=4 -> success\n");
    EXPECT_EQ(traced({}), "6 nvme0 admin mi-send(0x1d) cdw11=0x103 -> success\n");
}

TEST_F(TracerTest, TellsTheStatusOfAnAnswer)
{
    nvme_admin_cmd command{};
    command.opcode = 0x1E;
    host_.answer = {0x04, 0x88, 0, 0, 0x04};
    EXPECT_EQ(admin(command, 4096), "1 nvme0 admin mi-receive(0x1e) in=4096 -> success mi_status=0x4\n");
    EXPECT_EQ(admin(command, 4), "2 nvme0 admin mi-receive(0x1e) in=4 -> success\n");
    host_.answer[4] = 0;
    EXPECT_EQ(admin(command, 4096), "3 nvme0 admin mi-receive(0x1e) in=4096 -> success\n");
}

TEST_F(TracerTest, NamesTheMessageWhoseHeadStandsInTheWords)
{
    nvme_admin_cmd command{};
    command.opcode = 0x1E;
    command.cdw10 = 0x0884;
    command.cdw11 = 5;
    command.cdw13 = 0x20;
    host_.answer = {1, 2, 3, 4, 5, 6};
    EXPECT_EQ(admin(command, 4096),
              "1 nvme0 admin mi-receive(0x1e) vpd-read(0x05) cdw10=0x884 cdw11=0x5 cdw13=0x20 in=4096 -> success\n")
        << "its data has no head, and so no status";
    command.opcode = 0x1D;
    command.cdw11 = 6;
    EXPECT_EQ(admin(command, 0),
              "2 nvme0 admin mi-send(0x1d) vpd-write(0x06) cdw10=0x884 cdw11=0x6 cdw13=0x20 -> success\n");
}

TEST_F(TracerTest, WritesEveryWordThatIsNotZero)
{
    nvme_admin_cmd command{};
    command.opcode = 0x99;
    command.flags = 0x11;
    command.rsvd1 = 0x22;
    command.nsid = 0x33;
    command.cdw2 = 0x44;
    command.cdw3 = 0x55;
    command.metadata = 0x1234;
    command.addr = 0x5678;
    command.metadata_len = 0x66;
    command.data_len = 0x77;
    command.cdw10 = 0x88;
    command.cdw11 = 0x99;
    command.cdw12 = 0xAA;
    command.cdw13 = 0xBB;
    command.cdw14 = 0xCC;
    command.cdw15 = 0xDD;
    command.timeout_ms = 0xEE;
    EXPECT_EQ(admin(command, 3),
              "1 nvme0 admin unknown(0x99) flags=0x11 rsvd1=0x22 nsid=0x33 cdw2=0x44 cdw3=0x55 metadata_len=0x66 "
              "cdw10=0x88 cdw11=0x99 cdw12=0xaa cdw13=0xbb cdw14=0xcc cdw15=0xdd timeout_ms=0xee out=3 -> success\n");
}

TEST_F(TracerTest, NamesIoCommandsAndTheDirectionOfData)
{
    nvme_admin_cmd command{};
    command.opcode = 0x02;
    command.nsid = 1;
    EXPECT_EQ(io(command, 512, {0, 1}), "1 nvme0n1 io read(0x02) nsid=0x1 in=512 -> success\n");
    command.opcode = 0x01;
    EXPECT_EQ(io(command, 512), "2 nvme0 io write(0x01) nsid=0x1 out=512 -> success\n");
    command.opcode = 0x00;
    EXPECT_EQ(io(command, 0), "3 nvme0 io flush(0x00) nsid=0x1 -> success\n");
    EXPECT_EQ(io(command, 4), "4 nvme0 io flush(0x00) nsid=0x1 data=4 -> success\n");
}

TEST_F(TracerTest, TellsHowTheCommandEnded)
{
    nvme_admin_cmd command{};
    command.opcode = 0x06;
    host_.completion = {0x109, 0, 0};
    EXPECT_EQ(admin(command, 0), "1 nvme0 admin identify(0x06) -> invalid log page(0x109)\n");
    host_.completion = {0x3FF, 7, 0};
    EXPECT_EQ(admin(command, 0), "2 nvme0 admin identify(0x06) -> unknown status(0x3ff) result=0x7\n");
    host_.completion = {0, 0xF000F, 0};
    EXPECT_EQ(admin(command, 0), "3 nvme0 admin identify(0x06) -> success result=0xf000f\n");
    host_.completion = {0, 0, EIO};
    EXPECT_EQ(admin(command, 0), "4 nvme0 admin identify(0x06) -> errno EIO\n");
    host_.completion = {0x109, 9, 4000};
    EXPECT_EQ(admin(command, 0), "5 nvme0 admin identify(0x06) -> errno 4000\n");
}

TEST_F(TracerTest, TellsTheFirmwaresVerdictOfAnEnvelope)
{
    nvme_admin_cmd command{};
    command.opcode = 0xE2;
    command.cdw12 = 0x00E1;
    host_.answer = {'Q', 'R', 'X', 0, 6};
    host_.answer.resize(8);
    EXPECT_EQ(admin(command, 16),
              "1 nvme0 admin vendor-read(0xe2) read-pd-info(0x00e1) cdw12=0xe1 in=16 -> success cmd_status=0x6\n");
    EXPECT_EQ(admin(command, 4), "2 nvme0 admin vendor-read(0xe2) read-pd-info(0x00e1) cdw12=0xe1 in=4 -> success\n");
    host_.answer[0] = 'q';
    EXPECT_EQ(admin(command, 16), "3 nvme0 admin vendor-read(0xe2) read-pd-info(0x00e1) cdw12=0xe1 in=16 -> success\n");
    host_.answer[0] = 'Q';
    command = {};
    command.opcode = 0xCE;
    EXPECT_EQ(admin(command, 16), "4 nvme0 admin pair-receive(0xce) in=16 -> success cmd_status=0x6\n");
    command.opcode = 0x06;
    EXPECT_EQ(admin(command, 16), "5 nvme0 admin identify(0x06) in=16 -> success\n");
}

TEST_F(TracerTest, TakesNoRecordThatComesAloneForAnEnvelope)
{
    nvme_admin_cmd command{};
    command.opcode = 0xE2;
    host_.answer = {'Q', 'R', 'X', ' ', 0x88, 0, 12, 0};
    command.cdw12 = 0x04E0;
    EXPECT_EQ(admin(command, 8), "1 nvme0 admin vendor-read(0xe2) read-oem-data(0x04e0) cdw12=0x4e0 in=8 -> success\n");
    command.cdw12 = 0x0FE0;
    EXPECT_EQ(admin(command, 8), "2 nvme0 admin vendor-read(0xe2) read-hba-info(0x0fe0) cdw12=0xfe0 in=8 -> success\n");
    command.cdw12 = 0x00E0;
    EXPECT_EQ(admin(command, 8),
              "3 nvme0 admin vendor-read(0xe2) read-adapter-info(0x00e0) cdw12=0xe0 in=8 -> success cmd_status=0x88\n");
}

TEST_F(TracerTest, PassesTheMachineOn)
{
    EXPECT_EQ(tracer_.controllers(), host_.controllers());
    EXPECT_EQ(tracer_.mount_table(), "mounts\n");
}

TEST_F(TracerTest, APairCommandIsShownByItsRequest)
{
    const auto traced = [this](std::vector<QRX_U8> frame) {
        nvme_admin_cmd command{};
        command.opcode = 0xCB;
        out_.str("");
        tracer_.admin({}, command, frame);
        return out_.str();
    };
    EXPECT_EQ(traced({'Q', 'R', 'X', 0, 3, 16, 16, 0, 227, 0, 4, 0, 3, 0, 0, 0}),
              "1 nvme0 admin pair-send(0xcb) vd-bga-control(227,4,3) data=16 -> success\n");
    EXPECT_EQ(traced({'Q', 'R', 'X', 0, 255, 16, 0, 0, 0xE3, 1, 4, 0, 3, 0, 0xFF, 0xFF}),
              "2 nvme0 admin pair-send(0xcb) unknown(483,4,3,65535) data=16 -> success\n");
    EXPECT_EQ(traced({'Q', 'R', 'Y', 0, 3, 16, 16, 0, 227, 0, 4, 0, 3, 0, 0, 0}),
              "3 nvme0 admin pair-send(0xcb) data=16 -> success\n");
    EXPECT_EQ(traced(std::vector<QRX_U8>(15)), "4 nvme0 admin pair-send(0xcb) data=15 -> success\n");
}

}  // namespace

}  // namespace qrx::sim
