#!/usr/bin/env python3
"""Plants violations into a small tree and expects scripts/check-layers to name each; and nothing in a clean tree."""

import json
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

REPOSITORY = Path(__file__).resolve().parents[2]
CHECKER = REPOSITORY / "scripts" / "check-layers"
LAYERS = (REPOSITORY / "cmake" / "layers.json").read_text(encoding="utf-8")

CLEAN = {
    "velkrund/platform/ormtools/Text.h": "#pragma once\n#include <string>\n",
    "velkrund/platform/database/Tables.h": '#pragma once\n#include "velkrund/platform/ormtools/Text.h"\n',
    "velkrund/eif/EISource.h": '#pragma once\n#include "velkrund/platform/database/Tables.h"\n',
    "velkrund/eif/EISource.cpp": '#include "velkrund/eif/EISource.h"\n#include <cstring>\n#ifdef __cplusplus\n#endif\n',
    "velkrund/resources/Languages.h": "#pragma once\n",
    "velkrund/dictionary/TableData.cpp": '#include "velkrund/eif/EISource.h"\n',
    "standalone/files/FileSystem.cpp": '#include <fcntl.h>\n#include <sys/stat.h>\n',
    "standalone/drivers/sqlite/Connection.cpp": "#include <sqlite3.h>\n#ifdef SQLITE_OPEN_URI\n#endif\n",
    "hosts/cli/line/Option.cpp": '#include <CLI/CLI.hpp>\n#include "velkrund/platform/ormtools/Text.h"\n',
    "tests/eif/EISourceTest.cpp": '#include <gtest/gtest.h>\n#include "velkrund/eif/EISource.h"\n',
    "velkrund/eif/Longest.cpp": "//\n" * 500,
    "examples/export.c": "#include <stdio.h>\n",
}

WHOLE_PLATFORM = '#include "velkrund/platform/installation/Platform.h"\n'

