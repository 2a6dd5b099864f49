#!/usr/bin/env python3
"""Seeded-fault check: puts one known fault at a time into the sources, builds,
runs the test suites and tells whether any suite noticed.

The faults are listed in mutants/faults.txt. Every source file a fault touches
is put back as it was, whatever happens (a failed build, an exception, Ctrl-C,
SIGTERM); a run killed outright leaves a backup that the next run puts back
before it does anything else.
"""
import argparse
import datetime
import os
import re
import shutil
import signal
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
BUILD = ROOT / "build" / "mutants"
FAULTS = ROOT / "mutants" / "faults.txt"
# A fault applied and not yet put back: the file's path, then its original text.
BACKUP = BUILD / "mutant-backup.txt"
KEYS = ("file", "from", "to", "what")


class Fault:
    def __init__(self, ident, line):
        self.id = ident
        self.line = line   # where its block starts in the faults file
        self.fields = {}

    def __getattr__(self, name):
        try:
            return self.__dict__["fields"][name]
        except KeyError:
            raise AttributeError(name) from None

    @property
    def folder(self):
        parts = Path(self.file).parts
        return parts[1] if len(parts) > 2 and parts[0] == "src" else "?"


def parse_faults(path):
    """Blocks of `[id]` and `key: value` lines. A line starting with `|`
    continues the key above it on a new line, taken verbatim after the `|`
    (indentation included), for a fault that spans lines."""
    faults, errors = [], []
    current, last_key = None, None
    for number, raw in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        if raw.startswith("|"):
            if current is None or last_key not in ("from", "to"):
                errors.append(f"{path.name}:{number}: a continuation line belongs under from: or to:")
            else:
                current.fields[last_key] += "\n" + raw[1:]
            continue
        line = raw.strip()
        if not line or line.startswith("#"):
            last_key = None
            continue
        header = re.fullmatch(r"\[([A-Za-z0-9._-]+)\]", line)
        if header:
            current = Fault(header.group(1), number)
            faults.append(current)
            last_key = None
            continue
        match = re.match(r"([a-z]+):(.*)$", raw)
        if current is None or not match or match.group(1) not in KEYS:
            errors.append(f"{path.name}:{number}: not understood: {raw!r}")
            continue
        key, value = match.group(1), match.group(2)
        if key in current.fields:
            errors.append(f"{path.name}:{number}: [{current.id}] has {key}: twice")
        # The value starts after the blanks that follow the colon; from: and
        # to: keep blanks at their end, they are part of the text.
        current.fields[key] = value.lstrip(" \t").rstrip(" \t") if key in ("file", "what") else value.lstrip(" \t")
        last_key = key
    seen = set()
    for f in faults:
        if f.id in seen:
            errors.append(f"[{f.id}] appears twice")
        seen.add(f.id)
        missing = [k for k in KEYS if k not in f.fields]
        if missing:
            errors.append(f"[{f.id}] lacks {', '.join(missing)}")
        elif f.fields["from"] == f.fields["to"]:
            errors.append(f"[{f.id}] changes nothing")
        elif not f.fields["file"].startswith("src/"):
            errors.append(f"[{f.id}] touches {f.fields['file']}: faults go into src/ only")
    return faults, errors


def read_source(path):
    # Line ends as they are: the file must come back byte for byte.
    with open(path, encoding="utf-8", newline="") as f:
        return f.read()


def write_source(path, text):
    with open(path, "w", encoding="utf-8", newline="") as f:
        f.write(text)


def occurrences(fault):
    path = ROOT / fault.file
    if not path.is_file():
        return -1, None
    text = read_source(path)
    return text.count(fault.fields["from"]), text


def git_clean(relpath):
    return subprocess.run(["git", "diff", "--quiet", "--", relpath], cwd=ROOT).returncode == 0


def write_backup(relpath, original):
    BACKUP.parent.mkdir(parents=True, exist_ok=True)
    tmp = BACKUP.with_suffix(".tmp")
    write_source(tmp, relpath + "\n" + original)
    os.replace(tmp, BACKUP)


