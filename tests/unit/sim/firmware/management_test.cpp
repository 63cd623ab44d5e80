// NVMe-MI Send and Receive: the VPD in its two stores, and the tunnel in a message.
#include <numeric>

#include "api/src/interface/wire/mi.h"
#include "tests/unit/sim/firmware/rig.h"

namespace qrx::sim {
namespace {

constexpr QRX_U32 kInvalidField = 0x002;
constexpr QRX_U32 kSequenceError = 0x00C;
constexpr QRX_U32 kMessage = 1040;  // bytes of a request

using Bytes = std::vector<QRX_U8>;

class Management : public testing::Test {
protected:
    static Rig with(const std::string& more)
    {
        return Rig::of_text(R"({"controllers": [{"model": "MODEL OF THE CARD", "serial": "SERIAL-OF-CARD",
            "drives": [{"id": 0, "sectors": 80000}, {"id": 1, "failed": true, "sectors": 80000},
                       {"id": 3, "model": "MODEL THREE", "sectors": 90000, "sector_size": 4096}],
            "adapter": {"pcie": [{"type": "root-complex", "speed": "2.5Gb/s", "width": 1},
                                 {"type": "end-point", "speed": "8Gb/s", "width": 4}]})" +
                            more + "}]}");
    }
    // The words of a VPD request; 0x84 0x08 unless a test wants another beginning.
    static Bytes vpd(QRX_U8 opcode, QRX_U32 offset, QRX_U32 length, std::size_t size = kMessage)
    {
        Bytes message(kMessage);
        message[0] = 0x84;
        message[1] = 0x08;
        message[4] = opcode;
        std::memcpy(&message[8], &offset, 4);
        std::memcpy(&message[12], &length, 4);
        message.resize(size);
        return message;
    }
    static Bytes tunnelled(QRX_U32 drive, QRX_U32 cdw10, QRX_U32 cdw14)
    {
        Bytes message(4096);
        message[0] = 0x84;
        message[1] = 0x10;
        message[4] = 0xC2;
        std::memcpy(&message[8], &drive, 4);
        std::memcpy(&message[44], &cdw10, 4);
        std::memcpy(&message[60], &cdw14, 4);
        return message;
    }
    Completion send(Bytes message, QRX_U32 cdw11)
    {
        nvme_admin_cmd command{};
        command.opcode = 0x1D;
        command.cdw11 = cdw11;
        return rig.machine().admin({}, command, message);
    }
    QRX_U32 send(const Bytes& message) { return send(message, static_cast<QRX_U32>(message.size() / 4 - 1)).status; }
    Completion receive()
    {
        nvme_admin_cmd command{};
        command.opcode = 0x1E;
        return rig.admin(command);
    }
    // The data of VPD Read.
    std::string read(QRX_U32 offset, QRX_U32 length)
    {
        EXPECT_EQ(send(vpd(5, offset, length)), kGood);
        EXPECT_EQ(receive().status, kGood);
        EXPECT_EQ(rig.bytes(0, 8), std::string("\x04\x88\0\0\0\0\0\0", 8));
        return rig.bytes(8, length);
    }
    // The status in the answer to a message that is carried.
    unsigned refusal(const Bytes& message)
    {
        EXPECT_EQ(send(message), kGood);
        EXPECT_EQ(receive().status, kGood);
        EXPECT_TRUE(rig.all_from(8, 0));
        EXPECT_EQ(rig.bytes(5, 3), std::string(3, '\0'));
        return rig.page[4];
    }
    Completion write(QRX_U32 offset, const std::string& text)
    {
        Bytes message = vpd(6, offset, static_cast<QRX_U32>(text.size()));
        std::copy(text.begin(), text.end(), message.begin() + 16);
        return send(message, kMessage / 4 - 1);
    }
    static unsigned sum(std::string_view bytes)
    {
        return std::accumulate(bytes.begin(), bytes.end(), 0U,
                               [](unsigned sum, char byte) { return sum + static_cast<QRX_U8>(byte); }) &
               0xFF;
    }

