"""Every command is tortured in one form at least, and nothing but commands is.

    /usr/bin/python3 rows_test.py <file of command words, one on each line> <row>...
    /usr/bin/python3 rows_test.py <directory of the project> <row of qrx_unlisted>...
"""
import pathlib
import re
import subprocess
import sys

# Commands without a row, and why.
EXEMPT = {}


def unlisted_words(root):
    """Returns the words of the commands that the tests alone have rows for."""
    listed = subprocess.run([sys.executable, root / "tests/house/house.py", "list", root], check=True,
                            capture_output=True, text=True).stdout
    return re.findall(r"^\| `(\S+)` \| tests \|", listed, re.MULTILINE)


def main():
    source = pathlib.Path(sys.argv[1])
    words = unlisted_words(source) if source.is_dir() else source.read_text().split()
    tortured = {(row.split(": ", 1)[-1]).split()[0] for row in sys.argv[2:]}
    missing = [word for word in words if word not in tortured and word not in EXEMPT]
    needless = [word for word in EXEMPT if word not in words or word in tortured]
    unknown = sorted(tortured - set(words))
    for word in unknown:
        print(f"{word}: a row, but no command")
    for word in missing:
        print(f"{word}: no row in tests/torture/rows.cmake")
    for word in needless:
        print(f"{word}: exempt without need")
    print(f"{len(words)} commands, {len(sys.argv) - 2} rows")
    return 1 if missing or needless or unknown or not words else 0


if __name__ == "__main__":
    sys.exit(main())
