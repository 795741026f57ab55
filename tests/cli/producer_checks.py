#!/usr/bin/env python3
"""The producer list and the batch run from the command line: add, list, edit
and remove with their exit codes, the limits and a Polish name, the password
kept out of the list's output and out of the plain bytes of its file, the
question of remove answered on standard input; then a batch over the demo
producers of the embedded simulator, one with a wrong password.

usage: producer_checks.py HALVARN_CLI
"""
import glob
import os
import subprocess
import sys
import tempfile

import xlrd

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from cli_checks import expect, run  # noqa: E402

NAME = "Gospodarstwo Rolne „Łąka” ąęłńóśźż ĄĘŁŃÓŚŹŻ"
RECORD_SIZE = 156
PASSWORD_SLOT = slice(86, 117)  # length byte and 30 enciphered bytes of a record
LIST_FILE = "KNTRH_V002.DAT"
# The demo producers the embedded simulator serves with --demo.
DEMO = [("071234562", "uzytkownik.testowy.1", "Zielonka7Kb2!"),
        ("082456131", "uzytkownik.testowy.2", "Brzezina4Mx9!"),
        ("063719251", "uzytkownik.testowy.3", "Olszynka2Qt5!")]
WRONG_PASSWORD = "Zle!haslo42"


def producers(cli, data, *arguments, **how):
    return run(cli, "producers", *arguments, "--data-dir", data, **how)


def list_output(cli, data):
    """The bytes "list" writes, whatever the locale of the test."""
    result = subprocess.run([cli, "producers", "list", "--data-dir", data], capture_output=True, timeout=60,
                            stdin=subprocess.DEVNULL)
    expect(result.returncode == 0, f"list: exit {result.returncode}: {result.stderr}")
    return result.stdout, result.stderr


def listed(cli, data):
    return [line.split("\t") for line in list_output(cli, data)[0].decode("utf-8").splitlines()]


def add(cli, data, name, login, number, password, *extra):
    result = producers(cli, data, "add", "--name", name, "--login", login, "--producer", number, *extra,
                       password=password)
    expect(result.returncode == 0, f"add {name}: exit {result.returncode}: {result.stderr}")
    return int(result.stdout.strip())


def password_slot(data, index):
    raw = open(os.path.join(data, LIST_FILE), "rb").read()
    return raw[index * RECORD_SIZE:(index + 1) * RECORD_SIZE][PASSWORD_SLOT]


def check_round_trip(cli, data):
    secret, other = "Tajne!Hasło7", "Inne#haslo3"
    first = add(cli, data, NAME, "jan.kowalski", "071234562", secret, "--limits", "1,2,3,4,5,6,7")
    result = producers(cli, data, "add", "--name", "Drugi", "--login", "drugi", "--producer", "12345",
                       stdin=other + "\n")
    expect(result.returncode == 0 and result.stdout == "2\n", f"add from stdin: {result.returncode} {result.stdout}")
    expect(first == 1, f"first ID {first}")

    stdout, stderr = list_output(cli, data)
    expect(NAME.encode("utf-8") in stdout, "the name in UTF-8 on stdout")
    rows = listed(cli, data)
    expect(rows == [["1", NAME, "jan.kowalski", "071234562", "1", "2", "3", "4", "5", "6", "7"],
                    ["2", "Drugi", "drugi", "12345", "0", "0", "0", "0", "0", "0", "0"]], f"list {rows}")
    plain = open(os.path.join(data, LIST_FILE), "rb").read()
    for password in (secret, other):
        for encoding in ("utf-8", "cp1250"):
            expect(password.encode(encoding) not in stdout + stderr, "a password in the list's output")
            expect(password.encode(encoding) not in plain, f"{password} in plain bytes of the list file")

    kept = password_slot(data, 0)
    result = producers(cli, data, "edit", "--id", "1", "--name", "Nowa nazwa żółw", "--limits", "0,0,0,0,0,0,9")
    expect(result.returncode == 0, f"edit: exit {result.returncode}: {result.stderr}")
    expect(listed(cli, data)[0] == ["1", "Nowa nazwa żółw", "jan.kowalski", "071234562"] + ["0"] * 6 + ["9"],
           f"after edit {listed(cli, data)}")
    expect(password_slot(data, 0) == kept, "an edit without a new password keeps the stored one")
    result = producers(cli, data, "edit", "--id", "1", "--password-stdin", stdin="Nowe!haslo5\n")
    expect(result.returncode == 0 and password_slot(data, 0) != kept, "--password-stdin replaces the password")
    result = producers(cli, data, "edit", "--id", "1", "--login", "jan.nowak", password="Z!srodowiska1")
    expect(result.returncode == 0 and listed(cli, data)[0][2] == "jan.nowak", "edit with HALVARN_PASSWORD")

    result = producers(cli, data, "edit", "--id", "99", "--name", "Nikt")
    expect(result.returncode == 1 and "Błąd odnalezienia edytowanej pozycji" in result.stderr,
           f"unknown ID: exit {result.returncode}: {result.stderr}")

    result = producers(cli, data, "remove", "--id", "2", stdin="nie\n")
    expect(result.returncode == 1 and "Czy usunąć pozycje" in result.stderr, f"declined: exit {result.returncode}")
    expect(len(listed(cli, data)) == 2, "a declined removal keeps the entry")
    result = producers(cli, data, "remove", "--id", "2", stdin="")
    expect(result.returncode == 1 and len(listed(cli, data)) == 2, "no answer is no")
    result = producers(cli, data, "remove", "--id", "2", stdin="tak\n")
    expect(result.returncode == 0, f"accepted: exit {result.returncode}: {result.stderr}")
    expect([row[0] for row in listed(cli, data)] == ["1"], f"after removal {listed(cli, data)}")
    result = producers(cli, data, "remove", "--id", "2", "--yes")
    expect(result.returncode == 1, f"removing an unknown ID: exit {result.returncode}")
    result = producers(cli, data, "remove", "--id", "1", "--yes")
    expect(result.returncode == 0 and listed(cli, data) == [], "--yes removes without asking")


