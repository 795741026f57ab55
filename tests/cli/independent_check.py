#!/usr/bin/env python3
"""Runs halvarn-cli against a registry fake written here and compares every row
of its JSON dump with the groups, marks and ages computed here independently.

usage: independent_check.py HALVARN_CLI
"""
import datetime as dt
import http.server
import itertools
import json
import os
import random
import subprocess
import sys
import tempfile
import threading
import urllib.parse

REFERENCE = dt.date(2026, 11, 1)
EPOCH = dt.date(1899, 12, 30)
PRODUCER, LOGIN, PASSWORD = "123456789", "doradca", "tajne"

DEFAULT_LIMITS = {
    "BydloOpasoweGrp_Do_150KG_Wiek_Do": 3, "BydloOpasoweGrp_Od_150KG_Do_220KG_Wiek_Od": 3,
    "BydloOpasoweGrp_Od_150KG_Do_220KG_Wiek_Do": 4, "BydloOpasoweGrp_Od_220KG_Do_300KG_Wiek_Od": 4,
    "BydloOpasoweGrp_Od_300KG_Do_450KG_Wiek_Do": 10, "BydloOpasoweGrp_Ponad_450KG_Wiek_Od": 10,
    "CieletaGrp_Do_150KG_Wiek_Do": 3, "CieletaGrp_Od_150KG_Do_220KG_Wiek_Od": 3,
    "CieletaGrp_Od_150KG_Do_220KG_Wiek_Do": 5, "CieletaGrp_Ponad_220KG_Wiek_Od": 5,
    "HalvKrowMamekGrp_Cieleta_Do_150KG_Wiek_Do": 3, "HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Od": 3,
    "HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Do": 5, "HalvKrowMamekGrp_Cieleta_Ponad_220KG_Wiek_Od": 5,
    "HalvOpasowGrp_Do_150KG_Wiek_Do": 3, "HalvOpasowGrp_Od_150KG_Do_220KG_Wiek_Od": 3,
    "HalvOpasowGrp_Od_150KG_Do_220KG_Wiek_Do": 4, "HalvOpasowGrp_Od_220KG_Do_300KG_Wiek_Od": 4,
    "HalvOpasowGrp_Od_300KG_Do_450KG_Wiek_Do": 10, "HalvOpasowGrp_Ponad_450KG_Wiek_Od": 10,
}
CHANGED_LIMITS = {key: value + (2 if key.endswith("_Do") else 1) for key, value in DEFAULT_LIMITS.items()}


def shuffled_limits():
    """Limits in no particular order: the bands of different classes overlap or
    leave gaps, so every sub-count stands on its own. Within one class the lower
    bound stays at or below the upper one, as the settings require."""
    rng = random.Random(7)
    limits = {key: rng.randint(0, 20) for key in DEFAULT_LIMITS}
    for lower in [key for key in limits if key.endswith("_Wiek_Od")]:
        upper = lower[:-2] + "Do"
        if upper in limits:
            limits[lower], limits[upper] = sorted((limits[lower], limits[upper]))
    return limits


SHUFFLED_LIMITS = shuffled_limits()

SEXES = [("XX", "Samica"), ("XY", "Samiec"), ("XX", "Samica"), ("XY", "Samiec"), ("", "")]
USE_TYPES = [("MI", "Mięsny"), ("ML", "Mleczny"), ("KO", "Kombinowany"), ("", "")]
DIRECTIONS = [("MI", "Mięsny"), ("ML", "Mleczny"), ("OP", "Do opasu"), ("MIOP", "Mięsny do opasu"),
              ("MLOP", "Mleczny do opasu"), ("XX", "Inny")]


# ---------------------------------------------------------------- the registry fake
def make_herds(rng):
    herds = []
    for number in range(1, 5):
        holding = f"{PRODUCER}-{number:03d}"
        state = ("SDZZ", "Zawieszona") if number == 3 else ("SDZA", "Aktywna")
        count = 0 if number == 4 else rng.randint(60, 140)
        herds.append({"holding": holding, "state": state, "animals": [make_animal(rng, holding, i) for i in range(count)]})
    return herds


