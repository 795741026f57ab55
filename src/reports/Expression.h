#pragma once

#include "reports/ReportValue.h"

#include <QString>

#include <memory>

class Table;

// What an expression reads besides fields: the page being laid out, the total
// page count (unknown until the second pass), the print's date and time and
// the row number of the band being printed.
struct SystemValues {
    int page = 1;
    int totalPages = 0;
    QDate date;
    QTime time;
    int line = 0;
};

// A data link as the layout walks it: the table it is bound to (none: every
// field is empty) and the row the data band is at.
struct LinkCursor {
    QString name;
    const Table* table = nullptr;
    int row = -1;
};

class ExpressionNode {
public:
    virtual ~ExpressionNode() = default;
    virtual ReportValue evaluate(const SystemValues& system) const = 0;
};

enum class AggregateKind { Sum, Min, Max, Avg, Count };

// An aggregate of a footer-type band: it takes a value from every row that the
// named data band prints, until the band that shows it has printed.
class Aggregate {
public:
    Aggregate(AggregateKind kind, std::unique_ptr<ExpressionNode> argument, QString dataBand);

    const QString& dataBand() const { return dataBand_; }
    void add(const SystemValues& system);
    void reset();
    ReportValue value() const;

private:
    AggregateKind kind_;
    std::unique_ptr<ExpressionNode> argument_;
    QString dataBand_;
    double sum_ = 0.0;
    double min_ = 0.0;
    double max_ = 0.0;
    qint64 count_ = 0;
};

// Resolves the names an expression uses; the layout answers with its cursors
// and keeps the aggregates. Whatever it cannot resolve is reported once and
// evaluates to an empty value.
class ExpressionScope {
public:
    virtual ~ExpressionScope() = default;
    virtual const LinkCursor* link(const QString& name) = 0;
    virtual Aggregate* aggregate(AggregateKind kind, std::unique_ptr<ExpressionNode> argument,
                                 const QString& dataBand) = 0;
    virtual void report(const QString& problem) = 0;
};

// The marker a [TotalPages#] leaves in a text until the page count is known.
inline constexpr QChar TotalPagesMarker{0xE000};

// Parses the text between a memo's square brackets (without an inline format).
std::unique_ptr<ExpressionNode> ParseExpression(const QString& source, ExpressionScope& scope);