# The planted file, its text, and where and what the checker has to report.
VIOLATIONS = [
    ("upward", "velkrund/eif/Bad.cpp", '\n#include "velkrund/dictionary/Above.h"\n', 2,
     "velkrund/eif may not use velkrund/dictionary"),
    ("sideways", "velkrund/dictionary/Bad.cpp", '#include "velkrund/resources/Languages.h"\n', 1,
     "velkrund/dictionary may not use velkrund/resources"),
    ("platform looks up", "velkrund/platform/ormtools/Bad.h", '#include "velkrund/eif/EISource.h"\n', 1,
     "velkrund/platform/ormtools may not use velkrund/eif"),
    ("values into tables", "velkrund/platform/ormtools/Bad.h", '#include "velkrund/platform/database/Tables.h"\n', 1,
     "velkrund/platform/ormtools may not use velkrund/platform/database"),
    ("structures into windows", "velkrund/platform/structures/Bad.cpp",
     '#include "velkrund/platform/lctrls/Form.h"\n', 1,
     "velkrund/platform/structures may not use velkrund/platform/lctrls"),
    ("the module into the whole platform", "velkrund/module/Bad.cpp", WHOLE_PLATFORM, 1,
     "velkrund/module may not use velkrund/platform/installation"),
    ("stand-alone into the whole platform", "standalone/databases/Bad.cpp", WHOLE_PLATFORM, 1,
     "standalone/databases may not use velkrund/platform/installation"),
    ("a job into the whole platform", "jobs/files/Bad.cpp", WHOLE_PLATFORM, 1,
     "jobs/files may not use velkrund/platform/installation"),
    ("a job into a host", "jobs/policies/Bad.cpp", '#include "hosts/cli/line/Option.h"\n', 1,
     "jobs/policies may not use hosts/cli/line"),
    ("a job that knows options", "jobs/application/Bad.cpp", "#include <CLI/CLI.hpp>\n", 1,
     "jobs/application may not use the package CLI11"),
    ("a job that knows JSON", "jobs/files/Bad.cpp", "#include <nlohmann/json.hpp>\n", 1,
     "jobs/files may not use the package nlohmann-json"),
    ("host into host", "hosts/c/Bad.cpp", '#include "hosts/cli/Session.h"\n', 1, "hosts/c may not use hosts/cli"),
    ("module into stand-alone", "velkrund/module/Bad.cpp", '#include "standalone/files/FileSystem.h"\n', 1,
     "velkrund/module may not use standalone/files"),
    ("stand-alone into module", "standalone/tables/Bad.cpp", '#include "velkrund/eif/EISource.h"\n', 1,
     "standalone/tables may not use velkrund/eif"),
    ("in angle brackets", "velkrund/eif/Bad.cpp", "#  include <velkrund/dictionary/Above.h>\n", 1,
     "velkrund/eif may not use velkrund/dictionary"),
    ("POSIX in the module", "velkrund/eif/Bad.cpp", "#include <unistd.h>\n", 1,
     "velkrund/ uses the C++ standard library alone"),
    ("C header in the module", "velkrund/eif/Bad.cpp", "#include <stdint.h>\n", 1,
     "velkrund/ uses the C++ standard library alone"),
    ("POSIX without the mark", "standalone/tables/Bad.cpp", "#include <sys/stat.h>\n", 1, '"system" mark'),
    ("third party in the module", "velkrund/platform/database/Bad.cpp", "#include <sqlite3.h>\n", 1,
     "velkrund/platform/database may not use the package sqlite3"),
    ("another folder's package", "standalone/tables/Bad.cpp", "#include <spdlog/spdlog.h>\n", 1,
     "standalone/tables may not use the package spdlog"),
    ("unknown package", "hosts/cli/Bad.cpp", "#include <boost/any.hpp>\n", 1, "belongs to no package"),
    ("test library", "velkrund/eif/Bad.cpp", "#include <gtest/gtest_prod.h>\n", 1, "belongs to no package"),
    ("relative path", "velkrund/eif/Bad.cpp", '#include "EISource.h"\n', 1, "start at the root"),
    ("missing header", "velkrund/eif/Bad.cpp", '#include "velkrund/eif/Nowhere.h"\n', 1, "does not exist"),
    ("macro", "velkrund/eif/Bad.cpp", "#include CONFIGURATION\n", 1, "macro"),
    ("engine condition", "velkrund/dsp/Bad.cpp", "#if defined(HAVE_SQLITE)\n#endif\n", 1, "only a driver knows"),
    ("engine condition in a host", "hosts/cli/Bad.cpp", "#ifndef USE_POSTGRESQL\n#endif\n", 1, "only a driver knows"),
    ("system condition", "velkrund/eif/Bad.cpp", "#ifdef __linux__\n#endif\n", 1, "operating system"),
    ("undeclared folder", "velkrund/helpers/Bad.h", "#pragma once\n", 1, "not in cmake/layers.json"),
    ("undeclared subfolder", "velkrund/platform/misc/Bad.h", "#pragma once\n", 1, "not in cmake/layers.json"),
    ("over-long source", "velkrund/eif/Bad.cpp", "//\n" * 501, 501, "501 lines"),
    ("over-long test", "tests/eif/BadTest.cpp", "//\n" * 501, 501, "501 lines"),
    ("over-long example", "examples/bad.c", "//\n" * 501, 501, "501 lines"),
    ("unbuilt suffix", "velkrund/eif/Bad.hpp", "#pragma once\n", 1, "nothing builds or checks"),
    ("C in the module", "velkrund/eif/Bad.c", "\n", 1, "nothing builds or checks"),
]

# The part of layers.json that is broken, the name of what is broken there, its value, and the message.
BROKEN_EDGES = [
    ("cycle", "layers", "velkrund/platform/ormtools", {"uses": ["velkrund/eif"]},
     "cycle: velkrund/platform/ormtools -> velkrund/eif -> velkrund/platform/ormtools"),
    ("cycle by a group", "layers", "velkrund/platform/database", {"uses": ["windows"]},
     "cycle: velkrund/platform/database -> velkrund/platform/"),
    ("unknown folder", "layers", "velkrund/eif", {"uses": ["velkrund/x"]},
     "velkrund/eif uses the unknown folder or group velkrund/x"),
    ("unknown group", "layers", "velkrund/eif", {"uses": ["modules"]},
     "velkrund/eif uses the unknown folder or group modules"),
    ("unknown folder in a group", "groups", "module", ["velkrund/eif", "velkrund/x"],
     "the group module has the unknown folder velkrund/x"),
    ("a group in a group", "groups", "core", ["velkrund/eif", "platform"],
     "the group core has the unknown folder platform"),
    ("group named like a folder", "groups", "velkrund/eif", ["velkrund/dialogs"],
     "the group velkrund/eif is named like a folder"),
]


