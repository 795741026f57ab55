#!/usr/bin/env python3
"""Writes the band templates (.fr3) the program ships, next to this script.

Edit the layout here and run the script again; the .fr3 files are its output.
Geometry is in pixels at 96 per inch, paper and margins in millimetres.
"""
from pathlib import Path

HERE = Path(__file__).resolve().parent

PORTRAIT_WIDTH = 718  # A4, 190 mm between the margins
LANDSCAPE_WIDTH = 1047  # A4, 277 mm between the margins
ROW = 16
HEADINGS = 30  # room for headings of two lines
BAND_GAP = 20  # the designer's space between bands; only their order counts

PRODUCER = "frxDBDataset30"
SUMMARY = "frxDBDataset29"
HERDS = range(1, 21)

BODY = {"Font.Name": "Arial", "Font.Height": "-11"}
BOLD = {"Font.Style": "1"}
CENTRED = {"VAlign": "vaCenter"}
FRAMED = {**BODY, "Frame.Typ": "15", **CENTRED}
HEADING = {**FRAMED, **BOLD, "HAlign": "haCenter", "Fill.BackColor": "15790320"}
CELL = {**FRAMED, "WordWrap": "False"}  # one line per row: a long value is clipped at its box
TOTAL = {**BODY, **BOLD, **CENTRED}
DATE = {"DisplayFormat.Kind": "fkDateTime", "DisplayFormat.FormatStr": "dd.mm.yyyy"}
KINDS = {
    "text": {},
    "number": {"HAlign": "haRight"},
    "code": {"HAlign": "haCenter"},
    "date": {"HAlign": "haCenter", **DATE},
    "flag": {"HAlign": "haCenter", "DisplayFormat.Kind": "fkBoolean", "DisplayFormat.FormatStr": "Z,"},
}


class Element:
    def __init__(self, tag, attributes, children=()):
        self.tag = tag
        self.attributes = attributes
        self.children = list(children)

    def render(self, indent=0):
        pad = "  " * indent
        attributes = "".join(f' {key}="{escaped(value)}"' for key, value in self.attributes.items())
        if not self.children:
            return f"{pad}<{self.tag}{attributes}/>\n"
        inner = "".join(child.render(indent + 1) for child in self.children)
        return f"{pad}<{self.tag}{attributes}>\n{inner}{pad}</{self.tag}>\n"


def escaped(value):
    references = {"&": "&#38;", '"': "&#34;", "<": "&#60;", ">": "&#62;", "\r": "&#13;", "\n": "&#10;"}
    return "".join(references.get(character, character) for character in str(value))


def decimal(value):
    return f"{value:.2f}".rstrip("0").rstrip(".")


STYLE_ORDER = ["Font.Name", "Font.Height", "Font.Style", "Frame.Typ", "Fill.BackColor", "HAlign", "VAlign", "WordWrap",
               "DisplayFormat.Kind", "DisplayFormat.FormatStr", "StretchMode"]


def memo(name, x, y, width, height, text, style=BODY):
    geometry = {"Name": name, "Left": decimal(x), "Top": decimal(y), "Width": decimal(width), "Height": decimal(height)}
    ordered = {key: style[key] for key in sorted(style, key=STYLE_ORDER.index)}
    return Element("TfrxMemoView", {**geometry, **ordered, "Text": text})


def line(name, y, width):
    geometry = {"Name": name, "Left": "0", "Top": decimal(y), "Width": decimal(width), "Height": "0"}
    return Element("TfrxLineView", {**geometry, "Frame.Width": "0.5"})


def field(link, name):
    return f'[{link}."{name}"]'


class Column:
    """A column: its heading, width, kind of value and its cell's text for a data link."""

    def __init__(self, key, heading, width, kind, cell):
        self.key, self.heading, self.width, self.kind, self.cell = key, heading, width, kind, cell


def field_column(key, heading, width, kind, name):
    return Column(key, heading, width, kind, lambda link: field(link, name))


