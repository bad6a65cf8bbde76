"""Runs the real program under a private Xvfb with its own settings store and
program folder, and drives it the way the family shell does: through the
command and exit mailboxes (mirel --send / --quit)."""

import os
import select
import shutil
import sqlite3
import subprocess
import tempfile
import time

MIREL_BIN = os.environ.get("MIREL_BIN", "mirel")
SOURCE_DIR = os.environ.get("MIREL_SOURCE_DIR", os.path.join(os.path.dirname(__file__), "..", ".."))
BUILD_DIR = os.environ.get("MIREL_BUILD_DIR", os.path.join(SOURCE_DIR, "build"))
HELPER = os.path.join(BUILD_DIR, "tests", "mirel_test_helper")


class Xvfb:
    """A private X server on a free display number."""

    def __init__(self, size="1280x800x24"):
        r, w = os.pipe()
        self.proc = subprocess.Popen(
            ["Xvfb", "-displayfd", str(w), "-noreset", "-nolisten", "tcp", "-screen", "0", size],
            pass_fds=[w], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(w)
        with os.fdopen(r, "rb") as numbers:  # the number, a line of its own, once it listens
            number = numbers.readline() if select.select([numbers], [], [], 20)[0] else b""
        if not number.strip():
            self.stop()
            raise RuntimeError("Xvfb did not report a display")
        self.display = ":" + number.decode().strip()

    def stop(self):
        stop_process(self.proc)


def stop_process(proc):
    """Terminates proc, killing it when it does not end within ten seconds."""
    if proc and proc.poll() is None:
        proc.terminate()
        try:
            proc.wait(10)
        except subprocess.TimeoutExpired:
            proc.kill()
            proc.wait()


def until(what, timeout=10, why="never came true"):
    """What what() returns once it is true, asked again until timeout seconds
    have passed; why (a text, or a function making one) is the failure."""
    deadline = time.time() + timeout
    while True:
        found = what()
        if found:
            return found
        if time.time() > deadline:
            raise AssertionError(why() if callable(why) else why)
        time.sleep(0.2)


def read(path):
    with open(path, "rb") as f:
        return f.read()


def click(display, x, y, clicks=1):
    """Real pointer clicks (two make a double click) at x, y of the display:
    for what a screen reader's actions do not reach (a chooser's pop-up, a
    double click, a window without a name)."""
    x_input(display, move=(x, y), clicks=clicks)


class Session:
    """One program folder, one settings store, one running program."""

    def __init__(self, display, extra_env=None):
        self.tmp = tempfile.mkdtemp(prefix="mirel-e2e-")
        self.config = os.path.join(self.tmp, "config")
        self.program_dir = os.path.join(self.tmp, "prog")
        os.makedirs(os.path.join(self.config, "TORVEX Terminal"))
        os.makedirs(self.program_dir)
        self.use_theme("Default")  # the program installs the bundled one at start
        self.env = dict(os.environ, DISPLAY=display, QT_QPA_PLATFORM="xcb",
                        XDG_CONFIG_HOME=self.config, XDG_DATA_HOME=os.path.join(self.tmp, "data"),
                        MIREL_READY_MARKER="1")
        self.env.update(extra_env or {})
        self.display = display
        self.proc = None

    def use_theme(self, folder):
        with open(os.path.join(self.config, "TORVEX Terminal", "settings.ini"), "w") as f:
            f.write("[Default]\r\nProgramDir=%s\r\nThemeDir=\\themes\\%s\\\r\n"
                    % (self.program_dir, folder))

    def bundled_theme(self, *edits):
        """Runs a copy of the bundled theme named "Test", each (old, new) of
        edits made once in its terminal.skn."""
        theme = os.path.join(self.program_dir, "themes", "Test")
        shutil.copytree(os.path.join(SOURCE_DIR, "themes", "Default"), theme)
        skn = os.path.join(theme, "terminal.skn")
        text = read(skn)
        for old, new in edits:
            text = text.replace(old, new, 1)
        with open(skn, "wb") as f:
            f.write(text)
        self.use_theme("Test")

    def start(self, timeout=30):
        self.proc = subprocess.Popen([MIREL_BIN], env=self.env, stdout=subprocess.PIPE,
                                     stderr=subprocess.DEVNULL)
        lines = [b""]

        def ready():
            if select.select([self.proc.stdout], [], [], 0.5)[0]:
                lines.append(self.proc.stdout.readline())
            assert self.proc.poll() is None, "mirel ended (rc %r, output %r)" % (self.proc.poll(),
                                                                                lines)
            return lines[-1].strip() == b"Ready"
        until(ready, timeout, lambda: "mirel did not become ready (output %r)" % lines)

    def run(self, *args, timeout=20):
        return subprocess.run([MIREL_BIN, *args], env=self.env, capture_output=True,
                              timeout=timeout)

    def send(self, command):
        r = self.run("--send", command)
        assert r.returncode == 0, (command, r.returncode, r.stderr)

    def store_received(self, *messages):
        """Message files stored in the inbox as received mail, unread."""
        stored = subprocess.run([HELPER, "store-received", self.program_dir, *messages],
                                capture_output=True, timeout=120)
        assert stored.returncode == 0, stored.stderr

    def count(self, folder):
        """The number of messages in a mail folder's index, or None while
        there is none (its file appears a moment before its table)."""
        path = os.path.join(self.program_dir, "Email", folder, "index.mdb")
        if not os.path.exists(path):
            return None
        db = sqlite3.connect(path)
        try:
            return db.execute('SELECT COUNT(*) FROM "Index"').fetchone()[0]
        except sqlite3.OperationalError:
            return None
        finally:
            db.close()

    def screenshot(self, name):
        folder = os.path.join(BUILD_DIR, "screenshots")
        os.makedirs(folder, exist_ok=True)
        path = os.path.join(folder, name + ".png")
        subprocess.run(["import", "-display", self.display, "-window", "root", path], check=True)
        return path

    def wait_exit(self, timeout=15):
        try:
            return self.proc.wait(timeout)
        except subprocess.TimeoutExpired:
            return None

    def close(self):
        stop_process(self.proc)
        if self.proc and self.proc.stdout:
            self.proc.stdout.close()
        shutil.rmtree(self.tmp, ignore_errors=True)


class MailServers:
    """The test dovecot (started by the test helper) holding the message
    files for "ann", an SMTP sink keeping what it accepts, and the program's
    one account pointing at both, their clear text approved beforehand."""

    def __init__(self, session, messages):
        import socket
        self.pop = subprocess.Popen([HELPER, "dovecot", "ann", "s3cret", *messages],
                                    stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        pop = int(self.pop.stdout.readline() or 0)
        self.folder = os.path.join(session.tmp, "sink")
        os.makedirs(self.folder)
        with socket.socket() as free:
            free.bind(("127.0.0.1", 0))
            smtp = free.getsockname()[1]
        self.smtp = subprocess.Popen(
            ["/usr/bin/python3", os.path.join(SOURCE_DIR, "tests/support/servers/smtp_sink.py"),
             "--port", str(smtp), "--folder", self.folder],
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        ready = self.smtp.stdout.readline()
        if not pop or not ready.startswith(b"READY"):
            self.close()
            raise RuntimeError("the test mail servers did not start")
        folder = os.path.join(session.program_dir, "Email")
        os.makedirs(folder, exist_ok=True)
        record = "* Home|127.0.0.1:%d|ann|s3cret|1|0|127.0.0.1:%d|ann@example.org|Ann Example|"
        with open(os.path.join(folder, "accounts.ini"), "w") as f:  # each byte as three digits
            f.write("[Email]\r\n0=%s\r\n" % "".join("%03d" % b for b in
                                                     (record % (pop, smtp)).encode("cp1252")))
        with open(os.path.join(folder, "servers.ini"), "w") as f:
            f.write("".join("[127.0.0.1:%d]\r\nPlaintext=1\r\n" % p for p in (pop, smtp)))

    def received(self, count, timeout=30):
        """The first count messages the sink accepted, as (envelope
        recipients, message read by Python's email package)."""
        import email
        import email.policy
        import json
        names = [os.path.join(self.folder, str(n)) for n in range(1, count + 1)]
        until(lambda: all(os.path.exists(n + ".json") for n in names), timeout,
              lambda: "the SMTP sink has %s" % os.listdir(self.folder))
        out = []
        for n in names:
            with open(n + ".json") as j, open(n + ".eml", "rb") as m:
                out.append((json.load(j)["rcpt_tos"],
                            email.message_from_bytes(m.read(), policy=email.policy.default)))
        return out

    def close(self):
        self.pop.stdin.close()  # the helper stops its dovecot when its input ends
        try:
            self.pop.wait(15)
        except subprocess.TimeoutExpired:
            pass
        for p in (self.pop, self.smtp):
            stop_process(p)
            p.stdout.close()


def xdotool(display, *args):
    subprocess.run(["xdotool", *map(str, args)], env=dict(os.environ, DISPLAY=display), check=True)


def x_input(display, keys=(), wheel=0, move=None, clicks=0):
    """Through the X test extension: the pointer moved to `move` (x, y), key
    presses (X key names) at the focus, wheel notches (up when positive) and
    left clicks under the pointer."""
    if move:
        xdotool(display, "mousemove", *move)
        time.sleep(0.3)
    if keys:
        xdotool(display, "key", "--delay", 200, *keys)
    if wheel:
        xdotool(display, "click", "--repeat", abs(wheel), "--delay", 200, 4 if wheel > 0 else 5)
    if clicks:  # quick enough to make a double click
        xdotool(display, "click", "--repeat", clicks, "--delay", 50, 1)
    time.sleep(0.2)