def restore_from_backup():
    """Puts back a file that a killed run left mutated."""
    if not BACKUP.exists():
        return
    relpath, _, original = read_source(BACKUP).partition("\n")
    write_source(ROOT / relpath, original)
    if not git_clean(relpath):
        sys.exit(f"mutants: {relpath} was put back from {BACKUP} but still differs from git; look at it by hand")
    BACKUP.unlink()
    print(f"mutants: put back {relpath}, left mutated by a run that was killed")


class Mutation:
    """The fault in its file for the time of a `with` block, and the file put
    back afterwards however the block ends."""

    def __init__(self, fault, original):
        self.fault, self.original = fault, original
        self.path = ROOT / fault.file

    def __enter__(self):
        write_backup(self.fault.file, self.original)
        mutated = self.original.replace(self.fault.fields["from"], self.fault.fields["to"], 1)
        write_source(self.path, mutated)
        return self

    def __exit__(self, *exc):
        # Signals wait until the file is back.
        old = {s: signal.signal(s, signal.SIG_IGN) for s in (signal.SIGINT, signal.SIGTERM)}
        try:
            write_source(self.path, self.original)
            if not git_clean(self.fault.file):
                sys.exit(f"mutants: {self.fault.file} differs from git after the restore; the backup is {BACKUP}")
            BACKUP.unlink(missing_ok=True)
        finally:
            for s, handler in old.items():
                signal.signal(s, handler)
        return False


def run(cmd, log, timeout=None, env=None):
    """Runs a command with its output into the log file; its exit code, None
    when it ran out of time. The command and everything it started (compilers,
    test programs) end with it, also when this run is interrupted."""
    with open(log, "a", encoding="utf-8") as out:
        out.write(f"\n$ {' '.join(cmd)}\n")
        out.flush()
        proc = subprocess.Popen(cmd, cwd=BUILD if cmd[0] == "ctest" else ROOT, stdout=out,
                                stderr=subprocess.STDOUT, env=env, start_new_session=True)
        try:
            return proc.wait(timeout=timeout)
        except subprocess.TimeoutExpired:
            out.write(f"\n(timed out after {timeout} s)\n")
            return None
        finally:
            if proc.poll() is None:
                stop_group(proc)


def stop_group(proc):
    for sig, grace in ((signal.SIGTERM, 10), (signal.SIGKILL, None)):
        try:
            os.killpg(proc.pid, sig)
        except ProcessLookupError:
            return
        try:
            proc.wait(timeout=grace)
            return
        except subprocess.TimeoutExpired:
            continue


def configure(log, jobs):
    cmd = ["cmake", "-S", ".", "-B", str(BUILD.relative_to(ROOT)), "-DCMAKE_BUILD_TYPE=Debug",
           "-DRNW_TESTS=ON", "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON",
           "-DRNW_LONG_SUITES_FIRST=OFF"]
    if shutil.which("ccache"):
        cmd.append("-DCMAKE_CXX_COMPILER_LAUNCHER=ccache")
    if run(cmd, log) != 0:
        sys.exit(f"mutants: cmake could not configure {BUILD}; see {log}")


def build(log, jobs, timeout=None):
    return run(["cmake", "--build", str(BUILD.relative_to(ROOT)), "-j", str(jobs)], log, timeout) == 0


# "  3/12 Test  #7: station ..........***Failed   12.34 sec"
TEST_LINE = re.compile(r"^\s*\d+/\d+ Test\s+#\d+: (\S+) \.*\s*(\*\*\*)?(.*?)\s+[\d.]+ sec\s*$")


def ctest(log, jobs, select):
    """One ctest pass over the suites `select` picks (a -R or -E pair, or
    nothing); (passed count, names of the suites that failed, exit code)."""
    env = dict(os.environ, QT_QPA_PLATFORM="offscreen")
    # Without the times of the last run ctest starts the suites in the order
    # they are declared, the quick unit suites before replay and reliability:
    # a fault they catch stops the run in seconds instead of minutes.
    (BUILD / "Testing" / "Temporary" / "CTestCostData.txt").unlink(missing_ok=True)
    cmd = ["ctest", "--stop-on-failure", "-j", str(jobs), "--timeout", "600"] + select
    start = log.stat().st_size if log.exists() else 0
    code = run(cmd, log, env=env)
    with open(log, encoding="utf-8", errors="replace") as f:
        f.seek(start)
        output = f.read()
    failed = []
    passed = 0
    for line in output.splitlines():
        m = TEST_LINE.match(line)
        if not m:
            continue
        if m.group(3).startswith("Passed"):
            passed += 1
        else:
            failed.append(m.group(1))
    return passed, failed, code


