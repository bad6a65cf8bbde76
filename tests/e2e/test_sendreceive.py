"""Whole program under Xvfb with the bundled theme: EMAILSENDRECEIVE through
the command mailbox fetches from a POP3 server on loopback (a small one
written here with the standard library, an independent peer), stores the
mail in folder "0", deletes it from the server, and leaves the window open
with its status lines for a screenshot."""

import os
import shutil
import socket
import socketserver
import sqlite3
import sys
import threading
import time
import unittest

sys.path.insert(0, os.path.dirname(__file__))
from mirel_harness import SOURCE_DIR, Session, Xvfb, click, triplets  # noqa: E402

PASSWORD = "s3cret-pop"


class Mailbox:
    def __init__(self, messages):
        self.messages = list(messages)
        self.lock = threading.Lock()
        self.logins = 0


class Pop3Handler(socketserver.StreamRequestHandler):
    def reply(self, text):
        self.wfile.write(text.encode("latin-1") + b"\r\n")

    def handle(self):
        box = self.server.box
        deleted = set()
        user = None
        self.reply("+OK ready")
        while True:
            line = self.rfile.readline()
            if not line:
                return
            words = line.decode("latin-1").strip().split(" ")
            verb, args = words[0].upper(), words[1:]
            with box.lock:
                live = [i for i in range(len(box.messages)) if i not in deleted]
                if verb == "CAPA":
                    self.wfile.write(b"+OK\r\nUSER\r\nUIDL\r\n.\r\n")
                elif verb == "USER":
                    user = args[0] if args else ""
                    self.reply("+OK")
                elif verb == "PASS":
                    if user == "ann" and args == [PASSWORD]:
                        box.logins += 1
                        self.reply("+OK logged in")
                    else:
                        self.reply("-ERR [AUTH] wrong password")
                elif verb == "STAT":
                    size = sum(len(box.messages[i]) for i in live)
                    self.reply("+OK %d %d" % (len(live), size))
                elif verb == "LIST" and not args:
                    self.reply("+OK")
                    for i in live:
                        self.reply("%d %d" % (i + 1, len(box.messages[i])))
                    self.reply(".")
                elif verb in ("RETR", "DELE", "LIST") and args and args[0].isdigit():
                    n = int(args[0]) - 1
                    if n not in live:
                        self.reply("-ERR no such message")
                    elif verb == "DELE":
                        deleted.add(n)
                        self.reply("+OK")
                    elif verb == "LIST":
                        self.reply("+OK %d %d" % (n + 1, len(box.messages[n])))
                    else:
                        self.wfile.write(b"+OK\r\n")
                        for raw in box.messages[n].split(b"\r\n"):
                            self.wfile.write((b"." + raw if raw.startswith(b".") else raw) + b"\r\n")
                        self.wfile.write(b".\r\n")
                elif verb == "NOOP":
                    self.reply("+OK")
                elif verb == "QUIT":
                    box.messages = [m for i, m in enumerate(box.messages) if i not in deleted]
                    self.reply("+OK bye")
                    return
                else:
                    self.reply("-ERR unknown")


class Pop3Server(socketserver.ThreadingTCPServer):
    daemon_threads = True
    allow_reuse_address = True


