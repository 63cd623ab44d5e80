"""What the completions of bash and zsh offer, asked of the shells themselves."""
import os
import pathlib
import subprocess
import tempfile
import unittest

import pexpect

BIN = pathlib.Path(os.environ["QRX_BIN"]).resolve()
MADE = BIN.parent / "pages"

# The word under the cursor is the last one; COMP_LINE is not used.
BASH = """
source "$1"; shift
function=_$1
COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1))
compopt() { :; }
$function
printf '%s\\n' "${COMPREPLY[@]}"
"""

# The builtins that hand words to the line editor work only inside it: these print them.
ZSH = """
completion=$1; shift
compadd() {
    local -a taken
    while [[ $1 == -* ]]; do
        case $1 in
        --) shift; break ;;
        -a) shift; print -l -- ${(P)1}; return ;;
        -d) shift 2 ;;
        *) shift ;;
        esac
    done
    print -l -- $@
}
compset() { :; }
_files() { print -r -- '<files>'; }
words=("$@"); CURRENT=$#
source $completion
"""


def bash(*words):
    done = subprocess.run(["bash", "--norc", "-c", BASH, "bash", MADE / "qrx_cli.bash", *words], check=False,
                          capture_output=True, text=True)
    assert done.stderr == "", done.stderr
    return done.stdout.split()


def zsh(*words):
    """All that is offered: zsh itself keeps what begins with the word."""
    done = subprocess.run(["zsh", "-f", "-c", ZSH, "zsh", MADE / "_qrx_cli", *words], check=False,
                          capture_output=True, text=True)
    assert done.stderr == "", done.stderr
    return done.stdout.split()


def command_words():
    return (MADE / "command_words.txt").read_text().split()


def listed_words():
    words = command_words()
    return words[:words.index("--debug")]


