#include "reports/PreparedReportFile.h"

#include "framework/SafeFile.h"

#include <QDataStream>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {
constexpr quint32 Magic = 0x48525031; // "HRP1"
constexpr quint16 Version = 1;

QDataStream& operator<<(QDataStream& out, const ReportFont& font)
{
    return out << font.family << font.pixelSize << font.bold << font.italic << font.underline << font.strikeOut
               << font.color;
}

QDataStream& operator>>(QDataStream& in, ReportFont& font)
{
    return in >> font.family >> font.pixelSize >> font.bold >> font.italic >> font.underline >> font.strikeOut >>
           font.color;
}

template <class Enum> qint32 Code(Enum value)
{
    return static_cast<qint32>(value);
}

template <class Enum> Enum FromCode(QDataStream& in, qint32 highest)
{
    qint32 code = 0;
    in >> code;
    if (code < 0 || code > highest)
        in.setStatus(QDataStream::ReadCorruptData);
    return static_cast<Enum>(std::clamp(code, 0, highest));
}

void Write(QDataStream& out, const PreparedStyle& style)
{
    out << style.font << Code(style.hAlign) << Code(style.vAlign) << style.wordWrap << style.gapX << style.gapY
        << style.rotation << qint32(style.frame.sides) << style.frame.width << style.frame.color << style.fill
        << Code(style.shape);
}

PreparedStyle ReadStyle(QDataStream& in)
{
    PreparedStyle style;
    qint32 sides = 0;
    in >> style.font;
    style.hAlign = FromCode<HAlign>(in, Code(HAlign::Block));
    style.vAlign = FromCode<VAlign>(in, Code(VAlign::Bottom));
    in >> style.wordWrap >> style.gapX >> style.gapY >> style.rotation >> sides >> style.frame.width >>
        style.frame.color >> style.fill;
    style.frame.sides = sides;
    style.shape = FromCode<ShapeKind>(in, Code(ShapeKind::Diagonal2));
    return style;
}

void Write(QDataStream& out, const PreparedPage& page)
{
    out << page.paperMm << page.landscape << quint32(page.items.size());
    for (const PreparedItem& item : page.items)
        out << Code(item.kind) << qint32(item.style) << item.rect << item.text;
}

PreparedPage ReadPage(QDataStream& in, int styleCount)
{
    PreparedPage page;
    quint32 items = 0;
    in >> page.paperMm >> page.landscape >> items;
    for (quint32 i = 0; i < items && in.status() == QDataStream::Ok; ++i) {
        PreparedItem item;
        item.kind = FromCode<ItemKind>(in, Code(ItemKind::Frame));
        qint32 style = 0;
        in >> style >> item.rect >> item.text;
        if (style < 0 || style >= styleCount)
            in.setStatus(QDataStream::ReadCorruptData);
        item.style = style;
        page.items.push_back(std::move(item));
    }
    return page;
}

PreparedReportError Damaged()
{
    return PreparedReportError(u"Plik nie jest zapisanym raportem programu albo jest uszkodzony"_s);
}
} // namespace

QByteArray EncodePreparedReport(const PreparedReport& report)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setVersion(QDataStream::Qt_6_4);
    out << Magic << Version << report.name << report.problems << quint32(report.styles.size());
    for (const PreparedStyle& style : report.styles)
        Write(out, style);
    out << quint32(report.pages.size());
    for (const PreparedPage& page : report.pages)
        Write(out, page);
    return bytes;
}

PreparedReport DecodePreparedReport(const QByteArray& bytes)
{
    QDataStream in(bytes);
    in.setVersion(QDataStream::Qt_6_4);
    quint32 magic = 0;
    quint16 version = 0;
    in >> magic >> version;
    if (magic != Magic || version != Version)
        throw Damaged();
    PreparedReport report;
    quint32 styles = 0, pages = 0;
    in >> report.name >> report.problems >> styles;
    for (quint32 i = 0; i < styles && in.status() == QDataStream::Ok; ++i)
        report.styles.push_back(ReadStyle(in));
    in >> pages;
    for (quint32 i = 0; i < pages && in.status() == QDataStream::Ok; ++i)
        report.pages.push_back(ReadPage(in, static_cast<int>(report.styles.size())));
    if (in.status() != QDataStream::Ok || !in.atEnd() || report.pages.empty())
        throw Damaged();
    return report;
}

void SavePreparedReport(const PreparedReport& report, const QString& path)
{
    WriteFileAtomically(path, EncodePreparedReport(report));
}

PreparedReport LoadPreparedReport(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw PreparedReportError(u"Nie można odczytać pliku \"%1\": %2"_s.arg(path, file.errorString()));
    return DecodePreparedReport(file.readAll());
}
