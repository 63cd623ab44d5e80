"""Runs one command again and again, each time with the next thing failing, until a run sees no failure.

    /usr/bin/python3 torture.py --bin build/release/bin device "info -o hba"     the n-th device command fails
    /usr/bin/python3 torture.py --bin build/release/bin memory "info -o hba"     the n-th memory allocation fails

Each run has a directory to itself, with a file `image` of --image bytes in it.

With --dense a command of very many steps is tried at its first ones, and at some of the others.

Asked of each run: it ends by itself within the time limit, by no signal, and without a word from a sanitizer or from
the C++ library's last resort. A run that does not is printed with the flags that repeat it alone.
"""
import argparse
import contextlib
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

# How the n-th device command fails, in the words of the simulator's --fault.
DEVICE_FAULTS = {
    "vendor-status": "status=0x706",
    "generic-status": "status=0x2",
    "more-and-dnr": "status=0x6002",
    "errno": "errno=5",
    "short": "short=16",
    "empty": "short=0",
    "corrupt": "corrupt",
}


def counts(dense):
    """1, 2, 3, ...; beyond `dense`, if it is not 0, each half as large again as the one before."""
    nth = 1
    while nth < MOST_RUNS:
        yield nth
        nth += 1 if not dense or nth < dense else nth // 2


class Trouble(Exception):
    """A run that did not end as it must."""


def run(command, environment, directory):
    """Runs qrx_sim's command line; raises Trouble unless it ends in an orderly way."""
    try:
        done = subprocess.run(command, env=environment, cwd=directory, stdin=subprocess.DEVNULL, capture_output=True,
                              timeout=SECONDS, check=False)
    except subprocess.TimeoutExpired as error:
        raise Trouble(f"did not end in {SECONDS} seconds") from error
    text = (done.stdout + done.stderr).decode(errors="replace")
    # qrx_cli's own -1 (255) is an exit value; the values of signals end at 128 + 64.
    if done.returncode < 0 or FIRST_SIGNAL < done.returncode <= FIRST_SIGNAL + 64:
        raise Trouble(f"ended by a signal ({done.returncode})\n{text}")
    if LAST_WORDS.search(text):
        raise Trouble(f"complained\n{text}")


@contextlib.contextmanager
def room(image):
    """A directory for one run, with an image of so many bytes."""
    with tempfile.TemporaryDirectory(prefix="torture-") as name:
        directory = pathlib.Path(name)
        (directory / "image").write_bytes(bytes(range(256)) * (image // 256) + bytes(image % 256))
        yield directory


def device_run(bin_dir, arguments, command, kind, nth, environment):
    """One run with the n-th device command failing. Returns whether it came to that."""
    with room(arguments.image) as directory:
        trace = directory / "trace.txt"
        run([bin_dir / "qrx_sim", "--scenario", arguments.scenario, "--trace", trace, "--fault",
             f"nth={nth},{DEVICE_FAULTS[kind]}", "--", "qrx_cli", *command], environment, directory)
        return len(trace.read_text().splitlines()) >= nth


def memory_run(bin_dir, arguments, command, _, nth, environment):
    """One run with the n-th allocation failing. Returns whether it came to that."""
    with room(arguments.image) as directory:
        seen = directory / "seen"
        preload = bin_dir / "libqrx_fail_alloc.so"
        run([bin_dir / "qrx_sim", "--scenario", arguments.scenario, "--", "env", f"LD_PRELOAD={preload}",
             f"QRX_FAIL_ALLOC={nth}", f"QRX_FAIL_ALLOC_SEEN={seen}", "qrx_cli", *command], environment, directory)
        return seen.exists()


KINDS = {"device": (device_run, list(DEVICE_FAULTS)), "memory": (memory_run, ["allocation"])}


def main():
    parser = argparse.ArgumentParser(description="Runs a command with each thing failing in turn.")
    parser.add_argument("--bin", required=True, type=pathlib.Path, help="directory of qrx_cli and qrx_sim")
    parser.add_argument("--scenario", default="pair", help="the simulated machine (default: pair)")
    parser.add_argument("--image", type=int, default=0, help="bytes of the file `image` (default: 0)")
    parser.add_argument("--only", help="this kind of failure alone")
    parser.add_argument("--nth", type=int, help="this one run alone")
    parser.add_argument("--dense", type=int, default=0, help="try each up to this one, from there on fewer and fewer")
    parser.add_argument("what", choices=KINDS)
    parser.add_argument("command", help="the command with its options, as one word")
    arguments = parser.parse_args()

    bin_dir = arguments.bin.resolve()
    one_run, kinds = KINDS[arguments.what]
    environment = os.environ | {"PATH": f"{bin_dir}:/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL": "C"}
    failed = False
    for kind in [arguments.only] if arguments.only else kinds:
        came = 0
        for nth in [arguments.nth] if arguments.nth else counts(arguments.dense):
            try:
                if not one_run(bin_dir, arguments, shlex.split(arguments.command), kind, nth, environment):
                    break
                came += 1
            except Trouble as trouble:
                failed = True
                came += 1
                print(f"--scenario {arguments.scenario} --image {arguments.image} --only {kind} --nth {nth} "
                      f"{arguments.what} {shlex.quote(arguments.command)}: {trouble}", flush=True)
        print(f"{kind}: {came} runs that saw a failure")
        if came == 0:
            print(f"{kind}: nothing ever failed, so nothing was tried")
            failed = True
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
