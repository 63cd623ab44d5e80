"""What the tests of `flash` share: a simulated machine each, the words of the commands, and how outcomes are compared.

An update of the controller lasts two seconds, which the tool sleeps, so that many of them run at a time.
"""
import concurrent.futures
import dataclasses
import functools
import json
import os
import pathlib
import re
import subprocess
import tempfile
import unittest
import zlib

BIN = pathlib.Path(os.environ["QRX_BIN"]).resolve()
ENVIRONMENT = os.environ | {"PATH": f"{BIN}:/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL": "C"}
TIMEOUT = 120
AT_A_TIME = 16

SEGMENT = 4096
MOST = 5 * SEGMENT  # MaxFlashSize of the machine
RAW_SIZE = 0x83000  # the least that a raw image of make-image has
PD = 2              # the drive that is updated
KINDS_THAT_FAIL = {"status=0x706": 0x706, "status=0x2": 0x2, "status=0x6002": 0x6002, "errno=EIO": -1}
KINDS_THAT_DO_NOT = ("short=0", "short=16", "corrupt", "delay=20ms")  # these commands bring no answer to damage
STATUS_LINES = {0x706: "Invalid HD ID (Status Code: 0x706)", 0x2: "Invalid Field in Command (Status Code: 0x2)",
                0x6002: "Unknown Status (Status Code: 0x6002)", -1: "Unknown error (Status Code: 0xffffffff)",
                0x106: "Invalid Firmware Slot (Status Code: 0x106)",
                0x107: "Invalid Firmware Image (Status Code: 0x107)"}
END_OF = {0: "success", 0x111: "firmware activation requires controller reset(0x111)", 0x2: "invalid field(0x2)",
          0x106: "invalid firmware slot(0x106)", 0x107: "invalid firmware image(0x107)",
          0x706: "invalid HD ID(0x706)", 0x6002: "unknown status(0x6002)", -1: "errno EIO"}

STARTED = "start to flash NVMe Controller firmware"
START_REFUSED = ("start to flash NVMe Controller firmware failed (Invalid firmware image, please check image and try "
                 "again.)")
SUCCESS = "flash NVMe Controller firmware success. Please shutdown and power on the system."
PROHIBITED = "Flash NVMe Controller firmware failed(Firmware commit rohibited)"
DISK_SUCCESS = (f"Flash NVMe Controller disk {PD} firmware success, please shutdown and boot again to make firmware "
                "active.")
DISK_SUCCESS_NOW = "flash NVMe Controller firmware success"
DISK_FAILED = f"Flash NVMe Controller disk {PD} firmware failed."
DOWNLOAD_FAILED = ["", f"Start to flash NVMe Controller disk {PD} firmware failed (Invalid firmware image, please "
                   "check image and try again.)"]


def failed_with(code):
    """The line of a failure of the controller's update."""
    return (f"Flash NVMe Controller firmware failed (error code: {code}, Invalid firmware image, please check image "
            "and try again.)")


def words_of(*pairs):
    """The words of a command as the trace writes them: those that are 0 are left out."""
    return "".join(f" {name}={value:#x}" for name, value in pairs if value)


def segment_to_controller(offset):
    return f"firmware-download(0x11){words_of(('cdw10', 1023), ('cdw11', offset // 4))} out=4096"


def commit_to_controller(slot, action):
    return f"firmware-commit(0x10){words_of(('cdw10', slot | action << 3), ('timeout_ms', 160000))}"


