#!/usr/bin/env python3
"""Static mock-ups of a theme's screens and dialogs, and a consistency check.

The mock-up reads the skin files the way the program does (INI rules,
numbered control lines up to the first gap, the placement rules) and draws
every control as a rectangle with its picture or sample text, so a theme
author can see a layout at several window sizes without starting Mirel.
It is a preview, not the engine: widgets are approximated.

    tools/skin-mockup.py [--theme themes/Default] [--out build/mockups]
    tools/skin-mockup.py --check        # exit status 1 when a problem is found

Needs only Python 3 and ImageMagick's `convert`.
"""
import argparse
import os
import re
import subprocess
import sys

SCREENS = ["Overview", "Notes", "Logbook", "Todo", "Address", "Agenda", "Calendar", "Email"]
DIALOGS = ["INPUT", "EMAILSEND", "EMAILSENDRECEIVE", "EMAILACCOUNTS", "EMAILCONFIG",
           "EMAILMOVE", "ADDRESSIMPORT"]
SIZES = [(1024, 600), (1920, 1080)]
BUTTON_KINDS = {"B", "BD"} | {"B%d" % i for i in range(8)} | {"B" + c for c in "ABCEF"}
PERCENT_KINDS = {"P", "T", "M", "LB", "SP"} | {"S%d" % i for i in range(9)}
FONT = "DejaVu-Sans"


# ---------------------------------------------------------------- INI rules
class Ini:
    """First section of a name and first key of a name win; names ignore case;
    values are trimmed and lose one pair of surrounding quotes."""

    def __init__(self, path):
        self.sections = {}
        self.order = []
        if not os.path.exists(path):
            return
        current = None
        with open(path, "rb") as f:
            for raw in f.read().decode("cp1252").splitlines():
                line = raw.strip(" \t")
                if not line or line.startswith(";"):
                    continue
                if line.startswith("[") and "]" in line:
                    name = line[1:line.rindex("]")].strip().lower()
                    if name in self.sections:
                        current = None  # later duplicates are inert
                    else:
                        current = self.sections.setdefault(name, {})
                        self.order.append(name)
                    continue
                if current is None or "=" not in line:
                    continue
                key, value = line.split("=", 1)
                key = key.strip().lower()
                value = value.strip(" \t")
                if len(value) >= 2 and value[0] == value[-1] and value[0] in "\"'":
                    value = value[1:-1]
                current.setdefault(key, value)

    def get(self, section, key, default=None):
        return self.sections.get(section.lower(), {}).get(key.lower(), default)

    def lines(self, section):
        """The control lines "01", "02", ... up to the first missing number."""
        out = []
        n = 1
        while True:
            v = self.get(section, "%02d" % n)
            if v is None:
                return out
            out.append(("%02d" % n, v))
            n += 1


def leading(field):
    m = re.match(r"\s*([+-]?\d+)", field or "")
    return int(m.group(1)) if m else 0


def measure(field, total, kind):
    if kind in PERCENT_KINDS and field.strip().endswith("%"):
        return int(leading(field) * total / 100)
    return leading(field)


def place(kind, fields, w, h):
    """left, top, width, height fields -> rectangle in a w x h window."""
    f = (fields + ["0"] * 4)[:4]
    left, top = measure(f[0], w, kind), measure(f[1], h, kind)
    width, height = measure(f[2], w, kind), measure(f[3], h, kind)
    if left < 0:
        left += w
    if top < 0:
        top += h
    strict = kind in BUTTON_KINDS or kind == "A"
    if (width < 0) if strict else (width < 1):
        width = w + width - left
    if (height < 0) if strict else (height < 1):
        height = h + height - top
    return left, top, max(width, 0), max(height, 0)


def rgb(fields, i):
    c = [max(0, min(255, leading(x))) for x in (fields[i:i + 3] + ["0", "0", "0"])[:3]]
    return "rgb(%d,%d,%d)" % tuple(c)


def find(theme, name):
    """Case-insensitive lookup of a theme file, as the program does."""
    if not name:
        return None
    path = theme
    for part in name.replace("\\", "/").split("/"):
        try:
            entries = os.listdir(path)
        except OSError:
            return None
        match = [e for e in entries if e.lower() == part.lower()]
        if not match:
            return None
        path = os.path.join(path, match[0])
    return path


