#!/usr/bin/env python3
"""The change of use direction from the command line against the registry
simulator: the question answered on standard input, the exit codes, the dump's
mdTUKU, the journal, the confirmation PDF, and a second download that shows the
direction the registry approved.

usage: use_change_checks.py HALVARN_CLI HALVARN_REGISTRY_SIM
"""
import datetime as dt
import os
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from cli_checks import Producer, Registry, expect, load  # noqa: E402

JOURNAL_FIELDS = 11


def settle_quickly(data):
    """No wait for the registry between the notices and the status queries."""
    os.makedirs(data, exist_ok=True)
    with open(os.path.join(data, "HALVARN.INI"), "wb") as f:
        f.write(b"[TUKU]\r\nWaitSeconds=0\r\n")


def journal(data):
    path = os.path.join(data, "TUKU.LOG")
    if not os.path.exists(path):
        return []
    raw = open(path, "rb").read()
    expect(raw.endswith(b"\r\n"), "journal lines end with CRLF")
    lines = raw.decode("cp1250").split("\r\n")[:-1]
    expect(all(len(line.split(";")) == JOURNAL_FIELDS for line in lines), f"journal fields: {lines}")
    return [line.split(";") for line in lines]


def animals(producer, sex):
    return [a["numerIdentyfikacyjnyZwierzecia"] for h in producer.holdings for a in h["zwierzeta"]
            if a["plec"]["kod"] == sex]


def change(cli, producer, registry, tags, code, dump, *extra, stdin="tak\n"):
    return producer.download(cli, registry, "--mark", ",".join(tags), "--use-change", code, "--dump-json", dump,
                             *extra, password=producer.password, stdin=stdin)


def check_end_to_end(cli, sim, producer):
    data = os.path.join(producer.work, "data")
    settle_quickly(data)
    dump, pdfs = os.path.join(producer.work, "tuku.json"), os.path.join(producer.work, "PDF")
    chosen = animals(producer, "XX")[:2]
    with Registry(sim, producer.data, "--approve-after-ms", "0") as registry:
        result = change(cli, producer, registry, chosen, "MI", dump, "--pdf-dir", pdfs)
        expect(result.returncode == 0, f"accepted change: exit {result.returncode}: {result.stderr}")
        expect("Wysłać zmianę kierunku użytkowania na „Mięsny” dla 2 zwierząt?" in result.stderr, "the question")
        rows = load(dump)["tables"]["mdTUKU"]
        expect([r["NumerIdentyfikacyjny"] for r in rows] == chosen, f"mdTUKU rows {rows}")
        expect(all(r["KU_NEW"] == "MI" and r["NumerDokumentu"] and r["ST_KOD"] == 7 and r["ST_OPIS"] == "Zatwierdzony"
                   for r in rows), f"mdTUKU {rows}")
        events = [line[8] for line in journal(data)]
        expect(events == ["WYSLANO", "PRZYJETO", "WYSLANO", "PRZYJETO", "STATUS", "STATUS"], f"journal {events}")
        day = dt.date.today().strftime("%d.%m.%Y")
        pdf = os.path.join(pdfs, f"Zgłoszenie zmieny TUKU {producer.number} {day}.PDF")
        text = subprocess.run(["pdftotext", "-layout", pdf, "-"], capture_output=True, text=True).stdout
        expect(all(r["NumerDokumentu"] in text for r in rows) and "Zatwierdzony" in text, f"confirmation: {text}")

        again = os.path.join(producer.work, "again.json")
        result = producer.download(cli, registry, "--dump-json", again, password=producer.password)
        expect(result.returncode == 0, f"second download: exit {result.returncode}")
        directions = {r["NumerIdentyfikacyjny"]: r["KierunekUzytkowania"] for r in load(again)["tables"]["mdRZ00"]}
        expect(all(directions[tag] == "Mięsny" for tag in chosen), f"directions after approval {directions}")


def check_declined_and_refused(cli, sim, producer):
    data = os.path.join(producer.work, "data")
    dump = os.path.join(producer.work, "declined.json")
    cow, other = animals(producer, "XX")[2:4]
    bull = animals(producer, "XY")[0]
    with Registry(sim, producer.data, "--fail-use-change", other) as registry:
        for answer in ["n\n", "", "nie\n"]:
            before = len(journal(data))
            result = change(cli, producer, registry, [cow], "MI", dump, stdin=answer)
            expect(result.returncode == 1, f"declined with {answer!r}: exit {result.returncode}")
            expect(len(journal(data)) == before and load(dump)["tables"]["mdTUKU"] == [], "nothing sent")

        result = change(cli, producer, registry, [cow, bull, other], "ML", dump, "--yes")
        expect(result.returncode == 3, f"refused and unconfirmed: exit {result.returncode}: {result.stderr}")
        expect(f"Odrzucono: {bull}" in result.stderr and f"Bez potwierdzenia: {other}" in result.stderr,
               f"listed on stderr: {result.stderr}")
        rows = {r["NumerIdentyfikacyjny"]: r for r in load(dump)["tables"]["mdTUKU"]}
        expect(rows[bull]["BLEDY"].startswith("KB: ZTUKU-14->") and rows[bull]["BLEDY"].endswith("; "),
               f"errors of the bull {rows[bull]}")
        marked = [r["NumerIdentyfikacyjny"] for r in load(dump)["tables"]["mdRZ00"] if r["ZAZNACZONE"]]
        expect(sorted(marked) == sorted([bull, other]), f"ticks left {marked}")

        result = change(cli, producer, registry, ["PL999999999999"], "MI", dump, "--yes")
        expect(result.returncode == 2 and "PL999999999999" in result.stderr, f"unknown animal: {result.returncode}")


def main():
    cli, sim = sys.argv[1], sys.argv[2]
    with tempfile.TemporaryDirectory() as work:
        producer = Producer(sim, work)
        check_end_to_end(cli, sim, producer)
        check_declined_and_refused(cli, sim, producer)
    print("use change checks passed")


if __name__ == "__main__":
    main()