class Columns:
    """Columns side by side; the last one takes the width the others leave."""

    def __init__(self, width, columns):
        columns[-1].width = width - sum(column.width for column in columns[:-1])
        self.all = columns
        self.lefts = {}
        x = 0
        for column in columns:
            self.lefts[column.key] = x
            x += column.width

    def left(self, key):
        return self.lefts[key]

    def right(self, key):
        return self.lefts[key] + next(column.width for column in self.all if column.key == key)

    def headings(self, suffix, y):
        return [memo(f"Naglowek{c.key}{suffix}", self.left(c.key), y, c.width, HEADINGS, c.heading, HEADING)
                for c in self.all]

    def cells(self, suffix, link, height=ROW, extra=None, only=None):
        return [memo(f"Pole{c.key}{suffix}", self.left(c.key), 0, c.width, height, c.cell(link),
                     {**CELL, **KINDS[c.kind], **(extra or {})}) for c in (only or self.all)]


class Bands:
    """A page's bands, each given a Top below the previous one."""

    def __init__(self, width):
        self.width = width
        self.bands = []
        self.top = BAND_GAP

    def add(self, tag, name, height, objects, **attributes):
        geometry = {"Name": name, "Top": decimal(self.top), "Width": decimal(self.width), "Height": decimal(height)}
        self.bands.append(Element(tag, {**geometry, **attributes}, objects))
        self.top += height + BAND_GAP


TITLE_LABEL = {**BODY, **CENTRED}
TITLE_VALUE = {**TITLE_LABEL, **BOLD}


def title_and_producer(width, title, link=PRODUCER):
    """The title over the whole width, the producer's number and name below it on the left."""
    return [
        memo("Tytul", 0, 0, width, 26, title,
             {"Font.Name": "Arial", "Font.Height": "-19", **BOLD, "HAlign": "haCenter", **CENTRED}),
        memo("EtykietaProducent", 0, 34, 110, ROW, "Numer producenta:", TITLE_LABEL),
        memo("Producent", 110, 34, 300, ROW, field(link, "PRODUCENT"), TITLE_VALUE),
        memo("EtykietaNazwa", 0, 52, 110, ROW, "Nazwa:", TITLE_LABEL),
        memo("Nazwa", 110, 52, 300, ROW, field(link, "NAZWA"), TITLE_VALUE),
    ]


def add_page_header(bands, title, owner):
    """From the second page on, one short line says whose printout it is."""
    half = bands.width / 2
    header = [
        memo("TytulStrony", 0, 0, half, ROW, title, {**TITLE_LABEL, **BOLD}),
        memo("ProducentStrony", half, 0, half, ROW, owner, {**TITLE_LABEL, "HAlign": "haRight"}),
        line("LiniaNaglowkaStrony", 18, bands.width),
    ]
    bands.add("TfrxPageHeader", "PageHeader1", 24, header, PrintOnFirstPage="False")


PRODUCER_OWNER = f"Producent: {field(PRODUCER, 'PRODUCENT')} {field(PRODUCER, 'NAZWA')}"


def add_title(bands, title):
    width = bands.width
    label, value = TITLE_LABEL, TITLE_VALUE
    x = width - 250
    objects = title_and_producer(width, title) + [
        memo("EtykietaStanu", x, 34, 160, ROW, "Stan zwierząt na dzień:", label),
        memo("DataStanu", x + 160, 34, 90, ROW, field(PRODUCER, "DATA1"), {**value, **DATE}),
        memo("EtykietaHalvarn", x, 52, 160, ROW, "Halvarn na dzień:", label),
        memo("DataHalvarn", x + 160, 52, 90, ROW, field(PRODUCER, "DATA3"), {**value, **DATE}),
        memo("EtykietaPobrania", x, 70, 160, ROW, "Data pobrania:", label),
        memo("DataPobrania", x + 160, 70, 90, ROW, field(PRODUCER, "DATA2"), {**value, **DATE}),
        line("LiniaTytulu", 94, width),
    ]
    bands.add("TfrxReportTitle", "ReportTitle1", 100, objects)
    add_page_header(bands, title, PRODUCER_OWNER)


def add_page_footer(bands):
    width = bands.width
    style = {**BODY, **CENTRED}
    objects = [
        line("LiniaStopki", 2, width),
        memo("Wydrukowano", 0, 5, 300, ROW, "Wydrukowano: [Date] [Time]", style),
        memo("NumerStrony", width - 200, 5, 200, ROW, "Strona [Page#] z [TotalPages#]", {**style, "HAlign": "haRight"}),
    ]
    bands.add("TfrxPageFooter", "PageFooter1", 24, objects)


