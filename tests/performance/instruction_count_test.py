#!/usr/bin/env python3
"""instruction_count_test.py COUNTED_READING: reading 10,000 remarks must not take more instructions
than after the last intended change.

Counts differ from one processor and one C library to the next: the library picks its copying and
searching functions by what the processor can do. So the count is taken relative to that of the
parser library alone, which reads the same file in the same run and depends on the same choices.
"""

import os
import re
import subprocess
import sys
import tempfile

# Instructions of reading a codeset, divided by those of parsing and freeing its document. After an
# intended change, replace it with the ratio that this test prints.
RECORDED_RATIO = 0.812
MARGIN = 0.05

# When the allocator tidies up its short free lists depends on chance neighbours in memory, and
# costs more than the margin. Without these lists every run does the same.
ENVIRONMENT = {**os.environ, "GLIBC_TUNABLES": "glibc.malloc.mxfast=0"}


def count_instructions(program, way, function, codeset):
    command = [
        "valgrind",
        "--tool=callgrind",
        "--callgrind-out-file=/dev/null",
        f"--toggle-collect={function}",
        program,
        way,
        codeset,
    ]
    run = subprocess.run(command, env=ENVIRONMENT, capture_output=True, text=True, check=False)
    collected = re.search(r"Collected : (\d+)", run.stderr)
    if run.returncode != 0 or collected is None or int(collected[1]) == 0:
        sys.exit(f"{' '.join(command)} has failed:\n{run.stderr}")
    return int(collected[1])


def main(program):
    with tempfile.TemporaryDirectory() as folder:
        codeset = os.path.join(folder, "generated.codeset")
        subprocess.run([program, "generate", codeset], check=True)
        parsing = count_instructions(program, "parse", "parse_alone", codeset)
        reading = count_instructions(program, "read", "read_as_codeset", codeset)
    ratio = reading / parsing
    print(
        f"parsing {parsing:,}, reading {reading:,} instructions: ratio {ratio:.3f}, "
        f"recorded {RECORDED_RATIO:.3f}"
    )
    if ratio > RECORDED_RATIO * (1 + MARGIN):
        sys.exit(f"Reading takes over {MARGIN:.0%} more instructions than before.")


main(sys.argv[1])
