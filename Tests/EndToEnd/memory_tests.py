"""Works the built program under limits of its memory, from what an empty window needs upward.

Usage: memory_tests.py PROGRAM [TEST…]
"""

import memory_limits
from document_test import DocumentTest, run

RECORD = "  <record id='{0}'><name>Text of the record {0}</name><value unit='m'>{0}</value></record>\n"


class Memory(DocumentTest):
    def test_a_limit_of_memory_ends_no_window_and_tears_no_file(self):
        document = self.document("<records>\n" + "".join(map(RECORD.format, range(70_000))) + "</records>\n")
        size = document.stat().st_size
        window = memory_limits.window_size(self.program)
        runs = {}
        folder = self.folder / "work"
        folder.mkdir()
        # From a window that has no room for the text to one that has room for everything.
        for times in (2, 4, 6, 9, 40):
            limit = window + times * size
            done = memory_limits.Run(self.program, document, limit, folder)
            print(f"{times:>3} × the file:", done.failure or done.steps, flush=True)
            self.assertIsNone(done.failure)
            runs[times] = done.steps
        self.assertIn("memoria", " ".join(runs[2].values()))
        self.assertEqual({step: told for step, told in runs[40].items() if told != "done"}, {})
        self.assertIn("save replaced", runs[40])


if __name__ == "__main__":
    run()
