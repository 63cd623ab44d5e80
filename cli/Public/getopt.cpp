// The option scanner.
#include "cli/Public/getopt.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

extern "C" {
char* optarg = nullptr;
int optind = 1;
int opterr = 1;
int optopt = '?';
}

namespace {

enum Ordering { REQUIRE_ORDER = 0, PERMUTE = 1, RETURN_IN_ORDER = 2 };

char* nextchar = nullptr;
int __getopt_initialized = 0;
Ordering ordering = PERMUTE;
int first_nonopt = 0;  // the non-options skipped so far stand at first_nonopt up to last_nonopt
int last_nonopt = 0;

bool isNonOption(const char* word)
{
    return word[0] != '-' || word[1] == '\0';
}

// Swaps the skipped non-options with the options behind them, in place: the shorter block changes places with the far
// end of the longer one until both stand where they belong.
void exchange(char** argv)
{
    int bottom = first_nonopt;
    const int middle = last_nonopt;
    int top = optind;
    while (top > middle && middle > bottom) {
        if (top - middle > middle - bottom) {
            const int length = middle - bottom;
            for (int i = 0; i < length; ++i) {
                std::swap(argv[bottom + i], argv[top - length + i]);
            }
            top -= length;
        } else {
            const int length = top - middle;
            for (int i = 0; i < length; ++i) {
                std::swap(argv[bottom + i], argv[middle + i]);
            }
            bottom += length;
        }
    }
    first_nonopt += optind - last_nonopt;
    last_nonopt = optind;
}

// Once for each process, unless a caller sets optind to 0. Returns the option string behind its ordering prefix.
const char* initialise(const char* optstring)
{
    first_nonopt = last_nonopt = optind;
    if (*optstring == '-') {
        ordering = RETURN_IN_ORDER;
        ++optstring;
    } else if (*optstring == '+') {
        ordering = REQUIRE_ORDER;
        ++optstring;
    } else {
        ordering = std::getenv("POSIXLY_CORRECT") != nullptr ? REQUIRE_ORDER : PERMUTE;
    }
    __getopt_initialized = 1;
    return optstring;
}

int endOfOptions()
{
    if (first_nonopt != last_nonopt) {
        optind = first_nonopt;
    }
    return -1;
}

// What a long name was found to be.
struct LongMatch {
    const struct option* row = nullptr;
    int index = 0;
    bool ambiguous = false;
};

LongMatch findLong(const char* name, std::size_t length, const struct option* table, bool long_only)
{
    LongMatch match;
    for (int index = 0; table[index].name != nullptr; ++index) {
        const struct option& row = table[index];
        if (std::strncmp(row.name, name, length) != 0) {
            continue;
        }
        if (std::strlen(row.name) == length) {
            return {&row, index, false};
        }
        if (match.row == nullptr) {
            match.row = &row;
            match.index = index;
        } else if (long_only || match.row->has_arg != row.has_arg || match.row->flag != row.flag ||
                   match.row->val != row.val) {
            match.ambiguous = true;
        }
    }
    return match;
}

// The word at optind is the long option `match`, whose name ends at `nameend`.
int takeLong(int argc, char** argv, const char* optstring, bool print_errors, const LongMatch& match, char* nameend,
             int* longind)
{
    const struct option& row = *match.row;
    const char* word = argv[optind];
    ++optind;
    if (*nameend == '=') {
        if (row.has_arg == no_argument) {
            if (print_errors) {
                if (word[1] == '-') {
                    std::fprintf(stderr, "\t\t\t\t\t%s: option `--%s' doesn't allow an argument\n", argv[0], row.name);
                } else {
                    std::fprintf(stderr, "\t\t\t\t\t%s: option `%c%s' doesn't allow an argument\n", argv[0], word[0],
                                 row.name);
                }
            }
            optopt = row.val;
            return '?';
        }
        optarg = nameend + 1;
    } else if (row.has_arg == required_argument) {
        if (optind >= argc) {
            if (print_errors) {
                std::fprintf(stderr, "%s: option `%s' requires an argument\n", argv[0], word);
            }
            optopt = row.val;
            return optstring[0] == ':' ? ':' : '?';
        }
        optarg = argv[optind++];
    }
    if (longind != nullptr) {
        *longind = match.index;
    }
    if (row.flag != nullptr) {
        *row.flag = row.val;
        return 0;
    }
    return row.val;
}

int takeShort(int argc, char** argv, const char* optstring, bool print_errors)
{
    const int c = static_cast<unsigned char>(*nextchar++);
    const char* temp = std::strchr(optstring, c);
    const bool last = *nextchar == '\0';
    if (last) {
        ++optind;
    }
    if (temp == nullptr || c == ':') {
        if (print_errors) {
            std::fprintf(stderr, "%s: illegal option -- %c\n", argv[0], c);
        }
        optopt = c;
        return '?';
    }
    if (temp[1] != ':') {
        return c;
    }
    if (!last) {
        optarg = nextchar;
        ++optind;
        return c;
    }
    if (temp[2] == ':') {
        return c;
    }
    if (optind >= argc) {
        if (print_errors) {
            std::fprintf(stderr, "%s: option requires an argument -- %c\n", argv[0], c);
        }
        optopt = c;
        return optstring[0] == ':' ? ':' : '?';
    }
    optarg = argv[optind++];
    return c;
}

}  // namespace

