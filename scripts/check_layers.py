#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Checks what each folder includes, licence lines and file lengths.

The table below is the project's architecture as data. A violation is printed with file, line, the
offending text and what would be allowed there; the exit status is 1 then, 0 otherwise.

    scripts/check_layers.py [ROOT]
"""

import os
import re
import sys

# Files of server/ that form its shell, above all layers; every other file there belongs to the core.
SERVER_SHELL = {"alloc_hooks", "command", "command_table", "database_commands", "dispatcher",
                "odb_server", "parent_watchdog", "small_commands"}

# Who may include whose headers. Units of one layer never include each other.
MAY_INCLUDE = {
    "base": ["base"],
    "port": ["base", "port"],
    "odb/include": ["odb/include", "odb engine"],
    "odb engine": ["base", "port", "odb/include", "odb engine"],
    "odb/src": ["base", "port", "odb/include", "odb engine", "odb/src"],
    "server core": ["base", "port", "odb/include", "server core"],
    "registry": ["base", "port", "odb/include", "server core", "registry"],
    "model": ["base", "port", "odb/include", "server core", "registry", "model"],
    "results": ["base", "port", "odb/include", "server core", "registry", "results"],
    "catalogue": ["base", "port", "odb/include", "server core", "registry", "catalogue"],
    "regions": ["base", "port", "odb/include", "server core", "registry", "regions"],
    "server shell": ["base", "port", "odb/include", "server core", "registry", "model", "results",
                     "catalogue", "regions", "server shell"],
    "client": ["base", "port", "client"],
    "importer": ["base", "port", "odb/include", "importer"],
    # Programs for others to copy from: they see what a user of the database library sees.
    "samples": ["base", "port", "odb/include", "samples"],
}
EVERYTHING = sorted(MAY_INCLUDE)
MAY_INCLUDE["tests"] = EVERYTHING + ["tests"]
MAY_INCLUDE["bench"] = EVERYTHING + ["bench"]

# Outside libraries: pattern of the header name, pattern of the files that may include it.
LIBRARIES = [
    ("HDF5", r"(hdf5|H5\w*)\.h$", r"^(odb/src|tests|bench)/"),
    ("zlib", r"(zlib|zconf)\.h$", r"^(catalogue/cache\w*\.(cpp|h)|(tests|bench)/.*)$"),
    ("the leak sanitizer's interface", r"sanitizer/", r"^server/shutdown\.cpp$"),
    ("GoogleTest", r"(gtest|gmock)/", r"^tests/"),
]
# What a vendor's library has no name for: what the API cannot write, and the embedded library's own
# parts. Of the server, the adapter's embedded variants alone may use it.
EMBEDDED_HEADERS = r"odb_(embedded\.h$|engine/)"
EMBEDDED_FILES = r"^(odb|importer|tests|bench)/|^server/sdk_(?!adapter|vendor)\w+\.h$"
PLATFORM_FILES = r"^(port/\w+|tests/odb/failing_calls)\.cpp$"

STANDARD = set("""
algorithm any array atomic bitset cassert cctype cerrno cfenv cfloat charconv chrono cinttypes climits
clocale cmath codecvt complex condition_variable csetjmp csignal cstdarg cstddef cstdint cstdio cstdlib
cstring ctime cwchar cwctype deque exception execution filesystem forward_list fstream functional
future initializer_list iomanip ios iosfwd iostream istream iterator limits list locale map memory
memory_resource mutex new numeric optional ostream queue random ratio regex scoped_allocator set
shared_mutex sstream stack stdexcept streambuf string string_view system_error thread tuple
type_traits typeindex typeinfo unordered_map unordered_set utility valarray variant vector
""".split())

LICENCE = "SPDX-License-Identifier: BSD-3-Clause"
MAX_LINES = 600

SKIPPED_FOLDERS = {"build", "__pycache__"}
CODE = (".cpp", ".h")
SCRIPTS = (".py", ".sh", ".cmake")


def unitOf(path):
    """The architecture's name of what a file belongs to, None where the table has no row."""
    parts = path.split("/")
    if parts[0] == "odb":
        return "odb engine" if parts[1:3] == ["include", "odb_engine"] else "/".join(parts[:2])
    if parts[0] == "server":
        stem = os.path.splitext(parts[-1])[0]
        return "server shell" if stem in SERVER_SHELL else "server core"
    return parts[0]


def sourceFiles(root):
    for folder, folders, files in os.walk(root):
        folders[:] = sorted(f for f in folders
                            if f not in SKIPPED_FOLDERS and not f.startswith("."))
        for name in sorted(files):
            yield os.path.relpath(os.path.join(folder, name), root).replace(os.sep, "/")