# Each refused with exit 2 before anything is written; the text names what is wrong.
BAD_ARGUMENTS = [
    (["add", "--limits", "1,2,3"], "--limits"),
    (["add", "--limits", "1,2,3,4,5,6,7,8"], "--limits"),
    (["add", "--limits", "1,2,3,4,5,6,-7"], "--limits"),
    (["add", "--limits", "1,2,3,4,5,6,x"], "--limits"),
    (["add", "--limits", "1,2,3,4,5,6,1.5"], "--limits"),
    (["add", "--limits", ""], "--limits"),
    (["add", "--producer", "1234567890"], "9 cyfr"),
    (["add", "--producer", "PL123"], "9 cyfr"),
    (["edit", "--id", "1", "--limits", "1,1"], "--limits"),
    (["edit", "--id", "1", "--producer", "0712345620"], "9 cyfr"),
    (["edit", "--id", "zero", "--name", "X"], "--id"),
    (["edit", "--id", "1"], "Podaj"),
    (["remove"], "--id"),
    (["list", "--name", "X"], "--name"),
    (["rename"], "producers"),
]


def check_bad_arguments(cli, data):
    for arguments, text in BAD_ARGUMENTS:
        if arguments[0] == "add":
            arguments = arguments + ["--name", "X", "--login", "x"] + ([] if "--producer" in arguments else
                                                                       ["--producer", "123"])
        result = producers(cli, data, *arguments, password="Haslo!1" if arguments[0] == "add" else None)
        expect(result.returncode == 2 and text in result.stderr,
               f"{arguments}: exit {result.returncode}: {result.stderr}")
    result = producers(cli, data, "add", "--name", "X", "--login", "x", "--producer", "1")  # no password anywhere
    expect(result.returncode == 2 and "hasła" in result.stderr, f"no password: exit {result.returncode}")
    expect(listed(cli, data) == [], "nothing was added")


def summary_lines(stdout):
    lines = stdout.splitlines()
    expect(lines and lines[0].startswith("Producent") and "Stan" in lines[0], f"summary header: {stdout}")
    return {line.split()[0]: line for line in lines[1:]}


