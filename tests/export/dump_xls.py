#!/usr/bin/env python3
"""Prints an .xls workbook as JSON, read by xlrd: an independent reader of our files.

{"sheets": [{"name": ..., "cells": [[row, col, type, value], ...]}]} with rows and columns
from 1, types text/number/date/bool, dates as YYYY-MM-DD.
"""
import datetime
import json
import sys

import xlrd

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
    sheets.append({"name": sheet.name, "cells": cells})
print(json.dumps({"sheets": sheets}, ensure_ascii=False))
