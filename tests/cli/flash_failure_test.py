"""`flash` on the simulated controller, with each command failing in each way: nothing follows a failure.

    QRX_BIN=build/release/bin /usr/bin/python3 flash_failure_test.py [FlashFailure.test_...]
"""
import functools
import re
import unittest
import zlib

from flash_lab import (DISK_FAILED, DISK_SUCCESS, DOWNLOAD_FAILED, END_OF, KINDS_THAT_DO_NOT, KINDS_THAT_FAIL, MOST, PD,
                       PROHIBITED, RAW_SIZE, SEGMENT, STARTED, STATUS_LINES, SUCCESS, FlashTest, at_once,
                       commit_to_controller, commit_to_disk, controller_segments, disk_segments, failed_with, flashed,
                       in_a_lab, lines_of_percentages, made_image, plain, raw_step, slot_line, startup, untouched)


class FlashFailure(FlashTest):
    def each_failure(self, device, image, words, sent, expected, flash_size=MOST, kinds=None, places=None):
        """A failure of each kind at each command of an update; expected(place, status) gives exit value and lines.

        Nothing is sent after the failure. The device holds what it held before, and waits with what reached it.
        """
        cases = [(place, kind) for kind in (kinds or KINDS_THAT_FAIL) for place in (places or range(len(sent)))]
        outcomes = at_once(functools.partial(flashed, image, words, [f"nth={startup() + place + 1},{kind}"], flash_size)
                           for place, kind in cases)
        for (place, kind), outcome in zip(cases, outcomes):
            status = KINDS_THAT_FAIL[kind]
            exit_value, lines = expected(place, status)
            reached = sum(int(re.search(r"(?:out|data)=(\d+)$", text)[1]) for text in sent[:place] if "=0x11 " in text
                          or text.startswith("firmware-download"))
            self.outcome(outcome, exit_value, lines, sent[:place + 1], ["success"] * place + [END_OF[status]],
                         self.keeps(device, reached), (place, kind))

    def each_fault_without_effect(self, image, words, sent, lines, slots):
        """Nor are these told to fail: an answer that does not exist cannot be damaged."""
        cases = [f"nth={startup() + place + 1},{kind}" for kind in KINDS_THAT_DO_NOT for place in range(len(sent))]
        for case, outcome in zip(cases, at_once(functools.partial(flashed, image, words, [case]) for case in cases)):
            self.outcome(outcome, 0, lines, sent, ["success"] * len(sent), slots, case)

    @staticmethod
    def controllers_failure(segments, place, status):
        """What the update of a controller says and returns. The status of a failed segment is not told."""
        if place < segments:
            return 1, [STARTED, failed_with(1)]
        return status, [STARTED, PROHIBITED if status == -1 else failed_with(status)]

    def test_a_failure_at_each_command_of_a_controllers_update(self):
        image = plain(3 * SEGMENT + 100)
        sent = [*controller_segments(image), commit_to_controller(2, 1)]
        self.each_failure("controller 0", image, "-o hba -s 2 -c 1", sent,
                          functools.partial(self.controllers_failure, 4))

    def test_a_failure_at_each_command_of_a_controllers_update_with_action_three(self):
        image = plain(2 * SEGMENT)
        sent = [*controller_segments(image), commit_to_controller(2, 3)]
        self.each_failure("controller 0", image, "-o hba -s 2 -c 3", sent,
                          functools.partial(self.controllers_failure, 2))

    def test_a_failure_at_each_command_of_a_raw_update(self):
        image = made_image("--raw", "no-digit", "--revision", "2.6.0.7")
        sent = [*controller_segments(image), raw_step(image), commit_to_controller(1, 1)]
        segments = len(sent) - 2
        expected = functools.partial(self.controllers_failure, segments)
        self.each_failure("controller 0", image, "-o hba -t raw", sent, expected, RAW_SIZE, ["status=0x706"])
        self.each_failure("controller 0", image, "-o hba -t raw", sent, expected, RAW_SIZE, None,
                          [0, 1, segments - 1, segments, segments + 1])

    def test_a_failure_at_each_command_of_a_disks_update(self):
        image = plain(3 * SEGMENT + 100)
        sent = [*disk_segments(image), commit_to_disk(2, 1)]
        percentages = lines_of_percentages(image)

        def expected(place, status):
            if place < 4:  # the exit value has the low byte of what was sent: 0 after whole segments
                return (place + 1) * SEGMENT if place < 3 else len(image), [*percentages[:place + 1],
                                                                            STATUS_LINES[status], *DOWNLOAD_FAILED]
            return status, [*percentages, STATUS_LINES[status], DISK_FAILED]

        self.each_failure(f"PD {PD}", image, f"-o pd -i {PD} -s 2 -c 1", sent, expected)

    def test_faults_that_damage_answers_do_not_touch_an_update(self):
        image = plain(2 * SEGMENT)
        self.each_fault_without_effect(
            image, "-o hba -s 2 -c 1", [*controller_segments(image), commit_to_controller(2, 1)], [STARTED, SUCCESS],
            self.holds("controller 0", "2.4.1063 runs, slot 1, next slot 2", slot_line(2, image)))
        self.each_fault_without_effect(
            image, f"-o pd -i {PD} -s 2 -c 1", [*disk_segments(image), commit_to_disk(2, 1)],
            [*lines_of_percentages(image), DISK_SUCCESS],
            self.holds(f"PD {PD}", "LAB1.0.4 runs, slot 1, next slot 2", slot_line(2, image)))

    def test_whatever_befalls_the_start_a_commit_follows_the_whole_image_or_does_not_come(self):
        image = plain(2 * SEGMENT)
        paths = (("-o hba -s 2 -c 1", [*controller_segments(image), commit_to_controller(2, 1)], SUCCESS,
                  self.holds("controller 0", "2.4.1063 runs, slot 1, next slot 2", slot_line(2, image))),
                 (f"-o pd -i {PD} -s 2 -c 1", [*disk_segments(image), commit_to_disk(2, 1)], DISK_SUCCESS,
                  self.holds(f"PD {PD}", "LAB1.0.4 runs, slot 1, next slot 2", slot_line(2, image))))
        kinds = (*KINDS_THAT_FAIL, *KINDS_THAT_DO_NOT)
        seen = set()
        for words, sent, success, slots in paths:
            cases = [f"nth={nth},{kind}" for kind in kinds for nth in range(1, startup() + 1)]
            outcomes = at_once(functools.partial(flashed, image, words, [case]) for case in cases)
            for case, outcome in zip(cases, outcomes):
                # A controller that was lost at the start makes the start shorter, or there is none to be updated.
                ours = [text for text in outcome.sent if re.match("firmware-|tunnel-", text)]
                if ours:
                    self.assertEqual((ours, outcome.lines[-1], outcome.exit), (sent, success, 0), case)
                    self.assertEqual(outcome.slots, untouched() | slots, case)
                else:
                    self.assertNotIn(success, outcome.lines, case)
                    self.assertEqual(outcome.slots, untouched(), case)
                seen.add(bool(ours))
        self.assertEqual(seen, {True, False})

    def test_an_update_after_a_failed_one_begins_anew(self):
        image = made_image("--revision", "2.5.0.1100", "--size", str(3 * SEGMENT))

        def twice(words, lab):
            lab.flash(made_image("--revision", "9.9.0.9", "--size", str(4 * SEGMENT)), words,
                      [f"nth={startup() + 3},errno=EIO"])
            return lab.flash(image, words)

        controller, disk = at_once(functools.partial(in_a_lab, functools.partial(twice, words))
                                   for words in ("-o hba -s 2 -c 1", f"-o pd -i {PD} -s 2 -c 1"))
        told = f"slot 2: 2.5.1100, version 2.5.0.1100, {len(image)} bytes, CRC 0x{zlib.crc32(image):08x}"
        self.outcome(controller, 0, [STARTED, SUCCESS], [*controller_segments(image), commit_to_controller(2, 1)],
                     ["success"] * 4, self.holds("controller 0", "2.4.1063 runs, slot 1, next slot 2", told))
        self.outcome(disk, 0, [*lines_of_percentages(image), DISK_SUCCESS],
                     [*disk_segments(image), commit_to_disk(2, 1)], ["success"] * 4,
                     self.holds(f"PD {PD}", "LAB1.0.4 runs, slot 1, next slot 2", told))

    def test_a_drive_puts_an_image_together_by_offset_and_refuses_gaps_and_overlaps(self):
        image = plain(4 * SEGMENT)

        def send(lab, *pieces):
            ends = []
            for piece in pieces:
                (lab.directory / "piece").write_bytes(image[piece * SEGMENT:(piece + 1) * SEGMENT])
                lab.run("qrx_cli", "passthru", "-i", str(PD), "-o", "0x11", "-r", "write", "-d", str(SEGMENT),
                        "--cdw10=1023", f"--cdw11={piece * 1024}", "--inputfile", "piece", options=["--trace", "trace"])
                ends.append(lab.trace()[-1][1])
            lab.run("qrx_cli", "passthru", "-i", str(PD), "-o", "0x10", "-r", "none", f"--cdw10={2 | 1 << 3}",
                    options=["--trace", "trace"])
            return ends + [lab.trace()[-1][1]], lab.slots()

        taken = untouched() | self.holds(f"PD {PD}", "LAB1.0.4 runs, slot 1, next slot 2", slot_line(2, image))
        good, overlap, gap = "success", "overlapping range(0x114)", "invalid firmware image(0x107)"
        for pieces, ends, slots in (((2, 0, 3, 1), [good] * 5, taken),
                                    ((0, 1, 1, 2, 3), [good, good, overlap, good, good, good], taken),
                                    ((0, 1, 3), [good] * 3 + [gap], untouched()),
                                    ((1, 2, 3), [good] * 3 + [gap], untouched())):
            self.assertEqual(in_a_lab(lambda lab, pieces=pieces: send(lab, *pieces)), (ends, slots), pieces)

    def test_a_failure_at_each_command_of_a_query(self):
        failures = (["Get Firmware Slot Count Fail"], ["Slot count: 3", "Get Firmware Slot Information Fail"])
        for words in ("-o hba -q firmware", f"-o pd -i {PD} -q firmware"):
            cases = [(place, kind) for place in range(2) for kind in KINDS_THAT_FAIL]
            outcomes = at_once(functools.partial(flashed, None, words, [f"nth={startup() + place + 1},{kind}"])
                               for place, kind in cases)
            for (place, kind), outcome in zip(cases, outcomes):
                lines = [*failures[place][:-1], STATUS_LINES[KINDS_THAT_FAIL[kind]], failures[place][-1]]
                self.assertEqual((outcome.exit, outcome.lines, len(outcome.sent)), (0, lines, place + 1), (words, kind))
                self.assertEqual(outcome.slots, untouched())


if __name__ == "__main__":
    unittest.main()