def first_suites(fault):
    """The suites most likely to catch a fault: its folder's own and the
    station's, which drives every folder; the launcher's are in replay."""
    if fault is None:
        return []
    own = {"app": "replay"}.get(fault.folder, fault.folder)
    return sorted({own, "station"})


def run_suites(log, jobs, fault=None):
    """Runs the suites, those likeliest to catch the fault first and the rest
    only when those pass; (all passed, names of the suites that failed)."""
    first = first_suites(fault)
    if first:
        pattern = "^(" + "|".join(first) + ")$"
        passes = [["-R", pattern], ["-E", pattern]]
    else:
        passes = [[]]
    total_passed = 0
    for select in passes:
        passed, failed, code = ctest(log, jobs, select)
        total_passed += passed
        if code != 0 and failed:
            return False, failed
        if code != 0 or failed:
            # ctest and its lines disagree: no verdict can be drawn.
            raise RuntimeError(f"ctest answered {code} with {passed} suites passed and {len(failed)} failed; see {log}")
    if total_passed > 0:
        return True, []
    raise RuntimeError(f"no suite ran; see {log}")


def markdown_table(rows):
    lines = ["| id | folder | fault | result | caught by | seconds |", "|---|---|---|---|---|---|"]
    for r in rows:
        what = r["what"].replace("|", "\\|")
        lines.append(f"| {r['id']} | {r['folder']} | {what} | {r['result']} | {', '.join(r['suites']) or '-'} "
                     f"| {r['seconds']:.0f} |")
    return "\n".join(lines)


def summary(rows):
    count = lambda result: sum(1 for r in rows if r["result"] == result)
    caught, missed = count("caught"), count("missed")
    return (f"caught {caught} of {caught + missed} (stillborn {count('stillborn')}, stale {count('stale')})"
            + (f", no verdict {count('no verdict')}" if count("no verdict") else "")
            + (f", not finished {count('interrupted')}" if count("interrupted") else ""))


def write_out(path, rows, chosen, all_faults, started, finished):
    head = subprocess.run(["git", "rev-parse", "--short", "HEAD"], cwd=ROOT, capture_output=True,
                          text=True).stdout.strip()
    ran = {r["id"] for r in rows}
    not_run = [f.id for f in all_faults if f.id not in ran]
    text = [f"# Seeded faults: results", "",
            f"Commit {head}, started {started:%Y-%m-%d %H:%M} UTC"
            + (f", finished {datetime.datetime.now(datetime.timezone.utc):%H:%M} UTC." if finished
               else ", still running or stopped before its end."),
            "", summary(rows), "", markdown_table(rows), ""]
    if not_run:
        text += [f"Not run in this pass: {len(not_run)} of the {len(all_faults)} faults of mutants/faults.txt "
                 f"({', '.join(not_run)}).", ""]
    Path(path).write_text("\n".join(text), encoding="utf-8")