def make_animal(rng, holding, index):
    sex, use_type, direction = rng.choice(SEXES), rng.choice(USE_TYPES), rng.choice(DIRECTIONS)
    birth = None
    if rng.random() > 0.03:
        birth = REFERENCE - dt.timedelta(days=rng.randint(0, 1300))
        if rng.random() < 0.15:  # exact anniversaries of the reference day
            birth = REFERENCE.replace(year=REFERENCE.year - rng.randint(0, 3))
    tag = f"PL{rng.randint(10**11, 10**12 - 1):012d}"
    animal = {
        "numerIdentyfikacyjnyZwierzecia": tag, "lp": index + 1, "numerDzialalnosci": holding,
        "plec": {"kod": sex[0], "opis": sex[1]}, "typUzytkowy": {"kod": use_type[0], "opis": use_type[1]},
        "kierunekUzytkownia": {"kod": direction[0], "opis": direction[1]},
        "kodRasy": {"kod": rng.choice(["HO", "LM", "SM"]), "opis": "rasa"},
        "czyMatka": rng.random() < 0.5, "numerIdentyfikacyjnyMatki": f"PL{rng.randint(10**11, 10**12 - 1):012d}",
        "dataPrzybyciaDoDzialalnosci": (REFERENCE - dt.timedelta(days=rng.randint(0, 900))).isoformat(),
        "srodkiIdentyfikacji": [{"rodzajSrodkaIdentyfikacji": {"kod": "KOL", "opis": "Kolczyk"}}] * rng.randint(1, 2),
    }
    if birth:
        animal["dataUrodzenia"] = birth.isoformat()
    single = dict(animal, czyMatka=rng.random() < 0.5)  # the full record may say otherwise
    return {"list": animal, "single": single}


class Registry(http.server.BaseHTTPRequestHandler):
    herds = []

    def log_message(self, *args):
        pass

    def answer(self, status, body):
        data = json.dumps(body).encode()
        self.send_response(status)
        self.send_header("Content-Type", "application/json")
        self.send_header("Content-Length", str(len(data)))
        self.end_headers()
        self.wfile.write(data)

    def do_POST(self):
        body = self.rfile.read(int(self.headers["Content-Length"])).decode()
        if self.path.endswith("/openid-connect/token"):
            expected = f"username={LOGIN}&password={PASSWORD}&client_id=aplikacja-irzplus&grant_type=password"
            return self.answer(200, {"access_token": "t0k3n"}) if body == expected else self.answer(401, {"error": "invalid_grant"})
        assert self.headers["Authorization"] == "Bearer t0k3n"
        assert json.loads(body) == {"numerProducenta": PRODUCER}
        self.answer(200, {"dzialalnosc": [{"numerProducenta": PRODUCER, "numerDzialalnosci": h["holding"],
                                           "stanDzialalnosci": {"kod": h["state"][0], "opis": h["state"][1]}}
                                          for h in self.herds]})

    def do_GET(self):
        assert self.headers["Authorization"] == "Bearer t0k3n"
        url = urllib.parse.urlsplit(self.path)
        query = dict(urllib.parse.parse_qsl(url.query))
        if url.path.endswith("/zwierzetaIndywidualne"):
            herd = next(h for h in self.herds if h["holding"] == query["numerDzialalnosci"])
            return self.answer(200, {"listaZwierzeta": [a["list"] for a in herd["animals"]]})
        tag = query["numerIdentyfikacyjnyZwierzecia"]
        animal = next(a for h in self.herds for a in h["animals"] if a["list"]["numerIdentyfikacyjnyZwierzecia"] == tag)
        self.answer(200, animal["single"])


