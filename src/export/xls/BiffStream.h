#pragma once

#include <QByteArray>

#include <vector>

class XlsWorksheet;

// The BIFF8 "Workbook" stream: the globals (fonts, formats, cell styles, sheet
// directory, shared strings) followed by one substream per sheet.
QByteArray WorkbookStream(const std::vector<const XlsWorksheet*>& sheets);
