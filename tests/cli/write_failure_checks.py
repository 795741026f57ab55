#!/usr/bin/env python3
"""Every file the command line writes, failed at every step with the real system
calls: a preload library makes the N-th write, fsync, close or rename on the
files of one folder fail with ENOSPC, EIO or EACCES. After each failure the
command reports no success and names the file in Polish, no temporary file is
left, the file that failed is as it was before (whole, or absent), and what the
folder holds still reads: the producer list and its passwords, the journal
without a partial line, the error log without a partial report.

usage: write_failure_checks.py HALVARN_CLI FAILIO_LIBRARY
"""
import json
import os
import shutil
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from cli_checks import expect  # noqa: E402

CALLS = ["write", "fsync", "close", "rename"]
ERRNOS = ["ENOSPC", "EIO", "EACCES"]
PASSWORDS = {"1": "haslo-pierwsze", "2": "haslo-drugie"}


def run(cli, data, *arguments, password=None, failure=None, stdin=""):
    env = {k: v for k, v in os.environ.items() if not k.startswith("HALVARN_")}
    env["HALVARN_DATA_DIR"] = data
    env["QT_QPA_PLATFORM"] = "offscreen"
    if password:
        env["HALVARN_PASSWORD"] = password
    if failure:
        env.update(failure)
    return subprocess.run([cli, *arguments], capture_output=True, text=True, timeout=300, env=env, input=stdin)


def snapshot(folder):
    files = {}
    for root, _, names in os.walk(folder):
        for name in names:
            path = os.path.join(root, name)
            with open(path, "rb") as f:
                files[os.path.relpath(path, folder)] = f.read()
    return files


def temporaries(folder):
    return [name for _, _, names in os.walk(folder) for name in names if ".tmp" in name]


def producer_list(cli, data):
    """The list as `producers list` shows it, and whether it warned of unreadable passwords."""
    result = run(cli, data, "producers", "list")
    expect(result.returncode == 0, f"the list reads after the failure: {result.stderr}")
    return result.stdout, "Hasła trzeba wpisać ponownie" in result.stderr


def failures(fail_path, marker):
    """Every (call, n, errno) in turn, until the n-th call of a kind does not happen."""
    for call in CALLS:
        n = 1
        while True:
            yield call, n, {"HALVARN_FAIL_CALL": call, "HALVARN_FAIL_NTH": str(n),
                            "HALVARN_FAIL_ERRNO": ERRNOS[n % len(ERRNOS)], "HALVARN_FAIL_PATH": fail_path,
                            "HALVARN_FAIL_FIRED": marker}
            if not os.path.exists(marker):
                break
            os.remove(marker)
            n += 1


def check_writer(name, pristine, work, command, fail_path_of, after, marker_dir, appended=False,
                 main="KNTRH_V002.DAT", failed=lambda result: result.returncode != 0):
    """Runs `command` on a copy of `pristine` with each failure; `after` checks what is left. An
    appended file may have gained the lines written before the failing one; once a line is synced,
    a failed close of its file loses nothing."""
    before = snapshot(pristine)
    tried = 0
    marker = os.path.join(marker_dir, "fired")
    for call, n, failure in failures(None, marker):
        trial = os.path.join(work, f"{name}-{call}-{n}")
        shutil.copytree(pristine, trial)
        failure["HALVARN_FAIL_PATH"] = fail_path_of(trial)
        result = command(trial, failure)
        if not os.path.exists(marker):
            shutil.rmtree(trial)
            continue
        tried += 1
        with open(marker) as f:
            failed_call, failed_path = f.read().split(" ", 1)
        what = f"{name}: {call} #{n} ({failed_path})"
        expect(not temporaries(trial), f"{what}: temporary files left {temporaries(trial)}")
        folder_sync = os.path.isdir(failed_path)
        if not failed(result):
            # Only what holds no data may fail without a word: the key file's cleanup after the change
            # was in place, and the lock file's own sync.
            harmless = (failed_path.split(".tmp")[0].endswith("KNTRH.KEY") or failed_path.endswith(".lock")
                        or (appended and failed_call == "close"))
            changed = snapshot(trial).get(main) != before.get(main)
            expect((harmless or folder_sync) and changed, f"{what}: success reported: {result.stderr}")
        else:
            expect("Nie można zapisać" in result.stderr or "Bląd" in result.stderr, f"{what}: {result.stderr}")
            named = failed_path if not folder_sync else None
            expect(named is None or os.path.basename(named).split(".tmp")[0] in result.stderr,
                   f"{what}: the file is not named: {result.stderr}")
            relative = os.path.relpath(failed_path.split(".tmp")[0], trial)
            if not folder_sync and relative in before and not appended:
                expect(snapshot(trial).get(relative) == before[relative], f"{what}: {relative} changed")
            elif not folder_sync and not appended and relative != "KNTRH.KEY":  # a key made first stays, sound
                expect(relative not in snapshot(trial), f"{what}: {relative} appeared")
        after(trial, what)
        shutil.rmtree(trial)
    expect(tried > 0, f"{name}: no failure was injected")
    return tried


def list_intact(cli, expected_names):
    def check(trial, what):
        listed, unreadable = producer_list(cli, trial)
        names = [line.split("\t")[1] for line in listed.splitlines()]
        expect(names in expected_names, f"{what}: the list holds {names}")
        expect(not unreadable, f"{what}: passwords no longer readable")
    return check


def whole_lines(path, fields=None):
    def check(trial, what):
        raw = open(os.path.join(trial, path), "rb").read() if os.path.exists(os.path.join(trial, path)) else b""
        expect(raw == b"" or raw.endswith(b"\r\n"), f"{what}: {path} ends in a partial line")
        lines = raw.decode("cp1250").split("\r\n")[:-1]
        expect(fields is None or all(len(line.split(";")) == fields for line in lines), f"{what}: {lines}")
    return check


