"""The real program with the bundled theme, driven as a screen reader would:
nothing typed is lost, every button stays inside the window at any size,
the keyboard and the wheel reach what the mouse reaches, mail reads right."""

import ctypes
import glob
import os
import re
import subprocess
import sys
import time
import unittest

sys.path.insert(0, os.path.dirname(__file__))

from mirel_a11y import ScreenReaderCase, pointer_click, run_in_private_bus, walk  # noqa: E402
from mirel_harness import BUILD_DIR, SOURCE_DIR, Xvfb, click, x_input  # noqa: E402

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


def data_files(root, pattern):
    """Files of the program's data folder, whatever the case of their names."""
    return [p for p in glob.glob(os.path.join(root, "Mirel", "**"), recursive=True)
            if re.fullmatch(pattern, p[len(root) + 7:], re.I)]


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

    def start(self, *received):
        self.s = self.session(theme_dir="Default")
        if received:
            subprocess.run([os.path.join(BUILD_DIR, "tests", "mirel_test_helper"), "store-received",
                            self.s.program_dir, *received], check=True, timeout=60)
        self.s.start()

    def test_calendar_day_kept_and_buttons_stay_inside(self):
        self.start()
        data = os.path.join(self.s.program_dir, "Mirel")
        self.screen("CALENDAR", "MONTHJAN")
        self.set_text("txtBox 3", "Dentist")
        self.press("MONTHJAN", settle=1.0)
        with open(os.path.join(data, "calendar.ini"), "rb") as f:
            self.assertIn(b"03=068101110116105115116", f.read())

        coords = self.pyatspi.DESKTOP_COORDS
        for width, height in ((1024, 600), (1920, 1080), (1000, 640)):
            resize_window(self.s.display, width, height)
            time.sleep(1.5)
            window = self.app().getChildAtIndex(0).queryComponent()
            self.assertEqual(window.getSize(), (width, height))
            for screen, first in (("EMAIL", "EMAILSENDRECEIVE"), ("NOTES", "NOTEADD"),
                                  ("AGENDA", "AGENDAADD")):
                self.screen(screen, first)
                for node in walk(self.app()):
                    if node.getRoleName() == "push button" and self.showing(node):
                        b = node.queryComponent().getExtents(coords)
                        self.assertTrue(window.contains(b.x, b.y, coords) and window.contains(
                            b.x + b.width - 1, b.y + b.height - 1, coords), node.name)
            self.s.screenshot("everyday-%dx%d" % (width, height))
        self.press("QUIT")
        self.assertEqual(self.s.wait_exit(), 0)

    # Catches: typing dropped on leaving a screen, or kept when the answer is
    # No; a failed save that leaves the screen anyway; skin buttons out of
    # reach of Tab and Enter; agenda times that take neither digits nor the
    # wheel; a UTF-8 body shown as Latin-1; an attachment named only in its
    # Content-Disposition shown without a name.
    def test_typing_kept_keyboard_and_received_mail(self):
        self.start(os.path.join(SOURCE_DIR, "tests", "data", "mail", "utf8-named-parts.eml"))
        root = self.s.program_dir
        for answer, notes in (("No", 0), ("Yes", 1)):
            self.screen("NOTES", "NOTEADD")
            self.set_text("txtBox 1", "Milk " + answer)
            self.press("TODO")
            self.press(answer)
            self.find("TODOADD", "push button", shown=True)
            self.assertEqual(len(data_files(root, r"notes/.*")), notes)

        self.screen("NOTES", "NOTEADD")
        self.set_text("txtBox 1", "Bread")
        pointer_click(self.s.display, self.find("txtBox 1", shown=True))
        save = self.find("NOTESAVE", "push button", shown=True)
        for _ in range(40):
            if save.getState().contains(self.pyatspi.STATE_FOCUSED):
                break
            x_input(self.s.display, ["Tab"])
        else:
            self.fail("Tab never reached the save button")
        x_input(self.s.display, ["Return"])
        self.assertEqual(len(data_files(root, r"notes/.*")), 2)

        # A save that fails (files made folders) after it put "---" into the
        # emptied body: the screen and the typing stay.
        pointer_click(self.s.display, self.find("Bread", "list item", shown=True))
        self.set_text("txtMulti 1", "")
        self.set_text("txtBox 1", "Rye bread")
        for path in data_files(root, r"notes/.*"):
            os.remove(path)
            os.mkdir(path)
        self.press("TODO")
        self.press("Yes")
        self.press("OK")  # it says why
        self.assertEqual(self.find("txtBox 1", shown=True).queryText().getText(0, -1), "Rye bread")
        self.press("TODO")
        self.press("No")
        self.find("TODOADD", "push button", shown=True)
        time.sleep(1.5)

        self.screen("AGENDA", "AGENDAADD")
        for button, keys, wheel in (("STARTHOURUP", ["0", "7"], 0), ("STARTMINUP", ["3", "0"], 2)):
            b = self.find(button, shown=True).queryComponent().getExtents(self.pyatspi.DESKTOP_COORDS)
            click(self.s.display, b.x - 24, b.y + 15)  # the time label beside the arrows
            x_input(self.s.display, keys, wheel)
        self.s.screenshot("everyday-agenda-typed")
        self.press("AGENDASAVE", settle=1.0)
        with open(data_files(root, r"agenda\.ini")[0], "rb") as f:
            codes = re.search(rb"1=(\d+)", f.read()).group(1)  # three digits a character
        item = bytes(int(codes[i:i + 3]) for i in range(0, len(codes), 3))
        self.assertRegex(item, rb"^\d{8}0732\x01\d{8}0832\x01")

        self.screen("EMAIL", "EMAILSENDRECEIVE")
        table = self.find("MLmessages", shown=True)
        row = next(n for n in walk(table) if n is not table and n.name.startswith("Trip"))
        table.queryTable().addRowSelection(table.queryTable().getRowAtIndex(row.getIndexInParent()))
        self.find("\u20ac rate.pdf", shown=True)
        view = self.find("rtfEmail").queryText()
        self.assertIn("Caf\u00e9 \u20ac5", view.getText(0, view.characterCount))
        self.s.screenshot("everyday-mail-utf8")


if __name__ == "__main__":
    unittest.main(verbosity=2)
