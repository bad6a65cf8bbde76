"""The main window as a screen reader sees it: skin buttons are pressable by
their command names, screen texts and list rows are readable, and pressing
QUIT ends the program. Runs inside a private session bus with its own
accessibility bus, so nothing reaches the user's desktop."""

import os
import subprocess
import sys
import tempfile
import time
import unittest

sys.path.insert(0, os.path.dirname(__file__))

IN_BUS = "MIREL_E2E_IN_BUS"


def reexec_in_private_bus():
    runtime = tempfile.mkdtemp(prefix="mirel-a11y-run-")
    os.chmod(runtime, 0o700)
    env = dict(os.environ)
    env.update({IN_BUS: "1", "XDG_RUNTIME_DIR": runtime, "GSETTINGS_BACKEND": "memory",
                "NO_AT_BRIDGE": "0"})
    r = subprocess.run(["dbus-run-session", "--", sys.executable, os.path.abspath(__file__)],
                       env=env)
    subprocess.run(["rm", "-rf", runtime])
    sys.exit(r.returncode)


if __name__ == "__main__" and not os.environ.get(IN_BUS):
    reexec_in_private_bus()

from mirel_harness import Session, Xvfb  # noqa: E402


def walk(node, depth=0):
    if node is None or depth > 30:
        return
    yield node
    for i in range(node.childCount):
        try:
            child = node.getChildAtIndex(i)
        except Exception:
            continue
        yield from walk(child, depth + 1)


class ScreenReader(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.x = Xvfb()
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

    def app(self, timeout=20):
        deadline = time.time() + timeout
        while time.time() < deadline:
            desktop = self.pyatspi.Registry.getDesktop(0)
            for i in range(desktop.childCount):
                a = desktop.getChildAtIndex(i)
                if a is not None and a.name == "mirel":
                    return a
            time.sleep(0.3)
        self.fail("mirel never appeared on the accessibility bus")

    def find(self, role, name=None, timeout=10):
        deadline = time.time() + timeout
        while time.time() < deadline:
            for node in walk(self.app()):
                if node.getRoleName() == role and (name is None or node.name == name):
                    return node
            time.sleep(0.3)
        self.fail("no %s named %r" % (role, name))

    def texts(self):
        out = []
        for node in walk(self.app()):
            if node.getRoleName() == "label":
                out.append(node.name)
        return out

    def press(self, name):
        self.find("push button", name).queryAction().doAction(0)

    def test_buttons_texts_and_lists(self):
        s = Session(self.x.display, {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
                                     "QT_ACCESSIBILITY": "1"})
        self.addCleanup(s.close)
        s.start()
        names = [n.name for n in walk(self.app()) if n.getRoleName() == "push button"]
        for command in ("NOTES", "LOGBOOK", "TODO", "ADDRESS", "AGENDA", "CALENDAR", "EMAIL",
                        "QUIT"):
            self.assertIn(command, names)
        self.assertIn("Mirel test theme", self.texts())

        self.press("NOTES")
        s.wait_for_log("Screen Notes")
        self.find("label", "Notes screen")
        notes = self.find("list")
        rows = [notes.getChildAtIndex(i).name for i in range(notes.childCount)
                if notes.getChildAtIndex(i).getRoleName() == "list item"]
        self.assertEqual(rows, [], "a fresh program folder has no notes")

        self.press("TODO")
        s.wait_for_log("Screen Todo")
        self.find("label", "Todo screen")
        deadline = time.time() + 10
        while "Notes screen" in self.texts() and time.time() < deadline:
            time.sleep(0.2)
        self.assertNotIn("Notes screen", self.texts(), "the previous screen was taken down")

        self.press("QUIT")
        self.assertEqual(s.wait_exit(), 0)


if __name__ == "__main__":
    unittest.main(verbosity=2)
