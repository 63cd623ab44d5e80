// The scanner's header behind <unistd.h>, which declares variables of the same names.
#include <gtest/gtest.h>
#include <unistd.h>

#include "cli/Public/getopt.h"
#include "tests/unit/cli/run.h"

TEST(ScannerBehindUnistd, IsTheOneCalled)
{
    qrx::test::Words words{"c", "-x"};
    optind = 1;
    const auto outcome = qrx::test::outcomeOf([&] { return getopt(words.argc(), words.argv(), "h"); });
    EXPECT_EQ(outcome, (qrx::test::Outcome{'?', "", "", "c: illegal option -- x\n"}));
}
