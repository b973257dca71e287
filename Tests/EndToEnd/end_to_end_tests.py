"""Works the built program through keys and its accessibility tree, as a person would.

Usage: end_to_end_tests.py PROGRAM [TEST…]
"""

import json
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

from desktop import Application, Desktop, accessibility, wait_until

SAMPLES = pathlib.Path(__file__).resolve().parents[2] / "samples"
PROGRAM = ""


class EndToEnd(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def sample(self, name):
        """A copy of a sample to work on."""
        return pathlib.Path(shutil.copy(SAMPLES / name, self.folder))

    def start(self, *arguments):
        return self.enterContext(Application(PROGRAM, *arguments))

    def wait_for_bytes(self, path, expected):
        wait_until(lambda: path.read_bytes() == expected, f"file of {len(expected)} bytes as expected")

    def check_edit(self, name, typed, expected):
        """Types at the start of a sample, saves, and compares every byte."""
        path = self.sample(name)
        before = path.read_bytes()
        app = self.start(path)
        app.press("ctrl+Home")
        app.type(typed)
        wait_until(lambda: app.title().startswith(name + "*"), "mark of an edited document")
        app.press("ctrl+s")
        self.wait_for_bytes(path, expected(before))
        wait_until(lambda: app.title().startswith(name + " "), "title without the mark")

    def test_saves_what_was_typed_and_nothing_else(self):
        self.check_edit("biblioteca.xml", "<!-- x -->", lambda before: b"<!-- x -->" + before)

    def test_keeps_latin_1(self):
        path = self.sample("recetas-latin1.xml")
        before = path.read_bytes()
        app = self.start(path)
        wait_until(lambda: app.find(role="label", starts="Occidental (ISO Latin 1)"), "name of the encoding")
        app.press("ctrl+End")
        app.type("<!-- x -->")
        app.press("ctrl+s")
        self.wait_for_bytes(path, before + b"<!-- x -->")

    def test_keeps_utf_16_and_its_mark(self):
        self.check_edit(
            "agenda-utf16.xml", "<?x?>", lambda before: before[:2] + "<?x?>".encode("utf-16-le") + before[2:]
        )

    def test_ends_lines_as_the_document_does(self):
        path = self.sample("pedido-crlf.xml")
        before = path.read_bytes()
        app = self.start(path)
        app.press("ctrl+End", "Return")
        app.type("<!-- x -->")
        app.press("ctrl+s")
        self.wait_for_bytes(path, before + b"\r\n<!-- x -->")

    def test_a_screen_reader_reads_and_edits_the_text(self):
        api = accessibility()
        path = self.folder / "lectura.xml"
        path.write_text("<a>\n  uno ñandú\n</a>\n", encoding="utf-8")
        app = self.start(path)
        text = wait_until(lambda: app.find(role="text", starts="Texto"), "text")
        self.assertTrue(text.get_state_set().contains(api.StateType.EDITABLE))
        self.assertEqual(api.Text.get_character_count(text), 21)
        self.assertEqual(api.Text.get_text(text, 4, 9), "  uno")

        def piece(offset, boundary):
            found = api.Text.get_text_at_offset(text, offset, boundary)
            return found.content, found.start_offset, found.end_offset

        self.assertEqual(piece(11, api.TextBoundaryType.CHAR), ("a", 11, 12))
        self.assertEqual(piece(11, api.TextBoundaryType.WORD_START), ("ñandú", 10, 15))
        self.assertEqual(piece(11, api.TextBoundaryType.LINE_START), ("  uno ñandú\n", 4, 16))

        app.press("ctrl+Home", "Down", "End")
        wait_until(lambda: api.Text.get_caret_offset(text) == 15, "caret at the end of the line")
        app.press("shift+Home")
        wait_until(lambda: api.Text.get_n_selections(text) == 1, "selection")
        selected = api.Text.get_selection(text, 0)
        self.assertEqual((selected.start_offset, selected.end_offset), (6, 15))
        box = api.Text.get_character_extents(text, 6, api.CoordType.SCREEN)
        self.assertGreater(box.width, 3)
        self.assertEqual(
            api.Text.get_offset_at_point(text, box.x + 1, box.y + box.height // 2, api.CoordType.SCREEN), 6
        )
        api.EditableText.insert_text(text, 0, "<?x?>", 5)
        wait_until(lambda: api.Text.get_text(text, 0, 8) == "<?x?><a>", "inserted text")
        app.press("ctrl+s")
        self.wait_for_bytes(path, "<?x?><a>\n  uno ñandú\n</a>\n".encode())

    def test_middle_click_pastes_what_was_selected(self):
        path = self.folder / "ratón.xml"
        path.write_text("<a/>\n", encoding="utf-8")
        app = self.start(path)
        text = wait_until(lambda: app.find(role="text", starts="Texto"), "text")
        app.press("ctrl+Home", "shift+End")
        box = accessibility().Text.get_character_extents(text, 0, accessibility().CoordType.SCREEN)
        app.click(box.x + 200, box.y + box.height // 2, button=2)
        app.press("ctrl+s")
        self.wait_for_bytes(path, b"<a/><a/>\n")

    def test_drags_text_to_another_place(self):
        path = self.folder / "arrastre.xml"
        path.write_text("<a>uno dos</a>\n", encoding="utf-8")
        app = self.start(path)
        text = wait_until(lambda: app.find(role="text", starts="Texto"), "text")
        api = accessibility()
        app.press("ctrl+Home", *["Right"] * 3, *["shift+Right"] * 4)
        wait_until(lambda: api.Text.get_n_selections(text) == 1, "selection")
        start = api.Text.get_character_extents(text, 4, api.CoordType.SCREEN)
        end = api.Text.get_character_extents(text, 10, api.CoordType.SCREEN)
        app.drag((start.x + 1, start.y + start.height // 2), (end.x + 1, end.y + end.height // 2))
        wait_until(lambda: api.Text.get_text(text, 0, 14) == "<a>dosuno </a>", "moved text")
        app.press("ctrl+z")
        wait_until(lambda: api.Text.get_text(text, 0, 14) == "<a>uno dos</a>", "text as before")

    def test_undo_leads_back_to_the_saved_bytes(self):
        path = self.sample("manual.xml")
        before = path.read_bytes()
        app = self.start(path)
        app.press("ctrl+a")
        app.type("<a/>")
        wait_until(lambda: app.title().startswith("manual.xml*"), "mark of an edited document")
        app.press("ctrl+s")
        self.wait_for_bytes(path, b"<a/>")
        wait_until(lambda: not app.find(role="table cell", starts="manual"), "outline of the new text")

        def undone():
            app.press("ctrl+z")
            return app.find(role="table cell", starts="manual")

        wait_until(undone, "outline of the old text")
        app.press("ctrl+s")
        self.wait_for_bytes(path, before)

    def test_undo_clears_the_mark(self):
        path = self.sample("biblioteca.xml")
        app = self.start(path)
        app.type("abc")
        wait_until(lambda: app.title().startswith("biblioteca.xml*"), "mark of an edited document")
        wait_until(lambda: app.press("ctrl+z") or app.title().startswith("biblioteca.xml "), "title without the mark")

    def test_tells_what_is_wrong(self):
        app = self.start(self.sample("biblioteca.xml"))
        wait_until(lambda: app.find(role="label", starts="Sin errores"), "word that nothing is wrong")
        app.press("ctrl+End")
        app.type("<otra><")
        wait_until(lambda: app.find(role="label", starts="3 errores"), "count of errors")
        self.assertIn("Línea 34: Solo se permite un elemento raíz", app.names("list item"))

    def test_counts_the_problems_of_a_broken_file(self):
        app = self.start(self.sample("inventario-roto.xml"))
        label = wait_until(lambda: app.find(role="label", starts="14 errores"), "count of errors")
        self.assertEqual(label.get_name(), "14 errores")
        self.assertEqual(len(app.names("list item")), 14)

    def test_opens_several_files(self):
        app = self.start(self.sample("biblioteca.xml"), self.sample("faro.svg"))
        titles = wait_until(lambda: len(app.names("frame")) == 2 and sorted(app.names("frame")), "second window")
        self.assertEqual([title.split()[0] for title in titles], ["biblioteca.xml", "faro.svg"])

    def test_asks_before_closing_an_edited_document(self):
        path = self.sample("biblioteca.xml")
        before = path.read_bytes()
        app = self.start(path)
        app.type("x")
        wait_until(lambda: app.title().startswith("biblioteca.xml*"), "mark of an edited document")
        app.press("ctrl+w")
        question = "¿Guardar los cambios en «biblioteca.xml»?"
        wait_until(lambda: app.find(role="label", starts=question), "question")
        app.press("Return")
        self.assertEqual(app.process.wait(timeout=30), 0)
        self.assertEqual(path.read_bytes(), b"x" + before)

    def test_quits_with_the_last_window(self):
        app = self.start(self.sample("biblioteca.xml"))
        app.press("ctrl+w")
        self.assertEqual(app.process.wait(timeout=30), 0)


class Picture(unittest.TestCase):
    def run_program(self, *arguments):
        return subprocess.run([PROGRAM, *map(str, arguments)], capture_output=True, text=True, timeout=60)

    def test_is_taken_of_the_window(self):
        with tempfile.TemporaryDirectory() as folder:
            out = pathlib.Path(folder) / "ventana.png"
            result = self.run_program("--screenshot", out, SAMPLES / "biblioteca.xml")
            self.assertEqual((result.returncode, result.stderr), (0, ""))
            png = out.read_bytes()
            self.assertEqual(png[:8], b"\x89PNG\r\n\x1a\n")
            size = (int.from_bytes(png[16:20], "big"), int.from_bytes(png[20:24], "big"))
            self.assertEqual(size, (1280, 820))
            # An empty window would compress to a few kilobytes.
            self.assertGreater(len(png), 20_000)

    def test_opens_urls_and_writes_a_trace(self):
        with tempfile.TemporaryDirectory() as folder:
            out, trace = pathlib.Path(folder) / "ventana.png", pathlib.Path(folder) / "traza.json"
            result = self.run_program("--screenshot", out, "--trace", trace, (SAMPLES / "manual.xml").as_uri())
            self.assertEqual((result.returncode, result.stderr), (0, ""))
            self.assertTrue(out.exists())
            names = [event["name"] for event in json.loads(trace.read_text())["traceEvents"]]
            self.assertEqual(names, ["Decode", "Parse"])

    def test_speaks_spanish(self):
        result = self.run_program("--help")
        self.assertEqual(result.returncode, 0)
        self.assertTrue(result.stdout.startswith("Uso: "), result.stdout)

    def test_fails_without_the_file(self):
        with tempfile.TemporaryDirectory() as folder:
            out = pathlib.Path(folder) / "ventana.png"
            result = self.run_program("--screenshot", out, pathlib.Path(folder) / "no-hay.xml")
            self.assertNotEqual(result.returncode, 0)
            self.assertIn("no-hay.xml", result.stderr)
            self.assertFalse(out.exists())


if __name__ == "__main__":
    PROGRAM = sys.argv.pop(1)
    desktop = Desktop()
    try:
        result = unittest.main(exit=False, verbosity=2).result
    finally:
        desktop.close()
    sys.exit(not result.wasSuccessful())
