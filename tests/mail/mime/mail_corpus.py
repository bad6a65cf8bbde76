#!/usr/bin/python3
"""Mail for the received-mail tests, and what Python's own parser reads from it.

  mail_corpus.py generate DIR   writes gen_*.eml: messages built with the email
                                package, one shape of mail each
  mail_corpus.py summary FILE…  prints one JSON summary per file: the rows the
                                storing rules should produce, as Python sees them

The summary follows the storing rules with Python's parser: a walk two levels
deep, the first text/plain and first text/html as bodies, every other part an
attachment; a part is decoded only when its transfer encoding is written
exactly as one of the four names. Sizes and sha256 are of the bytes.
"""
import binascii
import email
import email.header
import email.policy
import email.utils
import hashlib
import json
import os
import random
import re
import sys
from email.message import Message
from email.mime.application import MIMEApplication
from email.mime.base import MIMEBase
from email.mime.image import MIMEImage
from email.mime.message import MIMEMessage
from email.mime.multipart import MIMEMultipart
from email.mime.text import MIMEText

ENCODED = ("quoted-printable", "base64", "mac-binhex40", "x-uuencode")


def sha(b):
    return hashlib.sha256(b).hexdigest()


def raw_value(msg, name):
    v = msg.get(name)
    if v is None:
        return b""
    # unfolded, from the first character after the blanks that follow the colon
    v = str(v).replace("\r", "").replace("\n", "").lstrip(" \t")
    return v.encode("ascii", "surrogateescape")


def index_text(b):
    return b[:255].strip(b" ")


def params_of(part):
    v = raw_value(part, "Content-Type")
    return v.split(b";", 1)[1].strip() if b";" in v else b""


def stored_name(part):
    """The parameter text an attachment is stored with: its decoded name in
    front as name="..." unless the first quoted text already is that name."""
    params = params_of(part)
    name = part.get_param("name") or part.get_param("filename", header="content-disposition")
    if isinstance(name, tuple):
        name = email.utils.collapse_rfc2231_value(name)
    if not name:
        return params
    name = str(email.header.make_header(email.header.decode_header(name))).strip()
    raw = name.encode("utf-8", "surrogateescape").replace(b'"', b"'")
    quoted = re.search(rb'"([^"]*)"', params)
    if not raw or (quoted and quoted.group(1) == raw):
        return params
    return b'name="' + raw + b'"' + (b"; " + params if params else b"")


def content_of(part):
    enc = raw_value(part, "Content-Transfer-Encoding").strip()
    payload = part._payload  # get_payload() would apply the charset to 8-bit text
    if isinstance(payload, list):
        return None  # a container or an attached message: bytes not compared
    raw = payload.encode("ascii", "surrogateescape")
    if enc.decode("ascii", "replace") not in ENCODED:
        return raw
    if enc == b"mac-binhex40":
        expected = part.get("X-Data-Sha256")
        return ("sha", "".join(expected.split())) if expected else None
    return part.get_payload(decode=True)


def summarize(path):
    with open(path, "rb") as f:
        # from bytes, not from a file: a file is read with its line ends translated
        msg = email.message_from_bytes(f.read(), policy=email.policy.compat32)
    out = {
        "file": os.path.basename(path),
        "subject": index_text(raw_value(msg, "Subject")).decode("latin-1"),
        "from": index_text(raw_value(msg, "From")).decode("latin-1"),
        "to": index_text(raw_value(msg, "To")).decode("latin-1"),
        "date": raw_value(msg, "Date").decode("latin-1"),
        "headers": len(msg.keys()),
    }
    text = html = None
    atts = []

    def store_part(part):
        nonlocal text, html
        content = content_of(part)
        kind = (part.get_content_maintype(), part.get_content_subtype())
        if part.get_content_disposition() == "attachment" or part.get_filename():
            kind = ("file",) + kind  # a named or attached text part is a file
        if kind == ("text", "plain"):
            if not text:
                text = content if content is not None else b""
            return
        if kind == ("text", "html"):
            if not html:
                html = content if content is not None else b""
            return
        entry = {"filename": stored_name(part).decode("latin-1"), "type": "/".join(kind[-2:])}
        if isinstance(content, tuple):
            entry["sha256"] = content[1]
        elif content is not None:
            entry["sha256"] = sha(content)
            entry["size"] = len(content)
        atts.append(entry)

    def opens(part):
        # Only true containers are entered; an attached message is one part.
        return part.get_content_maintype() == "multipart" and isinstance(part.get_payload(), list)

    if opens(msg) and msg.get_payload():
        for part in msg.get_payload():
            if opens(part) and part.get_payload():
                for sub in part.get_payload():
                    store_part(sub)
            else:
                store_part(part)
    else:
        store_part(msg)
    out["text_sha256"] = sha(text or b"")
    out["text_size"] = len(text or b"")
    out["html_sha256"] = sha(html or b"")
    out["html_size"] = len(html or b"")
    out["attachments"] = atts
    return out


