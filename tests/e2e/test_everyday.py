"""The real program with the bundled theme, driven as a screen reader would:
a calendar day typed in is kept when the month changes, and every button
stays inside the window at any size."""

import ctypes
import os
import re
import subprocess
import sys
import time
import unittest

sys.path.insert(0, os.path.dirname(__file__))

from mirel_a11y import ScreenReaderCase, run_in_private_bus, walk  # noqa: E402
from mirel_harness import Session, Xvfb  # noqa: E402

if __name__ == "__main__":
    run_in_private_bus(__file__)


def resize_window(display, width, height):
    info = subprocess.run(["xwininfo", "-display", display, "-name", "TORVEX Terminal - Mirel"],
                          capture_output=True, text=True).stdout
    x11 = ctypes.cdll.LoadLibrary("libX11.so.6")
    x11.XOpenDisplay.restype = ctypes.c_void_p
    dpy = ctypes.c_void_p(x11.XOpenDisplay(display.encode()))
    window = int(re.search(r"Window id: (0x[0-9a-f]+)", info).group(1), 16)
    x11.XResizeWindow(dpy, ctypes.c_ulong(window), width, height)
    x11.XCloseDisplay(dpy)


class Everyday(ScreenReaderCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.x.stop()
        cls.x = Xvfb("1920x1080x24")  # room for the largest size checked

    def screen(self, command, first_button):
        self.press(command)
        self.find(first_button, "push button", shown=True, timeout=20)
        time.sleep(1.5)

    def test_calendar_day_kept_and_buttons_stay_inside(self):
        self.s = Session(self.x.display, {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
                                          "QT_ACCESSIBILITY": "1"}, theme=False, theme_dir="Default")
        self.addCleanup(self.s.close)
        self.s.start()
        data = os.path.join(self.s.program_dir, "Mirel")
        self.screen("CALENDAR", "MONTHJAN")
        self.find("txtBox 3", shown=True).queryEditableText().setTextContents("Dentist")
        self.press("MONTHJAN", settle=1.0)
        with open(os.path.join(data, "calendar.ini"), "rb") as f:
            self.assertIn(b"03=068101110116105115116", f.read())

        coords = self.pyatspi.DESKTOP_COORDS
        for width, height in ((1024, 600), (1920, 1080), (1000, 640)):
            resize_window(self.s.display, width, height)
            time.sleep(1.5)
            window = self.app().getChildAtIndex(0).queryComponent()
            self.assertEqual(window.getSize(), (width, height))
            for screen, first in (("EMAIL", "EMAILSENDRECEIVE"), ("NOTES", "NOTEADD")):
                self.screen(screen, first)
                for node in walk(self.app()):
                    if node.getRoleName() == "push button" and self.showing(node):
                        b = node.queryComponent().getExtents(coords)
                        self.assertTrue(window.contains(b.x, b.y, coords) and window.contains(
                            b.x + b.width - 1, b.y + b.height - 1, coords), node.name)
            self.s.screenshot("everyday-%dx%d" % (width, height))
        self.press("QUIT")
        self.assertEqual(self.s.wait_exit(), 0)


if __name__ == "__main__":
    unittest.main(verbosity=2)
