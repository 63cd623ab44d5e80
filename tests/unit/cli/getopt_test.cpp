// <unistd.h> declares variables of the same names: both orders compile, here before and in posix_first_test.cpp after.
#include "cli/Public/getopt.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "tests/unit/cli/run.h"

namespace {

using qrx::test::outcomeOf;
using qrx::test::Words;

int flagged = 0;
const option kLong[] = {
    {"object", required_argument, nullptr, 'o'}, {"output", required_argument, nullptr, 1},
    {"help", no_argument, nullptr, 'h'},         {"sbs", optional_argument, nullptr, 'b'},
    {"stored", no_argument, &flagged, 77},       {"same", no_argument, nullptr, 's'},
    {"samething", no_argument, nullptr, 's'},    {nullptr, 0, nullptr, 0},
};
constexpr char kLetters[] = "o:i:b::f\x01:h";

// One result of the scanner.
struct Step {
    int result;
    std::string argument;  // "(null)" for none
    int next;              // optind after it
    bool operator==(const Step&) const = default;
    friend std::ostream& operator<<(std::ostream& os, const Step& s)
    {
        return os << "{" << s.result << " '" << s.argument << "' " << s.next << "}";
    }
};

class Scanner : public testing::Test {
protected:
    Scanner()
    {
        unsetenv("POSIXLY_CORRECT");
        reset();
    }
    ~Scanner() override
    {
        unsetenv("POSIXLY_CORRECT");
        reset();
        opterr = 1;
    }
    Scanner(const Scanner&) = delete;
    Scanner& operator=(const Scanner&) = delete;

    // Makes the next call initialise again, and rewinds.
    static void reset() { optind = 0; }

