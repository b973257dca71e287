"""Works the program with too little memory: what the script of all limits and the short test share."""

import pathlib
import re
import shutil
import subprocess
import time

from desktop import Application, wait_until

MEGABYTE = 1 << 20
LETTER = b" "
REPLACED, REPLACEMENT = "e", "o"


def processor_time(process):
    fields = pathlib.Path(f"/proc/{process}/stat").read_text().rsplit(")", 1)[1].split()
    return int(fields[11]) + int(fields[12])


def wait_until_calm(process, quiet=0.8, longest=90):
    """Until a process has done nothing for a while; the blinking caret is nothing. Answers whether it lives."""
    end = time.monotonic() + longest
    last, since = -1, time.monotonic()
    while time.monotonic() < end and process.poll() is None:
        now = processor_time(process.pid)
        if now > last + 1:
            last, since = now, time.monotonic()
        elif time.monotonic() - since > quiet:
            break
        time.sleep(0.1)
    return process.poll() is None


def limited(limit):
    """The start of a command line: the program after it gets no more address space than `limit` bytes."""
    return ["/usr/bin/prlimit", f"--as={limit}"]


def window_size(program):
    """The most address space that an empty window takes, in bytes."""
    with Application(program) as app:
        wait_until_calm(app.process)
        status = pathlib.Path(f"/proc/{app.process.pid}/status").read_text()
        return int(re.search(r"VmPeak:\s*(\d+)", status).group(1)) * 1024


def starts_empty(program, limit):
    """Whether an empty window comes up within `limit`, and stays."""
    command = [*limited(limit), str(program)]
    try:
        with Application(command[0], *command[1:]) as app:
            return wait_until_calm(app.process)
    except AssertionError:
        return False


def without_space(contents):
    return contents.translate(None, b" \t\r\n")


def replaced(contents):
    table = bytes.maketrans((REPLACED + REPLACED.upper()).encode(), (REPLACEMENT * 2).encode())
    return contents.translate(table)


class Run:
    """One document under one limit. `steps` says what became of each step, `failure` what must not be."""

    def __init__(self, program, document, limit, folder):
        self.path = pathlib.Path(shutil.copy(document, folder))
        self.steps, self.failure = {}, None
        self._contents = self.path.read_bytes()
        command = [*limited(limit), str(program), str(self.path)]
        try:
            with Application(command[0], *command[1:]) as self._app:
                self._work()
        except AssertionError as error:
            self.failure = str(error)
        finally:
            self.path.unlink()

    def _work(self):
        if not self._finish("open") or not self._has_document():
            return
        self._app.press("ctrl+1")
        self._app.press("ctrl+End")
        self._app.type(LETTER.decode())
        self._finish("type")
        self._app.press("ctrl+f")
        self._app.type(REPLACED)
        self._finish("search")
        self._app.press("Escape")
        self._save("save", self._contents + LETTER, exactly=True)
        self._app.press("ctrl+alt+f")
        self._finish("format")
        self._save("save formatted", self._contents + LETTER)
        self._replace()
        self._save("save replaced", replaced(self._contents) + LETTER)

    def _finish(self, step):
        """Waits for the end of a step; answers whether the program lives."""
        if not wait_until_calm(self._app.process):
            self.failure = f"{step}: the program ended with {self._app.process.returncode}"
            raise AssertionError(self.failure)
        told = [name for name in self._app.names("label") if "memoria" in name]
        self.steps[step] = "; ".join(dict.fromkeys(told)) or "done"
        self._dismiss()
        return True

    def _main(self):
        return next((number for title, number in self._app.windows().items() if "Tamo" in title and title != "Tamo"), None)

    def _has_document(self):
        return self._main() is not None and "abrir" not in self.steps["open"]

    def _dismiss(self):
        """Answers the messages that came up, and gives the keyboard back to the document."""
        for title, number in self._app.windows().items():
            if title in ("Tamo", "No se pudo editar"):
                subprocess.run(["xdotool", "windowfocus", "--sync", number, "key", "Return"],
                               stderr=subprocess.DEVNULL, check=False, timeout=10)
        time.sleep(0.3)
        if self._main() is not None:
            subprocess.run(["xdotool", "windowfocus", self._main()], stderr=subprocess.DEVNULL, check=False, timeout=10)
            time.sleep(0.2)

    def _replace(self):
        self._app.press("ctrl+h")
        self._app.type(REPLACED)
        field = self._app.find(role="text", name="Reemplazar por")
        button = self._app.find(role="push button", name="Reemplazar todo")
        if field is None or button is None:
            self.steps["replace"] = "not to be seen"
            return
        self._app.click_on(field)
        self._app.press("ctrl+a")
        self._app.type(REPLACEMENT)
        self._app.click_on(button)
        self._finish("replace")
        self._app.press("Escape")

    def _save(self, step, expected, exactly=False):
        """Saves; the file must then be what was expected, or what it was before where a message said so."""
        before = self.path.read_bytes()
        self._app.press("ctrl+s")
        self._finish(step)
        now = self.path.read_bytes()
        if exactly:
            is_saved = now == expected
        else:
            is_saved = without_space(now) == without_space(expected)
        if not is_saved and now != before:
            self.failure = f"{step}: the file is not whole"
            raise AssertionError(self.failure)
        if not is_saved and self.steps[step] == "done":
            self.steps[step] = "not saved" if exactly else "as before"
        if exactly and not is_saved and self.steps[step] == "not saved":
            self.failure = f"{step}: nothing was saved, and nothing was said"
            raise AssertionError(self.failure)
