"""Kills the built program while it works, starts it again, and looks at what is left.

Usage: recovery_tests.py PROGRAM [TEST…]

`TAMO_RECOVERY_KILLS` in the environment sets how often the program is killed, instead of for how long;
`TAMO_RECOVERY_SEED` the moments.
"""

import os
import pathlib
import random
import resource
import subprocess
import sys
import tempfile
import threading
import time
import unittest

from desktop import Application, accessibility, api_error, wait_until
from document_test import DocumentTest, run

PROMISE = 1.0  # Seconds from a change until nothing takes it away any more.


def press_button(app, title):
    """Presses the button of that name as soon as it shows."""
    button = wait_until(lambda: app.find(role="push button", state="showing", starts=title), f"button {title}")
    accessibility().Action.do_action(button, 0)


class Program(Application):
    """The program with a folder for unsaved texts, which outlives it."""

    def __init__(self, folder, *arguments):
        super().__init__(DocumentTest.program, *arguments, state=folder / "state")

    def text(self):
        """The source, which shows from here on."""

        def shown():
            found = self.find(role="text", state="showing", starts="Texto")
            if found is None:
                self._focus(self._window)
                self.press("ctrl+1")
            return found

        return wait_until(shown, "text")

    def recover(self, name):
        """Takes what is offered, and comes back with its window in front."""
        press_button(self, "Recuperar")
        self._window = wait_until(
            lambda: self._xdotool("search", "--onlyvisible", "--all", "--pid", str(self.process.pid), "--name", "^" + name + r"\*").split(),
            "window of the recovered document",
        )[0]
        self._focus(self._window)


