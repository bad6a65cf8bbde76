"""Writing mail in the real program under Xvfb with the bundled theme,
driven through the accessibility layer as a screen reader's user would: a
new message with two recipients, a reply to a received message and a
forward of a message with two attachments, each read back from the outbox;
the scratch folder of the forward is empty afterwards."""

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

HELPER = os.path.join(BUILD_DIR, "tests", "mirel_test_helper")
PDF = bytes(range(256)) * 40
PNG = b"\x89PNG\r\n\x1a\n" + bytes(300)


def received(path):
    m = EmailMessage()
    m["From"] = "Bob <bob@example.org>"
    m["To"] = "ann@example.org"
    m["Subject"] = "Quarterly figures"
    m["Date"] = "Sun, 22 Nov 2026 10:00:00 +0100"
    m["Message-ID"] = "<compose-e2e@example.org>"
    m.set_content("Here are the figures.\n")
    # The store keeps the Content-Type parameters as the name.
    m.add_attachment(PDF, maintype="application", subtype="pdf", filename="figures.pdf",
                     params={"name": "figures.pdf"})
    m.add_attachment(PNG, maintype="image", subtype="png", filename="chart.png",
                     params={"name": "chart.png"})
    with open(path, "wb") as f:
        f.write(bytes(m))


def triplets(text):
    return "".join("%03d" % b for b in text.encode("cp1252"))


class Compose(ScreenReaderCase):
    def outbox(self, s):
        folder = os.path.join(s.program_dir, "Email", "1")
        db = sqlite3.connect(os.path.join(folder, "index.mdb"))
        db.execute("ATTACH ? AS a", (os.path.join(folder, "attachments.mdb"),))
        try:
            rows = db.execute('SELECT "ID", "Subject", "From", "To", "Date" FROM "Index" '
                              'ORDER BY "ID"').fetchall()
            out = []
            for id_, subject, sender, to, date in rows:
                files = db.execute('SELECT "Filename", "Data" FROM a."Attachments" WHERE "ID"=?',
                                   (id_,)).fetchall()
                out.append((bytes(subject).decode("cp1252"), bytes(sender).decode("cp1252"),
                            bytes(to).decode("cp1252"), bytes(date or b"").decode(),
                            [(bytes(n).decode("cp1252"), bytes(d)) for n, d in files]))
            return out
        finally:
            db.close()

    def set_text(self, name, text):
        box = self.find(name, shown=True)
        box.queryEditableText().setTextContents(text)

    def wait_outbox(self, s, count):
        deadline = time.time() + 15
        while time.time() < deadline:
            try:
                rows = self.outbox(s)
                if len(rows) >= count:
                    return rows
            except sqlite3.Error:
                pass
            time.sleep(0.3)
        self.fail("the outbox did not reach %d messages: %s" % (count, s.debug_log()))

    def open_message(self):
        table = self.find("MLmessages")
        deadline = time.time() + 10
        while time.time() < deadline:
            cells = [n for n in walk(table) if n is not table and n.name == "Quarterly figures"]
            if cells:
                rows = table.queryTable()
                rows.addRowSelection(rows.getRowAtIndex(cells[0].getIndexInParent()))
                time.sleep(1.5)
                return
            time.sleep(0.3)
        self.fail("the received message is not listed")

    def test_new_reply_forward(self):
        s = Session(self.x.display, {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
                                     "QT_ACCESSIBILITY": "1"}, theme=False)
        self.addCleanup(s.close)
        s.bundled_theme()
        record = "* Home|||pw|0|0|127.0.0.1:1|ann@example.org|Ann Example|"
        os.makedirs(os.path.join(s.program_dir, "Email"), exist_ok=True)
        with open(os.path.join(s.program_dir, "Email", "accounts.ini"), "w") as f:
            f.write("[Email]\r\n0=%s\r\n" % triplets(record))
        mail = os.path.join(s.tmp, "figures.eml")
        received(mail)
        stored = subprocess.run([HELPER, "store-received", s.program_dir, mail],
                                capture_output=True, timeout=60)
        self.assertEqual(stored.returncode, 0, stored.stderr)

        s.start()
        s.send("EMAIL")
        s.wait_for_log("Screen Email")

        # A new message with two recipients.
        s.send("EMAILNEW")
        self.find("DHTMLEdit1", shown=True, timeout=15)
        self.set_text("txtTO", '"Marta L" <marta@example.org>, jonas@example.net')
        self.set_text("txtSubject", "Grüße")
        self.set_text("DHTMLEdit1", "Hello there")
        time.sleep(0.5)
        s.screenshot("compose-new")
        self.press("OK")
        new = self.wait_outbox(s, 1)[0]
        self.assertEqual(new[:3], ("Grüße", '"Ann Example" <ann@example.org>',
                                   '"Marta L" <marta@example.org>, jonas@example.net'))
        self.assertRegex(new[3], r"^\w{3}, \d{1,2} \w{3} \d{4} \d\d:\d\d:\d\d [+-]\d{4}$")

        # A reply to the shown message.
        self.open_message()
        s.send("EMAILREPLY")
        self.find("DHTMLEdit1", shown=True, timeout=15)
        time.sleep(0.5)
        s.screenshot("compose-reply")
        self.press("OK")
        reply = self.wait_outbox(s, 2)[1]
        self.assertEqual(reply[0], "Re: Quarterly figures")
        self.assertEqual(reply[2], "Bob <bob@example.org>")

        # A forward takes both attachments along, byte for byte.
        s.send("EMAILFORWARD")
        self.find("DHTMLEdit1", shown=True, timeout=15)
        time.sleep(0.5)
        s.screenshot("compose-forward")
        self.press("OK")
        forward = self.wait_outbox(s, 3)[2]
        self.assertEqual(forward[4], [('name="figures.pdf"', PDF), ('name="chart.png"', PNG)])
        time.sleep(0.5)
        self.assertEqual(os.listdir(os.path.join(s.program_dir, "EmailTemp")), [])


if __name__ == "__main__":
    unittest.main(verbosity=2)
