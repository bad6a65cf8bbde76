"""The main window as a screen reader sees it: skin buttons are pressable by
their command names, screen texts and list rows are readable, and pressing
QUIT ends the program. Runs inside a private session bus with its own
accessibility bus, so nothing reaches the user's desktop."""

import os
import sys
import time
import unittest

sys.path.insert(0, os.path.dirname(__file__))

from mirel_a11y import ScreenReaderCase, run_in_private_bus, walk  # noqa: E402
from mirel_harness import Session  # noqa: E402

if __name__ == "__main__":
    run_in_private_bus(__file__)


class ScreenReader(ScreenReaderCase):
    def texts(self):
        out = []
        for node in walk(self.app()):
            if node.getRoleName() == "label":
                out.append(node.name)
        return out

    def test_buttons_texts_and_lists(self):
        s = Session(self.x.display, {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
                                     "QT_ACCESSIBILITY": "1"})
        self.addCleanup(s.close)
        s.start()
        names = [n.name for n in walk(self.app()) if n.getRoleName() == "push button"]
        for command in ("NOTES", "LOGBOOK", "TODO", "ADDRESS", "AGENDA", "CALENDAR", "EMAIL",
                        "QUIT"):
            self.assertIn(command, names)
        self.assertIn("Mirel test theme", self.texts())

        self.press("NOTES")
        s.wait_for_log("Screen Notes")
        self.find("Notes screen", "label")
        notes = self.find(role="list")
        rows = [notes.getChildAtIndex(i).name for i in range(notes.childCount)
                if notes.getChildAtIndex(i).getRoleName() == "list item"]
        self.assertEqual(rows, [], "a fresh program folder has no notes")

        self.press("TODO")
        s.wait_for_log("Screen Todo")
        self.find("Todo screen", "label")
        deadline = time.time() + 10
        while "Notes screen" in self.texts() and time.time() < deadline:
            time.sleep(0.2)
        self.assertNotIn("Notes screen", self.texts(), "the previous screen was taken down")

        self.press("QUIT")
        self.assertEqual(s.wait_exit(), 0)


if __name__ == "__main__":
    unittest.main(verbosity=2)