def add_section(bands, suffix, link, columns, totals, caption=None, new_page=False, row=None):
    """The header (an optional caption above the column headings), data band and footer of one data link."""
    header = []
    headings_y = 0
    if caption:
        name, text = caption
        header.append(memo(name, 0, 0, bands.width, 22, text, {"Font.Name": "Arial", "Font.Height": "-15", **BOLD,
                                                                **CENTRED}))
        headings_y = 26
    header += columns.headings(suffix, headings_y)
    reprint = {"StartNewPage": "True"} if new_page else {}
    bands.add("TfrxHeader", f"Header{suffix}", headings_y + HEADINGS, header, **reprint, ReprintOnNewPage="True")
    height, cells, stretched = row(columns, suffix, link) if row else (ROW, columns.cells(suffix, link), {})
    bands.add("TfrxMasterData", f"MasterData{suffix}", height, cells, DataSet=link, DataSetName=link, **stretched)
    bands.add("TfrxFooter", f"Footer{suffix}", 24, totals(columns, suffix, link))


def report(title, landscape, fill_page, heading=None):
    width = LANDSCAPE_WIDTH if landscape else PORTRAIT_WIDTH
    bands = Bands(width)
    if heading:
        heading(bands)
    else:
        add_title(bands, title)
    fill_page(bands)
    add_page_footer(bands)
    if landscape:
        paper = {"Orientation": "poLandscape", "PaperWidth": "297", "PaperHeight": "210"}
    else:
        paper = {"PaperWidth": "210", "PaperHeight": "297"}
    page = {"Name": "Page1", **paper, "PaperSize": "9",
            "LeftMargin": "10", "RightMargin": "10", "TopMargin": "10", "BottomMargin": "10"}
    root = Element("TfrxReport", {"Version": "6.0", "ReportOptions.Name": title},
                   [Element("TfrxReportPage", page, bands.bands)])
    return '<?xml version="1.0" encoding="utf-8" standalone="no"?>\n' + root.render()


def all_sections(columns, totals):
    """"Ogółem" on the summary link, then one section per herd, each on a page of its own."""
    def fill_page(bands):
        add_section(bands, "Ogolem", SUMMARY, columns, totals, caption=("MVOgolem", "Ogółem"))
        for herd in HERDS:
            add_section(bands, herd, f"frxDBDataset{herd}", columns, totals, caption=(f"MV{herd}", "Stado"),
                        new_page=True)
    return fill_page


# Animals

def animal_columns(width, marked=False):
    columns = [
        Column("Lp", "Lp.", 32, "number", lambda link: "[Line#]"),
        field_column("Stado", "Stado", 42, "code", "STADO"),
        field_column("Numer", "Numer identyfikacyjny", 118, "text", "NumerIdentyfikacyjny"),
        field_column("Plec", "Płeć", 50, "text", "Plec"),
        field_column("DataUrodzenia", "Data urodzenia", 68, "date", "DataUrodzenia"),
        field_column("Wiek", "Wiek (m-ce)", 46, "number", "Wiek"),
        field_column("Typ", "Typ użytkowy", 100, "text", "TypUzytkowy"),
        field_column("Kierunek", "Kierunek użytkowania", 110, "text", "KierunekUzytkowania"),
        field_column("Matka", "Matka", 40, "number", "CzyMatka"),
        field_column("Rozp", "Rozp.", 38, "code", "Rozpatrzono"),
    ]
    if marked:
        columns.append(field_column("Zaznaczone", "Zazn.", 36, "flag", "ZAZNACZONE"))
    columns.append(field_column("Grupa", "Grupa technologiczna", 0, "text", "GdzieRozpatrzono"))
    return Columns(width, columns)


def animal_totals(columns, suffix, link):
    band = f"MasterData{suffix}"
    mothers_end = columns.right("Matka")
    return [
        memo(f"RazemZwierzat{suffix}", 0, 4, 300, ROW, f"Razem zwierząt: [COUNT({band})]", TOTAL),
        memo(f"RazemMatek{suffix}", mothers_end - 200, 4, 200, ROW, f'w tym matek: [SUM(<{link}."CzyMatka">,{band})]',
             {**TOTAL, "HAlign": "haRight"}),
    ]


