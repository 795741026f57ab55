#pragma once

#include <QByteArray>
#include <QString>

// The program keeps its text files (settings, CSV, producer list) in Windows-1250.
QByteArray ToCp1250(const QString& text);
QString FromCp1250(const QByteArray& bytes);