# ---------------------------------------------------------------- the rules, computed here
def age_in_months(birth):
    birth_day = (birth - EPOCH).days if birth else -700000
    reference_day = (REFERENCE - EPOCH).days
    months = int(abs(reference_day - birth_day) / 30.4375) + 1
    same_day = birth is not None and (birth.month, birth.day) == (REFERENCE.month, REFERENCE.day)
    return months - 1 if same_day else months


def catalogue(limits, kinds):
    L = limits
    up_to = lambda n: f"Wiek <= {n}"
    between = lambda a, b: f"{a} > Wiek <= {b}"
    A = [(1, "Halvarn krów mamek", "-"), (2, "  - mamki", "24 > Wiek"), (3, "  - Opasy do 300kg", ""),
         (4, "  - Cielęta do 150kg", up_to(L["HalvKrowMamekGrp_Cieleta_Do_150KG_Wiek_Do"])),
         (5, "  - Cieleta od 150kg do 220kg", between(L["HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Od"], L["HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Do"])),
         (6, "  - Cieleta powyżej 220kg", between(L["HalvKrowMamekGrp_Cieleta_Ponad_220KG_Wiek_Od"], 6)),
         (7, "  - Jałówki od 6 do 19", "6 > Wiek <= 19"), (8, "  - Jałówki od 19 do 24", "19 > Wiek <= 24"), (9, "", "")]
    B = [(10, "Halvarn opasów", "-"), (11, "  - waga <= 150 kg", up_to(L["HalvOpasowGrp_Do_150KG_Wiek_Do"])),
         (12, "  - 150 kg > waga <= 220 kg", between(L["HalvOpasowGrp_Od_150KG_Do_220KG_Wiek_Od"], L["HalvOpasowGrp_Od_150KG_Do_220KG_Wiek_Do"])),
         (13, "  - 220 kg > waga <= 300 kg", between(L["HalvOpasowGrp_Od_220KG_Do_300KG_Wiek_Od"], 8)),
         (14, "  - 300 kg > waga <= 450 kg", between(8, L["HalvOpasowGrp_Od_300KG_Do_450KG_Wiek_Do"])),
         (15, "  - 450 kg > waga", between(L["HalvOpasowGrp_Ponad_450KG_Wiek_Od"], 18)), (16, "", "")]
    C = [(17, "Halvarn krów mlecznych", "24 > Wiek"), (18, "", ""), (19, "Bydło opasowe do 300 kg", "6 > Wiek <= 8"),
         (20, "  - waga <= 150 kg", up_to(L["BydloOpasoweGrp_Do_150KG_Wiek_Do"])),
         (21, "  - 150 kg > waga <= 220 kg", between(L["BydloOpasoweGrp_Od_150KG_Do_220KG_Wiek_Od"], L["BydloOpasoweGrp_Od_150KG_Do_220KG_Wiek_Do"])),
         (22, "  - 220 kg > waga <= 300 kg", between(L["BydloOpasoweGrp_Od_220KG_Do_300KG_Wiek_Od"], 8)),
         (23, "Bydło opasowe ponad 300 kg", "8 > Wiek <= 18"),
         (24, "  - 300 kg > waga <= 450 kg", between(8, L["BydloOpasoweGrp_Od_300KG_Do_450KG_Wiek_Do"])),
         (25, "  - 450 kg > waga", between(L["BydloOpasoweGrp_Ponad_450KG_Wiek_Od"], 18)),
         (26, "Cielęta ", "Wiek <= 6"), (27, "  - Cielęta do 150kg", up_to(L["CieletaGrp_Do_150KG_Wiek_Do"])),
         (28, "  - Cieleta od 150kg do 220kg", between(L["CieletaGrp_Od_150KG_Do_220KG_Wiek_Od"], L["CieletaGrp_Od_150KG_Do_220KG_Wiek_Do"])),
         (29, "  - Cieleta powyżej 220kg", between(L["CieletaGrp_Ponad_220KG_Wiek_Od"], 6)),
         (30, "  - Cielęta (samice)", "Wiek <= 6"), (31, "  - Cielęta (samce)", "Wiek <= 6"),
         (32, "Jałówki od 6 do 19", "6 > Wiek <= 19"), (33, "Jałówki od 19 do 24", "19 > Wiek <= 24"),
         (34, "Krowy", "24 > Wiek"), (35, "Byki", "6 > Wiek <= 24"), (36, "Buhaje", "24 > Wiek"),
         (37, "Krowy mamki z cielętami do 150 kg", ""), (38, "Krowy mamki z cielętami 150 kg - 220 kg", ""),
         (39, "Krowy mamki z cielętami 220 kg - 300 kg", ""), (40, "NIE ROZLICZONE", "")]
    return (A if "mamki" in kinds else []) + (B if "opasy" in kinds else []) + (C if "mleczne" in kinds else [])


