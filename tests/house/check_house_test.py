#!/usr/bin/python3
"""A small house that keeps every rule, and what the check says when one thing in it is wrong."""
import contextlib
import io
import tempfile
import unittest
from pathlib import Path

import check_house

SPECIFIED = "spec" + "ification"
FLOORS = ("util platform linux/http linux systools qt ui/widgets http request session service device tools ui/main login app").split()
HOUSE = {
    "src/CMakeLists.txt": "".join(f"add_subdirectory({floor})\n" for floor in FLOORS),
    "src/util/Json.h": "#pragma once\n#include <string>\nclass Json {\n};\n",
    "src/util/Json.cpp": '#include "util/Json.h"\n\n#include <nlohmann/json.hpp>\n',
    "src/util/CMakeLists.txt": "halvane_library(util SOURCES Json.cpp)\n",
    "src/platform/Browser.h": '#pragma once\n#include "util/Json.h"\nclass Browser {\n    virtual void open() = 0;\n};\nclass Page {\n};\n',
    "src/linux/http/Curl.h": '// The door.\n#pragma once\n#include <curl/curl.h>\n#include "platform/Browser.h"\n',
    "src/linux/device/Facts.h": '#pragma once\n#include "util/Json.h"\n',
    "src/systools/Tool.h": '#pragma once\n#include "linux/device/Facts.h"\n',
    "src/ui/widgets/Button.h": "#pragma once\n#include <QPushButton>\nclass Button : public QPushButton {\n};\n",
    "src/http/Manager.h": '#pragma once\n#include "platform/Browser.h"\n',
    "src/request/Center.h": '#pragma once\n#include "http/Manager.h"\n',
    "src/login/LoginFlow.h": '#pragma once\n#include "http/Manager.h"\nclass LoginEvents {\n    virtual void x() = 0;\n};\nclass LoginFlow {\n};\n',
    "src/login/LoginView.h": '#pragma once\n#include <QWidget>\n#include "login/LoginFlow.h"\n#include "ui/widgets/Button.h"\n',
    "src/app/Assembly.h": '#pragma once\n#include <QObject>\n#include "linux/http/Curl.h"\n#include "login/LoginView.h"\n',
    "server/Main.cpp": '#include "util/Json.h"\n#include "server/store/Database.h"\n',
    "server/store/Database.h": "#pragma once\n#include <sqlite3.h>\n",
    "server/CMakeLists.txt": "add_executable(server Main.cpp)\n",
    "tests/util/json_test.cpp": '#include "util/Json.h"\n#include <QObject>\n#include <curl/curl.h>\n',
    "tests/util/CMakeLists.txt": "halvane_test(util SOURCES json_test.cpp)\n",
    "README.md": f"It keeps to the Desktop Entry {SPECIFIED}. Part 1 of 2.\n",
    "LICENSE": f"any {SPECIFIED}\n",
    "build/junk.h": f"the {SPECIFIED}\n",
}


def function(lines, begin="void f(int a) {\n", end="}\n"):
    return begin + "    g();\n" * (lines - 2) + end


