"""Every print command of the real program written to a PDF through
MIREL_PRINT_PDF and read back with poppler's tools: the text of each page
and the pictures embedded in it."""

import os
import re
import shutil
import subprocess
import time

from mirel_a11y import ScreenReaderCase, main
from mirel_harness import BUILD_DIR, SOURCE_DIR, until


class Printing(ScreenReaderCase):
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

    # Catches: pages without the head, lines lost at page breaks, a job per
    # month instead of one, a sheet without its picture, a message page
    # without the rule, and a command that never reaches the printer.
    def test_every_print_command(self):
        s = self.session()
        self.pdf = s.env["MIREL_PRINT_PDF"] = os.path.join(s.tmp, "out.pdf")
        data = os.path.join(SOURCE_DIR, "tests", "data", "print")
        # 100 items of 2099, a day header each: 200 rows; a note of 300 characters on 17 February.
        shutil.copytree(data, os.path.join(s.program_dir, "Mirel"))
        subprocess.run([os.path.join(BUILD_DIR, "tests", "mirel_test_helper"), "store-received",
                        s.program_dir, os.path.join(data, "long.eml")], check=True, timeout=60)
        s.start()
        os.makedirs(os.path.join(BUILD_DIR, "screenshots"), exist_ok=True)

        s.send("AGENDA")
        pages, _ = self.job(s, "AGENDAPRINTLIST")
        self.assertGreater(len(pages), 3)
        self.assertTrue(all(re.search(r"TORVEX TERMINAL +Agenda", p) for p in pages))
        self.assertEqual(re.findall(r"Item (\d+)", "".join(pages)),
                         ["%03d" % i for i in range(100)])

        self.find("txtMulti 1", shown=True).queryEditableText().setTextContents("word " * 30000)
        pages, _ = self.job(s, "AGENDAPRINTITEM")
        self.assertRegex(pages[0], r"From\.\.\.\.: \d{12}\s+To\.\.\.\.\.\.: \d{12}\s+Priority: 0")
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