def classify(sex, use_type, direction, age, limits, kinds):
    """Returns (main row, sub rows, summary mark, herd mark, where) for one animal."""
    L, female = limits, sex == "XX"
    fattening = use_type in ("ML", "MI", "KO") and direction in ("OP", "MIOP", "MLOP")
    if "mamki" in kinds and (use_type == "MI" or (use_type == "KO" and direction == "MI")):
        where = "Halvarn krów mamek, -"
        if female and age > 24: return 1, [2], "D", "D", where
        if age <= 8: return 1, [3], "D", "D", where
        if age <= L["HalvKrowMamekGrp_Cieleta_Do_150KG_Wiek_Do"]: return 1, [4], "D", "D", where
        if L["HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Od"] < age <= L["HalvKrowMamekGrp_Cieleta_Od_150KG_Do_220KG_Wiek_Do"]:
            return 1, [5], "D", "D", where
        if L["HalvKrowMamekGrp_Cieleta_Ponad_220KG_Wiek_Od"] < age <= 6: return 1, [6], "D", "D", where
        if female and 6 < age <= 19: return 1, [7], "", "DX", where
        if female and 19 < age <= 24: return 1, [8], "D", "D", where
    if "opasy" in kinds and age <= 18 and fattening:
        subs = [n for n, hit in [(11, age <= L["HalvOpasowGrp_Do_150KG_Wiek_Do"]),
                                 (12, L["HalvOpasowGrp_Od_150KG_Do_220KG_Wiek_Od"] < age <= L["HalvOpasowGrp_Od_150KG_Do_220KG_Wiek_Do"]),
                                 (13, L["HalvOpasowGrp_Od_220KG_Do_300KG_Wiek_Od"] < age <= 8),
                                 (14, 8 < age <= L["HalvOpasowGrp_Od_300KG_Do_450KG_Wiek_Do"]),
                                 (15, age > L["HalvOpasowGrp_Ponad_450KG_Wiek_Od"])] if hit]
        return 10, subs, "D", "D", "Halvarn opasów, -"
    if "mleczne" in kinds:
        if age > 24 and female and (use_type == "ML" or (use_type == "KO" and direction == "ML")):
            return 17, [], "D", "D", "Halvarn krów mlecznych, 24 > Wiek"
        if fattening and age <= 8:
            subs = [n for n, hit in [(20, age <= L["BydloOpasoweGrp_Do_150KG_Wiek_Do"]),
                                     (21, L["BydloOpasoweGrp_Od_150KG_Do_220KG_Wiek_Od"] < age <= L["BydloOpasoweGrp_Od_150KG_Do_220KG_Wiek_Do"]),
                                     (22, L["BydloOpasoweGrp_Od_220KG_Do_300KG_Wiek_Od"] < age <= 8)] if hit]
            return 19, subs, "X", "X", "Bydło opasowe do 300 kg, 6 > Wiek <= 8"
        if fattening and 8 < age <= 18:
            subs = [n for n, hit in [(24, 8 < age <= L["BydloOpasoweGrp_Od_300KG_Do_450KG_Wiek_Do"]),
                                     (25, age > L["BydloOpasoweGrp_Ponad_450KG_Wiek_Od"])] if hit]
            return 23, subs, "X", "X", "Bydło opasowe ponad 300 kg, 8 > Wiek <= 18"
        if age <= 6:
            subs = [n for n, hit in [(27, age <= L["CieletaGrp_Do_150KG_Wiek_Do"]),
                                     (28, L["CieletaGrp_Od_150KG_Do_220KG_Wiek_Od"] < age <= L["CieletaGrp_Od_150KG_Do_220KG_Wiek_Do"]),
                                     (29, L["CieletaGrp_Ponad_220KG_Wiek_Od"] < age <= 6)] if hit]
            return 26, subs + [30 if female else 31], "X", "X", "Cielęta , Wiek <= 6"
        if female and 6 < age <= 19: return 32, [], "X", "X", "Jałówki od 6 do 19, 6 > Wiek <= 19"
        if female and 19 < age <= 24: return 33, [], "X", "X", "Jałówki od 19 do 24, 19 > Wiek <= 24"
        if female and age > 24:
            if use_type not in ("KO", "MI", "ML") or direction not in ("OP", "MI", "MIOP", "ML", "MLOP"):
                return 34, [34], "MD", "MD", "Krowy, 24 > Wiek"
            return 34, [], "X", "X", "Krowy, 24 > Wiek"
        if 6 < age <= 24: return 35, [], "X", "X", "Byki, 6 > Wiek <= 24"
        if age > 24: return 36, [], "X", "X", "Buhaje, 24 > Wiek"
    return 40, [], None, None, None