class Completion(unittest.TestCase):
    def test_bash_offers_the_commands_that_help_lists(self):
        self.assertEqual([word for word in bash("qrx_cli", "") if not word.isdigit()], listed_words())
        self.assertEqual(bash("qrx_cli", "3", ""), listed_words())
        self.assertEqual(bash("qrx_cli", "inf"), ["info"])
        self.assertEqual(bash("qrx_cli", "help", "vers"), ["version"])

    def test_bash_offers_the_options_of_the_command(self):
        self.assertEqual(bash("qrx_cli", "adapter", "-"),
                         ["-i", "--id", "-s", "--slot", "--list", "-n", "--SUBNQN", "-h", "--help", "-output"])
        self.assertEqual(bash("qrx_cli", "3", "ADAP", "--s"), ["--slot"])
        self.assertEqual(bash("qrx_cli", "hotk", "--ho"), ["--hotkey"])
        self.assertEqual(bash("qrx_cli", "i", "-"), ["-output"])  # of many
        self.assertEqual(bash("qrx_cli", "info", ""), [])

    def test_bash_offers_the_words_that_an_option_takes(self):
        self.assertEqual(bash("qrx_cli", "vd", "-a", ""), ["create", "delete"])
        self.assertEqual(bash("qrx_cli", "vd", "--action", "d"), ["delete"])
        self.assertEqual(bash("qrx_cli", "vd", "--action", "="), ["create", "delete"])
        self.assertEqual(bash("qrx_cli", "vd", "--action", "=", "c"), ["create"])
        self.assertEqual(bash("qrx_cli", "vd", "-i", ""), [])

    def test_bash_offers_files_where_an_option_takes_one(self):
        with tempfile.TemporaryDirectory() as directory:
            file = pathlib.Path(directory) / "image.bin"
            file.touch()
            for words in (("flash", "-f"), ("flash", "--file"), ("passthru", "--outputfile"), ("info", "-output"),
                          ("info", "-OUTPUT"), ("flash", "--file", "=")):
                self.assertEqual(bash("qrx_cli", *words, f"{directory}/im"), [str(file)], words)

    def test_bash_completes_the_simulator_and_the_program_in_it(self):
        self.assertEqual(bash("qrx_sim", "--sc"), ["--scenario"])
        self.assertEqual(bash("qrx_sim", "--scenario", "jb"), ["jbof"])
        self.assertEqual(bash("qrx_sim", "--scenario", "=", "jb"), ["jbof"])
        self.assertEqual(bash("qrx_sim", "--clock", "s"), ["stopped"])
        self.assertEqual(bash("qrx_sim", "ctl", "fail"), ["fail-drive"])
        self.assertEqual(bash("qrx_sim", "ct"), ["ctl"])
        self.assertEqual(bash("qrx_sim", "--", "qrx_cli", "vd", "-a", "c"), ["create"])
        self.assertEqual(bash("qrx_sim", "--scenario", "jbof", "--", "/opt/qrx_cli", "1", "inf"), ["info"])

    def test_bash_completes_at_the_prompt(self):
        shell = pexpect.spawn("bash", ["--norc", "--noprofile", "-i"], encoding="utf-8", timeout=20,
                              env=os.environ | {"TERM": "dumb", "PS1": "@ ", "INPUTRC": "/dev/null"})
        shell.expect("@ ")
        shell.sendline(f"source {MADE / 'qrx_cli.bash'}; echo rea''dy")
        shell.expect("ready\r\n")
        shell.send("qrx_cli ide\t")
        shell.expect("identify")
        shell.close(force=True)

    def test_zsh_offers_the_commands_that_help_lists(self):
        self.assertEqual([word for word in zsh("qrx_cli", "") if not word.isdigit()], listed_words())
        self.assertEqual(zsh("qrx_cli", "3", ""), listed_words())
        self.assertEqual(zsh("qrx_cli", "help", ""), listed_words())

    def test_zsh_offers_options_words_and_files(self):
        self.assertEqual(zsh("qrx_cli", "adapter", "-"),
                         ["-i", "--id", "-s", "--slot", "--list", "-n", "--SUBNQN", "-h", "--help", "-output"])
        self.assertEqual(zsh("qrx_cli", "3", "HOTK", "-"), ["-k", "--hotkey", "-h", "--help", "--waiveconfirmation", "-output"])
        self.assertEqual(zsh("qrx_cli", "vd", "-a", ""), ["create", "delete"])
        self.assertEqual(zsh("qrx_cli", "vd", "--action=c"), ["create", "delete"])
        self.assertEqual(zsh("qrx_cli", "vd", "-i", ""), [])
        for words in (("flash", "-f"), ("passthru", "--outputfile"), ("info", "-OUTPUT")):
            self.assertEqual(zsh("qrx_cli", *words, ""), ["<files>"], words)

    def test_zsh_completes_at_the_prompt(self):
        with tempfile.TemporaryDirectory() as home:
            shell = pexpect.spawn("zsh", ["-f", "-i"], encoding="utf-8", timeout=20,
                                  env=os.environ | {"TERM": "dumb", "HOME": home, "PS1": "@ "})
            shell.expect("@ ")
            shell.sendline(f"fpath=({MADE} $fpath); autoload -U compinit; compinit -u -D; echo rea''dy")
            shell.expect("ready\r\n")
            shell.send("qrx_cli ide\t")
            shell.expect("identify")
            shell.close(force=True)

    def test_both_shells_offer_the_same_for_every_command(self):
        for word in command_words():
            offered = bash("qrx_cli", word, "-")
            self.assertEqual(zsh("qrx_cli", word, "-"), offered, word)
            for option in offered:
                values = [value for value in zsh("qrx_cli", word, option, "") if value != "<files>"]
                if values and word not in ("help", "?"):
                    self.assertEqual(bash("qrx_cli", word, option, ""), values, f"{word} {option}")


if __name__ == "__main__":
    unittest.main()