    // Scans to the end, or ten results. What is printed goes to `err`.
    std::vector<Step> scan(Words& words, const char* letters = kLetters, const option* rows = kLong,
                           bool long_only = false)
    {
        std::vector<Step> steps;
        const auto outcome = outcomeOf([&] {
            for (int i = 0; i < 10; ++i) {
                int index = -1;
                const int result = long_only ? getopt_long_only(words.argc(), words.argv(), letters, rows, &index)
                                   : rows != nullptr ? getopt_long(words.argc(), words.argv(), letters, rows, &index)
                                                     : getopt(words.argc(), words.argv(), letters);
                steps.push_back({result, optarg != nullptr ? optarg : "(null)", optind});
                if (result == -1) {
                    break;
                }
            }
            return 0;
        });
        EXPECT_EQ(outcome.stream, "");
        EXPECT_EQ(outcome.out, "");
        err = outcome.err;
        return steps;
    }
    std::string err;
};

using Steps = std::vector<Step>;

TEST_F(Scanner, ANegativeOrZeroCountEndsAtOnce)
{
    char* none[] = {nullptr};
    EXPECT_EQ(getopt_long(0, none, kLetters, kLong, nullptr), -1);
    EXPECT_EQ(getopt_long(-3, none, kLetters, kLong, nullptr), -1);
}

TEST_F(Scanner, AShortArgumentIsAttachedOrTheNextWord)
{
    Words words{"c", "-ihba", "-o", "pd"};
    EXPECT_EQ(scan(words), (Steps{{'i', "hba", 2}, {'o', "pd", 4}, {-1, "(null)", 4}}));
}

TEST_F(Scanner, AnOptionalShortArgumentMustBeAttached)
{
    Words words{"c", "-b512", "-b", "256"};
    EXPECT_EQ(scan(words), (Steps{{'b', "512", 2}, {'b', "(null)", 3}, {-1, "(null)", 3}}));
}

TEST_F(Scanner, ALongArgumentFollowsAnEqualSignOrIsTheNextWord)
{
    Words words{"c", "--object=hba", "--object", "pd", "--object=", "--sbs=1", "--sbs", "2"};
    EXPECT_EQ(
        scan(words),
        (Steps{{'o', "hba", 2}, {'o', "pd", 4}, {'o', "", 5}, {'b', "1", 6}, {'b', "(null)", 7}, {-1, "(null)", 7}}));
}

TEST_F(Scanner, ALongNameMayBeAbbreviated)
{
    Words words{"c", "--ob", "hba", "--he"};
    EXPECT_EQ(scan(words), (Steps{{'o', "hba", 3}, {'h', "(null)", 4}, {-1, "(null)", 4}}));
    EXPECT_EQ(err, "");
}

TEST_F(Scanner, AnAbbreviationOfTwoDifferentRowsIsAmbiguous)
{
    Words words{"c", "--o", "x"};
    optopt = 99;
    EXPECT_EQ(scan(words), (Steps{{'?', "(null)", 2}, {-1, "(null)", 2}}));
    EXPECT_EQ(err, "c: option `--o' is ambiguous\n");
    EXPECT_EQ(optopt, 0);
}

TEST_F(Scanner, AnAbbreviationOfTwoEqualRowsIsNotAmbiguous)
{
    Words words{"c", "--sam", "--same", "--samething"};
    EXPECT_EQ(scan(words), (Steps{{'s', "(null)", 2}, {'s', "(null)", 3}, {'s', "(null)", 4}, {-1, "(null)", 4}}));
}

TEST_F(Scanner, LongOnlyTakesEqualRowsAsAmbiguous)
{
    Words words{"c", "-sam"};
    EXPECT_EQ(scan(words, kLetters, kLong, true), (Steps{{'?', "(null)", 2}, {-1, "(null)", 2}}));
    EXPECT_EQ(err, "c: option `-sam' is ambiguous\n");
}

TEST_F(Scanner, AnArgumentToAnOptionWithoutOneIsRefusedBehindFiveTabs)
{
    Words words{"c", "--help=1"};
    EXPECT_EQ(scan(words), (Steps{{'?', "(null)", 2}, {-1, "(null)", 2}}));
    EXPECT_EQ(err, "\t\t\t\t\tc: option `--help' doesn't allow an argument\n");
    EXPECT_EQ(optopt, 'h');
}

TEST_F(Scanner, LongOnlyNamesASingleDashInTheSameMessage)
{
    Words words{"c", "-help=1"};
    EXPECT_EQ(scan(words, kLetters, kLong, true).front(), (Step{'?', "(null)", 2}));
    EXPECT_EQ(err, "\t\t\t\t\tc: option `-help' doesn't allow an argument\n");
}

TEST_F(Scanner, AMissingLongArgumentIsNamedAsTyped)
{
    Words words{"c", "--obj"};
    EXPECT_EQ(scan(words).front(), (Step{'?', "(null)", 2}));
    EXPECT_EQ(err, "c: option `--obj' requires an argument\n");
    EXPECT_EQ(optopt, 'o');
}

TEST_F(Scanner, AMissingShortArgument)
{
    Words words{"c", "-i"};
    EXPECT_EQ(scan(words).front(), (Step{'?', "(null)", 2}));
    EXPECT_EQ(err, "c: option requires an argument -- i\n");
    EXPECT_EQ(optopt, 'i');
}

TEST_F(Scanner, ALeadingColonIsSilentAndTellsMissingArgumentsApart)
{
    Words words{"c", "--object"};
    EXPECT_EQ(scan(words, ":o:i:").front(), (Step{':', "(null)", 2}));
    EXPECT_EQ(err, "");
    Words letters{"c", "-i"};
    optind = 1;
    EXPECT_EQ(scan(letters, ":o:i:").front(), (Step{':', "(null)", 2}));
    EXPECT_EQ(err, "");
    Words unknown{"c", "-z"};
    optind = 1;
    EXPECT_EQ(scan(unknown, ":o:i:").front(), (Step{'?', "(null)", 2}));
    EXPECT_EQ(err, "");
}

TEST_F(Scanner, OpterrZeroIsSilentForEveryMessage)
{
    opterr = 0;
    for (const char* word : {"--o", "--help=1", "--object", "-i", "-z", "--zz"}) {
        Words words{"c", word};
        optind = 1;
        EXPECT_EQ(scan(words).front().result, '?') << word;
        EXPECT_EQ(err, "") << word;
    }
}

TEST_F(Scanner, UnknownOptions)
{
    Words words{"c", "--zulu", "-z"};
    EXPECT_EQ(scan(words), (Steps{{'?', "(null)", 2}, {'?', "(null)", 3}, {-1, "(null)", 3}}));
    EXPECT_EQ(err, "c: unrecognized option `--zulu'\nc: illegal option -- z\n");
    EXPECT_EQ(optopt, 'z');
    Words longer{"c", "--zulu=5"};
    optind = 1;
    EXPECT_EQ(scan(longer).front().result, '?');
    EXPECT_EQ(err, "c: unrecognized option `--zulu=5'\n");
    EXPECT_EQ(optopt, 0);
}

TEST_F(Scanner, LongOnlyFallsBackToAKnownLetter)
{
    Words words{"c", "-i5", "-zz", "-o", "x"};
    EXPECT_EQ(scan(words, kLetters, kLong, true),
              (Steps{{'i', "5", 2}, {'?', "(null)", 3}, {'o', "x", 5}, {-1, "(null)", 5}}));
    EXPECT_EQ(err, "c: unrecognized option `-zz'\n");
}

TEST_F(Scanner, LongOnlyTakesLongNamesWithOneDash)
{
    Words words{"c", "-object", "x", "-help"};
    EXPECT_EQ(scan(words, kLetters, kLong, true), (Steps{{'o', "x", 3}, {'h', "(null)", 4}, {-1, "(null)", 4}}));
}

TEST_F(Scanner, AColonIsNeverALetter)
{
    Words words{"c", "-:"};
    EXPECT_EQ(scan(words).front(), (Step{'?', "(null)", 2}));
    EXPECT_EQ(err, "c: illegal option -- :\n");
}

TEST_F(Scanner, AByteAbove127IsAnIllegalLetterOfItsOwnValue)
{
    Words words{"c", "-\xC3"};
    EXPECT_EQ(scan(words).front(), (Step{'?', "(null)", 2}));
    EXPECT_EQ(err, "c: illegal option -- \xC3\n");
    EXPECT_EQ(optopt, 0xC3);
}

TEST_F(Scanner, AFlagGetsItsValueAndTheResultIsZero)
{
    Words words{"c", "--stored"};
    flagged = 0;
    int index = -1;
    EXPECT_EQ(getopt_long(words.argc(), words.argv(), kLetters, kLong, &index), 0);
    EXPECT_EQ(flagged, 77);
    EXPECT_EQ(index, 4);
}

TEST_F(Scanner, TheRowIndexIsStored)
{
    Words words{"c", "--help"};
    int index = -1;
    EXPECT_EQ(getopt_long(words.argc(), words.argv(), kLetters, kLong, &index), 'h');
    EXPECT_EQ(index, 2);
}

TEST_F(Scanner, AClusterOfFlagsRepeatsItsFirstLetter)
{
    Words words{"c", "-hx"};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(getopt_long(words.argc(), words.argv(), kLetters, kLong, nullptr), 'h');
        EXPECT_EQ(optind, 1);
    }
}

