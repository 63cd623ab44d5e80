// The texts and output formats that all handlers share.
#pragma once

inline constexpr char CLI_VERSION[] = "1.0.0.1046";

inline char ErrorDuplicate[] = "Duplicated option specified.\n";
inline char OptionRequired[] = "%s: option -%c is required\n";            // the row's cmd, the letter
inline char OptionValNotRequired[] = "%s: option -%c is not required\n";  // the row's cmd, the letter
inline char OptionNotRequired[] = "%s: option rawfiles is only using for action: update\n";  // the row's cmd

// Each takes a field width, the label, and the value. %ld and %lu stand for 32-bit values: print through qrx::Lines,
// which narrows.
inline constexpr char fmt_Num[] = "%-*s %ld\n";
inline constexpr char fmt_Num64[] = "%-*s %lu\n";
inline constexpr char fmt_Str[] = "%-*s %s\n";
inline constexpr char fmt_Str64[] = "%-*s %ls\n";
inline constexpr char fmt_Array[] = "%-*s %ld %ld\n";
inline constexpr char fmt_Hex[] = "%-*s 0x%x\n";
inline constexpr char fmt_Hex64[] = "%-*s 0x%llx\n";
