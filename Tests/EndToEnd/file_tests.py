"""Opens and saves files in the built program: the file dialogs, and everything about encodings.

Usage: file_tests.py PROGRAM [TEST…]
"""

from desktop import accessibility, wait_until
from document_test import DocumentTest, run

DECLARATION = '<?xml version="1.0" encoding="ISO-8859-1"?>\n'


class Files(DocumentTest):
    def start_blank(self):
        app = self.start()
        app.press("ctrl+1")
        app.click_on(app.wait_for(role="push button", name="Empezar en blanco"))
        app.wait_for(role="text", name="Texto", state="focused")
        return app

    def insert(self, app, units, at=0):
        """Puts text in, as a paste would: nothing is completed."""
        text = app.wait_for(role="text", name="Texto")
        accessibility().EditableText.insert_text(text, at, units, len(units))

    def press_button(self, app, name):
        app.click_on(app.wait_for(role="push button", name=name))

    def choose_command(self, app, letter, dialog):
        """Opens the menu of files, and a dialog from it."""
        app.press("alt+a")
        wait_until(lambda: len(app.windows()) > 1 or app.find(role="menu item"), "menu of files")
        app.press(letter)
        wait_until(lambda: dialog in app.windows(), f"dialog {dialog}")

    def choose_encoding(self, app, name):
        app.click_on(app.wait_for(role="table cell", name=name))
        app.wait_for(role="table cell", name=name, state="selected")

    # The file dialogs

    def test_the_dialog_speaks_spanish_lists_all_xml_and_shows_whole_names(self):
        name = "un-esquema-con-un-nombre-bastante-largo-para-que-quepa-entero.xsd"
        self.document(b"<a/>", name)
        self.document(b"no", "notas.txt")
        app = self.start_with_text(self.document(b"<a/>"))
        app.press("ctrl+o")
        wait_until(lambda: "Abrir" in app.windows(), "dialog")
        for label in ("Buscar en:", "Nombre del archivo:", "Tipo de archivo:"):
            app.wait_for(role="label", name=label)
        cell = app.wait_for(role="table cell", name=name)
        self.assertIsNone(app.find(role="table cell", name="notas.txt"))
        self.assertIsNotNone(app.find(role="table cell", name="documento.xml"))
        api = accessibility()
        box = api.Component.get_extents(cell, api.CoordType.SCREEN)
        self.assertGreater(box.width, 6 * len(name))
        words = " ".join(app.names("push button") + app.names("label") + app.names("column header")).split()
        for english in ("Look", "File", "Open", "Cancel", "Back", "Forward", "Directory", "Size", "Date"):
            self.assertNotIn(english, words)

    def test_a_name_without_an_extension_gets_one(self):
        app = self.start_blank()
        app.type("<a/>")
        app.press("ctrl+s")
        wait_until(lambda: "Guardar como" in app.windows(), "dialog")
        app.wait_for(role="text", state="focused")
        app.press("ctrl+a")
        app.type(str(self.folder / "carta"))
        app.answer("Guardar como", "Return")
        self.wait_for_bytes(self.folder / "carta.xml", b"<a/>")
        wait_until(lambda: app.title().startswith("carta.xml "), "title of the file")

    def test_an_untitled_document_that_is_empty_again_is_not_asked_about(self):
        app = self.start_blank()
        app.type("abc")
        self.wait_for_text(app, "abc")
        app.press("BackSpace", "BackSpace", "BackSpace")
        self.wait_for_text(app, "")
        app.press("ctrl+q")
        self.assertEqual(app.process.wait(timeout=30), 0)

    # Encodings

    def test_asks_which_holds_where_declaration_and_file_would_differ(self):
        path = self.document("<a>cañón</a>\n".encode())
        app = self.start_with_text(path)
        self.insert(app, DECLARATION)
        wait_until(lambda: app.title().startswith("documento.xml*"), "mark of an edited document")
        app.press("ctrl+s")
        self.press_button(app, "Declarar UTF-8")
        expected = DECLARATION.replace("ISO-8859-1", "UTF-8") + "<a>cañón</a>\n"
        self.wait_for_bytes(path, expected.encode())
        self.wait_for_text(app, expected)

    def test_saves_in_the_declared_encoding(self):
        path = self.document("<a>cañón</a>\n".encode())
        app = self.start_with_text(path)
        self.insert(app, DECLARATION)
        wait_until(lambda: app.title().startswith("documento.xml*"), "mark of an edited document")
        app.press("ctrl+s")
        self.press_button(app, "Guardar en ISO-8859-1")
        self.wait_for_bytes(path, (DECLARATION + "<a>cañón</a>\n").encode("latin-1"))
        app.wait_for(role="label", starts="Occidental (ISO Latin 1)")

    def test_reads_a_file_in_another_encoding(self):
        path = self.document("<a>cañón €</a>\n".encode("cp1252"))
        app = self.start_with_text(path)
        app.wait_for(starts="“documento.xml” no declara su codificación y no es UTF-8.")
        self.choose_command(app, "b", "Volver a abrir con la codificación")
        self.choose_encoding(app, "Occidental (Windows Latin 1)")
        preview = app.wait_for(role="text", name="Así se lee")
        api = accessibility()
        wait_until(lambda: "cañón €" in api.Text.get_text(preview, 0, -1), "preview")
        self.press_button(app, "Volver a abrir")
        self.wait_for_text(app, "<a>cañón €</a>\n")
        app.wait_for(role="label", name="Occidental (Windows Latin 1)")
        wait_until(lambda: app.title().startswith("documento.xml "), "title without the mark")
        self.assertEqual(path.read_bytes(), "<a>cañón €</a>\n".encode("cp1252"))

    def test_keeps_its_warning_when_reading_again_is_cancelled(self):
        app = self.start_with_text(self.document("<a>cañón</a>\n".encode("latin-1")))
        warning = "“documento.xml” no declara su codificación y no es UTF-8."
        app.wait_for(starts=warning)
        places = []
        for _ in range(6):
            before = wait_until(app.focus_place, "focus")
            app.press("F6")
            places.append(wait_until(lambda: app.focus_place() != before and app.focus_place(), "focus elsewhere"))
        self.assertIn(("push button", "Volver a abrir con la codificación…"), places)
        self.press_button(app, "Volver a abrir con la codificación…")
        app.answer("Volver a abrir con la codificación", "Escape")
        app.wait_for(starts=warning)
        self.press_button(app, "Volver a abrir con la codificación…")
        wait_until(lambda: "Volver a abrir con la codificación" in app.windows(), "dialog")
        self.press_button(app, "Volver a abrir")
        wait_until(lambda: app.find(role="push button", name="Volver a abrir con la codificación…") is None, "bar gone")

    def test_saves_in_another_encoding(self):
        path = self.document("<a>cañón</a>\n".encode())
        app = self.start_with_text(path)
        self.choose_command(app, "l", "Guardar con la codificación")
        self.choose_encoding(app, "Occidental (ISO Latin 1)")
        app.wait_for(role="label", starts="Se añadirá una declaración XML")
        self.press_button(app, "Guardar")
        self.wait_for_bytes(path, (DECLARATION + "<a>cañón</a>\n").encode("latin-1"))
        app.wait_for(role="label", name="Occidental (ISO Latin 1)")

    def test_saving_in_utf_8_is_one_button_away_after_an_unencodable_character(self):
        path = self.document((DECLARATION + "<a>cañón</a>\n").encode("latin-1"))
        app = self.start_with_text(path)
        self.insert(app, "<!--€-->", len(DECLARATION + "<a>cañón</a>\n"))
        wait_until(lambda: app.title().startswith("documento.xml*"), "mark of an edited document")
        app.press("ctrl+s")
        self.press_button(app, "Guardar en UTF-8")
        expected = DECLARATION.replace("ISO-8859-1", "UTF-8") + "<a>cañón</a>\n<!--€-->"
        self.wait_for_bytes(path, expected.encode())

    def test_tells_of_an_unknown_encoding(self):
        app = self.start_with_text(self.document(b'<?xml version="1.0" encoding="foo-1"?><a/>'))
        app.wait_for(starts="“documento.xml” declara la codificación “foo-1”, que no se conoce.")
        self.press_button(app, "Entendido")
        wait_until(lambda: app.find(role="push button", name="Entendido") is None, "bar gone")


if __name__ == "__main__":
    run()