def check_subfolder(folder, number, line):
    names = os.listdir(folder)
    workbooks = glob.glob(os.path.join(folder, f"Grupy-{number} *.XLS")) + glob.glob(
        os.path.join(folder, f"Zwierzęta-{number} *.XLS"))
    texts = glob.glob(os.path.join(folder, f"Zwierzęta-{number} *.CSV"))
    pdfs = [n for n in names if n.endswith(".PDF")]
    expect(len(workbooks) == 2 and len(texts) == 1 and len(pdfs) == 2, f"{number}: files {names}")
    expect(any(n.startswith("Rozczytane zwierzęta ") for n in pdfs) and any(
        n.startswith("Grupy technologiczne ") for n in pdfs), f"{number}: prints {pdfs}")
    herds = len(xlrd.open_workbook(workbooks[0]).sheet_names()) - 1
    animals = open(texts[0], "rb").read().count(b"\r\n") - 1
    columns = line.split()
    expect(columns[-1] == "pełne", f"{number}: state {line}")
    expect(int(columns[-5]) == herds and int(columns[-4]) == animals, f"{number}: {line}, {herds} herds, {animals}")
    return int(columns[-2])


def check_batch(cli, work):
    data, out = os.path.join(work, "data"), os.path.join(work, "out")
    result = run(cli, "batch", "--demo", "--data-dir", data, "--out", out)
    expect(result.returncode == 1 and "pusta" in result.stderr, f"empty list: exit {result.returncode}")
    names = ["Pierwszy Żółć", "Drugi", "Trzeci"]
    limits = ["0,0,0,0,0,0,1", "0,0,0,0,0,0,0", "0,0,0,0,0,0,0"]
    for (number, login, password), name, declared in zip(DEMO, names, limits):
        add(cli, data, name, login, number, WRONG_PASSWORD if number == DEMO[2][0] else password,
            "--limits", declared)

    result = run(cli, "batch", "--demo", "--data-dir", data, "--out", out, "--reference-date", "2999-01-01")
    expect(result.returncode == 1, f"batch: exit {result.returncode}: {result.stderr}")
    lines = summary_lines(result.stdout)
    expect(sorted(lines) == sorted(number for number, _, _ in DEMO), f"summary: {result.stdout}")
    over = check_subfolder(os.path.join(out, DEMO[0][0]), DEMO[0][0], lines[DEMO[0][0]])
    expect(over >= 1, f"a dairy herd over its declared 1: {lines[DEMO[0][0]]}")
    expect(check_subfolder(os.path.join(out, DEMO[1][0]), DEMO[1][0], lines[DEMO[1][0]]) == 0, "no limits declared")
    failing = lines[DEMO[2][0]]
    expect("Trzeci" in failing and "błąd: " in failing and "Brak autoryzacji" in failing, f"failing: {failing}")
    failed = os.path.join(out, DEMO[2][0])
    expect(not os.path.exists(failed) or not os.listdir(failed), "nothing written for the failing producer")
    expect(not any(p in result.stdout + result.stderr for _, _, p in DEMO), "a password in the batch's output")

    # Two entries of one producer number get a folder each, named with their IDs.
    producers(cli, data, "remove", "--id", "3", "--yes")
    shared = add(cli, data, "Drugi raz", DEMO[1][1], DEMO[1][0], DEMO[1][2], "--limits", "0,0,0,0,0,0,0")
    result = run(cli, "batch", "--demo", "--data-dir", data, "--out", os.path.join(work, "again"),
                 "--kinds", "mamki,opasy,mleczne")
    expect(result.returncode == 0, f"batch of whole producers: exit {result.returncode}: {result.stderr}")
    folders = sorted(os.listdir(os.path.join(work, "again")))
    expect(folders == sorted([DEMO[0][0], f"{DEMO[1][0]}-2", f"{DEMO[1][0]}-{shared}"]), f"folders {folders}")

    for arguments, text in [(["--out", out, "--kinds", "krowy"], "krowy"), ([], "--out"),
                            (["--out", out, "--reference-date", "2024-02-30"], "--reference-date")]:
        result = run(cli, "batch", "--demo", "--data-dir", data, *arguments)
        expect(result.returncode == 2 and text in result.stderr, f"batch {arguments}: exit {result.returncode}")


def main():
    cli = sys.argv[1]
    with tempfile.TemporaryDirectory() as work:
        data = os.path.join(work, "data")
        check_bad_arguments(cli, data)
        check_round_trip(cli, data)
    with tempfile.TemporaryDirectory() as work:
        check_batch(cli, work)
    print("producer list checks passed")


if __name__ == "__main__":
    main()
