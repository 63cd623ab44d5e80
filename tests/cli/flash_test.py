"""`flash` on the simulated controller: what each update sends, prints and returns, and what is in the slots afterwards.

    QRX_BIN=build/release/bin /usr/bin/python3 flash_test.py [Flash.test_...]
"""
import functools
import struct
import unittest
import zlib

from flash_lab import (DISK_FAILED, DISK_SUCCESS, DISK_SUCCESS_NOW, DOWNLOAD_FAILED, END_OF, MOST, PD, RAW_SIZE,
                       SEGMENT, STARTED, START_REFUSED, STATUS_LINES, SUCCESS, FlashTest, as_controller_gets_it, at_once,
                       commit_to_controller, commit_to_disk, controller_segments, disk_segments, failed_with, flashed,
                       in_a_lab, lines_of_percentages, made_image, plain, raw_step, slot_line)


class Flash(FlashTest):
    def test_images_of_every_size_reach_the_controller_in_whole_segments(self):
        sizes = (1, 3, 4, 4095, 4096, 4097, 5000, 8192, MOST)
        for size, outcome in zip(sizes, at_once(lambda image=plain(size): flashed(image, "-o hba -s 2 -c 1")
                                                for size in sizes)):
            sent = [*controller_segments(plain(size)), commit_to_controller(2, 1)]
            self.outcome(outcome, 0, [STARTED, SUCCESS], sent, ["success"] * len(sent),
                         self.holds("controller 0", "2.4.1063 runs, slot 1, next slot 2",
                                    slot_line(2, as_controller_gets_it(plain(size)))), size)

    def test_what_the_controller_cannot_take_is_refused_before_anything_is_sent(self):
        empty, large, unlimited = at_once([lambda: flashed(b"", "-o hba -s 2 -c 1"),
                                           lambda: flashed(plain(MOST + 1), "-o hba -s 2 -c 1"),
                                           lambda: flashed(plain(MOST + 1), "-o hba -s 2 -c 1", flash_size=0)])
        self.outcome(empty, 1, [STARTED, failed_with(1)], [], [])
        self.outcome(large, 1, [START_REFUSED], [], [])
        sent = [*controller_segments(plain(MOST + 1)), commit_to_controller(2, 1)]
        self.outcome(unlimited, 0, [STARTED, SUCCESS], sent, ["success"] * 7,
                     self.holds("controller 0", "2.4.1063 runs, slot 1, next slot 2",
                                slot_line(2, as_controller_gets_it(plain(MOST + 1)))))

    def test_images_of_every_size_reach_a_disk_to_their_exact_end(self):
        for size in (4, 4096, 5000, 8192, MOST, MOST + 4):
            image = plain(size)
            sent = [*disk_segments(image), commit_to_disk(2, 1)]
            self.outcome(flashed(image, f"-o pd -i {PD} -s 2 -c 1"), 0, [*lines_of_percentages(image), DISK_SUCCESS],
                         sent, ["success"] * len(sent),
                         self.holds(f"PD {PD}", "LAB1.0.4 runs, slot 1, next slot 2", slot_line(2, image)), size)

    def test_a_disk_refuses_a_tail_that_is_no_whole_number_of_dwords(self):
        for size in (1, 3, 4095, 4097, MOST + 1):
            image = plain(size)
            sent = disk_segments(image)  # and no commit
            self.outcome(flashed(image, f"-o pd -i {PD} -s 2 -c 1"), size,
                         [*lines_of_percentages(image), STATUS_LINES[2], *DOWNLOAD_FAILED], sent,
                         ["success"] * (len(sent) - 1) + ["invalid field(0x2)"],
                         self.keeps(f"PD {PD}", (len(sent) - 1) * SEGMENT), size)

    def test_an_empty_file_is_not_sent_to_a_disk(self):
        self.outcome(flashed(b"", f"-o pd -i {PD} -s 2 -c 1"), 1, ["file image is empty"], [], [])

    def test_a_new_image_runs_after_the_reset(self):
        image = made_image("--revision", "2.5.0.1100", "--size", "5000")
        told = f"2.5.1100, version 2.5.0.1100, 5000 bytes, CRC 0x{zlib.crc32(image):08x}"

        def update(words, of_disk, lab):
            first = lab.flash(image, words)
            before = lab.query(of_disk), lab.revision(), lab.disk_revision()
            lab.power_cycle()
            return first, before, (lab.query(of_disk), lab.revision(), lab.disk_revision())

        controller, disk = at_once(
            functools.partial(in_a_lab, functools.partial(update, words, of_disk))
            for words, of_disk in (("-o hba -s 2 -c 1", False), (f"-o pd -i {PD} -s 3 -c 1", True)))
        self.outcome(controller[0], 0, [STARTED, SUCCESS],
                     [*controller_segments(image), commit_to_controller(2, 1)], ["success"] * 3,
                     self.holds("controller 0", "2.4.1063 runs, slot 1, next slot 2", f"slot 2: {told}"))
        self.assertEqual(controller[1:], (
            (["Slot count: 3", "Active Slot: 1, Next Active Slot: 2"], "2.4.1063", "LAB1.0.4"),
            (["Slot count: 3", "Active Slot: 2, Next Active Slot: 0"], "2.5.1100", "LAB1.0.4")))
        self.outcome(disk[0], 0, [*lines_of_percentages(image), DISK_SUCCESS],
                     [*disk_segments(image), commit_to_disk(3, 1)], ["success"] * 3,
                     self.holds(f"PD {PD}", "LAB1.0.4 runs, slot 1, next slot 3", f"slot 3: {told}"))
        self.assertEqual(disk[1:], (
            (["Slot count: 3", "Active Slot: 1, Next Active Slot: 3"], "2.4.1063", "LAB1.0.4"),
            (["Slot count: 3", "Active Slot: 3, Next Active Slot: 0"], "2.4.1063", "2.5.1100")))

    def test_raw_images_of_both_layouts_are_checked_and_committed_to_slot_one(self):
        def update(image, lab):
            outcome = lab.flash(image, "-o hba -t raw")
            lab.power_cycle()
            return outcome, lab.revision()

        images = [made_image("--raw", layout, "--revision", "2.6.0.7") for layout in ("digit", "no-digit")]
        for image, (outcome, revision) in zip(images, at_once(
                functools.partial(in_a_lab, functools.partial(update, image), RAW_SIZE) for image in images)):
            sent = [*controller_segments(image), raw_step(image), commit_to_controller(1, 1)]
            told = f"slot 1: 2.6.0.7, version 2.6.0.7, {RAW_SIZE} bytes, CRC 0x{zlib.crc32(image):08x}"
            self.outcome(outcome, 0, [STARTED, SUCCESS], sent, ["success"] * len(sent),
                         self.holds("controller 0", "2.4.1063 runs, slot 1, next slot 1", told))
            self.assertEqual(revision, "2.6.0.7")

    def test_raw_images_that_are_wrong_are_refused_before_anything_is_sent(self):
        image = made_image("--raw", "digit", "--revision", "2.6.0.7")

        def balanced(changed):
            """With the sum of its words at 0 again."""
            total = sum(word for word, in struct.iter_unpack("<I", changed))
            changed[60:64] = struct.pack("<I", (struct.unpack_from("<I", changed, 60)[0] - total) & 0xFFFFFFFF)
            return bytes(changed)

        mixed = bytearray(image)
        mixed[0x40000:0x42000] = made_image("--raw", "no-digit", "--revision", "2.6.0.7")[0x40000:0x42000]
        body = bytearray(image)
        body[0x60080] ^= 1
        beyond = bytearray(image)
        beyond[0x8002C:0x80030] = struct.pack("<I", 0xFFFFFFC0)
        flipped = bytearray(image)
        flipped[100] ^= 1
        wrong = {"layouts mix": balanced(mixed), "a body differs from its CRC": balanced(body),
                 "a body ends beyond the file": balanced(beyond), "the sum is not 0": bytes(flipped),
                 "the size is no multiple": image + bytes(4), "it ends before its headers": bytes(SEGMENT),
                 "it is empty": b""}
        self.assertEqual(balanced(bytearray(image)), image)
        for (why, _), outcome in zip(wrong.items(), at_once(
                functools.partial(flashed, image, "-o hba -t raw", (), 2 * RAW_SIZE) for image in wrong.values())):
            self.outcome(outcome, 1, [STARTED, failed_with(1)], [], [], why=why)

    def test_a_raw_image_above_the_most_is_refused(self):
        outcome = flashed(made_image("--raw", "digit"), "-o hba -t raw", flash_size=RAW_SIZE - 1)
        self.outcome(outcome, 1, [START_REFUSED], [], [])

    @staticmethod
    def answer(slot, action, needs_reset):
        """The status of a device with three slots, of which the first one runs and the others are empty."""
        if action > 3:
            return 0x2
        if slot > 3 or (slot == 0 and action == 2):
            return 0x106
        if action == 2 and slot != 1:
            return 0x107
        return 0x111 if action == 3 and needs_reset else 0

    def every_commit(self, target, image, device, running, needs_reset, check):
        """All actions with all slots; `check` tells of the printing and the sending."""
        pairs = [(slot, action) for action in range(8) for slot in range(8)]
        outcomes = at_once(functools.partial(flashed, image, f"{target} -s {slot} -c {action}")
                           for slot, action in pairs)
        for (slot, action), outcome in zip(pairs, outcomes):
            status = self.answer(slot, action, needs_reset)
            slots = self.keeps(device, len(image) if action != 2 else 0)  # a bad slot or action leaves it there
            if status in (0, 0x111):
                taken = slot or 2  # the device chooses the first empty one
                revision = f"x{zlib.crc32(image) & 0xFFFFFFF:07x}"
                head = f"{running} runs, slot 1" + ("" if action == 0 else f", next slot {taken}")
                if action == 3 and not needs_reset:
                    head = f"{revision} runs, slot {taken}"
                slots = self.holds(device, head, *([] if action == 2 else [slot_line(taken, image)]))
            check(slot, action, status, outcome, slots)

    def test_every_action_and_slot_on_the_controller(self):
        image = plain(8192)

        def check(slot, action, status, outcome, slots):
            sent = [*(controller_segments(image) if action != 2 else []), commit_to_controller(slot, action)]
            good = status in (0, 0x111)
            self.outcome(outcome, 0 if good else status, [STARTED, SUCCESS if good else failed_with(status)], sent,
                         ["success"] * (len(sent) - 1) + [END_OF[status]], slots, (slot, action))

        self.every_commit("-o hba", image, "controller 0", "2.4.1063", True, check)

    def test_every_action_and_slot_on_a_disk(self):
        image = plain(5000)

        def check(slot, action, status, outcome, slots):
            downloads = action != 2
            lines = lines_of_percentages(image) if downloads else []
            sent = [*(disk_segments(image) if downloads else []), commit_to_disk(slot, action)]
            good = [DISK_SUCCESS_NOW if action == 3 else DISK_SUCCESS]
            last = good if status == 0 else [STATUS_LINES[status], DISK_FAILED]
            self.outcome(outcome, status, lines + last, sent, ["success"] * (len(sent) - 1) + [END_OF[status]], slots,
                         (slot, action))

        self.every_commit(f"-o pd -i {PD}", image, f"PD {PD}", "LAB1.0.4", False, check)

    def test_a_boot_partition_reaches_a_disk_and_not_the_controller(self):
        controller, disk = at_once([lambda: flashed(None, "-o hba -s 1 -c 2 -b 1"),
                                    lambda: flashed(None, f"-o pd -i {PD} -s 1 -c 2 -b 1")])
        self.outcome(controller, 0, [STARTED, SUCCESS], [commit_to_controller(1, 2)], ["success"],
                     self.holds("controller 0", "2.4.1063 runs, slot 1, next slot 1"))
        self.outcome(disk, 0, [DISK_SUCCESS], [commit_to_disk(1, 2, 1)], ["success"],
                     self.holds(f"PD {PD}", "LAB1.0.4 runs, slot 1, next slot 1"))

    def test_action_three_without_a_file(self):
        controller, disk = at_once([lambda: flashed(None, "-o hba -s 1 -c 3"),
                                    lambda: flashed(None, f"-o pd -i {PD} -s 1 -c 3")])
        self.outcome(controller, 1, [STARTED, failed_with(1)], [], [])
        self.outcome(disk, 0, [DISK_SUCCESS_NOW], [commit_to_disk(1, 3)], ["success"])


if __name__ == "__main__":
    unittest.main()
