"""The organiser in the real program with the bundled theme, driven as a
screen reader would: type into the boxes, press the skin buttons, and read
back the files the program wrote and the rows it lists."""

import glob
import os
import subprocess
import sys
import tempfile
import time
import unittest

sys.path.insert(0, os.path.dirname(__file__))

IN_BUS = "MIREL_E2E_IN_BUS"

if __name__ == "__main__" and not os.environ.get(IN_BUS):
    runtime = tempfile.mkdtemp(prefix="mirel-org-run-")
    os.chmod(runtime, 0o700)
    env = dict(os.environ, **{IN_BUS: "1", "XDG_RUNTIME_DIR": runtime,
                              "GSETTINGS_BACKEND": "memory", "NO_AT_BRIDGE": "0"})
    r = subprocess.run(["dbus-run-session", "--", sys.executable, os.path.abspath(__file__)],
                       env=env)
    subprocess.run(["rm", "-rf", runtime])
    sys.exit(r.returncode)

from mirel_harness import Session, Xvfb  # noqa: E402
from test_accessibility import walk  # noqa: E402


class Organiser(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.x = Xvfb("1280x800x24")
        cls.launcher = subprocess.Popen(["/usr/libexec/at-spi-bus-launcher", "--launch-immediately"],
                                        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        time.sleep(1.0)
        import pyatspi
        cls.pyatspi = pyatspi

    @classmethod
    def tearDownClass(cls):
        if cls.launcher.poll() is None:
            cls.launcher.terminate()
            cls.launcher.wait(10)
        cls.x.stop()

    def app(self):
        deadline = time.time() + 20
        while time.time() < deadline:
            desktop = self.pyatspi.Registry.getDesktop(0)
            for i in range(desktop.childCount):
                a = desktop.getChildAtIndex(i)
                if a is not None and a.name == "mirel":
                    return a
            time.sleep(0.3)
        self.fail("mirel never appeared on the accessibility bus")

    def find(self, name, role=None, timeout=10):
        deadline = time.time() + timeout
        while time.time() < deadline:
            for node in walk(self.app()):
                if node.name == name and node.getState().contains(self.pyatspi.STATE_SHOWING) \
                        and (role is None or node.getRoleName() == role):
                    return node
            time.sleep(0.3)
        self.fail("nothing shown named %r" % name)

    def press(self, command):
        self.find(command, "push button").queryAction().doAction(0)
        time.sleep(0.4)

    def type_into(self, name, text):
        self.find(name).queryEditableText().setTextContents(text)

    def rows(self):
        lists = [n for n in walk(self.app()) if n.getRoleName() == "list" and n.name == "lstBox 1"
                 and n.getState().contains(self.pyatspi.STATE_SHOWING)]
        self.assertTrue(lists, "the screen shows its list")
        return [lists[0].getChildAtIndex(i).name for i in range(lists[0].childCount)]

    def screen(self, command, first_button):
        self.press(command)
        # The theme builds a screen up control by control; its buttons come first.
        self.find(first_button, "push button", timeout=20)
        time.sleep(1.5)

    def test_note_log_task_and_contact(self):
        s = Session(self.x.display, {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
                                     "QT_ACCESSIBILITY": "1"}, theme=False)
        self.addCleanup(s.close)
        s.start()
        data = os.path.join(s.program_dir, "Mirel")
        theme = os.path.join(s.program_dir, "themes", "Test", "terminal.skn")
        self.assertTrue(os.path.exists(theme), "the bundled theme was copied in")

        self.screen("NOTES", "NOTEADD")
        self.press("NOTEADD")
        self.type_into("txtBox 1", "Groceries")
        self.type_into("txtMulti 1", "milk\nbread")
        self.press("NOTESAVE")
        notes = glob.glob(os.path.join(data, "Notes", "*.not"))
        self.assertEqual(len(notes), 1)
        self.assertRegex(os.path.basename(notes[0]), r"^\d{14}\.not$")
        with open(notes[0], "rb") as f:
            self.assertEqual(f.read(), b"Groceries\r\nmilk\r\nbread\r\n")
        self.assertEqual(self.rows(), ["Groceries"])
        s.screenshot("organiser-notes")

        self.screen("LOGBOOK", "LOGADD")
        self.press("LOGADD")
        self.type_into("txtMulti 1", "Met the new neighbours")
        self.press("LOGSAVE")
        logs = glob.glob(os.path.join(data, "Logbook", "*.log"))
        self.assertEqual(len(logs), 1)
        with open(logs[0], "rb") as f:
            self.assertEqual(f.read(), b"Met the new neighbours\r\n")
        self.assertEqual(self.rows()[1], "   Met the new neighbours")

        self.screen("TODO", "TODOADD")
        self.press("TODOADD")
        self.type_into("txtMulti 1", "Call the plumber")
        self.press("TODOSAVE")
        tasks = glob.glob(os.path.join(data, "Todo", "*.tod"))
        self.assertEqual(len(tasks), 1)
        with open(tasks[0], "rb") as f:
            self.assertEqual(f.read(), b"0\r\nCall the plumber\r\n")
        self.assertEqual(self.rows(), ["TODO  Call the plumber"])

        self.screen("ADDRESS", "ADDRESSADD")
        self.press("ADDRESSADD")
        self.type_into("txtBox 1", "Jos\u00e9 Garc\u00eda")
        self.type_into("txtBox 13", "thirteen")
        self.type_into("txtMulti 1", "line one\nline two")
        self.press("ADDRESSSAVE")
        with open(os.path.join(data, "Addressbook", "0.dat"), "rb") as f:
            lines = f.read().split(b"\r\n")
        self.assertEqual(lines[0], b"Jos\xe9 Garc\xeda")
        self.assertEqual(lines[14], b"thirteen")  # box 13 is the file's line 15
        self.assertEqual(lines[16], b"108105110101032111110101013010108105110101032116119111")
        self.assertEqual(len(lines), 18)  # seventeen lines, each ended by CR LF
        s.screenshot("organiser-address")

        self.press("OVERVIEW")
        time.sleep(2)
        overview = [n for n in walk(self.app()) if n.name == "Overview" and n.getRoleName() == "list"]
        self.assertTrue(overview)
        rows = [overview[0].getChildAtIndex(i).name for i in range(overview[0].childCount)]
        self.assertIn("  Call the plumber", rows)
        s.screenshot("organiser-overview")

        self.press("QUIT")
        self.assertEqual(s.wait_exit(), 0)


if __name__ == "__main__":
    unittest.main(verbosity=2)
