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
import datetime
import os
import select
import shutil
import socket
import subprocess
import sys
import tempfile
import threading
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


def triplets(text):
    return "".join("%03d" % b for b in text.encode("cp1252"))


def write_sample_data(prog):
    """A few days' worth of organiser data around today, so every screen and
    the overview show what a person using Mirel would see."""
    today = datetime.date.today()
    sep = "\x01"
    folders = {k: os.path.join(prog, "Mirel", k) for k in ("Notes", "Logbook", "Todo", "Addressbook")}
    for f in folders.values():
        os.makedirs(f, exist_ok=True)

    def put(path, lines):
        with open(path, "wb") as f:
            f.write("".join(l + "\r\n" for l in lines).encode("cp1252"))

    notes = [("Ideas for the garden", ["Raised beds along the fence", "Tomatoes, basil, beans"]),
             ("Books to read", ["The long way round", "A short history of nearly everything"]),
             ("Wifi at the cottage", ["Network: cottage-5g", "Ask Marta for the password"])]
    for i, (title, body) in enumerate(notes):
        put(os.path.join(folders["Notes"], "2026110%d0930%02d.not" % (i + 1, i)), [title] + body)
    logs = ["Quarterly review went well; budget approved.", "Dentist: next check-up in spring.",
            "Fixed the bike's rear brake.", "Call with the bank about the mortgage rate."]
    for i, text in enumerate(logs):
        stamp = (today - datetime.timedelta(days=3 * i)).strftime("%Y%m%d") + "18%02d00" % i
        put(os.path.join(folders["Logbook"], stamp + ".log"), [text])
    tasks = [("0", "Renew the car insurance"), ("0", "Buy a birthday present for Jonas"),
             ("1", "Book the train to Hamburg"), ("0", "Return the library books")]
    for i, (status, text) in enumerate(tasks):
        put(os.path.join(folders["Todo"], "2026111%d1200%02d.tod" % (i, i)), [status, text])
    people = [("Marta Lindqvist", "marta@example.org", "Storgatan 12", "Uppsala"),
              ("Jonas Weber", "jonas.weber@example.net", "Lindenweg 3", "Freiburg"),
              ("Aiko Tanaka", "aiko@example.com", "2-14 Sakura-cho", "Kyoto")]
    for i, (name, mail, street, town) in enumerate(people):
        # Field 13 is the address the mail editor's picker offers.
        fields = [name, mail, "+49 761 555 01%02d" % i, street, town, "", "", "", "", "", "",
                  "", mail, "", "", ""]
        put(os.path.join(folders["Addressbook"], "%d.dat" % i),
            fields[:12] + [fields[14], fields[15], fields[12], fields[13]] +
            [triplets("Met at the conference.\r\nLikes hiking.")])
    items = []
    for days, start, end, text, prio in [(0, "0900", "0930", "Stand-up with the team", 2),
                                         (0, "1400", "1530", "Dentist", 5),
                                         (2, "1100", "1200", "Lunch with Marta", 1),
                                         (5, "1900", "2100", "Choir rehearsal", 0),
                                         (-3, "1000", "1100", "Quarterly review", 4)]:
        d = (today + datetime.timedelta(days=days)).strftime("%Y%m%d")
        items.append(sep.join([d + start, d + end, text, "0", str(prio)] + ["0"] * 7) + sep)
    items.append(sep.join(["000000000730", "000000000815", "Morning run", "1", "3",
                           "1", "0", "1", "0", "1", "0", "0"]) + sep)
    lines = ["[AGENDA]", "ID=%d" % len(items)] + ["%d=%s" % (i + 1, triplets(t)) for i, t in enumerate(items)]
    cal = ["[CALENDAR]"]
    for days, text in [(1, "Mum's birthday"), (4, "Recycling collection"), (20, "Tax return due")]:
        d = today + datetime.timedelta(days=days)
        cal.append("%02d%02d=%s" % (d.month, d.day, triplets(text)))
    with open(os.path.join(prog, "Mirel", "agenda.ini"), "wb") as f:
        f.write("\r\n".join(lines + [""]).encode())
    with open(os.path.join(prog, "Mirel", "Calendar.ini"), "wb") as f:
        f.write("\r\n".join(cal + [""]).encode())


