#!/usr/bin/env python3
"""Instructions that an arm64 program executes in a code range, under qemu.

qemu-user here has no instruction-counting plug-in, so the count comes from
its own log. With `-d in_asm,exec,nochain` every execution of a translated
block prints one "Trace" line carrying the block's address, and the "IN:"
listing printed when the block was translated gives its instructions; the
count is the sum, over the Trace lines, of the size of the block at that
address (a block translated again replaces the older listing). `-dfilter`
limits both to the range.

    qemu_count.py [--range R] PROGRAM ARGS...   run PROGRAM under qemu-aarch64
    qemu_count.py --log FILE                    count an existing log ('-': stdin)

R is `library` (the kez library linked into the program: from
kez_get_version to the end of .text, the default), `program` (all of the
program's .text; shared libraries such as the C library are left out) or
LO..HI in the program's own addresses (hex, as nm prints them). A
position-independent program is loaded at 0x5500000000 by qemu-aarch64.
The log is read through a pipe, never written to disk (a run that fills the
memory logs about a gigabyte). Prints the count.

Filling the memory costs far more than one forecast, so count two runs that
differ only in how many forecasts or searches they make and divide the
difference of the counts by the difference of the runs.
"""
import argparse
import os
import re
import subprocess
import sys

QEMU_BASE = 0x5500000000
SYSROOT = "/usr/aarch64-linux-gnu"

_TRACE = re.compile(r"^Trace \d+: \S+ \[[0-9a-f]+/([0-9a-f]+)/")
_INSN = re.compile(r"^0x([0-9a-f]+):")


def count(stream):
    sizes = {}
    total = 0
    block = None  # address of the block being listed, -1 before its first line
    for line in stream:
        if line.startswith("Trace"):
            block = None
            m = _TRACE.match(line)
            if m is None:
                continue
            pc = int(m.group(1), 16)
            if pc not in sizes:
                raise SystemExit("no listing for the block at 0x%x" % pc)
            total += sizes[pc]
        elif line.startswith("IN:"):
            block = -1
        elif block is not None:
            m = _INSN.match(line)
            if m is None:
                if block >= 0 and not line.strip():
                    block = None
                continue
            if block == -1:
                block = int(m.group(1), 16)
                sizes[block] = 0
            sizes[block] += 1
    return total


def text_section(program):
    out = subprocess.run(["aarch64-linux-gnu-readelf", "-SW", program], check=True,
                         capture_output=True, text=True).stdout
    for line in out.splitlines():
        fields = line.replace("]", "] ").split()
        if ".text" in fields:
            k = fields.index(".text")
            return int(fields[k + 2], 16), int(fields[k + 4], 16)
    raise SystemExit("%s has no .text" % program)


def symbol(program, name):
    out = subprocess.run(["aarch64-linux-gnu-nm", program], check=True, capture_output=True,
                         text=True).stdout
    for line in out.splitlines():
        fields = line.split()
        if len(fields) == 3 and fields[2] == name:
            return int(fields[0], 16)
    raise SystemExit("%s has no symbol %s" % (program, name))


def code_range(program, which):
    start, size = text_section(program)
    if which == "program":
        lo, hi = start, start + size
    elif which == "library":
        lo, hi = symbol(program, "kez_get_version"), start + size
    else:
        lo_text, _, hi_text = which.partition("..")
        lo, hi = int(lo_text, 16), int(hi_text, 16)
    return QEMU_BASE + lo, QEMU_BASE + hi


def run(program, args, which):
    lo, hi = code_range(program, which)
    read_end, write_end = os.pipe()
    command = ["qemu-aarch64", "-L", SYSROOT, "-d", "in_asm,exec,nochain",
               "-dfilter", "0x%x..0x%x" % (lo, hi), "-D", "/dev/fd/%d" % write_end,
               program] + args
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL, pass_fds=(write_end,))
    os.close(write_end)
    with os.fdopen(read_end, errors="replace") as log:
        total = count(log)
    if process.wait() != 0:
        raise SystemExit("%s failed" % program)
    return total


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--log", help="count this log instead of running a program")
    parser.add_argument("--range", default="library", help="library, program or LO..HI")
    parser.add_argument("program", nargs="?")
    parser.add_argument("args", nargs=argparse.REMAINDER)
    options = parser.parse_args()
    if options.log is not None:
        if options.log == "-":
            print(count(sys.stdin))
        else:
            with open(options.log, errors="replace") as f:
                print(count(f))
    elif options.program is not None:
        print(run(options.program, options.args, options.range))
    else:
        parser.error("give a program or --log")


if __name__ == "__main__":
    main()
