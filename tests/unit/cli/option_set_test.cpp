// The option scanner's tables, made of rows.
#include "cli/Public/frame/option_set.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(OptionSet, AloneHasWhatEveryCommandHas)
{
    const qrx::OptionSet options;
    EXPECT_STREQ(options.letters(), "\x01:h");
    EXPECT_EQ(options.known(), "");
    EXPECT_STREQ(options.rows()[0].name, "output");
    EXPECT_STREQ(options.rows()[1].name, "help");
    EXPECT_EQ(options.rows()[2].name, nullptr);
}

TEST(OptionSet, PutsItsOptionsInFrontInTheirOrder)
{
    qrx::OptionSet options;
    options.add('n', "nsid").add('5', "fua", optional_argument);
    EXPECT_STREQ(options.letters(), "n:5:\x01:h");
    EXPECT_EQ(options.known(), "n5");
    EXPECT_STREQ(options.rows()[0].name, "nsid");
    EXPECT_EQ(options.rows()[0].has_arg, required_argument);
    EXPECT_EQ(options.rows()[0].val, 'n');
    EXPECT_STREQ(options.rows()[1].name, "fua");
    EXPECT_EQ(options.rows()[1].has_arg, optional_argument);
    EXPECT_EQ(options.rows()[1].val, '5');
    EXPECT_STREQ(options.rows()[2].name, "output");
    EXPECT_EQ(options.rows()[2].val, 1);
    EXPECT_STREQ(options.rows()[3].name, "help");
    EXPECT_EQ(options.rows()[4].name, nullptr);
}

TEST(OptionSet, HoldsAsManyAsItSays)
{
    qrx::OptionSet options;
    std::string letters;
    for (std::size_t i = 0; i < qrx::OptionSet::kMost; ++i) {
        options.add(static_cast<char>('a' + i), "name");
        letters += {static_cast<char>('a' + i), ':'};
    }
    EXPECT_EQ(options.letters(), letters + "\x01:h");
    EXPECT_EQ(options.rows()[qrx::OptionSet::kMost + 2].name, nullptr);
}

}  // namespace
