"""Runs one command again and again, each time with the next thing failing, until a run sees no failure.

    /usr/bin/python3 torture.py --bin build/release/bin device memory file -- "info -o hba"
    /usr/bin/python3 torture.py --bin build/release/bin --program qrx_unlisted device -- "lab: create -r 1 -d 0,1"

device: the n-th device command fails; memory: the n-th allocation; file: the n-th file call. Asked of each run: it ends
by itself within the time limit, by no signal, and without a word from a sanitizer or from the C++ library's last
resort. A run that does not is printed with the flags that repeat it alone.

Start-up is the same for every command, and has the first failures. With `version` each kind of failure befalls it; with
other commands the first kind of device failure does, and the others begin where the command does. (qrx_unlisted has
`help` in its place.) With --dense a command of very many steps is tried at its first ones, and at some of the others.
With --never nothing that the expression matches may stand in the trace of any run, the start included.
"""
import argparse
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

SECONDS = 30          # that one run may take
MOST_RUNS = 20000     # a count that never ends is a failure too
FIRST_SIGNAL = 128    # an exit value above this tells a signal, as a shell would
LAST_WORDS = re.compile(r"Sanitizer|runtime error:|terminate called|Assertion|stack smashing|free\(\)|corrupted")
STARTUP = {"qrx_cli": "version", "qrx_unlisted": "help"}  # a command that is nothing but start-up and end
END_CALLS = 8         # calls of the end of a program, at most: they are not part of the start

# How the n-th device command fails, in the words of the simulator's --fault.
DEVICE_FAULTS = {
    "vendor-status": "status=0x706",
    "generic-status": "status=0x2",
    "more-and-dnr": "status=0x6002",
    "errno": "errno=5",
    "short": "short=16",
    "empty": "short=0",
    "corrupt": "corrupt",
    "cmd-status": "cmd-status=5",
    "unsigned": "unsigned",
}
KINDS = {"device": list(DEVICE_FAULTS), "memory": ["allocation"], "file": ["error", "short-file"]}
LIBRARIES = {"memory": "libqrx_fail_alloc.so", "file": "libqrx_fail_files.so"}


def counts(first, dense):
    """Counts from `first` up; behind `dense` of them, if it is not 0, each half as large again as the one before."""
    nth = first
    while nth < MOST_RUNS:
        yield nth
        nth += 1 if not dense or nth < first + dense else nth // 2


class Trouble(Exception):
    """A run that did not end as it must."""


class Bench:
    """Where the runs take place: the programs, a scenario, and a directory with the files that commands name."""

    def __init__(self, bin_dir, program, scenario, directory, never):
        self.bin_dir, self.program, self.scenario, self.directory = bin_dir, program, scenario, directory
        self.never = never and re.compile(never)
        self.trace = directory / "trace.txt"
        self.environment = os.environ | {"PATH": f"{bin_dir}:/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL": "C"}
        self.files = {name: directory / name for name in ("image", "file", "output")}
        self.files["file"].write_bytes(bytes(4096))
        subprocess.run([bin_dir / "qrx_sim", "make-image", "--revision", "2.5.0.1100", "--size", "8192", self.files["image"]],
                       check=True)

    def run(self, options, command, prefix=()):
        """Runs the command; raises Trouble unless it ends in an orderly way."""
        self.files["output"].unlink(missing_ok=True)
        self.trace.unlink(missing_ok=True)
        line = [self.bin_dir / "qrx_sim", "--scenario", self.scenario, "--trace", self.trace, *options, "--", *prefix, self.program, *shlex.split(command)]
        try:
            done = subprocess.run(line, env=self.environment, cwd=self.directory, stdin=subprocess.DEVNULL,
                                  capture_output=True, timeout=SECONDS, check=False)
        except subprocess.TimeoutExpired as error:
            raise Trouble(f"did not end in {SECONDS} seconds") from error
        text = (done.stdout + done.stderr).decode(errors="replace")
        # qrx_cli's own -1 (255) is an exit value; the values of signals end at 128 + 64.
        if done.returncode < 0 or FIRST_SIGNAL < done.returncode <= FIRST_SIGNAL + 64:
            raise Trouble(f"ended by a signal ({done.returncode})\n{text}")
        if LAST_WORDS.search(text):
            raise Trouble(f"complained\n{text}")
        found = self.never and self.never.search(self.trace.read_text())
        if found:
            raise Trouble(f"sent what it must not: {found.group()}\n{text}")

    def device(self, command, kind, nth):
        """One run with the n-th device command failing (0: none). Returns how many there were."""
        self.run(["--fault", f"nth={nth},{DEVICE_FAULTS[kind]}"] if nth else [], command)
        return len(self.trace.read_text().splitlines())

    def call(self, what, command, kind, nth):
        """One run with the n-th allocation or file call failing (0: none). Returns how many there were."""
        seen = self.directory / "seen"
        seen.unlink(missing_ok=True)
        self.run([], command, ["env", f"LD_PRELOAD={self.bin_dir / LIBRARIES[what]}",
                               f"QRX_FAIL_PROGRAM={self.program}", f"QRX_FAIL_NTH={nth}", f"QRX_FAIL_SEEN={seen}",
                               f"QRX_FAIL_HOW={kind.removesuffix('-file')}",
                               # A sanitizer's library wants to come first, and can do without.
                               f"ASAN_OPTIONS=verify_asan_link_order=0:{os.environ.get('ASAN_OPTIONS', '')}"])
        if not seen.exists():
            raise Trouble("ended without a count of its calls")
        return int(seen.read_text())

    def one(self, what, command, kind, nth):
        return self.device(command, kind, nth) if what == "device" else self.call(what, command, kind, nth)


