"""The organiser in the real program with the bundled theme, driven as a
screen reader's user would, by keyboard and pointer, and printing."""

import glob
import os
import re
import shutil
import subprocess
import time

from mirel_a11y import ScreenReaderCase, main, walk
from mirel_harness import BUILD_DIR, MIREL_BIN, SOURCE_DIR, click, read, until, x_input, xdotool

SCREENS = (("EMAIL", "EMAILSENDRECEIVE"), ("NOTES", "NOTEADD"), ("LOGBOOK", "LOGADD"),
           ("TODO", "TODOADD"), ("ADDRESS", "ADDRESSADD"), ("AGENDA", "AGENDAADD"),
           ("CALENDAR", "MONTHJAN"))


def data_files(root, pattern):
    """Files of the program's data folder, whatever the case of their names."""
    return [p for p in glob.glob(os.path.join(root, "Mirel", "**"), recursive=True)
            if re.fullmatch(pattern, p[len(root) + 7:], re.I)]


class Everyday(ScreenReaderCase):
    SCREEN = "1920x1080x24"  # room for the largest size checked

    # Catches: a screen command through the mailbox that reaches no screen,
    # skin buttons placed for one window size only, pushed out of a smaller or
    # larger window; a --send that does not fail when no program runs, a
    # second start that does not hand over, an exit request not honoured.
    # (What the mailboxes hold and which commands --send takes are the main
    # window's and the command line's own tests'.)
    def test_every_screen_at_any_size_then_quit(self):
        s = self.session()
        self.assertEqual(s.run("--send", "NOTES").returncode, 1, "nobody to send to yet")
        s.start()
        coords = self.pyatspi.DESKTOP_COORDS
        for width, height in ((1024, 600), (1920, 1080), (1000, 640)):
            xdotool(s.display, "search", "--name", "^TORVEX Terminal - Mirel$", "windowsize",
                    width, height)
            time.sleep(1.5)
            window = self.app().getChildAtIndex(0).queryComponent()
            self.assertEqual(window.getSize(), (width, height))
            for command, first in SCREENS:
                s.send(command)
                self.find(first, "push button", shown=True, timeout=20)
                time.sleep(1.5)  # the theme builds a screen up control by control
                for node in walk(self.app()):
                    if node.getRoleName() == "push button" and self.showing(node):
                        b = node.queryComponent().getExtents(coords)
                        self.assertTrue(window.contains(b.x, b.y, coords) and window.contains(
                            b.x + b.width - 1, b.y + b.height - 1, coords), node.name)

        # A later start hands over to this one and ends on its own.
        second = s.run(timeout=30)
        self.assertEqual(second.returncode, 0)
        self.assertNotIn(b"Ready", second.stdout)
        self.assertIsNone(s.proc.poll())
        self.assertEqual(s.run("--quit").returncode, 0)
        self.assertEqual(s.wait_exit(), 0)

    # Catches: an exit request while the window still builds up that waits
    # for the end of start-up, or is lost.
    def test_exit_requested_during_start_up(self):
        s = self.session()
        # A slow animation keeps start-up busy long enough for the request.
        s.bundled_theme((b"AnimDelay=6\n", b"AnimDelay=400\n"))
        s.proc = proc = subprocess.Popen([MIREL_BIN], env=s.env, stdout=subprocess.PIPE,
                                         stderr=subprocess.DEVNULL)
        time.sleep(1.5)
        self.assertIsNone(proc.poll(), "still building up")
        self.assertEqual(s.run("--quit").returncode, 0)
        self.assertEqual(s.wait_exit(), 0)
        self.assertNotIn(b"Ready", proc.stdout.read())

    def answer_prompt(self, prompt, path):
        box = self.find(prompt, "text", shown=True)
        self.assertTrue(box.queryText().getText(0, -1).endswith("/torvex-addressbook.csv"))
        time.sleep(0.5)
        self.s.screenshot("dialog-input-" + prompt.split()[0].lower())
        box.queryEditableText().setTextContents(path)
        self.press("OK", settle=0.5)

    # Catches: an item screen whose save writes no file or lists no row, a
    # contact box saved to the wrong line or not in the file's code page, an
    # overview without the new task; a failed save that leaves the screen
    # anyway; skin buttons out of reach of Tab and Enter; an import or export
    # dialog that does not open or preselects nothing, a list not reloaded
    # after an import; agenda times that take neither digits nor the wheel.
    # (Answering Yes or No to "save changes?" is the organiser screen tests'.)
    def test_typing_kept_keyboard_and_address_exchange(self):
        s = self.session()
        s.start()
        root = s.program_dir
        self.screen("NOTES", "NOTEADD")
        self.set_text("txtBox 1", "Groceries")
        self.set_text("txtMulti 1", "milk\nbread")
        self.click_node(self.find("txtBox 1", shown=True))
        save = self.find("NOTESAVE", "push button", shown=True)
        for _ in range(40):
            if save.getState().contains(self.pyatspi.STATE_FOCUSED):
                break
            x_input(s.display, ["Tab"])
        else:
            self.fail("Tab never reached the save button")
        x_input(s.display, ["Return"])
        self.assertEqual([read(p) for p in data_files(root, r"notes/.*")],
                         [b"Groceries\r\nmilk\r\nbread\r\n"])
        self.assertEqual(self.rows(), ["Groceries"])

        # A save that fails (files made folders) after it put "---" into the
        # emptied body: the screen and the typing stay.
        self.click_node(self.find("Groceries", "list item", shown=True))
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

        for screen, prefix, folder, boxes, row in (
                ("TODO", "TODO", "Todo", {"txtMulti 1": "Call the plumber"},
                 "TODO  Call the plumber"),
                ("LOGBOOK", "LOG", "Logbook", {"txtMulti 1": "Met the new neighbours"},
                 "   Met the new neighbours"),
                ("ADDRESS", "ADDRESS", "Addressbook", {"txtBox 1": "Jos\u00e9 Garc\u00eda",
                 "txtBox 13": "thirteen", "txtMulti 1": "line one\nline two"}, None)):
            self.screen(screen, prefix + "ADD")
            self.press(prefix + "ADD", settle=0.4)
            for box, text in boxes.items():
                self.set_text(box, text)
            self.press(prefix + "SAVE", settle=0.4)
            self.assertEqual(len(data_files(root, folder + r"/[^/]*\.\w+")), 1, folder)
            if row:
                self.assertIn(row, self.rows())
        lines = read(data_files(root, r"addressbook/0\.dat")[0]).split(b"\r\n")
        # Seventeen lines, box 13 the file's line 15; the field order and the
        # notes' encoding are the address book's own tests'.
        self.assertEqual((lines[0], lines[14], len(lines)), (b"Jos\xe9 Garc\xeda", b"thirteen", 18))

        # A file as another address book writes it, one name beyond the code page.
        source = os.path.join(SOURCE_DIR, "tests", "data", "addressbook", "utf8-bom-comma.csv")
        target = os.path.join(s.tmp, "export.csv")
        self.press("ADDRESSIMPORT", settle=0.5)
        self.answer_prompt("Import addresses from this file:", source)
        self.find(None, "combo box", shown=True)
        time.sleep(1)
        s.screenshot("dialog-addressimport")
        self.press("OK", settle=1.0)
        self.press("OK", settle=1.0)  # the note that the empty record was left out
        # Read back from the book's files: the code page kept.
        names = ["?ukasz Nowak", "Jos\u00e9 Garc\u00eda", "Müller, Jörg"]
        self.assertEqual(self.rows(), names)
        self.press("ADDRESSEXPORT", settle=0.5)
        self.answer_prompt("Export the address book to this file:", target)
        until(lambda: os.path.exists(target))
        # The book as listed, a header first; its fields are the exchange tests'.
        self.assertEqual([line.split(b";")[0] for line in read(target).split(b"\r\n")],
                         [b"Name"] + [n.encode("cp1252") for n in names] + [b""])

        self.press("OVERVIEW", settle=2)
        self.assertIn("  Call the plumber", self.rows("Overview"))

        self.screen("AGENDA", "AGENDAADD")
        for button, keys, wheel in (("STARTHOURUP", ["0", "7"], 0), ("STARTMINUP", ["3", "0"], 2)):
            arrows = self.find(button, shown=True).queryComponent()
            b = arrows.getExtents(self.pyatspi.DESKTOP_COORDS)
            click(s.display, b.x - 24, b.y + 15)  # the time label beside the arrows
            x_input(s.display, keys, wheel)
        self.press("AGENDASAVE", settle=1.0)
        codes = re.search(rb"1=(\d+)", read(data_files(root, r"agenda\.ini")[0])).group(1)
        item = bytes(int(codes[i:i + 3]) for i in range(0, len(codes), 3))
        self.assertRegex(item, rb"^\d{8}0732\x01\d{8}0832\x01")

    def job(self, s, command, answer=None):
        """Runs one print command; returns its pages' text and its pictures as (width, height)."""
        if os.path.exists(self.pdf):
            os.remove(self.pdf)
        time.sleep(2)  # the theme builds a screen up control by control
        s.send(command)
        if answer:
            self.press(answer)
        # The file is whole once poppler reads it (its index comes last).
        until(lambda: subprocess.run(["pdfinfo", self.pdf], capture_output=True).returncode == 0,
              60, command)
        shutil.copy(self.pdf, os.path.join(BUILD_DIR, "screenshots", "print-%s.pdf" % command))
        text = subprocess.run(["pdftotext", "-layout", self.pdf, "-"], capture_output=True,
                              check=True).stdout.decode()
        listing = subprocess.run(["pdfimages", "-list", self.pdf], capture_output=True,
                                 check=True).stdout.decode().splitlines()[2:]
        return text.split("\f")[:-1], [tuple(map(int, l.split()[3:5])) for l in listing]

    # Every print command written to a PDF through MIREL_PRINT_PDF and read
    # back with poppler's tools. Catches: pages without the head, lines lost
    # at page breaks, a job per month instead of one, a sheet without its
    # picture, a message page without the rule, and a command that never
    # reaches the printer.
    def test_every_print_command(self):
        s = self.session()
        self.pdf = s.env["MIREL_PRINT_PDF"] = os.path.join(s.tmp, "out.pdf")
        data = os.path.join(SOURCE_DIR, "tests", "data", "print")
        # 100 items of 2099, a day header each: 200 rows; a note of 300 characters on 17 February.
        shutil.copytree(data, os.path.join(s.program_dir, "Mirel"))
        s.store_received(os.path.join(data, "long.eml"))
        s.start()
        os.makedirs(os.path.join(BUILD_DIR, "screenshots"), exist_ok=True)

        s.send("AGENDA")
        # Lines per page and the item record are the agenda print tests'.
        pages, _ = self.job(s, "AGENDAPRINTLIST")
        self.assertTrue(all(re.search(r"TORVEX TERMINAL +Agenda", p) for p in pages))
        self.assertEqual(re.findall(r"Item (\d+)", "".join(pages)),
                         ["%03d" % i for i in range(100)])

        self.find("txtMulti 1", shown=True).queryEditableText().setTextContents("word " * 30000)
        pages, _ = self.job(s, "AGENDAPRINTITEM")
        self.assertGreater(len(pages), 20)

        s.send("CALENDAR")
        # The typed text is not kept: "Save changes?" answered No.
        self.press("No")
        pages, pictures = self.job(s, "MONTHALL")
        self.assertEqual((len(pages), len(pictures)), (12, 12))
        self.assertRegex(pages[1], r"TORVEX TERMINAL +FEBRUARY")
        self.assertRegex(pages[1], r"(?m)^ *1 .*17 Birthday x+$")

        s.send("EMAIL")
        pages, _ = self.job(s, "EMAILPRINT", answer="Yes")
        self.assertEqual([p.split() for p in pages], [["TORVEX", "TERMINAL"]])  # nothing shown
        self.select(self.find("MLmessages"), "Long")
        time.sleep(1)
        pages, pictures = self.job(s, "EMAILPRINT", answer="Yes")
        self.assertGreater(len(pages), 1)
        self.assertRegex(pages[0], r"TORVEX TERMINAL\s+From:\s+ann@example.org\s+To:")
        self.assertNotIn("TORVEX", "".join(pages[1:]))
        self.assertRegex(pages[-1], r"Line 149 of the letter\s+Attachments:\s+a.bin")
        self.assertEqual(pictures, [(3000, 1)])



if __name__ == "__main__":
    main(__file__)
