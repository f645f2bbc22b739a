#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Checks what each folder includes, licence lines, opening comments and file lengths.

The table below is the project's architecture as data. A violation is printed with file, line, the
offending text and what would be allowed there; the exit status is 1 then, 0 otherwise.

    scripts/check_layers.py [ROOT]
"""

import os
import re
import sys

# Each folder and what it may include besides itself: the names of folders, a folder without its
# subfolders. A file belongs to the longest of these folders that holds it.
LOW = ["base", "port", "odb/include"]
ENGINE = LOW + ["odb/include/forward", "odb/include/odb_engine"]
CORE = LOW + ["server/core"]
EXPORTER = CORE + ["registry", "lookup"]
IMPORTER = ["base", "port"]
MAY_INCLUDE = {
    "base": [],
    "port": ["base"],
    "odb/include": ["odb/include/forward", "odb/include/odb_engine"],
    "odb/include/forward": ["odb/include"],
    "odb/include/odb_engine": ["odb/include", "odb/include/forward"],
    "odb/src/numerics": ENGINE,
    "odb/src/storage": ENGINE,
    "odb/src/model": ENGINE + ["odb/src/storage"],
    "odb/src/fields": ENGINE + ["odb/src/numerics", "odb/src/storage", "odb/src/model"],
    "odb/src/history": ENGINE + ["odb/src/storage", "odb/src/model", "odb/src/fields"],
    "odb/src": ENGINE + ["odb/src/numerics", "odb/src/storage", "odb/src/model", "odb/src/fields",
                         "odb/src/history"],
    "server/core": LOW,
    "registry": CORE,
    "lookup": CORE + ["registry"],
    "model": EXPORTER,
    "results": EXPORTER,
    "catalogue": EXPORTER,
    "regions": EXPORTER,
    "server": EXPORTER + ["model", "results", "catalogue", "regions"],
    "client/records": ["base", "port"],
    "client": ["base", "port", "client/records"],
    "client/cli": ["base", "port", "client/records", "client"],
    "importer/deck": IMPORTER,
    "importer/results": IMPORTER + ["importer/deck"],
    "importer/write": LOW + ["importer/deck", "importer/results"],
    "importer": LOW + ["importer/deck", "importer/results", "importer/write"],
    # Programs for others to copy from: they see what a user of the database library sees.
    "samples": LOW,
}
EVERYTHING = sorted(MAY_INCLUDE)
MAY_INCLUDE["tests"] = EVERYTHING
MAY_INCLUDE["bench"] = EVERYTHING

# Outside libraries: pattern of the header name, pattern of the files that may include it.
LIBRARIES = [
    ("HDF5", r"(hdf5|H5\w*)\.h$", r"^(odb/src/storage|tests|bench)/"),
    ("zlib", r"(zlib|zconf)\.h$", r"^(catalogue/cache\w*\.(cpp|h)|(tests|bench)/.*)$"),
    ("the leak sanitizer's interface", r"sanitizer/", r"^server/core/process_end\.cpp$"),
    ("GoogleTest", r"(gtest|gmock)/", r"^tests/"),
]
# What a vendor's library has no name for: what the API cannot write, and the embedded library's own
# parts. Of the server, the adapter's embedded variants alone may use it.
EMBEDDED_HEADERS = r"odb_(embedded\.h$|engine/)"
EMBEDDED_FILES = r"^(odb|importer|tests|bench)/|^server/core/sdk_(?!adapter|vendor)\w+\.h$"
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
MAX_LINES = 500

SKIPPED_FOLDERS = {"build", "__pycache__"}
CODE = (".cpp", ".h")
SCRIPTS = (".py", ".sh", ".cmake")


def folderOf(path):
    """The longest folder of the table that holds a file, None where there is none."""
    folder = path.rpartition("/")[0]
    while folder and folder not in MAY_INCLUDE:
        folder = folder.rpartition("/")[0]
    return folder or None


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
                self.checkOpening(path, lines)
                self.checkIncludes(path, text)
                self.checkIncludeOrder(path, text)
                if len(lines) - 1 > MAX_LINES:
                    self.report(path, MAX_LINES, f"{len(lines) - 1} lines",
                                f"allowed: {MAX_LINES}; split the file")
        return nFiles

    def checkLicence(self, path, lines):
        head = lines[:1] if path.endswith(CODE) else lines[:2]
        if not any(LICENCE in line for line in head):
            self.report(path, 1, lines[0].strip() or "(empty)",
                        f"the first line must be a comment with {LICENCE}")

    def checkOpening(self, path, lines):
        second = lines[1].strip() if len(lines) > 1 else ""
        if not second.startswith("// "):
            self.report(path, 2, second or "(empty)",
                        "the licence line must be followed by a comment on what the file owns")

    def checkIncludeOrder(self, path, text):
        """Headers of the API come before those of the standard library, up to the first code."""
        standard = None
        for number, line in enumerate(withoutComments(text).split("\n"), 1):
            match = re.match(r'#include (?:"([^"]+)"|<([^>]+)>)', line)
            if not match:
                if line.strip() and not line.startswith("#pragma once"):
                    return
                continue
            angled = match.group(2)
            if angled in STANDARD:
                standard = angled
            elif angled and standard and self.apiFolder(angled):
                self.report(path, number, line.strip(),
                            f"headers of the API come before <{standard}>")

    def checkIncludes(self, path, text):
        folder = folderOf(path)
        if folder is None:
            self.report(path, 1, path.rpartition("/")[0], "this folder is not in the table of "
                        "scripts/check_layers.py; known: " + ", ".join(sorted(MAY_INCLUDE)))
            return
        for number, line in enumerate(withoutComments(text).split("\n"), 1):
            if not re.match(r"\s*#\s*include(_next)?\b", line):
                continue
            match = re.match(r'\s*#\s*include\s*(?:"([^"]+)"|<([^>]+)>)', line)
            if not match:
                self.report(path, number, line.strip(), "allowed: a literal file name")
                continue
            quoted, angled = match.groups()
            why = self.quotedFault(path, folder, quoted) if quoted else \
                self.angledFault(path, folder, angled)
            if why:
                self.report(path, number, line.strip(), why)

    def folderFault(self, folder, target):
        if target == folder or target in MAY_INCLUDE[folder]:
            return None
        allowed = [folder] + MAY_INCLUDE[folder]
        return f"{folder} must not include {target}; allowed: " + ", ".join(allowed)

    def apiFolder(self, name):
        """The folder of a header of the database API, None for other headers."""
        for folder in ("odb/include", "odb/include/forward"):
            if os.path.isfile(os.path.join(self.root, folder, name)):
                return folderOf(folder + "/" + name)
        return "odb/include" if name.startswith("odb_") else None

    def apiFault(self, path, folder, name):
        if not re.match(EMBEDDED_HEADERS, name):
            # Which of the API's headers forward to another one is nobody's business above.
            return self.folderFault(folder, "odb/include")
        if not re.search(EMBEDDED_FILES, path):
            return f"{name} is included by files that match {EMBEDDED_FILES} alone"
        return None if folder == "server/core" else self.folderFault(folder, self.apiFolder(name))

    def quotedFault(self, path, folder, name):
        if ".." in name.split("/"):
            return "allowed: names from the repository's root, without .."
        if "/" not in name:
            if folder.startswith("odb/include") and self.apiFolder(name):
                return None
            return "allowed: names from the repository's root, as in \"base/bytes.h\""
        target = folderOf(name)
        if target is None:
            return self.libraryFault(path, name)
        return self.folderFault(folder, target)

    def angledFault(self, path, folder, name):
        if name in STANDARD:
            return None
        if self.apiFolder(name):
            return self.apiFault(path, folder, name)
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
