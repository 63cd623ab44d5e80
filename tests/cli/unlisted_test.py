"""Questions of the commands without a row, answered in a terminal as a person would.

    QRX_BIN=build/release/bin /usr/bin/python3 unlisted_test.py [Unlisted.test_...]
"""
import os
import pathlib
import subprocess
import tempfile
import unittest

import pexpect

BIN = pathlib.Path(os.environ["QRX_BIN"]).resolve()
ENVIRONMENT = os.environ | {"PATH": f"{BIN}:/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL": "C", "TERM": "xterm"}
TIMEOUT = 60
CTRL_D = "\x04"
CTRL_C = "\x03"

SIZES = "Please type namespace size list:"
DELETE = "Are you sure you want to delete this virtual disk? (y or n)\r\n"
PROMPT = "> "


class Unlisted(unittest.TestCase):
    def setUp(self):
        self.directory = self.enterContext(tempfile.TemporaryDirectory())
        self.machine = ["--scenario", "lab", "--state", f"{self.directory}/lab.json", "--clock", "stopped"]

    def terminal(self, *words):
        """A command in a terminal. Ended, with all under it, when the test is over."""
        child = pexpect.spawn("qrx_sim", [*self.machine, "--", "qrx_unlisted", *words], env=ENVIRONMENT,
                              timeout=TIMEOUT, encoding="ascii", dimensions=(50, 250))
        child.delaybeforesend = None
        self.addCleanup(child.close, force=True)
        return child

    def ends(self, child, text, status):
        """Asserts what comes up to the end, whole, and the exit value."""
        child.expect(pexpect.EOF)
        child.close()
        self.assertEqual((child.before, child.exitstatus, child.signalstatus), (text, status, None))

    def command(self, program, *words, answers=""):
        done = subprocess.run(["qrx_sim", *self.machine, "--", program, *words], input=answers, text=True,
                              env=ENVIRONMENT, capture_output=True, timeout=TIMEOUT, check=False)
        self.assertEqual(done.stderr, "")
        return done

    def has_virtual_disk(self):
        return "No virtual disk is found." not in self.command("qrx_cli", "info", "-o", "vd").stdout

    def namespaces(self):
        """How many there are on virtual disk 0."""
        return self.command("qrx_cli", "info", "-o", "ns", "-t", "vd", "-v", "0").stdout.count("NS ID:")

    def make_virtual_disk(self):
        done = self.command("qrx_unlisted", "create", "-r", "1", "-d", "0,1", "-i", "none")
        self.assertEqual((done.returncode, done.stdout), (0, "Create virtual disk successfully.\n"))

    def test_sizes_are_typed_in_a_terminal(self):
        child = self.terminal("create", "-r", "1", "-d", "0,1", "-x", "")
        child.expect_exact(SIZES)
        self.assertIn("Available Size of VD for creating namespace : 894 GB\r\n", child.before)
        child.sendline("0,0")
        child.expect_exact(SIZES)
        self.assertEqual(child.before, "0,0\r\nThe namespace size is wrong, it contain more than  two '0', please type "
                                       "again.\r\n")
        child.sendline("20,0,30")
        self.ends(child, "20,0,30\r\nCreate virtual disk successfully.\r\n", 0)
        self.assertEqual(self.namespaces(), 3)

    def test_the_end_of_a_terminals_input_creates_nothing(self):
        child = self.terminal("create", "-r", "1", "-d", "0,1", "-x", "0,0")
        child.expect_exact(SIZES)
        child.send(CTRL_D)
        self.ends(child, "\r\nNo namespace sizes, the virtual disk is not created.\r\n", 1)
        self.assertFalse(self.has_virtual_disk())

    def test_an_interrupt_at_the_question_creates_nothing(self):
        child = self.terminal("create", "-r", "1", "-d", "0,1", "-x", "")
        child.expect_exact(SIZES)
        child.send(CTRL_C)
        child.expect(pexpect.EOF)
        self.assertFalse(self.has_virtual_disk())

    def test_a_deletion_is_confirmed_in_a_terminal(self):
        self.make_virtual_disk()
        child = self.terminal("delete", "-i", "0")
        child.expect_exact(DELETE)
        child.sendline("perhaps")
        child.expect_exact("perhaps\r\nPlease input y or n.\r\n")
        child.sendline("n")
        self.ends(child, "n\r\n", 0)
        self.assertTrue(self.has_virtual_disk())
        child = self.terminal("delete", "-i", "0")
        child.expect_exact(DELETE)
        child.sendline("y")
        self.ends(child, "y\r\nDelete VD 0 successfully.\r\n", 0)
        self.assertFalse(self.has_virtual_disk())

    def test_the_end_of_a_terminals_input_deletes_nothing(self):
        self.make_virtual_disk()
        child = self.terminal("delete", "-i", "0")
        child.expect_exact(DELETE)
        child.send(CTRL_D)
        self.ends(child, "No answer, the virtual disk is not deleted.\r\n", 1)
        self.assertTrue(self.has_virtual_disk())

    def test_the_shell_goes_on_behind_a_question(self):
        child = self.terminal()
        child.expect_exact(PROMPT)
        child.waitnoecho(TIMEOUT)
        child.sendline('create -r 1 -d 0,1 -x ""')
        child.expect_exact(SIZES)
        child.sendline("20")
        child.expect_exact("Create virtual disk successfully.\r\n" + PROMPT)
        child.waitnoecho(TIMEOUT)
        child.sendline("delete -i 0")
        child.expect_exact(DELETE)
        child.send(CTRL_D)
        child.expect_exact("No answer, the virtual disk is not deleted.\r\n" + PROMPT)
        child.waitnoecho(TIMEOUT)
        child.sendline("exit")
        child.expect(pexpect.EOF)
        self.assertEqual(self.namespaces(), 1)

    def test_a_pipe_answers_the_questions_and_goes_on_with_the_shell(self):
        done = self.command("qrx_unlisted", answers='create -r 1 -d 0,1 -x ""\n0,0\n20,30\ndelete -i 0\nwhat\nno\n'
                                                    "assign -d x\nexit\n")
        self.assertEqual(done.returncode, 0)
        self.assertTrue(done.stdout.endswith(
            f"{SIZES}The namespace size is wrong, it contain more than  two '0', please type again.\n"
            f"{SIZES}Create virtual disk successfully.\n"
            "Are you sure you want to delete this virtual disk? (y or n)\nPlease input y or n.\n"
            "-d : invalid disk id 'x'\n"), done.stdout)
        self.assertEqual(self.namespaces(), 2)

    def test_the_end_of_a_pipe_creates_nothing(self):
        for answers in ("", "0,0\n", "x"):
            done = self.command("qrx_unlisted", "create", "-r", "1", "-d", "0,1", "-x", "", answers=answers)
            self.assertEqual(done.returncode, 1)
            self.assertTrue(done.stdout.endswith(f"{SIZES}\nNo namespace sizes, the virtual disk is not created.\n"))
            self.assertFalse(self.has_virtual_disk())


if __name__ == "__main__":
    unittest.main()
