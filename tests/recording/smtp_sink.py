"""Loopback SMTP server for the mail sender's tests.

    /usr/bin/python3 smtp_sink.py OUTDIR [accept|reject]

Prints "PORT <n>" once it listens on 127.0.0.1 and stores each accepted
message as OUTDIR/<n>.json; "reject" refuses every recipient with 550.
Runs until stdin closes.
"""
import json
import os
import socket
import sys
from email import message_from_bytes, policy

from aiosmtpd.controller import Controller


class Sink:
    def __init__(self, outdir, reject):
        self.outdir, self.reject, self.count = outdir, reject, 0

    async def handle_RCPT(self, server, session, envelope, address, rcpt_options):
        if self.reject:
            return "550 5.1.1 Mailbox unavailable"
        envelope.rcpt_tos.append(address)
        return "250 OK"

    async def handle_DATA(self, server, session, envelope):
        msg = message_from_bytes(envelope.original_content or envelope.content, policy=policy.default)
        record = {"mail_from": envelope.mail_from, "rcpt_tos": envelope.rcpt_tos, "subject": str(msg["subject"]),
                  "body": msg.get_content(), "charset": msg.get_content_charset()}
        self.count += 1
        path = os.path.join(self.outdir, "%04d.json" % self.count)
        with open(path + ".tmp", "w", encoding="utf-8") as f:
            json.dump(record, f, ensure_ascii=False)
        os.replace(path + ".tmp", path)  # the test never reads half a file
        return "250 Message accepted"


def main():
    sink = Sink(sys.argv[1], len(sys.argv) > 2 and sys.argv[2] == "reject")
    for _ in range(20):  # a free port may be taken before the server binds it
        with socket.socket() as s:
            s.bind(("127.0.0.1", 0))
            port = s.getsockname()[1]
        controller = Controller(sink, hostname="127.0.0.1", port=port)
        try:
            controller.start()
            break
        except Exception:
            continue
    else:
        sys.exit("no free port")
    print("PORT %d" % port, flush=True)
    try:
        sys.stdin.read()
    finally:
        controller.stop()


if __name__ == "__main__":
    main()