def lit_name(name):
    return name[:-4] + "a" + name[-4:]


# ------------------------------------------------------------ sample content
SAMPLES = {
    "overview": ["  Agenda  (3)", "  202611.23 Monday", "    09:00-09:30 2   Stand-up",
                 "    14:00-15:30 5   Dentist", "  202611.24 Tuesday", "    18:00-19:00 0   Choir",
                 "  Calendar  (1)", "  202611.25 Anna's birthday", "E-Mail  (4)", "  Inbox",
                 "  Outbox", "  Sent", "  Deleted", "  To-do  (2)", "  Renew passport",
                 "  Buy winter tyres"],
    "notes": ["Book list", "Gift ideas", "Recipes", "Wi-Fi at the cottage"],
    "entries": ["202611.22 21:14:05", "   Finished the garden shed", "202611.20 08:02:44",
                "   Train delayed again"],
    "tasks": ["TODO  Buy winter tyres", "TODO  Renew passport", "DONE  Answer letter"],
    "contacts": ["Anna Berg", "Bob Miller", "Chris Novak", "Dana Ortiz"],
    "agenda": ["202611.23 Monday", "    09:00-09:30 2   Stand-up", "    14:00-15:30 5   Dentist",
               "202611.24 Tuesday", "    18:00-19:00 0   Choir"],
    "daynotes": ["25 November  Anna's birthday", "24 December  Family dinner",
                 "31 December  Fireworks"],
    "messages": ["*    Anna Berg        Photos from the trip     Sun, 22 Nov 2026     me",
                 "     Bob Miller       Re: shed plans           Sat, 21 Nov 2026     me"],
    "view": ["From:     Anna Berg", "Subject:  Photos from the trip", "",
             "Hi! The pictures are attached - see you on Sunday."],
    "attachments": ["[img] beach_01.jpg   [img] beach_02.jpg"],
    "status": ["DS1: Signed in: UFCA-HOME", "DS1: Connection ready",
               "DS1: New message received (1)", "DS1: Done", "Outbox: Connection ready",
               "Outbox: Message sent (1)", "Outbox: Done"],
    "folders": ["Inbox", "Sent", "Travel", "Receipts"],
    "accounts": ["* Home", "  Work"],
    "list": ['"Anna Berg" <anna@example.org>', '"Bob Miller" <bob@example.org>'],
}
LABEL_SAMPLES = {"DAY": "22", "MONTH": "November", "YEAR": "2026", "SHOUR": "14",
                 "SMIN": "30", "EHOUR": "15", "EMIN": "30",
                 "STAMP": "202611.22 21:14:05"}
BOX_SAMPLES = {"title": "Gift ideas", "field01": "Anna Berg", "field02": "Nordlicht Design",
               "field13": "anna@example.org", "day25": "Anna's birthday",
               "day24": "Family dinner", "emailtextto": '"Bob Miller" <bob@example.org>',
               "emailtextsubject": "Shed plans", "emailtextname": "Anna Berg",
               "emailtextemail": "anna@example.org", "emailtextpop3": "pop.example.org",
               "emailtextsmtp": "smtp.example.org:587", "emailtextuser": "anna",
               "emailtextpass": "########"}


class Canvas:
    """Collects ImageMagick operations and renders them in one call."""

    def __init__(self, base_args):
        self.args = list(base_args)

    def picture(self, path, x, y, w, h):
        if not path or w <= 0 or h <= 0:
            return
        src = path + "[0]" if path.lower().endswith(".gif") else path
        self.args += ["(", src, "-resize", "%dx%d!" % (w, h), ")",
                      "-geometry", "+%d+%d" % (x, y), "-composite"]

    def rect(self, x, y, w, h, fill, stroke=None):
        if w <= 0 or h <= 0:
            return
        self.args += ["-fill", fill, "-stroke", stroke or "none",
                      "-draw", "rectangle %d,%d %d,%d" % (x, y, x + w - 1, y + h - 1),
                      "-stroke", "none"]

    def text(self, x, y, s, colour, size=12, font=FONT):
        if not s:
            return
        self.args += ["-font", font, "-pointsize", str(size), "-fill", colour,
                      "-annotate", "+%d+%d" % (x, y), s.replace("%", "%%")]

    def circle(self, cx, cy, r, fill, stroke):
        self.args += ["-fill", fill, "-stroke", stroke,
                      "-draw", "circle %d,%d %d,%d" % (cx, cy, cx + r, cy), "-stroke", "none"]

    def save(self, out):
        subprocess.run(["convert"] + self.args + [out], check=True)


