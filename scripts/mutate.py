"""The work of scripts/mutate.sh, which says what it does and builds what this needs."""

import argparse
import collections
import concurrent.futures
import json
import os
import pathlib
import random
import re
import resource
import shlex
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build" / "mutate"
MEMORY = 4 << 30  # bytes of addresses that the tests of a change may ask for
SLOW = 1.0  # seconds; tests above are run only when the others have seen nothing

# What is found in a line, and what stands there instead.
SWAPS = [(re.compile(found), other) for found, other in [
    (r" == ", " != "), (r" != ", " == "), (r" < ", " <= "), (r" <= ", " < "), (r" > ", " >= "),
    (r" >= ", " > "), (r" && ", " || "), (r" \|\| ", " && "), (r" \+ ", " - "), (r" - ", " + "),
    (r" \+= ", " -= "), (r"\+\+", "--"), (r"\+ 1\b", "+ 0"), (r"- 1\b", "- 0"),
    (r"\btrue\b", "false"), (r"\bfalse\b", "true"), (r"(?<![\w.'])0\b(?![.'])", "1"),
    (r"(?<![\w.'])1\b(?![.'])", "0"), (r"(?<=[\s(])!(?=[A-Za-z(])", ""), (r"\bE_\w+\b", "S_OK"),
    (r"\bS_OK\b", "E_FAIL"), (r"\bcontinue;", ";"), (r"\bbreak;", ";")]]
STATEMENT = re.compile(r"^\s+[A-Za-z_][\w:.>()\[\]-]*(\(.*\)| [+-]?= .*|\+\+);\s*$")
NO_CODE = re.compile(r"^\s*(//|#|$|using |namespace|template|static_assert|class |struct |\w+:$)")
DECLARATION = re.compile(r"^\s+(return|const|auto|std::|int|bool|char|unsigned)\b")

Change = collections.namedtuple("Change", "file line old new")


def changes_of(file):
    """Every change of one file; what stands in string literals and comments stays."""
    for number, line in enumerate((ROOT / file).read_text().split("\n")):
        code = line.split(" //")[0]
        if NO_CODE.match(code):
            continue
        for found, other in SWAPS:
            for match in found.finditer(code):
                if code[:match.start()].count('"') % 2 == 0:
                    new = line[:match.start()] + other + line[match.end():]
                    yield Change(file, number, line, new)
        if STATEMENT.match(code) and not DECLARATION.match(code):
            yield Change(file, number, line, "")


def chosen(file, options):
    found = list(changes_of(file))
    random.Random(f"{options.seed} {file}").shuffle(found)
    return found[:options.sample]


def listed(path):
    """The changes of an earlier run at the places where their lines are now."""
    for entry in json.loads(pathlib.Path(path).read_text()):
        file = ROOT / entry["file"]
        lines = file.read_text().split("\n") if file.exists() else []
        places = [n for n, line in enumerate(lines) if line == entry["old"]]
        if places:
            nearest = min(places, key=lambda n: abs(n - entry["line"]))
            yield Change(entry["file"], nearest, entry["old"], entry["new"])
        else:
            print(f"gone: {entry['file']}:{entry['line'] + 1}: {entry['old'].strip()}")


def run(command, seconds, **more):
    """Whether a command ends well within that much processor time."""
    def limit():
        resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
        resource.setrlimit(resource.RLIMIT_CPU, (int(seconds) + 1, int(seconds) + 1))
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    try:
        return subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                              preexec_fn=limit, timeout=10 * seconds, **more).returncode == 0
    except subprocess.TimeoutExpired:
        return False


class Tests:
    """Those that watch a folder of sources, quick ones and slow ones, with the time they may take."""

    def __init__(self, options, program):
        self.options, self.program, self.known = options, program, {}

    def of(self, file):
        folder = str(pathlib.Path(file).parent).removeprefix("src/")
        if folder not in self.known:
            self.known[folder] = self.measured(self.options.tests or self.suites(folder))
        return self.known[folder]

    def suites(self, folder):
        while not (ROOT / "tests" / folder).is_dir():
            folder = os.path.dirname(folder)
        files = [*(ROOT / "tests" / folder).glob("*.cpp"),
                 *(ROOT / "tests" / "allocation").glob("*.cpp")]
        found = re.findall(r"^TEST\w*\(\s*(\w+),", "\n".join(f.read_text() for f in files), re.M)
        return ":".join(f"{suite}.*:*/{suite}.*" for suite in sorted(set(found)))

    def measured(self, tests):
        with tempfile.TemporaryDirectory() as folder:
            report = pathlib.Path(folder) / "report.json"
            run([self.program, f"--gtest_filter={tests}", f"--gtest_output=json:{report}"], 600,
                cwd=folder)
            if not report.exists():
                sys.exit("mutate.sh: error: the tests crash without a change: " + tests)
            found = {f"{suite['name']}.{test['name']}": test
                     for suite in json.loads(report.read_text())["testsuites"]
                     for test in suite["testsuite"]}
        times = {}
        for name, test in found.items():
            if "failures" in test:
                print(f"left out, for it fails here without a change: {name}", file=sys.stderr)
            else:
                times[name] = float(test["time"].rstrip("s"))
        quick = [name for name, time in times.items() if time <= SLOW]
        slow = [name for name, time in times.items() if time > SLOW]
        return [(":".join(names), 5 + 4 * sum(times[name] for name in names))
                for names in (quick, slow) if names]


