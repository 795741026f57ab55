#include "core/tables/Field.h"

using namespace Qt::StringLiterals;

namespace {
template <class... F> struct Overloaded : F... {
    using F::operator()...;
};
template <class... F> Overloaded(F...) -> Overloaded<F...>;
} // namespace

QString AsString(const FieldValue& v)
{
    return DisplayText(v);
}

qint32 AsInteger(const FieldValue& v)
{
    return std::visit(Overloaded{[](std::monostate) { return 0; }, [](const QString& s) { return s.trimmed().toInt(); },
                                 [](qint32 i) { return i; }, [](const QDate&) { return 0; },
                                 [](bool b) { return b ? 1 : 0; }},
                      v);
}

QDate AsDate(const FieldValue& v)
{
    if (const auto* d = std::get_if<QDate>(&v))
        return *d;
    return {};
}

bool AsBoolean(const FieldValue& v)
{
    if (const auto* b = std::get_if<bool>(&v))
        return *b;
    if (const auto* i = std::get_if<qint32>(&v))
        return *i != 0;
    return false;
}

QString DisplayText(const FieldValue& v)
{
    return std::visit(Overloaded{[](std::monostate) { return QString(); }, [](const QString& s) { return s; },
                                 [](qint32 i) { return QString::number(i); },
                                 [](const QDate& d) { return d.toString(u"dd.MM.yyyy"); },
                                 [](bool b) { return b ? u"True"_s : u"False"_s; }},
                      v);
}