def write_account(prog):
    """One account that can send, so the compose window opens."""
    record = "* Home|pop.example.org|ann|pw|0|0|smtp.example.org|ann@example.org|Ann Example|"
    os.makedirs(os.path.join(prog, "Email"), exist_ok=True)
    with open(os.path.join(prog, "Email", "accounts.ini"), "w") as f:
        f.write("[Email]\r\n0=%s\r\n" % triplets(record))


def click(display, x, y):
    """A real pointer click, as the whole-program tests make it."""
    sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "e2e"))
    from mirel_harness import click as test_click
    test_click(display, x, y)


def compose_shots(binary, theme, display, out, size):
    """The compose window (placed at 40,10 of the main window), its format
    menu (tool 0 at 20,222) and the address picker (EMAILTO at 20,90)."""
    for name, at in [("compose", None), ("compose-menu", (40 + 34, 10 + 235)),
                     ("compose-picker", (40 + 55, 10 + 103))]:
        run = Run(binary, theme, display, sample=True, account=True)
        try:
            run.send("EMAIL")
            time.sleep(1)
            run.send("EMAILNEW")
            time.sleep(2)
            if at:
                click(display, *at)
            run.shot(os.path.join(out, "dialog-%s-%s.png" % (name, size)))
        finally:
            run.close()


class Run:
    """One program folder with the theme, one settings store, one program."""

    def __init__(self, binary, theme, display, sample=False, account=False, prepare=None):
        self.binary = binary
        self.tmp = tempfile.mkdtemp(prefix="mirel-shots-")
        prog = os.path.join(self.tmp, "prog")
        if sample:
            write_sample_data(prog)
        if account:
            write_account(prog)
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
        if prepare:
            prepare(prog)
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

    def shot(self, path, settle=3.5):
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


def clear_pop3_server():
    """A POP3 server that offers no TLS: send/receive then asks whether to go
    on without encryption, which shows the QUESTION dialog."""
    listener = socket.socket()
    listener.bind(("127.0.0.1", 0))
    listener.listen(4)

    def serve():
        while True:
            try:
                conn, _ = listener.accept()
            except OSError:
                return
            with conn:
                conn.sendall(b"+OK ready\r\n")
                while conn.recv(1024):
                    conn.sendall(b"+OK\r\nUSER\r\n.\r\n")
    threading.Thread(target=serve, daemon=True).start()
    return listener


def shoot_question(binary, theme, display, out):
    listener = clear_pop3_server()

    def account(prog):
        os.makedirs(os.path.join(prog, "Email"), exist_ok=True)
        record = "* Home|127.0.0.1:%d|ann|pw|0|0||ann@example.org|Ann|" % listener.getsockname()[1]
        with open(os.path.join(prog, "Email", "accounts.ini"), "w") as f:
            f.write("[Email]\r\n0=%s\r\n" % triplets(record))
    run = Run(binary, theme, display, prepare=account)
    try:
        run.send("EMAIL")
        time.sleep(1)
        run.send("EMAILSENDRECEIVE")
        run.shot(os.path.join(out, "dialog-question.png"), settle=10)
    finally:
        run.close()
        listener.close()


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    ap = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    ap.add_argument("--bin", default=os.path.join(here, "..", "build", "mirel"))
    ap.add_argument("--theme", default=os.path.join(here, "..", "themes", "Default"))
    ap.add_argument("--out", default=os.path.join(here, "..", "build", "screenshots"))
    ap.add_argument("--sizes", default="1024x600,1920x1080")
    ap.add_argument("--sample-data", action="store_true",
                    help="fill the organiser with a few days of example data first")
    args = ap.parse_args()
    os.makedirs(args.out, exist_ok=True)
    for size in args.sizes.split(","):
        xvfb, display = start_xvfb(size)
        try:
            run = Run(args.bin, args.theme, display, args.sample_data)
            try:
                run.shot(os.path.join(args.out, "overview-%s.png" % size))
                for screen in SCREENS:
                    run.send(screen)
                    run.shot(os.path.join(args.out, "%s-%s.png" % (screen.lower(), size)))
            finally:
                run.close()
            compose_shots(args.bin, args.theme, display, args.out, size)
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
                shoot_question(args.bin, args.theme, display, args.out)
        finally:
            stop(xvfb)
    return 0


if __name__ == "__main__":
    sys.exit(main())
