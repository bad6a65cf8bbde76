#!/usr/bin/env python3
"""Tests of the theme tools and of the bundled theme itself.

    python3 -m unittest discover -s tools -p 'test_*.py'
"""
import importlib.util
import os
import subprocess
import tempfile
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
THEME = os.path.join(HERE, "..", "themes", "Default")

_loader = importlib.util.spec_from_file_location("skin_mockup", os.path.join(HERE, "skin-mockup.py"))
sm = importlib.util.module_from_spec(_loader)
_loader.loader.exec_module(sm)


def write(folder, name, text):
    path = os.path.join(folder, name)
    with open(path, "wb") as f:
        f.write(text.encode("cp1252"))
    return path


class PlacementTest(unittest.TestCase):
    # A wrong rule here would show theme authors a layout the program never draws.
    CASES = [
        # kind, fields, window, expected rectangle
        ("P", ["10", "20", "30", "40"], (1024, 600), (10, 20, 30, 40)),
        ("P", ["-10", "-20", "5", "5"], (1024, 600), (1014, 580, 5, 5)),
        ("L", ["160", "100", "0", "-10"], (1024, 600), (160, 100, 864, 490)),
        ("L", ["160", "100", "-340", "-10"], (1024, 600), (160, 100, 524, 490)),
        ("B", ["10", "10", "0", "0"], (1024, 600), (10, 10, 0, 0)),
        ("B", ["10", "10", "-1", "-1"], (1024, 600), (10, 10, 1013, 589)),
        ("A", ["0", "0", "0", "-100"], (800, 600), (0, 0, 0, 500)),
        ("P", ["50%", "10%", "25%", "50%"], (1000, 600), (500, 60, 250, 300)),
        ("T", ["160", "100", "-58%", "26"], (1000, 600), (160, 100, 260, 26)),
        ("L", ["50%", "0", "10", "10"], (1000, 600), (50, 0, 10, 10)),
        ("B", ["50%", "0", "10", "10"], (1000, 600), (50, 0, 10, 10)),
        ("LB", ["x", "", "7abc", "-0"], (640, 480), (0, 0, 7, 480)),
    ]

    def test_rules(self):
        for kind, fields, (w, h), expected in self.CASES:
            with self.subTest(kind=kind, fields=fields):
                self.assertEqual(sm.place(kind, fields, w, h), expected)


class IniTest(unittest.TestCase):
    def test_reading_rules(self):
        with tempfile.TemporaryDirectory() as d:
            path = write(d, "a.skn",
                         "; comment\r\n[Notes]\r\nLoad = click \r\nload=second\r\n"
                         "textA=\"Agenda  \"\r\n01=P,a.png,0,0,1,1\r\n02=P,b.png,0,0,1,1\r\n"
                         "04=P,d.png,0,0,1,1\r\n[NOTES]\r\n03=P,c.png,0,0,1,1\r\n")
            ini = sm.Ini(path)
            self.assertEqual(ini.get("notes", "LOAD"), "click")  # first key wins, trimmed
            self.assertEqual(ini.get("Notes", "textA"), "Agenda  ")  # quotes keep blanks
            # A later section of the same name is inert, and reading stops at the gap.
            self.assertEqual([k for k, _ in ini.lines("NOTES")], ["01", "02"])


class PictureCheckTest(unittest.TestCase):
    def test_soft_outline_is_found_and_hard_one_is_not(self):
        with tempfile.TemporaryDirectory() as d:
            for aa, expect_fringe in (("-antialias", True), ("+antialias", False)):
                path = os.path.join(d, "bg%s.png" % aa[0].replace("+", "p"))
                subprocess.run(["convert", "-size", "60x60", "xc:#ff00ff", aa, "-fill", "#202020",
                                "-draw", "circle 30,30 30,5", "PNG24:" + path], check=True)
                with self.subTest(antialias=aa):
                    self.assertEqual(sm.fringe_pixels(path, (255, 0, 255)) > 0, expect_fringe)

    def test_bundled_animations_cut_into_standalone_frames(self):
        for name in ("pulse.gif", "busy.gif"):
            with self.subTest(name=name):
                good, total = sm.gif_frames(os.path.join(THEME, name))
                self.assertGreater(total, 1)
                self.assertEqual(good, total)

    def test_wav_checks(self):
        with tempfile.TemporaryDirectory() as d:
            self.assertIsNotNone(sm.wav_problem(write(d, "x.wav", "not a sound")))
            self.assertIsNone(sm.wav_problem(os.path.join(THEME, "click.wav")))