class Recovery(DocumentTest):
    def start(self, *arguments):
        return self.enterContext(Program(self.folder, *arguments))

    def check_recovery(self, before, typed, after):
        path = self.folder / "carta.xml"
        path.write_bytes(before)
        app = self.start(path)
        app.text()
        app.press("ctrl+Home")
        app.type(typed)
        wait_until(lambda: app.title().startswith("carta.xml*"), "mark of an edited document")
        api = accessibility()
        wait_until(lambda: api.Text.get_text(app.text(), 0, len(typed)) == typed, "typed text")
        time.sleep(PROMISE)
        app.process.kill()
        app.process.wait()
        self.assertEqual(path.read_bytes(), before)

        again = self.start()
        again.recover("carta.xml")
        self.assertTrue(again.title().startswith("carta.xml*"), again.title())
        self.assertEqual(api.Text.get_caret_offset(again.text()), len(typed))
        again.press("ctrl+s")
        self.wait_for_bytes(path, after)
        wait_until(lambda: again.title().startswith("carta.xml "), "title without the mark")
        again.press("ctrl+q")
        self.assertEqual(again.process.wait(timeout=30), 0)
        self.assert_nothing_left()

    def assert_nothing_left(self):
        left = [path for path in (self.folder / "state").rglob("*.log*")]
        self.assertEqual(left, [], "a clean end leaves nothing")

    def test_recovers_what_was_typed(self):
        self.check_recovery(b"<a/>\n", "<!-- x -->", b"<!-- x --><a/>\n")

    def test_recovers_encoding_and_mark(self):
        before = b"\xff\xfe" + '<a>ñ</a>\r\n'.encode("utf-16-le")
        self.check_recovery(before, "<?x?>", before[:2] + "<?x?>".encode("utf-16-le") + before[2:])

    def test_recovers_a_document_that_never_had_a_file(self):
        app = self.start()
        api = accessibility()
        app.type("<nuevo/>")
        wait_until(lambda: api.Text.get_text(app.text(), 0, -1) == "<nuevo/>", "typed text")
        time.sleep(PROMISE)
        app.process.kill()
        app.process.wait()
        again = self.start()
        again.recover("Sin título")
        wait_until(lambda: api.Text.get_text(again.text(), 0, -1) == "<nuevo/>", "recovered text")

    def leave_typed(self, path, typed):
        """Types into the file, kills the program, and returns the log that is left."""
        app = self.start(path)
        api = accessibility()
        app.text()
        app.press("ctrl+Home")
        app.type(typed)
        wait_until(lambda: api.Text.get_text(app.text(), 0, len(typed)) == typed, "typed text")
        time.sleep(PROMISE)
        app.process.kill()
        app.process.wait()
        return next((self.folder / "state").rglob("*.log"))

    def test_offers_what_a_damaged_log_still_has_and_asks_before_it_goes_into_the_file(self):
        path = self.folder / "carta.xml"
        path.write_bytes(b"<a/>\n")
        log = self.leave_typed(path, "<!-- x -->")
        kept = bytearray(log.read_bytes())
        kept[84] ^= 1  # In the length of the first record.
        log.write_bytes(kept)

        again = self.start()
        again.recover("carta.xml")
        wait_until(
            lambda: again.find(role="label", state="showing", starts="El disco no devolvió entero"),
            "notice about the damage",
        )
        api = accessibility()
        self.assertEqual(api.Text.get_text(again.text(), 0, -1), "<!-- x --><a/>\n")
        self.assertIn(kept, [each.read_bytes() for each in (self.folder / "state").rglob("damaged/*")])
        again.press("ctrl+s")
        press_button(again, "Guardar encima")
        self.wait_for_bytes(path, b"<!-- x --><a/>\n")

    def test_leaves_a_log_of_a_newer_version_alone(self):
        path = self.folder / "carta.xml"
        path.write_bytes(b"<a/>\n")
        log = self.leave_typed(path, "<!-- x -->")
        newer = log.read_bytes().replace(b"TamoRec2", b"TamoRec3")
        log.write_bytes(newer)
        again = self.start(path)
        wait_until(
            lambda: again.find(role="label", state="showing", starts="Hay textos sin guardar de una versión más nueva"),
            "message about the newer version",
        )
        self.assertEqual(log.read_bytes(), newer)

    def test_lives_on_where_files_may_not_grow(self):
        path = self.folder / "carta.xml"
        path.write_bytes(b"<a/>\n")
        resource.setrlimit(resource.RLIMIT_FSIZE, (100_000, resource.RLIM_INFINITY))
        try:
            app = self.start(path)
        finally:
            resource.setrlimit(resource.RLIMIT_FSIZE, (resource.RLIM_INFINITY, resource.RLIM_INFINITY))
        api = accessibility()
        typed = "<!-- " + "x" * 200_000 + " -->"
        api.EditableText.insert_text(app.text(), 0, typed, len(typed))
        wait_until(
            lambda: app.find(role="label", state="showing", starts="Los cambios sin guardar no se pueden proteger"),
            "notice that nothing is kept",
        )
        app.press("ctrl+s")
        wait_until(lambda: app.find(role="label", starts="No se pudo guardar"), "message about the save")
        self.assertEqual(path.read_bytes(), b"<a/>\n")
        self.assertIsNone(app.process.poll())

    def test_hands_files_to_the_running_program(self):
        first, second = self.folder / "uno.xml", self.folder / "dos.xml"
        first.write_text("<a/>")
        second.write_text("<b/>")
        app = self.start(first)
        other = subprocess.run([self.program, second.as_uri()], timeout=30, env=dict(os.environ))
        self.assertEqual(other.returncode, 0)
        wait_until(lambda: {"uno.xml — Tamo", "dos.xml — Tamo"} <= set(app.names("frame")), "second window")

    def test_reads_a_file_again_that_another_program_wrote(self):
        path = self.folder / "carta.xml"
        path.write_text("<a/>")
        app = self.start(path)
        api = accessibility()
        path.write_text("<a>de fuera</a>")
        wait_until(lambda: api.Text.get_text(app.text(), 0, -1) == "<a>de fuera</a>", "new text")
        self.assertTrue(app.title().startswith("carta.xml "))
        app.press("ctrl+Home")
        app.type("x")
        wait_until(lambda: app.title().startswith("carta.xml*"), "mark of an edited document")
        path.write_text("<otra/>")
        wait_until(lambda: app.find(role="label", starts="“carta.xml” ha cambiado en el disco"), "notice")
        press_button(app, "Conservar lo mío")
        wait_until(
            lambda: app.find(role="label", state="showing", starts="“carta.xml” ha cambiado") is None,
            "end of the notice",
        )
        app.press("ctrl+s")
        self.wait_for_bytes(path, b"x<a>de fuera</a>")


