#pragma once

#include <QByteArray>

// A compound file (version 3, 512-byte sectors) whose root holds one stream
// named "Workbook" with the given contents.
QByteArray CompoundFileWithWorkbook(QByteArray workbook);
