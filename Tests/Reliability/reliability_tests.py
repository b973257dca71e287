"""Disturbs a program that opens, edits and saves a file: kills it, and makes its calls to the system fail or wait.

Whatever happens, the file has its old bytes or the new ones, whole; what is not in it is kept for recovery; the user
is told; nothing else in the folder is touched, and nothing is left there. Prints a table, and each complaint.

Usage: reliability_tests.py SAVER LIBRARY [--kills N] [--size BYTES] [--turns N] [--seed N]
"""

import argparse
import errno
import os
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile
import time

ADDITION = "<!-- mío -->".encode()
FOREIGN = b"De otra persona."
PATIENCE = 300  # Seconds until a program counts as hanging.

FILE_CALLS = (
    "open read pread write pwrite ftruncate fsync fchmod fstat stat lstat flock linkat rename unlink sync_file_range"
).split()
STATE_CALLS = "open read pread write pwrite fsync fdatasync fstat stat flock mkdir rename unlink".split()


class Trial:
    """A file, another one beside it, and a place for unsaved text."""

    def __init__(self, saver, library, size):
        self._saver, self._library = saver, library
        self._folder = tempfile.TemporaryDirectory()
        root = pathlib.Path(self._folder.name)
        self.files, self.state, self._hit = root / "files", root / "state", root / "hit"
        self.path = self.files / "documento.xml"
        filler = b"<a>" + b"0123456789abcdef" * (size // 16) + b"</a>\n"
        self.old, self.new = filler, ADDITION + filler
        self.reset()

    def close(self):
        self._folder.cleanup()

    def reset(self):
        for folder in (self.files, self.state):
            shutil.rmtree(folder, ignore_errors=True)
        self.files.mkdir()
        self.state.mkdir(mode=0o700)
        self._hit.unlink(missing_ok=True)
        self.path.write_bytes(self.old)
        (self.files / "ajeno.txt").write_bytes(FOREIGN)

    def start(self, call=None, turn=0, what=0, under=None, has_unnamed_files=True):
        environment = dict(os.environ, QT_QPA_PLATFORM="offscreen", LD_PRELOAD=str(self._library))
        if call is not None:
            environment.update(
                TAMO_FAILING_CALL=f"{call}:{turn}:{what}",
                TAMO_CALLS_UNDER=f"{under}",
                TAMO_CALLS_HIT=str(self._hit),
            )
        if not has_unnamed_files:
            environment["TAMO_NO_UNNAMED_FILES"] = "1"
        return subprocess.Popen(
            [self._saver, "save", str(self.path), str(self.state)],
            env=environment,
            stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL,
            text=True,
        )

    def was_hit(self):
        return self._hit.exists()

    def recovered(self):
        result = subprocess.run(
            [self._saver, "recover", str(self.state)],
            env=dict(os.environ, QT_QPA_PLATFORM="offscreen"),
            stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL,
            text=True,
            check=True,
            timeout=PATIENCE,
        )
        return [line.split("\t")[0] for line in result.stdout.splitlines()]

    def bytes_now(self):
        return self.path.read_bytes() if self.path.exists() else None

    def complaints_about_files(self, may_leave):
        """What is wrong in the folder, whatever happened."""
        if self.bytes_now() not in (self.old, self.new):
            yield "the file is neither old nor new"
        if (self.files / "ajeno.txt").read_bytes() != FOREIGN:
            yield "another file was touched"
        left = sorted(each.name for each in self.files.iterdir() if each.name not in ("documento.xml", "ajeno.txt"))
        if left and not may_leave:
            yield f"left over: {left}"


def said(output):
    """The lines of the program as pairs of a word and a text."""
    return [tuple(line.split("\t", 1)) for line in output.splitlines()]


def complaints_about_run(trial, lines, is_state_disturbed, may_leave):
    words = [word for word, _ in lines]
    told = [text for word, text in lines if word in ("message", "notice")]
    yield from trial.complaints_about_files(may_leave)
    outcome = words[-1] if words else None
    now = trial.bytes_now()
    if outcome == "unopened":
        if now != trial.old:
            yield "a file that was not opened has changed"
        if not any(text.startswith("No se pudo abrir “documento.xml”: ") for text in told):
            yield f"it was not said why the file was not opened: {told}"
        return
    recovered = trial.recovered()
    if outcome == "saved":
        if now != trial.new:
            yield "saved without the new bytes"
        if "text" in recovered and not is_state_disturbed:
            yield "a saved text is offered again"
    elif outcome == "unsaved":
        if not told:
            yield "it was not said that nothing was saved"
        if "text" not in recovered and not is_state_disturbed:
            yield f"the unsaved text is lost: {recovered}"
    else:
        yield f"the program ended after {words}"
    is_protected = "text" in recovered or any("no se pueden proteger" in text for text in told)
    if outcome == "unsaved" and not is_protected:
        yield f"the text is not kept, and that was not said: {told}"


def finish(process):
    try:
        return said(process.communicate(timeout=PATIENCE)[0])
    except subprocess.TimeoutExpired:
        process.kill()
        process.communicate()
        return [("hanging", "")]


class Table:
    def __init__(self, title, columns):
        self._widths = [max(len(each), 12) for each in columns]
        print(f"\n{title}")
        self.row(*columns)
        self.failures = 0

    def row(self, *cells):
        print("  ".join(str(cell).ljust(width) for cell, width in zip(cells, self._widths)), flush=True)

    def complain(self, what, complaints):
        for complaint in complaints:
            self.failures += 1
            print(f"    {what}: {complaint}", flush=True)


def try_failing_calls(saver, library, turns):
    """Each call in turn fails or waits, the first time, the second time, and so on."""
    table = Table("Calls that fail or wait", ("files", "call", "how", "tries", "saved", "unsaved", "unopened"))
    pause = -200
    tries_of_all = 0
    for place, calls, errors in (
        ("document", FILE_CALLS, (errno.EIO, errno.ENOSPC, errno.EACCES, pause)),
        ("recovery", STATE_CALLS, (errno.EIO, errno.ENOSPC, pause)),
    ):
        for call in calls:
            # Only a large file is handed to the disk while it is written.
            trial = Trial(saver, library, 20_000_000 if call == "sync_file_range" else 100_000)
            for what in errors if turns > 2 else (errno.EIO,):
                counts = dict.fromkeys(("saved", "unsaved", "unopened"), 0)
                tries = 0
                for turn in range(1, turns + 1):
                    trial.reset()
                    under = trial.files if place == "document" else trial.state
                    lines = finish(trial.start(call, turn, what, under))
                    if not trial.was_hit():
                        break
                    tries += 1
                    outcome = lines[-1][0] if lines else "nothing"
                    counts[outcome] = counts.get(outcome, 0) + 1
                    name = f"{place} {call} {turn} {what}"
                    may_leave = call == "unlink"
                    table.complain(name, complaints_about_run(trial, lines, place == "recovery", may_leave))
                how = "wait" if what < 0 else errno.errorcode[what]
                tries_of_all += tries
                if tries:
                    table.row(place, call, how, tries, *(counts[each] for each in ("saved", "unsaved", "unopened")))
            trial.close()
    print(f"{tries_of_all} tries, {table.failures} complaints")
    if tries_of_all == 0:
        raise SystemExit("no call came: the library is not in the program")
    return table.failures


def kill_while_saving(trial, longest, has_unnamed_files):
    """Kills the program some time after it began to save, at most `longest` seconds."""
    process = trial.start(has_unnamed_files=has_unnamed_files)
    for line in process.stdout:
        if line.startswith("saving"):
            break
    time.sleep(random.uniform(0, longest))
    process.kill()
    process.communicate()


def try_kills(saver, library, kills, size):
    """Kills while saving, on disks with and without files that have no name."""
    table = Table(f"Kills while saving {size} bytes", ("unnamed files", "kills", "old bytes", "new bytes", "left over"))
    for has_unnamed_files in (True, False):
        trial = Trial(saver, library, size)
        process = trial.start(has_unnamed_files=has_unnamed_files)
        begin = time.monotonic()
        for line in process.stdout:
            if line.startswith("saving"):
                begin = time.monotonic()
            if line.startswith("ended"):
                break
        longest = 1.2 * (time.monotonic() - begin)
        process.communicate()
        old = new = left = 0
        for kill in range(kills // 2):
            trial.reset()
            kill_while_saving(trial, longest, has_unnamed_files)
            table.complain(f"kill {kill}", trial.complaints_about_files(may_leave=True))
            is_old = trial.bytes_now() == trial.old
            old, new = old + is_old, new + (not is_old)
            if is_old and "text" not in trial.recovered():
                table.complain(f"kill {kill}", ["the unsaved text is lost"])
            names = {each.name for each in trial.files.iterdir()} - {"documento.xml", "ajeno.txt"}
            if names:
                left += 1
                finish(trial.start(has_unnamed_files=has_unnamed_files))
                table.complain(f"kill {kill}, next save", trial.complaints_about_files(may_leave=False))
        table.row("yes" if has_unnamed_files else "no", kills // 2, old, new, left)
        trial.close()
    return table.failures


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("saver")
    parser.add_argument("library")
    parser.add_argument("--kills", type=int, default=12)
    parser.add_argument("--size", type=int, default=8_000_000)
    parser.add_argument("--turns", type=int, default=2)
    parser.add_argument("--seed", type=int, default=random.randrange(1_000_000))
    options = parser.parse_args()
    random.seed(options.seed)
    print(f"seed {options.seed}")
    failures = try_failing_calls(options.saver, options.library, options.turns)
    failures += try_kills(options.saver, options.library, options.kills, options.size)
    sys.exit(failures > 0)


if __name__ == "__main__":
    main()
