#!/usr/bin/env python3
"""Prints an .xls workbook as JSON, read by xlrd: an independent reader of our files.

{"sheets": [{"name": ..., "selected": ..., "cells": [[row, col, type, value], ...]}],
 "biff": {"longestRecord": ..., "uniqueStrings": ..., "stringsPerBucket": ..., "buckets": ...}}
with rows and columns from 1, types text/number/date/bool, dates as YYYY-MM-DD. "biff"
describes the raw Workbook stream, taken from the container by xlrd's own reader.
"""
import datetime
import json
import struct
import sys

import xlrd
from xlrd import compdoc

SST, EXTSST = 0x00FC, 0x00FF


def biff_facts(path):
    with open(path, "rb") as f:
        stream = compdoc.CompDoc(f.read(), logfile=sys.stderr).get_named_stream("Workbook")
    facts = {"longestRecord": 0, "uniqueStrings": None, "stringsPerBucket": None, "buckets": None}
    pos = 0
    while pos + 4 <= len(stream):
        kind, size = struct.unpack_from("<HH", stream, pos)
        data = stream[pos + 4:pos + 4 + size]
        facts["longestRecord"] = max(facts["longestRecord"], size)
        if kind == SST and facts["uniqueStrings"] is None:
            facts["uniqueStrings"] = struct.unpack_from("<I", data, 4)[0]
        elif kind == EXTSST:
            facts["stringsPerBucket"] = struct.unpack_from("<H", data, 0)[0]
            facts["buckets"] = (size - 2) // 8
        pos += 4 + size
    return facts


book = xlrd.open_workbook(sys.argv[1], formatting_info=True)
sheets = []
for sheet in book.sheets():
    cells = []
    for r in range(sheet.nrows):
        for c in range(sheet.ncols):
            cell = sheet.cell(r, c)
            if cell.ctype == xlrd.XL_CELL_TEXT:
                cells.append([r + 1, c + 1, "text", cell.value])
            elif cell.ctype == xlrd.XL_CELL_NUMBER:
                cells.append([r + 1, c + 1, "number", cell.value])
            elif cell.ctype == xlrd.XL_CELL_DATE:
                date = datetime.datetime(*xlrd.xldate_as_tuple(cell.value, book.datemode)).date()
                cells.append([r + 1, c + 1, "date", date.isoformat()])
            elif cell.ctype == xlrd.XL_CELL_BOOLEAN:
                cells.append([r + 1, c + 1, "bool", bool(cell.value)])
    sheets.append({"name": sheet.name, "selected": bool(sheet.sheet_selected), "cells": cells})
print(json.dumps({"sheets": sheets, "biff": biff_facts(sys.argv[1])}, ensure_ascii=False))
