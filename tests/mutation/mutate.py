#!/usr/bin/env python3
# SPDX-License-Identifier: Zlib
"""Changes one operator, constant or condition of the library at a time and runs the tests of that file's room.

    mutate.py BUILD [--sample N] [--first N] [--part I/N] [--seed N] [--again] [FILE...]

BUILD is a built debug tree, which stays as it is: one object is compiled anew, and the library and the programs that are linked
to its objects are linked into BUILD/mutants. Of all places in all files a fixed sample is drawn (400, or all of the FILEs) that
edits elsewhere leave as it is; --first takes only its beginning, and --part each N-th, beside others that run at the same time.
BUILD/mutants/results.txt keeps what came of each change, which is then not tried again without --again. A change that the
compiler makes the same code of, with or without optimisation, is an equal program and is not tried. What survives is to be read:
it gets a test, or a line in survivors.txt beside this file, which says why it is equal or what else finds it. Prints what survives
without one, and the share that is found. Returns 1 when that is below nine tenths. To be run on a screen:
tests/support/with_screen.sh 16 mutate.py ..."""

import argparse
import collections
import hashlib
import json
import os
import re
import resource
import shlex
import subprocess
import sys

ROOMS = {
    "platform": ["foundation", "core_unit", "core", "resources"],
    "foundation": ["foundation", "core_unit", "core", "scene_unit"],
    "math": ["math", "scene_unit", "sine_all"],
    "formats": ["formats", "foundation", "core_unit", "resources_unit", "scene_unit", "gui_unit", "gui_file", "engine"],
    "core": ["core_unit", "core", "state", "engine"],
    "resources": ["resources_unit", "resources", "video", "engine"],
    "scene": ["scene_unit", "scene", "engine", "state"],
    "gui": ["gui_unit", "gui_draw", "gui_file", "interface", "engine"],
    "engine": ["engine", "core", "scene"],
}
# Tests that take longer than all others of their programs; they come last.
SLOW = ("SceneDamageTest.EveryDamaged*:EmitterDamageTest.*:GuiFileDamageTest.EveryDamaged*:GuiFileDamageTest.Huge*:"
        "BoxTest.SizesOfAnyKind*:XmlDocument.EveryChangedByte*:DamagedFiles.Many*:StateTest.*:SineAllTest.*")
LONGEST = 60  # seconds of processor time that a test program may take; more is a hang, which is found
MOST_MEMORY = 4 << 30
SURVIVES, NO_PROGRAM, EQUAL = "SURVIVES", "is no program", "is an equal program"

BINARY = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==", "+": "-", "-": "+", "*": "/", "/": "*", "%": "*",
          "&&": "||", "||": "&&", "+=": "-=", "-=": "+=", "*=": "/=", "<<": ">>", ">>": "<<", "&": "|", "|": "&", "|=": "&=",
          "&=": "|=", "^": "&"}
SKIPPED = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\])*"|\'(?:\\.|[^\'\\])*\'|^[ \t]*#(?:\\\n|[^\n])*'
                     r'|\b(?:static_assert|assert|KT_ASSERT|alignas)\s*\([^;]*;|template\s*<[^\n]*|\boperator\S+'
                     r'|\b(?!return|delete)[\w:>]+[ &*]+\w+\[\w+\](?=[;,){]| [={])', re.S | re.M)
TOKEN = re.compile(r'(?P<binary>(?<=[^\s(,={] )(?:<<|>>|<=|>=|==|!=|&&|\|\||[-+*|&]=|[-+*/%<>&|^])(?= ))'
                   r'|(?P<step>\+\+|--)'
                   r'|(?P<condition>\b(?:if|while) \()'
                   r'|(?P<float>\b\d+\.\d*f?\b)'
                   r'|(?P<hex>\b0x[0-9a-fA-F]+[uU]?\b)'
                   r'|(?P<integer>(?<![\w.])\d+(?=[uUlL]*\b(?![.\w])))'
                   r'|(?P<truth>\b(?:true|false)\b)')


def sites(text):
    """(offset, length, replacement) of each mutation of a source."""
    code = SKIPPED.sub(lambda match: re.sub(r"[^\n]", " ", match.group()), text)
    for match in TOKEN.finditer(code):
        token, kind = match.group(), match.lastgroup
        if kind == "binary":
            change = BINARY[token]
        elif kind == "step":
            change = "--" if token == "++" else "++"
        elif kind == "condition":
            end = closing(code, match.end())
            if end is None or ";" in code[match.end():end]:
                continue
            inner = text[match.end():end]
            yield match.start(), end - match.start(), token + "!(" + inner + ")"
            continue
        elif kind == "truth":
            change = "false" if token == "true" else "true"
        elif kind == "float":
            change = "2.0f" if token.startswith("1.") else "1.0f"
        elif kind == "hex":
            change = token[:-1] + ("1" if token[-1] != "1" else "3") if token[-1] not in "uU" else token[:-1] + "1u"
        else:
            change = str(int(token) + 1)
        yield match.start(), len(token), change


