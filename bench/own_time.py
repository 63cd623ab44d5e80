"""Runs a program and prints the processor time it used itself, in nanoseconds: its children's is not counted.

    /usr/bin/python3 own_time.py qrx_cli version

What wait4 reports would hold the time of the children that the program waited for. The program's own processor clock
holds its threads alone, and can still be read between its end and its burial.
"""
import os
import sys
import time

CPUCLOCK_SCHED = 2  # of the kernel's process clock ids: nanoseconds as the scheduler counts them


def main():
    pid = os.posix_spawnp(sys.argv[1], sys.argv[1:], os.environ,
                          file_actions=[(os.POSIX_SPAWN_OPEN, 1, os.devnull, os.O_WRONLY, 0)])
    os.waitid(os.P_PID, pid, os.WEXITED | os.WNOWAIT)
    own = time.clock_gettime_ns(~pid << 3 | CPUCLOCK_SCHED)
    _, status = os.waitpid(pid, 0)
    if os.waitstatus_to_exitcode(status) != 0:
        print(f"own_time.py: {sys.argv[1]} ended with {os.waitstatus_to_exitcode(status)}", file=sys.stderr)
        return 1
    print(own)
    return 0


if __name__ == "__main__":
    sys.exit(main())
