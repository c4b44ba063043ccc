#!/usr/bin/python3
"""Breaks rules of the program, one at a time, and prints those that no test noticed:

    mutate.py [FOLDER [COUNT [SEED]]]

See scripts/mutate.
"""

import collections
import concurrent.futures
import filecmp
import json
import os
import pathlib
import queue
import random
import re
import resource
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
import threading

import changes

ROOT = pathlib.Path(__file__).resolve().parents[2]
FOLDER = pathlib.Path(os.environ.get("VANTORELLE_BUILD", ROOT / "build")).resolve() / "mutate"
EQUIVALENTS = ROOT / "tests" / "mutate" / "equivalents"

# The tests of CTest that may notice a change in the folder. Changes that they do not notice are
# also tested in the other locales.
SUITES = {
    "base": ("model.base", "model.base_fake", "model.base_macos", "faults"),
    "suite": ("model.suite", "faults"),
    "images": ("model.images",),
    "langstr": ("model.langstr",),
    "codeset": ("model.codeset", "faults"),
    "workspace": ("model.workspace", "model.workspace_upgrade", "faults"),
    "gui": ("widgets.gui", "model.gui"),
    "gui/editing": ("widgets.editing", "widgets.editing_windows", "model.editing"),
    "gui/components": ("widgets.components", "widgets.window_faults"),
    "workspace/assistant": ("widgets.workspace",),
    "app": ("widgets.frame", "widgets.frame_failures", "widgets.manager", "widgets.frame_macos"),
}
DEFAULTS = ("model", "60", "1")
GROUPS = {
    "model": ("base", "langstr", "codeset", "workspace"),
    "windows": ("gui", "gui/editing", "gui/components", "app"),
}

CONFIGURATION = (
    "-GNinja",
    "-DCMAKE_BUILD_TYPE=",
    "-DVANTORELLE_WERROR=ON",
    "-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld",
    # Restoring a source file after its change costs no second compilation.
    "-DCMAKE_CXX_COMPILER_LAUNCHER=ccache",
)

# A changed program may allocate memory without end.
MEMORY_BYTES = 6 << 30
# The longest time for a test case: PATIENCE_SECONDS, and SLOWNESS times its time without a change.
SLOWNESS = 5
PATIENCE_SECONDS = 10
# After this many cases that each fail once and pass when run alone, the failure counts.
CHANCES = 4
INCLUDE = re.compile(r'^#include "(.+)"$', re.MULTILINE)
# The first line of a listed equivalent.
HEADING = re.compile(r"(\S+) (.+?)(?: #([0-9]+))?")
CASE = re.compile(r"\[ +(RUN|OK|FAILED) +\] ([\w/]+\.[\w/]+)(?:.*\((\d+) ms\))?")


# ---- The copy in which rules are broken ----------------------------------------------------------


def mirror(source, destination):
    """Files that are the same keep their time, so that they are not compiled again."""
    wanted = set()
    for folder, subfolders, files in os.walk(source):
        here = pathlib.Path(folder).relative_to(source)
        hidden = ("build", ".git") if here == pathlib.Path() else ("__pycache__",)
        subfolders[:] = [name for name in subfolders if name not in hidden]
        (destination / here).mkdir(parents=True, exist_ok=True)
        for name in files:
            wanted.add(here / name)
            copy = destination / here / name
            if not copy.exists() or not filecmp.cmp(source / here / name, copy, shallow=False):
                shutil.copy(source / here / name, copy)
    for path in destination.rglob("*"):
        if path.is_file() and path.relative_to(destination) not in wanted:
            path.unlink()


def target(suite):
    """The executable of the test of that name in CTest."""
    kind, _, layer = suite.partition(".")
    layer = layer.partition(".")[0]
    return f"{layer}_{kind.removesuffix('s')}_tests" if layer else f"{kind.removesuffix('s')}_tests"