def interrupt(signum, frame):
    raise KeyboardInterrupt


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--only", help="the ids of the faults to run, separated by commas")
    parser.add_argument("--folder", help="only the faults in this folder of src")
    parser.add_argument("--check", action="store_true", help="only check that every fault applies exactly once")
    parser.add_argument("--out", help="write the results as a Markdown table to this file")
    parser.add_argument("--faults", default=str(FAULTS), help="the faults file (default mutants/faults.txt)")
    parser.add_argument("--jobs", type=int, default=2, help="build and test jobs (default 2)")
    args = parser.parse_args()

    faults, errors = parse_faults(Path(args.faults))
    if errors:
        print("\n".join(errors), file=sys.stderr)
        sys.exit("mutants: the faults file has errors")
    chosen = faults
    if args.only:
        wanted = [w.strip() for w in args.only.split(",") if w.strip()]
        unknown = [w for w in wanted if w not in {f.id for f in faults}]
        if unknown:
            sys.exit(f"mutants: no such fault: {', '.join(unknown)}")
        chosen = [f for f in chosen if f.id in wanted]
    if args.folder:
        chosen = [f for f in chosen if f.folder == args.folder]
    if not chosen:
        sys.exit("mutants: no fault chosen")

    if args.check:
        bad = 0
        for f in chosen:
            n, _ = occurrences(f)
            if n != 1:
                bad += 1
                state = "file missing" if n < 0 else f"from: found {n} times"
                print(f"[{f.id}] {f.file}: {state}")
        per_folder = {}
        for f in chosen:
            per_folder[f.folder] = per_folder.get(f.folder, 0) + 1
        print(", ".join(f"{k} {v}" for k, v in sorted(per_folder.items())))
        print(f"{len(chosen) - bad} of {len(chosen)} faults apply exactly once")
        sys.exit(1 if bad else 0)

    # Ctrl-C and SIGTERM end the run the same way: the file goes back first.
    signal.signal(signal.SIGTERM, interrupt)
    BUILD.mkdir(parents=True, exist_ok=True)
    restore_from_backup()
    log = BUILD / "mutants.log"
    log.write_text("", encoding="utf-8")
    started = datetime.datetime.now(datetime.timezone.utc)
    rows = []

    print(f"mutants: building {BUILD.relative_to(ROOT)} (log: {log.relative_to(ROOT)})", flush=True)
    configure(log, args.jobs)
    if not build(log, args.jobs):
        sys.exit(f"mutants: the unmutated sources do not build; see {log}")
    t = time.monotonic()
    try:
        ok, failed = run_suites(log, args.jobs)
    except RuntimeError as e:
        sys.exit(f"mutants: the unmutated suites gave no verdict: {e}")
    if not ok:
        sys.exit(f"mutants: the suites fail without any fault ({', '.join(failed)}); fix that first. See {log}")
    print(f"mutants: the suites pass unmutated ({time.monotonic() - t:.0f} s)", flush=True)

    try:
        for number, f in enumerate(chosen, 1):
            row = {"id": f.id, "folder": f.folder, "what": f.what, "suites": [], "result": "", "seconds": 0.0}
            t = time.monotonic()
            n, original = occurrences(f)
            if n != 1:
                row["result"] = "stale"
            elif not git_clean(f.file):
                sys.exit(f"mutants: {f.file} has changes of its own; commit or stash them first")
            else:
                # Stays "interrupted" when the run ends inside this fault.
                row["result"] = "interrupted"
                try:
                    with Mutation(f, original):
                        with open(log, "a", encoding="utf-8") as out:
                            out.write(f"\n===== [{f.id}] {f.file}\n")
                        if not build(log, args.jobs, timeout=3600):
                            row["result"] = "stillborn"
                        else:
                            try:
                                ok, failed = run_suites(log, args.jobs, f)
                                row["result"] = "missed" if ok else "caught"
                                row["suites"] = failed
                            except RuntimeError as e:
                                row["result"] = "no verdict"
                                print(f"mutants: [{f.id}] {e}", file=sys.stderr)
                finally:
                    row["seconds"] = time.monotonic() - t
                    if row["result"] == "interrupted":
                        rows.append(row)
            row["seconds"] = time.monotonic() - t
            rows.append(row)
            suites = f" ({', '.join(row['suites'])})" if row["suites"] else ""
            print(f"[{number}/{len(chosen)}] {f.id}: {row['result']}{suites}, {row['seconds']:.0f} s", flush=True)
            if args.out:
                write_out(args.out, rows, chosen, faults, started, False)
    except KeyboardInterrupt:
        print("mutants: interrupted; the sources are as they were", file=sys.stderr)
        if args.out:
            write_out(args.out, rows, chosen, faults, started, False)
        print(summary(rows))
        sys.exit(130)

    if args.out:
        write_out(args.out, rows, chosen, faults, started, True)
    print(summary(rows))


if __name__ == "__main__":
    main()
