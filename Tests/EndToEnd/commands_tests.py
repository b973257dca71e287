"""Works the commands over a whole document: formatting, minifying, going back to the file, mending.

Usage: commands_tests.py PROGRAM [TEST…]
"""

from desktop import accessibility, wait_until
from document_test import DocumentTest, run, text_of

CHANGED_SPACE = "Se han cambiado espacios que pueden ser parte del texto."


class Commands(DocumentTest):
    def start_in_text(self, text):
        """The program on a file with that text, the source alone, the caret at its start."""
        app = self.start_with_text(self.document(text))
        app.press("ctrl+Home")
        return app

    def source(self, app):
        return app.wait_for(role="text", name="Texto")

    def text(self, app):
        return text_of(self.source(app))

    def put_caret(self, app, offset):
        accessibility().Text.set_caret_offset(self.source(app), offset)
        self.wait_for_caret(app, offset)

    def wait_for_caret(self, app, offset):
        api = accessibility()
        wait_until(lambda: api.Text.get_caret_offset(self.source(app)) == offset, f"caret at {offset}")

    def caret_box(self, app):
        """Where the character at the caret is on the screen."""
        api, source = accessibility(), self.source(app)
        return api.Text.get_character_extents(source, api.Text.get_caret_offset(source), api.CoordType.SCREEN)

    def is_caret_in_view(self, app):
        api = accessibility()
        view = api.Component.get_extents(self.source(app), api.CoordType.SCREEN)
        box = self.caret_box(app)
        return view.x <= box.x < view.x + view.width and view.y <= box.y < view.y + view.height

    # The place

    def test_formatting_keeps_the_caret_in_its_content_and_in_view(self):
        items = "".join(f"<item><id>{number}</id></item>" for number in range(300))
        app = self.start_in_text(f"<lista>{items}</lista>")
        before = self.text(app)
        caret = before.index(">200<") + 2
        self.put_caret(app, caret)
        app.press("ctrl+alt+f")
        wait_until(lambda: "\n" in self.text(app), "lines")
        formatted = self.text(app).index(">200<") + 2
        self.wait_for_caret(app, formatted)
        wait_until(lambda: self.is_caret_in_view(app), "caret in view")
        top = self.caret_box(app).y
        app.press("ctrl+alt+shift+f")
        self.wait_for_text(app, before)
        self.wait_for_caret(app, caret)
        wait_until(lambda: self.is_caret_in_view(app), "caret in view")
        app.press("ctrl+z")
        self.wait_for_caret(app, formatted)
        wait_until(lambda: self.is_caret_in_view(app), "caret in view")
        app.press("ctrl+z")
        self.wait_for_text(app, before)
        self.wait_for_caret(app, caret)
        self.assertGreater(top, 0)

    def test_going_back_to_the_file_keeps_the_line_of_the_caret(self):
        lines = [f"  <item>{number}</item>\n" for number in range(300)]
        text = "<lista>\n" + "".join(lines) + "</lista>\n"
        app = self.start_in_text(text)
        app.press("Down")
        app.type("<!--uno-->")
        app.press("ctrl+End", "Up")
        app.type("<!--dos-->")
        edited = self.text(app)
        self.put_caret(app, edited.index(">150<"))
        app.press("alt+a")
        wait_until(lambda: "Tamo" in app.windows(), "menu of the file")
        app.press("v")
        app.click_on(app.wait_for(role="push button", name="Volver a lo guardado"))
        self.wait_for_text(app, text)
        self.wait_for_caret(app, text.index(">150<"))
        wait_until(lambda: self.is_caret_in_view(app), "caret in view")

    # White space

    def test_tells_once_of_white_space_that_may_be_text(self):
        text = "<p>uno <b>dos</b> tres</p>"
        app = self.start_in_text(text)
        app.press("ctrl+alt+f")
        app.wait_for(role="label", name=CHANGED_SPACE)
        app.click_on(app.wait_for(role="push button", name="Deshacer"))
        self.wait_for_text(app, text)
        wait_until(lambda: app.find(role="label", name=CHANGED_SPACE) is None, "end of the notice")
        app.press("ctrl+alt+f")
        wait_until(lambda: self.text(app) != text, "lines")
        self.assertIsNone(app.find(role="label", name=CHANGED_SPACE))

    def test_says_nothing_where_no_text_changes(self):
        app = self.start_in_text("<p><b>dos</b></p>")
        app.press("ctrl+alt+f")
        self.wait_for_text(app, "<p>\n    <b>dos</b>\n</p>\n")
        self.assertIsNone(app.find(role="label", name=CHANGED_SPACE))

    # Mending

    def mend_all(self, app):
        app.click_on(wait_until(lambda: self.counts(app), "count of errors"))
        wait_until(lambda: "Tamo" in app.windows(), "menu of the problems")
        app.press("Up", "Return")

    def counts(self, app):
        return next((each for each in app.accessibles()
                     if each.get_role_name() == "push button" and " advertencia" in (each.get_name() or "")), None)

    def test_mends_all_in_one_step(self):
        text = '<a b="x>1 &amp; 2</a>'
        app = self.start_in_text(text)
        self.mend_all(app)
        self.wait_for_text(app, '<a b="x">1 &amp; 2</a>')
        app.wait_for(role="label", name="Sin errores")
        app.press("ctrl+z")
        self.wait_for_text(app, text)

    def test_says_how_many_problems_are_left(self):
        app = self.start_in_text('<r><item x="1" x="2">t</itm></r>')
        self.mend_all(app)
        self.wait_for_text(app, '<r><item x="1" x="2">t</item></r>')
        app.wait_for(role="label", name="Queda 1 problema que Tamo no sabe corregir.")
        app.click_on(app.wait_for(role="push button", name="Entendido"))
        wait_until(lambda: app.find(role="label", starts="Queda 1") is None, "end of the notice")

    def test_renames_an_end_tag(self):
        app = self.start_in_text("<r><item>t</itm></r>")
        wait_until(lambda: self.counts(app), "count of errors")
        self.put_caret(app, 13)
        app.press("alt+Return")
        wait_until(lambda: "Tamo" in app.windows(), "menu of the fixes")
        app.press("Up", "Return")
        self.wait_for_text(app, "<r><item>t</item></r>")


if __name__ == "__main__":
    run()
