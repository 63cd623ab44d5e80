"""Counts the results that scripts/test left in a folder, names the failures, and ends with the one counting line.

The folder holds JUnit files (*.xml: CTest's and our own runners') and checks.txt, a line "passed<TAB>name" or
"failed<TAB>name" for each check. The exit value is 1 when anything failed, or when nothing was run at all.
"""
import pathlib
import sys
import xml.etree.ElementTree as ElementTree


def of_junit(path):
    """Yields (outcome, name) for each test of a JUnit file."""
    try:
        root = ElementTree.parse(path).getroot()
    except ElementTree.ParseError as error:
        yield "failed", f"{path.name}: unreadable report: {error}"
        return
    for case in root.iter("testcase"):
        name = f"{path.stem}: {case.get('name')}"
        skipped = case.find("skipped")
        if case.find("failure") is not None or case.find("error") is not None or case.get("status") == "fail":
            yield "failed", name
        elif skipped is not None or case.get("status") in ("notrun", "disabled"):
            # CTest calls a test whose program is missing "not run" too: only a skip that a test asked for is one.
            asked = skipped is not None and skipped.get("message", "").startswith("SKIP_")
            yield ("skipped" if asked else "failed"), name
        else:
            yield "passed", name


def of_checks(path):
    """Yields (outcome, name) for each line of checks.txt."""
    for line in path.read_text().splitlines():
        outcome, name = line.split("\t", 1)
        yield outcome, name


def main():
    reports = pathlib.Path(sys.argv[1])
    results = []
    for path in sorted(reports.glob("*.xml")):
        results += of_junit(path)
    if (reports / "checks.txt").exists():
        results += of_checks(reports / "checks.txt")

    names = {outcome: [name for got, name in results if got == outcome] for outcome in ("passed", "failed", "skipped")}
    for outcome in ("skipped", "failed"):
        for name in names[outcome]:
            print(f"{outcome}: {name}")
    line = f"{len(names['passed'])} passed, {len(names['failed'])} failed"
    if names["skipped"]:
        line += f", {len(names['skipped'])} skipped"
    print(line)
    return 0 if names["passed"] and not names["failed"] else 1


if __name__ == "__main__":
    sys.exit(main())
