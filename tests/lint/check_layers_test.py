"""The layer check itself: trees that keep the layers pass, and each kind of violation is found."""
import importlib.machinery
import importlib.util
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[2] / "scripts/check-layers"

# The files that the lines below include.
TREE = ["src/host/platform/Files.h", "src/host/database/Dialect.h", "src/host/matrix/MatrixFile.h",
        "src/core/Base40.h", "src/catalogue/Register.h", "src/varcubes/EntryRow.h", "src/tool/Command.h", "tests/support/TempDir.h",
        "providers/routes/RouteTable.h", "src/host/hdf5/Hdf5.h"]

GOOD = [
    ("src/host/text/A.cpp", '#include "host/platform/Files.h"'),
    ("src/host/text/A.cpp", "#include <cubes/text/TRkString.h>"),
    ("src/host/platform/A.cpp", "#include <windows.h>"),
    ("src/host/platform/A.cpp", "#include <sys/mman.h>"),
    ("src/host/platform/A.cpp", "#ifdef _WIN32"),
    ("src/host/database/sqlite/A.cpp", "#include <sqlite3.h>"),
    ("src/host/database/sqlite/A.cpp", '#include "host/database/Dialect.h"'),
    ("src/host/project/A.cpp", '#include "host/database/Dialect.h"'),
    ("src/catalogue/A.cpp", '#include "core/Base40.h"'),
    ("src/matcubes/A.cpp", "#include <cubes/catalogue/TRkCubes.h>"),
    ("src/routestorage/A.cpp", "#include <cubes/varcubes/TRkVarCubes.h>"),
    ("src/routestorage/A.cpp", '#include "varcubes/EntryRow.h"'),
    ("src/routestorage/A.cpp", '#include "host/platform/Files.h"'),
    ("include/cubes/routestorage/metadata/A.h", "#include <cubes/routestorage/Reference.h>"),
    ("include/cubes/routestorage/RouteStorageInterface.h", "#include <cstdint>"),
    ("src/tool/A.cpp", "#include <cubes/cubes.h>"),
    ("src/tool/A.cpp", '#include "Command.h"'),
    ("src/tool/A.cpp", '#include "tool/Command.h"'),
    ("src/tool/A.cpp", "#include <fmt/format.h>"),
    ("src/tool/A.cpp", '#include "host/platform/Files.h"'),
    ("providers/routes/A.cpp", "#include <cubes/routestorage/RouteStorageInterface.h>"),
    ("providers/routes/A.cpp", '#include "RouteTable.h"'),
    ("providers/routes/A.cpp", '#include "host/platform/Files.h"'),
    ("providers/routes/A.cpp", '#include "host/hdf5/Hdf5.h"'),
    ("providers/routes/A.cpp", "#include <hdf5.h>"),
    ("tests/api/A.cpp", '#include "support/TempDir.h"'),
    ("include/cubes/core/A.h", "#include <cubes/text/TRkString.h>"),
    ("include/cubes/core/A.h", "#include <cubes/Export.h>"),
    ("include/cubes/core/A.h", "#include <vector>"),
    ("include/cubes/core/A.h", "#ifdef __CODEGEARC__"),
    ("include/cubes/cubes.h", "#include <cubes/matcubes/TRkMatCubes.h>"),
]

