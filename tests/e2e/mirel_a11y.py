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

from mirel_harness import Session, Xvfb

IN_BUS = "MIREL_E2E_IN_BUS"


def run_in_private_bus(script):
    """Runs script again inside `dbus-run-session` (once) and exits with its status."""
    if os.environ.get(IN_BUS):
        return
    runtime = tempfile.mkdtemp(prefix="mirel-a11y-run-")
    os.chmod(runtime, 0o700)
    env = dict(os.environ, **{IN_BUS: "1", "XDG_RUNTIME_DIR": runtime,
                              "GSETTINGS_BACKEND": "memory", "NO_AT_BRIDGE": "0"})
    r = subprocess.run(["dbus-run-session", "--", sys.executable, os.path.abspath(script)],
                       env=env)
    shutil.rmtree(runtime, ignore_errors=True)
    sys.exit(r.returncode)


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

    def showing(self, node):
        return node.getState().contains(self.pyatspi.STATE_SHOWING)

    def find(self, name=None, role=None, shown=False, timeout=10):
        """The first node with that name and role (either may be None)."""
        deadline = time.time() + timeout
        while time.time() < deadline:
            for node in walk(self.app()):
                if (name is None or node.name == name) and \
                        (role is None or node.getRoleName() == role) and \
                        (not shown or self.showing(node)):
                    return node
            time.sleep(0.3)
        self.fail("no %s named %r" % (role or "node", name))

    def press(self, command, settle=0.0):
        self.find(command, "push button", shown=True).queryAction().doAction(0)
        time.sleep(settle)

    def session(self, **options):
        """The program on this class's display, readable on the bus, closed after the test."""
        s = Session(self.x.display, {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
                                     "QT_ACCESSIBILITY": "1"}, theme=False, **options)
        self.addCleanup(s.close)
        return s

    def set_text(self, name, text):
        self.find(name, shown=True).queryEditableText().setTextContents(text)

    def window(self, title, timeout=10):
        """A shown window or dialog of that title (not a label that reads the same)."""
        deadline = time.time() + timeout
        while time.time() < deadline:
            for node in walk(self.app()):
                if node.name == title and node.getRoleName() not in ("label", "text", "entry") \
                        and self.showing(node):
                    return node
            time.sleep(0.3)
        self.fail("no window %r" % title)

    def inside(self, top, name, *roles):
        """The node of that name and one of roles below top ("push button" if none given)."""
        roles = roles or ("push button",)
        for node in walk(top if not isinstance(top, str) else self.window(top)):
            if node.name == name and node.getRoleName() in roles:
                return node
        self.fail("no %s %r in %r" % (roles, name, top))

    def press_in(self, top, name):
        self.inside(top, name).queryAction().doAction(0)


def pointer_click(display, node, clicks=1):
    """Real pointer clicks at the middle of an accessible node."""
    import pyatspi
    from mirel_harness import click
    box = node.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
    click(display, box.x + box.width // 2, box.y + box.height // 2, clicks)
    time.sleep(0.5)


def send_receive(case, timeout=30):
    """The theme's send/receive button pressed, its window closed with "OK"
    once the run says it is done."""
    case.press("EMAILSENDRECEIVE")
    status = case.find("Status", shown=True, timeout=15)
    deadline = time.time() + timeout
    while not any(n.name.endswith(" Done") for n in walk(status)):
        case.assertLess(time.time(), deadline, [n.name for n in walk(status)])
        time.sleep(0.3)
    window = case.find("Send and receive", shown=True)
    next(n for n in walk(window) if n.name == "OK").queryAction().doAction(0)
    # A command sent while the window is still closing would reach a program
    # that is busy with it.
    while time.time() < deadline + 10:
        try:
            if not case.showing(window):
                return
        except Exception:  # the window's node is gone with it
            return
        time.sleep(0.2)
    case.fail("the send and receive window stays open")
