#pragma once

#include "framework/HalvarnError.h"

#include <QDate>
#include <QString>

#include <deque>
#include <vector>

class XlsError : public HalvarnError {
public:
    using HalvarnError::HalvarnError;
};

// One worksheet of an Excel 97–2003 workbook. Rows run from 1 to 65536 and
// columns from 1 to 256, a text holds at most 32767 characters; anything
// beyond raises XlsError. A cell set twice keeps its last value.
class XlsWorksheet {
public:
    static constexpr int MaxRows = 65536;
    static constexpr int MaxColumns = 256;
    static constexpr int MaxCellText = 32767;

    explicit XlsWorksheet(QString name) : name_(std::move(name)) {}

    void setText(int row, int col, const QString& text);
    void setNumber(int row, int col, double value);
    void setDate(int row, int col, QDate date);
    void setBool(int row, int col, bool value);
    const QString& name() const { return name_; }

    enum class Kind : quint8 { Text, Number, Date, Bool };
    struct Cell {
        quint16 row; // from 0
        quint16 col; // from 0
        Kind kind;
        double number; // the value, or the text's index in texts()
    };
    // Cells sorted by row and column, the last setting of each kept.
    std::vector<Cell> sortedCells() const;
    const std::vector<QString>& texts() const { return texts_; }

private:
    void put(int row, int col, Kind kind, double value);

    QString name_;
    std::vector<Cell> cells_;
    std::vector<QString> texts_;
};

// An Excel 97–2003 (BIFF8) workbook built in memory and saved whole.
class XlsWorkbook {
public:
    XlsWorksheet& addSheet(const QString& name);
    // Writes under a temporary name and renames it over `path`; raises XlsError.
    void save(const QString& path) const;
    QByteArray toBytes() const;

private:
    std::deque<XlsWorksheet> sheets_; // a deque keeps references to sheets valid
};
