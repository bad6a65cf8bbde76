"""Whole program under Xvfb: start, visit every screen through the command
mailbox, photograph each, and leave through the exit mailbox."""

import os
import subprocess
import sys
import time
import unittest

sys.path.insert(0, os.path.dirname(__file__))
from mirel_harness import Session, Xvfb  # noqa: E402

SCREENS = [("NOTES", "Notes"), ("LOGBOOK", "Logbook"), ("TODO", "Todo"),
           ("ADDRESS", "Address"), ("AGENDA", "Agenda"), ("CALENDAR", "Calendar"),
           ("EMAIL", "Email")]


class Screens(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.x = Xvfb()

    @classmethod
    def tearDownClass(cls):
        cls.x.stop()

    def setUp(self):
        self.s = Session(self.x.display)
        self.addCleanup(self.s.close)

    def test_every_screen_then_quit(self):
        s = self.s
        self.assertEqual(s.run("--send", "NOTES").returncode, 1, "nobody to send to yet")
        s.start()
        self.assertEqual(s.mailbox("EXIT", "TORVEX Terminal - Mirel"), "0")
        s.wait_for_log("Screen Overview")
        s.screenshot("start")
        for command, screen in SCREENS:
            s.send(command)
            s.wait_for_log("Screen " + screen)
            time.sleep(0.3)  # let the screen paint before the photograph
            s.screenshot("screen-" + screen.lower())
        self.assertEqual(s.mailbox("Voice", "Mirel"), "")

        # A script cannot start programs through the command mailbox: --send
        # refuses what is not one of the program's own commands.
        refused = s.run("--send", '"/bin/sh" -c "pwd > opened.txt"')
        self.assertEqual(refused.returncode, 2)
        self.assertIn(b"never starts a program", refused.stderr)
        time.sleep(1)
        self.assertFalse(os.path.exists(os.path.join(s.program_dir, "opened.txt")))

        # A later start hands over to this one and ends on its own.
        second = s.run(timeout=30)
        self.assertEqual(second.returncode, 0)
        self.assertNotIn(b"Ready", second.stdout)
        self.assertIsNone(s.proc.poll())

        # The mailbox is compared exactly: "quit" names no button and stays.
        s.send("quit")
        time.sleep(1.5)
        self.assertIsNone(s.proc.poll())
        self.assertEqual(s.mailbox("Voice", "Mirel"), "quit")

        self.assertEqual(s.run("--quit").returncode, 0)
        self.assertEqual(s.wait_exit(), 0)
        self.assertIn("Shut down", s.debug_log())

    def test_exit_requested_during_start_up(self):
        s = self.s
        # The shell raises the exit flag while the window is still building up;
        # a slow animation keeps start-up busy long enough for the timer.
        skn = os.path.join(s.program_dir, "themes", "Test", "terminal.skn")
        with open(skn, "rb") as f:
            text = f.read().replace(b"Animated=False\r\nAnimDelay=0\r\nDebug",
                                    b"Animated=True\r\nAnimDelay=400\r\nDebug", 1)
        with open(skn, "wb") as f:
            f.write(text)
        proc = subprocess.Popen([os.environ.get("MIREL_BIN", "mirel")], env=s.env,
                                stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        s.proc = proc
        time.sleep(1.5)
        self.assertIsNone(proc.poll(), "still building up")
        self.assertEqual(s.run("--quit").returncode, 0)
        self.assertEqual(s.wait_exit(), 0)
        self.assertNotIn(b"Ready", proc.stdout.read())


if __name__ == "__main__":
    unittest.main(verbosity=2)
