#!/usr/bin/python3
"""An SMTP server for the tests: saves each message as N.eml (the bytes) and
N.json (what Python's email package reads from it), so the tests check the
client's output with a parser that is not ours. Runs until SIGTERM."""
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
            "rcpt_tos": envelope.rcpt_tos,
            "tls": session.ssl is not None
            or server.transport.get_extra_info("ssl_object") is not None,
            "login": getattr(session, "test_login", ""),
            "headers": {k.lower(): str(v) for k, v in msg.items()},
            "content_type": msg.get_content_type(),
            "attachments": [{
                "filename": part.get_filename(),
                "data": base64.b64encode(part.get_payload(decode=True) or b"").decode(),
            } for part in msg.iter_attachments()],
        }
        for key, kind in (("text", "plain"), ("html", "html")):
            body = msg.get_body((kind,))
            summary[key] = body.get_content() if body is not None else None
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
    ap.add_argument("--reject", help="recipients containing this are refused with 550")
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
    print("READY", flush=True)
    while not stop.wait(0.2):
        pass
    controller.stop()


if __name__ == "__main__":
    main()
