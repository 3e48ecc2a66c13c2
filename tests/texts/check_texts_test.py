#!/usr/bin/env python3
"""Plants faults into a small tree and expects scripts/check-texts to name each; and nothing in a clean tree."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

CHECKER = Path(__file__).resolve().parents[2] / "scripts" / "check-texts"

CODE = "velkrund/dialogs/Form.cpp"
JOB = "jobs/run/Job.cpp"
TEXTS = "texts/velkrund.eif"
WAITING = "texts/waiting.txt"
CLEAN = {
    CODE: 'Button("ST_YES");\nFormat(LString("M_A_Asked"), "M_", 5);\nBox("C_Form_Box_L");\n// "M_A_Remark"\n',
    JOB: 'Ask({LText("M_A_Rows", "a b"),\n     {}});\nNotes.push_back(LText("M_A_Rows"));\nItem.Note = TLText("--yes");\n',
    TEXTS: "\ufeff\r\n"
           "[SECTION]\r\nSectionID = ST\r\n[DATA]\r\n [STRINGS]\r\n  YES:\r\n"  # line 6
           "   English = '&Yes'\r\n   Russian = '&Да'\r\n[END]\r\n"
           "[SECTION]\r\nSectionID = M_A\r\n[DATA]\r\n [STRINGS]\r\n  asked:\r\n"  # line 14
           "   English = '100%% of %s by %d?'\r\n   Russian = '%s: %d?'\r\n"
           "  Later:\r\n   English = 'a'\r\n   Russian = 'b'\r\n"  # line 17
           "  ContinueX:\r\n   English = 'Go on?'\r\n   Russian = 'c?'\r\n"
           "  Rows:\r\n   English = '%d row|%d rows'\r\n   Russian = '%d a|%d b|%d c'\r\n[END]\r\n"  # line 23
           "[SECTION]\r\nSectionID = C_Form\r\n[DATA]\r\n [STRINGS]\r\n  Box_L:\r\n"  # line 31
           "   English = 'Bo&x'\r\n   Russian = 'x'\r\n[END]\r\n",
    WAITING: "# not built yet\nM_A_Later  # soon\nM_A_ContinueX\n",
}

# What is planted: the file, the text that is replaced and its replacement; then where and what has to be reported.
FAULTS = [
    ("key without a text", CODE, "ST_YES", "M_A_New", f"{CODE}:1: M_A_New has no text"),
    ("put together", CODE, '"M_"', '"M_A_" + X', f"{CODE}:2: M_A_ has no text"),
    ("one language missing", TEXTS, "   Russian = '&Да'\r\n", "", f"{TEXTS}:6: ST_YES has no Russian text"),
    ("other language missing", TEXTS, "   English = '&Yes'\r\n", "", f"{TEXTS}:6: ST_YES has no English text"),
    ("empty text", TEXTS, "'&Да'", "''", f"{TEXTS}:6: ST_YES has no Russian text"),
    ("text without a use", TEXTS, "  Later:", "  More:\r\n   English = 'a'\r\n   Russian = 'b'\r\n  Later:",
     f"{TEXTS}:17: M_A_More is used nowhere"),
    ("used in a remark only", CODE, "Format(", "// Format(", f"{TEXTS}:14: M_A_asked is used nowhere"),
    ("arguments swapped", TEXTS, "'%s: %d?'", "'%d: %s?'",
     f"{TEXTS}:14: M_A_asked has different format arguments: English %s %d; Russian %d %s"),
    ("argument missing", TEXTS, "'%s: %d?'", "'%s?'", f"{TEXTS}:14: M_A_asked has different format arguments"),
    ("argument written out", TEXTS, "'%s: %d?'", "'%s: %%d?'", f"{TEXTS}:14: M_A_asked has different format"),
    ("question without a name", TEXTS, "'a'", "'Really?'",
     f"{TEXTS}:17: M_A_Later is a question that does not name in English what it is about"),
    ("the same in the other language", TEXTS, "'b'", "'Да?'",
     f"{TEXTS}:17: M_A_Later is a question that does not name in Russian what it is about"),
    ("letter in a message", TEXTS, "'b'", "'&b'", f"{TEXTS}:17: M_A_Later is no caption, but marks a letter"),
    ("letter in a hint", TEXTS, "Box_L:", "Box_H:", f"{TEXTS}:31: C_Form_Box_H is no caption"),
    ("two letters", TEXTS, "'Bo&x'", "'B&o&x'", f"{TEXTS}:31: C_Form_Box_L marks more than one letter in English"),
    ("a form missing", TEXTS, "%d a|%d b|%d c", "%d a|%d b", f"{TEXTS}:23: M_A_Rows has 2 forms in Russian, not 3"),
    ("a form without the number", TEXTS, "%d a|%d b", "a|%d b",
     f"{TEXTS}:23: M_A_Rows has different format arguments: English %d|%d; Russian none|%d|%d"),
    ("a question in words", JOB, 'LText("M_A_Rows", "a b"),', '"Go on?",', f"{JOB}:1: words where a key is due: 'Go on?'"),
    ("the same on other lines", JOB, '{LText("M_A_Rows", "a b")', '{\nFormat(\n"Drop %s?", Name)',
     f"{JOB}:3: words where a key is due"),
    ("the same made a text", JOB, 'LText("M_A_Rows", "a b")', 'TLText("Go on?")', f"{JOB}:1: words where a key is due"),
    ("a note in words", JOB, 'LText("M_A_Rows"))', 'Format("made %s", X))', f"{JOB}:3: words where a key is due"),
    ("a reason in words", JOB, 'TLText("--yes")', '"it is there"', f"{JOB}:4: words where a key is due"),
    ("used, but waiting", WAITING, "M_A_Later", "ST_YES\nM_A_Later", f"{WAITING}:2: ST_YES is used"),
    ("waiting without a text", WAITING, "M_A_Later", "M_A_Never\nM_A_Later", f"{WAITING}:2: M_A_Never has no text"),
    ("waiting twice", WAITING, "M_A_Later", "M_A_Later\nm_a_later", f"{WAITING}:3: m_a_later is named twice"),
]

# The same for what makes the check impossible.
BROKEN = [
    ("no key in use", {**CLEAN, CODE: "\n", JOB: "\n"}, "no key in any source file"),
    ("no texts", {**CLEAN, TEXTS: "\ufeff\r\n"}, "no texts"),
    ("line feeds alone", {**CLEAN, TEXTS: CLEAN[TEXTS].replace("\r", "")}, "no texts"),
    ("no quote", {**CLEAN, TEXTS: CLEAN[TEXTS].replace("'b'", "'b")}, f"{TEXTS}:19: neither a name nor a text"),
    ("twice", {**CLEAN, TEXTS: CLEAN[TEXTS].replace("Later", "ASKED")}, f"{TEXTS}:17: a second text M_A_ASKED"),
]


def check(files):
    """The exit code and output lines of the checker over a tree of the given files."""
    with tempfile.TemporaryDirectory() as root:
        for name, text in files.items():
            path = Path(root, name)
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(text.encode("utf-8"))
        run = subprocess.run([sys.executable, CHECKER, "--root", root], capture_output=True, text=True, check=False)
        return run.returncode, (run.stdout + run.stderr).splitlines()


class CheckTextsTest(unittest.TestCase):
    def test_clean_tree_passes(self):
        code, lines = check(CLEAN)
        self.assertEqual((code, lines), (0, ["check-texts: 6 texts, 4 keys in use, 2 waiting, 0 faults"]))

    def test_planted_faults_are_caught(self):
        for what, path, old, new, report in FAULTS:
            with self.subTest(what):
                self.assertIn(old, CLEAN[path])
                code, lines = check({**CLEAN, path: CLEAN[path].replace(old, new, 1)})
                self.assertEqual(code, 1, lines)
                self.assertTrue(any(line.startswith(report) for line in lines), lines)

    def test_a_check_of_nothing_fails(self):
        for what, files, message in BROKEN:
            with self.subTest(what):
                code, lines = check(files)
                self.assertEqual(code, 2, lines)
                self.assertIn(message, lines[0])


if __name__ == "__main__":
    unittest.main()
