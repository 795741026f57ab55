#!/usr/bin/env python3
"""The command line as scripts outside the project call it: exit codes, the
shape of --dump-json, the files of --export-dir, and what a failure leaves.

usage: cli_checks.py HALVARN_CLI
"""
import datetime as dt
import json
import os
import re
import subprocess
import sys
import tempfile

import xlrd

TABLES = ([f"mdRZ{i:02d}" for i in range(21)] + [f"mdGT{i:02d}" for i in range(21)]
          + ["mdProducent", "mdEmpty", "mdTUKU", "mdRaport1"])
TITLE = ("LP;NrProducenta;Rasa;Płeć;NrZwierzęcia;Grupatechnologiczna;DataUrodzenia;Wiek;TypUzytkowy;"
         "KierunekUzytkowania;CzyMatka;DataPrzybycia;DataWyrejestrowania;RodzajDawczyni;RodzajDawcy;"
         "NumerDzialalnosci;NumerIdentyfikacyjnyMatki;NumerIdentyfikacyjnyDawczyni;NumerIdentyfikacyjnyDawcy;"
         "IloscOznakowan;")
DATE = re.compile(r"^\d{4}-\d{2}-\d{2}$")


def run(cli, *arguments):
    return subprocess.run([cli, *arguments], capture_output=True, text=True, timeout=300)


def expect(condition, what):
    if not condition:
        raise AssertionError(what)


def load(path):
    with open(path, encoding="utf-8") as f:
        return json.load(f)


def check_dump_shape(dump):
    expect(set(dump) == {"herdCount", "slots", "tables", "errors", "loaded", "messages"}, f"top keys {sorted(dump)}")
    expect(isinstance(dump["herdCount"], int) and dump["herdCount"] > 0, "herdCount")
    expect([s["slot"] for s in dump["slots"]] == list(range(21)), "21 slots in order")
    for slot in dump["slots"]:
        expect(set(slot) == {"slot", "code", "index", "visible"}, f"slot keys {sorted(slot)}")
        expect(isinstance(slot["code"], str) and isinstance(slot["index"], int) and isinstance(slot["visible"], bool),
               f"slot types {slot}")
    expect(dump["slots"][0]["code"] == "000" and dump["slots"][0]["index"] == -1, "slot 0")
    expect(sorted(dump["tables"]) == sorted(TABLES), f"tables {sorted(dump['tables'])}")
    summary = dump["tables"]["mdRZ00"]
    expect(summary and len(summary[0]) == 21 and "IloscOznakowan" in summary[0], "mdRZ00 fields")
    for row in summary:
        expect(isinstance(row["Wiek"], int) and isinstance(row["CzyMatka"], int), f"integers {row}")
        expect(row["ZAZNACZONE"] is False, "ZAZNACZONE false")
        expect(row["DataUrodzenia"] is None or DATE.match(row["DataUrodzenia"]), f"date {row['DataUrodzenia']}")
        expect(row["DataWyrejestrowania"] is None, "a field never set is null")
    groups = dump["tables"]["mdGT00"]
    expect([g["ID"] for g in groups] == list(range(1, 41)), "40 groups")
    expect(all(g["Ilosc"] is None or isinstance(g["Ilosc"], int) for g in groups), "counts")
    expect(len(dump["tables"]["mdProducent"]) == 1, "one producer row")
    expect(isinstance(dump["errors"], list) and isinstance(dump["loaded"], str), "memos")
    expect(dump["loaded"].startswith("dzialalnosc\n"), "loaded memo")


