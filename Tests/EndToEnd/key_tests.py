"""Works the built program by keys, mouse and its accessibility tree: shortcuts, the clipboard of nodes, prompts,
and what everything says it is.

Usage: key_tests.py PROGRAM [TEST…]
"""

import subprocess

from desktop import accessibility, wait_until
from document_test import DocumentTest, run, text_of


def selection_of(text):
    selected = accessibility().Text.get_selection(text, 0)
    return selected.start_offset, selected.end_offset


class Keys(DocumentTest):
    def start_on(self, text):
        """The program with a document of that text."""
        self.path = self.document(text)
        return self.start(self.path)

    def start_in_tree(self, text):
        self.path = self.document(text)
        return self.start_with_tree(self.path)

    def start_in_text(self, text):
        self.path = self.document(text)
        app = self.start_with_text(self.path)
        return app, app.wait_for(role="text", name="Texto")

    def choose(self, app, name):
        app.click_on(app.wait_for(role="table cell", name=name))
        app.wait_for(role="tree", state="focused")
        app.wait_for(role="push button", name=name)

    def save(self, app, expected):
        app.press("ctrl+s")
        wait_until(lambda: self.path.read_bytes() == expected.encode(), f"file {expected!r}")

    # Shortcuts

    def test_goes_around_the_panes(self):
        app = self.start_in_tree("<a><b/></a>\n")
        self.choose(app, "a")
        app.press("ctrl+3")
        app.wait_for(role="text", name="Texto")
        places = []
        for key in ["F6"] * 5 + ["shift+F6"]:
            before = wait_until(app.focus_place, "focus")
            app.press(key)
            places.append(wait_until(lambda: app.focus_place() != before and app.focus_place(), "focus elsewhere"))
        # What has the focus in the text has no name of its own.
        self.assertEqual([name for _, name in places], ["Nombre", "Documento", "Dividido", "", "a", ""])
        app.wait_for(role="text", name="Texto", state="focused")

    def test_leads_to_problems(self):
        app, text = self.start_in_text("<a>\n&\n&\n</a>\n")
        app.wait_for(role="push button", starts="2 errores")
        app.press("ctrl+Home", "F8")
        wait_until(lambda: selection_of(text) == (4, 5), "first problem")
        app.press("F8")
        wait_until(lambda: selection_of(text) == (6, 7), "second problem")
        app.press("shift+F8")
        wait_until(lambda: selection_of(text) == (4, 5), "first problem again")

    def test_redoes_with_the_key_of_other_desktops_too(self):
        app, text = self.start_in_text("<a/>\n")
        app.press("ctrl+Home")
        app.type("x")
        wait_until(lambda: text_of(text) == "x<a/>\n", "typed text")
        app.press("ctrl+z")
        wait_until(lambda: text_of(text) == "<a/>\n", "undone text")
        app.press("ctrl+y")
        wait_until(lambda: text_of(text) == "x<a/>\n", "redone text")

    def test_moves_nodes_by_the_other_keys(self):
        app = self.start_in_tree("<a>\n  <b/>\n  <c/>\n</a>\n")
        self.choose(app, "b")
        app.press("alt+shift+Down")
        wait_until(lambda: app.rows() == ["a", "c", "b"], "moved row")
        app.press("alt+shift+Up")
        wait_until(lambda: app.rows() == ["a", "b", "c"], "row moved back")

    def test_presses_buttons_by_return(self):
        app = self.start()
        app.wait_for(role="push button", name="Básico")
        app.press("Tab")
        app.wait_for(role="push button", name="Básico", state="focused")
        app.press("Return")
        wait_until(lambda: app.title().startswith("Sin título*"), "text of the template")

    def test_selects_lines_in_the_ruler(self):
        app, text = self.start_in_text("uno\ndos\ntres\ncuatro\n")
        api = accessibility()

        def beside(offset):
            box = api.Text.get_character_extents(text, offset, api.CoordType.SCREEN)
            return box.x - 20, box.y + box.height // 2

        app.click(*beside(4))
        wait_until(lambda: selection_of(text) == (4, 8), "second line")
        app.drag(beside(0), beside(8))
        wait_until(lambda: selection_of(text) == (0, 13), "three lines")

    def test_has_a_page_of_shortcuts(self):
        app = self.start_in_tree("<a/>\n")
        app.press("F1")
        wait_until(lambda: "Atajos de teclado" in app.windows(), "page of shortcuts")
        wait_until(lambda: {"Archivo", "Guardar como…"} < set(app.names("table cell")), "start of the page")
        page = app.windows()["Atajos de teclado"]
        app._focus(page)
        app.press("End")
        wait_until(lambda: {"Al buscar", "Cerrar la barra"} < set(app.names("table cell")), "end of the page")
        app.answer("Atajos de teclado", "Escape")

    def test_says_what_program_it_is(self):
        app = self.start_in_tree("<a/>\n")
        version = subprocess.run([self.program, "--version"], capture_output=True, text=True, timeout=60).stdout.strip()
        app.press("alt+y")
        wait_until(lambda: len(app.windows()) > 1, "menu")
        app.press("c")
        wait_until(lambda: "Acerca de Tamo" in app.windows(), "box")
        app.wait_for(role="label", name=version)
        app.wait_for(role="label", starts="Editor de XML para el escritorio.")
        app.answer("Acerca de Tamo", "Return")

    # The clipboard

    def test_cuts_copies_and_pastes_nodes(self):
        app = self.start_in_tree("<a>\n  <b>x &amp; y</b>\n  <c/>\n</a>\n")
        self.choose(app, "b")
        app.press("ctrl+x")
        wait_until(lambda: app.rows() == ["a", "c"], "row gone")
        app.press("ctrl+v")
        wait_until(lambda: app.rows()[:3] == ["a", "c", "b"], "row inside the empty element")
        app.press("ctrl+v")
        wait_until(lambda: app.rows().count("b") == 2, "row behind")
        self.save(app, "<a>\n  <c>\n    <b>x &amp; y</b>\n    <b>x &amp; y</b>\n  </c>\n</a>\n")
        app.press("ctrl+z", "ctrl+z", "ctrl+z")
        self.save(app, "<a>\n  <b>x &amp; y</b>\n  <c/>\n</a>\n")

    def test_pastes_into_the_gallery(self):
        app = self.start_in_text("<a>\n  <b/>\n</a>\n")[0]
        app.press("ctrl+a", "ctrl+c", "ctrl+n")
        app.focus("Sin título")
        app.wait_for(role="label", name="Nuevo documento XML")
        app.press("ctrl+v")
        wait_until(lambda: app.rows() and app.rows()[0] == "a", "rows of what was pasted")

    # New nodes

    def test_creates_a_root(self):
        app = self.start_on('<?xml version="1.0"?>\n')
        app.click_on(app.wait_for(role="push button", name="Crear elemento raíz…"))
        app.wait_for(role="label", name="Elemento raíz")
        app.type("raiz")
        app.answer("Nombre de la etiqueta", "Return")
        wait_until(lambda: "raiz" in app.rows(), "row of the root")
        app.wait_for(role="tree", state="focused")
        self.save(app, '<?xml version="1.0"?>\n<raiz></raiz>\n')

    def test_inserts_texts_and_comments(self):
        app = self.start_in_tree("<a>\n  <b/>\n</a>\n")
        self.choose(app, "b")
        app.press("alt+n")
        wait_until(lambda: len(app.windows()) > 1, "menu")
        app.press("Up", "Up", "Return")
        wait_until(lambda: "Insertar texto" in app.windows(), "prompt")
        app.wait_for(role="text", name="Texto", state="focused")
        app.type("1 < 2")
        app.press("shift+Return")
        app.type("y")
        app.answer("Insertar texto", "Return")
        self.save(app, "<a>\n  <b>1 &lt; 2\ny</b>\n</a>\n")
        self.choose(app, "b")
        app.press("alt+n")
        wait_until(lambda: len(app.windows()) > 1, "menu")
        app.press("Up", "Return")
        wait_until(lambda: "Insertar comentario" in app.windows(), "prompt")
        app.wait_for(role="text", name="Texto", state="focused")
        app.type("n -- m")
        app.press("Return")
        app.wait_for(role="label", starts="Un comentario no puede contener")
        app.press("BackSpace", "BackSpace", "BackSpace", "BackSpace")
        app.answer("Insertar comentario", "Return")
        self.save(app, "<a>\n  <b>1 &lt; 2\ny<!-- n  --></b>\n</a>\n")

    # Fields

    def test_commits_the_content_with_return(self):
        app = self.start_in_tree("<a>uno</a>\n")
        self.choose(app, "a")
        field = app.wait_for(role="text", name="Texto")
        app.click_on(field)
        app.press("ctrl+End", "shift+Return")
        app.type("dos")
        app.press("Return")
        self.save(app, "<a>uno\ndos</a>\n")
        height = accessibility().Component.get_extents(field, accessibility().CoordType.SCREEN).height
        app.press("ctrl+End", *["shift+Return"] * 6)
        app.type("tres")
        wait_until(
            lambda: accessibility().Component.get_extents(field, accessibility().CoordType.SCREEN).height > height,
            "taller field",
        )
        app.press("Return")
        self.save(app, "<a>uno\ndos" + "\n" * 6 + "tres</a>\n")

    # What everything is

    def test_announces_what_does_nothing_as_no_button(self):
        app = self.start_in_tree("<a><b/></a>\n")
        self.choose(app, "b")
        app.wait_for(role="label", name="El documento está bien formado")
        buttons = set(app.names("push button"))
        self.assertEqual(
            buttons,
            {"Formatear", "Documento", "a", "b", "Contraer", "Añadir atributo", "Hijo", "Hermano"}
            | {"Duplicar", "Envolver", "Eliminar"},
        )
        self.assertEqual(app.names("radio button"), ["Texto", "Visual", "Dividido"])

    def test_brings_the_selected_node_into_view_by_its_crumb(self):
        app, text = self.start_in_text("<a>\n" + "<!---->\n" * 200 + "<b/>\n</a>\n")
        app.press("ctrl+End", "Up", "Up", "Home")
        app.wait_for(role="push button", name="b")
        # Scrolled away by the wheel, the caret stays.
        box = accessibility().Component.get_extents(text, accessibility().CoordType.SCREEN)
        for _ in range(40):
            app.click(box.x + box.width // 2, box.y + box.height // 2, button=4)
        api = accessibility()
        at = 4 + 200 * 8

        def is_in_view():
            place = api.Text.get_character_extents(text, at, api.CoordType.SCREEN)
            return box.y <= place.y < box.y + box.height

        wait_until(lambda: not is_in_view(), "text scrolled away")
        app.click_on(app.wait_for(role="push button", name="b"))
        wait_until(is_in_view, "node in view")

    def test_describes_rows_and_their_fields(self):
        app = self.start_in_tree("<a><!-- c --></a>\n")
        self.choose(app, "a")
        rows = {row.get_name(): row.get_description() for row in app.accessibles() if row.get_role_name() == "table cell"}
        self.assertEqual(rows["a"], "Elemento, nivel 1")
        self.assertEqual(rows["c"], "Comentario, nivel 2")
        app.press("Return")
        app.wait_for(role="text", name="Nombre del elemento", state="focused")
        app.press("Escape")
        app.wait_for(role="tree", state="focused")


if __name__ == "__main__":
    run()
