#pragma once

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QString>

using namespace Qt::StringLiterals;

// Reads a workbook back through xlrd; an empty object when it cannot be read.
inline QJsonObject ReadWorkbook(const QString& path)
{
    QProcess python;
    python.start(u"/usr/bin/python3"_s, {QStringLiteral(HALVARN_TEST_DATA "/../export/dump_xls.py"), path});
    python.waitForFinished(120000);
    return QJsonDocument::fromJson(python.readAllStandardOutput()).object();
}

// "row,col:type:value" for every cell of one sheet, in reading order.
inline QStringList SheetCells(const QJsonObject& workbook, int sheet)
{
    QStringList cells;
    for (const QJsonValue cell : workbook.value(u"sheets").toArray().at(sheet).toObject().value(u"cells").toArray()) {
        const QJsonArray c = cell.toArray();
        const QJsonValue value = c.at(3);
        const QString text = value.isDouble() ? QString::number(value.toDouble())
                             : value.isBool() ? (value.toBool() ? u"true"_s : u"false"_s)
                                              : value.toString();
        cells.append(u"%1,%2:%3:%4"_s.arg(c.at(0).toInt()).arg(c.at(1).toInt()).arg(c.at(2).toString(), text));
    }
    return cells;
}

inline QStringList SheetNames(const QJsonObject& workbook)
{
    QStringList names;
    for (const QJsonValue sheet : workbook.value(u"sheets").toArray())
        names.append(sheet.toObject().value(u"name").toString());
    return names;
}
