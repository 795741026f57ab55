#!/usr/bin/env python3
"""The archive from the command line: two demo downloads on different reference
dates are listed newest first; "recount" of the first on the second's date
prints the groups "archive show" prints for the second, and writes the same
files; "export" writes the exports and prints of a stored download; "remove"
deletes one; unknown downloads and bad arguments end with their exit codes.

usage: archive_checks.py HALVARN_CLI
"""
import os
import sys
import tempfile

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from cli_checks import expect, run  # noqa: E402

FIRST, SECOND = "2026-03-01", "2025-09-15"
SECOND_IN_NAMES = "15.09.2025"  # the exports carry the reference date they were counted on


def kind(name):
    """A written file's kind: its name up to the producer number, and its extension."""
    return name.split("-")[0].split(" 0")[0], name.rsplit(".", 1)[1]


def cli_ok(cli, *arguments):
    result = run(cli, *arguments)
    expect(result.returncode == 0, f"{arguments}: exit {result.returncode}: {result.stderr}")
    return result.stdout


def listed(cli, data):
    lines = cli_ok(cli, "archive", "list", "--data-dir", data).splitlines()
    expect(lines[0].startswith("nr\tproducent"), f"header {lines[0]!r}")
    return [line.split("\t") for line in lines[1:]]


def groups(output):
    """The group report without the first line, which names the download."""
    return output.split("\n", 1)[1]


def main():
    cli = sys.argv[1]
    with tempfile.TemporaryDirectory() as data, tempfile.TemporaryDirectory() as out:
        for date in (FIRST, SECOND):
            cli_ok(cli, "download", "--demo", "--data-dir", data, "--reference-date", date)
        rows = listed(cli, data)
        expect([row[4] for row in rows] == [SECOND, FIRST], f"newest first: {rows}")
        expect(rows[0][1] == "071234562" and int(rows[0][6]) > 0 and rows[0][7] == "0", f"row {rows[0]}")
        second, first = rows[0][0], rows[1][0]

        recounted = cli_ok(cli, "recount", "--archive", first, "--reference-date", SECOND, "--data-dir", data,
                           "--out", os.path.join(out, "recount"))
        shown = cli_ok(cli, "archive", "show", second, "--data-dir", data)
        expect(groups(recounted) == groups(shown), "recount differs from the download on that date")
        expect(groups(recounted) != groups(cli_ok(cli, "archive", "show", first, "--data-dir", data)),
               "the two dates give the same groups; the check proves nothing")
        written = sorted(os.listdir(os.path.join(out, "recount")))
        expect(len(written) == 5 and all(SECOND_IN_NAMES in name for name in written if name.endswith((".XLS", ".CSV"))),
               f"recount files {written}")

        cli_ok(cli, "archive", "export", second, "--out", os.path.join(out, "export"), "--data-dir", data)
        exported = sorted(os.listdir(os.path.join(out, "export")))
        expect([kind(name) for name in exported] == [kind(name) for name in written], f"export files {exported}")

        cli_ok(cli, "archive", "remove", first, "--data-dir", data)
        expect([row[0] for row in listed(cli, data)] == [second], "removed")
        for arguments, code in ((("archive", "show", first), 1), (("archive", "show", "x"), 2),
                                (("recount", "--archive", second), 2), (("archive", "export", second), 2)):
            result = run(cli, *arguments, "--data-dir", data)
            expect(result.returncode == code, f"{arguments}: exit {result.returncode}, expected {code}")
    print("archive checks passed")


if __name__ == "__main__":
    main()
