#!/usr/bin/env python3
"""Runs the sessions of README.md, its ```sh blocks, in one shell, and compares what they print with the lines
that begin with "# " after each command. In a temporary directory, after `cubes demo build/demo`.

readme_session.py README BIN            fails with a diff when README prints something else
readme_session.py README BIN --update   writes what the commands print into README
"""
import difflib
import os
import re
import subprocess
import sys
import tempfile

TOUR = "/tmp/cubes-tour"  # Where README works; the test uses its own directory instead.
BLOCK = re.compile(r"(?<=^```sh\n).*?(?=^```$)", re.M | re.S)
END = "\x1e"


def commands(block):
    """The commands of a block, each with its here-document and without the output."""
    lines = iter(line for line in block.splitlines() if not line.startswith("#"))
    for line in lines:
        if "<<END" in line:
            for text in lines:
                line += "\n" + text
                if text == "END":
                    break
        yield line


def session(readme, bin_directory, home):
    """README with the output that its commands print now."""
    blocks = [list(commands(block)) for block in BLOCK.findall(readme)]
    script = "".join(f"{command}\nprintf '{END}'\n" for block in blocks for command in block)
    script = script.replace("$PWD/build/release/bin", bin_directory).replace(TOUR, home + "/tour")
    environment = {name: value for name, value in os.environ.items() if name != "CUBES_DATABASE"}
    cubes = os.path.join(bin_directory, "cubes")
    subprocess.run([cubes, "demo", home + "/build/demo"], env=environment, check=True, stdout=subprocess.DEVNULL)
    run = subprocess.run(["bash", "-e"], input=script, cwd=home, env=environment, text=True,
                         stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    if run.returncode != 0:
        sys.exit("a command of README fails: " + run.stdout.split(END)[-1])
    outputs = iter(run.stdout.replace(home + "/tour", TOUR).split(END))

    def shown(command):
        return command + "\n" + "".join(f"# {line}\n" for line in next(outputs).splitlines())

    printed = iter(["".join(map(shown, block)) for block in blocks])
    return BLOCK.sub(lambda _: next(printed), readme)


def main():
    path, bin_directory = sys.argv[1:3]
    with open(path, encoding="utf-8") as file:
        readme = file.read()
    with tempfile.TemporaryDirectory() as home:
        now = session(readme, bin_directory, os.path.realpath(home))
    if "--update" in sys.argv:
        with open(path, "w", encoding="utf-8") as file:
            file.write(now)
        return 0
    sys.stdout.writelines(difflib.unified_diff(readme.splitlines(True), now.splitlines(True), "README", "printed"))
    return readme != now


if __name__ == "__main__":
    sys.exit(main())
