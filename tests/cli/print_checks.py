#!/usr/bin/env python3
"""The prints as PDFs, read back with poppler's pdftotext: the two ribbon prints of
a demo download through the shipped templates, a hand-written template with every
band kind through "render", and what a damaged template or bad arguments give.

usage: print_checks.py HALVARN_CLI TEMPLATE_WITH_EVERY_BAND
"""
import datetime as dt
import json
import os
import re
import subprocess
import sys
import tempfile


def run(*command):
    return subprocess.run(command, capture_output=True, text=True, timeout=300)


def expect(condition, what):
    if not condition:
        raise AssertionError(what)


def pdf_pages(path):
    result = run("pdftotext", "-layout", path, "-")
    expect(result.returncode == 0, f"pdftotext {path}: {result.stderr}")
    pages = result.stdout.split("\f")
    return pages[:-1] if pages and not pages[-1].strip() else pages


def page_size(path):
    info = run("pdfinfo", path).stdout
    return re.search(r"Page size:\s+(.*)", info).group(1)


def sections(pages):
    """The text of each section by its caption: "Ogółem" or "Stado: 001"."""
    found, caption = {}, None
    for page in pages:
        for line in page.splitlines():
            heading = re.match(r"^\s*(Ogółem|Stado: \d{3})\s*$", line)
            if heading:
                caption = heading.group(1)
            elif caption:
                found.setdefault(caption, []).append(line)
    return {caption: "\n".join(lines) for caption, lines in found.items()}


def check_page_footers(pages, what):
    total = len(pages)
    for number, page in enumerate(pages, 1):
        expect(f"Strona {number} z {total}" in page, f"{what}: footer of page {number}")
        expect("Wydrukowano: " in page, f"{what}: print date on page {number}")


def check_animals_print(path, dump):
    pages = pdf_pages(path)
    check_page_footers(pages, "animals")
    found = sections(pages)
    tables = dump["tables"]
    shown = [slot for slot in dump["slots"][1:] if slot["visible"] and tables[f"mdRZ{slot['slot']:02d}"]]
    expect(sorted(found) == sorted(["Ogółem"] + [f"Stado: {slot['code']}" for slot in shown]),
           f"animals: sections {sorted(found)}")
    for caption, table in [("Ogółem", "mdRZ00")] + [(f"Stado: {s['code']}", f"mdRZ{s['slot']:02d}") for s in shown]:
        text = found[caption]
        for row in tables[table]:
            expect(text.count(row["NumerIdentyfikacyjny"]) == 1, f"{caption}: {row['NumerIdentyfikacyjny']} once")
        mothers = sum(row["CzyMatka"] for row in tables[table])
        expect(f"Razem zwierząt: {len(tables[table])}" in text, f"{caption}: animal count")
        expect(f"w tym matek: {mothers}" in text, f"{caption}: mother count")


def check_groups_print(path, dump):
    pages = pdf_pages(path)
    check_page_footers(pages, "groups")
    found = sections(pages)
    for slot in dump["slots"]:
        caption = "Ogółem" if slot["slot"] == 0 else f"Stado: {slot['code']}"
        if slot["slot"] and not slot["visible"]:
            continue
        rows = dump["tables"][f"mdGT{slot['slot']:02d}"]
        for row in rows:
            if row["Ilosc"]:
                line = rf"^\s*{row['ID']}\s+{re.escape(row['GT'].strip())}\s.*\s{row['Ilosc']}(\s|$)"
                expect(re.search(line, found[caption], re.M), f"{caption}: group {row['ID']} counts {row['Ilosc']}")
        total = sum(row["Ilosc"] or 0 for row in rows)
        expect(f"Razem: {total}" in found[caption], f"{caption}: total {total}")


def check_demo_prints(cli, work):
    data, pdfs, dump_path = (os.path.join(work, n) for n in ("data", "pdf", "dump.json"))
    result = run(cli, "download", "--demo", "--data-dir", data, "--pdf-dir", pdfs, "--dump-json", dump_path)
    expect(result.returncode == 0, f"demo: exit {result.returncode}: {result.stderr}")
    with open(dump_path, encoding="utf-8") as f:
        dump = json.load(f)
    producer = dump["tables"]["mdProducent"][0]["PRODUCENT"]
    day = dt.date.today().strftime("%d.%m.%Y")
    names = [f"Rozczytane zwierzęta {producer} {day}.PDF", f"Grupy technologiczne {producer} {day}.PDF"]
    expect(sorted(os.listdir(pdfs)) == sorted(names), f"PDF names {os.listdir(pdfs)}")
    expect(sorted(os.listdir(os.path.join(data, "SZABLONY"))) == sorted([
        "Grupy technologiczne.fr3", "Rozczytane zwierzęta z filtrem.fr3", "Rozczytane zwierzęta.fr3",
        "Zgłoszenie zmieny TUKU.fr3", "Lista kontrolna.fr3", "Porównanie pobrań.fr3"]), "templates installed")
    expect(page_size(os.path.join(pdfs, names[1])).endswith("(A4)"), "A4")
    check_animals_print(os.path.join(pdfs, names[0]), dump)
    check_groups_print(os.path.join(pdfs, names[1]), dump)
    return dump, dump_path


