// `flash -o hba -t raw`.
#include <gtest/gtest.h>

#include "tests/unit/cli/flash_fixture.h"

namespace {

using namespace qrx::test;

class FlashRaw : public FlashTest {
protected:
    Outcome flash(const Bytes& image) { return command({"flash", "-o", "hba", "-t", "RAW", "-f", fileOf(image)}); }
    static Command vendorStep(const Bytes& image)
    {
        return Command::passthru(0xE2)
            .word(12, 0x00010BE0)
            .word(13, 0x20585251)
            .word(15, headerCrc(image))
            .flag(0xB001)
            .on(1);
    }
    const Outcome good{0, std::string(kStarted) + kSuccess};
    const Outcome refusedByWorker{1, kStarted + failedWith(1)};
};

TEST_F(FlashRaw, BothLayoutsAreSentWithTheVendorStepAndCommittedToSlotOne)
{
    for (const std::size_t body : {0x40U, 0x80U}) {
        const Bytes image = rawImage({body, body, body});
        expectSegments(image);
        machine.expect(vendorStep(image));
        machine.expect(commit(1, 1));
        EXPECT_EQ(flash(image), good) << body;
        machine.verify();
    }
}

TEST_F(FlashRaw, MixedLayoutsAreRefused)
{
    for (int mix = 1; mix < 7; ++mix) {
        const auto body = [mix](int component) { return (mix >> component & 1) != 0 ? 0x80U : 0x40U; };
        EXPECT_EQ(flash(rawImage({body(0), body(1), body(2)})), refusedByWorker) << mix;
    }
}

TEST_F(FlashRaw, ABadSumIsRefused)
{
    Bytes image = rawImage({0x40, 0x40, 0x40});
    for (const QRX_U32 sum : {1U, 0x80000000U, 0xFFFFFFFFU}) {
        setSum(image, sum);
        EXPECT_EQ(flash(image), refusedByWorker) << sum;
    }
}

TEST_F(FlashRaw, ABadSizeIsRefused)
{
    for (const std::size_t size : {0x81001U, 0x81004U, 0x81FFCU}) {
        Bytes image = rawImage({0x40, 0x40, 0x40}, size - size % 4);
        image.resize(size);
        ASSERT_EQ(sumOf(image), 0U);
        EXPECT_EQ(flash(image), refusedByWorker) << size;
    }
}

TEST_F(FlashRaw, AnImageShorterThanItsHeadersIsRefused)
{
    for (const std::size_t size : {0U, 0x1000U, 0x40000U, 0x41000U, 0x80000U}) {
        EXPECT_EQ(flash(Bytes(size)), refusedByWorker) << size;
    }
}

TEST_F(FlashRaw, AComponentThatRunsOverTheEndIsRefused)
{
    for (const QRX_U32 length : {0x81000U - 0x80040U + 1, 0x7FFFFFFFU, 0xFFFFFFC0U, 0xFFFFFFFFU}) {
        Bytes image = rawImage({0x40, 0x40, 0x40});
        put32(image, 0x80000 + 44, length);
        setSum(image);
        EXPECT_EQ(flash(image), refusedByWorker) << length;
    }
}

TEST_F(FlashRaw, NothingFollowsAFailure)
{
    const Bytes image = rawImage({0x80, 0x80, 0x80});
    const std::size_t count = segmentsOf(image).size();
    for (std::size_t failing = 0; failing < count; ++failing) {
        expectSegments(image, failing);
        EXPECT_EQ(flash(image), refusedByWorker) << failing;
        machine.verify();
    }
    expectSegments(image);
    machine.expect(vendorStep(image).status(0x704));
    EXPECT_EQ(flash(image), (Outcome{0x704, kStarted + failedWith(0x704)}));
    machine.verify();
    expectSegments(image);
    machine.expect(vendorStep(image));
    machine.expect(commit(1, 1).status(0x106));
    EXPECT_EQ(flash(image), (Outcome{0x106, kStarted + failedWith(0x106)}));
}

TEST_F(FlashRaw, TheMostIsCheckedHereToo)
{
    current().MaxFlashSize = kRawSize - 1;
    EXPECT_EQ(flash(rawImage({0x40, 0x40, 0x40})), (Outcome{1, kStartRefused}));
}

TEST_F(FlashRaw, SlotAndActionCannotBeChosen)
{
    EXPECT_EQ(command({"flash", "-o", "hba", "-t", "raw", "-f", "x", "-c", "1"}),
              (Outcome{1, "'-t raw' does not support '-c' action\n"}));
    EXPECT_EQ(command({"flash", "-o", "hba", "-t", "raw", "-f", "x", "-s", "1"}),
              (Outcome{1, "'-t raw' does not support '-s' action\n"}));
    EXPECT_EQ(command({"flash", "-o", "hba", "-t", "raw", "-f", "x", "-s", "1", "-c", "1"}),
              (Outcome{1, "'-t raw' does not support '-c' action\n"}));
}

}  // namespace
