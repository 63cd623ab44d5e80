"""Runs a stock NVMe client on the simulator and checks what it says. Exits with 77 when the client is not installed.

    /usr/bin/python3 stock_clients.py --bin build/release/bin --transport seccomp --client list
"""
import argparse
import os
import re
import shutil
import subprocess
import sys

# Client, and what its output must hold: the facts of the scenario "raid".
MODEL = r"QRX NVMe RAID Controller"
CLIENTS = {
    "list": (["nvme", "list"], [r"^/dev/nvme0n1 .*QRXSIM0000 .*" + MODEL, r"^/dev/nvme0n2 .*512   B"]),
    "list-verbose": (["nvme", "list", "-v"], [r"^nvme-subsys0 +nqn\.\S+ +nvme0", r"^nvme0 +QRXSIM0000 .* pcie +0000:03:00\.0",
                                             r"^/dev/nvme0n1 .*nvme0"]),
    "id-ctrl": (["nvme", "id-ctrl", "/dev/nvme0"], [r"^vid +: 0x7a51$", r"^sn +: QRXSIM0000 *$", r"^mn +: " + MODEL,
                                                    r"^cntlid +: 0x?0*$"]),
    "id-ns": (["nvme", "id-ns", "/dev/nvme0n1"], [r"^NVME Identify Namespace 1:$", r"^nsze +: 0x6fc81ab0$",
                                                  r"^lbaf +0 : ms:0 +lbads:9 .*in use"]),
    "smart-log": (["nvme", "smart-log", "/dev/nvme0"], [r"^critical_warning\s+: 0$", r"^power_cycles\s+: 42$"]),
    "fw-log": (["nvme", "fw-log", "/dev/nvme0"], [r"^afi +: 0x1$", r"^frs1 +: 0x\w+ \(2\.4\.1063\)$"]),
    "error-log": (["nvme", "error-log", "/dev/nvme0"], [r"^Error Log Entries for device:nvme0 entries:64$",
                                                        r"^error_count\s*: 0$"]),
    "smartctl": (["smartctl", "-a", "/dev/nvme0"], [r"^Model Number: +" + MODEL + "$", r"^Serial Number: +QRXSIM0000$",
                                                    r"test result: PASSED$", r"^PCI Vendor/Subsystem ID: +0x7a51$"]),
}


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--bin", required=True)
    parser.add_argument("--transport", required=True)
    parser.add_argument("--client", required=True, choices=sorted(CLIENTS))
    arguments = parser.parse_args()
    command, expected = CLIENTS[arguments.client]
    path = os.environ["PATH"] + ":/usr/sbin:/sbin"
    program = shutil.which(command[0], path=path)
    if program is None:
        print(f"{command[0]} is not installed")
        return 77
    done = subprocess.run([os.path.join(arguments.bin, "qrx_sim"), "--transport", arguments.transport, "--", program]
                          + command[1:], capture_output=True, text=True, timeout=60, check=False,
                          env=dict(os.environ, LC_ALL="C.UTF-8"), stdin=subprocess.DEVNULL)
    wrong = [] if done.returncode == 0 else [f"exit value {done.returncode}"]
    if done.stderr:
        wrong.append(f"standard error: {done.stderr!r}")
    wrong += [f"nothing matches {line!r}" for line in expected if not re.search(line, done.stdout, re.MULTILINE)]
    if wrong:
        print("\n".join(wrong), done.stdout, sep="\n")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
