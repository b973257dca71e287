"""Works the built program as a person would, and checks that the place is never lost and nothing untrue is said.

Usage: place_tests.py PROGRAM [TEST…]
"""

from desktop import accessibility, wait_until
from document_test import DocumentTest, run

SHELF = """<lib>
  <libro><autor>Ana</autor></libro>
  <libro><autor>Eva</autor></libro>
  <revista/>
</lib>
"""


class Place(DocumentTest):
    def choose(self, app, name):
        app.click_on(app.wait_for(role="table cell", name=name))
        app.wait_for(role="tree", state="focused")
        self.wait_for_crumb(app, name)

    def wait_for_crumb(self, app, name):
        """Until the last crumb above the panes has that name."""
        wait_until(lambda: self.crumbs(app)[-1:] == [name], f"crumb {name}")

    def crumbs(self, app):
        bar = app.find(name="Ruta del nodo")
        if bar is None:
            return []
        top = accessibility().Component.get_extents(bar, accessibility().CoordType.SCREEN)
        found = []
        for each in app.accessibles():
            if each.get_role_name() == "push button":
                box = accessibility().Component.get_extents(each, accessibility().CoordType.SCREEN)
                if top.y <= box.y < top.y + top.height:
                    found.append((box.x, each.get_name()))
        return [name for _, name in sorted(found)]

    def wait_for_rows(self, app, expected):
        wait_until(lambda: app.rows() == expected, f"rows {expected}")

    def test_a_comment_above_the_root_leaves_tree_and_selection(self):
        app = self.start_with_tree(self.document(SHELF))
        self.wait_for_rows(app, ["lib", "libro", "autor", "Ana", "libro", "autor", "Eva", "revista"])
        app.click_on(app.find(role="table cell", name="libro"))
        app.press("Left")
        self.wait_for_rows(app, ["lib", "libro", "libro", "autor", "Eva", "revista"])
        app.press("ctrl+3")
        app.click_on(app.wait_for(role="text", name="Texto"))
        app.wait_for(role="text", name="Texto", state="focused")
        app.press("ctrl+Home")
        # Slowly: this is parsed, and leaves no root.
        app.type("<!--")
        wait_until(lambda: "revista" not in app.rows(), "one comment to the end")
        app.type("x-->")
        self.wait_for_rows(app, ["x", "lib", "libro", "libro", "autor", "Eva", "revista"])
        # The caret stands behind the comment.
        app.press("Left")
        wait_until(lambda: app.find(role="label", name="Comentario"), "inspector of the comment")

    def test_an_undo_brings_back_what_was_expanded(self):
        app = self.start_with_tree(self.document(SHELF))
        before = app.rows()
        self.choose(app, "revista")
        app.click_on(app.find(role="table cell", name="libro"))
        app.press("Delete")
        self.wait_for_rows(app, ["lib", "libro", "autor", "Eva", "revista"])
        app.press("ctrl+z")
        self.wait_for_rows(app, before)

    def test_the_inspector_is_that_of_the_caret_after_typing(self):
        app = self.start_with_tree(self.document("<a><b/><c/></a>\n"))
        app.press("ctrl+3")
        text = app.wait_for(role="text", name="Texto")
        app.click_on(text)
        app.wait_for(role="text", name="Texto", state="focused")
        app.press("ctrl+Home", *["Right"] * 4)
        self.wait_for_crumb(app, "b")
        app.press("Left", *["Delete"] * 4)
        self.wait_for_crumb(app, "c")

    def test_changing_the_mode_keeps_the_place(self):
        books = "".join(f"  <libro{n}/>\n" for n in range(120))
        app = self.start_with_tree(self.document(f"<lib>\n{books}</lib>\n"))
        app.press("ctrl+1")
        text = app.wait_for(role="text", name="Texto", state="focused")
        api = accessibility()
        app.press("ctrl+End", *["Up"] * 30, "End", "Left", "Left")
        wait_until(lambda: api.Text.get_caret_offset(text) > 1000, "caret far down")
        wait_until(lambda: self.crumbs(app)[-1:] == ["libro91"], "crumb of the caret")
        app.press("ctrl+2")
        app.wait_for(role="tree", state="focused")
        app.wait_for(role="table cell", name="libro91", state="selected")
        app.press("Down", "Down", "Down")
        self.wait_for_crumb(app, "libro94")
        app.press("ctrl+1")
        text = app.wait_for(role="text", name="Texto", state="focused")

        def is_caret_in_view():
            caret = api.Text.get_caret_offset(text)
            box = api.Text.get_character_extents(text, caret, api.CoordType.SCREEN)
            pane = api.Component.get_extents(text, api.CoordType.SCREEN)
            return api.Text.get_text(text, caret, caret + 9) == "<libro94/" and pane.y <= box.y < pane.y + pane.height

        wait_until(is_caret_in_view, "caret at the node in view")
        self.wait_for_crumb(app, "libro94")

    def test_the_filter_counts_and_hides_from_commands(self):
        path = self.document(SHELF)
        app = self.start_with_tree(path)
        self.choose(app, "revista")
        app.press("ctrl+f")
        app.wait_for(role="text", name="Filtrar nodos", state="focused")
        app.type("autor")
        app.wait_for(role="label", name="2 resultados")
        app.press("Down")
        app.wait_for(role="tree", state="focused")
        app.press("Delete", "ctrl+d")
        app.press("ctrl+f")
        app.wait_for(role="text", name="Filtrar nodos", state="focused")
        app.press("ctrl+a")
        app.type("eva")
        app.wait_for(role="label", name="1 resultado")
        app.type("x")
        app.wait_for(role="label", name="Sin resultados")
        app.press("Escape")
        self.wait_for_rows(app, ["lib", "libro", "autor", "Ana", "libro", "autor", "Eva", "revista"])
        self.assertEqual(path.read_text(encoding="utf-8"), SHELF)
        self.assertFalse(app.title().startswith("documento.xml*"), "nothing was changed")

    def test_the_title_is_the_files_name_from_the_start(self):
        path = self.document("<a>" + "una línea de texto\n" * 2_000_000 + "</a>\n")
        app = self.start(path)
        titles = {app.title()}
        wait_until(lambda: titles.add(app.title()) or app.find(role="table cell"), "tree")
        self.assertEqual([title for title in titles if not title.startswith("documento.xml")], [])


if __name__ == "__main__":
    run()
