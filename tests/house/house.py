"""The rules of the house that a reader of the tree can check: who includes whom, and how files are written.

    /usr/bin/python3 house.py includes <root>        the floors, and that includes are written from the root
    /usr/bin/python3 house.py text <root>            no tab, no trailing blank, a line end at the end
    /usr/bin/python3 house.py format <root>          what clang-format would change
    /usr/bin/python3 house.py handlers <root> <qrx_cli>   every handler is in the program, with a table row or without
    /usr/bin/python3 house.py commands <root> <qrx_cli>   docs/architecture.md lists every command, and each is in the program
    /usr/bin/python3 house.py list <root>                 prints that list as it should stand there

Each breach is a line on standard output; the exit value is 1 when there is one.
"""
import pathlib
import re
import subprocess
import sys

# The floors of the program, most particular folder first: a file includes what lies on its own floor or below it.
FLOORS = [
    ("api/src/interface/wire/", 0),
    ("api/src/function/lock/", 0),
    ("api/src/function/log/", 0),
    ("api/src/device/", 1),
    ("api/src/interface/", 2),
    ("api/src/function/", 2),
    ("cli/Public/", 3),
    ("cli/Functions/", 4),
    ("cli/qxsetup/", 5),
]

# The floors of the simulator. Of the program it may include the wire records alone.
SIM_FLOORS = [("sim/firmware/", 0), ("sim/transport/", 1), ("sim/", 2)]
SIM_MAY_USE = "api/src/interface/wire/"

# What is no code of the product may include all of it.
FREE = ("tests/", "bench/", "tools/")

# The one folder that talks to the driver.
IOCTL_HOME = "api/src/device/linux/"

SOURCES = (".h", ".cpp")
# Outputs are kept to the byte in transcripts and corpora, blanks at the end of a line included.
NOT_TEXT = (".transcript",)
NOT_TEXT_FOLDERS = ("tests/fuzz/corpus/",)


def files(root, suffixes=None):
    """Yields the path, from the root, of each file of the project (of those suffixes)."""
    for path in sorted(root.rglob("*")):
        name = path.relative_to(root).as_posix()
        if name.startswith((".git/", "build/")) or "__pycache__" in name or not path.is_file():
            continue
        if suffixes is None or path.suffix in suffixes:
            yield name


def floor_of(name, floors):
    return next((floor for folder, floor in floors if name.startswith(folder)), None)


def include_breach(name, target):
    """Returns what is wrong with file `name` including `target`, both written from the root, or None."""
    if name.startswith(FREE):
        return None
    if name.startswith("sim/"):
        if target.startswith(SIM_MAY_USE):
            return None
        if not target.startswith("sim/"):
            return "the simulator may use its own files and the wire records alone"
        floors = SIM_FLOORS
    else:
        floors = FLOORS
    floor, below = floor_of(name, floors), floor_of(target, floors)
    if floor is None:
        return "this file stands on no floor"
    if below is None:
        return f"'{target}' stands on no floor that a program file may include"
    if below > floor:
        return f"'{target}' is on floor {below}, above floor {floor}"
    return None


def check_includes(root):
    seen = 0
    for name in files(root, SOURCES):
        for number, line in enumerate((root / name).read_text(encoding="utf-8").splitlines(), 1):
            if match := re.match(r'\s*#\s*include\s*"([^"]+)"', line):
                seen += 1
                target = match[1]
                if not (root / target).is_file():
                    yield f"{name}:{number}: '{target}' is no file of the project, written from its root"
                elif breach := include_breach(name, target):
                    yield f"{name}:{number}: {breach}"
            if name.startswith(("api/", "cli/")) and not name.startswith(IOCTL_HOME):
                if re.search(r"(?<![\w\"])ioctl\s*\(", line.split("//")[0]):
                    yield f"{name}:{number}: only {IOCTL_HOME} talks to the driver"
    if seen == 0:
        yield "no include was found at all"


def check_text(root):
    for name in files(root):
        if name.endswith(NOT_TEXT) or name.startswith(NOT_TEXT_FOLDERS):
            continue
        try:
            text = (root / name).read_text(encoding="utf-8")
        except UnicodeDecodeError:
            yield f"{name}: not UTF-8"
            continue
        for number, line in enumerate(text.split("\n"), 1):
            if "\t" in line:
                yield f"{name}:{number}: a tab"
            if line != line.rstrip():
                yield f"{name}:{number}: a blank at the end of the line"
        if text and not text.endswith("\n"):
            yield f"{name}: no line end at the end"


