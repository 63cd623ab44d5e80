"""Every command of the tables is tortured in one form at least, and nothing but commands is.

    /usr/bin/python3 rows_test.py <command words, one on each line> <row>...
"""
import pathlib
import sys

# Commands without a row, and why.
EXEMPT = {}


def main():
    words = pathlib.Path(sys.argv[1]).read_text().split()
    tortured = {(row.split(": ", 1)[-1]).split()[0] for row in sys.argv[2:]}
    missing = [word for word in words if word not in tortured and word not in EXEMPT]
    needless = [word for word in EXEMPT if word not in words or word in tortured]
    unknown = sorted(tortured - set(words))
    for word in unknown:
        print(f"{word}: a row, but no command")
    for word in missing:
        print(f"{word}: no row in tests/torture/CMakeLists.txt")
    for word in needless:
        print(f"{word}: exempt without need")
    print(f"{len(words)} commands, {len(sys.argv) - 2} rows")
    return 1 if missing or needless or unknown or not words else 0


if __name__ == "__main__":
    sys.exit(main())
