"""Looks at the running program as a person does: what overlaps, what is in view, and how it speaks.

Usage: look_tests.py PROGRAM [TEST…]
"""

import os

from desktop import accessibility, api_error, wait_until
from document_test import DocumentTest, run

SCREEN = (1600, 1000)
SMALLEST = (480, 320)  # The smallest size that a window lets itself be made.


class Box:
    """A place on the screen."""

    def __init__(self, x, y, width, height):
        self.left, self.top, self.right, self.bottom = x, y, x + width, y + height

    def intersects(self, other):
        return (
            self.left < other.right and other.left < self.right and self.top < other.bottom and other.top < self.bottom
        )

    def __repr__(self):
        return f"({self.left}, {self.top}) to ({self.right}, {self.bottom})"


def box_of(accessible):
    api = accessibility()
    found = api.Component.get_extents(accessible, api.CoordType.SCREEN)
    return Box(found.x, found.y, found.width, found.height)


class Looks(DocumentTest):
    def start_in(self, mode, path):
        """Text alone is mode 1, text beside the tree mode 3; the focus goes into the text."""
        app = self.start(path)
        app.press(f"ctrl+{mode}")
        text = app.wait_for(role="text", name="Texto")
        app.click_on(text)
        app.wait_for(role="text", name="Texto", state="focused")
        return app, text

    def start_magnified(self, path):
        """The program as on a screen of 800 by 500 logical pixels."""
        os.environ["QT_SCALE_FACTOR"] = "2"
        self.addCleanup(os.environ.update, QT_SCALE_FACTOR="1")
        return self.start_with_text(path)

    def assert_on_screen(self, app, title):
        shape = app._xdotool("getwindowgeometry", "--shell", app.windows()[title])
        place = dict(line.split("=") for line in shape.split() if "=" in line)
        x, y, width, height = (int(place[key]) for key in ("X", "Y", "WIDTH", "HEIGHT"))
        self.assertTrue(x >= 0 and y >= 0 and x + width <= SCREEN[0] and y + height <= SCREEN[1], f"{title}: {place}")

    def resize(self, app, width, height):
        app._xdotool("windowsize", "--sync", app._window, str(width), str(height))

    # Room

    def test_find_bar_and_panes_never_overlap(self):
        app, _ = self.start_in(3, self.document("<a>\n  <b c='1'>uno</b>\n  <b>uno</b>\n</a>\n"))
        app.press("ctrl+h")
        app.wait_for(role="text", name="Buscar", state="focused")
        app.type("uno")
        self.resize(app, *SMALLEST)
        parts = {
            "field": {"role": "text", "name": "Buscar"},
            "option": {"role": "check box", "name": "Palabras completas"},
            "next": {"role": "push button", "name": "Siguiente"},
            "replacement": {"role": "text", "name": "Reemplazar por"},
            "replace all": {"role": "push button", "name": "Reemplazar todo"},
            "source": {"role": "text", "name": "Texto"},
            "tree": {"role": "tree"},
        }

        def places():
            try:
                found = {name: app.find(**what) for name, what in parts.items()}
                return None if None in found.values() else {name: box_of(each) for name, each in found.items()}
            except api_error():
                return None

        def is_small():
            found = places()
            return found and max(box.right for box in found.values()) <= SMALLEST[0] + window.left and found

        window = box_of(app.wait_for(role="frame"))
        found = wait_until(is_small, "a small window that shows all its parts")
        for name, box in found.items():
            self.assertGreater(box.right - box.left, 20, name)
            for other, place in found.items():
                self.assertTrue(name == other or not box.intersects(place), f"{name} {box} and {other} {place}")

    def test_a_notice_never_covers_the_line_of_the_caret(self):
        path = self.document("<a>\n" + "  <b/>\n" * 100 + "</a>\n")
        app, text = self.start_in(1, path)
        api = accessibility()

        def is_caret_in_view():
            caret = api.Text.get_character_extents(text, api.Text.get_caret_offset(text), api.CoordType.SCREEN)
            shown = box_of(text)
            return shown.top <= caret.y and caret.y + caret.height <= shown.bottom

        app.press("ctrl+Home")
        wait_until(is_caret_in_view, "caret at the start")
        # To the last line that shows without scrolling.
        line = api.Text.get_character_extents(text, 0, api.CoordType.SCREEN)
        lines = (box_of(text).bottom - line.y) // line.height
        app.press(*["Down"] * (lines - 1))
        app.type("x")
        wait_until(lambda: app.title().startswith("documento.xml*"), "mark of an edited document")
        self.assertTrue(is_caret_in_view())
        height = box_of(text).bottom - box_of(text).top
        # Another program writes the file.
        other = path.with_suffix(".new")
        other.write_text("<b/>\n", encoding="utf-8")
        os.replace(other, path)
        app.wait_for(role="label", starts="“documento.xml” ha cambiado en el disco, y aquí tienes cambios")
        wait_until(lambda: box_of(text).bottom - box_of(text).top < height, "bar above the text")
        wait_until(is_caret_in_view, "caret in view under the bar")

    def test_windows_stay_on_the_screen(self):
        paths = [self.document("<a/>\n", f"documento-{number}.xml") for number in range(12)]
        app = self.start(*paths)
        wait_until(lambda: len(app.windows()) == len(paths), "all windows")
        for title in app.windows():
            self.assert_on_screen(app, title)

    def test_dialogs_stay_on_a_small_screen(self):
        app = self.start_magnified(self.document("<a/>\n"))
        for keys, title in (
            (["F1"], "Atajos de teclado"),
            (["ctrl+o"], "Abrir"),
            (["ctrl+shift+s"], "Guardar como"),
            (["alt+a", "b"], "Volver a abrir con la codificación"),
            (["alt+a", "l"], "Guardar con la codificación"),
        ):
            for key in keys:
                app.press(key)
                wait_until(lambda: len(app.windows()) > 1, "menu or dialog")
            wait_until(lambda title=title: title in app.windows(), f"dialog {title}")
            self.assert_on_screen(app, title)
            app.answer(title, "Escape")

    def test_remembers_where_a_divider_was_left(self):
        app, text = self.start_in(3, self.document("<a/>\n"))
        usual = box_of(text)
        self.assertGreater(3 * (usual.right - usual.left), 1280)
        middle = (usual.top + usual.bottom) // 2
        tree = box_of(app.wait_for(role="tree"))
        app.drag((tree.left - 1, middle), (tree.left + 99, middle))
        wider = wait_until(lambda: box_of(text).right > usual.right + 80 and box_of(text), "wider source")
        app.press("ctrl+n")
        wait_until(lambda: len(app.windows()) == 2, "second window")
        app.focus("Sin título")
        app.type("<a/>")
        app.press("ctrl+3")

        def width():
            found = app.find(role="text", name="Texto")
            return box_of(found).right - box_of(found).left if found else 0

        wait_until(lambda: abs(width() - (wider.right - wider.left)) < 20, "source as wide in the new window")

    # Words

    def test_counts_one_error_in_the_singular(self):
        app, _ = self.start_in(1, self.document("<a>&</a>"))
        app.wait_for(role="push button", name="1 error, 0 advertencias")
        app.wait_for(role="label", name="8 bytes")
        app.press("ctrl+a")
        app.type("x")
        app.wait_for(role="label", name="1 byte")

    def test_asks_in_one_voice(self):
        app, _ = self.start_in(1, self.document("<a/>\n"))
        app.type("x")
        wait_until(lambda: app.title().startswith("documento.xml*"), "mark of an edited document")
        app.press("ctrl+w")
        app.wait_for(role="label", starts="¿Guardar los cambios en “documento.xml”?")
        app.wait_for(role="label", starts="Si no los guardas, se perderán.")
        app.press("Escape")


if __name__ == "__main__":
    run()