int _getopt_internal(int argc, char** argv, const char* optstring, const struct option* longopts, int* longind,
                     int long_only)
{
    if (argc < 1) {
        return -1;
    }
    const bool print_errors = opterr != 0 && optstring[0] != ':';
    optarg = nullptr;
    nextchar = nullptr;  // each call starts afresh on argv[optind]
    if (optind == 0 || __getopt_initialized == 0) {
        if (optind == 0) {
            optind = 1;
        }
        optstring = initialise(optstring);
    }
    // A rewind may have left the bounds of an earlier command behind.
    if (last_nonopt > optind) {
        last_nonopt = optind;
    }
    if (first_nonopt > optind) {
        first_nonopt = optind;
    }

    if (ordering == PERMUTE) {
        if (first_nonopt != last_nonopt && last_nonopt != optind) {
            exchange(argv);
        } else if (last_nonopt != optind) {
            first_nonopt = optind;
        }
        while (optind < argc && isNonOption(argv[optind])) {
            ++optind;
        }
        last_nonopt = optind;
    }
    if (optind >= argc) {
        return endOfOptions();
    }
    if (std::strcmp(argv[optind], "--") == 0) {
        ++optind;
        if (first_nonopt != last_nonopt && last_nonopt != optind) {
            exchange(argv);
        } else if (first_nonopt == last_nonopt) {
            first_nonopt = optind;
        }
        last_nonopt = argc;
        optind = argc;
        return endOfOptions();
    }
    if (isNonOption(argv[optind])) {
        if (ordering == REQUIRE_ORDER) {
            return -1;
        }
        optarg = argv[optind++];
        return 1;
    }

    char* const word = argv[optind];
    const bool doubleDash = word[1] == '-';
    nextchar = word + (longopts != nullptr && doubleDash ? 2 : 1);
    const bool shortKnown = std::strchr(optstring, word[1]) != nullptr;
    if (longopts != nullptr && (doubleDash || (long_only != 0 && (word[2] != '\0' || !shortKnown)))) {
        const std::size_t length = std::strcspn(nextchar, "=");
        const LongMatch match = findLong(nextchar, length, longopts, long_only != 0);
        if (match.ambiguous) {
            if (print_errors) {
                std::fprintf(stderr, "%s: option `%s' is ambiguous\n", argv[0], word);
            }
            ++optind;
            optopt = 0;
            return '?';
        }
        if (match.row != nullptr) {
            return takeLong(argc, argv, optstring, print_errors, match, nextchar + length, longind);
        }
        if (long_only == 0 || doubleDash || !shortKnown) {
            if (print_errors) {
                if (doubleDash) {
                    std::fprintf(stderr, "%s: unrecognized option `--%s'\n", argv[0], nextchar);
                } else {
                    std::fprintf(stderr, "%s: unrecognized option `%c%s'\n", argv[0], word[0], nextchar);
                }
            }
            ++optind;
            optopt = 0;
            return '?';
        }
    }
    return takeShort(argc, argv, optstring, print_errors);
}

int getopt(int argc, char** argv, const char* optstring)
{
    return _getopt_internal(argc, argv, optstring, nullptr, nullptr, 0);
}

int getopt_long(int argc, char** argv, const char* options, const struct option* long_options, int* opt_index)
{
    return _getopt_internal(argc, argv, options, long_options, opt_index, 0);
}

int getopt_long_only(int argc, char** argv, const char* options, const struct option* long_options, int* opt_index)
{
    return _getopt_internal(argc, argv, options, long_options, opt_index, 1);
}

char* getoptarg()
{
    return optarg;
}

void setoptind(int optindtmp)
{
    optind = optindtmp;
}
