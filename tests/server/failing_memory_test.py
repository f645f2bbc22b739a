#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""One allocation fails during a command: the commands after it are answered as ever, or the server
has ended with 255, as it does where HDF5 cannot go on.

    failing_memory_test.py BIN SHIM DECK.inp     (the folder of the programs; the preloaded library)
"""
import os
import signal
import subprocess
import sys
import tempfile

BIN, SHIM, DECK = sys.argv[1:]


def reply(commands, replies, line):
    """All records up to the acknowledgement; None when the server has ended."""
    try:
        os.write(commands, line)
    except BrokenPipeError:
        return None
    got, at = b"", 0
    while got[at:] != b"\x01\x00~":
        piece = os.read(replies, 65536)
        if not piece:
            return None
        got += piece
        while at + 2 <= len(got) and got[at:] != b"\x01\x00~":
            end = at + 2 + int.from_bytes(got[at:at + 2], "little")
            if end > len(got):
                break
            at = end
    return got


def outcome(line, n):
    """The replies to a command during which the n-th allocation fails and to two more, the status."""
    commands, to_server = os.pipe()
    replies, from_server = os.pipe()
    server = subprocess.Popen(
        [os.path.join(BIN, "odb_server"), str(os.getpid()), str(commands), str(from_server)],
        pass_fds=(commands, from_server), stderr=subprocess.DEVNULL,
        env=dict(os.environ, FAILING_CALL=str(n), LD_PRELOAD=SHIM))
    os.close(commands)
    os.close(from_server)
    reply(to_server, replies, b"g" + line[2:])  # HDF5 starts; it does not survive failures there
    server.send_signal(signal.SIGUSR1)
    answers = [reply(to_server, replies, line) for _ in range(3)]
    os.close(to_server)
    os.close(replies)
    return answers, server.wait()


def main():
    with tempfile.TemporaryDirectory() as folder:
        target = os.path.join(folder, "x.odb")
        subprocess.run([os.path.join(BIN, "odb_import"), DECK, "--results", DECK[:-4] + ".frd", "-o",
                        target], check=True, capture_output=True)
        line = b"fS " + target.encode() + b"\n"
        wanted = outcome(line, 0)[0][0]
        seen = set()
        for n in range(1, 1400, 14):
            answers, status = outcome(line, n)
            right = answers[2] == wanted
            assert right and status == 0 or answers[2] is None and status == 255, (n, status)
            seen.add((answers[0] == wanted, right))
        assert seen == {(True, True), (False, True), (False, False)}, seen


main()
