"""Address import and export in the real program with the bundled theme: a
file as another address book writes it goes in through the path prompt and
the import dialog's own column choices, and the export writes the book back
out. Catches a dialog that does not open, preselects nothing, or a list that
is not reloaded."""

import os
import sys
import time
import unittest

sys.path.insert(0, os.path.dirname(__file__))

from mirel_a11y import ScreenReaderCase, run_in_private_bus, walk  # noqa: E402
from mirel_harness import Session  # noqa: E402

if __name__ == "__main__":
    run_in_private_bus(__file__)

CSV = ("\ufeffFirst Name,Last Name,Display Name,E-mail Address,Mobile Phone,Notes\r\n"
       'Jörg,Müller,"Müller, Jörg",joerg@example.org,+49 170 1,"first line\r\nsecond line"\r\n'
       "Ana,Silva,Ana Silva,ana@example.org,,\r\n")


class AddressExchange(ScreenReaderCase):
    def answer_prompt(self, session, prompt, path):
        box = self.find(prompt, "text", shown=True)
        self.assertTrue(box.queryText().getText(0, -1).endswith("/torvex-addressbook.csv"))
        time.sleep(0.5)
        session.screenshot("dialog-input-" + prompt.split()[0].lower())
        box.queryEditableText().setTextContents(path)
        self.press("OK", settle=0.5)

    def test_import_then_export(self):
        s = Session(self.x.display, {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
                                     "QT_ACCESSIBILITY": "1"}, theme=False, theme_dir="Default")
        self.addCleanup(s.close)
        s.start()
        source = os.path.join(s.tmp, "contacts.csv")
        with open(source, "wb") as f:
            f.write(CSV.encode("utf-8"))
        self.press("ADDRESS")
        self.find("ADDRESSIMPORT", "push button", shown=True, timeout=20)
        time.sleep(1.5)

        self.press("ADDRESSIMPORT", settle=0.5)
        self.answer_prompt(s, "Import addresses from this file:", source)
        self.find(None, "combo box", shown=True)
        time.sleep(1)
        s.screenshot("dialog-addressimport")
        self.press("OK", settle=1.0)
        lists = [n for n in walk(self.app()) if n.getRoleName() == "list" and
                 n.name == "lstBox 1" and self.showing(n)]
        rows = [lists[0].getChildAtIndex(i).name for i in range(lists[0].childCount)]
        self.assertEqual(rows, ["Ana Silva", "Müller, Jörg"])
        with open(os.path.join(s.program_dir, "Mirel", "Addressbook", "0.dat"), "rb") as f:
            lines = f.read().split(b"\r\n")
        self.assertEqual(lines[0], "Müller, Jörg".encode("cp1252"))
        self.assertEqual(lines[9], b"+49 170 1")
        self.assertEqual(lines[14], b"joerg@example.org")  # field 13 is the file's line 15
        s.screenshot("organiser-address-imported")

        target = os.path.join(s.tmp, "export.csv")
        self.press("ADDRESSEXPORT", settle=0.5)
        self.answer_prompt(s, "Export the address book to this file:", target)
        deadline = time.time() + 10
        while not os.path.exists(target) and time.time() < deadline:
            time.sleep(0.2)
        with open(target, "rb") as f:
            exported = f.read().split(b"\r\n")
        self.assertTrue(exported[0].startswith(b"Name;Company;Street;"))
        self.assertEqual(exported[2].split(b";")[0], "Müller, Jörg".encode("cp1252"))
        self.assertTrue(exported[2].endswith(b";first line second line"))
        self.assertEqual(len(exported), 4)


if __name__ == "__main__":
    unittest.main(verbosity=2)
