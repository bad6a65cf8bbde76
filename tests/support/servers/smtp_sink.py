#!/usr/bin/python3
"""An SMTP server for the tests: accepts mail on 127.0.0.1 and saves each
message as N.eml (the bytes received) and N.json (the envelope and what
Python's email package reads from the message), so the tests check the
client's output with a parser that is not ours.

Options: --port P --folder F [--cert C --key K] [--login USER:PASSWORD]
[--reject TEXT] (recipients containing TEXT are refused with 550). Runs
until SIGTERM.
"""
import argparse
import base64
import email
import email.policy
import json
import os
import signal
import ssl
import threading

from aiosmtpd.controller import Controller
from aiosmtpd.smtp import AuthResult, LoginPassword


class Sink:
    def __init__(self, folder, reject):
        self.folder = folder
        self.reject = reject
        self.count = 0

    async def handle_RCPT(self, server, session, envelope, address, rcpt_options):
        if self.reject and self.reject in address:
            return "550 5.1.1 <%s>: Recipient address rejected" % address
        envelope.rcpt_tos.append(address)
        return "250 OK"

    async def handle_DATA(self, server, session, envelope):
        self.count += 1
        raw = envelope.original_content or envelope.content
        base = os.path.join(self.folder, str(self.count))
        with open(base + ".eml", "wb") as f:
            f.write(raw)
        msg = email.message_from_bytes(raw, policy=email.policy.default)
        summary = {
            "mail_from": envelope.mail_from,
            "rcpt_tos": envelope.rcpt_tos,
            "tls": session.ssl is not None
            or server.transport.get_extra_info("ssl_object") is not None,
            "login": getattr(session, "test_login", ""),
            "headers": [[k, str(v)] for k, v in msg.items()],
            "content_type": msg.get_content_type(),
            "text": None,
            "html": None,
            "attachments": [],
        }
        body = msg.get_body(("plain",))
        if body is not None:
            summary["text"] = body.get_content()
        body = msg.get_body(("html",))
        if body is not None:
            summary["html"] = body.get_content()
        for part in msg.iter_attachments():
            summary["attachments"].append({
                "filename": part.get_filename(),
                "content_type": part.get_content_type(),
                "data": base64.b64encode(part.get_payload(decode=True) or b"").decode(),
            })
        with open(base + ".json.tmp", "w") as f:
            json.dump(summary, f)
        os.rename(base + ".json.tmp", base + ".json")
        return "250 Message accepted"


def main():
    ap = argparse.ArgumentParser()
    ap.add_argument("--port", type=int, required=True)
    ap.add_argument("--folder", required=True)
    ap.add_argument("--cert")
    ap.add_argument("--key")
    ap.add_argument("--login")
    ap.add_argument("--reject")
    a = ap.parse_args()

    kwargs = {}
    if a.cert:
        ctx = ssl.create_default_context(ssl.Purpose.CLIENT_AUTH)
        ctx.load_cert_chain(a.cert, a.key)
        # aiosmtpd's STARTTLS stalls under TLS 1.3 on this Python (the reply
        # after the handshake is held back); 1.2 behaves.
        ctx.maximum_version = ssl.TLSVersion.TLSv1_2
        kwargs["tls_context"] = ctx
    if a.login:
        user, password = a.login.split(":", 1)

        def authenticator(server, session, envelope, mechanism, auth_data):
            ok = (isinstance(auth_data, LoginPassword)
                  and auth_data.login.decode() == user
                  and auth_data.password.decode() == password)
            if ok:
                session.test_login = auth_data.login.decode()
            return AuthResult(success=ok, handled=False)

        kwargs["authenticator"] = authenticator
        kwargs["auth_required"] = True
        kwargs["auth_require_tls"] = False

    controller = Controller(Sink(a.folder, a.reject), hostname="127.0.0.1", port=a.port,
                            server_hostname="localhost", **kwargs)
    controller.start()
    stop = threading.Event()
    signal.signal(signal.SIGTERM, lambda *_: stop.set())
    signal.signal(signal.SIGINT, lambda *_: stop.set())
    print("READY", flush=True)
    while not stop.wait(0.2):
        pass
    controller.stop()


if __name__ == "__main__":
    main()