    Rig rig = with("");
};

// Walks an image by its own offsets and lengths alone, as a reader of FRU images does.
struct Fru {
    explicit Fru(const std::string& image)
    {
        const auto at = [&](std::size_t i) { return static_cast<QRX_U8>(image.at(i)); };
        EXPECT_EQ(at(0), 1);
        const std::size_t product = std::size_t{8} * at(4);
        const std::size_t length = std::size_t{8} * at(product + 1);
        areas.push_back(image.substr(0, 8));
        areas.push_back(image.substr(product, length));
        std::size_t field = product + 3;
        while (at(field) != 0xC1) {
            EXPECT_TRUE(at(field) == 0 || at(field) >> 6 == 3);
            fields.push_back(image.substr(field + 1, at(field) & 0x3F));
            field += 1 + fields.back().size();
        }
        EXPECT_LT(field, product + length - 1);
        for (std::size_t record = std::size_t{8} * at(5);;) {
            EXPECT_EQ(at(record + 1) & 0x0F, 2);
            types.push_back(at(record));
            areas.push_back(image.substr(record, 5));
            areas.push_back(image.substr(record + 5, at(record + 2)) + image[record + 3]);
            records.push_back(image.substr(record + 5, at(record + 2)));
            if ((at(record + 1) & 0x80) != 0) {
                break;
            }
            record += 5U + at(record + 2);
        }
    }
    std::vector<std::string> areas;    // each with its checksum
    std::vector<std::string> fields;   // of the product
    std::vector<QRX_U8> types;         // of the records
    std::vector<std::string> records;  // without their heads
};

TEST_F(Management, TheVpdIsAnImageWithTheRightChecksums)
{
    const Fru fru(read(0, 256));
    ASSERT_EQ(fru.areas.size(), 6U);
    for (const std::string& area : fru.areas) {
        EXPECT_EQ(sum(area), 0U);
    }
    EXPECT_EQ(fru.fields, (std::vector<std::string>{"QRX     ", "MODEL OF THE CARD       ",
                                                    "MODEL OF THE CARD                       ", "01",
                                                    "SERIAL-OF-CARD      ", "", ""}));
    EXPECT_EQ(fru.types, (std::vector<QRX_U8>{0x0B, 0x0C}));
    QRX_U64 capacity = 0;
    std::memcpy(&capacity, fru.records[0].data() + 13, sizeof(capacity));
    EXPECT_EQ(capacity, 160000U * 512 + 90000U * 4096);
    EXPECT_EQ(fru.records[1], std::string("\0\0\0\x07\x04\0\x01\0\0\0\0", 11));
}

TEST_F(Management, TheAreasLieWhereTheRecordsSay)
{
    const std::string image = read(0, 250);
    const auto vpd = wire::read<vpd_elements>(Bytes(image.begin(), image.end())).value();
    EXPECT_EQ(vpd.vpd_common_header.Product_Info_Area_Starting_Offset, 1);
    EXPECT_EQ(vpd.vpd_common_header.MultiRecord_Info_Area_Starting_Offset, 15);
    EXPECT_EQ(vpd.vpd_product_info_area.Product_Info_Area_Length, 14);
    EXPECT_EQ(vpd.vpd_product_info_area.Language_Code, 0x19);
    EXPECT_EQ(image.substr(8 + 82, 20), "SERIAL-OF-CARD      ");
    EXPECT_EQ(vpd.vpd_product_info_area.End_of_Record, 0xC1);
    EXPECT_EQ(vpd.vpd_nvme_multirecord_area.Record_Length, 53);
    EXPECT_EQ(vpd.vpd_nvme_multirecord_area.Maximum_12V_Power_Supply_Requirements, 25);
    EXPECT_EQ(vpd.vpd_nvme_multirecord_area.Maximum_Thermal_Load, 25);
    EXPECT_EQ(vpd.vpd_nvme_pcie_port_multirecord_area.NVMe_PCIe_Port_Record_Type_ID, 0x0C);
    EXPECT_EQ(vpd.vpd_nvme_pcie_port_multirecord_area.Record_format_version, 0x82);
    EXPECT_EQ(vpd.vpd_nvme_pcie_port_multirecord_area.PCIe_Maximum_Link_Width, 4);
    EXPECT_EQ(image.substr(194), std::string(56, '\0'));
}

TEST_F(Management, AnyPieceCanBeRead)
{
    const std::string image = read(0, 256);
    EXPECT_EQ(image.substr(250), std::string(6, '\xFF'));
    EXPECT_EQ(read(12, 3), "QRX");
    EXPECT_EQ(read(255, 1), "\xFF");
    EXPECT_EQ(read(256, 0), "");
    EXPECT_TRUE(rig.all_from(8, 0));
}

TEST_F(Management, TheSettingChoosesTheStore)
{
    const std::string eeprom = read(0, 256);
    rig = with(R"(, "settings": {"vpd_in_spi": true})");
    const std::string spi = read(0, 1024);
    EXPECT_EQ(Fru(spi).fields[3], "02");
    EXPECT_EQ(sum(Fru(spi).areas[1]), 0U);
    EXPECT_EQ(spi.substr(256), std::string(768, '\xFF'));
    EXPECT_EQ(Fru(eeprom).fields[4], Fru(spi).fields[4]);
    EXPECT_EQ(write(0, "spi").status, kGood);
    EXPECT_EQ(read(0, 3), "spi");
    EXPECT_EQ(rig.controller().vpd.eeprom, Bytes(eeprom.begin(), eeprom.end()));
}

TEST_F(Management, WhatIsWrittenIsRead)
{
    const std::string before = read(0, 256);
    EXPECT_EQ(write(90, "NEW SERIAL").status, kGood);
    EXPECT_EQ(receive().status, kGood);  // a write has an answer too
    EXPECT_EQ(rig.bytes(0, 8), std::string("\x04\x88\0\0\0\0\0\0", 8));
    EXPECT_TRUE(rig.all_from(8, 0));
    EXPECT_EQ(read(0, 256), before.substr(0, 90) + "NEW SERIAL" + before.substr(100));
    EXPECT_EQ(rig.controller().events.entries.back().text, "has 10 bytes of VPD written at 90 of the EEPROM");
    EXPECT_EQ(write(256, "").status, kGood);
    EXPECT_EQ(write(255, "x").status, kGood);
    EXPECT_EQ(read(255, 1), "x");
}

TEST_F(Management, RefusalsStandInTheAnswer)
{
    constexpr unsigned kInvalidOpcode = 3;
    constexpr unsigned kInvalidParameter = 4;
    constexpr unsigned kInvalidInputSize = 6;
    const Bytes before = rig.controller().vpd.eeprom;
    EXPECT_EQ(refusal(vpd(5, 0, 257)), kInvalidParameter);
    EXPECT_EQ(refusal(vpd(5, 257, 0)), kInvalidParameter);
    EXPECT_EQ(refusal(vpd(5, 0xFFFFFFFF, 2)), kInvalidParameter);
    EXPECT_EQ(refusal(vpd(6, 250, 7)), kInvalidParameter);
    EXPECT_EQ(refusal(vpd(7, 0, 0)), kInvalidOpcode);
    EXPECT_EQ(refusal(vpd(6, 0, 5, 20)), kInvalidInputSize);
    Bytes admin = tunnelled(0, 1, 6);
    admin[4] = 0x0D;  // not for the management interface
    EXPECT_EQ(refusal(admin), kInvalidOpcode);
    EXPECT_EQ(rig.page[1], 0x90);
    EXPECT_EQ(rig.controller().vpd.eeprom, before);
}

TEST_F(Management, AMessageIsAsLongAsTheCommandSays)
{
    EXPECT_EQ(send(vpd(5, 0, 4), 259).status, kGood);
    EXPECT_EQ(send(vpd(5, 0, 4, 1043), 259).status, kGood);  // less than a dword more
    EXPECT_EQ(send(vpd(5, 0, 4, 1044), 259).status, kInvalidField);
    EXPECT_EQ(send(vpd(5, 0, 4, 1039), 259).status, kInvalidField);
    EXPECT_EQ(send(vpd(5, 0, 4), 0xFFFFFFFF).status, kInvalidField);
    EXPECT_EQ(send(vpd(5, 0, 4, 16), 3).status, kGood);
    EXPECT_EQ(send(vpd(5, 0, 4, 16), 2).status, kInvalidField);
    EXPECT_EQ(send(Bytes(0), 0).status, kInvalidField);
}

TEST_F(Management, WhatIsNoRequestIsRefused)
{
    for (const auto& [at, value] : {std::pair(0, 0x85), {1, 0x88}, {1, 0x00}, {1, 0x18}}) {
        Bytes message = vpd(5, 0, 4);
        message[static_cast<std::size_t>(at)] = static_cast<QRX_U8>(value);
        EXPECT_EQ(send(message), kInvalidField) << at << ' ' << value;
    }
    Bytes message = vpd(5, 0, 4);
    message[0] = 0x04;  // without an integrity check
    message[1] = 0x09;  // in the other slot
    EXPECT_EQ(send(message), kGood);
    EXPECT_EQ(receive().status, kGood);
    EXPECT_EQ(rig.bytes(0, 2), "\x04\x89");
}

TEST_F(Management, EachSendHasOneAnswer)
{
    EXPECT_EQ(receive().status, kSequenceError);
    EXPECT_EQ(send(vpd(5, 8, 1)), kGood);
    EXPECT_EQ(send(vpd(5, 12, 1)), kGood);  // in place of the first
    EXPECT_EQ(receive().status, kGood);
    EXPECT_EQ(rig.bytes(8, 1), "Q");
    EXPECT_EQ(receive().status, kSequenceError);
    EXPECT_EQ(send(vpd(5, 8, 1)), kGood);
    EXPECT_EQ(send(vpd(5, 8, 1, 12)), kInvalidField);
    EXPECT_EQ(receive().status, kSequenceError);
}

TEST_F(Management, AShortBufferGetsWhatFits)
{
    EXPECT_EQ(send(vpd(5, 12, 3)), kGood);
    nvme_admin_cmd command{};
    command.opcode = 0x1E;
    std::array<QRX_U8, 10> data{};
    EXPECT_EQ(rig.machine().admin({}, command, data).status, kGood);
    EXPECT_EQ(data, (std::array<QRX_U8, 10>{0x04, 0x88, 0, 0, 0, 0, 0, 0, 'Q', 'R'}));
}

TEST_F(Management, TheTunnelReachesTheDrive)
{
    nvme_admin_cmd direct{};
    direct.opcode = 0xC2;
    direct.nsid = 3;
    direct.cdw10 = 1;
    direct.cdw14 = 6;
    ASSERT_EQ(rig.admin(direct).status, kGood);
    const std::string identify = rig.bytes(0, 4088);
    EXPECT_EQ(identify.substr(24, 11), "MODEL THREE");
    EXPECT_EQ(send(tunnelled(3, 1, 6)), kGood);
    EXPECT_EQ(receive().status, kGood);
    EXPECT_EQ(rig.bytes(0, 8), std::string("\x04\x90\0\0\0\0\0\0", 8));
    EXPECT_EQ(rig.bytes(8, 4088), identify);
}

TEST_F(Management, ADriveThatRefusesEndsTheSend)
{
    EXPECT_EQ(send(tunnelled(2, 1, 6)), 0x706U);
    EXPECT_EQ(send(tunnelled(1, 1, 6)), 0x701U);
    EXPECT_EQ(send(tunnelled(3, 0x77, 6)), kInvalidField);
    EXPECT_EQ(send(tunnelled(3, 1, 0x11)), kInvalidField);  // the wrong way
    EXPECT_EQ(receive().status, kSequenceError);
    Bytes shorter = tunnelled(3, 1, 6);
    shorter.resize(64);
    EXPECT_EQ(send(shorter), kInvalidField);
}

TEST_F(Management, TheStateKeepsBothStoresAndTheAnswer)
{
    EXPECT_EQ(write(0, "kept").status, kGood);
    const std::string text = save_machine(rig.machine());
    rig = Rig::of_text(text);
    EXPECT_EQ(save_machine(rig.machine()), text);
    EXPECT_EQ(receive().status, kGood);
    EXPECT_EQ(read(0, 4), "kept");
}

TEST_F(Management, APowerCycleKeepsTheVpdAndNoAnswer)
{
    EXPECT_EQ(write(0, "kept").status, kGood);
    rig.machine().controller(0)->reset();
    EXPECT_EQ(receive().status, kSequenceError);
    EXPECT_EQ(read(0, 4), "kept");
}

TEST_F(Management, AScenarioMayGiveTheBeginningOfAStore)
{
    rig = with(R"(, "vpd": {"eeprom": "414243"})");
    EXPECT_EQ(read(0, 5), "ABC\xFF\xFF");
    EXPECT_EQ(Fru(std::string(rig.controller().vpd.spi.begin(), rig.controller().vpd.spi.end())).fields[3], "02");
}

TEST_F(Management, AnotherMakersDiskHasNoEndpoint)
{
    rig = Rig("foreign");
    EXPECT_EQ(send(vpd(5, 0, 4)), 1U);
    EXPECT_EQ(receive().status, 1U);
}

TEST_F(Management, TheControllerTellsThatItHasOne)
{
    ASSERT_EQ(rig.identify(1).status, kGood);
    EXPECT_EQ(rig.at<nvme_id_ctrl>(0).oacs & 1U << 6, 1U << 6);
    ASSERT_EQ(rig.log_page(5, 4096).status, kGood);
    EXPECT_EQ(rig.at<QRX_U32>(std::size_t{4} * 0x1D), 1U);
    EXPECT_EQ(rig.at<QRX_U32>(std::size_t{4} * 0x1E), 1U);
}

}  // namespace
}  // namespace qrx::sim
