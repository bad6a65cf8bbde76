"""Reading and driving the real program as a screen reader does: a private
session bus with its own accessibility bus (nothing reaches the user's
desktop), the accessible tree of the running `mirel`, and lookups by name
and role."""

import os
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

from mirel_harness import Session, Xvfb, stop_process, click, until

IN_BUS = "MIREL_E2E_IN_BUS"


def main(script):
    """Runs the script's tests inside `dbus-run-session`, started again there once."""
    if not os.environ.get(IN_BUS):
        runtime = tempfile.mkdtemp(prefix="mirel-a11y-run-")
        os.chmod(runtime, 0o700)
        env = dict(os.environ, **{IN_BUS: "1", "XDG_RUNTIME_DIR": runtime,
                                  "GSETTINGS_BACKEND": "memory", "NO_AT_BRIDGE": "0"})
        r = subprocess.run(["dbus-run-session", "--", sys.executable, os.path.abspath(script),
                            *sys.argv[1:]], env=env)
        shutil.rmtree(runtime, ignore_errors=True)
        sys.exit(r.returncode)
    unittest.main(module="__main__", verbosity=2)


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


class ScreenReaderCase(unittest.TestCase):
    """A private X server and accessibility bus for the whole test class."""

    SCREEN = "1280x800x24"

    @classmethod
    def setUpClass(cls):
        cls.x = Xvfb(cls.SCREEN)
        cls.launcher = subprocess.Popen(["/usr/libexec/at-spi-bus-launcher", "--launch-immediately"],
                                        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        time.sleep(1.0)
        import pyatspi
        cls.pyatspi = pyatspi

    @classmethod
    def tearDownClass(cls):
        stop_process(cls.launcher)
        cls.x.stop()

    def session(self):
        """The program on this class's display, readable on the bus, closed after the test."""
        self.s = Session(self.x.display, {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
                                          "QT_ACCESSIBILITY": "1"})
        self.addCleanup(self.s.close)
        return self.s

    def app(self):
        def program():
            desktop = self.pyatspi.Registry.getDesktop(0)
            apps = (desktop.getChildAtIndex(i) for i in range(desktop.childCount))
            return next((a for a in apps if a is not None and a.name == "mirel"), None)
        return until(program, 20, "mirel never appeared on the accessibility bus")

    def showing(self, node):
        return node.getState().contains(self.pyatspi.STATE_SHOWING)

    def find(self, name=None, role=None, shown=False, under=None, timeout=10):
        """The first node below under (a node, a window's title, or the whole
        program when None) with that name and role: each a value, a function
        that accepts one, or None for any; role also a tuple of role names."""
        named = name if callable(name) else lambda n: name is None or n == name
        roled = role if callable(role) else lambda r: role is None or r in (
            (role,) if isinstance(role, str) else role)

        def match(node):
            return node is not top and named(node.name) and roled(node.getRoleName()) and \
                (not shown or self.showing(node))
        top = self.window(under) if isinstance(under, str) else under
        return until(lambda: next(filter(match, walk(top or self.app())), None), timeout,
                     "no %s named %r" % (role or "node", name))

    def window(self, title):
        """A shown window or dialog of that title (not a label that reads the same)."""
        return self.find(title, lambda role: role not in ("label", "text", "entry"), shown=True)

    def press(self, command, settle=0.0, under=None):
        self.find(command, "push button", shown=True, under=under).queryAction().doAction(0)
        time.sleep(settle)

    def set_text(self, name, text, under=None, role=None):
        self.find(name, role, shown=True, under=under).queryEditableText().setTextContents(text)

    def screen(self, command, first_button):
        """A skin screen shown; the theme builds it control by control, buttons first."""
        self.press(command)
        self.find(first_button, "push button", shown=True, timeout=20)
        time.sleep(1.5)

    def rows(self, name="lstBox 1"):
        """The rows of the shown list of that name."""
        box = self.find(name, "list", shown=True)
        return [box.getChildAtIndex(i).name for i in range(box.childCount)]

    def select(self, table, *texts):
        """Only the rows of table with a cell reading one of texts selected,
        as a screen reader's user selects them."""
        rows = table.queryTable()
        for r in range(rows.nRows):
            if rows.isRowSelected(r):
                rows.removeRowSelection(r)
        for text in texts:
            cell = self.find(text, under=table)
            rows.addRowSelection(rows.getRowAtIndex(cell.getIndexInParent()))

    def click_node(self, node, clicks=1):
        """Real pointer clicks at the middle of an accessible node (with none
        the pointer only rests there)."""
        box = node.queryComponent().getExtents(self.pyatspi.DESKTOP_COORDS)
        click(self.x.display, box.x + box.width // 2, box.y + box.height // 2, clicks)
        time.sleep(0.5)

    def send_receive(self, timeout=30):
        """The theme's send/receive button pressed, its window closed with "OK"
        once the run says it is done."""
        self.press("EMAILSENDRECEIVE")
        status = self.find("Status", shown=True, timeout=15)
        until(lambda: any(n.name.endswith(" Done") for n in walk(status)), timeout,
              lambda: [n.name for n in walk(status)])
        window = self.find("Send and receive", shown=True)
        self.press("OK", under=window)

        # A command sent while the window is still closing would reach a
        # program that is busy with it.
        def closed():
            try:
                return not self.showing(window)
            except Exception:  # the window's node is gone with it
                return True
        until(closed, 10, "the send and receive window stays open")
