// The program's own option scanner: short options from an option string, long options from a table, permutation of
// non-options.
//
// It differs from the C library's scanner in what the commands of the shell rely on: its state survives from one
// command to the next (a handler rewinds it with `optind = 1`), it never continues inside a word that an earlier call
// began, and its messages, on standard error, have their own wording.
#pragma once

// Values of option::has_arg.
inline constexpr int no_argument = 0;
inline constexpr int required_argument = 1;
inline constexpr int optional_argument = 2;

// One row of a long-option table.
struct option {
    const char* name;  // without dashes; null ends the table
    int has_arg;
    int* flag;  // not null: gets `val`, and the scanner returns 0
    int val;    // what the scanner returns
};

// The C library has variables of these four names too, and <unistd.h> declares them; ours take their place.
extern "C" {
extern char* optarg;  // the argument of the option just returned, or null
extern int optind;    // the next word to look at
extern int opterr;    // 0: no messages
extern int optopt;    // what was wrong: the letter or `val` of the refused option, 0 for an unknown long one
}

// All three return the option's letter or `val`; 1 for a non-option where the option string begins with "-"; '?' for
// every error; ':' for a missing argument where it begins with ":"; -1 at the end of the options, with `optind` on the
// first non-option. Words of argv are reordered. `opt_index`, if not null, gets the row of a long option.
int getopt(int argc, char** argv, const char* optstring);
int getopt_long(int argc, char** argv, const char* options, const struct option* long_options, int* opt_index);
// The same, but a word with a single dash may be a long option too.
int getopt_long_only(int argc, char** argv, const char* options, const struct option* long_options, int* opt_index);

int _getopt_internal(int argc, char** argv, const char* optstring, const struct option* longopts, int* longind,
                     int long_only);

char* getoptarg();
void setoptind(int optindtmp);
