"""The interactive shell, driven in a terminal as a person would, and from a pipe as a script would.

    QRX_BIN=build/release/bin /usr/bin/python3 shell_test.py [Shell.test_...]
"""
import os
import pathlib
import re
import subprocess
import tempfile
import time
import unittest

import pexpect

BIN = pathlib.Path(os.environ["QRX_BIN"]).resolve()
PROMPT = "> "
ENVIRONMENT = os.environ | {"PATH": f"{BIN}:/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL": "C", "TERM": "xterm"}
TIMEOUT = 60
LONGEST_LINE = 2047
MOST_WORDS = 64
UP = "\x1b[A"
CTRL_D = "\x04"


def descendant(ancestor, name):
    """The id of the process called `name` under process `ancestor`."""
    parents = {}
    for status in pathlib.Path("/proc").glob("[0-9]*/status"):
        try:
            fields = dict(re.findall(r"^(\w+):\s*(.*)$", status.read_text(), re.MULTILINE))
        except OSError:
            continue
        parents[int(status.parent.name)] = (int(fields["PPid"]), fields["Name"])
    for pid, (parent, found) in parents.items():
        while found == name and parent in parents:
            if parent == ancestor:
                return pid
            parent = parents[parent][0]
    raise AssertionError(f"no {name} under process {ancestor}")


def processor_seconds(pid):
    """What the process used so far, its children not counted."""
    fields = pathlib.Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def open_files(pid):
    """What stands behind each descriptor of the process, by its number."""
    links = {}
    for descriptor in pathlib.Path(f"/proc/{pid}/fd").iterdir():
        try:
            links[descriptor.name] = str(descriptor.readlink())
        except OSError:
            continue
    return links


def started_commands(process_id):
    """Waits until start-up is over and the shell waits for input."""
    deadline = time.monotonic() + TIMEOUT
    while time.monotonic() < deadline:
        try:
            return descendant(process_id, "qrx_cli")
        except AssertionError:
            time.sleep(0.05)
    raise AssertionError("qrx_cli did not start")