def demo(cli, data, *arguments, failure=None, failio=None):
    extra = dict(failure, LD_PRELOAD=failio) if failure else None
    return run(cli, data, "download", "--demo", "--data-dir", data, *arguments, failure=extra)


def check_program_files(cli, failio, work, marker_dir, counts):
    """Exports, PDFs and the dump over older ones, the error log and the journal."""
    outputs, data = os.path.join(work, "outputs"), os.path.join(work, "demo-data")

    def files_into(folder):
        return ["--export-dir", os.path.join(folder, "EXPORT"), "--pdf-dir", os.path.join(folder, "PDF"),
                "--dump-json", os.path.join(folder, "dump.json")]
    first = demo(cli, data, *files_into(outputs))
    expect(first.returncode == 0, f"demo: {first.stderr}")
    counts["exports, PDFs and the dump"] = check_writer(
        "exports", outputs, work, lambda t, f: demo(cli, data, *files_into(t), failure=f, failio=failio),
        lambda t: t, lambda t, w: None, marker_dir)

    logged = os.path.join(work, "logged")
    expect(demo(cli, logged, "--debug-error").returncode == 4, "a first report in the error log")
    counts["error log"] = check_writer(
        "log", logged, work, lambda t, f: demo(cli, t, "--debug-error", failure=f, failio=failio),
        lambda t: os.path.join(t, "BLEDY.LOG"), whole_lines("BLEDY.LOG"), marker_dir, appended=True,
        main="BLEDY.LOG", failed=lambda result: "Raportu nie dopisano" in result.stderr)

    dump = os.path.join(work, "demo.json")
    expect(demo(cli, os.path.join(work, "scratch"), "--dump-json", dump).returncode == 0, "demo dump")
    with open(dump, encoding="utf-8") as f:
        tag = next(r["NumerIdentyfikacyjny"] for r in json.load(f)["tables"]["mdRZ00"]
                   if r["KierunekUzytkowania"] != "Do opasu")
    noticed = os.path.join(work, "noticed")
    os.makedirs(noticed)
    with open(os.path.join(noticed, "HALVARN.INI"), "wb") as f:
        f.write(b"[TUKU]\r\nWaitSeconds=0\r\n")
    counts["use change journal"] = check_writer(
        "journal", noticed, work,
        lambda t, f: demo(cli, t, "--mark", tag, "--use-change", "OP", "--yes", failure=f, failio=failio),
        lambda t: os.path.join(t, "TUKU.LOG"), whole_lines("TUKU.LOG", 11), marker_dir, appended=True,
        main="TUKU.LOG")


def main():
    cli, failio = sys.argv[1], sys.argv[2]
    os.environ["LD_PRELOAD"] = ""
    with tempfile.TemporaryDirectory() as work:
        pristine = os.path.join(work, "pristine")
        os.makedirs(pristine)
        for number, password in PASSWORDS.items():
            result = run(cli, pristine, "producers", "add", "--name", f"Gospodarstwo {number}", "--login",
                         f"login{number}", "--producer", f"07123456{number}", password=password)
            expect(result.returncode == 0, f"setup: {result.stderr}")
        marker_dir = os.path.join(work, "markers")
        os.makedirs(marker_dir)
        old, added = [["Gospodarstwo 1", "Gospodarstwo 2"]], [["Gospodarstwo 1", "Gospodarstwo 2", "Nowe"]]

        def producers(*arguments, password=None):
            return lambda trial, failure: run(cli, trial, "producers", *arguments, password=password,
                                              failure=dict(failure, LD_PRELOAD=failio))

        counts = {}
        counts["producers add"] = check_writer(
            "add", pristine, work, producers("add", "--name", "Nowe", "--login", "n", "--producer", "1",
                                             password="nowe"), lambda t: t, list_intact(cli, old + added),
            marker_dir)
        counts["producers edit"] = check_writer(
            "edit", pristine, work, producers("edit", "--id", "1", "--name", "Nowe", password="zmienione"),
            lambda t: t, list_intact(cli, old + [["Nowe", "Gospodarstwo 2"]]), marker_dir)
        counts["producers remove"] = check_writer(
            "remove", pristine, work, producers("remove", "--id", "1", "--yes"), lambda t: t,
            list_intact(cli, old + [["Gospodarstwo 2"]]), marker_dir)
        empty = os.path.join(work, "empty")
        os.makedirs(empty)
        counts["first add (key, settings, list)"] = check_writer(
            "first", empty, work, producers("add", "--name", "Nowe", "--login", "n", "--producer", "1",
                                            password="nowe"), lambda t: t, list_intact(cli, [[], ["Nowe"]]),
            marker_dir)
        settings = os.path.join(work, "settings")
        shutil.copytree(pristine, settings)
        with open(os.path.join(settings, "HALVARN.INI"), "rb") as f:
            ini = f.read()
        with open(os.path.join(settings, "HALVARN.INI"), "wb") as f:
            f.write(b"\r\n".join(line for line in ini.split(b"\r\n") if not line.startswith(b"Klucz=")))
        counts["settings"] = check_writer(
            "settings", settings, work, producers("list"), lambda t: os.path.join(t, "HALVARN.INI"),
            lambda t, w: None, marker_dir, main="HALVARN.INI")
        check_program_files(cli, failio, work, marker_dir, counts)
        print(json.dumps(counts))
    print("write failure checks passed")


if __name__ == "__main__":
    main()