# What is wrong, the file that is changed, its new text (None: it is gone), the rule, what the fault says.
FAULTS = [
    ("an area uses a higher one", "src/http/Manager.h", '#pragma once\n#include "login/LoginFlow.h"\n', "arrows",
     "src/http/Manager.h:2: includes login/LoginFlow.h, but login stands above http"),
    ("the lowest floor uses the next", "src/util/Json.h", '#pragma once\n#include "platform/Browser.h"\n', "arrows", "platform stands above util"),
    ("an area reaches round a port", "src/login/LoginFlow.h", '#pragma once\n#include "linux/http/Curl.h"\n', "arrows", "only the assembly in app"),
    ("the transport uses its neighbour", "src/linux/http/Curl.h", '#pragma once\n#include "linux/device/Facts.h"\n', "arrows",
     "linux/http uses only platform, util"),
    ("a tool uses more of linux", "src/systools/Tool.h", '#pragma once\n#include "linux/http/Curl.h"\n', "arrows",
     "systools uses only linux, platform, util"),
    ("the flow draws", "src/login/LoginFlow.h", '#pragma once\n#include "ui/widgets/Button.h"\n', "arrows", "only views use ui/widgets"),
    ("an area uses the request layer", "src/login/LoginFlow.h", '#pragma once\n#include "request/Center.h"\n', "arrows", "only the assembly in app names request"),
    ("the request layer uses more", "src/request/Center.h", '#pragma once\n#include "session/X.h"\n', "arrows",
     "request uses only http, platform, util"),
    ("the client knows the server", "src/app/Assembly.h", '#pragma once\n#include "server/store/Database.h"\n', "arrows", "knows nothing of server/"),
    ("production code uses a fake", "src/app/Assembly.h", '#pragma once\n#include "support/ManualMainLoop.h"\n', "arrows", "knows nothing of support/"),
    ("the server uses a port", "server/Main.cpp", '#include "platform/Browser.h"\n', "arrows", "the server uses only util"),
    ("an include that is no path from src", "src/app/Assembly.h", '#pragma once\n#include "Button.h"\n', "arrows", "no path from src/"),
    ("a folder that is no area", "src/extra/Thing.h", "#pragma once\n", "arrows", "not one of the areas"),
    ("an include after a comment", "src/http/Manager.h", '/* a\n b */ // c\n#pragma once\n#  include "login/LoginFlow.h"\n', "arrows", "Manager.h:4:"),
    ("Qt in a plain file", "src/login/LoginFlow.h", "#pragma once\n#include <QString>\n", "qt", "LoginFlow.h:2: Qt (QString) in a plain file"),
    ("a Qt module in a plain file", "src/http/Manager.h", "#pragma once\n#include <QtCore/qglobal.h>\n", "qt", "in a plain file"),
    ("a view in an area without views", "src/http/HttpView.h", "#pragma once\n#include <QWidget>\n", "qt", "HttpView.h:2:"),
    ("Qt in the server", "server/Main.cpp", "#include <QObject>\n", "qt", "server/Main.cpp:1:"),
    ("Qt through a header", "src/login/LoginFlow.h", '#pragma once\n#include "login/LoginView.h"\n', "qt", "gets Qt through login/LoginView.h"),
    ("a library beside its door", "src/util/Json.h", "#pragma once\n#include <nlohmann/json_fwd.hpp>\n", "doors", "JSON has its door in src/util/Json.cpp"),
    ("a library in quotes", "src/http/Manager.h", '#pragma once\n#include "curl/curl.h"\n', "doors", "libcurl has its door"),
    ("the database in the server's main", "server/Main.cpp", "#include <sqlite3.h>\n", "doors", "SQLite has its door"),
    ("a test that is not built", "tests/util/text_test.cpp", "\n", "registered", "text_test.cpp: no CMakeLists.txt names it"),
    ("a test that is only in a comment", "tests/util/CMakeLists.txt", "# json_test.cpp\n", "registered", "json_test.cpp"),
    ("a longer name is another file", "tests/util/CMakeLists.txt", "x(old_json_test.cpp json_test.cpp.in)\n", "registered", "json_test.cpp"),
    ("a source of the server", "server/store/Database.cpp", '#include "server/store/Database.h"\n', "registered", "Database.cpp"),
    ("a Python test", "tests/util/tree_test.py", "\n", "registered", "tree_test.py"),
    ("a header without its guard", "src/util/Json.h", "// #pragma once\n#include <string>\n", "headers", "#pragma once"),
    ("another header first", "src/util/Json.cpp", '#include <string>\n#include "util/Json.h"\n', "headers", "own header first"),
    ("two classes", "src/util/Json.h", "#pragma once\nclass Json {\n};\nclass Other final : X {\n};\n", "classes", "Other should have one"),
    ("a class of another name", "src/util/Json.h", "#pragma once\nclass Jsn {\n};\n", "classes", "its class is Jsn"),
    ("a long file", "src/util/Json.cpp", "\n" * 501, "lengths", "501 lines"),
    ("a long function", "src/util/Json.cpp", "namespace a {\nint g() { return 1; }\n" + function(61) + "}\n", "lengths", "Json.cpp:3: a function of 61"),
    ("a long method", "src/util/Json.h", "class Json {\npublic:\n" + function(61, "    Json() : a_{1} {\n") + "};\n", "lengths", "of 61"),
    ("a long Python function", "tests/util/help.py", "def f():\n" + "    g()\n" * 60, "lengths", "of 61"),
    ("the papers in a comment", "src/util/Json.cpp", f"// As the {SPECIFIED} has it\n", "words", "Json.cpp:1:"),
    ("a chapter in a test", "tests/util/json_test.cpp", "// Par" + "t 3.1\n", "words", "json_test.cpp:1:"),
    ("the papers' file in a document", "README.md", SPECIFIED[:4] + ".md\n", "words", "README.md:1:"),
]