def sample(tree, files, seed):
    """(key, file, site) of every mutation, in an order that depends on each alone: on what its line says, not on where it stands."""
    places = []
    for name in files:
        text, met = tree.text(name), collections.Counter()
        for site in sites(text):
            begin = text.rfind("\n", 0, site[0]) + 1
            line = text[begin:text.find("\n", site[0])]
            place = f"{seed} {name} {line.strip()} {site[0] - begin - len(line) + len(line.lstrip())} {site[2]}"
            met[place] += 1
            key = hashlib.sha256(f"{place} {met[place]}".encode()).hexdigest()[:16]
            places.append((key, name, site))
    return sorted(places)


def read_survivors():
    """What stands in survivors.txt: the result of each key."""
    with open(os.path.join(os.path.dirname(os.path.abspath(__file__)), "survivors.txt"), encoding="utf-8") as file:
        words = [line.split(maxsplit=2) for line in file if not line.startswith("#")]
    return {key: EQUAL if kind == "equal" else "found by " + kind for key, kind, _ in words}


def limit():
    resource.setrlimit(resource.RLIMIT_CPU, (LONGEST, LONGEST))
    resource.setrlimit(resource.RLIMIT_AS, (MOST_MEMORY, MOST_MEMORY))


def closing(code, at):
    depth = 1
    while at < len(code):
        depth += {"(": 1, ")": -1}.get(code[at], 0)
        if depth == 0:
            return at
        at += 1
    return None


class Tree:
    def __init__(self, build, part):
        self.build = os.path.abspath(build)
        self.work = os.path.join(self.build, "mutants", part)
        os.makedirs(self.work, exist_ok=True)
        with open(os.path.join(self.build, "CMakeCache.txt"), encoding="utf-8") as cache:
            self.source = re.search(r"^CMAKE_HOME_DIRECTORY:INTERNAL=(.*)$", cache.read(), re.M).group(1)
        self.compile, self.objects = {}, {}
        with open(os.path.join(self.build, "compile_commands.json"), encoding="utf-8") as commands:
            for entry in json.load(commands):
                words = shlex.split(entry["command"])
                target = words[words.index("-o") + 1]
                if target.startswith("CMakeFiles/keltra.dir/"):
                    name = os.path.relpath(entry["file"], self.source)
                    self.compile[name], self.objects[name] = words, target
        self.links, self.codes = {}, {}

    def files(self):
        return sorted(name for name in self.compile if name.split("/")[0] in ROOMS)

    def text(self, name):
        with open(os.path.join(self.source, name), encoding="utf-8") as file:
            return file.read()

    def run(self, words, **how):
        return subprocess.run(words, cwd=self.build, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False, **how).returncode

    def compiled(self, name, text, *more):
        """The object of a changed text; None when it does not compile."""
        source = os.path.join(self.work, os.path.basename(name))
        with open(source, "w", encoding="utf-8") as file:
            file.write(text)
        target = os.path.join(self.work, "mutant.o")
        words = list(self.compile[name])
        if os.path.basename(words[0]) == "ccache":  # which would keep what is never asked for again
            del words[0]
        words[words.index("-o") + 1] = target
        words[words.index("-c") + 1] = source
        words += ["-w", "-g0", "-iquote", os.path.join(self.source, os.path.dirname(name)), *more]
        return target if self.run(words) == 0 else None

    def code(self, name, text, *more):
        """What the compiler makes of a text."""
        target = self.compiled(name, text, *more)
        if target is None:
            return None
        with open(target, "rb") as file:
            return hashlib.sha256(file.read()).digest()

    def is_equal(self, name, text):
        """Whether the compiler makes the same of a changed text as of the file."""
        for more in "-Og", "-O2":
            if (name, more) not in self.codes:
                self.codes[name, more] = self.code(name, self.text(name), more)
            if self.code(name, text, more) == self.codes[name, more]:
                return True
        return False

    def link_command(self, target):
        if target not in self.links:
            commands = subprocess.run(["ninja", "-t", "commands", "-s", target], cwd=self.build, check=True,
                                      capture_output=True, text=True).stdout
            line = [line for line in commands.splitlines() if " -o " + target in line][-1]
            self.links[target] = line.split("&&")[1].strip()
        return self.links[target]

    def linked(self, target, name, mutant):
        out = os.path.join(self.work, os.path.basename(target))
        command = self.link_command(target).replace(self.objects[name], mutant).replace("-o " + target, "-o " + out)
        command += " -Wl,--strip-debug"
        if target.startswith("bin/"):
            command += " -fuse-ld=gold"  # in a fifth of the time; it does not know all options of the library's
        if self.run(["sh", "-c", command]) != 0:
            raise SystemExit("mutate: cannot link " + target)
        return out