TEST_F(Scanner, ASingleDashIsANonOption)
{
    Words words{"c", "-", "-h"};
    EXPECT_EQ(scan(words), (Steps{{'h', "(null)", 3}, {-1, "(null)", 2}}));
    EXPECT_EQ(words.now(), (std::vector<std::string>{"c", "-h", "-"}));
}

TEST_F(Scanner, NonOptionsMoveBehindTheOptions)
{
    Words words{"c", "a", "-i", "1", "b"};
    EXPECT_EQ(scan(words), (Steps{{'i', "1", 4}, {-1, "(null)", 3}}));
    EXPECT_EQ(words.now(), (std::vector<std::string>{"c", "-i", "1", "a", "b"}));
}

TEST_F(Scanner, PermutationKeepsBothOrders)
{
    Words words{"c", "a1", "a2", "a3", "-h", "b1", "-i", "1", "-o", "2", "-h", "d1"};
    EXPECT_EQ(scan(words).back(), (Step{-1, "(null)", 7}));
    EXPECT_EQ(words.now(),
              (std::vector<std::string>{"c", "-h", "-i", "1", "-o", "2", "-h", "a1", "a2", "a3", "b1", "d1"}));
}

TEST_F(Scanner, ADoubleDashEndsTheOptions)
{
    Words words{"c", "a", "-h", "--", "-i", "b"};
    EXPECT_EQ(scan(words), (Steps{{'h', "(null)", 3}, {-1, "(null)", 3}}));
    EXPECT_EQ(words.now(), (std::vector<std::string>{"c", "-h", "--", "a", "-i", "b"}));
}