def torture(bench, what, kind, command, arguments):
    """All runs of one kind. Returns their number and whether all went well."""
    first = 1
    startup = STARTUP[bench.program]
    if not arguments.nth and not arguments.never and command != startup and kind != KINDS["device"][0]:
        first = max(bench.one(what, startup, kind, 0) - (0 if what == "device" else END_CALLS), 0) + 1
    came, good = 0, True
    for nth in [arguments.nth] if arguments.nth else counts(first, arguments.dense):
        try:
            if bench.one(what, command, kind, nth) < nth:
                break
        except Trouble as trouble:
            good = False
            row = shlex.quote(f"{bench.scenario}: {command}")
            print(f"--program {bench.program} --only {kind} --nth {nth} {what} -- {row}: {trouble}", flush=True)
        came += 1
    print(f"{what}, {kind}: {came} runs that saw a failure", flush=True)
    if came == 0 and first == 1:
        print(f"{what}, {kind}: nothing ever failed, so nothing was tried")
        good = False
    return came, good


def main():
    parser = argparse.ArgumentParser(description="Runs a command with each thing failing in turn.")
    parser.add_argument("--bin", required=True, type=pathlib.Path, help="directory of qrx_cli and qrx_sim")
    parser.add_argument("--program", default="qrx_cli", choices=STARTUP, help="the program that is run")
    parser.add_argument("--only", action="append", help="these kinds of failure alone")
    parser.add_argument("--nth", type=int, help="this one run alone")
    parser.add_argument("--dense", type=int, default=0, help="try each of so many, from there on fewer and fewer")
    parser.add_argument("--never", help="what no trace may hold, a regular expression")
    parser.add_argument("--runs", type=pathlib.Path, help="a file that gets the number of runs")
    parser.add_argument("what", nargs="+", choices=KINDS)
    parser.add_argument("command", help="the command with its options, as one word; 'jbof: ...' on that machine")
    arguments = parser.parse_args()

    scenario, _, command = arguments.command.rpartition(": ")
    runs, good = 0, True
    with tempfile.TemporaryDirectory(prefix="torture-") as directory:
        bench = Bench(arguments.bin.resolve(), arguments.program, scenario or "pair", pathlib.Path(directory),
                      arguments.never)
        for what in arguments.what:
            for kind in KINDS[what]:
                if not arguments.only or kind in arguments.only:
                    came, went_well = torture(bench, what, kind, command, arguments)
                    runs, good = runs + came, good and went_well
    print(f"{runs} runs")
    if arguments.runs:
        arguments.runs.parent.mkdir(parents=True, exist_ok=True)
        arguments.runs.write_text(f"{runs}\n")
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