def filtered_animals(bands):
    add_section(bands, 1, "frxDBDataset1", animal_columns(bands.width, marked=True), animal_totals)


# Technological groups

def group_columns(width):
    return Columns(width, [
        field_column("Lp", "Lp.", 40, "number", "ID"),
        field_column("Grupa", "Grupa technologiczna", 280, "text", "GT"),
        field_column("Zakres", "Zakres wieku", 120, "text", "ZakresWieku"),
        field_column("Ilosc", "Ilość", 56, "number", "Ilosc"),
        field_column("IloscPom", "Inf. dod.", 56, "number", "IloscPom"),
        field_column("Limit", "Limit", 56, "number", "Limit"),
        field_column("Uwagi", "Uwagi", 0, "text", "IndDod"),
    ])


def group_totals(columns, suffix, link):
    # Right-aligned up to the end of "Ilość", so the sum stands under the counts.
    text = f'Razem: [SUM(<{link}."Ilosc">,MasterData{suffix})]'
    return [memo(f"Razem{suffix}", 0, 4, columns.right("Ilosc"), ROW, text, {**TOTAL, "HAlign": "haRight"})]


# Changes of the use direction

def use_change_columns(width):
    def old_to_new(old, new):
        return lambda link: f"{field(link, old)} → {field(link, new)}"

    return Columns(width, [
        Column("Lp", "Lp.", 30, "number", lambda link: "[Line#]"),
        field_column("Stado", "Stado", 42, "code", "STADO"),
        field_column("Numer", "Numer identyfikacyjny", 110, "text", "NumerIdentyfikacyjny"),
        Column("Typ", "Typ użytk. (stary → nowy)", 120, "text", old_to_new("TU_OLD", "TU_NEW")),
        Column("Kierunek", "Kierunek (stary → nowy)", 120, "text", old_to_new("KU_OLD", "KU_NEW")),
        field_column("Dokument", "Numer dokumentu", 120, "text", "NumerDokumentu"),
        Column("Status", "Status", 200, "text", lambda link: f'{field(link, "ST_KOD")} {field(link, "ST_OPIS")}'),
        Column("Komunikat", "Komunikat / błędy", 0, "text", None),
    ])


def use_change_row(columns, suffix, link):
    """The message and the list of errors below it grow the row; the other cells follow its height."""
    others = columns.cells(suffix, link, ROW, {"VAlign": "vaTop", "StretchMode": "smMaxHeight"}, only=columns.all[:-1])
    text = f'{field(link, "Komunikat")}\r\n{field(link, "BLEDY")}'
    errors = memo(f"PoleKomunikat{suffix}", columns.left("Komunikat"), 0, columns.all[-1].width, ROW, text,
                  {**FRAMED, "VAlign": "vaTop", "StretchMode": "smActualHeight"})
    return ROW, others + [errors], {"Stretched": "True"}


def use_change_totals(columns, suffix, link):
    return [memo(f"RazemZgloszen{suffix}", 0, 4, 300, ROW, f"Razem zgłoszeń: [COUNT(MasterData{suffix})]", TOTAL)]


def use_changes(bands):
    add_section(bands, 1, "frxDBDataset1", use_change_columns(bands.width), use_change_totals, row=use_change_row)


# The control list: one herd choice, every animal on the control date, then the totals

CONTROL_TOTALS = "frxDBDataset2"


def add_control_title(bands):
    """The producer, the control date and the herds; the date and herds are fields of the totals link."""
    width = bands.width
    label, value = TITLE_LABEL, TITLE_VALUE
    x = width - 250
    objects = title_and_producer(width, "Lista kontrolna") + [
        memo("EtykietaKontroli", x, 34, 120, ROW, "Dzień kontroli:", label),
        memo("DataKontroli", x + 120, 34, 130, ROW, field(CONTROL_TOTALS, "DataKontroli"), {**value, **DATE}),
        memo("EtykietaStad", x, 52, 120, ROW, "Stada:", label),
        memo("Stada", x + 120, 52, 130, ROW, field(CONTROL_TOTALS, "Stada"), value),
        line("LiniaTytulu", 76, width),
    ]
    bands.add("TfrxReportTitle", "ReportTitle1", 82, objects)
    add_page_header(bands, "Lista kontrolna", PRODUCER_OWNER)


