#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""A parent with an event loop may hand down descriptors that do not block: nothing may be lost.

    not_blocking_test.py ODB_SERVER
"""
import os
import subprocess
import sys
import time

N_RECORDS, SIZE = 200, 40950
ACKNOWLEDGEMENT = b"\x01\x00~"


def main():
    commands, to_server = os.pipe()
    replies, from_server = os.pipe()
    for fd in (commands, from_server):
        os.set_blocking(fd, False)
    server = subprocess.Popen([sys.argv[1], str(os.getpid()), str(commands), str(from_server)],
                              pass_fds=(commands, from_server), stderr=subprocess.DEVNULL)
    os.close(commands)
    os.close(from_server)
    time.sleep(0.1)  # it waits for its first command, and then for room in the pipe
    os.write(to_server, b"M %d %d\n" % (N_RECORDS, SIZE))
    time.sleep(0.1)
    os.write(to_server, b"q\n")
    reply = b""
    while True:
        piece = os.read(replies, 65536)
        if not piece:
            break
        reply += piece
    status = server.wait()
    at = N_RECORDS * SIZE
    if status != 0 or len(reply) < at or reply[at:at + 3] != ACKNOWLEDGEMENT:
        print("status %d, %d bytes, behind the records %r" % (status, len(reply), reply[at:at + 9]))
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