# What looks like a fault and is none.
ALLOWED = [
    ("an include in a comment", "src/util/Json.h", '#pragma once\n/*\n#include "login/LoginFlow.h"\n*/\n// #include <QString>\n'),
    ("a brace in a text or a comment", "src/util/Json.cpp", '#include "util/Json.h"\nint f() {\n    auto s = R"({ " )"; // {\n    h(\'{\', "{");\n}\n' + function(60)),
    ("a long table in a function", "src/util/Json.cpp", '#include "util/Json.h"\nvoid f() {\n    const Row rows[] = {\n' + "        {1},\n" * 80 + "    };\n}\n"),
    ("a class inside a class, an enumeration, a declaration, an exception", "src/util/Json.h",
     "#pragma once\nclass Later;\nenum class Kind { A };\nclass JsonError : public E {\n};\nclass Json {\n    class Inner {\n    };\n};\n"),
    ("functions without a class", "src/util/Json.h", "#pragma once\nint f();\n"),
]


class CheckHouseTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        for path in HOUSE:
            self.write(path, HOUSE[path])

    def write(self, path, text):
        (self.root / path).parent.mkdir(parents=True, exist_ok=True)
        (self.root / path).write_text(text, encoding="utf-8")

    def check(self, *rules):
        output = io.StringIO()
        with contextlib.redirect_stdout(output), contextlib.redirect_stderr(output):
            try:
                code = check_house.main(["--root", str(self.root), *rules])
            except SystemExit as stop:
                code = stop.code
        return code, output.getvalue()

    def changed(self, path, text):
        """Puts `path` back afterwards."""
        change = contextlib.ExitStack()
        self.write(path, text)
        change.callback(lambda: self.write(path, HOUSE[path]) if path in HOUSE else (self.root / path).unlink())
        return change

    def test_a_house_in_order_has_no_faults(self):
        code, output = self.check()
        self.assertEqual((code, output.splitlines()[-1].split(", ")[1]), (0, "0 faults"), output)

    def test_each_fault_is_found_by_its_rule(self):
        for name, path, text, rule, words in FAULTS:
            with self.subTest(name), self.changed(path, text):
                code, output = self.check(rule)
                self.assertEqual(code, 1, output)
                self.assertIn(words, output)
        self.assertEqual(self.check()[0], 0, "every change was put back")

    def test_what_only_looks_like_a_fault_is_none(self):
        for name, path, text in ALLOWED:
            with self.subTest(name), self.changed(path, text):
                self.assertEqual(self.check(), (0, f"{len(HOUSE) - 1} files, 0 faults\n"))

    def test_every_rule_has_an_example_of_its_fault(self):
        self.assertEqual({rule for _, _, _, rule, _ in FAULTS}, set(check_house.CHECKS) - {"encoding"})

    def test_every_rule_is_run_with_the_tests(self):
        listing = Path(__file__).with_name("CMakeLists.txt").read_text(encoding="utf-8")
        self.assertIn(f"IN ITEMS {' '.join(check_house.CHECKS)})", listing)

    def test_bytes_that_are_no_text_are_a_fault(self):
        (self.root / "src/util/Json.cpp").write_bytes(b'#include "util/Json.h"\n// \xff\n')
        self.assertIn("src/util/Json.cpp: is not UTF-8", self.check("encoding")[1])

    def test_an_unknown_rule_and_an_empty_house_are_refused(self):
        self.assertEqual(self.check("arows")[0], 2)
        for path in list(HOUSE):
            (self.root / path).unlink()
        code, output = self.check()
        self.assertEqual(code, 2)
        self.assertIn("no sources", output)


if __name__ == "__main__":
    unittest.main()
