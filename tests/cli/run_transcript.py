"""Runs a transcript: a text that shows commands, what they print and how they end, and that is a test of all three.

    /usr/bin/python3 run_transcript.py --bin build/release/bin info-raid.transcript     compare, with a diff if it fails
    /usr/bin/python3 run_transcript.py --bin build/release/bin --update *.transcript    write down what happened instead

The form of a transcript:

    # Prose, anywhere between commands.
    # qrx_sim --scenario jbof           the simulator's options for the `qrx_cli` lines from here on
    # varies: [0-9]+ us                 what this expression matches is written as <varies> from here on
    $ qrx_cli info -o hba               a command, run by bash in an empty directory that the transcript has to itself
    NVMe Controller ID    0             what it prints on standard output, to the byte,
    2> qrx_cli: no such thing           then what it prints on standard error,
    [exit 0]                            then its exit value

A `qrx_cli` line (or one of `qrx_unlisted`, the test program) runs on a simulated controller of its own: `qrx_sim <options> -- qrx_cli ...`. A last line without a
line end is followed by `\\ no line end`. A control byte reads `\\x01`, a backslash `\\\\`. A line of standard output
that could be taken for something else has `1> ` in front.
"""
import argparse
import difflib
import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile

OPTIONS_MARK = "# qrx_sim"
VARIES_MARK = "# varies: "
NO_LINE_END = "\\ no line end"
AMBIGUOUS = re.compile(r"(1> |2> |\$ |# |\[exit |\\ no line end)")

# The names are functions of the shell that runs a line, so that a line reads as a reader would type it.
PRELUDE = """
qrx_sim() { command qrx_sim $TRANSCRIPT_SIM "$@"; }
qrx_cli() { qrx_sim $TRANSCRIPT_OPTIONS -- qrx_cli "$@"; }
qrx_unlisted() { qrx_sim $TRANSCRIPT_OPTIONS -- qrx_unlisted "$@"; }
"""


def visible(data):
    """Bytes as text in which each byte can be told: UTF-8 is not assumed."""
    return "".join(
        "\\\\" if byte == 0x5C else chr(byte) if 0x20 <= byte < 0x7F or byte == 0x09 else f"\\x{byte:02x}"
        for byte in data)


def rendered(output, error):
    """The lines that show an output, standard error behind standard output."""
    lines = []
    for data, mark in ((output, ""), (error, "2> ")):
        parts = data.split(b"\n")
        last = parts.pop()
        for part in parts + ([last] if last else []):
            line = visible(part)
            if not mark and AMBIGUOUS.match(line):
                line = "1> " + line
            lines.append(mark + line)
        if last:
            lines.append(NO_LINE_END)
    return lines


class Runner:
    """Runs the commands of one transcript, one after the other, in one directory."""

    def __init__(self, bin_dir, sim_options, timeout, directory):
        self.environment = {
            "PATH": f"{bin_dir}:/usr/sbin:/usr/bin:/sbin:/bin", "HOME": directory, "LC_ALL": "C", "TERM": "dumb",
            "TRANSCRIPT_SIM": sim_options, "TRANSCRIPT_OPTIONS": "",
        }
        for name in ("ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"):
            if name in os.environ:
                self.environment[name] = os.environ[name]
        self.timeout = timeout
        self.directory = directory
        self.varies = []

    def run(self, command):
        """Returns the lines that belong under `command`."""
        with subprocess.Popen(["/bin/bash", "-c", PRELUDE + command], cwd=self.directory, env=self.environment,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              start_new_session=True) as process:
            try:
                output, error = process.communicate(timeout=self.timeout)
                end = f"[exit {process.returncode}]"
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, signal.SIGKILL)
                output, error = process.communicate()
                end = f"[exit none: stopped after {self.timeout} seconds]"
        lines = rendered(output, error)
        for expression in self.varies:
            lines = [re.sub(expression, "<varies>", line) for line in lines]
        return lines + [end]


def play(text, runner):
    """Returns the transcript as it comes out when its commands are run now."""
    out = []
    lines = text.splitlines()
    at = 0
    while at < len(lines):
        line = lines[at]
        at += 1
        out.append(line)
        if line.startswith("$ "):
            out += runner.run(line[2:])
            end = next((i for i in range(at, len(lines)) if lines[i].startswith(("$ ", "# ", "[exit "))), len(lines))
            if end < len(lines) and lines[end].startswith("[exit "):
                at = end + 1  # what the transcript says now; a command just added to it has nothing yet
        elif line.startswith(OPTIONS_MARK):
            runner.environment["TRANSCRIPT_OPTIONS"] = line[len(OPTIONS_MARK):].strip()
        elif line.startswith(VARIES_MARK):
            runner.varies.append(line[len(VARIES_MARK):])
        elif line and not line.startswith("#"):
            raise ValueError(f"line {at} is neither a command, nor under one, nor a comment: {line}")
    return "\n".join(out) + "\n"


def main():
    parser = argparse.ArgumentParser(description="Runs transcripts of qrx_cli on qrx_sim.")
    parser.add_argument("--bin", required=True, type=pathlib.Path, help="directory of qrx_cli and qrx_sim")
    parser.add_argument("--sim", default="", help="further options for every qrx_sim, such as the way in")
    parser.add_argument("--timeout", type=float, default=60, help="seconds that one command may take")
    parser.add_argument("--update", action="store_true", help="write what happened into the transcript")
    parser.add_argument("transcripts", nargs="+", type=pathlib.Path)
    arguments = parser.parse_args()

    failed = False
    for path in arguments.transcripts:
        expected = path.read_text(encoding="ascii")
        if not re.search(r"^\$ ", expected, re.MULTILINE):
            print(f"{path}: no command in it")
            failed = True
            continue
        with tempfile.TemporaryDirectory(prefix="transcript-") as directory:
            try:
                actual = play(expected, Runner(arguments.bin.resolve(), arguments.sim, arguments.timeout, directory))
            except ValueError as error:
                print(f"{path}: {error}")
                failed = True
                continue
        if actual == expected:
            continue
        if arguments.update:
            path.write_text(actual, encoding="ascii")
            print(f"{path}: updated")
        else:
            failed = True
            sys.stdout.writelines(difflib.unified_diff(expected.splitlines(keepends=True),
                                                       actual.splitlines(keepends=True),
                                                       f"{path.name} (expected)", f"{path.name} (what happened)"))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