class Copy:
    def __init__(self, folder):
        self.source = folder / "source"
        self.build_folder = folder / "build"
        self.environment = {
            **os.environ,
            "CCACHE_BASEDIR": str(folder),
            "CCACHE_DIR": os.environ.get("CCACHE_DIR", str(FOLDER / "ccache")),
            "LC_ALL": "C",
        }
        self.environment.pop("LANGUAGE", None)
        mirror(ROOT, self.source)
        subprocess.run(
            (
                *("cmake", "-S", self.source, "-B", self.build_folder, *CONFIGURATION),
                f"-DVANTORELLE_LOCALES={os.environ['VANTORELLE_LOCALES']}",
            ),
            env=self.environment,
            stdout=subprocess.DEVNULL,
            check=True,
        )
        self.tests = {}

    def prepare(self, suites):
        """Builds the suites with nothing broken; how they are run is known only then."""
        if output := self.build(*suites):
            sys.exit(output)
        listing = subprocess.run(
            ("ctest", "--test-dir", self.build_folder, "--show-only=json-v1"),
            env=self.environment,
            capture_output=True,
            check=True,
        )
        self.tests = {test["name"]: test for test in json.loads(listing.stdout)["tests"]}

    def build(self, *suites):
        """Returns the output if the build fails."""
        targets = {target(suite) for suite in suites}
        built = subprocess.run(
            ("cmake", "--build", self.build_folder, "--target", *sorted(targets)),
            env=self.environment,
            capture_output=True,
            check=False,
            text=True,
            errors="replace",
        )
        return "" if built.returncode == 0 else built.stdout + built.stderr

    def failing_case(self, suite, gtest_filter, times):
        """The first case that fails, or an empty text. A case that passes when it runs again alone
        failed by chance, unless others do so, too."""
        separator = ":" if "-" in gtest_filter else "-"
        for _ in range(CHANCES):
            case = self.run(suite, gtest_filter, times)
            if not case or self.run(suite, case, times):
                break
            gtest_filter += separator + case
            separator = ":"
        return case

    def run(self, suite, gtest_filter, times):
        """Runs the cases of the filter until one fails, and adds the seconds that each took to
        `times` if it passed. Returns the case that failed, or an empty text."""
        test = self.tests[suite]
        values = {each["name"]: each["value"] for each in test["properties"]}
        # self.environment already has what the tests only unset or give a default.
        own = dict(each.split("=", 1) for each in values.get("ENVIRONMENT", ()))
        with tempfile.TemporaryDirectory(prefix="mutate.", ignore_cleanup_errors=True) as scratch:
            # Some tests act as another user.
            os.chmod(scratch, 0o1777)
            own.update(HOME=scratch, TMPDIR=scratch, GTEST_FAIL_FAST="1", GTEST_FILTER=gtest_filter)
            process = subprocess.Popen(
                # If this process is killed, so is the test.
                ("setpriv", "--pdeathsig", "TERM", *test["command"]),
                env={**self.environment, **own},
                cwd=scratch,
                stdin=subprocess.DEVNULL,
                stdout=subprocess.PIPE,
                stderr=subprocess.STDOUT,
                start_new_session=True,
                preexec_fn=limit_resources,
                text=True,
                errors="replace",
            )
            return watch(process, times)


def limit_resources():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY_BYTES, MEMORY_BYTES))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def watch(process, times):
    """Reads what a test prints. Ends it when one of its cases takes too long."""
    case = "(none)"
    for line in Watchdog(process).lines(times):
        match = CASE.match(line)
        if match and match.group(1) == "OK":
            times[match.group(2)] = int(match.group(3)) / 1000
        elif match:
            case = match.group(2)
    return case if process.wait() != 0 else ""


class Watchdog:
    def __init__(self, process):
        self.process = process
        self.timer = None

    def lines(self, times):
        self.start(PATIENCE_SECONDS)
        try:
            for line in self.process.stdout:
                if match := CASE.match(line):
                    self.start(PATIENCE_SECONDS + SLOWNESS * times.get(match.group(2), 60))
                yield line
        finally:
            self.timer.cancel()
            self.end()

    def start(self, seconds):
        if self.timer:
            self.timer.cancel()
        self.timer = threading.Timer(seconds, self.end)
        self.timer.start()

    def end(self):
        """The desktop of a test removes its files when it is asked to end."""
        for number in (signal.SIGTERM, signal.SIGKILL):
            try:
                os.killpg(self.process.pid, number)
                self.process.wait(3)
            except (ProcessLookupError, subprocess.TimeoutExpired):
                pass


# ---- What is tried -------------------------------------------------------------------------------


def compiler_arguments(command):
    """Those that the parser needs."""
    words = iter(shlex.split(command))
    for word in words:
        if word == "-isystem":
            yield from (word, next(words, ""))
        elif word.startswith(("-I", "-D", "-std=")):
            yield word


