"""A copy of the sources with a build of its own, where mutants are built, tried and taken back."""
import hashlib
import json
import os
import re
import resource
import shutil
import signal
import subprocess
import tempfile
import time

import source

SKIPPED = {"build", ".git", ".cache", "__pycache__"}
# Slow ones come last, but for those that know the mutant's folder best.
SLOW = ["random", "host", "database", "faults"]
# Most of the time of all is theirs.
LONG = ["random", "faults", "scripts"]
# What ctest runs besides the test programs. Kills by the clock are no proof of a mutant's end.
SCRIPTS = "^(export|plot)[.]|^torture[.](damage|full_disk)"
MEMORY = 12 << 30  # bytes a test program may ask for
FILE = 2 << 30     # bytes of one file
LIMITS = (10, 8)   # times the sound program's seconds by the clock, and of a processor
LEAST = (180, 30)  # seconds that a program has at least, of both


class Trouble(Exception):
    pass


class Workshop:
    def __init__(self, root, place, jobs, quick):
        self.root, self.tree = root, os.path.join(place, "tree")
        self.jobs, self.quick = jobs, quick
        # Where a release build of the tree itself would be: a compiler cache knows its objects.
        self.build = os.path.join(self.tree, "build", "release")
        self.known = os.path.join(place, "sound.json")

    def prepare(self):
        """Makes the copy what the sources are, builds it and sees that all tests pass."""
        self._copy()
        self._configure()
        self.links = self._links()
        if not self._ninja("all"):
            raise Trouble("the sources do not build:\n" + self.words)
        with open(os.path.join(self.build, "compile_commands.json"), encoding="utf-8") as file:
            self.units = {os.path.relpath(one["file"], self.tree).replace(os.sep, "/"):
                          os.path.join(self.build, re.search(r" -o (\S+) ", one["command"])[1])
                          for one in json.load(file)}
        self.objects = {path: digest(output) for path, output in self.units.items()}
        self.sound = self._sound()

    def _copy(self):
        wanted = {}
        for place, folders, names in os.walk(self.root):
            folders[:] = [name for name in folders if name not in SKIPPED]
            for name in names:
                path = os.path.relpath(os.path.join(place, name), self.root)
                if not name.endswith((".sim", ".pyc")) and os.path.isfile(os.path.join(place, name)):
                    wanted[path] = os.path.join(place, name)
        for path, origin in wanted.items():
            copy = os.path.join(self.tree, path)
            if not os.path.exists(copy) or content(copy) != content(origin):
                os.makedirs(os.path.dirname(copy), exist_ok=True)
                shutil.copyfile(origin, copy)
                shutil.copymode(origin, copy)
        for place, folders, names in os.walk(self.tree):
            folders[:] = [name for name in folders if name not in SKIPPED]
            for name in names:
                path = os.path.relpath(os.path.join(place, name), self.tree)
                if path not in wanted:
                    os.remove(os.path.join(self.tree, path))

    def _configure(self):
        if os.path.exists(os.path.join(self.build, "build.ninja")):
            return
        words = ["cmake", "--preset", "release", "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON"]
        for cache in filter(shutil.which, ["ccache"]):
            words += [f"-DCMAKE_{language}_COMPILER_LAUNCHER={cache}" for language in ("C", "CXX")]
        if shutil.which("ld.lld"):  # links in a fifth of the time
            words += [f"-DCMAKE_{kind}_LINKER_FLAGS=-fuse-ld=lld" for kind in ("EXE", "SHARED")]
        done = subprocess.run(words, cwd=self.tree, text=True, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, check=False)
        if done.returncode:
            raise Trouble("configuring failed:\n" + done.stdout)

    def _links(self):
        """What each test program links, as the list of tests has it: its own folders."""
        rows = re.findall(r"^inps_test\((\S+) LINKS ([^)]*)\)",
                          source.read(self.root, "tests/CMakeLists.txt"), re.M)
        return {folder: links.split() for folder, links in rows}

    def _ninja(self, *targets):
        done = subprocess.run(["ninja", "-C", self.build, "-j", str(self.jobs), *targets], text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        self.words = done.stdout[-4000:]
        return done.returncode == 0

    def _sound(self):
        """Seconds of each test program without a fault, by the clock and of processors. Taken again
        when a source has changed."""
        state = hashlib.sha256()
        for place, folders, names in os.walk(self.tree):
            folders[:] = sorted(name for name in folders if name not in SKIPPED)
            for name in sorted(names):
                state.update(content(os.path.join(place, name)))
        kept = {}
        if os.path.exists(self.known):
            with open(self.known, encoding="utf-8") as file:
                kept = json.load(file)
        seconds = kept["seconds"] if kept.get("state") == state.hexdigest() else {}
        for name in [*self.links, "scripts"]:
            if name in seconds or (self.quick and name in LONG):
                continue
            used, start = resource.getrusage(resource.RUSAGE_CHILDREN), time.monotonic()
            if not self._passes(name, (600, 600)):
                raise Trouble(f"without any fault {name} fails:\n{self.words}")
            now = resource.getrusage(resource.RUSAGE_CHILDREN)
            seconds[name] = [time.monotonic() - start,
                             now.ru_utime + now.ru_stime - used.ru_utime - used.ru_stime]
            with open(self.known, "w", encoding="utf-8") as file:
                json.dump({"state": state.hexdigest(), "seconds": seconds}, file)
        return seconds

    def order(self, path):
        """The test programs, the likeliest to notice first: those of its folder, the decks, others."""
        folder = os.path.dirname(path)
        library = "inps_" + folder.split("/")[1 if folder.startswith("inpS/") else 0]

        def rank(name):
            own = library in self.links[name]
            return (0 if name == library[len("inps_"):] else 1 if own and name not in SLOW else
                    2 if name == "decks" else 4 + SLOW.index(name) if name in SLOW else 3)
        names = sorted(self.links, key=rank) + ["scripts"]
        return [name for name in names if not self.quick or name not in LONG]

    def try_mutant(self, mutant, text):
        """What came of it: "compiler", "same", the name of the test that noticed, or None."""
        copy = os.path.join(self.tree, mutant.path)
        try:
            with open(copy, "w", encoding="utf-8", newline="") as file:
                file.write(mutant.text(text))
            unit = self.units.get(mutant.path)
            if unit:
                if not self._ninja(os.path.relpath(unit, self.build)):
                    return "compiler"
                if digest(unit) == self.objects[mutant.path]:
                    return "same"
            names = self.order(mutant.path)
            for name in names:
                if not self._ninja("all" if name == "scripts" else f"test_{name}"):
                    return "compiler"
                if name == names[-1] and all(digest(output) == self.objects[path]
                                             for path, output in self.units.items()):
                    return "same"
                limits = [max(least, times * seconds) for least, times, seconds in
                          zip(LEAST, LIMITS, self.sound[name])]
                if not self._passes(name, limits):
                    return name
            return None
        finally:
            with open(copy, "w", encoding="utf-8", newline="") as file:
                file.write(text)

    def _passes(self, name, limits):
        """Whether a test program passes; as many processes as there are jobs share its tests."""
        # Where there is such a place syncing costs nothing there.
        folder = tempfile.mkdtemp(prefix="mutant", dir="/dev/shm" if os.path.isdir("/dev/shm") else None)
        running = []
        try:
            if name == "scripts":
                running.append(self._start(
                    ["ctest", "-R", SCRIPTS, "--stop-on-failure", "--output-on-failure", "-j",
                     str(self.jobs)], folder, {}, (limits[0], resource.RLIM_INFINITY)))
            else:
                program = os.path.join(self.build, "bin", f"test_{name}")
                for part in range(self.jobs):
                    running.append(self._start(
                        [program, "--gtest_brief=1", "--gtest_fail_fast"], folder,
                        {"GTEST_TOTAL_SHARDS": str(self.jobs), "GTEST_SHARD_INDEX": str(part)}, limits))
            return self._all_end_well(running, time.monotonic() + limits[0])
        finally:
            for process, _ in running:
                end(process)
            shutil.rmtree(folder, ignore_errors=True)

    def _start(self, words, folder, more, limits):
        def bound():
            resource.setrlimit(resource.RLIMIT_FSIZE, (FILE, FILE))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
            if limits[1] != resource.RLIM_INFINITY:  # not a browser, which reserves without measure
                resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
                resource.setrlimit(resource.RLIMIT_CPU, (int(limits[1]) + 1, int(limits[1]) + 5))
        told = tempfile.TemporaryFile(dir=folder)
        environment = dict(os.environ, TMPDIR=folder, HOME=folder, **more)
        return subprocess.Popen(words, cwd=self.build, env=environment, stdin=subprocess.DEVNULL,
                                stdout=told, stderr=told, start_new_session=True,
                                preexec_fn=bound), told

    def _all_end_well(self, running, deadline):
        left = list(running)
        while left:
            for one in list(left):
                result = one[0].poll()
                if result is not None:
                    left.remove(one)
                if result:
                    one[1].seek(0)
                    self.words = one[1].read()[-4000:].decode(errors="replace")
                    return False
            if time.monotonic() > deadline:
                self.words = "it does not end"
                return False
            time.sleep(0.02)
        return True


def end(process):
    """Ends a process and all that it started: it is the head of a session of its own."""
    if process.poll() is None or process.returncode:
        for number in filter(str.isdigit, os.listdir("/proc")):
            try:
                if os.getsid(int(number)) == process.pid:
                    os.kill(int(number), signal.SIGKILL)
            except OSError:
                pass  # it has ended meanwhile
    process.wait()


def content(path):
    with open(path, "rb") as file:
        return file.read()


def digest(path):
    return hashlib.sha256(content(path)).hexdigest() if os.path.exists(path) else None
