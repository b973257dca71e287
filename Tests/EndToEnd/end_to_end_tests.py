"""Works the built program through keys and its accessibility tree, as a person would.

Usage: end_to_end_tests.py PROGRAM [TEST…]
"""

import json
import pathlib
import shutil
import subprocess
import tempfile

from desktop import accessibility, wait_until
from document_test import DocumentTest, run, text_of

SAMPLES = pathlib.Path(__file__).resolve().parents[2] / "samples"


class EndToEnd(DocumentTest):
    def sample(self, name):
        """A copy of a sample to work on."""
        return pathlib.Path(shutil.copy(SAMPLES / name, self.folder))

    def source_of(self, app):
        return app.wait_for(role="text", name="Texto", state="focused")

    def choose(self, app, name):
        """Selects the row of that name with the mouse, and gives the tree the focus."""
        app.click_on(app.wait_for(role="table cell", name=name))
        app.wait_for(role="tree", state="focused")
        # Its place is shown above.
        app.wait_for(role="push button", name=name)

    def save(self, app, path, expected):
        app.press("ctrl+s")
        self.wait_for_bytes(path, expected.encode() if isinstance(expected, str) else expected)

    def check_edit(self, name, typed, expected):
        """Types at the start of a sample, saves, and compares every byte."""
        path = self.sample(name)
        before = path.read_bytes()
        app = self.start_with_text(path)
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
        app = self.start_with_text(path)
        app.wait_for(role="label", starts="Occidental (ISO Latin 1)")
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
        app = self.start_with_text(path)
        app.wait_for(role="label", name="CRLF")
        app.press("ctrl+End", "Return")
        app.type("<!-- x -->")
        app.press("ctrl+s")
        self.wait_for_bytes(path, before + b"\r\n<!-- x -->")

    def test_a_screen_reader_reads_and_edits_the_text(self):
        api = accessibility()
        path = self.folder / "lectura.xml"
        path.write_text("<a>\n  uno ñandú\n</a>\n", encoding="utf-8")
        app = self.start_with_text(path)
        text = self.source_of(app)
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
        app = self.start_with_text(path)
        text = self.source_of(app)
        app.press("ctrl+Home", "shift+End")
        box = accessibility().Text.get_character_extents(text, 0, accessibility().CoordType.SCREEN)
        app.click(box.x + 200, box.y + box.height // 2, button=2)
        app.press("ctrl+s")
        self.wait_for_bytes(path, b"<a/><a/>\n")

    def test_drags_text_to_another_place(self):
        path = self.folder / "arrastre.xml"
        path.write_text("<a>uno dos</a>\n", encoding="utf-8")
        app = self.start_with_text(path)
        text = self.source_of(app)
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
        app = self.start_with_text(path)
        app.press("ctrl+a")
        app.type("<a/>")
        wait_until(lambda: app.title().startswith("manual.xml*"), "mark of an edited document")
        app.press("ctrl+s")
        self.wait_for_bytes(path, b"<a/>")

        def undone():
            app.press("ctrl+z")
            return not app.find(role="text", name="Texto") or app.title().startswith("manual.xml*")

        wait_until(undone, "mark of an edited document")
        api = accessibility()
        text = self.source_of(app)
        wait_until(lambda: app.press("ctrl+z") or api.Text.get_character_count(text) > 10, "text as before")
        app.press("ctrl+s")
        self.wait_for_bytes(path, before)

    def test_undo_clears_the_mark(self):
        app = self.start_with_text(self.sample("biblioteca.xml"))
        app.type("abc")
        wait_until(lambda: app.title().startswith("biblioteca.xml*"), "mark of an edited document")
        wait_until(lambda: app.press("ctrl+z") or app.title().startswith("biblioteca.xml "), "title without the mark")

    def test_tells_what_is_wrong(self):
        app = self.start_with_text(self.sample("biblioteca.xml"))
        app.wait_for(role="label", name="Sin errores")
        app.wait_for(role="label", name="El documento está bien formado")
        app.press("ctrl+End")
        app.type("<otra/>")
        app.wait_for(role="push button", name="1 error, 0 advertencias")
        app.wait_for(role="label", name="El documento tiene errores")
        self.assertIsNone(app.find(role="label", name="Sin errores"))

    def test_reads_past_an_apostrophe_in_a_comment_of_the_internal_subset(self):
        path = self.document("<!DOCTYPE r [<!-- don't --><!ELEMENT r ANY>]>\n<r><b>it's</b></r>\n")
        app = self.start_with_tree(path)
        self.assertEqual(app.rows()[-3:], ["r", "b", "it's"])
        app.wait_for(role="label", name="Sin errores")
        self.choose(app, "b")
        app.press("Return")
        app.type("c")
        app.press("Return")
        self.save(app, path, "<!DOCTYPE r [<!-- don't --><!ELEMENT r ANY>]>\n<r><c>it's</c></r>\n")
        wait_until(lambda: app.rows()[-3:] == ["r", "c", "it's"], "rows with the new name")

    def test_counts_the_problems_of_a_broken_file_and_leads_to_them(self):
        app = self.start_with_text(self.sample("inventario-roto.xml"))
        app.wait_for(role="push button", name="14 errores, 0 advertencias")
        text, api = self.source_of(app), accessibility()
        app.press("ctrl+Home")
        app.click_on(app.wait_for(role="push button", name="Ir al problema"))
        first = wait_until(lambda: api.Text.get_caret_offset(text), "caret at the first problem")
        app.click_on(app.wait_for(role="push button", name="Ir al problema"))
        wait_until(lambda: api.Text.get_caret_offset(text) > first, "caret at the second problem")

    def test_mends_a_problem_from_the_menu(self):
        path = self.document("<a><b></a>\n")
        app = self.start_with_tree(path)
        counts = wait_until(lambda: app.find(role="push button", starts="1 error,"), "count of errors")
        app.click_on(counts)
        wait_until(lambda: "Tamo" in app.windows(), "menu of the problems")
        # The problem stands first, what mends it below.
        app.press("Down", "Down", "Return")
        app.wait_for(role="label", name="Sin errores")
        self.save(app, path, "<a><b></b></a>\n")
        app.press("ctrl+z")
        app.wait_for(role="push button", name="1 error, 0 advertencias")

    def test_asks_before_closing_an_edited_document(self):
        path = self.sample("biblioteca.xml")
        before = path.read_bytes()
        app = self.start_with_text(path)
        app.type("x")
        wait_until(lambda: app.title().startswith("biblioteca.xml*"), "mark of an edited document")
        app.press("ctrl+w")
        app.wait_for(role="label", starts="¿Guardar los cambios en “biblioteca.xml”?")
        app.press("Return")
        self.assertEqual(app.process.wait(timeout=30), 0)
        self.assertEqual(path.read_bytes(), b"x" + before)

    def test_quits_with_the_last_window(self):
        app = self.start(self.sample("biblioteca.xml"))
        app.press("ctrl+w")
        self.assertEqual(app.process.wait(timeout=30), 0)

    # The tree and what belongs to it

    def test_renames_a_tag_in_the_tree(self):
        path = self.sample("biblioteca.xml")
        before = path.read_bytes()
        app = self.start_with_tree(path)
        self.choose(app, "titulo")
        app.press("Return")
        app.type("rotulo")
        app.press("Return")
        app.wait_for(role="table cell", name="rotulo")
        app.press("ctrl+3")
        renamed = before.decode().replace("titulo>", "rotulo>", 2)
        self.wait_for_text(app, renamed)
        app.press("ctrl+z")
        self.wait_for_text(app, before.decode())
        app.press("ctrl+shift+z")
        self.wait_for_text(app, renamed)
        self.save(app, path, renamed)

    def test_adds_and_removes_an_attribute_in_the_inspector(self):
        path = self.document("<a>\n    <b/>\n</a>\n")
        app = self.start_with_tree(path)
        self.choose(app, "b")
        app.click_on(app.wait_for(role="push button", name="Añadir atributo"))
        wait_until(lambda: "atributo" in app.names("table cell"), "row of the attribute")
        app.type("lengua")
        app.press("Tab")
        app.type("es & en")
        app.press("Return")
        self.save(app, path, '<a>\n    <b lengua="es &amp; en"/>\n</a>\n')
        # Its last column takes it away.
        app.press("Right", "space")
        self.save(app, path, "<a>\n    <b/>\n</a>\n")

    def test_keeps_working_on_nodes_beside_the_text(self):
        path = self.document("<a>\n    <b/>\n    <c/>\n</a>\n")
        app = self.start_with_tree(path)
        app.press("ctrl+3")
        self.choose(app, "b")
        text, api = app.wait_for(role="text", name="Texto"), accessibility()
        wait_until(lambda: api.Text.get_selection(text, 0).start_offset == 8, "text of the node selected")
        app.press("Down")
        wait_until(lambda: api.Text.get_selection(text, 0).start_offset == 17, "text of the next node selected")
        app.press("Return")
        app.type("d")
        app.press("Return")
        self.wait_for_text(app, "<a>\n    <b/>\n    <d/>\n</a>\n")
        app.click_on(app.wait_for(role="push button", name="Añadir atributo"))
        wait_until(lambda: "atributo" in app.names("table cell"), "row of the attribute")
        app.type("x")
        app.press("Tab")
        app.type("1")
        app.press("Return")
        self.save(app, path, '<a>\n    <b/>\n    <d x="1"/>\n</a>\n')

    def test_refuses_an_attribute_that_is_there(self):
        path = self.document('<a uno="1" dos="2"/>\n')
        app = self.start_with_tree(path)
        self.choose(app, "a")
        app.click_on(app.wait_for(role="push button", name="Añadir atributo"))
        wait_until(lambda: "atributo" in app.names("table cell"), "row of the attribute")
        app.type("uno")
        app.press("Return")
        app.wait_for(role="label", name="No se pudo editar")
        app.wait_for(role="label", name="Ya existe un atributo “uno”.")
        app.answer("No se pudo editar", "Return")
        self.save(app, path, '<a uno="1" dos="2" atributo=""/>\n')

    def test_filters(self):
        app = self.start_with_tree(self.document("<a><b>uno</b><c><d>dos</d></c></a>"))
        self.assertEqual(app.rows(), ["a", "b", "uno", "c", "d", "dos"])
        app.press("shift+Tab")
        app.wait_for(role="text", name="Filtrar nodos", state="focused")
        app.type("dos")
        wait_until(lambda: app.rows() == ["a", "c", "d", "dos"], "rows of what was looked for")
        app.type("x")
        app.wait_for(starts="Sin resultados para “dosx”")
        app.press("Escape")
        wait_until(lambda: len(app.rows()) == 6, "all rows")
        app.press("Down")
        app.wait_for(role="tree", state="focused")

    def test_wraps_through_the_prompt(self):
        path = self.document("<a>\n    <b>uno</b>\n</a>\n")
        app = self.start_with_tree(path)
        self.choose(app, "b")
        app.press("ctrl+alt+w")
        app.wait_for(role="label", name="Envolver en")
        app.type("no vale")
        app.press("Return")
        app.wait_for(role="label", name="“no vale” no es un nombre XML válido.")
        self.assertEqual(text_of(app.wait_for(role="text", name="Nombre de la etiqueta")), "no vale")
        app.press("ctrl+a")
        app.type("caja")
        app.answer("Nombre de la etiqueta", "Return")
        app.wait_for(role="table cell", name="caja")
        self.save(app, path, "<a>\n    <caja>\n        <b>uno</b>\n    </caja>\n</a>\n")

    def test_moves_duplicates_and_deletes_by_keys(self):
        path = self.document("<a>\n    <b/>\n    <c/>\n</a>\n")
        app = self.start_with_tree(path)
        self.choose(app, "b")
        app.press("ctrl+alt+Down")
        wait_until(lambda: app.rows() == ["a", "c", "b"], "moved row")
        self.save(app, path, "<a>\n    <c/>\n    <b/>\n</a>\n")
        app.press("ctrl+alt+Up")
        wait_until(lambda: app.rows() == ["a", "b", "c"], "row moved back")
        app.press("ctrl+d")
        wait_until(lambda: app.rows() == ["a", "b", "b", "c"], "second row")
        self.save(app, path, "<a>\n    <b/>\n    <b/>\n    <c/>\n</a>\n")
        self.choose(app, "c")
        app.press("Delete")
        wait_until(lambda: app.rows() == ["a", "b", "b"], "row gone")
        self.save(app, path, "<a>\n    <b/>\n    <b/>\n</a>\n")

    def test_walks_through_the_window_with_tab(self):
        app = self.start_with_tree(self.document('<a uno="1"><b/></a>\n'))
        self.choose(app, "a")
        places = []
        while (place := wait_until(app.focus_place, "focus")) not in places:
            places.append(place)
            app.press("Tab")
            wait_until(lambda: app.focus_place() != place, f"focus elsewhere than in {place}")
        names = [name for _, name in places]
        first = names.index("Visual")
        self.assertEqual(
            names[first:] + names[:first],
            ["Visual", "Formatear", "Inspector", "Documento", "a", "Filtrar nodos", "a", "Nombre", "uno"]
            + ["Añadir atributo", "Hijo", "Hermano", "Duplicar", "Envolver", "Eliminar"],
        )

    # The window

    def test_switches_modes(self):
        app = self.start_with_tree(self.sample("manual.xml"))

        def shown():
            found = (app.find(role="text", name="Texto", state="editable"), app.find(role="tree"))
            return [pane is not None for pane in found]

        self.assertEqual(shown(), [False, True])
        app.press("ctrl+1")
        wait_until(lambda: shown() == [True, False], "source alone")
        app.press("ctrl+3")
        wait_until(lambda: shown() == [True, True], "both panes")
        app.click_on(app.wait_for(name="Visual"))
        wait_until(lambda: shown() == [False, True], "tree alone")
        wait_until(lambda: app.find(name="Visual", state="checked"), "segment of the mode")

    def test_starts_from_a_template(self):
        app = self.start()
        app.wait_for(role="label", name="Nuevo documento XML")
        app.click_on(app.wait_for(role="push button", name="Básico"))
        app.wait_for(role="table cell", name="elemento")
        self.assertIsNone(app.find(role="push button", name="Básico"))
        app.press("ctrl+z")
        app.wait_for(role="push button", name="Básico")
        app.type("<x")
        self.wait_for_text(app, "<x")

    def test_starts_in_blank(self):
        app = self.start()
        app.click_on(app.wait_for(role="push button", name="Empezar en blanco"))
        self.source_of(app)
        app.type("<a>")
        self.wait_for_text(app, "<a></a>")

    def test_keeps_two_windows_apart(self):
        first, second = self.sample("biblioteca.xml"), self.sample("faro.svg")
        before = second.read_bytes()
        app = self.start(first, second)
        wait_until(lambda: len(app.windows()) == 2, "second window")
        app.focus("faro.svg")
        app.press("ctrl+1")
        self.source_of(app)
        app.press("ctrl+Home")
        app.type("<!-- x -->")
        wait_until(lambda: app.title().startswith("faro.svg*"), "mark of an edited document")
        app.focus("biblioteca.xml")
        self.assertTrue(app.title().startswith("biblioteca.xml "))
        app.press("ctrl+z", "ctrl+s")
        app.focus("faro.svg")
        self.save(app, second, b"<!-- x -->" + before)
        self.assertEqual(first.read_bytes(), (SAMPLES / "biblioteca.xml").read_bytes())
        app.press("ctrl+w")
        wait_until(lambda: list(app.windows()) == ["biblioteca.xml — Tamo"], "first window alone")
        app.focus("biblioteca.xml")
        app.press("ctrl+w")
        self.assertEqual(app.process.wait(timeout=30), 0)

    # The source

    def test_finds_and_replaces(self):
        path = self.document("<a>\n  <b>uno</b>\n  <b>dos</b>\n</a>\n")
        app = self.start_with_text(path)
        app.press("ctrl+Home", "ctrl+f")
        app.wait_for(role="text", name="Buscar", state="focused")
        app.type("<b>")
        app.wait_for(role="label", name="1 de 2")
        app.press("F3")
        app.wait_for(role="label", name="2 de 2")
        app.press("ctrl+h")
        app.click_on(app.wait_for(role="text", name="Reemplazar por"))
        app.type("<c>")
        app.click_on(app.wait_for(role="push button", name="Reemplazar todo"))
        self.wait_for_text(app, "<a>\n  <c>uno</b>\n  <c>dos</b>\n</a>\n")
        app.press("Escape")
        self.source_of(app)
        app.press("ctrl+z")
        self.wait_for_text(app, "<a>\n  <b>uno</b>\n  <b>dos</b>\n</a>\n")

    def test_goes_to_a_line(self):
        app = self.start_with_text(self.document("<a>\n  <b/>\n  <c/>\n</a>\n"))
        text, api = self.source_of(app), accessibility()
        app.press("ctrl+l")
        app.wait_for(role="text", name="Ir a la línea", state="focused")
        app.type("3:4")
        app.press("Return")
        self.source_of(app)
        wait_until(lambda: api.Text.get_caret_offset(text) == 14, "caret in line 3, column 4")

    def test_completes_names(self):
        app = self.start_with_text(self.document("<raiz>\n  <elemento/>\n</raiz>\n"))
        app.press("ctrl+Home", "End", "Return")
        app.type("<e")
        app.press("ctrl+space")
        wait_until(lambda: len(app.windows()) == 2, "list of names")
        app.press("Return")
        self.wait_for_text(app, "<raiz>\n  <elemento\n  <elemento/>\n</raiz>\n")

    def test_gives_what_was_typed(self):
        typed = "<x href=\"y\" z='w'>hola <b>a</b>, <br/><!-- it's <b> --></x>"
        path = self.document("<a/>\n")
        app = self.start_with_text(path)
        app.press("ctrl+a")
        for piece in (typed[:20], typed[20:35], typed[35:]):
            # Between two pieces there may be a parse.
            app.type(piece)
            app.wait_for(role="text", name="Texto")
        self.wait_for_text(app, typed)
        self.save(app, path, typed)

    def test_completes_an_end_tag_that_is_typed_on(self):
        path = self.document("<a><b>uno")
        app = self.start_with_text(path)
        app.press("ctrl+End")
        app.type("</b></a>")
        self.save(app, path, "<a><b>uno</b></a>")

    def test_duplicates_and_erases_nothing_with_letters(self):
        path = self.document("<a><b/></a>\n")
        app = self.start_with_text(path)
        app.press("ctrl+Home", "Right", "Right", "Right", "Right")
        app.press("ctrl+k", "ctrl+u")
        app.wait_for(role="push button", name="b")
        app.press("ctrl+d")
        self.wait_for_text(app, "<a><b/><b/></a>\n")

    def test_undoes_the_document_from_the_find_field(self):
        path = self.document("<a>uno</a>\n")
        app = self.start_with_text(path)
        app.press("ctrl+Home", "Right", "Right", "Right")
        app.type("dos ")
        self.wait_for_text(app, "<a>dos uno</a>\n")
        app.press("ctrl+f")
        field = app.wait_for(role="text", name="Buscar", state="focused")
        app.type("uno")
        api = accessibility()
        wait_until(lambda: api.Text.get_text(field, 0, -1) == "uno", "pattern")
        app.press("ctrl+z")
        wait_until(lambda: api.Text.get_text(field, 0, -1) == "", "pattern taken back")
        self.wait_for_text(app, "<a>dos uno</a>\n")
        app.press("ctrl+z")
        self.wait_for_text(app, "<a>uno</a>\n")
        app.press("ctrl+shift+z")
        wait_until(lambda: api.Text.get_text(field, 0, -1) == "uno", "pattern again")
        app.press("ctrl+shift+z")
        self.wait_for_text(app, "<a>dos uno</a>\n")

    def test_undoes_the_document_from_the_filter_field(self):
        app = self.start_with_tree(self.document("<a>\n    <b/>\n    <c/>\n</a>\n"))
        self.choose(app, "c")
        app.press("Delete")
        wait_until(lambda: app.rows() == ["a", "b"], "row gone")
        app.press("shift+Tab")
        field = app.wait_for(role="text", name="Filtrar nodos", state="focused")
        app.type("b")
        api = accessibility()
        wait_until(lambda: api.Text.get_text(field, 0, -1) == "b", "filter")
        app.press("ctrl+z")
        wait_until(lambda: api.Text.get_text(field, 0, -1) == "", "filter taken back")
        self.assertEqual(app.rows(), ["a", "b"])
        app.press("ctrl+z")
        wait_until(lambda: app.rows() == ["a", "b", "c"], "row back")

    def test_undoes_a_renaming_in_one_step(self):
        path = self.document("<item>x</item>\n")
        app = self.start_with_text(path)
        app.press("ctrl+Home", *["Right"] * 5)
        app.type("libro")
        self.wait_for_text(app, "<itemlibro>x</itemlibro>\n")
        app.press("ctrl+z")
        self.wait_for_text(app, "<item>x</item>\n")

    def test_closes_tags_and_renames_both_at_once(self):
        path = self.document("")
        path.write_text("\n")
        app = self.start_with_text(path)
        app.press("ctrl+Home")
        app.type("<caja>")
        self.wait_for_text(app, "<caja></caja>\n")
        app.wait_for(role="label", name="Sin errores")
        app.press("ctrl+Home", "Right", "Right", "Right", "Right", "Right")
        app.type("s")
        self.wait_for_text(app, "<cajas></cajas>\n")
        app.press("ctrl+z")
        self.wait_for_text(app, "<caja></caja>\n")
        self.save(app, path, "<caja></caja>\n")


class Picture(DocumentTest):
    def run_program(self, *arguments):
        return subprocess.run([self.program, *map(str, arguments)], capture_output=True, text=True, timeout=60)

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
            self.assertEqual(names[0], "Decode")
            self.assertEqual(names.count("Parse"), 1)

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
    run()