class Shell(unittest.TestCase):
    def shell(self, *arguments, scenario="raid", simulator=(), encoding="ascii"):
        """A shell in a terminal, its prompt standing. Ended, with all under it, when the test is over."""
        child = pexpect.spawn("qrx_sim", ["--scenario", scenario, *simulator, "--", "qrx_cli", *arguments],
                              env=ENVIRONMENT, timeout=TIMEOUT, encoding=encoding, dimensions=(50, 250))
        child.delaybeforesend = None
        self.addCleanup(child.close, force=True)
        send = child.send

        def send_to_the_editor(text):
            # The line editor takes the echo over from the terminal when it begins to read, shortly behind the prompt.
            child.waitnoecho(TIMEOUT)
            return send(text)

        child.send = send_to_the_editor
        child.expect_exact("Welcome to NVMe Command Line Interface.\r\n\r\n")
        child.expect_exact(PROMPT)
        return child

    def says(self, child, line, answer):
        """Types a line, and asserts that what comes up to the next prompt is the answer, whole."""
        child.sendline(line)
        child.expect_exact("\r\n")  # the end of the line as echoed
        child.expect_exact(PROMPT)
        self.assertEqual(child.before.replace("\r\n", "\n").replace("\r", ""), answer)

    def ends(self, child, status):
        child.expect(pexpect.EOF)
        child.close()
        self.assertEqual((child.exitstatus, child.signalstatus), (status, None))
        return child.before.replace("\r\n", "\n")

    def piped(self, text, *arguments, scenario="raid"):
        return subprocess.run(["qrx_sim", "--scenario", scenario, "--", "qrx_cli", *arguments], input=text, text=True,
                              env=ENVIRONMENT, capture_output=True, timeout=TIMEOUT, check=False)

    def test_the_prompt_comes_back_after_a_command(self):
        child = self.shell()
        version = "CLI Version: 1.0.0.1046\nSupport Firmware Version: 1.0.x.1039 above\n"
        self.says(child, "version", version)
        self.says(child, "VER", version)
        child.sendline("exit")
        self.ends(child, 0)

    def test_a_command_that_fails_leaves_the_shell_running(self):
        child = self.shell()
        self.says(child, "bogus", "Invalid command 'bogus'!\n")
        self.says(child, "info -o hba -i 0", "\n'info -o hba' does not support '-i' action\n")
        self.says(child, "exi", "Invalid command 'exi'!\n")

    def test_a_blank_line_tells_how_to_leave(self):
        child = self.shell()
        self.says(child, "", "Type 'exit' to exit CLI.\n")

    def test_a_line_in_utf_8_arrives_whole(self):
        child = self.shell(encoding="utf-8")
        self.says(child, "help h\u00e9\u20ac", "No help available for 'h\u00e9\u20ac'\n")

    def test_a_closed_standard_stream_is_never_a_device(self):
        with subprocess.Popen(["qrx_sim", "--scenario", "boot", "--", "bash", "-c", "exec qrx_cli <&- >&- 2>&-"],
                              env=ENVIRONMENT) as process:
            pid = None
            try:
                pid = started_commands(process.pid)
                links = {}
                deadline = time.monotonic() + TIMEOUT
                while not any("/dev/nvme" in link for link in links.values()) and time.monotonic() < deadline:
                    time.sleep(0.05)
                    links = open_files(pid)
                self.assertTrue(any("/dev/nvme" in link for link in links.values()), links)
                self.assertEqual([links.get(stream) for stream in "012"], ["/dev/null"] * 3)
            finally:
                for victim in (pid, process.pid):
                    if victim:
                        os.kill(victim, 9)

    def test_a_leading_blank_makes_an_empty_first_word(self):
        child = self.shell()
        self.says(child, " help", "Ambiguous command ''!\n")

    def test_an_unclosed_quote_is_told(self):
        child = self.shell()
        self.says(child, 'help "unclosed', "Invalid quoted string.\n")
        self.says(child, 'help "version"', "No help available for '\"version\"'\n")

    def test_arrow_up_brings_back_earlier_lines(self):
        child = self.shell()
        self.says(child, "first", "Invalid command 'first'!\n")
        self.says(child, "second", "Invalid command 'second'!\n")
        self.says(child, UP, "Invalid command 'second'!\n")
        self.says(child, UP + UP + UP, "Invalid command 'first'!\n")

    def test_blank_lines_are_in_the_history_too(self):
        child = self.shell()
        self.says(child, "first", "Invalid command 'first'!\n")
        self.says(child, "", "Type 'exit' to exit CLI.\n")
        self.says(child, UP, "Type 'exit' to exit CLI.\n")

    def test_exit_and_quit_end_it_in_any_case_of_letters(self):
        for word in ("exit", "quit", "EXIT", "Quit"):
            child = self.shell()
            child.sendline(word)
            self.assertEqual(self.ends(child, 0).strip(), word)

    def test_an_adapter_once_selected_stays(self):
        child = self.shell(scenario="pair")
        current = "Total number of NVMe Controllers: 2\nCurrent default NVMe Controller ID for CLI commands: {}\n"
        self.says(child, "adapter --list", current.format(1))
        self.says(child, "adapter -i 3", "Updated current NVMe Controller id : 3\n")
        self.says(child, "adapter --list", current.format(3))
        self.says(child, "adapter -i 2", "NVMe Controller 2 does not exist.\n")
        self.says(child, "adapter --list", current.format(3))

    def test_an_adapter_id_on_the_command_line_selects_it_for_the_shell(self):
        child = self.shell("3", scenario="pair")
        self.says(child, "adapter --list", "Total number of NVMe Controllers: 2\n"
                                           "Current default NVMe Controller ID for CLI commands: 3\n")

    def test_debug_once_set_stays(self):
        child = self.shell()
        self.says(child, "--debug", "Set debug mode to enable\n")
        child.sendline("info -o vd -i 9")
        child.expect_exact(PROMPT)
        self.assertIn("CDW[0] : 0x000000e2\r\nCDW[12]: 0x000000e2\r\nCDW[14]: 0x00000009\r\n", child.before)
        self.says(child, "--debug -a disable", "Set debug mode to disable\n")
        child.sendline("info -o vd -i 9")
        child.expect_exact(PROMPT)
        self.assertNotIn("CDW", child.before)

    def test_ctrl_d_does_not_end_it_and_costs_nothing(self):
        child = self.shell()
        pid = descendant(child.pid, "qrx_cli")
        child.send(CTRL_D)
        time.sleep(0.3)
        before = processor_seconds(pid)
        time.sleep(1)
        self.assertLess(processor_seconds(pid) - before, 0.1)
        child.sendline("bogus")
        child.expect_exact("Invalid command 'bogus'!\r\n")
        child.sendline("exit")
        self.ends(child, 0)

    def test_a_closed_pipe_does_not_end_it_and_costs_nothing(self):
        with subprocess.Popen(["qrx_sim", "--", "qrx_cli"], env=ENVIRONMENT, stdin=subprocess.DEVNULL,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as process:
            pid = None
            try:
                pid = started_commands(process.pid)
                time.sleep(3)  # past start-up
                before = processor_seconds(pid)
                time.sleep(1)
                self.assertIsNone(process.poll())
                self.assertLess(processor_seconds(pid) - before, 0.1)
            finally:
                for victim in (pid, process.pid):
                    if victim:
                        os.kill(victim, 9)

    def test_the_longest_line_works(self):
        line = "help " + "x" * (LONGEST_LINE - 5)
        done = self.piped(line + "\nexit\n")
        self.assertIn(f"No help available for '{line[5:]}'\n", done.stdout)
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    def test_a_line_that_is_too_long_ends_the_program_with_a_message(self):
        done = self.piped("help " + "x" * (LONGEST_LINE - 4) + "\nversion\nexit\n")
        self.assertEqual((done.returncode, done.stderr), (1, "qrx_cli: the line is too long (at most 2047 bytes).\n"))
        self.assertNotIn("CLI Version: 1.0.0.1046\nSupport", done.stdout)

    def test_a_line_that_is_too_long_ends_it_in_a_terminal_too(self):
        child = self.shell()
        child.sendline("x" * (LONGEST_LINE + 1))
        self.assertIn("qrx_cli: the line is too long (at most 2047 bytes).\n", self.ends(child, 1))

    def test_a_line_of_too_many_words_is_refused_and_the_prompt_comes_back(self):
        words = "version" + " w" * (MOST_WORDS - 1)
        version = "CLI Version: 1.0.0.1046\nSupport Firmware Version: 1.0.x.1039 above\n"
        self.assertEqual(self.piped(words + "\nexit\n").stdout.count(version), 1)
        child = self.shell()
        self.says(child, words + " w", "Too many words (at most 64).\n")
        self.says(child, "version", version)

    def test_the_shell_goes_on_after_a_failed_driver_call_of_info(self):
        child = self.shell(simulator=("--fault", "command=0xe0,nth=4,errno=5"))
        child.sendline("info -o hba")
        child.expect_exact(PROMPT)
        self.assertIn("Unknown error (Status Code: 0xffffffff)\r\n", child.before)
        self.assertIn("Unable to get info of NVMe Controller 0, BDF:", child.before)
        self.says(child, "bogus", "Invalid command 'bogus'!\n")

    def test_messages_go_to_the_file_and_the_prompt_to_the_terminal(self):
        # The form `qrx_cli --vid=... -output file` is the one way to a shell with a file.
        directory = self.enterContext(tempfile.TemporaryDirectory())
        path = pathlib.Path(directory) / "out.txt"
        child = pexpect.spawn("qrx_sim", ["--", "qrx_cli", "--vid=0x7a51", "-output", str(path)], env=ENVIRONMENT,
                              timeout=TIMEOUT, encoding="ascii", dimensions=(50, 250))
        self.addCleanup(child.close, force=True)
        child.expect_exact(PROMPT)
        self.assertEqual(child.before, "")
        child.sendline("bogus")
        child.expect_exact("\r\n")
        child.expect_exact(PROMPT)
        self.assertEqual(child.before, "")
        child.sendline("exit")
        self.ends(child, 0)
        self.assertEqual(path.read_text(), "CLI Version: 1.0.0.1046\nWelcome to NVMe Command Line Interface.\n\n"
                                           "Invalid command 'bogus'!\n")


if __name__ == "__main__":
    unittest.main()