# --- generating -------------------------------------------------------------

ALPHABET = b"!\"#$%&'()*+,-012345689@ABCDEFGHIJKLMNPQRSTUVXYZ[`abcdefhijklmpqr"


def binhex(name, data, resource=b""):
    def crc(b):
        return binascii.crc_hqx(b, 0).to_bytes(2, "big")

    header = bytes([len(name)]) + name + b"\0" + b"TEXT" + b"ttxt" + b"\0\0"
    header += len(data).to_bytes(4, "big") + len(resource).to_bytes(4, "big")
    plain = header + crc(header) + data + crc(data) + resource + crc(resource)
    rle = bytearray()
    i = 0
    while i < len(plain):
        b = plain[i]
        run = 1
        while i + run < len(plain) and plain[i + run] == b and run < 255:
            run += 1
        if b == 0x90:
            rle += b"\x90\x00"
            run = 1
        elif run >= 3:
            rle += bytes([b, 0x90, run])
        else:
            rle += bytes([b]) * run
        i += run
    chars = bytearray()
    bits = nbits = 0
    for b in rle:
        bits = (bits << 8) | b
        nbits += 8
        while nbits >= 6:
            nbits -= 6
            chars.append(ALPHABET[(bits >> nbits) & 63])
    if nbits:
        chars.append(ALPHABET[(bits << (6 - nbits)) & 63])
    body = b":" + bytes(chars) + b":"
    lines = [body[i:i + 64] for i in range(0, len(body), 64)]
    return b"(This file must be converted with BinHex 4.0)\n" + b"\n".join(lines) + b"\n"


def uuencode(name, data):
    out = [b"begin 644 " + name]
    for i in range(0, len(data), 45):
        out.append(binascii.b2a_uu(data[i:i + 45]).rstrip(b"\n"))
    out += [b"`", b"end"]
    return b"\n".join(out) + b"\n"


def headers(msg, subject, n):
    msg["Subject"] = subject
    msg["From"] = '"Ann Example" <ann@example.org>'
    msg["To"] = "bob@example.net"
    msg["Date"] = "Sun, 22 Nov 2026 10:%02d:00 +0100" % n
    msg["Message-ID"] = "<gen-%d@example.org>" % n
    return msg


def attachment(maintype, subtype, data, name, encoder=None):
    part = MIMEBase(maintype, subtype, name=name)
    part.set_payload(data)
    if encoder:
        encoder(part)
    else:
        email.encoders.encode_base64(part)
    part.add_header("Content-Disposition", "attachment", filename=name)
    return part


def raw_part(headers_text, body):
    return headers_text.encode() + b"\n\n" + body


