#!/usr/bin/python3
"""A local SMTP server for the mail tests.

Listens on 127.0.0.1 at a free port, accepts one account and password
(AUTH LOGIN and PLAIN), refuses recipients whose address starts with
"nieznany@", and stores each message it takes in FOLDER as N.eml (the data
exactly as received) and N.json (the envelope, the log-in that authenticated,
whether the connection was encrypted, the Subject as Python decodes it).
Prints "PORT <n>" once it accepts connections, then runs until stdin closes
or it is killed.
"""

import argparse
import json
import os
import socket
import ssl
import sys
from email import message_from_bytes
from email.policy import default as default_policy

from aiosmtpd.controller import Controller
from aiosmtpd.smtp import AuthResult, LoginPassword


class Recorder:
    def __init__(self, folder):
        self.folder = folder
        self.count = 0

    async def handle_RCPT(self, server, session, envelope, address, rcpt_options):
        if address.lower().startswith("nieznany@"):
            return "550 5.1.1 Nie ma takiej skrzynki"
        envelope.rcpt_tos.append(address)
        return "250 OK"

    async def handle_DATA(self, server, session, envelope):
        self.count += 1
        base = os.path.join(self.folder, str(self.count))
        raw = envelope.original_content
        with open(base + ".eml", "wb") as file:
            file.write(raw)
        message = message_from_bytes(raw, policy=default_policy)
        record = {
            "from": envelope.mail_from,
            "to": envelope.rcpt_tos,
            "login": session.auth_data.login.decode() if session.authenticated else None,
            "tls": server.transport.get_extra_info("ssl_object") is not None,
            "subject": str(message.get("Subject", "")),
        }
        with open(base + ".json.part", "w", encoding="utf-8") as file:
            json.dump(record, file, ensure_ascii=False)
        os.replace(base + ".json.part", base + ".json")
        return "250 OK"


def authenticator(login, password):
    def check(server, session, envelope, mechanism, auth_data):
        ok = isinstance(auth_data, LoginPassword) and auth_data.login == login and auth_data.password == password
        # Not handled: the server answers 535 itself when the check fails.
        return AuthResult(success=ok, handled=False, auth_data=auth_data)

    return check


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def tls_context(certificate, key):
    context = ssl.create_default_context(ssl.Purpose.CLIENT_AUTH)
    context.load_cert_chain(certificate, key)
    return context


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("folder")
    parser.add_argument("--login", required=True)
    parser.add_argument("--password", required=True)
    parser.add_argument("--tls", choices=["none", "starttls", "implicit"], default="none")
    parser.add_argument("--certificate")
    parser.add_argument("--key")
    args = parser.parse_args()

    options = {
        "authenticator": authenticator(args.login.encode(), args.password.encode()),
        "auth_require_tls": args.tls == "starttls",
    }
    if args.tls == "starttls":
        options.update(tls_context=tls_context(args.certificate, args.key), require_starttls=True)
    elif args.tls == "implicit":
        options.update(ssl_context=tls_context(args.certificate, args.key))

    for attempt in range(5):
        controller = Controller(Recorder(args.folder), hostname="127.0.0.1", port=free_port(), **options)
        try:
            controller.start()
            break
        except Exception:
            if attempt == 4:
                raise
    print("PORT", controller.port, flush=True)
    sys.stdin.read()
    controller.stop()


if __name__ == "__main__":
    main()
