#!/usr/bin/env python3
"""The change of use direction from the command line against the registry
simulator: the question answered on standard input, the exit codes, the dump's
mdTUKU, the journal, the confirmation PDF, and a second download that shows the
direction the registry approved. Then a notice's answer lost on its way back
(connection closed, reset, time-out, the program killed), a run repeated after
approval and a journal that fails after the registry accepted: the registry
receives each notice once, and a second one only on --resend-unconfirmed.

usage: use_change_checks.py HALVARN_CLI HALVARN_REGISTRY_SIM
"""
import datetime as dt
import json
import os
import signal
import subprocess
import sys
import tempfile
import time
import urllib.request

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from cli_checks import REFERENCE, Producer, Registry, expect, load  # noqa: E402

JOURNAL_FIELDS = 11


def settle_quickly(data, post_timeout=None):
    """No wait for the registry between the notices and the status queries."""
    os.makedirs(data, exist_ok=True)
    with open(os.path.join(data, "HALVARN.INI"), "wb") as f:
        f.write(b"[TUKU]\r\nWaitSeconds=0\r\n")
        if post_timeout:
            f.write(f"[IRZ]\r\nPostTimeoutSeconds={post_timeout}\r\n".encode())


def journal(data):
    path = os.path.join(data, "TUKU.LOG")
    if not os.path.exists(path):
        return []
    raw = open(path, "rb").read()
    expect(raw.endswith(b"\r\n"), "journal lines end with CRLF")
    lines = raw.decode("cp1250").split("\r\n")[:-1]
    expect(all(len(line.split(";")) == JOURNAL_FIELDS for line in lines), f"journal fields: {lines}")
    return [line.split(";") for line in lines]


def animals(producer, sex, not_directions=()):
    return [a["numerIdentyfikacyjnyZwierzecia"] for h in producer.holdings for a in h["zwierzeta"]
            if a["plec"]["kod"] == sex and a["kierunekUzytkownia"]["kod"] not in not_directions]


def notices(registry):
    """How many use change notices reached the simulator."""
    with urllib.request.urlopen(registry.base + "/sim/stats", timeout=10) as answer:
        return json.load(answer)["useChangeRequests"]


def events(data):
    return [line[8] for line in journal(data)]


def wait_for(condition, what, seconds=60):
    deadline = time.monotonic() + seconds
    while not condition():
        expect(time.monotonic() < deadline, f"waited in vain for {what}")
        time.sleep(0.05)


def fresh(sim, work, name, post_timeout=None):
    """A producer with a data folder of its own, and a heifer whose direction is not "OP"."""
    os.makedirs(os.path.join(work, name))
    producer = Producer(sim, os.path.join(work, name))
    settle_quickly(os.path.join(producer.work, "data"), post_timeout)
    return producer, animals(producer, "XX", not_directions=["OP"])[0]


def started(cli, producer, registry, tag, *extra):
    """The change to "OP" for one animal, running in the background."""
    env = dict(os.environ, HALVARN_PASSWORD=producer.password)
    command = [cli, "download", "--sso-base", registry.base, "--api-base", registry.base, "--login", producer.login,
               "--producer", producer.number, "--reference-date", REFERENCE,
               "--data-dir", os.path.join(producer.work, "data"), "--mark", tag, "--use-change", "OP", "--yes", *extra]
    return subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, env=env)


def change(cli, producer, registry, tags, code, dump, *extra, stdin="tak\n"):
    return producer.download(cli, registry, "--mark", ",".join(tags), "--use-change", code, "--dump-json", dump,
                             *extra, password=producer.password, stdin=stdin)


def check_end_to_end(cli, sim, producer):
    data = os.path.join(producer.work, "data")
    settle_quickly(data)
    dump, pdfs = os.path.join(producer.work, "tuku.json"), os.path.join(producer.work, "PDF")
    chosen = animals(producer, "XX", not_directions=["MI"])[:2]
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
    cow, other = animals(producer, "XX", not_directions=["ML", "MIOP"])[:2]
    bull = animals(producer, "XY")[0]
    with Registry(sim, producer.data, "--fail-use-change", other) as registry:
        for answer in ["n\n", "", "nie\n"]:
            before = len(journal(data))
            result = change(cli, producer, registry, [cow], "MIOP", dump, stdin=answer)
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


def check_lost_answers(cli, sim, work):
    for loss in ["close", "reset"]:
        for approve in ["60000", "0"]:
            producer, tag = fresh(sim, work, f"{loss}-{approve}")
            data, dump = os.path.join(producer.work, "data"), os.path.join(producer.work, "tuku.json")
            with Registry(sim, producer.data, f"--{loss}-after-use-change", tag, "--approve-after-ms", approve) as reg:
                result = change(cli, producer, reg, [tag], "OP", dump, "--yes")
                expect(result.returncode == 3 and f"Bez potwierdzenia: {tag}" in result.stderr,
                       f"{loss}: answer lost: exit {result.returncode}: {result.stderr}")
                expect(notices(reg) == 1, f"{loss}: one notice, not {notices(reg)}")
                expect(events(data) == ["WYSLANO", "NIEPOTWIERDZONO"], f"{loss}: journal {events(data)}")
                rows = load(dump)["tables"]["mdTUKU"]
                expect(len(rows) == 1 and not rows[0]["NumerDokumentu"], f"{loss}: mdTUKU {rows}")

                again = change(cli, producer, reg, [tag], "OP", dump, "--yes")
                if approve == "0":  # approved meanwhile: the download shows the new direction
                    expect(again.returncode == 0 and f"Bez zmiany: {tag}" in again.stderr,
                           f"{loss}: after approval: exit {again.returncode}: {again.stderr}")
                    expect(notices(reg) == 1, f"{loss}: nothing sent after approval")
                    continue
                expect(again.returncode == 3 and f"Wstrzymano: {tag}" in again.stderr, f"{loss}: {again.stderr}")
                expect("ZTUKU/" in again.stderr and "W trakcie weryfikacji" in again.stderr,
                       f"{loss}: the registry's documents shown: {again.stderr}")
                expect(notices(reg) == 1, f"{loss}: refused without --resend-unconfirmed")
                resent = change(cli, producer, reg, [tag], "OP", dump, "--yes", "--resend-unconfirmed")
                expect("ZTUKU/" in resent.stderr and notices(reg) == 2, f"{loss}: resent: {resent.stderr}")