class Runner:
    def __init__(self, tree):
        self.tree = tree
        library = [name for name in os.listdir(os.path.join(tree.build, "lib")) if re.match(r"libkeltra\.so\.\d+\.\d+", name)]
        self.shared = "lib/" + library[0]
        soname = os.path.join(tree.work, "libkeltra.so.1")
        if not os.path.islink(soname):
            os.symlink(library[0], soname)

    def finds(self, name, mutant):
        """The first test program that fails with the mutant, as a result."""
        commands, library = {}, []
        for tests in "-" + SLOW, SLOW:
            for test in ROOMS[name.split("/")[0]]:
                if test not in commands:
                    commands[test] = self.command(test, name, mutant, library)
                command, environment = commands[test]
                try:
                    if self.tree.run(command + ["--gtest_filter=" + tests], env=environment, timeout=50 * LONGEST, preexec_fn=limit) != 0:
                        return "found by " + test
                except subprocess.TimeoutExpired:
                    return "found by " + test + ", which waits"
        return SURVIVES

    def command(self, test, name, mutant, library):
        """What runs a test program with the mutant, and its environment; `library` holds the one that was linked."""
        program = "bin/" + test + "_test"
        environment = dict(os.environ)
        if self.tree.objects[name] in self.tree.link_command(program):
            words = [self.tree.linked(program, name, mutant)]
        else:
            library[:] = library or [self.tree.linked(self.shared, name, mutant)]
            environment["LD_LIBRARY_PATH"] = self.tree.work + ":" + os.path.join(self.tree.build, "lib")
            words = [os.path.join(self.tree.build, program)]
        return words + ["--gtest_fail_fast", "--gtest_brief=1"], environment


class Results:
    """What came of each change, a line for each: its key, the result, and what it was."""

    def __init__(self, path, again):
        self.path, self.known = path, {}
        if os.path.exists(path) and not again:
            with open(path, encoding="utf-8") as file:
                self.known = {line.split("\t")[0]: line.split("\t")[1] for line in file}

    def add(self, key, result, what):
        with open(self.path, "a", encoding="utf-8") as file:
            file.write("\t".join([key, result, " ".join(what.split())]) + "\n")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("build")
    parser.add_argument("files", nargs="*")
    parser.add_argument("--sample", type=int)
    parser.add_argument("--first", type=int)
    parser.add_argument("--part", type=lambda text: tuple(int(number) for number in text.split("/")), default=(1, 1))
    parser.add_argument("--seed", type=int, default=20261122)
    parser.add_argument("--again", action="store_true")
    options = parser.parse_args()
    part, parts = options.part
    tree = Tree(options.build, str(part))
    files = options.files or tree.files()
    places = sample(tree, files, options.seed)
    explained = read_survivors()
    if not options.files:
        for key in explained.keys() - {place[0] for place in places}:
            print(f"survivors.txt: no change has the key {key} any more", flush=True)
    places = places[:options.sample or (len(places) if options.files else 400)]
    print(f"mutate: {len(places)} changes in {len(files)} files", flush=True)
    runner, results = Runner(tree), Results(os.path.join(tree.build, "mutants", "results.txt"), options.again)
    found = tried = equal = 0
    for key, name, (offset, length, change) in places[:options.first][part - 1::parts]:
        text = tree.text(name)
        line = text.count("\n", 0, offset) + 1
        what = f"{name}:{line}: {text[offset:offset + length]!r} -> {change!r} in: {text.splitlines()[line - 1].strip()}"
        result = results.known.get(key)
        if result is None:
            changed = text[:offset] + change + text[offset + length:]
            if tree.compiled(name, changed) is None:
                result = NO_PROGRAM
            elif tree.is_equal(name, changed):
                result = EQUAL
            else:
                result = runner.finds(name, tree.compiled(name, changed))
            results.add(key, result, what)
        if result == SURVIVES:
            result = explained.get(key, result)
        equal += result == EQUAL
        if result in (NO_PROGRAM, EQUAL):
            continue
        tried += 1
        found += result != SURVIVES
        if result == SURVIVES:
            print(f"{result}: {what}", flush=True)
    print(f"mutate: {found} of {tried} are found; {equal} more are equal programs")
    return 0 if tried and found >= 0.9 * tried else 1


if __name__ == "__main__":
    sys.exit(main())
