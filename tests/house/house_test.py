"""The checks of the house see what they are there to see."""
import pathlib
import sys
import tempfile
import unittest
import unittest.mock

sys.dont_write_bytecode = True
import house


class House(unittest.TestCase):
    def breaches(self, check, tree):
        """What `check` says of a project that holds the files of `tree`: {name: text}."""
        with tempfile.TemporaryDirectory() as directory:
            root = pathlib.Path(directory)
            for name, text in tree.items():
                (root / name).parent.mkdir(parents=True, exist_ok=True)
                (root / name).write_text(text)
            return list(check(root))

    def include(self, name, target):
        return self.breaches(house.check_includes, {target: "", name: f'#include "{target}"\n'})

    def test_a_file_may_include_its_own_floor_and_those_below(self):
        for name, target in (("api/src/device/linux/a.cpp", "api/src/device/common/b.h"),
                             ("api/src/device/common/a.h", "api/src/interface/wire/b.h"),
                             ("api/src/device/common/a.h", "api/src/function/lock/b.h"),
                             ("api/src/function/osvolume/a.cpp", "api/src/interface/b.h"),
                             ("cli/Functions/simple/a.cpp", "cli/Public/b.h"),
                             ("cli/qxsetup/a.cpp", "cli/Functions/simple/b.h"),
                             ("sim/firmware/a.h", "api/src/interface/wire/b.h"),
                             ("sim/launcher/a.cpp", "sim/transport/b.h"),
                             ("tests/unit/a.cpp", "cli/qxsetup/b.h"),
                             ("bench/a.cpp", "sim/firmware/b.h")):
            self.assertEqual(self.include(name, target), [], f"{name} including {target}")

    def test_a_floor_above_is_refused(self):
        for name, target, floor, below in (("api/src/device/linux/a.cpp", "api/src/interface/b.h", 1, 2),
                                           ("api/src/function/lock/a.h", "api/src/device/common/b.h", 0, 1),
                                           ("api/src/interface/a.cpp", "cli/Public/b.h", 2, 3),
                                           ("cli/Public/a.h", "cli/Functions/b.h", 3, 4),
                                           ("cli/Functions/a.cpp", "cli/qxsetup/b.h", 4, 5),
                                           ("sim/firmware/a.h", "sim/transport/b.h", 0, 1),
                                           ("sim/transport/a.h", "sim/launcher/b.h", 1, 2)):
            self.assertEqual(self.include(name, target), [f"{name}:1: '{target}' is on floor {below}, above floor {floor}"])

    def test_the_program_and_the_simulator_stay_apart(self):
        self.assertEqual(self.include("cli/Public/a.h", "sim/firmware/b.h"),
                         ["cli/Public/a.h:1: 'sim/firmware/b.h' stands on no floor that a program file may include"])
        self.assertEqual(self.include("sim/firmware/a.h", "api/src/interface/b.h"),
                         ["sim/firmware/a.h:1: the simulator may use its own files and the wire records alone"])

    def test_a_program_file_in_no_known_folder_is_refused(self):
        self.assertEqual(self.include("cli/other/a.h", "cli/Public/b.h"), ["cli/other/a.h:1: this file stands on no floor"])

    def test_an_include_that_is_not_written_from_the_root_is_refused(self):
        self.assertEqual(self.breaches(house.check_includes, {"cli/Public/b.h": "", "cli/Public/a.h": '#include "b.h"\n'}),
                         ["cli/Public/a.h:1: 'b.h' is no file of the project, written from its root"])

    def test_ioctl_outside_its_home_is_refused(self):
        call = '#include "api/src/device/linux/a.h"\nint x = ioctl(1, 2);  // why\n'
        self.assertEqual(self.breaches(house.check_includes, {"api/src/device/linux/a.h": call}), [])
        self.assertEqual(self.breaches(house.check_includes,
                                       {"api/src/device/linux/a.h": "", "cli/Public/a.cpp": call + "// ioctl() is not called\n"}),
                         ["cli/Public/a.cpp:2: only api/src/device/linux/ talks to the driver"])

    def test_a_tree_without_includes_is_no_tree(self):
        self.assertEqual(self.breaches(house.check_includes, {"cli/Public/a.h": ""}), ["no include was found at all"])

    def test_tabs_and_blanks_at_line_ends_are_seen(self):
        self.assertEqual(self.breaches(house.check_text, {"a.md": "one\ttwo\nthree \nfour"}),
                         ["a.md:1: a tab", "a.md:2: a blank at the end of the line", "a.md: no line end at the end"])
        self.assertEqual(self.breaches(house.check_text, {"a.md": "one\n", "tests/cli/a.transcript": "blank \n"}), [])

    TREE = {
        "cli/Functions/a.cpp": "int doA(int argc, char** argv, PCommand_Info pCmdInfo)\n{}\n",
        "cli/Functions/b.cpp": "int doB(int argc, char** argv, PCommand_Info pCmdInfo)\n{}\n",
        "cli/Functions/c.cpp": "int doC(int argc, char** argv, PCommand_Info pCmdInfo)\n{}\n",
        "cli/qxsetup/command_table.cpp": 'general[] = {commandRow("a", doA, h, s)};\n'
                                         'Command_Info hiddenCmdTableV1[] = {commandRow("aa", doA, h, s)};\n',
        "tests/program/rows_b.cpp": 'commandRow(\n    "b", doB, h, s)\n',
    }
    LIST = ("| `a` | listed | `doA` | `cli/Functions/a.cpp` |", "| `aa` | hidden | `doA` | `cli/Functions/a.cpp` |",
            "| `b` | tests | `doB` | `cli/Functions/b.cpp` |", "| | never | `doC` | `cli/Functions/c.cpp` |")

    def commands(self, lines, linked=("doA", "doB", "doC")):
        """What is said of a project with these lines in its list of commands, and these handlers in its program."""
        with unittest.mock.patch.object(house, "linked_handlers", lambda program: set(linked)):
            text = "\n".join(["Text.", *house.LIST_HEAD, *lines, "", "| not | of | the | list |"])
            return self.breaches(lambda root: house.check_commands(root, "program"),
                                 {**self.TREE, house.LIST_HOME: text + "\n"})

    def test_the_list_of_commands_is_that_of_the_tables(self):
        self.assertEqual(self.commands(self.LIST), [])
        self.assertEqual(self.commands(self.LIST[1:]), [f"docs/architecture.md: missing: {self.LIST[0]}"])
        self.assertEqual(self.commands([*self.LIST, "| `d` | listed | `doA` | `cli/d.cpp` |"]),
                         ["docs/architecture.md: not so: | `d` | listed | `doA` | `cli/d.cpp` |"])
        self.assertEqual(self.commands(self.LIST[::-1]),
                         ["docs/architecture.md: the list of commands is not in the order of the tables"])
        self.assertEqual(self.breaches(lambda root: house.check_commands(root, "program"),
                                       {**self.TREE, house.LIST_HOME: "Text.\n"}),
                         ["docs/architecture.md: the list of commands is missing"])

    def test_a_handler_of_the_list_that_the_program_lacks_is_seen(self):
        self.assertEqual(self.commands(self.LIST, ("doA", "doB")), ["docs/architecture.md: doC is not in the program"])


if __name__ == "__main__":
    unittest.main()
