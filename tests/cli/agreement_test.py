"""`identify`, `smart`, `oemdata` and `dumphba` against what nvme-cli reads from the same simulated controller, field by field.

    QRX_BIN=build/release/bin /usr/bin/python3 agreement_test.py [Agreement.test_...]
"""
import json
import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

BIN = pathlib.Path(os.environ["QRX_BIN"]).resolve()
ENVIRONMENT = os.environ | {"PATH": f"{BIN}:/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL": "C"}
HAVE_NVME = shutil.which("nvme", path=ENVIRONMENT["PATH"]) is not None
TIMEOUT = 60
KELVIN = 273

HEALTH = {"critical_warning": 0x15, "temperature": 322, "spare": 23, "spare_threshold": 24, "used": 25,
          "sectors_read": 26001, "sectors_written": 27002000, "host_reads": 28, "host_writes": 29,
          "busy_minutes": 30, "power_cycles": 31, "power_on_ms": 32 * 3600000, "unsafe_shutdowns": 33,
          "media_errors": 34, "warning_minutes": 35, "critical_minutes": 36, "throttle1_count": 37,
          "throttle2_count": 38, "throttle1_seconds": 39, "throttle2_seconds": 40}

# A controller of which no two fields are equal, as far as they can be told apart. A drive has the health of the
# controller, since the tool shows the whole log for drives alone, and nvme-cli knows the controller alone.
MACHINE = {
    "controllers": [{
        "model": "MODEL OF CONTROLLER", "serial": "SERIAL-17", "subnqn": "nqn.2026-01.test:agreement",
        "adapter": {"subsystem_vendor_id": 0x1234, "max_ns": 21},
        "slots": {"count": 5, "first_read_only": True, "active": 2, "slot1": "FIRST", "slot2": "REV.0002"},
        "health": HEALTH, "errors": {"count": 41},
        "drives": [{"id": 0}, {"id": 1, "sectors": 976773168, "health": HEALTH, "errors": {"count": 41}}, {"id": 2}],
        "virtual_disks": [{"id": 0, "raid_mode": "raid1", "members": [0, 1]}],
        "namespaces": [{"nsid": 3, "parent_id": 0, "shared": True}],
    }]
}

# The lines of `smart` behind the first five, and what nvme-cli calls them.
COUNTERS = {
    "Host Read Commands": "host_read_commands",
    "Host Write Commands": "host_write_commands",
    "Controller Busy Time": "controller_busy_time",
    "Power Cycles": "power_cycles",
    "Power On Hours": "power_on_hours",
    "Unsafe Shutdowns": "unsafe_shutdowns",
    "Media and Data Integrity Errors": "media_errors",
    "Num Err Log Entries": "num_err_log_entries",
    "Warning Composite Temperature Time": "warning_temp_time",
    "Critical Composite Temperature Time": "critical_comp_time",
    "Thermal Management Temperature 1 Transition Count": "thm_temp1_trans_count",
    "Thermal Management Temperature 2 Transition Count": "thm_temp2_trans_count",
    "Total Time For Thermal Management Temperature 1": "thm_temp1_total_time",
    "Total Time For Thermal Management Temperature 2": "thm_temp2_total_time",
}


def of_log(read):
    """The first lines of `smart`, of what nvme-cli has read."""
    return {
        "Critical Warning": f"0x{read['critical_warning']:02x}",
        "Composite Temperature": f"{read['temperature'] - KELVIN} Celsius",
        "Available Spare": f"{read['avail_spare']}%",
        "Available Spare Threshold": f"{read['spare_thresh']}%",
        "Percentage Used": f"{read['percent_used']}%",
    }


def lines_of_log(read):
    """All lines of `smart`."""
    lines = of_log(read) | {label: str(read[key]) for label, key in COUNTERS.items()}
    for label, key in (("Data Units Read", "data_units_read"), ("Data Units Written", "data_units_written")):
        units = int(read[key])
        lines[label] = f"{units} ({units * 512 / 1000 / 1000:.0f} GB)"
    return lines