def check_exports(folder, dump, producer):
    names = sorted(os.listdir(folder))
    expect(len(names) == 3, f"three exports: {names}")
    day = r"\d\d\.\d\d\.\d{4}"
    time = r"\d\d_\d\d_\d\d"
    groups = [n for n in names if re.fullmatch(rf"Grupy-{producer} {day}\.XLS", n)]
    animals = [n for n in names if re.fullmatch(rf"Zwierzęta-{producer} {day} {time}\.XLS", n)]
    text = [n for n in names if re.fullmatch(rf"Zwierzęta-{producer} {day} {time}\.CSV", n)]
    expect(len(groups) == len(animals) == len(text) == 1, f"export names {names}")
    codes = ["Ogółem"] + [s["code"] for s in dump["slots"][1:] if s["visible"]]
    for name in groups + animals:
        book = xlrd.open_workbook(os.path.join(folder, name))
        expect(book.sheet_names() == codes, f"{name}: sheets {book.sheet_names()}")
    animal_sheet = xlrd.open_workbook(os.path.join(folder, animals[0])).sheet_by_index(0)
    summary = dump["tables"]["mdRZ00"]
    expect(animal_sheet.nrows == len(summary) + 2, "title, animals, closing row")
    expect(animal_sheet.cell_value(len(summary) + 1, 1) == len(summary), "count in the closing row")
    with open(os.path.join(folder, text[0]), "rb") as f:
        data = f.read()
    lines = data.split(b"\r\n")
    expect(lines[0].decode("cp1250") == TITLE and lines[-1] == b"", "bare title, CRLF")
    expect(len(lines) == len(summary) + 2, "one line per animal")
    expect(lines[1].decode("cp1250").startswith(f'"1";"{producer}";'), "first line")


def main():
    cli = sys.argv[1]
    today = dt.date.today()
    with tempfile.TemporaryDirectory() as work:
        data, exports, dump_path = (os.path.join(work, n) for n in ("data", "export", "dump.json"))
        result = run(cli, "download", "--demo", "--data-dir", data, "--export-dir", exports, "--dump-json", dump_path,
                     "--reference-date", "2999-01-01")
        expect(result.returncode == 0, f"demo: exit {result.returncode}: {result.stderr}")
        dump = load(dump_path)
        check_dump_shape(dump)
        producer = dump["tables"]["mdProducent"][0]["PRODUCENT"]
        expect(dump["tables"]["mdProducent"][0]["DATA3"] == today.isoformat(), "a future reference date is today")
        expect(dump["messages"] == [], f"messages {dump['messages']}")
        check_exports(exports, dump, producer)
        expect("Ogółem" in result.stdout, "groups on stdout")

        # A refused log-in stops early, says so, and still dumps what there is.
        os.remove(dump_path)
        result = run(cli, "download", "--demo", "--login", "nikt", "--password", "zle", "--data-dir", data,
                     "--dump-json", dump_path)
        expect(result.returncode == 1, f"refused log-in: exit {result.returncode}")
        dump = load(dump_path)
        expect(dump["messages"] == [{"caption": "Bład...", "text": "Brak autoryzacji (Być może niepoprawny login/hasło)"}],
               f"refused log-in: {dump['messages']}")
        expect(dump["herdCount"] == 0 and dump["tables"]["mdRZ00"] == [], "nothing downloaded")

        # Exports that cannot be written: exit 1, and the dump is still written.
        blocker = os.path.join(work, "plik")
        open(blocker, "w").close()
        os.remove(dump_path)
        result = run(cli, "download", "--demo", "--data-dir", data, "--export-dir", os.path.join(blocker, "EXPORT"),
                     "--dump-json", dump_path)
        expect(result.returncode == 1, f"unwritable exports: exit {result.returncode}")
        expect(load(dump_path)["messages"][0]["caption"] == "Błąd...", "the export failure is in the dump")

    for arguments in (["download", "--kinds", "krowy"], ["download", "--parallel", "0"],
                      ["download", "--state-date", "2024-13-01"], ["pobierz"], ["download", "--nieznana"]):
        result = run(cli, *arguments)
        expect(result.returncode == 2, f"{arguments}: exit {result.returncode}")
    print("command line checks passed")


if __name__ == "__main__":
    main()
