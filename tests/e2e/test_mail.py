"""Mail in the real program under Xvfb with the bundled theme, driven
through the accessibility layer as a screen reader's user would, against
the test dovecot and an SMTP sink whose messages Python's email package
reads back: writing (a new message, a reply, a forward) and filing (folders
made, messages moved and deleted, an attachment saved, a shown folder
renamed and deleted)."""

import os
import re
import time
from email.message import EmailMessage

from mirel_a11y import ScreenReaderCase, main, walk
from mirel_harness import MailServers, until

PDF = bytes(range(256)) * 40
PNG = b"\x89PNG\r\n\x1a\n" + bytes(300)
PAYLOAD = bytes((i * 37 + i // 251) % 256 for i in range(30000))


def message(folder, subject, sender="ann@example.org", body=None, attachments=()):
    """A message file as another mail program writes it, attachments given
    as (file name, MIME type, bytes); returns its path."""
    m = EmailMessage()
    m["From"], m["To"], m["Subject"] = sender, "ann@example.org", subject
    m["Date"] = "Sun, 22 Nov 2026 10:00:00 +0100"
    m["Message-ID"] = "<%s@example.org>" % subject.replace(" ", ".")
    m.set_content(body or "Body of %s\n" % subject)
    for name, kind, data in attachments:
        m.add_attachment(data, *kind.split("/"), filename=name)
    path = os.path.join(folder, subject + ".eml")
    with open(path, "wb") as out:
        out.write(bytes(m))
    return path


def files_under(folder):
    """Every file below folder with its size and change time."""
    out = {}
    for top, _, names in os.walk(folder):
        for n in names:
            st = os.stat(os.path.join(top, n))
            out[os.path.join(top, n)] = (st.st_size, st.st_mtime_ns)
    return out


class Mail(ScreenReaderCase):
    def start(self, *messages, before_start=lambda s: None):
        """The program on its e-mail screen, the messages fetched from the
        server; before_start prepares the program folder."""
        s = self.session()
        s.bundled_theme(debug=False)
        self.servers = MailServers(s, [message(s.tmp, *m) for m in messages])
        self.addCleanup(self.servers.close)
        before_start(s)
        s.start()
        s.send("EMAIL")
        self.table = self.find("MLmessages", shown=True)
        self.find("Folder: Inbox", shown=True)
        self.send_receive()
        return s

    def count(self, folder):
        rows = self.s.index(folder)
        return None if rows is None else len(rows)

    def choose_in(self, top, row):
        self.select(self.find("Folders", "list", under=top), row)

    def answer(self, prompt, text):
        self.set_text(prompt, text, under=prompt, role=("text", "entry"))
        self.press("OK", under=prompt)

    def open_folder(self, name):
        self.click_node(self.find(role="combo box", shown=True))
        self.click_node(self.find(name, "list item", shown=True))
        self.find("Folder: " + name, shown=True)

    # Catches: a folder made, moved into or deleted in the dialogs but not in
    # the store, a delete in "Deleted" that is not final, an attachment saved
    # under the name a stranger chose or anywhere but where the user said, a
    # shown folder left on screen after its rename or delete.
    def test_file_move_delete_and_save(self):
        def home_and_files(s):
            s.env["HOME"] = os.path.join(s.tmp, "home")  # where the save dialog starts
            os.makedirs(s.env["HOME"])
            self.before = files_under(s.tmp)
        s = self.start(("Alpha",), ("Beta", "ann@example.org", None,
                                    [("../report.bin", "application/octet-stream", PAYLOAD)]),
                       ("Gamma",), before_start=home_and_files)
        table = self.table
        until(lambda: self.count("0") == 3)

        s.send("EMAILCONFIG")
        self.press("EMAILCONFIGNEW", under="Mail folders")
        self.answer("Enter Name for new Folder", "Archive")
        until(lambda: self.count("Archive") == 0)
        s.screenshot("dialog-emailconfig-folders")
        self.press("OK", under="Mail folders")

        self.select(table, "Alpha", "Beta")
        s.send("EMAILMOVE")
        move = self.window("Move to folder")
        self.choose_in(move, "Archive")
        s.screenshot("dialog-emailmove")
        self.press("OK", under=move)
        until(lambda: self.count("Archive") == 2 and self.count("0") == 1)

        self.select(table, "Gamma")
        s.send("EMAILDELETE")
        self.press("Yes", under="TORVEX Terminal")
        until(lambda: self.count("0") == 0 and self.count("3") == 1)

        # The chooser reaches every folder; in "Deleted" a delete is final.
        self.open_folder("Deleted")
        self.select(table, "Gamma")
        s.send("EMAILDELETE")
        self.press("Yes", under="TORVEX Terminal")
        until(lambda: self.count("3") == 0)

        self.open_folder("Archive")
        self.assertEqual(self.count("Archive"), 2)
        self.select(table, "Beta")
        self.click_node(self.find("../report.bi", "list item", under=self.find("lvAttachments")), 2)
        dialog = self.window("Save attachment")
        name = next(n for n in walk(dialog) if n.getRoleName() == "text" and
                    n.queryText().getText(0, -1) == "report.bin")  # the part's name, made safe
        name.queryEditableText().setTextContents("saved.bin")
        self.press("Save", under=dialog)
        saved = os.path.join(s.env["HOME"], "saved.bin")
        until(lambda: os.path.exists(saved) and os.path.getsize(saved) == len(PAYLOAD))
        with open(saved, "rb") as f:
            self.assertEqual(f.read(), PAYLOAD)

        # Renamed and deleted while it is shown: the screen follows, then
        # falls back to the inbox.
        s.send("EMAILCONFIG")
        config = self.window("Mail folders")
        self.choose_in(config, "Archive")
        self.press("EMAILCONFIGRENAME", under=config)
        self.answer("Enter Name for new Folder", "Old mail")
        self.find("Folder: Old mail")
        self.choose_in(config, "Old mail")
        self.press("EMAILCONFIGDELETE", under=config)
        self.press("Yes", under="TORVEX Terminal")
        self.find("Folder: Inbox")
        self.assertFalse(os.path.exists(os.path.join(s.program_dir, "Email", "Old mail")))
        self.press("OK", under=config)
        time.sleep(0.5)
        s.screenshot("email-folder")
        after = files_under(s.tmp)
        root, config = os.path.join(s.program_dir, "Email"), os.path.join(s.tmp, "config")
        self.assertEqual(sorted(p for p in after if after[p] != self.before.get(p) and
                                not p.startswith((root, config, self.servers.folder))),
                         [saved, os.path.join(s.program_dir, "Mirel", "directories.ini")])

    def compose(self, command, shot):
        self.s.send(command)
        self.find("DHTMLEdit1", shown=True, timeout=15)
        time.sleep(0.5)
        self.s.screenshot(shot)

    # Catches: recipients lost on the way to the server or Bcc shown in the
    # headers, formatting or a file lost from a new message, a reply without
    # the quoted original, a forward without the original's attachments or
    # leaving its scratch files behind.
    def test_new_reply_forward_arrive_intact(self):
        def book_and_file(s):
            book = os.path.join(s.program_dir, "Mirel", "Addressbook")
            os.makedirs(book)
            for name, address in (("Marta L", "marta@example.org"),
                                  ("Jonas W", "jonas@example.net")):
                with open(os.path.join(book, address), "w", newline="\r\n") as f:
                    f.write(name + "\n" * 14 + address + "\n")
            with open(os.path.join(s.tmp, "notes.bin"), "wb") as f:
                f.write(PDF[::-1])
        s = self.start(("Quarterly figures", "Bob <bob@example.org>", "Here are the figures.\n",
                        [("figures.pdf", "application/pdf", PDF), ("chart.png", "image/png", PNG)]),
                       before_start=book_and_file)
        self.select(self.table, "Quarterly figures")
        time.sleep(1.5)

        # A new message: To from the picker, bold text from the toolbar, a
        # file added through the file dialog.
        self.compose("EMAILNEW", "compose-new")
        self.press("EMAILTO")
        picker = self.find("lstAddressbook", shown=True).queryTable()
        picker.addRowSelection(0)
        picker.addRowSelection(1)
        self.press("OK", under="Address book")
        self.set_text("txtCC", "cc@example.net")
        self.find("cmdBut16", shown=True).queryAction().doAction(0)
        self.set_text("File name:", os.path.join(s.tmp, "notes.bin"), under="Add attachment",
                      role="text")
        self.press("Open", under="Add attachment")
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
        self.send_receive()

        # Every recipient reaches the server, Bcc in the envelope only; the
        # bold survives as a tag of its own, the file byte for byte.
        (to_new, new), (to_reply, reply), (to_fwd, fwd) = self.servers.received(3)
        self.assertEqual(to_new, ["jonas@example.net", "marta@example.org", "cc@example.net",
                                  "hidden@example.net"])
        self.assertEqual((new["From"], new["To"], new["Cc"], new["Bcc"], new["Subject"]),
                         ("Ann Example <ann@example.org>",
                          "Jonas W <jonas@example.net>, Marta L <marta@example.org>",
                          "cc@example.net", None, "Grüße"))
        self.assertEqual([(a.get_filename(), a.get_content()) for a in new.iter_attachments()],
                         [("notes.bin", PDF[::-1])])
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
    main(__file__)