def segment_to_disk(offset, length):
    words = words_of(("nsid", PD), ("cdw10", (length // 4 - 1) & 0xFFFFFFFF), ("cdw11", offset // 4), ("cdw14", 0x11))
    return f"tunnel-to-drive(0xc3){words} data={length}"


def commit_to_disk(slot, action, boot_partition=0):
    cdw10 = slot | action << 3 | boot_partition << 31
    return f"tunnel-to-drive(0xc3){words_of(('nsid', PD), ('cdw10', cdw10), ('cdw14', 0x10))}"


def raw_step(image):
    crc = int.from_bytes((zlib.crc32(image) ^ 0xFFFFFFFF).to_bytes(4, "little"), "big")
    return ("vendor-read(0xe2) activate-firmware(0x0be0)"
            f"{words_of(('cdw12', 0x00010BE0), ('cdw13', 0x20585251), ('cdw15', crc))}")


def controller_segments(image):
    return [segment_to_controller(offset) for offset in range(0, len(image), SEGMENT)]


def disk_segments(image):
    return [segment_to_disk(offset, min(SEGMENT, len(image) - offset)) for offset in range(0, len(image), SEGMENT)]


def as_controller_gets_it(image):
    """Whole segments; behind the end stands what the segment before held there, and zeros in the first."""
    padded = bytearray(-(-len(image) // SEGMENT) * SEGMENT)
    padded[:len(image)] = image
    for at in range(len(image), len(padded)):
        padded[at] = padded[at - SEGMENT] if at >= SEGMENT else 0
    return bytes(padded)


def slot_line(number, image):
    """How `ctl firmware` tells of a slot with an image that has no label."""
    crc = zlib.crc32(image)
    version = f"0.0.{crc >> 16}.{crc & 0xFFFF}"
    return f"slot {number}: x{crc & 0xFFFFFFF:07x}, version {version}, {len(image)} bytes, CRC 0x{crc:08x}"


@functools.cache
def made_image(*options):
    with tempfile.TemporaryDirectory() as directory:
        path = pathlib.Path(directory) / "image"
        subprocess.run(["qrx_sim", "make-image", *options, path], env=ENVIRONMENT, timeout=TIMEOUT, check=True)
        return path.read_bytes()


def plain(size):
    return made_image("--size", str(size))


def lines_of_percentages(image):
    return [f"Download firmware percentage:{offset * 100 // len(image)}" for offset in range(0, len(image), SEGMENT)]


@dataclasses.dataclass
class Outcome:
    """What an update did. The progress of the controller's is taken out of the lines."""
    exit: int
    lines: list
    errors: str
    sent: list     # each command behind the start-up, without node and queue
    ends: list     # how each of these ended
    slots: dict    # what `ctl firmware` tells afterwards: "controller 0" and "PD <n>", with the lines of their slots


class Lab:
    """A machine of its own, that remembers from call to call."""

    def __init__(self, directory, flash_size):
        self.directory = pathlib.Path(directory)
        machine = {"controllers": [{"adapter": {"flash_size": flash_size}, "drives": [{"id": id} for id in range(4)]}]}
        (self.directory / "machine.json").write_text(json.dumps(machine))

    def run(self, *words, options=()):
        return subprocess.run(["qrx_sim", "--clock", "stopped", "--scenario", "machine.json", "--state", "state.json",
                               *options, "--", *words], cwd=self.directory, env=ENVIRONMENT, timeout=TIMEOUT, text=True,
                              capture_output=True, check=False)

    def text(self, *words):
        done = self.run(*words)
        assert done.returncode == 0, done.stdout + done.stderr
        return done.stdout

    def trace(self):
        """Each command that was sent, and how it ended."""
        pieces = (line.partition(" -> ") for line in (self.directory / "trace").read_text().splitlines())
        return [(re.sub(r"^\d+ nvme0 admin ", "", sent), end) for sent, _, end in pieces]

    def slots(self):
        found = {}
        for line in self.text("qrx_sim", "ctl", "firmware").splitlines():
            if line.startswith(" "):
                found[owner].append(line.strip())
            else:
                owner, _, rest = line.partition(": ")
                found[owner] = [rest]
        return found

    def flash(self, image, words, faults=()):
        """`flash` with these words and, unless None, this image."""
        if image is not None:
            (self.directory / "image").write_bytes(image)
            words = f"{words} -f image"
        options = ["--trace", "trace", *(option for fault in faults for option in ("--fault", fault))]
        done = self.run("qrx_cli", "flash", *words.split(), options=options)
        progress = re.compile(r"flash NVMe Controller, percentage (?!100$)\d+")  # 100 is told as 99
        lines = [line for line in done.stdout.splitlines() if not progress.fullmatch(line)]
        commands = self.trace()[startup():]
        return Outcome(done.returncode, lines, done.stderr, [sent for sent, _ in commands],
                       [end for _, end in commands], self.slots())

    def power_cycle(self):
        self.text("qrx_sim", "ctl", "reset")

    def revision(self):
        return re.search(r"^FR: +(\S+)", self.text("qrx_cli", "identify", "-c", "1"), re.M)[1]

    def disk_revision(self):
        return re.search(r"^Firmware version: +(\S+)", self.text("qrx_cli", "info", "-o", "pd", "-i", str(PD)), re.M)[1]

    def query(self, of_disk):
        return self.text("qrx_cli", "flash", *(("-o", "pd", "-i", str(PD)) if of_disk else ("-o", "hba")), "-q",
                         "firmware").splitlines()


def in_a_lab(work, flash_size=MOST):
    with tempfile.TemporaryDirectory(prefix="flash-") as directory:
        return work(Lab(directory, flash_size))


def flashed(image, words, faults=(), flash_size=MOST):
    return in_a_lab(lambda lab: lab.flash(image, words, faults), flash_size)


@functools.cache
def startup():
    """How many commands the tool sends before the first one of a handler."""
    def count(lab):
        lab.run("qrx_cli", "flash", "-h", options=["--trace", "trace"])
        return len(lab.trace())
    return in_a_lab(count)


@functools.cache
def untouched():
    return in_a_lab(lambda lab: lab.slots())


def at_once(works):
    """The results of many calls, in their order."""
    startup()
    with concurrent.futures.ThreadPoolExecutor(AT_A_TIME) as pool:
        return [future.result() for future in [pool.submit(work) for work in works]]


class FlashTest(unittest.TestCase):
    """Compares whole outcomes."""
    maxDiff = 2000

    def outcome(self, outcome, exit_value, lines, sent, ends, slots=None, why=None):
        """Compares all of an outcome; `slots` are changes against an untouched machine."""
        self.assertEqual((outcome.exit, outcome.lines, outcome.errors), (exit_value & 0xFF, lines, ""), why)
        self.assertEqual(list(zip(outcome.sent, outcome.ends)), list(zip(sent, ends, strict=True)), why)
        self.assertEqual(outcome.slots, untouched() | (slots or {}), why)

    @staticmethod
    def holds(name, head, *slots):
        """The entry of a device in Outcome.slots; slots that are not told are as at the start."""
        lines = dict(zip((1, 2, 3), untouched()[name][1:])) | {int(slot[5]): slot for slot in slots}
        return {name: [head, *lines.values()]}

    @staticmethod
    def keeps(name, size):
        """The entry of a device that has so many bytes of an image, and was not told to commit them."""
        head, *slots = untouched()[name]
        return {name: [head + (f", {size} bytes downloaded and not committed" if size else ""), *slots]}
