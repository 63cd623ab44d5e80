"""An eye scan that is ended early: what it changed is put back.

    QRX_BIN=build/release/bin /usr/bin/python3 eom_test.py [Eom.test_...]
"""
import json
import os
import pathlib
import signal
import subprocess
import tempfile
import unittest

import pexpect

from shell_test import descendant

BIN = pathlib.Path(os.environ["QRX_BIN"]).resolve()
ENVIRONMENT = os.environ | {"PATH": f"{BIN}:/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL": "C", "TERM": "xterm"}
TIMEOUT = 60
PHY = 0xE2A00000
POWER, DFE, CIRCUIT = PHY + 0x004, PHY + 0x020, PHY + 0x09C
DFE_DURING = 0xAFD4  # 0xAFD5 after power-on
MONITOR_ON = 0x8000
STOPPED = "The scan was interrupted.\r\nThe settings of the PHY are restored.\r\n"


class Eom(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory(prefix="eom-")
        self.addCleanup(directory.cleanup)
        self.directory = pathlib.Path(directory.name)

    def start(self, *command):
        """A program in a terminal on a machine whose state and control socket are in the directory of the test."""
        child = pexpect.spawn(str(BIN / "qrx_sim"), ["--state", "lab.json", "--control", "lab.sock", "--", *command],
                              cwd=self.directory, env=ENVIRONMENT, timeout=TIMEOUT, encoding="ascii")
        self.addCleanup(child.close, force=True)
        return child

    def registers(self, name):
        """What differs from power-on among the registers of root complex 0, in a state file."""
        state = json.loads((self.directory / name).read_text(encoding="ascii"))
        interfaces = [interface for interface in state["controllers"][0]["interfaces"] if interface["id"] == 2]
        return {register["address"]: register["value"] for register in interfaces[0]["registers"]}

    def wait_for_the_map(self, child):
        """Lets the scan come as far as the map; the PHY is as a scan needs it."""
        child.expect_exact("3f ####")
        subprocess.run([BIN / "qrx_sim", "ctl", "--control", "lab.sock", "save", "during.json"], cwd=self.directory,
                       env=ENVIRONMENT, timeout=TIMEOUT, check=True)
        during = self.registers("during.json")
        self.assertEqual(during[DFE], DFE_DURING)
        self.assertTrue(during[CIRCUIT] & MONITOR_ON)

    def check_settings(self):
        after = self.registers("lab.json")
        self.assertNotIn(DFE, after)
        self.assertNotIn(POWER, after)
        self.assertFalse(after.get(CIRCUIT, 0) & MONITOR_ON)

    def test_ctrl_c_puts_the_settings_back(self):
        child = self.start("qrx_cli", "eom", "-i", "0")
        self.wait_for_the_map(child)
        child.sendintr()
        child.expect_exact(STOPPED)
        child.expect(pexpect.EOF)
        child.close()
        self.assertEqual((child.exitstatus, child.signalstatus), (1, None))
        self.check_settings()

    def test_ctrl_c_during_the_search_puts_the_settings_back(self):
        child = self.start("qrx_cli", "eom", "-i", "0")
        child.expect_exact("Phase:  16 ")
        child.sendintr()
        child.expect_exact(STOPPED)
        child.expect(pexpect.EOF)
        child.close()
        self.assertEqual(child.exitstatus, 1)
        self.check_settings()

    def test_the_shell_goes_on_after_ctrl_c(self):
        child = self.start("qrx_cli")
        child.expect_exact("> ")
        child.sendline("eom -i 0")
        self.wait_for_the_map(child)
        child.sendintr()
        child.expect_exact(STOPPED)
        child.expect_exact("> ")
        child.sendline("pcie -i 0")
        child.expect_exact("Link Width: x4")
        child.sendline("exit")
        child.expect(pexpect.EOF)
        child.close()
        self.assertEqual(child.exitstatus, 0)
        self.check_settings()

    def test_a_scan_that_is_told_to_end_puts_the_settings_back(self):
        child = self.start("qrx_cli", "eom", "-i", "0")
        self.wait_for_the_map(child)
        os.kill(descendant(child.pid, "qrx_cli"), signal.SIGTERM)
        child.expect_exact(STOPPED)
        child.expect(pexpect.EOF)
        child.close()
        self.assertEqual(child.exitstatus, 128 + signal.SIGTERM)
        self.check_settings()


if __name__ == "__main__":
    unittest.main()
