"""The manual pages and the documents tell of every command, what the built program tells."""
import os
import pathlib
import re
import subprocess
import unittest

BIN = pathlib.Path(os.environ["QRX_BIN"]).resolve()
MADE = BIN.parent / "pages"
DOCS = pathlib.Path(__file__).resolve().parents[2] / "docs"
ENVIRONMENT = os.environ | {"PATH": f"{BIN}:/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL": "C.UTF-8", "MANWIDTH": "1000",
                            "MANROFFOPT": "-rHY=0", "MANPAGER": "cat"}

PAGES = ("qrx_cli.8", "qrx_sim.1")


def output(*command, **arguments):
    return subprocess.run(command, env=ENVIRONMENT, check=True, capture_output=True, text=True, stdin=subprocess.DEVNULL,
                          **arguments).stdout


def rendered(page):
    """The page as a reader meets it, on lines so long that none is wrapped, without bold and italics."""
    return re.sub(r".\x08", "", output("man", "-l", MADE / page))


def plain(text):
    """With one blank, or one line end, where there are several; without those at the ends."""
    return "\n".join(line for line in (re.sub(r"\s+", " ", line).strip() for line in text.splitlines()) if line)


def sections(text, heading):
    """{name: text} of the parts of `text` that `heading` begins; its first group is the name."""
    found = list(re.finditer(heading, text, re.MULTILINE))
    ends = [match.start() for match in found[1:]] + [len(text)]
    return {match[1]: text[match.end():end] for match, end in zip(found, ends)}


def command_words():
    return (MADE / "command_words.txt").read_text().split()


class Pages(unittest.TestCase):
    maxDiff = None

    def test_the_words_are_those_of_the_help_page_and_the_hidden_ones(self):
        listed = re.findall(r"^(\S+) +:", output("qrx_sim", "--", "qrx_cli", "help"), re.MULTILINE)
        words = command_words()
        self.assertEqual(words[:len(listed)], listed)
        for hidden in words[len(listed):]:
            self.assertIn(f"No help available for '{hidden}'", output("qrx_sim", "--", "qrx_cli", "help", "--", hidden))

    def test_the_manual_holds_the_help_of_every_command_line_for_line(self):
        manual = sections(rendered("qrx_cli.8"), r"^   (\S+)$")
        for word in command_words():
            with self.subTest(word):
                help_page = output("qrx_sim", "--", "qrx_cli", word, "--help").removeprefix("Description")
                # Behind the help stands what the option scanner adds, and the next section.
                told = re.split(r"^ *(?:Words of|Also taken|SERVICE COMMANDS|EXIT STATUS)", manual.get(word, ""),
                                flags=re.MULTILINE)[0]
                self.assertEqual(plain(told), plain(help_page.removeprefix(":")))

    def test_the_reference_holds_the_help_of_every_command_line_for_line(self):
        reference = sections((MADE / "commands.md").read_text(), r"^### `(\S+)`$")
        self.assertEqual(list(reference), command_words())
        for word, text in reference.items():
            with self.subTest(word):
                help_page = output("qrx_sim", "--", "qrx_cli", word, "--help").removeprefix("Description").removeprefix(":")
                told = re.sub(r"^(\|.*|```.*|## Hidden|These work .*)$", "", text, flags=re.MULTILINE)
                self.assertEqual(plain(told), plain(help_page))

    def test_the_program_takes_every_option_of_the_reference(self):
        reference = sections((MADE / "commands.md").read_text(), r"^### `(\S+)`$")
        seen = 0
        for word, text in reference.items():
            spellings = [spelling for row in re.findall(r"^\| (`-.*?`) \|", text, re.MULTILINE)
                         for spelling in re.findall(r"`(-\S+)`", row)]
            seen += len(spellings)
            # Each on a line of the shell; a last one that the scanner does not know, so that it is seen to complain.
            lines = [f"{word} {spelling} /dev/null --none" for spelling in spellings] + [f"{word} --none", "exit", ""]
            done = subprocess.run(["qrx_sim", "--", "qrx_cli"], env=ENVIRONMENT, check=True, capture_output=True, text=True,
                                  input="\n".join(lines))
            self.assertIn(f"{word}: unrecognized option `--none'\n", done.stderr)
            for spelling in spellings:
                for refusal in (f"illegal option -- {spelling[1:]}\n", f"unrecognized option `{spelling}'",
                                f"option `{spelling}' is ambiguous"):
                    self.assertNotIn(refusal, done.stderr, word)
        self.assertGreater(seen, 100)

    def test_the_reference_names_the_commands_that_have_an_output_of_their_own(self):
        reference = (MADE / "commands.md").read_text()
        named = re.findall(r"`(\S+)`", re.search(r"^Every command but (.*) also takes", reference, re.MULTILINE)[1])
        having = [word for word, text in sections(reference, r"^### `(\S+)`$").items()
                  if re.search(r"^\| .*`--output`", text, re.MULTILINE)]
        self.assertEqual(named, having)

    def test_the_manual_of_the_simulator_holds_its_three_help_pages(self):
        manual = rendered("qrx_sim.1")
        for page in (("--help",), ("ctl", "help"), ("make-image", "--help")):
            for line in output("qrx_sim", *(page if page[0] != "ctl" else ("--", "qrx_sim", *page))).splitlines():
                for piece in re.split(r"  +|^Usage: |^Exit value: ", line):
                    self.assertIn(re.sub(r"\s+", " ", piece.strip()), re.sub(r"\s+", " ", manual))

    def test_the_manual_pages_have_their_sections_in_order(self):
        for page, wanted in (("qrx_cli.8", "NAME SYNOPSIS DESCRIPTION COMMANDS .*EXIT STATUS ENVIRONMENT FILES SEE ALSO"),
                             ("qrx_sim.1", "NAME SYNOPSIS DESCRIPTION OPTIONS .*EXIT STATUS EXAMPLES ENVIRONMENT SEE ALSO")):
            headings = re.findall(r"^([A-Z][A-Z ]+)$", rendered(page), re.MULTILINE)
            self.assertRegex(" ".join(headings), f"^{wanted}$")

    def test_man_groff_and_mandoc_read_the_pages_without_a_warning(self):
        for page in PAGES:
            for reader in (("man", "--warnings", "-l", MADE / page), ("groff", "-man", "-ww", "-Tutf8", "-z", MADE / page),
                           ("mandoc", "-T", "lint", MADE / page)):
                done = subprocess.run(reader, env=ENVIRONMENT | {"MANWIDTH": "80"}, check=False, capture_output=True, text=True)
                said = done.stdout if reader[0] == "mandoc" else ""
                self.assertEqual((done.returncode, said, done.stderr), (0, "", ""), reader)

    def test_every_command_has_its_exit_values(self):
        rows = re.findall(r"^\| ((?:`\S+`(?:, )?)+) \| (\S.*) \|$", (DOCS / "exit-codes.md").read_text(), re.MULTILINE)
        told = [word for words, _ in rows for word in re.findall(r"`(\S+?)`", words)]
        self.assertEqual([word for word in command_words() if told.count(word) != 1], [])


if __name__ == "__main__":
    unittest.main()
