"""The organiser in the real program with the bundled theme, driven as a
screen reader would: type into the boxes, press the skin buttons, and read
back the files the program wrote and the rows it lists."""

import glob
import os
import sys
import time
import unittest

sys.path.insert(0, os.path.dirname(__file__))

from mirel_a11y import ScreenReaderCase, run_in_private_bus, walk  # noqa: E402
from mirel_harness import Session  # noqa: E402

if __name__ == "__main__":
    run_in_private_bus(__file__)


class Organiser(ScreenReaderCase):
    def press(self, command):
        super().press(command, settle=0.4)

    def type_into(self, name, text):
        self.find(name, shown=True).queryEditableText().setTextContents(text)

    def rows(self):
        lists = [n for n in walk(self.app()) if n.getRoleName() == "list" and n.name == "lstBox 1"
                 and self.showing(n)]
        self.assertTrue(lists, "the screen shows its list")
        return [lists[0].getChildAtIndex(i).name for i in range(lists[0].childCount)]

    def screen(self, command, first_button):
        self.press(command)
        # The theme builds a screen up control by control; its buttons come first.
        self.find(first_button, "push button", shown=True, timeout=20)
        time.sleep(1.5)

    def test_note_log_task_and_contact(self):
        s = Session(self.x.display, {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
                                     "QT_ACCESSIBILITY": "1"}, theme=False, theme_dir="Default")
        self.addCleanup(s.close)
        s.start()
        data = os.path.join(s.program_dir, "Mirel")

        self.screen("NOTES", "NOTEADD")
        self.press("NOTEADD")
        self.type_into("txtBox 1", "Groceries")
        self.type_into("txtMulti 1", "milk\nbread")
        self.press("NOTESAVE")
        notes = glob.glob(os.path.join(data, "Notes", "*.not"))
        self.assertEqual(len(notes), 1)
        with open(notes[0], "rb") as f:
            self.assertEqual(f.read(), b"Groceries\r\nmilk\r\nbread\r\n")
        self.assertEqual(self.rows(), ["Groceries"])
        s.screenshot("organiser-notes")

        self.screen("LOGBOOK", "LOGADD")
        self.press("LOGADD")
        self.type_into("txtMulti 1", "Met the new neighbours")
        self.press("LOGSAVE")
        self.assertEqual(len(glob.glob(os.path.join(data, "Logbook", "*.log"))), 1)
        self.assertEqual(self.rows()[1], "   Met the new neighbours")

        self.screen("TODO", "TODOADD")
        self.press("TODOADD")
        self.type_into("txtMulti 1", "Call the plumber")
        self.press("TODOSAVE")
        self.assertEqual(self.rows(), ["TODO  Call the plumber"])

        self.screen("ADDRESS", "ADDRESSADD")
        self.press("ADDRESSADD")
        self.type_into("txtBox 1", "Jos\u00e9 Garc\u00eda")
        self.type_into("txtBox 13", "thirteen")
        self.type_into("txtMulti 1", "line one\nline two")
        self.press("ADDRESSSAVE")
        with open(os.path.join(data, "Addressbook", "0.dat"), "rb") as f:
            lines = f.read().split(b"\r\n")
        self.assertEqual(lines[0], b"Jos\xe9 Garc\xeda")
        self.assertEqual(lines[14], b"thirteen")  # box 13 is the file's line 15
        # Seventeen lines, each ended by CR LF; the field order and the notes'
        # encoding are checked by the address book's own tests.
        self.assertEqual(len(lines), 18)
        s.screenshot("organiser-address")

        self.press("OVERVIEW")
        time.sleep(2)
        overview = [n for n in walk(self.app()) if n.name == "Overview" and n.getRoleName() == "list"]
        self.assertTrue(overview)
        rows = [overview[0].getChildAtIndex(i).name for i in range(overview[0].childCount)]
        self.assertIn("  Call the plumber", rows)
        s.screenshot("organiser-overview")

        self.press("QUIT")
        self.assertEqual(s.wait_exit(), 0)


if __name__ == "__main__":
    unittest.main(verbosity=2)