def expected_state(herds, limits, kinds):
    rows = catalogue(limits, kinds)
    ids = {r[0] for r in rows}
    counts = {}  # (slot, id) -> [Ilosc, IloscPom]
    summary, per_herd = [], {}

    def count(slot, group, column):
        if group in ids:
            for s in (0, slot):
                counts.setdefault((s, group), [0, 0])[column] += 1

    for herd in herds:
        if herd["state"][0] != "SDZA" or not herd["animals"]:
            continue
        code = herd["holding"].split("-", 1)[1]
        slot = int(code)
        for animal in herd["animals"]:
            a = animal["list"]
            birth = dt.date.fromisoformat(a["dataUrodzenia"]) if "dataUrodzenia" in a else None
            age = age_in_months(birth)
            mother = animal["single"]["czyMatka"] if a["plec"]["kod"] == "XX" and age > 14 else a["czyMatka"]
            main, subs, summary_mark, herd_mark, where = classify(a["plec"]["kod"], a["typUzytkowy"]["kod"],
                                                                  a["kierunekUzytkownia"]["kod"], age, limits, kinds)
            count(slot, main, 0)
            for sub in subs:
                count(slot, sub, 1)
            base = {"NumerIdentyfikacyjny": a["numerIdentyfikacyjnyZwierzecia"], "Plec": a["plec"]["opis"][:10],
                    "DataUrodzenia": birth.isoformat() if birth else None, "Wiek": age,
                    "TypUzytkowy": a["typUzytkowy"]["opis"], "KierunekUzytkowania": a["kierunekUzytkownia"]["opis"],
                    "GdzieRozpatrzono": where, "Rozpatrzono": summary_mark, "CzyMatka": int(mother), "STADO": code}
            per_herd.setdefault(slot, []).append(dict(base, Rozpatrzono=herd_mark))
            summary.append(dict(base, ZAZNACZONE=False, DataPrzybycia=a["dataPrzybyciaDoDzialalnosci"],
                                DataWyrejestrowania=None, Rasa=a["kodRasy"]["kod"], RodzajDawczyni="", RodzajDawcy="",
                                NumerDzialalnosci=a["numerDzialalnosci"], NumerIdentyfikacyjnyMatki=a["numerIdentyfikacyjnyMatki"],
                                NumerIdentyfikacyjnyDawczyni="", NumerIdentyfikacyjnyDawcy="",
                                IloscOznakowan=str(len(a["srodkiIdentyfikacji"]))))

    def groups(slot):
        result = []
        for group, caption, age_range in rows:
            ilosc, pom = counts.get((slot, group), [0, 0])
            result.append({"ID": group, "GT": caption, "ZakresWieku": age_range, "Ilosc": ilosc or None,
                           "IloscPom": pom or None, "IndDod": None, "STADO": "001", "Limit": None})
        return result

    return summary, per_herd, groups


