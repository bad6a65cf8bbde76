"""The e-mail screen of the real program under Xvfb with the bundled theme:
real messages stored as received mail, the list shown through the command
mailbox, messages opened by a pointer click on their rows (found through the
accessibility layer, as a screen reader finds them), the source view, and a
photograph of each step."""

import os
import sqlite3
import subprocess
import sys
import time
import unittest
from email.message import EmailMessage

sys.path.insert(0, os.path.dirname(__file__))

from mirel_a11y import ScreenReaderCase, run_in_private_bus, walk  # noqa: E402
from mirel_harness import BUILD_DIR, Session  # noqa: E402

if __name__ == "__main__":
    run_in_private_bus(__file__)

CORPUS = "/usr/lib/python3.11/test/test_email/data/"
HELPER = os.path.join(BUILD_DIR, "tests", "mirel_test_helper")


def utf8_message(path):
    """A message written by Python's own mail package: encoded subject and
    sender, an HTML body in UTF-8 with a link."""
    m = EmailMessage()
    m["From"] = '"Jörg Müller" <joerg@example.de>'
    m["To"] = "me@example.org"
    m["Subject"] = "Grüße aus Köln"
    m["Date"] = "Sun, 22 Nov 2026 10:00:00 +0100"
    m["Message-ID"] = "<utf8-view@example.de>"
    m.set_content("Grüße aus Köln\nhttp://example.de/dom\n")
    m.add_alternative("<html><head><meta charset=\"utf-8\"></head><body bgcolor=\"#ffffff\">"
                      "<p><font color=\"#000000\">Grüße aus Köln, schöne Grüße!</font></p>"
                      "<p><a href=\"http://example.de/dom\">Der Dom</a></p></body></html>",
                      subtype="html")
    with open(path, "wb") as f:
        f.write(bytes(m))


class MailView(ScreenReaderCase):
    def cell(self, table, text, timeout=10):
        deadline = time.time() + timeout
        while time.time() < deadline:
            for node in walk(table):
                if node is not table and node.name == text:
                    return node
            time.sleep(0.3)
        self.fail("no row showing %r" % text)

    def choose(self, table, cell):
        """Selects the cell's row, as a screen reader's user does."""
        rows = table.queryTable()
        for r in range(rows.nRows):
            if rows.isRowSelected(r):
                rows.removeRowSelection(r)
        rows.addRowSelection(rows.getRowAtIndex(cell.getIndexInParent()))

    def readed(self, s):
        db = sqlite3.connect(os.path.join(s.program_dir, "Email", "0", "index.mdb"))
        try:
            return {bytes(subject).decode("cp1252"): readed
                    for subject, readed in db.execute('SELECT "Subject", "Readed" FROM "Index"')}
        finally:
            db.close()

    def page(self, s):
        with open(os.path.join(s.program_dir, "Email", "tmp.html"), "rb") as f:
            return f.read()

    def test_list_open_and_source(self):
        s = Session(self.x.display, {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
                                     "QT_ACCESSIBILITY": "1"}, theme=False)
        self.addCleanup(s.close)
        s.bundled_theme()

        generated = os.path.join(s.tmp, "utf8.eml")
        utf8_message(generated)
        files = [CORPUS + n for n in ("msg_01.txt", "msg_07.txt", "msg_15.txt", "msg_22.txt")]
        stored = subprocess.run([HELPER, "store-received", s.program_dir, *files, generated],
                                capture_output=True, timeout=60)
        self.assertEqual(stored.returncode, 0, stored.stderr)
        self.assertEqual(set(self.readed(s).values()), {0})

        s.start()
        s.send("EMAIL")
        s.wait_for_log("Screen Email")
        table = self.find("MLmessages")
        # The stored subject stays encoded; the list shows it decoded.
        self.assertIn("=?utf-8?", "".join(self.readed(s)))
        first = self.cell(table, "Grüße aus Köln")
        # An encoded sender without a quoted name is shown whole, decoded.
        self.cell(table, "Jörg Müller <joerg@example.de>")
        self.cell(table, "This is a test message")
        time.sleep(0.5)
        s.screenshot("mailview-list")

        self.choose(table, first)
        deadline = time.time() + 10
        while time.time() < deadline and 1 not in self.readed(s).values():
            time.sleep(0.2)
        page = self.page(s)
        self.assertIn(b"<BODY BGCOLOR=#000000 TEXT=#FFFFFF>", page)
        self.assertIn("Grüße aus Köln, schöne Grüße!".encode("utf-8"), page, "bytes kept")
        self.assertIn(b"color=\"#FFFFFF\"", page)
        self.assertTrue(page.endswith(b"\r\n"))
        self.assertEqual([r for subj, r in self.readed(s).items() if "utf-8" in subj], [1])
        time.sleep(0.5)
        s.screenshot("mailview-html")

        self.choose(table, self.cell(table, "Here is your dingus fish"))
        self.find("dingusfish.g")  # the caption holds twelve characters
        time.sleep(0.5)
        s.screenshot("mailview-attachment")

        s.send("EMAILSOURCE")
        time.sleep(1.0)
        s.screenshot("mailview-source")
        body = self.find("rtfEmail").queryText()
        self.assertIn("Subject: Here is your dingus fish",
                      body.getText(0, body.characterCount))


if __name__ == "__main__":
    unittest.main(verbosity=2)