class BundledThemeTest(unittest.TestCase):
    def test_theme_is_complete(self):
        self.assertEqual(sm.check(THEME), [])

    def test_screens_keep_their_box_order(self):
        # The program finds boxes by their order among controls of one kind:
        # a stray label or text box in the wrong place breaks a screen silently.
        ini = sm.Ini(os.path.join(THEME, "Mirel.skn"))

        def kinds(section, kind):
            return [sm.split_line(v)[1] for _, v in ini.lines(section) if sm.split_line(v)[0] == kind]

        self.assertEqual(kinds("DEFAULT", "T") + kinds("DEFAULT", "M") + kinds("DEFAULT", "LB"), [])
        self.assertEqual(kinds("Logbook", "LB")[0], "stamp")
        self.assertEqual(kinds("Address", "T"), ["field%02d" % i for i in range(1, 17)])
        self.assertEqual(kinds("Calendar", "T"), ["day%02d" % i for i in range(1, 32)])
        agenda_labels = set(kinds("Agenda", "LB"))
        self.assertTrue({"DAY", "MONTH", "YEAR", "SHOUR", "SMIN", "EHOUR", "EMIN"} <= agenda_labels)
        for slot in ["B%d" % i for i in range(8)] + ["B" + c for c in "ABCDEF"]:
            self.assertEqual(len(kinds("Agenda", slot)), 1, slot)
        self.assertEqual(len(kinds("Todo", "BD")), 1)

    # Any command the program does not know is started as a program, so a
    # typing error in the bundled theme would quietly try to run "NOTSAVE".
    MAIN = set("""ADDRESS ADDRESSADD ADDRESSSAVE ADDRESSDELETE ADDRESSCANCEL ADDRESSIMPORT
        ADDRESSEXPORT AGENDA AGENDAPAST AGENDAPRESENT AGENDAADD AGENDASAVE AGENDADELETE
        AGENDACANCEL AGENDAPRINTLIST AGENDAPRINTITEM CALENDAR MONTHPRINT MONTHALL LOGBOOK LOGADD
        LOGCANCEL LOGSAVE LOGDELETE LOGSHOWALL LOGSEARCH NOTES NOTEADD NOTECANCEL NOTESAVE
        NOTEDELETE TODO TODOADD TODOCANCEL TODOSAVE TODODELETE TODODONE EMAIL EMAILPRINT
        EMAILDELETE EMAILMOVE EMAILSOURCE EMAILNEW EMAILREPLY EMAILFORWARD EMAILCONFIG
        EMAILACCOUNTS EMAILSENDRECEIVE QUIT""".split())
    MAIN |= {"AGENDAP%d" % i for i in range(8)}
    MAIN |= {"OVERVIEW"}
    MAIN |= {"MONTH" + m for m in "JAN FEB MAR APR MAY JUN JUL AUG SEP OCT NOV DEC".split()}
    MAIN |= {p + d for p in ("MODEDAY", "MODEMONTH", "MODEYEAR", "STARTHOUR", "STARTMIN",
                             "ENDHOUR", "ENDMIN") for d in ("UP", "DOWN")}
    DIALOG = {
        "INPUT": {"OK", "QUIT"}, "EMAILMOVE": {"OK", "QUIT"}, "ADDRESSIMPORT": {"OK", "QUIT"},
        "EMAILSENDRECEIVE": {"OK"},
        "EMAILCONFIG": {"OK", "EMAILCONFIGNEW", "EMAILCONFIGRENAME", "EMAILCONFIGDELETE"},
        "EMAILACCOUNTS": {"OK", "EMAILACCOUNTNEW", "EMAILACCOUNTDEFAULT", "EMAILACCOUNTDELETE"},
        "EMAILSEND": {"OK", "QUIT", "EMAILTO", "EMAILCC", "EMAILBCC"},
    }

    def commands(self, skin, section):
        ini = sm.Ini(os.path.join(THEME, skin))
        for _, value in ini.lines(section):
            kind, _, fields = sm.split_line(value)
            if kind in sm.BUTTON_KINDS:
                yield ",".join(fields[7:]).upper()

    def test_every_button_command_is_known(self):
        cases = [("Mirel.skn", s, self.MAIN) for s in ["DEFAULT"] + sm.SCREENS]
        cases += [("terminal.skn", s, known) for s, known in self.DIALOG.items()]
        cases.append(("Mirel.skn", "Emailto", {"OK", "QUIT"}))
        for skin, section, known in cases:
            with self.subTest(section=section):
                found = list(self.commands(skin, section))
                if section != "Overview":  # the start screen has no buttons of its own
                    self.assertTrue(found)
                self.assertEqual([c for c in found if c not in known], [])
        # Every screen can be reached from the side bar.
        self.assertEqual(set(self.commands("Mirel.skn", "DEFAULT")),
                         {"OVERVIEW", "AGENDA", "CALENDAR", "NOTES", "LOGBOOK", "TODO", "ADDRESS",
                          "EMAIL", "QUIT"})


if __name__ == "__main__":
    unittest.main()