def check_time_out_after_acceptance(cli, sim, work):
    producer, tag = fresh(sim, work, "silent", post_timeout=2)
    data, dump = os.path.join(producer.work, "data"), os.path.join(producer.work, "tuku.json")
    with Registry(sim, producer.data, "--silence-after-use-change", tag) as registry:
        result = change(cli, producer, registry, [tag], "OP", dump, "--yes")
        expect(result.returncode == 3 and f"Bez potwierdzenia: {tag}" in result.stderr, f"time-out: {result.stderr}")
        expect(notices(registry) == 1 and events(data) == ["WYSLANO", "NIEPOTWIERDZONO"], f"time-out: {events(data)}")
        expect("Przekroczono czas oczekiwania" in journal(data)[1][10], f"time-out: {journal(data)}")


def check_killed_while_sending(cli, sim, work):
    producer, tag = fresh(sim, work, "killed")
    data, dump = os.path.join(producer.work, "data"), os.path.join(producer.work, "tuku.json")
    with Registry(sim, producer.data, "--silence-after-use-change", tag) as registry:
        process = started(cli, producer, registry, tag)
        wait_for(lambda: notices(registry) == 1 and events(data) == ["WYSLANO"], "the notice to go out")
        process.send_signal(signal.SIGKILL)
        process.communicate(timeout=30)
        again = change(cli, producer, registry, [tag], "OP", dump, "--yes")
        expect(again.returncode == 3 and f"Wstrzymano: {tag}" in again.stderr, f"killed: {again.stderr}")
        expect("program zakończył się w trakcie wysyłania" in again.stderr, f"killed: {again.stderr}")
        expect(notices(registry) == 1, "killed: nothing sent again")


def check_same_command_after_approval(cli, sim, work):
    producer, tag = fresh(sim, work, "twice")
    dump = os.path.join(producer.work, "tuku.json")
    with Registry(sim, producer.data, "--approve-after-ms", "0") as registry:
        first = change(cli, producer, registry, [tag], "OP", dump, "--yes")
        expect(first.returncode == 0, f"first: exit {first.returncode}: {first.stderr}")
        second = change(cli, producer, registry, [tag], "OP", dump, "--yes")
        expect(second.returncode == 0 and f"Bez zmiany: {tag}: kierunek użytkowania już jest „Do opasu”" in second.stderr,
               f"second: exit {second.returncode}: {second.stderr}")
        expect(notices(registry) == 1, f"twice: {notices(registry)} notices")


def check_journal_failing_after_acceptance(cli, sim, work):
    producer, tag = fresh(sim, work, "journal")
    data, pdfs = os.path.join(producer.work, "data"), os.path.join(producer.work, "PDF")
    dump = os.path.join(producer.work, "tuku.json")
    path = os.path.join(data, "TUKU.LOG")
    with Registry(sim, producer.data, "--slow-use-change", tag, "--slow-ms", "2000") as registry:
        process = started(cli, producer, registry, tag, "--dump-json", dump, "--pdf-dir", pdfs)
        wait_for(lambda: events(data) == ["WYSLANO"], "the notice to go out")
        os.rename(path, path + ".kept")
        os.mkdir(path)  # the journal cannot be written any more, whoever runs the program
        _, stderr = process.communicate(timeout=120)
        expect(process.returncode == 1, f"journal: exit {process.returncode}: {stderr}")
        rows = load(dump)["tables"]["mdTUKU"]
        number = rows[0]["NumerDokumentu"]
        expect(number.startswith("ZTUKU/"), f"journal: mdTUKU {rows}")
        said = f"Zgłoszenie zwierzęcia {tag} przyjęte przez rejestr jako {number}, ale nie zapisano go w dzienniku"
        expect(said in stderr, f"journal: stderr {stderr}")
        expect(any(said in line for line in load(dump)["errors"]), "journal: the dump's errors")
        day = dt.date.today().strftime("%d.%m.%Y")
        pdf = os.path.join(pdfs, f"Zgłoszenie zmieny TUKU {producer.number} {day}.PDF")
        text = subprocess.run(["pdftotext", "-layout", pdf, "-"], capture_output=True, text=True).stdout
        expect(number in text, f"journal: the confirmation {text}")


def main():
    cli, sim = sys.argv[1], sys.argv[2]
    with tempfile.TemporaryDirectory() as work:
        producer = Producer(sim, work)
        check_end_to_end(cli, sim, producer)
        check_declined_and_refused(cli, sim, producer)
        check_lost_answers(cli, sim, work)
        check_time_out_after_acceptance(cli, sim, work)
        check_killed_while_sending(cli, sim, work)
        check_same_command_after_approval(cli, sim, work)
        check_journal_failing_after_acceptance(cli, sim, work)
    print("use change checks passed")


if __name__ == "__main__":
    main()