class SendReceive(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.x = Xvfb()

    @classmethod
    def tearDownClass(cls):
        cls.x.stop()

    def setUp(self):
        self.box = Mailbox([
            b"Message-ID: <e2e-1@mirel>\r\nFrom: Bob <bob@example.org>\r\nTo: ann@example.org\r\n"
            b"Subject: Lunch on Friday\r\n\r\nShall we?\r\n",
            b"From: Carl <carl@example.org>\r\nTo: ann@example.org\r\nSubject: Minutes\r\n"
            b"MIME-Version: 1.0\r\nContent-Type: multipart/alternative; boundary=b\r\n\r\n"
            b"--b\r\nContent-Type: text/plain\r\n\r\nThe minutes.\r\n--b\r\n"
            b"Content-Type: text/html\r\n\r\n<p>The <b>minutes</b>.</p>\r\n--b--\r\n",
        ])
        self.pop = Pop3Server(("127.0.0.1", 0), Pop3Handler)
        self.pop.box = self.box
        threading.Thread(target=self.pop.serve_forever, daemon=True).start()
        self.addCleanup(self.pop.server_close)
        self.addCleanup(self.pop.shutdown)

        self.s = Session(self.x.display, theme=False)
        self.addCleanup(self.s.close)
        prog = self.s.program_dir
        shutil.copytree(os.path.join(SOURCE_DIR, "themes", "Default"),
                        os.path.join(prog, "themes", "Default"))
        skn = os.path.join(prog, "themes", "Default", "terminal.skn")
        with open(skn, "rb") as f:
            text = f.read()
        # The debug log shows what the session did (and must not show the password).
        with open(skn, "wb") as f:
            f.write(text.replace(b"Debug=False", b"Debug=True", 1))
        with open(self.s.store_file(), "w") as f:
            f.write("[Default]\r\nProgramDir=%s\r\nThemeDir=\\themes\\Default\\\r\n" % prog)

    def write_account(self):
        port = self.pop.server_address[1]
        record = "* Home|127.0.0.1:%d|ann|%s|1|0|127.0.0.1:1|ann@example.org|Ann|" % (port, PASSWORD)
        os.makedirs(os.path.join(self.s.program_dir, "Email"), exist_ok=True)
        with open(os.path.join(self.s.program_dir, "Email", "accounts.ini"), "w") as f:
            f.write("[Email]\r\n0=%s\r\n" % triplets(record))
        # The test server speaks in the clear: approved beforehand, as a script may.
        with open(os.path.join(self.s.program_dir, "Email", "servers.ini"), "w") as f:
            f.write("[127.0.0.1:%d]\r\nPlaintext=1\r\n" % port)

    def open_window(self):
        s = self.s
        s.start()
        s.wait_for_log("Screen Overview")
        # The shell's command mailbox clicks a button of the screen on show.
        s.send("EMAIL")
        s.wait_for_log("Screen Email")
        s.send("EMAILSENDRECEIVE")

    def inbox_subjects(self):
        path = os.path.join(self.s.program_dir, "Email", "0", "index.mdb")
        if not os.path.exists(path):
            return []
        db = sqlite3.connect(path)
        try:
            return sorted(bytes(r[0]).decode("cp1252") for r in
                          db.execute('SELECT Subject FROM "Index"'))
        except sqlite3.Error:
            return []
        finally:
            db.close()

    def test_fetch_store_delete_and_show(self):
        s = self.s
        self.write_account()
        self.open_window()
        deadline = time.time() + 20
        while time.time() < deadline and len(self.inbox_subjects()) < 2:
            time.sleep(0.2)
        self.assertEqual(self.inbox_subjects(), ["Lunch on Friday", "Minutes"], s.debug_log())
        deadline = time.time() + 10
        while time.time() < deadline and self.box.messages:
            time.sleep(0.2)
        self.assertEqual(self.box.messages, [], "the account deletes what it fetched")
        time.sleep(0.5)
        shot = s.screenshot("sendreceive")
        self.assertTrue(os.path.getsize(shot) > 0)
        self.assertNotIn(PASSWORD, s.debug_log())
        self.assertIsNone(s.proc.poll(), "the program is still running")
        # "OK" closes the window (placed at the centre of the 1280x800 main
        # window, its button at 424,316 in the 540x360 skin).
        click(self.x.display, 370 + 424 + 48, 220 + 316 + 15)
        time.sleep(1)
        s.screenshot("sendreceive-closed")
        self.assertEqual(s.run("--quit").returncode, 0)
        self.assertEqual(s.wait_exit(), 0)


if __name__ == "__main__":
    unittest.main()