BAD = [
    ("src/host/text/A.cpp", '#include "host/database/Dialect.h"', "host/text must not depend on host/database"),
    ("src/host/database/A.cpp", '#include "host/matrix/MatrixFile.h"', "must not depend on host/matrix"),
    ("src/host/matrix/A.cpp", "#include <cubes/database/TRkField.h>", "must not depend on host/database"),
    ("src/host/project/A.cpp", '#include "core/Base40.h"', "host/project must not depend on core"),
    ("src/core/A.cpp", '  #  include "catalogue/Register.h"', "core must not depend on catalogue"),
    ("src/catalogue/A.cpp", "#include <cubes/matcubes/TRkMatCubes.h>", "must not depend on matcubes"),
    ("src/matcubes/A.cpp", "#include <cubes/varcubes/TRkVarCubes.h>", "must not depend on varcubes"),
    ("src/varcubes/A.cpp", "#include <cubes/routestorage/Loader.h>", "must not depend on routestorage"),
    ("include/cubes/varcubes/A.h", "#include <cubes/routestorage/Reference.h>", "must not depend on routestorage"),
    ("src/routestorage/A.cpp", "#include <cubes/matcubes/TRkMatCubes.h>", "must not depend on matcubes"),
    ("src/routestorage/A.cpp", "#include <dlfcn.h>", "system headers belong into src/host/platform"),
    ("src/routestorage/A.cpp", '#include "../../providers/routes/RouteTable.h"', "no file of the library"),
    ("include/cubes/routestorage/RouteStorageInterface.h", "#include <cubes/Export.h>", "standard library only"),
    ("src/core/A.cpp", '#include "tool/Command.h"', "must not depend on a header outside the areas"),
    ("src/core/A.cpp", '#include "sqlite3.h"', "no file of the library"),
    ("src/core/A.cpp", "#include <cubes/cubes.h>", "one by one"),
    ("src/core/A.cpp", "#include <unistd.h>", "system headers belong into src/host/platform"),
    ("src/core/A.cpp", "#include <sys/stat.h>", "system headers belong into src/host/platform"),
    ("src/core/A.cpp", "#ifdef _WIN32", "platform differences belong into src/host/platform"),
    ("src/core/A.cpp", "#if !defined(__linux__)", "platform differences belong into src/host/platform"),
    ("src/news/A.cpp", "#include <vector>", "is not in a known area"),
    ("src/tool/A.cpp", '#include "core/Base40.h"', "its own files only"),
    ("src/tool/A.cpp", '#include "../core/Base40.h"', "its own files only"),
    ("src/tool/A.cpp", '#include "host/hdf5/Hdf5.h"', "<cubes/...>, host/platform and its own files only"),
    ("src/tool/A.cpp", "#include <unistd.h>", "system headers"),
    ("src/tool/A_posix.cpp", "#include <unistd.h>", "system headers"),
    ("python/A.cpp", '#include "host/platform/Files.h"', "its own files only"),
    ("tests/api/A.cpp", '#include "core/Base40.h"', "its own files only"),
    ("providers/routes/A.cpp", "#include <cubes/text/TRkString.h>", "route-storage interface, host/platform"),
    ("providers/routes/A.cpp", "#include <cubes/routestorage/TVlSettings.h>", "route-storage interface, host/platform"),
    ("providers/routes/A.cpp", '#include "host/database/Dialect.h"', "host/hdf5 and its own files"),
    ("providers/routes/A.cpp", '#include "../../src/core/Base40.h"', "route-storage interface, host/platform"),
    ("providers/routes/A.cpp", "#include <unistd.h>", "system headers belong into"),
    ("providers/routes/platform/A.cpp", "#include <windows.h>", "system headers belong into"),
    ("providers/routes/A.cpp", "#ifdef _WIN32", "platform differences belong into"),
    ("include/cubes/core/A.h", "#include <sqlite3.h>", "the standard library only"),
    ("include/cubes/core/A.h", '#include "TRkString.h"', "the standard library only"),
    ("include/cubes/core/A.h", "#include <windows.h>", "system headers"),
    ("include/cubes/core/A.h", "#include <cubes/catalogue/TRkCubes.h>", "core must not depend on catalogue"),
    ("include/cubes/core/A.h", "#ifdef _WIN32", "platform differences"),
]


def load_script():
    loader = importlib.machinery.SourceFileLoader("check_layers", str(SCRIPT))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("check_layers", loader))
    loader.exec_module(module)
    return module


def write(root, name, text):
    file = Path(root, name)
    file.parent.mkdir(parents=True, exist_ok=True)
    file.write_text(text)


class CheckLayers(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.root = Path(directory.name).resolve()
        for name in TREE:
            write(self.root, name, "")

    def faults(self, path, line):
        write(self.root, path, "// first line\n" + line + "\n")
        found = list(check_layers.faults(self.root))
        (self.root / path).unlink()
        return found

    def test_passes_what_keeps_the_layers(self):
        for path, line in GOOD:
            with self.subTest(path=path, line=line):
                self.assertEqual(self.faults(path, line), [])

    def test_names_file_line_and_reason_of_a_violation(self):
        for path, line, reason in BAD:
            with self.subTest(path=path, line=line):
                found = self.faults(path, line)
                self.assertEqual([fault[:2] for fault in found], [(path, 2)])
                self.assertIn(reason, found[0][2])

    def test_fails_as_a_program_and_prints_the_place(self):
        write(self.root, "src/core/A.cpp", "#include <unistd.h>")
        result = subprocess.run([sys.executable, SCRIPT, self.root], capture_output=True, text=True)
        self.assertEqual((result.returncode, result.stderr), (1, ""))
        self.assertRegex(result.stdout, r"^src/core/A\.cpp:1: unistd\.h: ")


sys.dont_write_bytecode = True
check_layers = load_script()

if __name__ == "__main__":
    unittest.main()