def control_columns(width):
    return Columns(width, [
        Column("Lp", "Lp.", 32, "number", lambda link: "[Line#]"),
        field_column("Stado", "Stado", 42, "code", "STADO"),
        field_column("Numer", "Numer identyfikacyjny", 118, "text", "NumerIdentyfikacyjny"),
        field_column("Plec", "Płeć", 52, "text", "Plec"),
        field_column("DataUrodzenia", "Data urodzenia", 70, "date", "DataUrodzenia"),
        field_column("Wiek", "Wiek (m-ce)", 48, "number", "Wiek"),
        field_column("Pochodzenie", "Pochodzenie", 150, "text", "Pochodzenie"),
        field_column("Grupa", "Grupa technologiczna", 0, "text", "Grupa"),
    ])


def control_totals_columns(width):
    return Columns(width, [
        field_column("Opis", "Grupa technologiczna / pochodzenie", width - 100, "text", "Opis"),
        field_column("Liczba", "Liczba zwierząt", 0, "number", "Ilosc"),
    ])


def control_list(bands):
    def count(columns, suffix, link):
        return [memo(f"RazemZwierzat{suffix}", 0, 4, 300, ROW, f"Razem zwierząt: [COUNT(MasterData{suffix})]", TOTAL)]

    add_section(bands, 1, "frxDBDataset1", control_columns(bands.width), count)
    add_section(bands, 2, CONTROL_TOTALS, control_totals_columns(bands.width), lambda columns, suffix, link: [],
                caption=("MVPodsumowanie", "Podsumowanie"))


# The comparison of two downloads of one producer: the animals that arrived,
# left or changed their group, then the group counts of both downloads

COMPARISON = "frxDBDataset30"  # the comparison's one-row header, bound in place of the producer
COMPARED_ANIMALS = "frxDBDataset1"
COMPARED_GROUPS = "frxDBDataset2"


def add_comparison_title(bands):
    """The producer and, for downloads A and B, the number, "Halvarn na dzień" and the time of download."""
    width = bands.width
    label, value = TITLE_LABEL, TITLE_VALUE
    x = width - 520
    objects = title_and_producer(width, "Porównanie pobrań", COMPARISON) + [
        memo("Zmiany", 0, 70, 500, ROW, f"Przybyło: {field(COMPARISON, 'PRZYBYLO')}, ubyło: "
             f"{field(COMPARISON, 'UBYLO')}, zmiana grupy: {field(COMPARISON, 'ZMIANA_GRUPY')}", label),
    ]
    for row, (kind, when) in enumerate([("A", "starsze"), ("B", "nowsze")]):
        y = 34 + row * 18
        objects += [
            memo(f"Pobranie{kind}", x, y, 170, ROW, f"Pobranie {kind} ({when}): nr {field(COMPARISON, 'NR_' + kind)}",
                 value),
            memo(f"EtykietaHalvarn{kind}", x + 170, y, 110, ROW, "Halvarn na dzień:", label),
            memo(f"DataHalvarn{kind}", x + 280, y, 80, ROW, field(COMPARISON, "DATA_" + kind), {**value, **DATE}),
            memo(f"EtykietaPobrano{kind}", x + 360, y, 50, ROW, "pobrano:", label),
            memo(f"Pobrano{kind}", x + 410, y, 110, ROW, field(COMPARISON, "POBRANO_" + kind), value),
        ]
    objects.append(line("LiniaTytulu", 94, width))
    bands.add("TfrxReportTitle", "ReportTitle1", 100, objects)
    owner = (f"Producent: {field(COMPARISON, 'PRODUCENT')} {field(COMPARISON, 'NAZWA')} – "
             f"A: {field(COMPARISON, 'DATA_A')}, B: {field(COMPARISON, 'DATA_B')}")
    add_page_header(bands, "Porównanie pobrań", owner)