def check(files, layers=LAYERS):
    """The exit code and output lines of the checker over a tree of the given files."""
    with tempfile.TemporaryDirectory() as root:
        for name, text in {"cmake/layers.json": layers, **files}.items():
            path = Path(root, name)
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")
        run = subprocess.run([sys.executable, CHECKER, "--root", root], capture_output=True, text=True, check=False)
        return run.returncode, (run.stdout + run.stderr).splitlines()


def configure(layers):
    """What cmake/Layers.cmake says against the edges; it stops there when that is anything."""
    with tempfile.TemporaryDirectory() as root:
        Path(root, "layers.json").write_text(layers, encoding="utf-8")
        shutil.copy(REPOSITORY / "cmake" / "Layers.cmake", root)
        Path(root, "Edges.cmake").write_text(
            "cmake_minimum_required(VERSION 3.25)\ninclude(${CMAKE_CURRENT_LIST_DIR}/Layers.cmake)\n"
            "foreach(Folder IN LISTS VELKRUND_LAYERS)\n  velkrund_layer_uses(Uses ${Folder})\nendforeach()\n",
            encoding="utf-8")
        run = subprocess.run(["cmake", "-P", Path(root, "Edges.cmake")], capture_output=True, text=True, check=False)
        return " ".join(run.stderr.split())  # it breaks its lines anywhere


class CheckLayersTest(unittest.TestCase):
    def test_clean_tree_passes(self):
        code, lines = check(CLEAN)
        self.assertEqual((code, lines), (0, ["check-layers: 10 files, 11 includes, 0 violations"]))

    def test_planted_violations_are_caught(self):
        base = {
            **CLEAN,
            "velkrund/dictionary/Above.h": "#pragma once\n",
            "standalone/files/FileSystem.h": "#pragma once\n",
            "velkrund/platform/lctrls/Form.h": "#pragma once\n",
            "velkrund/platform/installation/Platform.h": "#pragma once\n",
            "hosts/cli/line/Option.h": "#pragma once\n",
            "hosts/cli/Session.h": "#pragma once\n",
        }
        for what, path, text, line, message in VIOLATIONS:
            with self.subTest(what):
                code, lines = check({**base, path: text})
                self.assertEqual(code, 1, lines)
                self.assertEqual(len(lines), 2, lines)  # the violation and the summary
                self.assertTrue(lines[0].startswith(f"{path}:{line}: "), lines)
                self.assertIn(message, lines[0])

    def test_a_check_of_nothing_fails(self):
        for what, files, layers, message in [
            ("no sources", {"tests/eif/EISourceTest.cpp": ""}, LAYERS, "no source file"),
            ("broken file", CLEAN, "{", "layers.json"),
        ]:
            with self.subTest(what):
                code, lines = check(files, layers)
                self.assertEqual(code, 2, lines)
                self.assertIn(message, lines[0])

    def test_broken_edges_are_refused(self):
        for what, part, name, value, message in BROKEN_EDGES:
            with self.subTest(what):
                content = json.loads(LAYERS)
                content[part][name] = value
                code, lines = check(CLEAN, json.dumps(content))
                self.assertEqual(code, 2, lines)
                self.assertIn(message, lines[0])
                if not message.startswith("cycle"):  # those are for the checker alone
                    self.assertIn(message, configure(json.dumps(content)))

    def test_the_build_takes_the_edges_of_the_tree(self):
        self.assertEqual(configure(LAYERS), "")


if __name__ == "__main__":
    unittest.main()