def generate(folder):
    import email.encoders

    rng = random.Random(1126)
    every_byte = bytes(range(256)) * 4
    pdf = b"%PDF-1.4\n" + bytes(rng.randrange(256) for _ in range(3000)) + b"\n%%EOF\n"
    png = b"\x89PNG\r\n\x1a\n" + bytes(rng.randrange(256) for _ in range(700))
    messages = {}

    messages["plain"] = headers(MIMEText("Hello Bob,\nthe plain text.\n"), "Plain", 1)
    messages["html"] = headers(MIMEText("<html><body><p>Only HTML</p></body></html>\n", "html"),
                               "Html only", 2)

    alt = MIMEMultipart("alternative")
    alt.attach(MIMEText("Text of the alternative\n"))
    alt.attach(MIMEText("<p>HTML of the alternative</p>\n", "html"))
    messages["alternative"] = headers(alt, "Alternative", 3)

    mixed = MIMEMultipart("mixed")
    inner = MIMEMultipart("alternative")
    inner.attach(MIMEText("Report attached.\n"))
    inner.attach(MIMEText("<p>Report <b>attached</b>.</p>\n", "html"))
    mixed.attach(inner)
    mixed.attach(MIMEApplication(pdf, "pdf", Name="report.pdf"))
    messages["mixed_pdf"] = headers(mixed, "Report", 4)

    two = MIMEMultipart("mixed")
    two.attach(MIMEText("First text part\n"))
    two.attach(MIMEText("Second text part, dropped\n"))
    messages["two_texts"] = headers(two, "Two texts", 5)

    three = MIMEMultipart("mixed")
    three.attach(MIMEText("Three binaries follow.\n"))
    for i, data in enumerate([every_byte, png, b""]):
        three.attach(attachment("application", "octet-stream", data, "blob%d.bin" % i))
    messages["three_binaries"] = headers(three, "Three", 6)

    qp = MIMEText("Caf\xe9 cr\xe8me, line with = sign and a long line " + "x" * 90 + "\n",
                  "plain", "iso-8859-1")
    del qp["Content-Transfer-Encoding"]
    qp["Content-Transfer-Encoding"] = "quoted-printable"
    qp.set_payload(__import__("quopri").encodestring(
        ("Caf\xe9 cr\xe8me, line with = sign and a long line " + "x" * 90 + "\n").encode("latin-1")).decode("ascii"))
    messages["quoted_printable"] = headers(qp, "=?iso-8859-1?q?Caf=E9?=", 7)

    eight = Message()
    headers(eight, "Eight bit", 8)
    eight["MIME-Version"] = "1.0"
    eight["Content-Type"] = 'text/plain; charset="utf-8"'
    eight["Content-Transfer-Encoding"] = "8bit"
    eight.set_payload("Grüße aus Köln — 8-bit body\n".encode("utf-8").decode("ascii", "surrogateescape"))
    messages["eight_bit"] = eight

    uu = MIMEMultipart("mixed")
    uu.attach(MIMEText("A uuencoded file follows.\n"))
    part = MIMEBase("application", "octet-stream", name="notes.bin")
    part["Content-Transfer-Encoding"] = "x-uuencode"
    part.set_payload(uuencode(b"notes.bin", every_byte[:500]).decode("ascii"))
    uu.attach(part)
    messages["uuencode"] = headers(uu, "Uuencoded", 9)

    bh = MIMEMultipart("mixed")
    bh.attach(MIMEText("A BinHex file follows.\n"))
    data = b"Mac file \x90\x90 data" + b"\0" * 40 + every_byte[:300]
    part = MIMEBase("application", "mac-binhex40", name="mac.txt")
    part["Content-Transfer-Encoding"] = "mac-binhex40"
    part["X-Data-Sha256"] = sha(data)
    part.set_payload(binhex(b"mac.txt", data, b"resource fork").decode("ascii"))
    bh.attach(part)
    messages["binhex"] = headers(bh, "BinHex", 10)

    cap = MIMEMultipart("mixed")
    cap.attach(MIMEText("Capitalised encoding name follows.\n"))
    part = MIMEBase("application", "pdf", name="raw.pdf")
    part["Content-Transfer-Encoding"] = "Base64"
    part.set_payload(binascii.b2a_base64(pdf[:400]).decode("ascii"))
    cap.attach(part)
    messages["capital_base64"] = headers(cap, "Capital", 11)

    seven = MIMEMultipart("mixed")
    part = MIMEBase("image", "gif", name="seven.gif")
    part["Content-Transfer-Encoding"] = "7bit"
    part.set_payload("GIF89a pretend lines\nsecond line\n")
    seven.attach(part)
    messages["seven_bit_image"] = headers(seven, "Seven", 12)

    messages["long_subject"] = headers(MIMEText("Long subject.\n"), "  " + "S" * 300, 13)

    deep = MIMEMultipart("mixed")
    level2 = MIMEMultipart("mixed")
    level3 = MIMEMultipart("alternative")
    level3.attach(MIMEText("Too deep to be a body\n"))
    level3.attach(MIMEText("<p>Too deep</p>\n", "html"))
    level2.attach(MIMEText("Second level text\n"))
    level2.attach(level3)
    deep.attach(level2)
    messages["three_levels"] = headers(deep, "Deep", 14)

    fwd = MIMEMultipart("mixed")
    fwd.attach(MIMEText("Forwarded message attached.\n"))
    fwd.attach(MIMEMessage(headers(MIMEText("The inner one.\n"), "Inner", 99)))
    messages["attached_message"] = headers(fwd, "Forward", 15)

    os.makedirs(folder, exist_ok=True)
    for name, msg in messages.items():
        with open(os.path.join(folder, "gen_%s.eml" % name), "wb") as f:
            f.write(msg.as_bytes(policy=email.policy.compat32))
    crlf = headers(MIMEText("Line one\r\nLine two\r\n"), "CRLF", 16).as_bytes()
    with open(os.path.join(folder, "gen_crlf.eml"), "wb") as f:
        f.write(crlf.replace(b"\r\n", b"\n").replace(b"\n", b"\r\n"))


if __name__ == "__main__":
    if len(sys.argv) >= 3 and sys.argv[1] == "generate":
        generate(sys.argv[2])
    elif len(sys.argv) >= 2 and sys.argv[1] == "summary":
        json.dump([summarize(p) for p in sys.argv[2:]], sys.stdout, indent=1)
    else:
        sys.exit(__doc__)
