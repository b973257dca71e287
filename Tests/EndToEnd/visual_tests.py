"""Works the tree and the inspector of the built program: what is written there is saved, kept and taken back.

Usage: visual_tests.py PROGRAM [TEST…]
"""

from desktop import accessibility, wait_until
from document_test import DocumentTest, run, text_of

BOOK = """<libro>
    <a/>
    <c x="1">tres</c>
    <e/>
</libro>
"""


class Visual(DocumentTest):
    def choose(self, app, name):
        app.click_on(app.wait_for(role="table cell", name=name))
        app.wait_for(role="tree", state="focused")

    def content(self, app):
        return app.wait_for(role="text", name="Texto")

    def edit_text_in_place(self, app):
        """Adds to the text "tres" in the tree."""
        self.choose(app, "tres")
        app.press("F2")
        app.wait_for(name="Contenido del nodo", state="focused")
        app.press("End")
        app.type(" uno")

    def test_typing_goes_on_after_the_content_is_saved_and_committed(self):
        path = self.document(BOOK)
        app = self.start_with_tree(path)
        self.choose(app, "c")
        app.click_on(self.content(app))
        app.press("ctrl+End")
        app.type(" mas")
        app.press("ctrl+s")
        self.wait_for_bytes(path, BOOK.replace("tres", "tres mas").encode())
        wait_until(lambda: "tres mas" in app.rows(), "row of the text")
        app.press("ctrl+s")
        app.type(" aun")
        app.press("Return")
        wait_until(lambda: "tres mas aun" in app.rows(), "longer text")
        app.type("!")
        self.assertEqual(text_of(self.content(app)), "tres mas aun!")

    def test_saving_keeps_the_keyboard_in_the_tree(self):
        path = self.document(BOOK)
        app = self.start_with_tree(path)
        self.edit_text_in_place(app)
        app.press("ctrl+s")
        self.wait_for_bytes(path, BOOK.replace("tres", "tres uno").encode())
        app.wait_for(role="tree", state="focused")
        app.press("Down")
        wait_until(lambda: app.focus_place() is not None and app.focus_place()[1] == "e", "next row")

    def test_a_command_takes_what_is_written_in_the_tree(self):
        path = self.document(BOOK)
        app = self.start_with_tree(path)
        self.edit_text_in_place(app)
        app.press("ctrl+3")
        app.wait_for(role="table cell", name="tres uno")
        app.press("ctrl+s")
        self.wait_for_bytes(path, BOOK.replace("tres", "tres uno").encode())

    def test_undo_brings_the_node_back_and_selects_it(self):
        items = "".join(f"    <i{number}/>\n" for number in range(200))
        app = self.start_with_tree(self.document(f"<lista>\n{items}</lista>\n"))
        app.press("End")
        wait_until(lambda: app.focus_place() is not None and app.focus_place()[1] == "i199", "last row")
        app.press("ctrl+d", "Delete", "Home", "ctrl+z")
        is_in_view = lambda: app.find(role="table cell", name="i199", state="selected") is not None
        wait_until(is_in_view, "restored node")
        app.press("ctrl+z")
        wait_until(lambda: app.rows().count("i199") == 1 and is_in_view(), "the one that was duplicated")
        app.press("Up")
        wait_until(lambda: app.focus_place() is not None and app.focus_place()[1] == "i198", "row before")

    def test_a_node_found_by_the_filter_stays_in_sight_without_it(self):
        app = self.start_with_tree(self.document("<lista><b><c><aguja/></c></b><d/></lista>"))
        self.choose(app, "b")
        app.press("Left")
        wait_until(lambda: "aguja" not in app.rows(), "collapsed element")
        app.press("ctrl+f")
        app.type("aguja")
        app.press("Return")
        wait_until(lambda: app.focus_place() is not None and app.focus_place()[1] == "aguja", "match")
        app.press("ctrl+f", "Escape")
        wait_until(lambda: app.rows() == ["lista", "b", "c", "aguja", "d"], "all rows")
        app.wait_for(role="table cell", name="aguja", state="selected")


if __name__ == "__main__":
    run()