class Chain:
    """One document in a folder, which the program edits, saves and recovers from one kill to the next."""

    def __init__(self, folder, moments):
        self.folder = folder
        self.random = moments
        self.path = folder / "cadena.xml"
        self.path.write_bytes(b"<a>" + b"<b/>" * 2000 + b"</a>\n")
        self.states = [self.path.read_bytes()]  # Of the text, in the order in which they were.
        self.times = [0.0]  # When the program had made each of them.
        self.count = 0
        self.kills = 0
        self.kills_in_recovery = 0
        self.recoveries = 0
        self.worst_loss = 0.0

    def is_offered(self):
        return any(path.stat().st_size > 0 for path in (self.folder / "state").rglob("*.log"))

    def live(self):
        """Starts the program, works until it is killed, and looks at the file."""
        is_recovering = self.is_offered()
        with Program(self.folder, *([] if is_recovering else [self.path])) as app:
            if is_recovering and self.random.random() < 0.2:
                self.kill_while_recovering(app)
                return
            if is_recovering:
                app.recover(self.path.name)
                self.recoveries += 1
            text = app.text()
            self.check_text(accessibility().Text.get_text(text, 0, -1).encode(), is_recovering)
            killer = threading.Timer(self.random.uniform(0.05, 2.5), app.process.kill)
            killer.start()
            self.work(app, text)
            killer.join()
            app.process.wait()
            self.killed = time.monotonic()
            self.kills += 1
        self.check_file()

    def kill_while_recovering(self, app):
        button = wait_until(lambda: app.find(role="push button", state="showing", starts="Recuperar"), "offer")
        killer = threading.Timer(self.random.uniform(0, 0.4), app.process.kill)
        killer.start()
        try:
            accessibility().Action.do_action(button, 0)
        except api_error():
            pass
        killer.join()
        app.process.wait()
        self.kills += 1
        self.kills_in_recovery += 1
        self.check_file()

    def work(self, app, text):
        """Changes the text at random places until the program is gone; saves now and then."""
        api = accessibility()
        try:
            while app.process.poll() is None:
                state = self.states[-1]
                at = self.random.randrange(len(state) + 1)
                self.count += 1
                units = f"[{self.count}]"
                # Noted before: it may be made and not be told any more.
                self.states.append(state[:at] + units.encode() + state[at:])
                self.times.append(float("inf"))
                if not api.EditableText.insert_text(text, at, units, len(units)):
                    break
                self.times[-1] = time.monotonic()
                if self.random.random() < 0.03:
                    app.press("ctrl+s")
                time.sleep(self.random.choice([0, 0.002, 0.03]))
        except api_error():
            pass

    def check_text(self, found, is_recovered):
        """`found` is a state that the text had, and none that a second had made safe comes after it."""
        if found not in self.states:
            raise AssertionError("the text never was like that")
        at = len(self.states) - 1 - self.states[::-1].index(found)
        if len(self.states) > 1 and at + 1 < len(self.states):
            # The oldest change that is missing was made then.
            loss = self.killed - self.times[at + 1]
            self.worst_loss = max(self.worst_loss, loss)
            if loss > PROMISE:
                raise AssertionError(f"a change of {loss:.3f} s before the kill is lost; recovered: {is_recovered}")
        self.states, self.times = [found], [0.0]
        self.saved = {self.path.read_bytes(), found}

    def check_file(self):
        """The file is whole: a state that the text had since it was opened, or what it held before."""
        if self.path.read_bytes() not in self.saved | set(self.states):
            raise AssertionError("the file is torn")
        others = [each.name for each in self.folder.iterdir() if each.name not in ("state", self.path.name)]
        # What a kill in the middle of a save leaves is beside the file, and nobody takes it for that.
        for name in others:
            (self.folder / name).unlink()


def place():
    """In memory where that can be: a kill leaves what was written to the system in any case, and a disk that is
    busy with other work would only add its own delays. `TAMO_KILL_FOLDER` says otherwise."""
    wanted = os.environ.get("TAMO_KILL_FOLDER", "/dev/shm")
    return wanted if os.access(wanted, os.W_OK) else None


class Kills(unittest.TestCase):
    def test_nothing_is_lost_but_the_last_second(self):
        seed = int(os.environ.get("TAMO_RECOVERY_SEED", random.randrange(1 << 32)))
        wanted = int(os.environ.get("TAMO_RECOVERY_KILLS", 0))
        end = time.monotonic() + 40
        with tempfile.TemporaryDirectory(dir=place()) as folder:
            chain = Chain(pathlib.Path(folder), random.Random(seed))
            try:
                while chain.kills < wanted if wanted else time.monotonic() < end:
                    chain.live()
            finally:
                print(
                    f"seed {seed}: {chain.kills} kills, {chain.kills_in_recovery} of them while recovering, "
                    f"{chain.recoveries} recoveries, {chain.count} changes, "
                    f"oldest change lost {max(chain.worst_loss, 0) * 1000:.0f} ms before the kill",
                    file=sys.stderr,
                )
        self.assertGreater(chain.recoveries, 0)


if __name__ == "__main__":
    run()
