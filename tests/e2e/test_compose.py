"""Writing mail in the real program under Xvfb with the bundled theme,
driven through the accessibility layer as a screen reader's user would: a
message fetched from the test dovecot, then a new message (a recipient from
the address picker, Cc, Bcc and bold text), a reply and a forward of both
attachments, sent with the theme's send/receive button to an SMTP sink and
read back with Python's email package; the forward's scratch folder is
empty afterwards."""

import os
import re
import sys
import time
import unittest
from email.message import EmailMessage

sys.path.insert(0, os.path.dirname(__file__))

from mirel_a11y import ScreenReaderCase, run_in_private_bus, send_receive, walk  # noqa: E402
from mirel_harness import MailServers  # noqa: E402

if __name__ == "__main__":
    run_in_private_bus(__file__)

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
    m.add_attachment(PDF, maintype="application", subtype="pdf", filename="figures.pdf")
    m.add_attachment(PNG, maintype="image", subtype="png", filename="chart.png")
    with open(path, "wb") as f:
        f.write(bytes(m))


class Compose(ScreenReaderCase):
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

    def compose(self, command, shot):
        self.s.send(command)
        self.find("DHTMLEdit1", shown=True, timeout=15)
        time.sleep(0.5)
        self.s.screenshot(shot)

    def test_new_reply_forward_arrive_intact(self):
        s = self.s = self.session()
        s.bundled_theme()
        mail = os.path.join(s.tmp, "figures.eml")
        received(mail)
        servers = MailServers(s, [mail])
        self.addCleanup(servers.close)
        book = os.path.join(s.program_dir, "Mirel", "Addressbook")
        os.makedirs(book)
        for name, address in (("Marta L", "marta@example.org"), ("Jonas W", "jonas@example.net")):
            with open(os.path.join(book, address), "w", newline="\r\n") as f:
                f.write(name + "\n" * 14 + address + "\n")
        notes = os.path.join(s.tmp, "notes.bin")
        with open(notes, "wb") as f:
            f.write(PDF[::-1])

        s.start()
        s.send("EMAIL")
        s.wait_for_log("Screen Email")
        send_receive(self)
        self.open_message()

        # A new message: To from the picker, bold text from the toolbar, a
        # file added through the file dialog.
        self.compose("EMAILNEW", "compose-new")
        self.press("EMAILTO")
        picker = self.find("lstAddressbook", shown=True).queryTable()
        picker.addRowSelection(0)
        picker.addRowSelection(1)
        self.press_in("Address book", "OK")
        self.set_text("txtCC", "cc@example.net")
        self.find("cmdBut16", shown=True).queryAction().doAction(0)
        box = self.inside("Add attachment", "File name:", "text")
        box.queryEditableText().setTextContents(notes)
        self.press_in("Add attachment", "Open")
        self.set_text("txtBCC", "hidden@example.net")
        self.set_text("txtSubject", "Grüße")
        self.set_text("DHTMLEdit1", "Hello there")
        self.find("DHTMLEdit1").queryText().setSelection(0, 6, 11)
        self.find("cmdBut1", shown=True).queryAction().doAction(0)
        self.press("OK", settle=0.5)

        self.compose("EMAILREPLY", "compose-reply")
        self.press("OK", settle=0.5)
        self.compose("EMAILFORWARD", "compose-forward")
        self.press("OK", settle=0.5)
        send_receive(self)

        # Every recipient reaches the server, Bcc in the envelope only; the
        # bold survives as a tag of its own, the file byte for byte.
        (to_new, new), (to_reply, reply), (to_fwd, fwd) = servers.received(3)
        self.assertEqual(to_new, ["jonas@example.net", "marta@example.org", "cc@example.net",
                                  "hidden@example.net"])
        self.assertEqual((new["From"], new["To"], new["Cc"], new["Bcc"], new["Subject"]),
                         ("Ann Example <ann@example.org>",
                          "Jonas W <jonas@example.net>, Marta L <marta@example.org>",
                          "cc@example.net", None, "Grüße"))
        self.assertEqual([(a.get_filename(), a.get_content()) for a in new.iter_attachments()],
                         [("notes.bin", PDF[::-1])])
        self.assertRegex(new["Date"], r"^\w{3}, \d{1,2} \w{3} \d{4} \d\d:\d\d:\d\d [+-]\d{4}$")
        self.assertIn("Hello there", new.get_body(("plain",)).get_content())
        self.assertRegex(new.get_body(("html",)).get_content(), r"(?i)Hello <b>there</b>")

        self.assertEqual((to_reply, reply["Subject"], str(reply["To"])),
                         (["bob@example.org"], "Re: Quarterly figures", "Bob <bob@example.org>"))
        for part in ("plain", "html"):
            body = reply.get_body((part,)).get_content()
            self.assertTrue(re.search(r"Original message.*Here are the figures\.", body, re.S),
                            body)

        # A forward keeps the reply's presets, the original's attachments added.
        self.assertEqual((to_fwd, fwd["Subject"]), (["bob@example.org"], "Re: Quarterly figures"))
        self.assertEqual([(a.get_filename(), a.get_content()) for a in fwd.iter_attachments()],
                         [("figures.pdf", PDF), ("chart.png", PNG)])
        self.assertEqual(os.listdir(os.path.join(s.program_dir, "EmailTemp")), [])


if __name__ == "__main__":
    unittest.main(verbosity=2)