# ---------------------------------------------------------------- running and comparing
def run_cli(cli, base, data_dir, kinds):
    dump = os.path.join(data_dir, "dump.json")
    command = [cli, "download", "--login", LOGIN, "--password", PASSWORD, "--producer", PRODUCER,
               "--reference-date", REFERENCE.isoformat(), "--state-date", REFERENCE.isoformat(),
               "--kinds", ",".join(kinds), "--sso-base", base, "--api-base", base, "--data-dir", data_dir,
               "--dump-json", dump, "--parallel", "4"]
    result = subprocess.run(command, capture_output=True, text=True, timeout=300)
    if result.returncode != 0:
        raise AssertionError(f"halvarn-cli exited {result.returncode}: {result.stderr}")
    with open(dump, encoding="utf-8") as f:
        return json.load(f)


def compare(label, actual, expected):
    if actual != expected:
        for index, (a, e) in enumerate(itertools.zip_longest(actual, expected)):
            if a != e:
                raise AssertionError(f"{label}: first difference at row {index}:\n  got      {a}\n  expected {e}")
        raise AssertionError(f"{label}: differs")


def check(cli, base, herds, limits, kinds):
    with tempfile.TemporaryDirectory() as data_dir:
        if limits is not DEFAULT_LIMITS:
            with open(os.path.join(data_dir, "HALVARN.INI"), "wb") as f:
                f.write(("[WIEK]\r\n" + "".join(f"{k}={v}\r\n" for k, v in limits.items())).encode("cp1250"))
        dump = run_cli(cli, base, data_dir, kinds)
    summary, per_herd, groups = expected_state(herds, limits, kinds)
    strip = lambda rows, keys: [{k: r.get(k) for k in keys} for r in rows]
    tables = dump["tables"]
    compare("mdRZ00", strip(tables["mdRZ00"], summary[0].keys() if summary else []), summary)
    for slot in range(0, 21):
        compare(f"mdGT{slot:02d}", tables[f"mdGT{slot:02d}"], groups(slot))
        if slot:
            compare(f"mdRZ{slot:02d}", strip(tables[f"mdRZ{slot:02d}"], per_herd.get(slot, [{}])[0].keys()), per_herd.get(slot, []))
    assert dump["herdCount"] == 2, dump["herdCount"]
    assert dump["errors"] == [f"Nie aktywne stado: {PRODUCER}-003", f"Brak zwierząt w stadzie: {PRODUCER}-004"], dump["errors"]
    visible = [s["code"] for s in dump["slots"] if s["visible"]]
    assert visible == ["000", "001", "002"], visible


def main():
    cli = sys.argv[1]
    Registry.herds = make_herds(random.Random(20261123))
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Registry)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    base = f"http://127.0.0.1:{server.server_address[1]}"
    runs = 0
    try:
        for size in range(0, 4):
            for kinds in itertools.combinations(["mamki", "opasy", "mleczne"], size):
                for limits in (DEFAULT_LIMITS, CHANGED_LIMITS, SHUFFLED_LIMITS):
                    check(cli, base, Registry.herds, limits, kinds)
                    runs += 1
    finally:
        server.shutdown()
    print(f"{runs} passed, 0 failed")


if __name__ == "__main__":
    main()