def check_every_band(cli, template, dump, dump_path, work):
    pdf = os.path.join(work, "pasma.pdf")
    result = run(cli, "render", "--template", template, "--pdf", pdf, "--state", dump_path, "--herd", "000")
    expect(result.returncode == 0, f"render: exit {result.returncode}: {result.stderr}")
    expect("TfrxBarCodeView BarCode1" in result.stdout, f"unsupported objects listed: {result.stdout}")
    pages = pdf_pages(pdf)
    text = "\n".join(pages)
    for number, page in enumerate(pages, 1):
        for fixed in ("NAGŁÓWEK STRONY", "NAGŁÓWEK KOLUMN", "STOPKA KOLUMN", "NAKŁADKA", "ZNAK STRONY",
                      "NAGŁÓWEK ZWIERZĄT", f"Strona {number} z {len(pages)}"):
            expect(fixed in page, f"every band: {fixed!r} on page {number}")
    producer = dump["tables"]["mdProducent"][0]["PRODUCENT"]
    expect(f"TYTUŁ RAPORTU {producer}" in pages[0] and text.count("TYTUŁ RAPORTU") == 1, "title on page 1 only")
    animals = dump["tables"]["mdRZ00"]
    for line, row in enumerate(animals, 1):
        expect(re.search(rf"^\s*{line}\.\s+{row['NumerIdentyfikacyjny']}\b", text, re.M), f"row {line} numbered")
    herds = list(dict.fromkeys(row["STADO"] for row in animals))
    for herd in herds:
        count = sum(row["STADO"] == herd for row in animals)
        expect(text.count(f"GRUPA {herd}") == 1 and f"KONIEC GRUPY {herd}: {count}" in text, f"group {herd}")
    mothers = sum(row["CzyMatka"] for row in animals)
    ending = pages[-1]
    order = ["RAZEM ZWIERZĄT: %d" % len(animals), "DZIECKO STOPKI", "KONIEC PRODUCENTA", f"PODSUMOWANIE: {mothers}"]
    positions = [ending.find(part) for part in order]
    expect(all(p >= 0 for p in positions) and positions == sorted(positions), f"the end in order: {positions}")

    # Without a state every link is bound to nothing: the fixed bands still print.
    result = run(cli, "render", "--template", template, "--pdf", pdf)
    expect(result.returncode == 0, f"render without state: {result.stderr}")
    pages = pdf_pages(pdf)
    expect(len(pages) == 1 and "TYTUŁ RAPORTU" in pages[0] and "GRUPA" not in pages[0], "nothing bound")


def check_refusals(cli, template, work):
    with open(template, encoding="utf-8") as f:
        xml = f.read()
    broken = os.path.join(work, "ucięty.fr3")
    with open(broken, "w", encoding="utf-8") as f:
        f.write(xml[: len(xml) // 2])
    pdf = os.path.join(work, "nie.pdf")
    result = run(cli, "render", "--template", broken, "--pdf", pdf)
    expect(result.returncode == 1, f"truncated template: exit {result.returncode}")
    expect(broken in result.stderr and re.search(r"wiersz \d+, kolumna \d+", result.stderr),
           f"truncated template message: {result.stderr}")
    expect(not os.path.exists(pdf), "no PDF for a damaged template")
    for arguments in (["--pdf", pdf], ["--template", template], ["--template", template, "--pdf", pdf, "--print", "x"],
                      ["--template", template, "--pdf", pdf, "--state", os.path.join(work, "brak.json")]):
        result = run(cli, "render", *arguments)
        expect(result.returncode == 2, f"render {arguments}: exit {result.returncode}")


def main():
    cli, template = sys.argv[1], sys.argv[2]
    with tempfile.TemporaryDirectory() as work:
        dump, dump_path = check_demo_prints(cli, work)
        check_every_band(cli, template, dump, dump_path, work)
        check_refusals(cli, template, work)
    print("print checks passed")


if __name__ == "__main__":
    main()