@unittest.skipUnless(HAVE_NVME, "nvme-cli is not installed")
class Agreement(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = directory.name
        (pathlib.Path(self.directory) / "machine.json").write_text(json.dumps(MACHINE))
        self.options = []  # further ones of qrx_sim

    def on_machine(self, *words):
        done = subprocess.run(["qrx_sim", "--scenario", "machine.json", "--clock", "stopped", *self.options, "--", *words],
                              cwd=self.directory, env=ENVIRONMENT, timeout=TIMEOUT, text=True, capture_output=True,
                              check=False)
        self.assertEqual(done.returncode, 0, done.stderr)
        return done.stdout

    def told(self, *words):
        """What the tool tells: a dictionary of the labels and the texts behind them."""
        lines = self.on_machine("qrx_cli", *words).splitlines()
        pairs = (line.partition(":") for line in lines)
        return {label.strip(): value.strip(" ") for label, colon, value in pairs if colon}

    def read(self, *words):
        return json.loads(self.on_machine("nvme", *words, "-o", "json"))

    def test_identify_controller(self):
        told = self.told("identify", "-c", "1")
        read = self.read("id-ctrl", "/dev/nvme0")
        expected = {label: hex(read[key]) for label, key in (
            ("VID", "vid"), ("SSVID", "ssvid"), ("RAB", "rab"), ("MIC", "cmic"), ("MDTS", "mdts"), ("OACS", "oacs"),
            ("ACL", "acl"), ("AERL", "aerl"), ("FRMW", "frmw"), ("LPA", "lpa"), ("ELPE", "elpe"), ("NPSS", "npss"),
            ("AVSCC", "avscc"), ("SQES", "sqes"), ("CQES", "cqes"), ("NN", "nn"), ("ONCS", "oncs"), ("FUSES", "fuses"),
            ("FNA", "fna"), ("VWC", "vwc"), ("AWUN", "awun"), ("AWUPF", "awupf"), ("NVSCC", "icsvscc"),
            ("ACWU", "acwu"), ("SQLS", "sgls"))}
        expected |= {"SN": read["sn"].rstrip(), "MN": read["mn"].rstrip(), "FR": read["fr"].rstrip()}
        expected |= {f"IEEE[{i}]": hex(read["ieee"] >> 8 * i & 0xFF) for i in range(3)}
        for label in ("TNVMCAP", "UNVMCAP"):
            capacity = int(read[label.lower()])
            expected |= {f"{label}_LOW": hex(capacity & (1 << 64) - 1), f"{label}_HIGH": hex(capacity >> 64),
                         f"{label}(Bytes)": str(capacity & (1 << 32) - 1), f"{label}(GB)": str(capacity >> 30)}
        expected["SUBNQN"] = read["subnqn"].ljust(60) + "0"
        told = {label: value for label, value in told.items() if not label.startswith("NVME")}
        self.assertEqual(told, expected)
        self.assertEqual((told["FR"], told["FRMW"], told["SSVID"]), ("REV.0002", "0xb", "0x1234"))

    def test_identity_that_oemdata_wrote(self):
        self.options = ["--state", "lab.json"]
        before = self.read("id-ctrl", "/dev/nvme0")
        self.assertEqual((before["sn"].rstrip(), before["mn"].rstrip(), before["ssvid"]),
                         ("SERIAL-17", "MODEL OF CONTROLLER", 0x1234))
        for words, serial, model, vendor, device in (
                (("-s", "NEW SERIAL"), "NEW SERIAL", "MODEL OF CONTROLLER", 0x1234, 0x1001),
                (("-v", "0x5c2e", "-d", "0x3319", "-m", "NEW MODEL"), "NEW SERIAL", "NEW MODEL", 0x5c2e, 0x3319),
                (("-s", "S" * 20, "-m", "M" * 40), "S" * 20, "M" * 40, 0x5c2e, 0x3319)):
            self.assertEqual(self.on_machine("qrx_cli", "oemdata", *words), "Set OEM data success.\n")
            read = self.read("id-ctrl", "/dev/nvme0")
            self.assertEqual((read["sn"], read["mn"], read["ssvid"]), (serial.ljust(20), model.ljust(40), vendor))
            told = self.told("identify", "-c", "1")
            self.assertEqual((told["SN"], told["MN"], told["SSVID"]), (serial, model, hex(vendor)))
            told = self.told("info", "-o", "hba")
            self.assertEqual((told["SVID"], told["SDID"]), (hex(vendor), hex(device)))
            self.on_machine("qrx_cli", "dumphba", "--outputfile", "settings")
            settings = (pathlib.Path(self.directory) / "settings").read_bytes()[448:]
            self.assertEqual(settings[12:16], vendor.to_bytes(2, "little") + device.to_bytes(2, "little"))
            self.assertEqual(settings[16:36].decode(), serial.ljust(20))
            unchanged = {key: value for key, value in read.items() if key not in ("sn", "mn", "ssvid")}
            self.assertEqual(unchanged, {key: before[key] for key in unchanged})

    def test_stored_record_as_nvme_cli_reads_it(self):
        self.options = ["--state", "lab.json"]
        self.on_machine("qrx_cli", "oemdata", "-v", "0x5c2e", "-d", "0x3319", "-s", "SN", "-m", "MODEL")
        dump = self.on_machine("nvme", "admin-passthru", "/dev/nvme0", "-o", "0xe2", "--cdw10=0x3ff", "--cdw12=0x4e0",
                               "-l", "4096", "-r")
        page = bytes.fromhex("".join(re.findall(r"^[0-9a-f]{4}: ((?:[0-9a-f]{2} ){16})", dump, re.MULTILINE)))
        record = b"QRX \x88\x00\x0c\x00" + page[8:12] + b"\x2e\x5c\x19\x33" + bytes(60)
        record += b"SN".ljust(20) + b"MODEL".ljust(40) + bytes(120)
        self.assertEqual(page, record.ljust(4096, b"\xff"))
        words = (int.from_bytes(page[at:at + 4], "little") for at in range(0, 136, 4))
        self.assertEqual(sum(words) % (1 << 32), 0)

    def test_identify_namespace(self):
        told = self.told("identify", "-c", "0", "-n", "3")
        read = self.read("id-ns", "/dev/nvme0", "-n", "3")
        expected = {label: hex(read[label.lower()]) for label in (
            "NSZE", "NCAP", "NUSE", "NSFEAT", "nlbaf", "flbas", "mc", "dpc", "dps", "nmic", "rescap", "fpi", "dlfeat",
            "nawun", "nawupf", "nacwu")}
        identifier = bytes.fromhex(read["eui64"])
        expected |= {f"eui64[{i}]": hex(byte) for i, byte in enumerate(identifier)}
        expected |= {label: hex(read["lbafs"][0][label.lower()]) for label in ("MS", "DS", "RP")}
        self.assertEqual(told, expected)

    def told_of_health(self, *words):
        told = self.told("smart", *words)
        self.assertTrue(told.pop("Notice"))
        self.assertEqual(told.pop("NVME SMART Information"), "")
        return told

    def test_health(self):
        told = self.told_of_health("-o", "hba")
        self.assertEqual(told, of_log(self.read("smart-log", "/dev/nvme0")))
        self.assertEqual(told["Composite Temperature"], "49 Celsius")

    def test_every_line_of_the_health_log(self):
        told = self.told_of_health("-i", "1")
        self.assertEqual(told, lines_of_log(self.read("smart-log", "/dev/nvme0")))
        values = [int(value.split(" ")[0].rstrip("%"), 0) for value in told.values()]
        self.assertEqual(len(set(values)), 21, "two lines have one value, so that they may be mixed up")

    def test_the_health_log_of_a_drive(self):
        """Its bytes, as nvme-cli has them through the tunnel."""
        told = self.told_of_health("-i", "0")
        dump = self.on_machine("nvme", "admin-passthru", "/dev/nvme0", "-o", "0xc2", "-n", "0", "--cdw10=0x7f0002",
                               "--cdw14=2", "--cdw15=0xffffffff", "-l", "512", "-r")
        log = bytes.fromhex("".join(re.findall(r"^[0-9a-f]{4}: ((?:[0-9a-f]{2} ){16})", dump, re.MULTILINE)))
        self.assertEqual(len(log), 512)
        at = {"data_units_read": 32, "data_units_written": 48, "host_read_commands": 64, "host_write_commands": 80,
              "controller_busy_time": 96, "power_cycles": 112, "power_on_hours": 128, "unsafe_shutdowns": 144,
              "media_errors": 160, "num_err_log_entries": 176}
        read = {key: int.from_bytes(log[offset:offset + 16], "little") for key, offset in at.items()}
        at = {"warning_temp_time": 192, "critical_comp_time": 196, "thm_temp1_trans_count": 216,
              "thm_temp2_trans_count": 220, "thm_temp1_total_time": 224, "thm_temp2_total_time": 228}
        read |= {key: int.from_bytes(log[offset:offset + 4], "little") for key, offset in at.items()}
        read |= {"critical_warning": log[0], "temperature": log[1] | log[2] << 8, "avail_spare": log[3],
                 "spare_thresh": log[4], "percent_used": log[5]}
        self.assertEqual(told, lines_of_log(read))
        self.assertGreater(read["data_units_read"], 0)


if __name__ == "__main__":
    unittest.main()
