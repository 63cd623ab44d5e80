// `locate`, and the earlier `reset`: whatever they are asked for, nothing is sent.
#include "cli/Functions/storage/device.h"

#include "tests/unit/cli/typed_fixture.h"

namespace {

using namespace qrx::test;

const Outcome kNothing{0, ""};

class Locate : public TypedTest {};
class EarlierReset : public TypedTest {};

TEST_F(Locate, Help)
{
    const std::string page = helpPage(locate_sh, locate_help);
    EXPECT_EQ(unlisted({"locate"}), (Outcome{1, page}));
    EXPECT_EQ(unlisted({"locate", "-h"}), (Outcome{0, page}));
    EXPECT_EQ(unlisted({"locate", "-o", "ep", "--help"}), (Outcome{0, page}));
}

TEST_F(Locate, ChecksWhatItIsAskedForAndSendsNothing)
{
    EXPECT_EQ(unlisted({"locate", "-o", "ep", "-i", "0", "-a", "on"}), kNothing);
    EXPECT_EQ(unlisted({"locate", "--object=RC", "--id=99", "--action", "OFF"}), kNothing);
    g_oneBaseMode = 1;
    EXPECT_EQ(unlisted({"locate", "-o", "ep", "-i", "0", "-a", "on"}), kNothing);
}

TEST_F(Locate, BadOptions)
{
    EXPECT_EQ(unlisted({"locate", "-o", "pd"}),
              (Outcome{0, "-o : invalid object 'pd', should be end point or root complex\n"}));
    EXPECT_EQ(unlisted({"locate", "-i", "x"}), (Outcome{0, "-i : ID is not a number\n"}));
    EXPECT_EQ(unlisted({"locate", "--id", "0"}), (Outcome{0, "-i : ID is not a number\n"})) << "as --id=0 alone";
    EXPECT_EQ(unlisted({"locate", "-a", "blink"}), (Outcome{0, "-a : invalid action 'blink', should be on or off\n"}));
    EXPECT_EQ(unlisted({"locate", "-z"}), (Outcome{0, "", "", "locate: illegal option -- z\n"}));
}

TEST_F(Locate, DuplicateAndMissingOptions)
{
    for (auto words : {Line{"locate", "-o", "ep", "-o", "ep"}, Line{"locate", "-i", "0", "-i", "0"},
                       Line{"locate", "-a", "on", "-a", "on"}}) {
        EXPECT_EQ(unlisted(words), (Outcome{1, "Duplicated option specified.\n"}));
    }
    EXPECT_EQ(unlisted({"locate", "stray"}), (Outcome{0, "locate: option -o is required\n"}));
    EXPECT_EQ(unlisted({"locate", "-o", "ep", "-a", "on"}), (Outcome{0, "locate: option -i is required\n"}));
    EXPECT_EQ(unlisted({"locate", "-o", "ep", "-i", "0"}), (Outcome{0, "locate: option -a is required\n"}));
}

TEST_F(EarlierReset, Help)
{
    const std::string page = helpPage(reset_sh, reset_help);
    EXPECT_EQ(unlisted({"reset"}), (Outcome{1, page}));
    EXPECT_EQ(unlisted({"reset", "-h"}), (Outcome{0, page}));
    EXPECT_EQ(unlisted({"reset", "-i", "0", "--help"}), (Outcome{0, page}));
}

TEST_F(EarlierReset, ChecksWhatItIsAskedForAndSendsNothing)
{
    EXPECT_EQ(unlisted({"reset", "-i", "0", "-t", "power"}), kNothing);
    EXPECT_EQ(unlisted({"reset", "--pd_id=99", "--type=DEVICE"}), kNothing);
}

TEST_F(EarlierReset, BadOptions)
{
    EXPECT_EQ(unlisted({"reset", "-i", "x"}), (Outcome{0, "-i : P id is not a number\n"}));
    EXPECT_EQ(unlisted({"reset", "--pd_id", "0"}), (Outcome{0, "-i : P id is not a number\n"}));
    EXPECT_EQ(unlisted({"reset", "-t", "perstn"}),
              (Outcome{0, "-t : invalid type 'perstn', should be power or device\n"}));
    EXPECT_EQ(unlisted({"reset", "-a", "on"}), (Outcome{0, "", "", "reset: illegal option -- a\n"}));
}

TEST_F(EarlierReset, DuplicateAndMissingOptions)
{
    for (auto words : {Line{"reset", "-i", "0", "-i", "0"}, Line{"reset", "-t", "power", "-t", "power"}}) {
        EXPECT_EQ(unlisted(words), (Outcome{1, "Duplicated option specified.\n"}));
    }
    EXPECT_EQ(unlisted({"reset", "-t", "power"}), (Outcome{0, "reset: option -i is required\n"}));
    EXPECT_EQ(unlisted({"reset", "-i", "0"}), (Outcome{0, "reset: option -t is required\n"}));
}

}  // namespace
