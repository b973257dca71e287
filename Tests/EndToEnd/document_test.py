"""What all tests of documents in the built program share."""

import pathlib
import sys
import tempfile
import unittest

from desktop import Application, Desktop, accessibility, wait_until


class DocumentTest(unittest.TestCase):
    """A test with a folder for its files."""

    program = ""  # Set by `run`.

    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))

    def document(self, contents, name="documento.xml"):
        """A file to work on; a string is written in UTF-8."""
        path = self.folder / name
        path.write_bytes(contents.encode() if isinstance(contents, str) else contents)
        return path

    def start(self, *arguments):
        return self.enterContext(Application(self.program, *arguments))

    def start_with_tree(self, path):
        """The program with the tree of a document that has one, and the focus in it."""
        app = self.start(path)
        app.wait_for(role="table cell")
        app.wait_for(role="tree", state="focused")
        return app

    def start_with_text(self, path):
        """The program with the source alone, and the focus in it."""
        app = self.start(path)
        app.press("ctrl+1")
        app.wait_for(role="text", name="Texto", state="focused")
        return app

    def wait_for_text(self, app, expected):
        """Until the source is `expected`."""
        text = app.wait_for(role="text", name="Texto")
        wait_until(lambda: text_of(text) == expected, f"text {expected!r}")

    def wait_for_bytes(self, path, expected):
        wait_until(lambda: path.exists() and path.read_bytes() == expected, f"{expected!r} in the file")


def text_of(accessible):
    return accessibility().Text.get_text(accessible, 0, -1)


def run():
    """Runs the tests of the script that calls it: SCRIPT PROGRAM [TEST…]."""
    DocumentTest.program = sys.argv.pop(1)
    desktop = Desktop()
    try:
        result = unittest.main(exit=False, verbosity=2).result
    finally:
        desktop.close()
    sys.exit(not result.wasSuccessful())