def included_by(root, path):
    """The files of the checkout that the file includes, also indirectly."""
    found, unread = set(), [path]
    while unread:
        names = INCLUDE.findall(unread.pop().read_text(encoding="utf-8"))
        added = {root / name for name in names if (root / name).exists()} - found
        found |= added
        unread += added
    return found


def with_headers(root, commands):
    """Adds to the sources and their commands the headers that they include from their own folders,
    each with the command of the first such source."""
    found = dict(commands)
    for source in sorted(commands):
        for path in included_by(root, source):
            if path.parent == source.parent:
                found.setdefault(path, commands[source])
    return found


def places_in(copy, folder):
    """For each place in the folder's sources and headers the changes that are possible there."""
    database = json.loads((copy.build_folder / "compile_commands.json").read_text())
    commands = {pathlib.Path(entry["file"]): entry["command"] for entry in database}
    sources = [path for path in (copy.source / folder).glob("*.cpp") if path in commands]
    commands = with_headers(copy.source, {path: commands[path] for path in sources})
    paths = sorted(commands)
    with concurrent.futures.ProcessPoolExecutor() as pool:
        files = [str(path.relative_to(copy.source)) for path in paths]
        arguments = [list(compiler_arguments(commands[path])) for path in paths]
        return [
            place
            for found in pool.map(changes.changes_in, paths, files, arguments)
            for place in found
        ]


def read_equivalents(text):
    """The changes that change nothing, by their identity, with the reason for each."""
    found = {}
    for block in re.split(r"\n\s*\n", text):
        lines = [line for line in block.splitlines() if not line.startswith("#")]
        if not lines:
            continue
        file, declaration, ordinal = HEADING.fullmatch(lines[0]).groups()
        removed = tuple(line[1:] for line in lines if line.startswith("-"))
        added = tuple(line[1:] for line in lines if line.startswith("+"))
        reason = " ".join(line.strip() for line in lines if line.startswith(" "))
        if not reason:
            raise ValueError(f"An equivalent change has no reason:\n{block}")
        identity = file, declaration, int(ordinal or 0), removed, added
        if identity in found:
            raise ValueError(f"An equivalent change is listed twice:\n{block}")
        found[identity] = reason
    return found


def faulty_entries(equivalents, possible):
    """Describes the listed equivalents that are not exactly one of the possible changes."""
    faults = []
    for identity in equivalents:
        if identity not in possible:
            file, declaration, _, removed, added = identity
            is_ambiguous = (file, declaration, 1, removed, added) in possible and not identity[2]
            problem = "Matches several places" if is_ambiguous else "Matches no place"
            faults.append(f"{problem}:\n{changes.described(identity)}")
    return faults


def check_equivalents(equivalents, folders, places):
    """Ends the script if a listed equivalent in one of the folders, or in none that has tests, is
    faulty."""
    possible = {change.identity() for place in places for change in place}
    others = set(SUITES) - set(folders)
    checked = [each for each in equivalents if str(pathlib.Path(each[0]).parent) not in others]
    if faults := faulty_entries(checked, possible):
        sys.exit("\n\n".join((f"Faulty entries in {EQUIVALENTS}:", *faults)))


def matching_cases(file):
    """The suites that have tests of the source file's name, and a filter for those tests."""
    suites, fixtures = set(), set()
    for path in (ROOT / "tests").glob(f"*/*/{pathlib.Path(file).stem}*_test.cpp"):
        suites.add(f"{path.parts[-3]}.{path.parts[-2]}")
        fixtures.update(re.findall(r"^TEST(?:_F|_P)?\((\w+),", path.read_text(), re.MULTILINE))
    return suites, ":".join(f"{name}.*:*/{name}.*" for name in sorted(fixtures))


