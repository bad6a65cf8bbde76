"""Filing mail in the real program under Xvfb with the bundled theme, driven
through the accessibility layer as a screen reader's user would: mail
fetched from the test dovecot, a folder made in the folder manager, two
messages moved there, one deleted twice (into "Deleted", then for good), an
attachment saved through the save dialog, and the folder renamed and deleted
while it is shown. Outside the mail root only the saved file and the
program's own settings are written."""

import os
import shutil
import sqlite3
import sys
import time
import unittest
from email.message import EmailMessage

sys.path.insert(0, os.path.dirname(__file__))

from mirel_a11y import (ScreenReaderCase, pointer_click, run_in_private_bus,  # noqa: E402
                        send_receive, walk)
from mirel_harness import SOURCE_DIR, MailServers  # noqa: E402

if __name__ == "__main__":
    run_in_private_bus(__file__)

PAYLOAD = bytes((i * 37 + i // 251) % 256 for i in range(30000))


def message(path, subject, attachment=None):
    m = EmailMessage()
    m["From"] = "ann@example.org"
    m["To"] = "me@example.org"
    m["Subject"] = subject
    m["Message-ID"] = "<%s@example.org>" % subject.replace(" ", ".")
    m.set_content("Body of %s\n" % subject)
    if attachment:
        m.add_attachment(PAYLOAD, maintype="application", subtype="octet-stream",
                         filename=attachment)
    with open(path, "wb") as f:
        f.write(bytes(m))


def files_under(folder):
    """Every file below folder with its size and change time."""
    out = {}
    for top, _, names in os.walk(folder):
        for n in names:
            st = os.stat(os.path.join(top, n))
            out[os.path.join(top, n)] = (st.st_size, st.st_mtime_ns)
    return out


class MailFolders(ScreenReaderCase):
    def count(self, s, folder):
        path = os.path.join(s.program_dir, "Email", folder, "index.mdb")
        if not os.path.exists(path):
            return None
        db = sqlite3.connect(path)
        try:  # the file appears a moment before its table
            return db.execute('SELECT COUNT(*) FROM "Index"').fetchone()[0]
        except sqlite3.OperationalError:
            return None
        finally:
            db.close()

    def until(self, what, timeout=10):
        deadline = time.time() + timeout
        while time.time() < deadline:
            if what():
                return
            time.sleep(0.2)
        self.fail("never came true")

    def select_rows(self, table, texts):
        rows = table.queryTable()
        for r in range(rows.nRows):
            if rows.isRowSelected(r):
                rows.removeRowSelection(r)
        for node in list(walk(table)):
            if node is not table and node.name in texts:
                rows.addRowSelection(rows.getRowAtIndex(node.getIndexInParent()))

    def choose_in(self, top, row):
        items = self.inside(top, "Folders", "list")
        table = items.queryTable()
        for i in range(items.childCount):
            if items.getChildAtIndex(i).name == row:
                table.addRowSelection(table.getRowAtIndex(i))
                return
        self.fail("no folder row %r" % row)

    def answer(self, prompt, text):
        box = self.window(prompt)
        self.inside(box, prompt, "text", "entry").queryEditableText().setTextContents(text)
        self.press_in(box, "OK")

    def test_file_move_delete_and_save(self):
        s = self.session()
        shutil.copytree(os.path.join(SOURCE_DIR, "themes", "Default"),
                        os.path.join(s.program_dir, "themes", "Test"))
        files = []
        for subject, attachment in (("Alpha", None), ("Beta", "../report.bin"), ("Gamma", None)):
            files.append(os.path.join(s.tmp, subject + ".eml"))
            message(files[-1], subject, attachment)
        servers = MailServers(s, files)
        self.addCleanup(servers.close)
        # Where the save dialog starts.
        s.env["HOME"] = home = os.path.join(s.tmp, "home")
        os.makedirs(home)
        before = files_under(s.tmp)

        s.start()
        s.send("EMAIL")
        table = self.find("MLmessages", shown=True)
        self.find("Folder: Inbox", shown=True)
        send_receive(self)
        self.until(lambda: self.count(s, "0") == 3)

        s.send("EMAILCONFIG")
        self.press_in("Mail folders", "EMAILCONFIGNEW")
        self.answer("Enter Name for new Folder", "Archive")
        self.until(lambda: self.count(s, "Archive") == 0)
        s.screenshot("dialog-emailconfig-folders")
        self.press_in("Mail folders", "OK")

        self.select_rows(table, {"Alpha", "Beta"})
        s.send("EMAILMOVE")
        move = self.window("Move to folder")
        self.choose_in(move, "Archive")
        s.screenshot("dialog-emailmove")
        self.press_in(move, "OK")
        self.until(lambda: self.count(s, "Archive") == 2 and self.count(s, "0") == 1)

        self.select_rows(table, {"Gamma"})
        s.send("EMAILDELETE")
        self.press_in("TORVEX Terminal", "Yes")
        self.until(lambda: self.count(s, "0") == 0 and self.count(s, "3") == 1)

        # The chooser reaches every folder; in "Deleted" a delete is final.
        self.open_folder("Deleted")
        self.select_rows(table, {"Gamma"})
        s.send("EMAILDELETE")
        self.press_in("TORVEX Terminal", "Yes")
        self.until(lambda: self.count(s, "3") == 0)

        self.open_folder("Archive")
        self.assertEqual(self.count(s, "Archive"), 2)
        self.select_rows(table, {"Beta"})
        item = self.inside(self.find("lvAttachments", shown=True), "../report.bi", "list item")
        pointer_click(self.x.display, item, 2)
        dialog = self.window("Save attachment")
        name = next(n for n in walk(dialog) if n.getRoleName() == "text" and
                    n.queryText().getText(0, -1) == "report.bin")
        name.queryEditableText().setTextContents("saved.bin")
        self.press_in(dialog, "Save")
        saved = os.path.join(home, "saved.bin")
        self.until(lambda: os.path.exists(saved) and os.path.getsize(saved) == len(PAYLOAD))
        with open(saved, "rb") as f:
            self.assertEqual(f.read(), PAYLOAD)

        # Renamed and deleted while it is shown: the screen follows, then
        # falls back to the inbox.
        s.send("EMAILCONFIG")
        config = self.window("Mail folders")
        self.choose_in(config, "Archive")
        self.press_in(config, "EMAILCONFIGRENAME")
        self.answer("Enter Name for new Folder", "Old mail")
        self.find("Folder: Old mail")
        self.choose_in(config, "Old mail")
        self.press_in(config, "EMAILCONFIGDELETE")
        self.press_in("TORVEX Terminal", "Yes")
        self.find("Folder: Inbox")
        self.assertFalse(os.path.exists(os.path.join(s.program_dir, "Email", "Old mail")))
        self.press_in(config, "OK")
        time.sleep(0.5)
        s.screenshot("email-folder")
        after = files_under(s.tmp)
        root, config = os.path.join(s.program_dir, "Email"), os.path.join(s.tmp, "config")
        self.assertEqual(sorted(p for p in after if after[p] != before.get(p) and
                                not p.startswith((root, config, servers.folder))),
                         [saved, os.path.join(s.program_dir, "Mirel", "directories.ini")])

    def open_folder(self, name):
        pointer_click(self.x.display, self.find(role="combo box", shown=True))
        pointer_click(self.x.display, self.find(name, "list item", shown=True))
        self.find("Folder: " + name, shown=True)

if __name__ == "__main__":
    unittest.main(verbosity=2)
