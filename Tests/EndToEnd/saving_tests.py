"""Saves in the built program what is hard to save: on a slow disk, under odd names, files with several names.

Usage: saving_tests.py PROGRAM [TEST…]
"""

import os
import pathlib
import subprocess
import unittest.mock

from desktop import PATIENCE, wait_until
from document_test import DocumentTest, run


class Saving(DocumentTest):
    def slow_disk(self, path, call):
        """While this holds, programs start on a disk that takes a minute for the first `call` beside `path`."""
        library = pathlib.Path(self.program).resolve().parent / "Tests" / "libFailingCalls.so"
        environment = {
            "LD_PRELOAD": str(library),
            "TAMO_FAILING_CALL": f"{call}:1:-60000",
            "TAMO_CALLS_UNDER": f"{path.parent}/",
            "TAMO_CALLS_HIT": str(self.folder / "hit"),
        }
        return unittest.mock.patch.dict(os.environ, environment)

    def start_on_slow_disk(self, path, call):
        with self.slow_disk(path, call):
            return self.start_with_text(path)

    def edited(self, app, path):
        """Types an x before the text of the file."""
        app.press("ctrl+Home")
        app.type("x")
        self.wait_for_text(app, "x" + path.read_text())
        wait_until(lambda: "*" in app.title(), "mark of an edited document")

    def test_cancels_a_save_while_the_disk_is_slow(self):
        (self.folder / "disco").mkdir()
        path = self.document("<a/>", "disco/documento.xml")
        app = self.start_on_slow_disk(path, "fsync")
        self.edited(app, path)
        app.press("ctrl+s")
        app.click_on(app.wait_for(role="push button", name="Cancelar"))
        wait_until(lambda: app.find(role="push button", name="Cancelar") is None, "end of the bar")
        self.assertTrue((self.folder / "hit").exists(), "the disk still waits")
        app.type("y")
        self.wait_for_text(app, "xy<a/>")
        self.assertIn("*", app.title())
        self.assertEqual(path.read_text(), "<a/>")
        app.press("ctrl+s")
        self.wait_for_bytes(path, b"xy<a/>")
        wait_until(lambda: "*" not in app.title(), "title without the mark")
        self.assertEqual([each.name for each in path.parent.iterdir()], [path.name])

    def test_ends_although_the_disk_gives_no_answer(self):
        (self.folder / "disco").mkdir()
        path = self.document("<a/>", "disco/documento.xml")
        with self.slow_disk(path, "read"):
            app = self.start(path)
        app.wait_for(starts="Abriendo “documento.xml”…")
        app.click_on(app.wait_for(role="push button", name="Cancelar"))
        self.assertEqual(app.process.wait(timeout=PATIENCE), 0)
        self.assertTrue((self.folder / "hit").exists())

    def test_keeps_the_mark_until_the_file_is_saved(self):
        (self.folder / "disco").mkdir()
        path = self.document("<a/>", "disco/documento.xml")
        app = self.start_on_slow_disk(path, "fsync")
        self.edited(app, path)
        app.press("ctrl+s")
        app.wait_for(role="push button", name="Cancelar")
        self.assertIn("*", app.title())

    def test_asks_what_is_to_become_of_other_names(self):
        path = self.document("<a/>")
        other = self.folder / "otro.xml"
        os.link(path, other)
        app = self.start_with_text(path)
        self.edited(app, path)
        app.press("ctrl+s")
        app.click_on(app.wait_for(role="push button", name="Guardar en todos"))
        self.wait_for_bytes(path, b"x<a/>")
        wait_until(lambda: "*" not in app.title(), "title without the mark")
        self.assertEqual(other.read_bytes(), b"x<a/>")
        self.assertEqual(sorted(each.name for each in self.folder.iterdir()), ["documento.xml", "otro.xml"])

    def test_opens_shows_and_saves_a_name_that_is_not_utf_8(self):
        path = self.document("<a/>", os.fsdecode(b"caf\xe9\xe2\x80\xae.xml"))
        app = self.start_with_text(path)
        wait_until(lambda: app.title().startswith("caf\ufffd\u2b1a.xml"), "title with stand-ins")
        self.edited(app, path)
        app.press("ctrl+s")
        self.wait_for_bytes(path, b"x<a/>")
        wait_until(lambda: "*" not in app.title(), "title without the mark")
        self.assertEqual([os.fsencode(each.name) for each in self.folder.iterdir()], [b"caf\xe9\xe2\x80\xae.xml"])

    def test_a_second_start_hands_over_a_name_that_is_not_utf_8(self):
        app = self.start_with_text(self.document("<a/>"))
        other = self.document("<b/>", os.fsdecode(b"caf\xe9.xml"))
        subprocess.run([self.program, str(other)], check=True, timeout=60)
        wait_until(lambda: any(title.startswith("caf\ufffd.xml") for title in app.windows()), "second window")

    def test_saves_the_longest_names(self):
        path = self.document("<a/>", "x" * 251 + ".xml")
        app = self.start_with_text(path)
        self.edited(app, path)
        app.press("ctrl+s")
        self.wait_for_bytes(path, b"x<a/>")


if __name__ == "__main__":
    run()
