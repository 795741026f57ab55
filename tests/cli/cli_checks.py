#!/usr/bin/env python3
"""The command line as scripts outside the project call it: exit codes, the
shape of --dump-json, the files of --export-dir, what a failure leaves, where
the password comes from; and the simulator's own command line.

usage: cli_checks.py HALVARN_CLI HALVARN_REGISTRY_SIM
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
REFERENCE = "2024-06-28"  # in the past, so the export names carry it: "28.06.2024"
REFUSED_LOGIN = "Brak autoryzacji (Być może niepoprawny login/hasło)"


def run(program, *arguments, password=None, stdin="", timeout=300):
    """Runs with HALVARN_PASSWORD only when given, and never waits on a terminal."""
    env = {k: v for k, v in os.environ.items() if k != "HALVARN_PASSWORD"}
    if password is not None:
        env["HALVARN_PASSWORD"] = password
    return subprocess.run([program, *arguments], capture_output=True, text=True, timeout=timeout, env=env,
                          input=stdin)


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
    expect(all(set(s) == {"slot", "code", "index", "visible"} and isinstance(s["visible"], bool) for s in dump["slots"]),
           "slot keys")
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
    summary = dump["tables"]["mdRZ00"]
    with open(os.path.join(folder, text[0]), "rb") as f:
        data = f.read()
    lines = data.split(b"\r\n")
    expect(lines[0].decode("cp1250") == TITLE and lines[-1] == b"", "bare title, CRLF")
    expect(len(lines) == len(summary) + 2, "one line per animal")
    expect(lines[1].decode("cp1250").startswith(f'"1";"{producer}";'), "first line")


def check_demo(cli):
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


# Each refused before anything is downloaded: exit 2 and a message naming what is wrong.
BAD_ARGUMENTS = [
    (["--kinds", "krowy"], "krowy"),
    (["--parallel", "65"], "--parallel"),
    (["--parallel", "dwa"], "--parallel"),
    (["--timeout-seconds", "0"], "--timeout-seconds"),
    (["--state-date", "2024-13-01"], "--state-date"),
    (["--state-date", "1899-12-31"], "1900-01-01"),
    (["--reference-date", "1899-12-31"], "--reference-date"),
    (["--producer", "0712345620"], "9 cyfr"),
    (["--producer", "PL0712345"], "9 cyfr"),
    (["--password", "-"], "standardowym wejściu"),  # nothing on standard input
    (["--nieznana"], "nieznana"),
    (["--mark", "PL1", "--use-change", "XX"], "--use-change"),
    (["--use-change", "MI"], "--mark"),
]
# The edges of the ranges are accepted.
ACCEPTED_ARGUMENTS = [
    ["--parallel", "1", "--timeout-seconds", "1", "--producer", "071234562"],
    ["--parallel", "64", "--timeout-seconds", "3600", "--reference-date", "1900-01-01"],
]


def check_unhandled_error(cli):
    """An error nothing handled: its report on stderr and in the error log, exit 4, no password in either."""
    with tempfile.TemporaryDirectory() as data:
        result = run(cli, "download", "--demo", "--data-dir", data, "--debug-error", "--password", "Tajne!haslo9")
        expect(result.returncode == 4, f"unhandled error: exit {result.returncode}: {result.stderr}")
        expect(re.search(r"^Exception std::logic_error (in|at) ", result.stderr, re.M), f"report: {result.stderr}")
        expect(" CallStack:" in result.stderr, "the call stack")
        log = open(os.path.join(data, "BLEDY.LOG"), "rb").read().decode("cp1250")
        expect(log.startswith("Error. Date: ") and "\r\nException std::logic_error" in log, f"log: {log[:200]}")
        expect("Tajne!haslo9" not in log + result.stderr, "the password stays out")
    expect("debug-error" not in run(cli, "download", "--help").stdout, "the switch is hidden")


def check_arguments(cli):
    for arguments, named in BAD_ARGUMENTS:
        result = run(cli, "download", "--demo", *arguments)
        expect(result.returncode == 2, f"{arguments}: exit {result.returncode}")
        expect(named in result.stderr and "Autoryzacja" not in result.stderr, f"{arguments}: {result.stderr}")
    result = run(cli, "pobierz")
    expect(result.returncode == 2 and "download" in result.stderr, f"unknown command: exit {result.returncode}")
    with tempfile.TemporaryDirectory() as data:
        for arguments in ACCEPTED_ARGUMENTS:
            result = run(cli, "download", "--demo", "--data-dir", data, *arguments)
            expect(result.returncode == 0, f"{arguments}: exit {result.returncode}: {result.stderr}")


SIMULATOR_BAD_ARGUMENTS = [["--port", "-1"], ["--port", "65536"], ["--port", "80a"], ["--reference-date", "2024-02-30"]]


def check_simulator_arguments(sim):
    for arguments in SIMULATOR_BAD_ARGUMENTS:
        try:
            result = run(sim, *arguments, timeout=20)
        except subprocess.TimeoutExpired:
            raise AssertionError(f"simulator {arguments}: accepted and kept serving")
        expect(result.returncode == 2 and result.stderr.strip(), f"simulator {arguments}: exit {result.returncode}")


class Registry:
    """halvarn-registry-sim serving a dataset file on a free port, with faults."""

    def __init__(self, sim, data, *faults):
        self.process = subprocess.Popen([sim, "--port", "0", "--data", data, *faults], stdout=subprocess.PIPE,
                                        stderr=subprocess.PIPE, text=True)
        line = self.process.stdout.readline()  # "Rejestr (symulator): http://127.0.0.1:PORT"
        if "http://" not in line:
            self.process.kill()
            raise AssertionError(f"simulator did not start: {line}{self.process.stderr.read()}")
        self.base = line.split()[-1]

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.terminate()
        self.process.wait(timeout=20)


class Producer:
    """A small demo producer saved by the simulator: two active herds of six
    animals, an inactive holding and an active one without animals."""

    def __init__(self, sim, work):
        self.data = os.path.join(work, "producer.json")
        result = run(sim, "--herds", "2", "--animals", "6", "--reference-date", REFERENCE, "--save-data", self.data)
        expect(result.returncode == 0, f"simulator --save-data: {result.stderr}")
        producer = load(self.data)["producers"][0]
        self.number, self.login, self.password = producer["numerProducenta"], producer["login"], producer["password"]
        self.holdings = [h for h in producer["holdings"] if h["zwierzeta"] and h["stanDzialalnosci"]["kod"] == "SDZA"]
        self.work = work

    def download(self, cli, registry, *arguments, **how):
        return run(cli, "download", "--sso-base", registry.base, "--api-base", registry.base, "--login", self.login,
                   "--producer", self.number, "--reference-date", REFERENCE,
                   "--data-dir", os.path.join(self.work, "data"), *arguments, **how)

    def export_names(self):
        day = dt.date.fromisoformat(REFERENCE).strftime("%d.%m.%Y")
        return [f"Grupy-{self.number} {day}.XLS", f"Zwierzęta-{self.number} {day} 10_00_00.XLS",
                f"Zwierzęta-{self.number} {day} 10_00_00.CSV"]


# (what, --password option, HALVARN_PASSWORD, standard input, log-in accepted); "{good}" is the right password.
PASSWORD_SOURCES = [
    ("environment", [], "{good}", "", True),
    ("wrong in the environment", [], "zle", "", False),
    ("standard input with CRLF", ["--password", "-"], None, "{good}\r\n", True),
    ("standard input without a line end", ["--password", "-"], None, "{good}", True),
    ("only the first line of standard input", ["--password", "-"], None, "{good}\nzle\n", True),
    ("standard input before the environment", ["--password", "-"], "zle", "{good}\n", True),
    ("the option before the environment", ["--password", "{good}"], "zle", "", True),
]


def check_password_sources(cli, sim, producer):
    def fill(text):
        return None if text is None else text.replace("{good}", producer.password)

    with Registry(sim, producer.data) as registry:
        for what, option, environment, stdin, accepted in PASSWORD_SOURCES:
            result = producer.download(cli, registry, *map(fill, option), password=fill(environment),
                                       stdin=fill(stdin))
            expect(result.returncode == (0 if accepted else 1), f"password from {what}: exit {result.returncode}")
            expect((REFUSED_LOGIN in result.stderr) != accepted, f"password from {what}: {result.stderr}")


def snapshot(folder):
    return {name: (open(os.path.join(folder, name), "rb").read(), os.stat(os.path.join(folder, name)).st_mtime_ns)
            for name in os.listdir(folder)}


def check_stopped_runs_keep_exports(cli, sim, producer):
    """A download that does not run to its end writes no exports: the files of
    an earlier run, named as this run would name them, stay as they were."""
    stopped = [("wrong password", [], "zle"), ("refused log-in", ["--refuse-login"], None),
               ("failing holdings list", ["--fail-holdings"], None),
               ("holdings list that is not JSON", ["--not-json-holdings"], None)]
    for what, faults, password in stopped:
        folder, dump = os.path.join(producer.work, "kept"), os.path.join(producer.work, "kept.json")
        os.makedirs(folder, exist_ok=True)
        for name in producer.export_names() + ["notatki.txt"]:
            with open(os.path.join(folder, name), "wb") as f:
                f.write(b"earlier run " + name.encode())
            os.utime(os.path.join(folder, name), ns=(10**18, 10**18))
        before = snapshot(folder)
        with Registry(sim, producer.data, *faults) as registry:
            result = producer.download(cli, registry, "--export-dir", folder, "--dump-json", dump,
                                       password=password or producer.password)
        expect(result.returncode == 1, f"{what}: exit {result.returncode}: {result.stderr}")
        expect(snapshot(folder) == before, f"{what}: the earlier exports changed")
        expect(folder not in result.stderr, f"{what}: an export listed: {result.stderr}")
        expect(os.path.exists(dump), f"{what}: no dump")
        os.remove(dump)


def check_only_written_exports_listed(cli, sim, producer):
    folder = os.path.join(producer.work, "partly")
    os.makedirs(os.path.join(folder, producer.export_names()[0]))  # a folder where the groups workbook goes
    with Registry(sim, producer.data) as registry:
        result = producer.download(cli, registry, "--export-dir", folder, password=producer.password)
    expect(result.returncode == 1, f"a failed export: exit {result.returncode}")
    listed = [line for line in result.stderr.splitlines() if line.startswith(folder)]
    files = [n for n in os.listdir(folder) if os.path.isfile(os.path.join(folder, n))]
    expect(len(files) == 2 and sorted(os.path.basename(p) for p in listed) == sorted(files),
           f"listed {listed}, written {files}")


def check_incomplete_herds(cli, sim, producer):
    """A herd that ends early makes a run that still goes to its end: exit 3,
    every export written, and a line in the error memo for that herd."""
    first, second = producer.holdings[0], producer.holdings[1]
    part_way = first["zwierzeta"][2]["numerIdentyfikacyjnyZwierzecia"]
    dump = os.path.join(producer.work, "incomplete.json")
    with Registry(sim, producer.data) as registry:
        result = producer.download(cli, registry, "--dump-json", dump, password=producer.password)
    expect(result.returncode == 0, f"every herd whole: exit {result.returncode}: {result.stderr}")
    whole_errors = load(dump)["errors"]
    faults = [("an animal failing part-way", ["--fail-animal", part_way]),
              ("a failing animal list", ["--fail-herd", second["numerDzialalnosci"]]),
              ("a registry message for the animal list", ["--komunikat-herd", second["numerDzialalnosci"]])]
    for what, fault in faults:
        folder = os.path.join(producer.work, "incomplete-" + fault[0])
        with Registry(sim, producer.data, *fault) as registry:
            result = producer.download(cli, registry, "--export-dir", folder, "--dump-json", dump,
                                       password=producer.password)
        expect(result.returncode == 3, f"{what}: exit {result.returncode}: {result.stderr}")
        expect(len(os.listdir(folder)) == 3, f"{what}: exports {os.listdir(folder)}")
        expect(len(load(dump)["errors"]) > len(whole_errors), f"{what}: errors {load(dump)['errors']}")


def main():
    cli, sim = sys.argv[1], sys.argv[2]
    check_demo(cli)
    check_arguments(cli)
    check_unhandled_error(cli)
    check_simulator_arguments(sim)
    with tempfile.TemporaryDirectory() as work:
        producer = Producer(sim, work)
        check_password_sources(cli, sim, producer)
        check_stopped_runs_keep_exports(cli, sim, producer)
        check_only_written_exports_listed(cli, sim, producer)
        check_incomplete_herds(cli, sim, producer)
    print("command line checks passed")


if __name__ == "__main__":
    main()
