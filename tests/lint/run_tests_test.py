"""The sentence that ends a run of the tests, made of what ctest records about them."""
import importlib.machinery
import importlib.util
import unittest
import xml.etree.ElementTree
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[2] / "scripts/run-tests"
loader = importlib.machinery.SourceFileLoader("run_tests", str(SCRIPT))
run_tests = importlib.util.module_from_spec(importlib.util.spec_from_loader("run_tests", loader))
loader.exec_module(run_tests)

PASSED = ("A.works/sqlite", "run", "", "[==========] 1 test from 1 test suite ran. (1 ms total)\n[  PASSED  ] 1 test.\n")
SCRIPT_PASSED = ("lint.layers", "run", "", "")
SKIPPED = ("A.needsLinks", "notrun", '<skipped message="x"/>',
           "a.cpp:1: Skipped\nSKIPPED: no links here\n\n[  PASSED  ] 0 tests.\n[  SKIPPED ] 1 test, listed below:\n")
SILENT = ("A.isSilent", "notrun", '<skipped message="x"/>', "")
FAILED = ("B.fails/postgres", "fail", "", "[  FAILED  ] B.fails/postgres, where GetParam() = postgres (5 ms)\n"
          "[  PASSED  ] 0 tests.\n[  FAILED  ] 1 test, listed below:\n[  FAILED  ] B.fails/postgres, where ...\n")
CRASHED = ("C.ends", "fail", "", "[ RUN      ] C.ends\n")
PROGRAM = ("some_tests", "fail", "", "a.cpp:1: Skipped\nSKIPPED: no links here\n[  FAILED  ] D.one (5 ms)\n"
           "[  PASSED  ] 7 tests.\n[  SKIPPED ] 1 test, listed below:\n[  SKIPPED ] D.two\n"
           "[  FAILED  ] 1 test, listed below:\n[  FAILED  ] D.one\n")
EMPTY = ("some_tests.postgres", "notrun", '<skipped message="x"/>',
         "[==========] 0 tests from 0 test suites ran. (0 ms total)\n[  PASSED  ] 0 tests.\n")

CASES = [
    ([PASSED, SCRIPT_PASSED], "2 passed, 0 skipped, 0 failed; run one again with: scripts/run-tests dev -R NAME"),
    ([PASSED, SKIPPED, SKIPPED, SILENT],
     "1 passed, 3 skipped (2 because no links here; 1 because no reason was printed), 0 failed; "
     "run one again with: scripts/run-tests dev -R NAME"),
    ([PASSED, FAILED, CRASHED], "1 passed, 0 skipped, 2 failed (B.fails/postgres, C.ends); "
     r"run one again with: scripts/run-tests dev -R '^B\.fails/postgres$'"),
    ([PROGRAM, EMPTY], "7 passed, 1 skipped (1 because no links here), 1 failed (D.one); "
     "run one again with: scripts/run-tests dev -R '^some_tests$'"),
]


def case(name, status, skipped, output):
    return xml.etree.ElementTree.fromstring(
        f'<testcase name="{name}" status="{status}">{skipped}<system-out>{output}</system-out></testcase>')


class Summary(unittest.TestCase):
    def test_counts_and_names_what_ctest_recorded(self):
        for cases, expected in CASES:
            with self.subTest(expected):
                self.assertEqual(run_tests.summary([case(*each) for each in cases], "dev"), "Tests: " + expected)


if __name__ == "__main__":
    unittest.main()