def check_format(root):
    names = list(files(root, SOURCES))
    done = subprocess.run(["clang-format", "--dry-run", "-Werror", *names], cwd=root, check=False,
                          capture_output=True, text=True)
    if done.returncode:
        wrong = sorted(set(re.findall(r"^(\S+?):\d+:\d+: error:", done.stderr, re.MULTILINE)))
        yield from [f"{name}: run clang-format -i on it" for name in wrong] or [done.stderr]


HANDLER = re.compile(r"^int (do\w+)\(int [^,]+, char\*\* [^,]+, (?:PCommand_Info|Command_Info\*) [^)]+\)$", re.MULTILINE)


def linked_handlers(program):
    """Returns the names of the handlers that the program holds."""
    symbols = subprocess.run(["nm", "-C", program], check=True, capture_output=True, text=True).stdout
    return set(re.findall(r" [Tt] (do\w+)\(int, char\*\*, _cmd_struct\*\)", symbols))


def defined_handlers(root):
    """Returns {handler: its source}."""
    return {handler: name for name in files(root, (".cpp",)) if name.startswith("cli/")
            for handler in HANDLER.findall((root / name).read_text(encoding="utf-8"))}


def check_handlers(root, program):
    """Every handler that the sources define is linked into the program, with a table row or without."""
    linked = linked_handlers(program)
    defined = defined_handlers(root)
    if not defined:
        yield "no handler was found in cli/"
    for handler, name in defined.items():
        if handler not in linked:
            yield f"{name}: {handler} is not in the program"


# Where the rows of commands are: file, and how a user of the program reaches them.
TABLES = (("cli/qxsetup/command_table.cpp", None), ("tests/program/rows_*.cpp", "tests"))
ROW = re.compile(r'commandRow\(\s*"([^"]+)",\s*(do\w+),')
LIST_HOME = "docs/architecture.md"
LIST_HEAD = ("| command | reached | handler | file |", "|---|---|---|---|")


def command_list(root):
    """Yields the line of each row of the tables, product first, and of each handler that has none."""
    defined = defined_handlers(root)
    without = dict(defined)
    for pattern, reached in TABLES:
        for path in sorted(root.glob(pattern)):
            text = path.read_text(encoding="utf-8")
            hidden = text.find("hiddenCmdTableV1[]")
            for row in ROW.finditer(text):
                how = reached or ("hidden" if 0 <= hidden < row.start() else "listed")
                without.pop(row[2], None)
                yield f"| `{row[1]}` | {how} | `{row[2]}` | `{defined.get(row[2], 'no source')}` |"
    for handler, name in without.items():
        yield f"| | never | `{handler}` | `{name}` |"


def check_commands(root, program):
    """The list of commands in the documents is that of the sources, and each of its handlers is in the program."""
    lines = (root / LIST_HOME).read_text(encoding="utf-8").splitlines()
    if LIST_HEAD[0] not in lines:
        yield f"{LIST_HOME}: the list of commands is missing"
        return
    first = lines.index(LIST_HEAD[0]) + len(LIST_HEAD)
    told = []
    for line in lines[first:]:
        if not line.startswith("|"):
            break
        told.append(line)
    expected = list(command_list(root))
    for line in expected:
        if line not in told:
            yield f"{LIST_HOME}: missing: {line}"
    for line in told:
        if line not in expected:
            yield f"{LIST_HOME}: not so: {line}"
    if not told:
        yield f"{LIST_HOME}: an empty list of commands"
    elif told != expected and sorted(told) == sorted(expected):
        yield f"{LIST_HOME}: the list of commands is not in the order of the tables"
    linked = linked_handlers(program)
    for line in told:
        handler = line.split("`")[-4]
        if handler not in linked:
            yield f"{LIST_HOME}: {handler} is not in the program"


CHECKS = {"includes": check_includes, "text": check_text, "format": check_format, "handlers": check_handlers,
          "commands": check_commands}


def main():
    if sys.argv[1] == "list":
        print("\n".join([*LIST_HEAD, *command_list(pathlib.Path(sys.argv[2]))]))
        return 0
    breaches = list(CHECKS[sys.argv[1]](pathlib.Path(sys.argv[2]), *sys.argv[3:]))
    for breach in breaches:
        print(breach)
    return 1 if breaches else 0


if __name__ == "__main__":
    sys.exit(main())