def font_of(fields, i):
    name = fields[i] if len(fields) > i else "DejaVu Sans"
    size = leading(fields[i + 1]) if len(fields) > i + 1 else 10
    im = "DejaVu-Sans-Mono" if "mono" in name.lower() else FONT
    return im, max(6, round(size * 96 / 72))


def text_area(c, rect, fields, rows, clip_w):
    x, y, w, h = rect
    c.rect(x, y, w, h, rgb(fields, 4), "rgb(44,52,72)")
    font, px = font_of(fields, 10)
    line = px + 4
    for i, row in enumerate(rows):
        ty = y + 4 + (i + 1) * line - 4
        if ty > y + h - 2:
            break
        c.text(x + 5, ty, row[: max(1, clip_w // max(1, px // 2 + 1))], rgb(fields, 7), px, font)


def draw_line(c, theme, kind, name, fields, w, h, window_bg):
    """Draws one control line; returns a problem text or None."""
    if kind in BUTTON_KINDS:
        rect = place(kind, fields[:4], w, h)
        path = find(theme, name)
        c.picture(path, *rect)
        return None if path else "missing picture " + name
    if kind == "P":
        rect = place(kind, fields[:4], w, h)
        if name.lower() == "themepic":
            path = os.path.join(os.path.dirname(os.path.abspath(theme)),
                                os.path.basename(os.path.abspath(theme)) + ".bmp")
            path = path if os.path.exists(path) else None
        else:
            path = find(theme, name)
        c.picture(path, *rect)
        return None if path else "missing picture " + name
    if kind == "A":
        rect = place(kind, fields[:4], w, h)
        path = find(theme, name)
        c.picture(path, *rect)
        return None if path else "missing animation " + name
    if kind in ("L", "ML", "MO", "MA", "MH", "T", "M"):
        rect = place(kind, fields[:4], w, h)
        if kind in ("T", "M"):
            rows = [BOX_SAMPLES.get(name.lower(), "")]
        else:
            rows = SAMPLES.get(name.lower(), ["row 1", "row 2"])
        text_area(c, rect, fields, rows, rect[2])
        return None
    if kind == "LB":
        x, y, bw, bh = place(kind, fields[:4], w, h)
        c.rect(x, y, bw, bh, rgb(fields, 4))
        font, px = font_of(fields, 10)
        caption = fields[12] if len(fields) > 12 else ""
        caption = caption or LABEL_SAMPLES.get(name.upper(), "")
        c.text(x + 2, y + (bh + px) // 2 - 2, caption, rgb(fields, 7), px, font)
        return None
    if kind in {"S%d" % i for i in range(9)}:
        x, y, bw, bh = place(kind, fields[:4], w, h)
        c.rect(x, y, bw, bh, window_bg)
        s = min(bw, bh) - 4
        if kind in ("S0", "S1"):
            c.circle(x + 2 + s // 2, y + bh // 2, s // 2, "rgb(26,30,42)", "rgb(120,130,150)")
            if kind == "S0":
                c.circle(x + 2 + s // 2, y + bh // 2, s // 4, "rgb(0,200,215)", "rgb(0,200,215)")
        else:
            c.rect(x + 2, y + (bh - s) // 2, s, s, "rgb(26,30,42)", "rgb(120,130,150)")
        return None
    if kind == "SP":
        lname = name.lower()
        if lname.startswith("emailbut"):
            pic = fields[0] if fields else ""
            rect = place(kind, fields[1:5], w, h)
            path = find(theme, pic)
            c.picture(path, *rect)
            return None if path else "missing picture " + pic
        if lname in ("emailhostdelete", "emailhostauto"):
            x, y, _, _ = place(kind, fields[:2] + ["18", "18"], w, h)
            c.rect(x, y + 2, 16, 16, "rgb(26,30,42)", "rgb(120,130,150)")
            return None
        rect = place(kind, fields[:4], w, h)
        if lname.startswith("emailtext"):
            text_area(c, rect, fields, [BOX_SAMPLES.get(lname, "")], rect[2])
        elif lname == "emailedit":
            x, y, ew, eh = rect
            c.rect(x, y, ew, eh, "black", "rgb(44,52,72)")
            c.text(x + 8, y + 20, "Hello Bob,", "white", 13)
            c.rect(x, y + eh + 4, ew, 60, "rgb(14,16,22)", "rgb(44,52,72)")
            c.text(x + 8, y + eh + 24, "(attachments)", "rgb(125,135,156)", 11)
        else:
            x, y, ew, eh = rect
            c.rect(x, y, ew, eh, rgb(fields, 4), "rgb(44,52,72)")
            sample = {"emailaccounts": "Home", "emailfontname": "DejaVu Sans",
                      "emailfontsize": "3"}.get(lname, lname)
            c.text(x + 5, y + eh - 8, sample + "  v", "rgb(216,221,232)", 12)
        return None
    return "unknown kind " + kind


def split_line(value):
    parts = value.split(",")
    return parts[0].strip(), (parts[1] if len(parts) > 1 else ""), parts[2:]


def render_section(c, theme, ini, section, w, h, window_bg, problems, where):
    for key, value in ini.lines(section):
        kind, name, fields = split_line(value)
        problem = draw_line(c, theme, kind, name, fields, w, h, window_bg)
        if problem:
            problems.append("%s [%s] %s: %s" % (where, section, key, problem))


def render_screen(theme, screen, w, h, out, problems):
    ini = Ini(find(theme, "Mirel.skn") or "")
    bg = "rgb(%s)" % ini.get("DEFAULT", "BackGround", "0,0,0")
    c = Canvas(["-size", "%dx%d" % (w, h), "xc:" + bg])
    render_section(c, theme, ini, "DEFAULT", w, h, bg, problems, "Mirel.skn")
    render_section(c, theme, ini, screen, w, h, bg, problems, "Mirel.skn")
    if screen == "Calendar":
        month = ini.get("CALENDAR", "month")
        if month:
            rect = place("P", month.split(","), w, h)
            c.picture(find(theme, "Mirel/calmon11.jpg"), *rect)
    c.save(out)


def render_dialog(theme, skin, section, out, problems):
    ini = Ini(find(theme, skin) or "")
    back = find(theme, ini.get(section, "BackGround", ""))
    if not back:
        problems.append("%s [%s]: missing BackGround picture" % (skin, section))
        return
    size = subprocess.run(["identify", "-format", "%w %h", back + "[0]"],
                          capture_output=True, text=True, check=True).stdout.split()
    w, h = int(size[0]), int(size[1])
    mask = rgb(ini.get(section, "MaskColor", "255,0,255").split(","), 0)
    # Show what the mask cuts away as the desktop behind the dialog.
    c = Canvas(["-size", "%dx%d" % (w + 40, h + 40), "xc:rgb(58,63,74)",
                "(", back, "-fill", "rgb(58,63,74)", "-opaque", mask, ")",
                "-geometry", "+20+20", "-composite"])
    shifted = Canvas([])
    render_section(shifted, theme, ini, section, w, h, "rgb(21,25,35)", problems, skin)
    fixed = []
    if section.upper() == "INPUT" and ini.get(section, "InputBox"):
        fixed.append(("T", "input", ini.get(section, "InputBox").split(",")))
    if section.upper() == "EMAILTO" and ini.get(section, "list"):
        fixed.append(("L", "list", ini.get(section, "list").split(",")))
    if section.upper() == "ADDRESSIMPORT":
        for k in range(17):
            v = ini.get(section, "field%02d" % k)
            if v is None:
                problems.append("%s [%s]: no field%02d" % (skin, section, k))
                continue
            g = v.split(",")
            fixed.append(("SP", "combo", g[:4] + ["26", "30", "42"]))
    for kind, name, fields in fixed:
        draw_line(shifted, theme, kind, name, fields, w, h, "rgb(21,25,35)")
    # Controls are placed in dialog coordinates; offset them by the margin.
    c.args += offset_ops(shifted.args, 20, 20)
    c.save(out)


def offset_ops(args, dx, dy):
    """Moves the drawing operations of a Canvas by dx, dy."""
    out = []
    i = 0
    while i < len(args):
        a = args[i]
        if a == "-geometry":
            x, y = re.match(r"\+(-?\d+)\+(-?\d+)", args[i + 1]).groups()
            out += [a, "+%d+%d" % (int(x) + dx, int(y) + dy)]
            i += 2
            continue
        if a == "-annotate":
            x, y = re.match(r"\+(-?\d+)\+(-?\d+)", args[i + 1]).groups()
            out += [a, "+%d+%d" % (int(x) + dx, int(y) + dy), args[i + 2]]
            i += 3
            continue
        if a == "-draw":
            prim, rest = args[i + 1].split(" ", 1)
            nums = re.sub(r"(-?\d+),(-?\d+)",
                          lambda m: "%d,%d" % (int(m.group(1)) + dx, int(m.group(2)) + dy), rest)
            out += [a, prim + " " + nums]
            i += 2
            continue
        out.append(a)
        i += 1
    return out


# ------------------------------------------------------------------- checks
def read_ppm(path):
    data = subprocess.run(["convert", path + "[0]", "-depth", "8", "ppm:-"],
                          capture_output=True, check=True).stdout
    fields = data.split(maxsplit=4)
    w, h = int(fields[1]), int(fields[2])
    return w, h, fields[4][-w * h * 3:]


def fringe_pixels(path, mask):
    """Pixels close to the mask colour without being it: a soft outline."""
    w, h, px = read_ppm(path)
    count = 0
    for i in range(0, len(px), 3):
        r, g, b = px[i], px[i + 1], px[i + 2]
        if (r, g, b) != mask and abs(r - mask[0]) + abs(g - mask[1]) + abs(b - mask[2]) < 120:
            count += 1
    return count


def gif_frames(path):
    """Cuts a GIF the way the program does: at every 00 21 F9, behind a head
    that ends with the first 00 21. Returns (frames that decode, frames)."""
    with open(path, "rb") as f:
        data = f.read()
    cuts = []
    i = data.find(b"\x00\x21\xf9")
    while i >= 0:
        cuts.append(i)
        i = data.find(b"\x00\x21\xf9", i + 1)
    if not cuts:
        return 0, 0
    head = data[:cuts[0] + 2]
    good = 0
    for k, c in enumerate(cuts):
        end = cuts[k + 1] + 2 if k + 1 < len(cuts) else len(data)
        frame = head + data[c + 2:end]
        if frame.endswith(b"\x00\x21"):
            frame = frame[:-1] + b"\x3b"  # a trailer in place of the dangling introducer
        r = subprocess.run(["identify", "gif:-"], input=frame, capture_output=True)
        good += r.returncode == 0
    return good, len(cuts)


def wav_problem(path):
    with open(path, "rb") as f:
        head = f.read(44)
    if len(head) < 44 or head[:4] != b"RIFF" or head[8:12] != b"WAVE":
        return "not a WAV file"
    rate = int.from_bytes(head[24:28], "little")
    per_second = int.from_bytes(head[28:32], "little")
    seconds = (os.path.getsize(path) - 44) / max(1, per_second)
    if rate <= 0 or seconds > 3:
        return "%.1f s long" % seconds
    return None


def check(theme):
    problems = []
    for entry in sorted(os.listdir(theme)):
        full = os.path.join(theme, entry)
        if entry.lower().endswith(".wav"):
            p = wav_problem(full)
            if p:
                problems.append("%s: %s" % (entry, p))
        if entry.lower().endswith(".gif"):
            good, total = gif_frames(full)
            if total < 2 or good != total:
                problems.append("%s: %d of %d frames stand alone" % (entry, good, total))
    root = os.path.dirname(os.path.abspath(theme))
    for skin, sections in (("Mirel.skn", SCREENS + ["DEFAULT", "Emailto"]),
                           ("terminal.skn", DIALOGS + ["DEFAULT", "STARTUP"])):
        path = find(theme, skin)
        if not path:
            problems.append("missing " + skin)
            continue
        ini = Ini(path)
        for section in sections:
            if section.lower() not in ini.sections:
                problems.append("%s: no section [%s]" % (skin, section))
        for section in ini.order:
            keys = ini.sections[section]
            numbered = sorted(int(k) for k in keys if re.fullmatch(r"\d\d", k))
            if numbered and numbered != list(range(1, len(numbered) + 1)):
                problems.append("%s [%s]: control lines have a gap" % (skin, section))
            for key, value in ini.lines(section):
                kind, name, fields = split_line(value)
                if kind in BUTTON_KINDS:
                    if len(fields) < 8:
                        problems.append("%s [%s] %s: short button line" % (skin, section, key))
                        continue
                    for pic in (name, lit_name(name)):
                        if not find(theme, pic):
                            problems.append("%s [%s] %s: missing %s" % (skin, section, key, pic))
                    for snd in fields[4:6]:
                        if snd and ":" not in snd and not find(theme, snd + ".wav"):
                            problems.append("%s [%s] %s: missing sound %s" % (skin, section, key, snd))
            for key in ("startupsound", "passstartsound", "passfailsound", "passoksound", "load",
                        "sndemailincomming", "sndemailoutgoing"):
                snd = keys.get(key)
                if snd and not find(theme, snd + ".wav"):
                    problems.append("%s [%s] %s: missing sound %s" % (skin, section, key, snd))
            back = keys.get("background")
            if back and "," not in back:
                bpath = find(theme, back)
                if not bpath:
                    problems.append("%s [%s]: missing %s" % (skin, section, back))
                else:
                    m = tuple(max(0, min(255, leading(x)))
                              for x in (keys.get("maskcolor", "255,0,255").split(",") + ["0"] * 3)[:3])
                    n = fringe_pixels(bpath, m)
                    if n:
                        problems.append("%s: %d blended pixels next to the mask colour" % (back, n))
    for m in range(1, 13):
        for ext in ("bmp", "jpg"):
            if not find(theme, "Mirel/calmon%02d.%s" % (m, ext)):
                problems.append("missing Mirel/calmon%02d.%s" % (m, ext))
    if not os.path.exists(os.path.join(root, os.path.basename(os.path.abspath(theme)) + ".bmp")):
        problems.append("missing theme preview picture next to the theme folder")
    return problems


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    ap = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    ap.add_argument("--theme", default=os.path.join(here, "..", "themes", "Default"))
    ap.add_argument("--out", default=os.path.join(here, "..", "build", "mockups"))
    ap.add_argument("--check", action="store_true", help="only check the theme's files")
    ap.add_argument("--only", help="render only the screens or dialogs named (comma list)")
    ap.add_argument("--sizes", default=",".join("%dx%d" % s for s in SIZES),
                    help="window sizes of the screens, e.g. 1024x600,1920x1080")
    args = ap.parse_args()
    if args.check:
        problems = check(args.theme)
        for p in problems:
            print(p)
        print("%d problem(s)" % len(problems))
        return 1 if problems else 0
    os.makedirs(args.out, exist_ok=True)
    problems = []
    only = {s.lower() for s in args.only.split(",")} if args.only else None
    sizes = [tuple(int(n) for n in s.split("x")) for s in args.sizes.split(",")]
    for screen in SCREENS:
        if only and screen.lower() not in only:
            continue
        for w, h in sizes:
            out = os.path.join(args.out, "%s-%dx%d.png" % (screen.lower(), w, h))
            render_screen(args.theme, screen, w, h, out, problems)
            print(out)
    for skin, section in [("terminal.skn", d) for d in DIALOGS] + [("Mirel.skn", "Emailto")]:
        if only and section.lower() not in only:
            continue
        out = os.path.join(args.out, "dialog-%s.png" % section.lower())
        render_dialog(args.theme, skin, section, out, problems)
        print(out)
    for p in sorted(set(problems)):
        print("problem:", p)
    return 0


if __name__ == "__main__":
    sys.exit(main())
