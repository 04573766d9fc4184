"""parameter_names_test.py PROGRAMS: fails for each suite whose parameters are printed as bytes, not by their names.

PROGRAMS is a file that lists the test programs, one in a line.
"""
import subprocess
import sys
from pathlib import Path

programs = [Path(line) for line in Path(sys.argv[1]).read_text().splitlines()]
unreadable = []
for program in filter(Path.exists, programs):
    listed = subprocess.run([program, "--gtest_list_tests"], capture_output=True, text=True, errors="replace", check=True)
    unreadable += [f"{program.name}: {line.strip()}" for line in listed.stdout.splitlines() if "-byte object <" in line]
print("\n".join(unreadable))
sys.exit("define PrintTo for these parameters" if unreadable else 0)