class Trial:
    """One change in one copy."""

    def __init__(self, copy, times, change):
        self.copy = copy
        self.times = times
        self.change = change

    def run(self):
        """Returns the case that noticed the change, an empty text if none did, or None if the
        change cannot be built."""
        path = self.copy.source / self.change.file
        original = path.read_bytes()
        path.write_bytes(self.change.applied_to(original))
        try:
            for suite, gtest_filter in self.steps():
                if self.copy.build(suite):
                    return None
                if case := self.copy.failing_case(suite, gtest_filter, dict(self.times)):
                    return case
            return ""
        finally:
            path.write_bytes(original)

    def steps(self):
        """Yields the tests that most likely notice the change first."""
        suites = SUITES[str(pathlib.Path(self.change.file).parent)]
        named, gtest_filter = matching_cases(self.change.file)
        for suite in suites:
            if suite in named:
                yield suite, gtest_filter
        for suite in suites:
            yield suite, f"-{gtest_filter}" if suite in named else "*"
        for suite in suites:
            for other in self.copy.tests:
                if other.startswith(f"{suite}."):
                    yield other, gtest_filter if suite in named else "*"


def measure(copy, suites):
    """Returns the seconds of each case with nothing broken."""
    times = {}
    for suite in suites:
        if case := copy.failing_case(suite, "*", times):
            sys.exit(f"{suite}: {case} fails although nothing is broken")
    return times


class Report:
    def __init__(self, seed):
        self.seed = seed
        self.counts = collections.defaultdict(collections.Counter)

    def add(self, change, verdict, detail):
        self.counts[str(pathlib.Path(change.file).parent)][verdict] += 1
        number = sum(sum(counts.values()) for counts in self.counts.values())
        print(f"{number:4} {verdict:10} {change.file}:{change.line} {change.kind} {detail}")
        if verdict == "survivor":
            print(change.diff())
        sys.stdout.flush()

    def print_table(self):
        print(f"\nSeed {self.seed}")
        print(f"{'folder':<22}{'places':>8}{'noticed':>9}{'equivalent':>12}{'survivors':>11}")
        whole = collections.Counter()
        for folder in (each for each in SUITES if each in self.counts):
            self.print_row(folder, self.counts[folder])
            whole.update(self.counts[folder])
        self.print_row("all", whole)

    @staticmethod
    def print_row(name, counts):
        noticed, survivors = counts["noticed"], counts["survivor"]
        percent = 100 * noticed / max(noticed + survivors, 1)
        figures = f"{noticed:>9}{counts['equivalent']:>12}{survivors:>11}{percent:>9.1f} %"
        print(f"{name:<22}{sum(counts.values()):>8}{figures}")


def try_changes(chosen, count, equivalents, copies, times, report):
    """Tries the first `count` of the chosen changes that can be built."""
    free = queue.Queue()
    for copy in copies:
        free.put(copy)

    def attempt(change):
        if change.identity() in equivalents:
            return "equivalent", equivalents[change.identity()]
        copy = free.get()
        try:
            case = Trial(copy, times, change).run()
        finally:
            free.put(copy)
        return (None, "") if case is None else ("noticed" if case else "survivor", case)

    chosen = iter(chosen)
    with concurrent.futures.ThreadPoolExecutor(len(copies)) as pool:
        while count > 0:
            batch = [change for _, change in zip(range(count), chosen)]
            if not batch:
                break
            for change, (verdict, detail) in zip(batch, pool.map(attempt, batch)):
                if verdict:
                    report.add(change, verdict, detail)
                    count -= 1


def main(arguments):
    # An interrupt ends this process at once, and with it what it started.
    signal.signal(signal.SIGINT, signal.SIG_DFL)
    folder, count, seed = (*arguments, *DEFAULTS[len(arguments) :])
    folders = GROUPS.get(folder, (folder,))
    if not set(folders) <= set(SUITES):
        sys.exit(f"There is no folder {folder} here, but {', '.join((*GROUPS, *SUITES))}.")
    equivalents = read_equivalents(EQUIVALENTS.read_text(encoding="utf-8"))
    jobs = int(os.environ.get("VANTORELLE_MUTATE_JOBS", os.cpu_count()))
    copies = [Copy(FOLDER / str(number)) for number in range(jobs)]
    suites = list(dict.fromkeys(suite for each in folders for suite in SUITES[each]))
    places = [place for each in folders for place in places_in(copies[0], each)]
    check_equivalents(equivalents, folders, places)
    for copy in copies:
        copy.prepare(suites)
    times = measure(copies[0], suites)

    choice = random.Random(int(seed))
    choice.shuffle(places)
    report = Report(seed)
    chosen = [choice.choice(place) for place in places]
    try_changes(chosen, int(count), equivalents, copies, times, report)
    report.print_table()


if __name__ == "__main__":
    main(sys.argv[1:])
