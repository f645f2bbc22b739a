#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""What the system does to files: a call that fails once, an interruption, limits, odd targets. An
import gives the old or the new database, a server right replies from the next command on.

    failing_calls_test.py BIN SAMPLE     (the folder of the programs; DECK.inp with DECK.frd beside it)
"""
import os
import re
import resource
import signal
import subprocess
import sys
import tempfile

BIN, DECK = sys.argv[1:]


def environment(call, n, number=0):
    """Of a program whose n-th such call fails, or that gets a signal there."""
    return dict(os.environ, ODBS_FAIL="%s %d %d" % (call, n, number),
                LD_PRELOAD=os.path.join(BIN, "libfailing_calls.so"),
                ASAN_OPTIONS=os.environ.get("ASAN_OPTIONS", "") + ":verify_asan_link_order=0")


def run(program, *arguments, **options):
    return subprocess.run([os.path.join(BIN, program), *arguments], capture_output=True, **options)


def import_deck(target, env=None, **options):
    return run("odb_import", DECK, "--results", DECK[:-4] + ".frd", "-o", target, env=env, **options)


def read(path):
    with open(path, "rb") as file:
        return file.read()


def check_imports(folder, call):
    target = os.path.join(folder, "x.odb")
    assert import_deck(target).returncode == 0
    wanted = run("dump_database", target).stdout
    n = 0
    while True:
        n += 1
        with open(target, "wb") as file:
            file.write(b"old")
        done = import_deck(target, environment(call, n))
        failed = b"a call failed" in done.stderr
        assert os.listdir(folder) == ["x.odb"], (call, n, os.listdir(folder))
        if done.returncode == 0:
            assert run("dump_database", target).stdout == wanted, (call, n)
        else:
            assert done.returncode == 1 and read(target) == b"old", (call, n, done)
            assert ("cannot write " + target).encode() in done.stderr, (call, n, done)
        if not failed:
            assert done.returncode == 0 and n > 1, (call, n, done)
            return n - 1


def check_interruptions(folder):
    target = os.path.join(folder, "x.odb")
    with open(target, "wb") as file:
        file.write(b"old")
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        done = import_deck(target, environment("pwrite", 20, number),
                           preexec_fn=lambda: signal.signal(number, signal.SIG_DFL))
        assert done.returncode == -number, done
        assert os.listdir(folder) == ["x.odb"] and read(target) == b"old", number
    limit = (20000, 20000)
    done = import_deck(target, preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, limit))
    assert done.returncode == 1 and b"cannot write " + target.encode() in done.stderr, done
    assert os.listdir(folder) == ["x.odb"] and read(target) == b"old"


def check_targets(folder):
    """A database is written through links; what is no file stays."""
    kept = os.path.join(folder, "kept")
    os.mkdir(kept)
    link = os.path.join(folder, "link.odb")
    os.symlink(os.path.join("kept", "x.odb"), link)
    for _ in range(2):  # the link's target is made, then replaced
        assert import_deck(link).returncode == 0
        assert os.path.islink(link) and os.listdir(kept) == ["x.odb"]
    pipe = os.path.join(folder, "pipe.odb")
    os.mkfifo(pipe)
    for odd in (pipe, kept, "/dev/null"):
        done = import_deck(odd)
        assert done.returncode == 1 and b"no ordinary file" in done.stderr, done
    assert sorted(os.listdir(folder)) == ["kept", "link.odb", "pipe.odb"]
    # Whoever makes links under the temporary name: the process id is known once it runs.
    start = ("for k in 1 2; do ln -s \"$0\" \"$1.new$$-$k\"; done; mkfifo \"$1.new$$-3\"; "
             "exec \"$2\" \"$3\" -o \"$1\"")
    target = os.path.join(folder, "y.odb")
    subprocess.run(["sh", "-c", start, os.path.join(folder, "victim"), target,
                    os.path.join(BIN, "odb_import"), DECK], check=True, capture_output=True)
    assert not os.path.islink(target) and not os.path.exists(os.path.join(folder, "victim"))
    assert run("dump_database", target).returncode == 0


def replies(target, rounds, env=None):
    """What a server answers to some commands, asked so many times in a row, record by record."""
    shown = run("odb_client", "send", target, *["g {}", "S {}", "fD {}", "hi {}"] * rounds, env=env)
    assert shown.returncode == 0, shown
    records = shown.stdout[:shown.stdout.rindex(b"\n\n")]  # totals come after them
    return re.sub(rb"(?m)^ *\d+ ", b"", records), b"a call failed" in shown.stderr


def check_server(folder):
    target = os.path.join(folder, "x.odb")
    assert import_deck(target).returncode == 0
    wanted, _ = replies(target, 1)
    n = 0
    while True:
        n += 1
        both, failed = replies(target, 2, environment("pread", n))
        # A reply may be cut; the next ones are right. Later calls fail in the second round.
        if not failed or not both.startswith(wanted):
            assert both.endswith(wanted), n
        if not failed:
            assert both.startswith(wanted) and n > 50
            return n - 1


def main():
    for call in ("pwrite", "ftruncate", "fsync", "rename", "pread"):
        with tempfile.TemporaryDirectory() as folder:
            print(call, check_imports(folder, call))
    for check in (check_interruptions, check_targets, check_server):
        with tempfile.TemporaryDirectory() as folder:
            print(check.__name__, check(folder) or "")


main()
