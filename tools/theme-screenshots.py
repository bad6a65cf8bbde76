#!/usr/bin/env python3
"""Screenshots of the real program wearing a theme.

Starts `mirel` under a private Xvfb of each size with a throw-away settings
store and program folder holding a copy of the theme, switches to every
screen through the command mailbox (`mirel --send NOTES`) and saves the
whole display; then opens each dialog in a fresh run. Where skin-mockup.py
approximates the widgets, this shows what the program really draws.

    tools/theme-screenshots.py --bin build/mirel [--theme themes/Default] [--out build/screenshots]

Needs Xvfb and ImageMagick's `import`.
"""
import argparse
import os
import select
import shutil
import subprocess
import sys
import tempfile
import time

SCREENS = ["AGENDA", "CALENDAR", "NOTES", "LOGBOOK", "TODO", "ADDRESS", "EMAIL"]
DIALOGS = ["EMAILACCOUNTS", "EMAILCONFIG", "EMAILSENDRECEIVE"]


def start_xvfb(size):
    r, w = os.pipe()
    proc = subprocess.Popen(["Xvfb", "-displayfd", str(w), "-noreset", "-nolisten", "tcp",
                             "-screen", "0", size + "x24"], pass_fds=[w],
                            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    os.close(w)
    number = b""
    deadline = time.time() + 20
    while not number.endswith(b"\n") and time.time() < deadline:
        ready, _, _ = select.select([r], [], [], 1)
        if ready:
            chunk = os.read(r, 16)
            if not chunk:
                break
            number += chunk
    os.close(r)
    if not number.strip():
        stop(proc)
        raise RuntimeError("Xvfb did not report a display")
    return proc, ":" + number.decode().strip()


def stop(proc, timeout=10):
    if proc.poll() is None:
        proc.terminate()
        try:
            proc.wait(timeout)
        except subprocess.TimeoutExpired:
            proc.kill()
            proc.wait()


class Run:
    """One program folder with the theme, one settings store, one program."""

    def __init__(self, binary, theme, display):
        self.binary = binary
        self.tmp = tempfile.mkdtemp(prefix="mirel-shots-")
        prog = os.path.join(self.tmp, "prog")
        name = os.path.basename(os.path.abspath(theme))
        shutil.copytree(theme, os.path.join(prog, "themes", name))
        preview = os.path.abspath(theme) + ".bmp"
        if os.path.exists(preview):
            shutil.copy(preview, os.path.join(prog, "themes"))
        config = os.path.join(self.tmp, "config")
        os.makedirs(os.path.join(config, "TORVEX Terminal"))
        with open(os.path.join(config, "TORVEX Terminal", "settings.ini"), "w") as f:
            f.write("[Default]\r\nProgramDir=%s\r\nThemeDir=\\themes\\%s\\\r\n" % (prog, name))
        self.env = dict(os.environ, DISPLAY=display, QT_QPA_PLATFORM="xcb",
                        XDG_CONFIG_HOME=config, XDG_DATA_HOME=os.path.join(self.tmp, "data"),
                        XDG_RUNTIME_DIR=self.tmp, MIREL_READY_MARKER="1")
        self.display = display
        self.proc = subprocess.Popen([binary], env=self.env, stdout=subprocess.PIPE,
                                     stderr=subprocess.DEVNULL)
        deadline = time.time() + 30
        while time.time() < deadline:
            ready, _, _ = select.select([self.proc.stdout], [], [], 0.5)
            if ready and self.proc.stdout.readline().strip() == b"Ready":
                return
            if self.proc.poll() is not None:
                break
        self.close()
        raise RuntimeError("mirel did not become ready")

    def send(self, command):
        subprocess.run([self.binary, "--send", command], env=self.env, timeout=20,
                       capture_output=True)

    def shot(self, path, settle=1.5):
        time.sleep(settle)  # the screen builds up control by control
        subprocess.run(["import", "-display", self.display, "-window", "root", path], check=True)
        print(path)

    def close(self):
        if self.proc.poll() is None:
            subprocess.run([self.binary, "--quit"], env=self.env, timeout=20, capture_output=True)
            try:
                self.proc.wait(10)
            except subprocess.TimeoutExpired:
                stop(self.proc)
        self.proc.stdout.close()
        shutil.rmtree(self.tmp, ignore_errors=True)


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    ap = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    ap.add_argument("--bin", default=os.path.join(here, "..", "build", "mirel"))
    ap.add_argument("--theme", default=os.path.join(here, "..", "themes", "Default"))
    ap.add_argument("--out", default=os.path.join(here, "..", "build", "screenshots"))
    ap.add_argument("--sizes", default="1024x600,1920x1080")
    args = ap.parse_args()
    os.makedirs(args.out, exist_ok=True)
    for size in args.sizes.split(","):
        xvfb, display = start_xvfb(size)
        try:
            run = Run(args.bin, args.theme, display)
            try:
                run.shot(os.path.join(args.out, "overview-%s.png" % size))
                for screen in SCREENS:
                    run.send(screen)
                    run.shot(os.path.join(args.out, "%s-%s.png" % (screen.lower(), size)))
            finally:
                run.close()
            if size == args.sizes.split(",")[0]:
                for dialog in DIALOGS:
                    run = Run(args.bin, args.theme, display)
                    try:
                        run.send("EMAIL")
                        time.sleep(1)
                        run.send(dialog)
                        run.shot(os.path.join(args.out, "dialog-%s.png" % dialog.lower()))
                    finally:
                        run.close()
        finally:
            stop(xvfb)
    return 0


if __name__ == "__main__":
    sys.exit(main())
