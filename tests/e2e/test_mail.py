"""Mail in the real program under Xvfb with the bundled theme, driven as a
screen reader's user would: received mail read, and new mail written and
filed against the test dovecot and an SMTP sink."""

import ctypes
import os
import shutil
import subprocess
import threading
import time
from email.message import EmailMessage

from mirel_a11y import ScreenReaderCase, main, walk
from mirel_harness import SOURCE_DIR, MailServers, click, read, until

DATA = os.path.join(SOURCE_DIR, "tests", "data", "mail")
HOSTILE = os.path.join(DATA, "hostile")
CORPUS = "/usr/lib/python3.11/test/test_email/data/"  # Python's own mail tests' messages

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
    paths = [os.path.join(top, n) for top, _, names in os.walk(folder) for n in names]
    return {p: (os.stat(p).st_size, os.stat(p).st_mtime_ns) for p in paths}


class Mail(ScreenReaderCase):
    def start(self, *messages, before_start=lambda s: None):
        """The program on its e-mail screen, the messages fetched from the
        server; before_start prepares the program folder."""
        s = self.session()
        s.bundled_theme()
        self.servers = MailServers(s, [message(s.tmp, *m) for m in messages])
        self.addCleanup(self.servers.close)
        before_start(s)
        s.start()
        s.send("EMAIL")
        self.table = self.find("MLmessages", shown=True)
        self.find("Folder: Inbox", shown=True)
        self.send_receive()
        return s

    def answer(self, prompt, text):
        self.set_text(prompt, text, under=prompt, role=("text", "entry"))
        self.press("OK", under=prompt)

    def open_folder(self, name):
        self.click_node(self.find(role="combo box", shown=True))
        self.click_node(self.find(name, "list item", shown=True))
        self.find("Folder: " + name, shown=True)

    # Catches, with real corpus and strangers' mail: a view that crashes on
    # any of them, reads /dev/zero or a pipe a message names (abort, hang) or
    # opens any file it names, a mail link handed on with the files it asks to
    # attach. (Decoding, charsets, read marks, attachment names and the source
    # view are the list line, view, corpus and e-mail screen tests'; tags by
    # the megabyte and a BinHex flood the page and BinHex length tests'.)
    def test_received_mail_reads_right_and_harms_nothing(self):
        s = self.session()
        bait, bin_dir = os.path.join(s.tmp, "bait"), os.path.join(s.tmp, "bin")
        os.makedirs(bait)
        os.makedirs(bin_dir)
        opened = os.path.join(s.tmp, "opened")
        with open(os.path.join(bin_dir, "xdg-open"), "w") as f:
            f.write('#!/bin/sh\necho "$@" >> %s\n' % opened)
        os.chmod(os.path.join(bin_dir, "xdg-open"), 0o755)
        s.env["PATH"] = bin_dir + os.pathsep + s.env["PATH"]
        subprocess.run(["convert", "-size", "4x4", "xc:red", os.path.join(bait, "pic.png")],
                       check=True)
        fifo = os.path.join(bait, "fifo")
        os.mkfifo(fifo)
        hostile = [os.path.join(s.tmp, name) for name in os.listdir(HOSTILE)]
        for path in hostile:
            with open(os.path.join(HOSTILE, os.path.basename(path))) as f, open(path, "w") as out:
                out.write(f.read().replace("@DIR@", bait))
        s.store_received(*[os.path.join(DATA, n) for n in ("utf8-html-view.eml",
                                                            "utf8-named-parts.eml")],
                         *[CORPUS + n for n in ("msg_01.txt", "msg_07.txt", "msg_15.txt",
                                                "msg_22.txt")], *hostile)

        libc = ctypes.CDLL(None, use_errno=True)
        watch = libc.inotify_init1(os.O_NONBLOCK)
        self.assertGreaterEqual(libc.inotify_add_watch(watch, bait.encode(), 0x21), 0)
        # A reader of the pipe gets an end instead of waiting for ever.
        writer = threading.Thread(target=lambda: os.close(os.open(fifo, os.O_WRONLY)), daemon=True)
        writer.start()
        self.addCleanup(lambda: os.close(os.open(fifo, os.O_RDONLY | os.O_NONBLOCK)))
        s.start()
        self.screen("EMAIL", "EMAILSENDRECEIVE")
        table = self.find("MLmessages", shown=True)
        # Decoding and the sender's name in other rows are the list line tests'.
        self.find("Grüße aus Köln", under=table)
        time.sleep(0.5)
        s.screenshot("mailview-list")

        # Every message opened, its attachment icons hovered till their tool
        # tips show, then a mail link followed.
        rows = table.queryTable()
        self.assertEqual(rows.nRows, 6 + len(hostile))
        for r in range(rows.nRows):
            for other in range(rows.nRows):
                rows.removeRowSelection(other)
            rows.addRowSelection(r)
            time.sleep(1.0)
            icons = self.find("lvAttachments")
            for icon in [n for n in walk(icons) if n is not icons and self.showing(n)]:
                self.click_node(icon, clicks=0)  # the pointer rests until the tool tip shows
                time.sleep(1.0)
            self.assertIsNone(s.proc.poll(), "the program ended")
        self.select(table, "a link that asks for a file")
        time.sleep(1.0)
        view = self.find("wbEmail", shown=True).queryComponent().getExtents(
            self.pyatspi.DESKTOP_COORDS)
        click(s.display, view.x + 60, view.y + 14)
        until(lambda: os.path.exists(opened))
        self.assertEqual(read(opened).strip(), b"mailto:ann@example.org?subject=Hi&body=see")
        with self.assertRaises(BlockingIOError, msg="a file a message names was opened"):
            os.read(watch, 4096)

        self.press("QUIT")
        self.assertEqual(s.wait_exit(), 0)

    # Catches: a folder made, moved into or deleted in the dialogs but not in
    # the store, an attachment saved under the name a stranger chose or
    # anywhere but where the user said, a shown folder left on screen after
    # its rename or delete. (Deleting messages is the folder manager's and the
    # e-mail screen's tests'.)
    def test_file_move_delete_and_save(self):
        def home_and_files(s):
            s.env["HOME"] = os.path.join(s.tmp, "home")  # where the save dialog starts
            os.makedirs(s.env["HOME"])
            self.before = files_under(s.tmp)
        s = self.start(("Alpha",), ("Beta", "ann@example.org", None,
                                    [("../report.bin", "application/octet-stream", PAYLOAD)]),
                       before_start=home_and_files)
        table = self.table
        until(lambda: s.count("0") == 2)

        s.send("EMAILCONFIG")
        self.press("EMAILCONFIGNEW", under="Mail folders")
        self.answer("Enter Name for new Folder", "Archive")
        until(lambda: s.count("Archive") == 0)
        self.press("OK", under="Mail folders")

        self.select(table, "Alpha", "Beta")
        s.send("EMAILMOVE")
        move = self.window("Move to folder")
        self.select(self.find("Folders", "list", under=move), "Archive")
        s.screenshot("dialog-emailmove")
        self.press("OK", under=move)
        until(lambda: s.count("Archive") == 2 and s.count("0") == 0)

        self.open_folder("Archive")  # through the chooser
        self.select(table, "Beta")
        self.click_node(self.find("../report.bi", "list item", under=self.find("lvAttachments")), 2)
        # The name proposed (the stranger's, made safe) is the e-mail screen tests'.
        self.set_text("File name:", "saved.bin", under="Save attachment", role="text")
        self.press("Save", under="Save attachment")
        saved = os.path.join(s.env["HOME"], "saved.bin")
        until(lambda: os.path.exists(saved) and os.path.getsize(saved) == len(PAYLOAD))
        self.assertEqual(read(saved), PAYLOAD)

        # Renamed and deleted while it is shown: the screen follows, then
        # falls back to the inbox.
        s.send("EMAILCONFIG")
        config = self.window("Mail folders")
        self.select(self.find("Folders", "list", under=config), "Archive")
        self.press("EMAILCONFIGRENAME", under=config)
        self.answer("Enter Name for new Folder", "Old mail")
        self.find("Folder: Old mail")
        self.select(self.find("Folders", "list", under=config), "Old mail")
        self.press("EMAILCONFIGDELETE", under=config)
        self.press("Yes", under="TORVEX Terminal")
        self.find("Folder: Inbox")
        self.assertFalse(os.path.exists(os.path.join(s.program_dir, "Email", "Old mail")))
        self.press("OK", under=config)
        after = files_under(s.tmp)
        root, config = os.path.join(s.program_dir, "Email"), os.path.join(s.tmp, "config")
        self.assertEqual(sorted(p for p in after if after[p] != self.before.get(p) and
                                not p.startswith((root, config, self.servers.folder))),
                         [saved, os.path.join(s.program_dir, "Mirel", "directories.ini")])

    def compose(self, command):
        self.s.send(command)
        self.find("DHTMLEdit1", shown=True, timeout=15)
        time.sleep(0.5)

    # Catches: recipients lost on the way to the server or Bcc shown in the
    # headers, a file lost from a new message, a reply without
    # the quoted original, a forward without the original's attachments or
    # leaving its scratch files behind.
    def test_new_reply_forward_arrive_intact(self):
        def book_and_file(s):  # two contacts for the address picker, a file to attach
            shutil.copytree(os.path.join(DATA, "address-picker"),
                            os.path.join(s.program_dir, "Mirel", "Addressbook"))
            with open(os.path.join(s.tmp, "notes.bin"), "wb") as f:
                f.write(PDF[::-1])
        s = self.start(("Quarterly figures", "Bob <bob@example.org>", "Here are the figures.\n",
                        [("figures.pdf", "application/pdf", PDF), ("chart.png", "image/png", PNG)]),
                       before_start=book_and_file)
        self.select(self.table, "Quarterly figures")
        time.sleep(1.5)

        # A new message: To from the picker, a file added through the file
        # dialog. (Formats reaching the mail's tags are the compose window's tests'.)
        self.compose("EMAILNEW")
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
        self.press("OK", settle=0.5)

        for command in ("EMAILREPLY", "EMAILFORWARD"):
            self.compose(command)
            self.press("OK", settle=0.5)
        until(lambda: s.count("1") == 3)  # all three in the outbox before the run starts
        self.send_receive()

        # Every recipient reaches the server, Bcc in the envelope only; the
        # file byte for byte.
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

        self.assertEqual((to_reply, reply["Subject"], str(reply["To"])),
                         (["bob@example.org"], "Re: Quarterly figures", "Bob <bob@example.org>"))
        for part in ("plain", "html"):
            self.assertRegex(reply.get_body((part,)).get_content(),
                             r"(?s)Original message.*Here are the figures\.")

        # A forward keeps the reply's presets, the original's attachments added.
        self.assertEqual((to_fwd, fwd["Subject"]), (["bob@example.org"], "Re: Quarterly figures"))
        self.assertEqual([(a.get_filename(), a.get_content()) for a in fwd.iter_attachments()],
                         [("figures.pdf", PDF), ("chart.png", PNG)])
        self.assertEqual(os.listdir(os.path.join(s.program_dir, "EmailTemp")), [])



if __name__ == "__main__":
    main(__file__)
