#!/usr/bin/python3
"""mail_corpus.py summary FILE...: one JSON summary per file of the rows the
storing rules should produce, as Python's own parser reads the message: a walk
two levels deep, the first text/plain and first text/html as bodies, every
other part an attachment, decoded only when its transfer encoding is written
exactly as one of the four names; sha256 of the bytes. The messages in
tests/data/mail/generated were built once with the email package, one shape of
mail each (a BinHex part carries the sha256 of its data fork in X-Data-Sha256).
"""
import email
import email.header
import email.policy
import email.utils
import hashlib
import json
import os
import re
import sys

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
        "headers": ", ".join(msg.keys()),
    }
    bodies = {}  # the first non-empty text/plain and text/html
    atts = []

    def store_part(part):
        content = content_of(part)
        kind = (part.get_content_maintype(), part.get_content_subtype())
        if part.get_content_disposition() == "attachment" or part.get_filename():
            kind = ("file",) + kind  # a named or attached text part is a file
        if kind in (("text", "plain"), ("text", "html")):
            if not bodies.get(kind):
                bodies[kind] = content or b""
            return
        entry = {"filename": stored_name(part).decode("latin-1")}
        if content is not None:
            entry["sha256"] = content[1] if isinstance(content, tuple) else sha(content)
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
    out["text_sha256"] = sha(bodies.get(("text", "plain"), b""))
    out["html_sha256"] = sha(bodies.get(("text", "html"), b""))
    out["attachments"] = atts
    return out


if __name__ == "__main__":
    if sys.argv[1:2] != ["summary"]:
        sys.exit(__doc__)
    json.dump([summarize(p) for p in sys.argv[2:]], sys.stdout, indent=1)
