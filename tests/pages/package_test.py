"""The Debian package: what is in it, what it says of itself, and that its programs run."""
import os
import pathlib
import re
import subprocess
import tempfile
import unittest

BIN = pathlib.Path(os.environ["QRX_BIN"]).resolve()
ROOT = pathlib.Path(__file__).resolve().parents[2]

CONTENT = """
usr/bin/qrx_cli
usr/bin/qrx_sim
usr/libexec/qrx_cli/libqrx_sim_preload.so
usr/share/bash-completion/completions/qrx_cli
usr/share/bash-completion/completions/qrx_sim
usr/share/man/man1/qrx_sim.1
usr/share/man/man8/qrx_cli.8
usr/share/zsh/site-functions/_qrx_cli
""".split()

# What the programs may need, and nothing else.
LIBRARIES = ["libc6", "libedit2", "libgcc-s1", "libstdc++6"]


def output(*command, **arguments):
    return subprocess.run(command, check=True, capture_output=True, text=True, stdin=subprocess.DEVNULL, **arguments).stdout


class Package(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        directory = tempfile.TemporaryDirectory(prefix="package-")
        cls.addClassCleanup(directory.cleanup)
        cls.place = pathlib.Path(directory.name)
        output("cpack", "-B", cls.place / "made", "--config", BIN.parent / "CPackConfig.cmake", cwd=cls.place)
        cls.package, = (cls.place / "made").glob("*.deb")
        cls.unpacked = cls.place / "unpacked"
        output("dpkg-deb", "-x", cls.package, cls.unpacked)

    def field(self, name):
        return output("dpkg-deb", "-f", self.package, name).strip()

    def test_the_package_holds_programs_manual_pages_and_completions(self):
        files = sorted(path.relative_to(self.unpacked).as_posix() for path in self.unpacked.rglob("*") if not path.is_dir())
        self.assertEqual(files, CONTENT)

    def test_the_package_says_what_it_is_and_what_it_needs(self):
        version = re.search(r"^project\(qrx_cli VERSION (\S+)", (ROOT / "CMakeLists.txt").read_text(), re.MULTILINE)[1]
        architecture = output("dpkg", "--print-architecture").strip()
        self.assertEqual(self.package.name, f"qrx-cli_{version}_{architecture}.deb")
        self.assertEqual([self.field(name) for name in ("Package", "Version", "Section", "Priority", "Maintainer")],
                         ["qrx-cli", version, "admin", "optional", "The qrx_cli developers <developers@qrx-cli.example>"])
        self.assertTrue(self.field("Description").startswith("manage a PCIe NVMe RAID controller\n"))
        needed = self.field("Depends").split(", ")
        self.assertEqual(sorted(library.split()[0] for library in needed), LIBRARIES)
        self.assertTrue(all(re.fullmatch(r"\S+ \(>= [^)]+\)", library) for library in needed), needed)

    def test_the_package_runs_no_script_when_it_is_installed(self):
        output("dpkg-deb", "-e", self.package, self.place / "control")
        self.assertEqual(sorted(path.name for path in (self.place / "control").iterdir()), ["control", "md5sums"])

    def test_nothing_in_the_package_tells_of_the_machine_that_made_it(self):
        for path in self.unpacked.rglob("*"):
            if path.is_file():
                content = path.read_bytes()
                for place in (ROOT, BIN.parent, pathlib.Path.home(), os.uname().nodename):
                    if len(str(place)) > 3:
                        self.assertNotIn(str(place).encode(), content, path.name)
                if content.startswith(b"\x7fELF"):
                    sections = output("readelf", "-SWd", path)
                    for word in (".note.gnu.build-id", ".debug_info", ".symtab", "RUNPATH", "RPATH"):
                        self.assertNotIn(word, sections, path.name)

    def test_the_unpacked_programs_run(self):
        bin_dir = self.unpacked / "usr/bin"
        environment = os.environ | {"PATH": f"{bin_dir}:/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL": "C"}
        self.assertRegex(output(bin_dir / "qrx_cli", "version", env=environment), r"(?m)^CLI Version: 1\.0\.0\.1046$")
        self.assertRegex(output(bin_dir / "qrx_sim", "--version", env=environment), r"^qrx_sim \S+\n$")
        for way in ("seccomp", "preload"):
            shown = output(bin_dir / "qrx_sim", "--transport", way, "--", "qrx_cli", "info", "-o", "ns", env=environment)
            self.assertRegex(shown, r"^NS ID: +1\n", way)
        page = output("man", "-l", self.unpacked / "usr/share/man/man8/qrx_cli.8", env=environment)
        self.assertIn("qrx_cli - manage a PCIe NVMe RAID controller", page)

    def test_the_unpacked_completion_is_found_by_the_name_of_its_program(self):
        completions = self.unpacked / "usr/share/bash-completion/completions"
        for program in ("qrx_cli", "qrx_sim"):
            self.assertIn(f"complete -F _{program} {program}",
                          output("bash", "--norc", "-c", 'source "$1"; complete -p', "bash", completions / program))


if __name__ == "__main__":
    unittest.main()