def needsLicence(path, firstLine):
    return (path.endswith(CODE + SCRIPTS) or os.path.basename(path) == "CMakeLists.txt"
            or firstLine.startswith("#!"))


def withoutComments(text):
    """The text with comments blanked, its lines kept; string literals are left alone."""
    def blank(match):
        token = match.group(0)
        return token if token[0] in "\"'" else "\n" * token.count("\n")
    return re.sub(r'"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])*\'|//[^\n]*|/\*.*?\*/', blank, text,
                  flags=re.S)


class Checker:
    def __init__(self, root):
        self.root = root
        self.problems = []

    def report(self, path, line, text, why):
        self.problems.append(f"{path}:{line}: {text}\n    {why}")

    def run(self):
        nFiles = 0
        for path in sourceFiles(self.root):
            with open(os.path.join(self.root, path), encoding="utf-8", errors="replace") as file:
                text = file.read(1 << 20) if path.endswith(CODE) else file.read(1 << 12)
            lines = text.split("\n")
            if needsLicence(path, lines[0]):
                nFiles += 1
                self.checkLicence(path, lines)
            if path.endswith(CODE):
                self.checkIncludes(path, text)
                if len(lines) - 1 > MAX_LINES:
                    self.report(path, MAX_LINES, f"{len(lines) - 1} lines",
                                f"allowed: {MAX_LINES}; split the file")
        return nFiles

    def checkLicence(self, path, lines):
        head = lines[:1] if path.endswith(CODE) else lines[:2]
        if not any(LICENCE in line for line in head):
            self.report(path, 1, lines[0].strip() or "(empty)",
                        f"the first line must be a comment with {LICENCE}")

    def checkIncludes(self, path, text):
        unit = unitOf(path)
        if unit not in MAY_INCLUDE:
            self.report(path, 1, unit, "this folder is not in the table of scripts/check_layers.py; "
                        "known: " + ", ".join(sorted(MAY_INCLUDE)))
            return
        for number, line in enumerate(withoutComments(text).split("\n"), 1):
            if not re.match(r"\s*#\s*include(_next)?\b", line):
                continue
            match = re.match(r'\s*#\s*include\s*(?:"([^"]+)"|<([^>]+)>)', line)
            if not match:
                self.report(path, number, line.strip(), "allowed: a literal file name")
                continue
            quoted, angled = match.groups()
            why = self.quotedFault(path, unit, quoted) if quoted else \
                self.angledFault(path, unit, angled)
            if why:
                self.report(path, number, line.strip(), why)

    def unitFault(self, unit, target):
        if target in MAY_INCLUDE[unit]:
            return None
        return f"{unit} must not include {target}; allowed: " + ", ".join(MAY_INCLUDE[unit])

    def isApiHeader(self, name):
        return name.startswith("odb_") or os.path.isfile(os.path.join(self.root, "odb/include", name))

    def apiFault(self, path, unit, name):
        if not re.match(EMBEDDED_HEADERS, name):
            return self.unitFault(unit, "odb/include")
        if not re.search(EMBEDDED_FILES, path):
            return f"{name} is included by files that match {EMBEDDED_FILES} alone"
        return None if unit == "server core" else self.unitFault(unit, unitOf("odb/include/" + name))

    def quotedFault(self, path, unit, name):
        if ".." in name.split("/"):
            return "allowed: names from the repository's root, without .."
        if "/" not in name:
            if unit == "odb/include" and self.isApiHeader(name):
                return None
            return "allowed: names from the repository's root, as in \"base/bytes.h\""
        target = unitOf(name)
        if target not in MAY_INCLUDE:
            return self.libraryFault(path, name)
        return self.unitFault(unit, target)

    def angledFault(self, path, unit, name):
        if name in STANDARD:
            return None
        if self.isApiHeader(name):
            return self.apiFault(path, unit, name)
        return self.libraryFault(path, name)

    def libraryFault(self, path, name):
        for library, header, allowed in LIBRARIES:
            if re.match(header, name):
                if re.match(allowed, path):
                    return None
                return f"{library} is included by files that match {allowed} alone"
        if re.match(PLATFORM_FILES, path):
            return None
        return ("not a header of the C++ standard library; platform headers are included by "
                "port/*.cpp alone, use port/port.h")


def main():
    root = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(__file__), "..")
    checker = Checker(root)
    nFiles = checker.run()
    for problem in checker.problems:
        print(problem)
    if nFiles == 0:
        print(f"no source file below {root}")
        return 1
    print(f"check_layers: {nFiles} files, {len(checker.problems)} problems")
    return 1 if checker.problems else 0


if __name__ == "__main__":
    sys.exit(main())
