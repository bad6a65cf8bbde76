"""Mail from strangers through the whole program under Xvfb: each hostile
message is stored as received mail, its row opened and its attachment icons
hovered, and a mail link in it followed. The program must survive every one
and open no file a message names (a folder of bait files is watched)."""

import ctypes
import os
import subprocess
import threading
import time

from mirel_a11y import ScreenReaderCase, main, walk
from mirel_harness import BUILD_DIR, SOURCE_DIR, click, until, x_input

CORPUS = os.path.join(SOURCE_DIR, "tests", "data", "mail", "hostile")


class Hostile(ScreenReaderCase):
    # Catches: a view that reads /dev/zero or a pipe a message names (abort,
    # hang), and mail links handed on with the files they ask to attach.
    # (Tags by the megabyte and a BinHex flood are the page and BinHex
    # length tests'.)
    def test_every_hostile_message_opens_and_reads_no_file(self):
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
        messages = [os.path.join(s.tmp, name) for name in os.listdir(CORPUS)]
        for path in messages:
            with open(os.path.join(CORPUS, os.path.basename(path))) as f, open(path, "w") as out:
                out.write(f.read().replace("@DIR@", bait))
        subprocess.run([os.path.join(BUILD_DIR, "tests", "mirel_test_helper"), "store-received",
                        s.program_dir, *messages], check=True, timeout=120)

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
        rows = table.queryTable()
        self.assertEqual(rows.nRows, len(messages))
        for r in range(rows.nRows):
            for other in range(rows.nRows):
                rows.removeRowSelection(other)
            rows.addRowSelection(r)
            time.sleep(1.0)
            icons = self.find("lvAttachments")
            for icon in [n for n in walk(icons) if n is not icons and self.showing(n)]:
                box = icon.queryComponent().getExtents(self.pyatspi.DESKTOP_COORDS)
                x_input(s.display, move=(box.x + box.width // 2, box.y + box.height // 2))
                time.sleep(1.5)  # the tool tip shows
            self.assertIsNone(s.proc.poll(), "the program ended")

        self.select(table, "a link that asks for a file")
        time.sleep(1.0)
        view = self.find("wbEmail", shown=True).queryComponent().getExtents(
            self.pyatspi.DESKTOP_COORDS)
        click(s.display, view.x + 60, view.y + 14)

        until(lambda: os.path.exists(opened))
        with open(opened) as f:
            self.assertEqual(f.read().strip(), "mailto:ann@example.org?subject=Hi&body=see")
        with self.assertRaises(BlockingIOError, msg="a file a message names was opened"):
            os.read(watch, 4096)
        self.press("QUIT")
        self.assertEqual(s.wait_exit(), 0)


if __name__ == "__main__":
    main(__file__)