def compared_animal_columns(width):
    fixed = [
        Column("Lp", "Lp.", 32, "number", lambda link: "[Line#]"),
        field_column("Zmiana", "Zmiana", 78, "text", "Zmiana"),
        field_column("Stado", "Stado", 42, "code", "STADO"),
        field_column("Numer", "Numer identyfikacyjny", 118, "text", "NumerIdentyfikacyjny"),
        field_column("Plec", "Płeć", 50, "text", "Plec"),
        field_column("DataUrodzenia", "Data urodzenia", 68, "date", "DataUrodzenia"),
        field_column("WiekA", "Wiek A (m-ce)", 46, "number", "WiekA"),
        field_column("WiekB", "Wiek B (m-ce)", 46, "number", "WiekB"),
    ]
    group_width = (width - sum(column.width for column in fixed)) // 2
    return Columns(width, fixed + [
        field_column("GrupaA", "Grupa technologiczna A", group_width, "text", "GrupaA"),
        field_column("GrupaB", "Grupa technologiczna B", 0, "text", "GrupaB"),
    ])


def compared_group_columns(width):
    return Columns(width, [
        field_column("Lp", "Lp.", 40, "number", "ID"),
        field_column("Grupa", "Grupa technologiczna", width - 40 - 3 * 100, "text", "GT"),
        field_column("IloscA", "Ilość A", 100, "number", "IloscA"),
        field_column("IloscB", "Ilość B", 100, "number", "IloscB"),
        field_column("Roznica", "Różnica (B − A)", 0, "number", "Roznica"),
    ])


def compared_animal_totals(columns, suffix, link):
    return [memo(f"RazemZwierzat{suffix}", 0, 4, 300, ROW, f"Razem zmian: [COUNT(MasterData{suffix})]", TOTAL)]


def compared_group_totals(columns, suffix, link):
    """The sums stand under their columns."""
    total = {**TOTAL, "HAlign": "haRight"}
    objects = [memo(f"Razem{suffix}", 0, 4, columns.left("IloscA"), ROW, "Razem:", total)]
    for key in ["IloscA", "IloscB", "Roznica"]:
        left = columns.left(key)
        objects.append(memo(f"Razem{key}{suffix}", left, 4, columns.right(key) - left, ROW,
                            f'[SUM(<{link}."{key}">,MasterData{suffix})]', total))
    return objects


def comparison_section(bands, suffix, link, columns, totals, caption):
    """A caption and the column headings, printed even when the link has no rows, then the rows and the totals."""
    name, text = caption
    header = [memo(name, 0, 0, bands.width, 22, text, {"Font.Name": "Arial", "Font.Height": "-15", **BOLD,
                                                        **CENTRED})]
    header += columns.headings(suffix, 26)
    bands.add("TfrxHeader", f"Header{suffix}", 26 + HEADINGS, header, ReprintOnNewPage="True", PrintIfEmpty="True")
    bands.add("TfrxMasterData", f"MasterData{suffix}", ROW, columns.cells(suffix, link), DataSet=link,
              DataSetName=link)
    bands.add("TfrxFooter", f"Footer{suffix}", 24, totals(columns, suffix, link))


def download_comparison(bands):
    comparison_section(bands, "Zwierzeta", COMPARED_ANIMALS, compared_animal_columns(bands.width),
                       compared_animal_totals, ("TytulZwierzat", "Zwierzęta: przybyło, ubyło, zmiana grupy"))
    comparison_section(bands, "Grupy", COMPARED_GROUPS, compared_group_columns(bands.width), compared_group_totals,
                       ("TytulGrup", "Liczebność grup technologicznych"))


TEMPLATES = {
    "Rozczytane zwierzęta.fr3":
        report("Rozczytane zwierzęta", True, all_sections(animal_columns(LANDSCAPE_WIDTH), animal_totals)),
    "Grupy technologiczne.fr3":
        report("Grupy technologiczne", False, all_sections(group_columns(PORTRAIT_WIDTH), group_totals)),
    "Rozczytane zwierzęta z filtrem.fr3": report("Rozczytane zwierzęta (wg filtra)", True, filtered_animals),
    # "zmieny" is how the program has always spelled this file's name.
    "Zgłoszenie zmieny TUKU.fr3": report("Zgłoszenie zmiany kierunku użytkowania", True, use_changes),
    "Lista kontrolna.fr3": report("Lista kontrolna", False, control_list, heading=add_control_title),
    "Porównanie pobrań.fr3": report("Porównanie pobrań", True, download_comparison, heading=add_comparison_title),
}

if __name__ == "__main__":
    for file_name, xml in TEMPLATES.items():
        (HERE / file_name).write_bytes(xml.encode("utf-8"))
