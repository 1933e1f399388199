"""What every file keeps to: registered, one class, not too long, no forbidden words."""
import ast
import re

MAX_FILE = 500
MAX_FUNCTION = 60
CLASS = re.compile(r"^(?:template\s*<[^\n]*>\s*)?class\s+(?:\[\[\w+\]\]\s*)?(\w+)[^;{()]*\{", re.M)
ACCESS = re.compile(r"^\s*(public|private|protected|signals|(public|private) slots)\s*:", re.M)
SCOPE = re.compile(r"^(template\s*<.*>\s*)?(inline\s+)?(namespace|class|struct|enum|union|extern\s*\"\")", re.S)
# Put together here so that this file does not contain them itself.
SPECIFIED = "spec" + "ification"
FORBIDDEN = re.compile(rf"\b{SPECIFIED}s?\b|\b{SPECIFIED[:4]}\.md\b|\bthe {SPECIFIED[:4]}\b|\bPart" + r" \d+\.\d", re.I)
# Standards that others published may be named.
ALLOWED_NEIGHBOUR = re.compile(rf"(desktop entry|freedesktop|base directory|secret service|icon theme|RFC \d+) {SPECIFIED}", re.I)
BUILT = ("src", "server", "tests", "bench")


def check_registered(tree):
    """A source that no CMakeLists.txt names is never built, and a test that is not built never fails."""
    for file in [*tree.cpp(*BUILT), *tree.with_suffix(".py", under="tests/")]:
        if file.suffix == ".h" or (file.suffix == ".py" and not file.stem.endswith("_test")):
            continue
        if not any(_is_named(file.path, listing) for listing in tree.files.values() if listing.name == "CMakeLists.txt"):
            yield f"{file.path}: no CMakeLists.txt names it"


def _is_named(path, listing):
    folder = listing.path[:-len("CMakeLists.txt")]
    if not path.startswith(folder):
        return False
    text = re.sub(r"(?m)#.*$", "", listing.text).replace("${CMAKE_CURRENT_SOURCE_DIR}/", "")
    return re.search(rf"(?<![\w./-]){re.escape(path[len(folder):])}(?![\w./-])", text) is not None


def check_headers(tree):
    """Headers are guarded, and a source includes its own first, which proves that it stands alone."""
    for file in tree.cpp(*BUILT):
        if file.suffix == ".h":
            lines = [line for line in file.code.splitlines() if line.strip()]
            if not lines or lines[0].strip() != "#pragma once":
                yield f"{file.path}: #pragma once is not its first line"
        elif own := _own_header(tree, file):
            if not file.includes or not own.endswith(file.includes[0].path):
                yield f"{file.path}: does not include its own header first"


def _own_header(tree, file):
    header = file.path[:-len(".cpp")] + ".h"
    return header if header in tree.files else ""


def check_classes(tree):
    """One class a header, named like the file.

    Beside it may stand structs, the exception that it throws, and the interface by which it calls back. The headers
    of platform/ are each a service with its values, and go by the service's name.
    """
    for file in tree.cpp("src", "server"):
        if file.suffix != ".h" or file.path.startswith("src/platform/"):
            continue
        classes = {}
        for match in CLASS.finditer(file.code):
            body = file.code[match.end():file.code.find("\n}", match.end())]
            classes.setdefault(match.group(1), "= 0;" in body or match.group(1).endswith("Error"))
        if file.stem in classes:
            del classes[file.stem]
        elif len(classes) == 1 and not any(classes.values()):
            yield f"{file.path}: its class is {next(iter(classes))}; the file is named after the class"
            continue
        if more := [name for name, companion in classes.items() if not companion]:
            yield f"{file.path}: one class a file; {', '.join(more)} should have one"


def check_lengths(tree):
    for file in [*tree.cpp(*BUILT), *tree.with_suffix(".py")]:
        count = file.text.count("\n")
        if count > MAX_FILE:
            yield f"{file.path}: {count} lines; {MAX_FILE} are the most"
        functions = python_functions(file) if file.suffix == ".py" else cpp_functions(file)
        for line, length in functions:
            if length > MAX_FUNCTION:
                yield f"{file.path}:{line}: a function of {length} lines; {MAX_FUNCTION} are the most"


def python_functions(file):
    for node in ast.walk(ast.parse(file.text)):
        if isinstance(node, (ast.FunctionDef, ast.AsyncFunctionDef)):
            yield node.lineno, node.end_lineno - node.lineno + 1


def cpp_functions(file):
    """(line, length) of each function, found by its braces; what stands inside one is part of it.

    The rows of a table (`= {…}`) do not count: a long table is easy to read.
    """
    code = re.sub(r"(?m)^\s*#.*$", "", file.code)
    scopes = []  # of each open brace: (kind, line of its beginning)
    head, line, head_line, rows = "", 1, 1, 0
    for character in code:
        if character == "{":
            scopes.append((_kind_of(head, [kind for kind, _ in scopes]), head_line))
        elif character == "}" and scopes:
            kind, start = scopes.pop()
            if kind == "function":
                yield start, line - start + 1 - rows
                rows = 0
            elif kind == "table":
                rows += line - start
        if character in "{};":
            head = ""
        else:
            if not head.strip():
                head_line = line + (character == "\n")
            head += character
        line += character == "\n"


def _kind_of(head, around):
    """What an opening brace begins, by the text before it and the braces around it."""
    head = ACCESS.sub("", head).strip()
    if "table" in around:
        return "inner"
    if head.endswith("="):
        return "table"
    if "function" in around:
        return "inner"
    if SCOPE.match(head):
        return "scope"
    # Nothing before it: the body after a constructor's last braced initialiser.
    return "function" if not head or (")" in head and not head.endswith(("(", ","))) else "table"


def check_words(tree):
    """The code speaks of the system itself, never of the papers it was made from."""
    for file in tree.files.values():
        if file.name == "LICENSE":
            continue
        for number, line in enumerate(file.text.splitlines(), 1):
            if FORBIDDEN.search(ALLOWED_NEIGHBOUR.sub("", line)):
                yield f"{file.path}:{number}: say it as the system's own developer would: {line.strip()[:80]}"


def check_encoding(tree):
    for path in tree.unreadable:
        yield f"{path}: is not UTF-8"


CHECKS = {"registered": check_registered, "headers": check_headers, "classes": check_classes, "lengths": check_lengths,
          "words": check_words, "encoding": check_encoding}