TEST_F(Scanner, ADoubleDashBeforeAnyNonOption)
{
    Words words{"c", "-h", "--", "-i"};
    EXPECT_EQ(scan(words), (Steps{{'h', "(null)", 2}, {-1, "(null)", 3}}));
}

TEST_F(Scanner, TheWordLeftBehindByStartUpIsTheSilentOption)
{
    Words words{"c", "-\x01utput", "file", "-h"};
    EXPECT_EQ(scan(words), (Steps{{1, "utput", 2}, {'h', "(null)", 4}, {-1, "(null)", 3}}));
    EXPECT_EQ(words.now(), (std::vector<std::string>{"c", "-\x01utput", "-h", "file"}));
    Words without{"c", "-\x01utput"};
    optind = 1;
    EXPECT_EQ(scan(without, "h").front().result, '?');
    EXPECT_EQ(err.substr(0, err.find('\n')), "c: illegal option -- \x01");
}

TEST_F(Scanner, ALeadingMinusReturnsNonOptionsInOrder)
{
    Words words{"c", "a", "-h", "b"};
    EXPECT_EQ(scan(words, "-h"), (Steps{{1, "a", 2}, {'h', "(null)", 3}, {1, "b", 4}, {-1, "(null)", 4}}));
    EXPECT_EQ(words.now(), (std::vector<std::string>{"c", "a", "-h", "b"}));
}

TEST_F(Scanner, ALeadingPlusStopsAtTheFirstNonOption)
{
    Words words{"c", "-h", "a", "-h"};
    EXPECT_EQ(scan(words, "+h"), (Steps{{'h', "(null)", 2}, {-1, "(null)", 2}}));
}

TEST_F(Scanner, PosixlyCorrectIsReadOnceAndKept)
{
    setenv("POSIXLY_CORRECT", "1", 1);
    Words words{"c", "a", "-h"};
    EXPECT_EQ(scan(words), (Steps{{-1, "(null)", 1}}));
    unsetenv("POSIXLY_CORRECT");
    optind = 1;
    EXPECT_EQ(scan(words), (Steps{{-1, "(null)", 1}}));

    reset();
    Words again{"c", "a", "-h"};
    EXPECT_EQ(scan(again).front(), (Step{'h', "(null)", 3}));
    setenv("POSIXLY_CORRECT", "1", 1);
    Words third{"c", "a", "-h"};
    optind = 1;
    EXPECT_EQ(scan(third).front(), (Step{'h', "(null)", 3}));
}

TEST_F(Scanner, ARewindForgetsTheBoundsOfALongerCommand)
{
    Words first{"c", "a", "b", "c", "-h", "d"};
    scan(first);
    Words second{"c", "-i", "1"};
    optind = 1;
    EXPECT_EQ(scan(second), (Steps{{'i', "1", 3}, {-1, "(null)", 3}}));
    EXPECT_EQ(second.now(), (std::vector<std::string>{"c", "-i", "1"}));
}

TEST_F(Scanner, WithoutATableADoubleDashWordIsAShortOption)
{
    Words words{"c", "--help"};
    EXPECT_EQ(scan(words, "h", nullptr).front(), (Step{'?', "(null)", 1}));
    EXPECT_EQ(err.substr(0, err.find('\n') + 1), "c: illegal option -- -\n");
}

TEST_F(Scanner, TheShortScannerAndTheAccessors)
{
    Words words{"c", "-i", "5"};
    EXPECT_EQ(getopt(words.argc(), words.argv(), "i:"), 'i');
    EXPECT_STREQ(getoptarg(), "5");
    setoptind(1);
    EXPECT_EQ(optind, 1);
}

}  // namespace