class Builder:
    """Compiles changed copies of sources and links them before the build's own objects."""

    def __init__(self):
        entries = json.loads((BUILD / "compile_commands.json").read_text())
        self.compile = {entry["file"]: shlex.split(entry["command"]) for entry in entries}
        steps = subprocess.run(["ninja", "-C", BUILD, "-t", "commands", "corv_tests"], text=True,
                               capture_output=True, check=True).stdout.strip().split("\n")
        self.link = shlex.split(steps[-1].removeprefix(": && ").removesuffix(" && :"))
        self.linker = ["-fuse-ld=gold"] if shutil.which("ld.gold") else []  # twice as fast
        self.program = BUILD / self.link[self.link.index("-o") + 1]

    def build(self, change, folder):
        source, changed, made = ROOT / change.file, f"{folder}/m.cpp", f"{folder}/m.o"
        lines = source.read_text().split("\n")
        lines[change.line] = change.new
        pathlib.Path(changed).write_text("\n".join(lines))
        command = [word for word in self.compile[str(source)] if "ccache" not in word]
        command[command.index("-o") + 1] = made
        command[command.index("-c") + 1] = changed
        link = list(self.link)
        link[link.index("-o") + 1] = f"{folder}/tests"
        link[link.index("-o"):link.index("-o")] = [made, "-Wl,--strip-debug", *self.linker]
        return (run([*command, "-g0", "-w"], 300, cwd=BUILD) and
                run(link, 300, cwd=BUILD))


def fate(change, builder, tests):
    """One of "invalid", "seen" and "missed"."""
    with tempfile.TemporaryDirectory() as folder:
        if not builder.build(change, folder):
            return "invalid"
        for names, seconds in tests.of(change.file):
            pathlib.Path(folder, "flags").write_text(f"--gtest_filter={names}\n")
            if not run([f"{folder}/tests", "--gtest_fail_fast", "--gtest_flagfile=flags"],
                       seconds, cwd=folder):
                return "seen"
        return "missed"


def arguments():
    parser = argparse.ArgumentParser(prog="mutate.sh")
    parser.add_argument("--sample", type=int)
    parser.add_argument("--seed", default="1")
    parser.add_argument("--tests")
    parser.add_argument("--list")
    parser.add_argument("--again")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("files", nargs="*")
    options = parser.parse_args()
    options.files = [os.path.relpath(os.path.abspath(file), ROOT) for file in options.files]
    return options


def table(tried):
    counts = collections.defaultdict(collections.Counter)
    for change, became in tried:
        counts[change.file][became] += 1
        counts["all"][became] += 1
    for file, count in sorted(counts.items(), key=lambda row: (row[0] == "all", row[0])):
        valid = count["seen"] + count["missed"]
        share = 100 * count["seen"] / valid if valid else 0
        print(f"{file:50} {count['seen']:4} of {valid:4} seen  {share:5.1f} %")


def main():
    options = arguments()
    builder = Builder()
    tests = Tests(options, builder.program)
    unknown = [f for f in options.files if not f.startswith(("src/", "host/")) or
               str(ROOT / f) not in builder.compile]
    if unknown:
        sys.exit(f"mutate.sh: error: no source of library or host: {unknown[0]}")
    changes = [change for file in options.files for change in chosen(file, options)]
    changes += listed(options.again) if options.again else []
    for change in changes:
        tests.of(change.file)
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as workers:
        tried = []
        for change, became in zip(changes, workers.map(lambda c: fate(c, builder, tests), changes)):
            if became == "missed":
                print(f"{change.file}:{change.line + 1}: {change.old.strip()}\n"
                      f"    {change.new.strip() or '(left out)'}", flush=True)
            if became != "invalid":
                tried.append((change, became))
    table(tried)
    if options.list:
        entries = [{**change._asdict(), "became": became} for change, became in tried]
        pathlib.Path(options.list).write_text(json.dumps(entries, indent=1) + "\n")


main()
