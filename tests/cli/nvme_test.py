"""The simulated controller as nvme-cli, a program that knows nothing of it, updates and reads it.

    QRX_BIN=build/release/bin /usr/bin/python3 nvme_test.py [Nvme.test_...]
"""
import json
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest
import zlib

BIN = pathlib.Path(os.environ["QRX_BIN"]).resolve()
ENVIRONMENT = os.environ | {"PATH": f"{BIN}:/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL": "C"}
HAVE_NVME = shutil.which("nvme", path=ENVIRONMENT["PATH"]) is not None
TIMEOUT = 60


@unittest.skipUnless(HAVE_NVME, "nvme-cli is not installed")
class Nvme(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = pathlib.Path(directory.name)
        self.state = "lab.json"

    def run_words(self, *words):
        return subprocess.run(words, cwd=self.directory, env=ENVIRONMENT, timeout=TIMEOUT, text=True,
                              capture_output=True, errors="replace", check=False)

    def on_machine(self, *words):
        """Runs a program on the machine, which remembers from call to call."""
        return self.run_words("qrx_sim", "--clock", "stopped", "--state", self.state, "--", *words)

    def good(self, *words):
        done = self.on_machine(*words)
        self.assertEqual(done.returncode, 0, done.stderr + done.stdout)
        return done.stdout

    def refused(self, status, *words):
        done = self.on_machine(*words)
        self.assertNotEqual(done.returncode, 0)
        self.assertIn(f"({status})", done.stdout + done.stderr)

    def image(self, name, *options):
        done = self.run_words("qrx_sim", "make-image", *options, name)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return zlib.crc32((self.directory / name).read_bytes())

    def revision(self):
        return json.loads(self.good("nvme", "id-ctrl", "/dev/nvme0", "-o", "json"))["fr"].rstrip()

    def slots(self):
        return json.loads(self.good("nvme", "fw-log", "/dev/nvme0", "-o", "json"))["nvme0"]

    def test_firmware_is_updated_and_runs_after_the_reset(self):
        crc = self.image("new.bin", "--revision", "2.5.0.1100")
        self.good("nvme", "fw-download", "/dev/nvme0", "-f", "new.bin")
        self.good("nvme", "fw-commit", "/dev/nvme0", "-s", "2", "-a", "1")
        self.assertEqual(self.slots()["Active Firmware Slot (afi)"], 0x21)
        self.assertEqual(self.revision(), "2.4.1063")
        self.assertIn(f"slot 2: 2.5.1100, version 2.5.0.1100, 65536 bytes, CRC 0x{crc:08x}",
                      self.good("qrx_sim", "ctl", "firmware"))
        self.good("qrx_sim", "ctl", "reset")
        self.assertEqual(self.slots()["Active Firmware Slot (afi)"], 0x02)
        self.assertEqual(self.revision(), "2.5.1100")
        self.assertEqual(self.good("cat", "/sys/class/nvme/nvme0/firmware_rev").strip(), "2.5.1100")

    def test_sysfs_shows_the_new_revision_while_the_program_runs(self):
        self.image("new.bin", "--revision", "2.5.0.1100")
        shown = self.good("sh", "-c", "nvme fw-download /dev/nvme0 -f new.bin >/dev/null;"
                          "nvme fw-commit /dev/nvme0 -s 1 -a 1 >/dev/null; qrx_sim ctl reset;"
                          "cat /sys/class/nvme/nvme0/firmware_rev")
        self.assertEqual(shown.strip(), "2.5.1100")

    def test_firmware_is_refused_with_the_standards_statuses(self):
        self.refused("0x107", "nvme", "fw-commit", "/dev/nvme0", "-s", "2", "-a", "1")
        self.image("new.bin", "--revision", "2.5.0.1100")
        self.good("nvme", "fw-download", "/dev/nvme0", "-f", "new.bin")
        self.refused("0x106", "nvme", "fw-commit", "/dev/nvme0", "-s", "7", "-a", "1")
        self.refused("0x2", "nvme", "fw-commit", "/dev/nvme0", "-s", "2", "-a", "6")
        self.refused("0x111", "nvme", "fw-commit", "/dev/nvme0", "-s", "2", "-a", "3")
        self.assertEqual(self.slots()["Active Firmware Slot (afi)"], 0x21)

    def test_download_that_overlaps_is_refused(self):
        self.image("new.bin", "--revision", "2.5.0.1100", "--size", "8192")
        self.good("nvme", "fw-download", "/dev/nvme0", "-f", "new.bin")
        words = ["nvme", "admin-passthru", "/dev/nvme0", "-o", "0x11", "--cdw10=1023", "-l", "4096", "-w", "-i", "new.bin"]
        self.refused("0x114", *words, "--cdw11=1024")
        self.good(*words, "--cdw11=2048")
        self.good("nvme", "fw-commit", "/dev/nvme0", "-s", "2", "-a", "0")

    def test_image_with_a_gap_is_refused(self):
        self.image("new.bin", "--revision", "2.5.0.1100", "--size", "4096")
        words = ["nvme", "admin-passthru", "/dev/nvme0", "-o", "0x11", "--cdw10=1023", "-l", "4096", "-w", "-i", "new.bin"]
        self.good(*words)
        self.good(*words, "--cdw11=2048")
        before = self.slots()
        self.refused("0x107", "nvme", "fw-commit", "/dev/nvme0", "-s", "2", "-a", "1")
        self.assertEqual(self.slots(), before)

    def test_format_is_not_offered_by_the_controller(self):
        self.assertEqual(json.loads(self.good("nvme", "id-ctrl", "/dev/nvme0", "-o", "json"))["oacs"] & 2, 0)
        self.refused("0x1", "nvme", "admin-passthru", "/dev/nvme0", "-o", "0x80", "-n", "1")

    def test_drive_answers_through_the_tunnel(self):
        words = ["nvme", "admin-passthru", "/dev/nvme0", "-o", "0xc2", "-l", "4096", "-r", "-b", "--cdw10=1", "--cdw14=6"]
        done = subprocess.run(["qrx_sim", "--", *words, "-n", "2"], cwd=self.directory, env=ENVIRONMENT,
                              timeout=TIMEOUT, capture_output=True, check=True)
        self.assertEqual(len(done.stdout), 4096)
        self.assertEqual(done.stdout[4:24], b"QRXSIM0000D2        ")
        self.assertEqual(done.stdout[64:72], b"LAB1.0.4")
        self.refused("0x706", *words, "-n", "200")


if __name__ == "__main__":
    unittest.main()
