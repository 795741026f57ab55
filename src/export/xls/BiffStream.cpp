#include "export/xls/BiffStream.h"

#include "export/xls/LittleEndian.h"
#include "export/xls/XlsWorkbook.h"

#include <QHash>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {
constexpr int MaxRecordData = 8224;
constexpr quint16 GeneralXf = 15;
constexpr quint16 DateXf = 16;
constexpr quint16 DateFormat = 164;

enum Record : quint16 {
    Bof = 0x0809,
    Eof = 0x000A,
    Codepage = 0x0042,
    Window1 = 0x003D,
    Font = 0x0031,
    Format = 0x041E,
    Xf = 0x00E0,
    Style = 0x0293,
    BoundSheet = 0x0085,
    Sst = 0x00FC,
    ExtSst = 0x00FF,
    Continue = 0x003C,
    Dimensions = 0x0200,
    Window2 = 0x023E,
    LabelSst = 0x00FD,
    Number = 0x0203,
    BoolErr = 0x0205,
};

void Put(QByteArray& out, quint16 type, const QByteArray& data)
{
    PutU16(out, type);
    PutU16(out, static_cast<quint16>(data.size()));
    out += data;
}

bool Compressible(const QString& text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 256; });
}

void PutChars(QByteArray& out, QStringView text, bool compressed)
{
    for (const QChar c : text) {
        if (compressed)
            out.append(static_cast<char>(c.unicode()));
        else
            PutU16(out, c.unicode());
    }
}

QByteArray BofData(quint16 kind)
{
    QByteArray data;
    for (quint16 v : {quint16(0x0600), kind, quint16(0x0DBB), quint16(0x07CC)})
        PutU16(data, v);
    PutU32(data, 0);
    PutU32(data, 0x06);
    return data;
}

QByteArray FontData()
{
    QByteArray data;
    for (quint16 v : {quint16(200), quint16(0), quint16(0x7FFF), quint16(400), quint16(0)})
        PutU16(data, v);
    data.append(4, '\0'); // underline, family, character set, reserved
    const QString name = u"Arial"_s;
    data.append(static_cast<char>(name.size()));
    data.append('\0');
    PutChars(data, name, true);
    return data;
}

QByteArray XfData(quint16 format, bool style)
{
    QByteArray data;
    PutU16(data, 0); // font
    PutU16(data, format);
    PutU16(data, style ? 0xFFF5 : 0x0001);
    data.append(static_cast<char>(0x20)); // bottom aligned
    data.append('\0');
    data.append('\0');
    data.append(static_cast<char>(style ? 0xF4 : (format ? 0x04 : 0x00)));
    data.append(8, '\0'); // borders
    PutU16(data, 0x20C0); // default pattern colours
    return data;
}

// Builds the SST record and its CONTINUEs. A string may break between
// characters; the continuation then repeats the string's option byte.
class SharedStrings {
public:
    explicit SharedStrings(qsizetype streamOffset) : offset_(streamOffset) {}

    QByteArray build(const std::vector<QString>& unique, quint32 total)
    {
        // Excel expects at most 128 buckets, each of the same number of strings (at least 8).
        bucket_ = std::max<std::size_t>(unique.size() / 128 + 1, 8);
        QByteArray head;
        PutU32(head, total);
        PutU32(head, static_cast<quint32>(unique.size()));
        startRecord(Sst, head);
        for (std::size_t i = 0; i < unique.size(); ++i)
            addString(unique[i], i);
        close();
        return out_;
    }

    QByteArray extSst() const
    {
        QByteArray data;
        PutU16(data, static_cast<quint16>(bucket_));
        for (const auto& [position, inRecord] : buckets_) {
            PutU32(data, static_cast<quint32>(position));
            PutU16(data, static_cast<quint16>(inRecord));
            PutU16(data, 0);
        }
        return data;
    }

private:
    void startRecord(quint16 type, const QByteArray& head)
    {
        close();
        recordType_ = type;
        record_ = head;
    }
    void close()
    {
        if (recordType_ != 0)
            Put(out_, recordType_, record_);
        recordType_ = 0;
        record_.clear();
    }
    qsizetype room() const { return MaxRecordData - record_.size(); }

    void addString(const QString& text, std::size_t i)
    {
        const bool compressed = Compressible(text);
        const int width = compressed ? 1 : 2;
        if (room() < 3 + width)
            startRecord(Continue, {});
        if (i % bucket_ == 0)
            buckets_.push_back({offset_ + out_.size() + 4 + record_.size(), 4 + record_.size()});
        PutU16(record_, static_cast<quint16>(text.size()));
        record_.append(static_cast<char>(compressed ? 0 : 1));
        QStringView rest(text);
        while (!rest.isEmpty()) {
            const qsizetype fits = std::min(rest.size(), room() / width);
            PutChars(record_, rest.left(fits), compressed);
            rest = rest.mid(fits);
            if (!rest.isEmpty()) {
                startRecord(Continue, QByteArray(1, static_cast<char>(compressed ? 0 : 1)));
            }
        }
    }

    qsizetype offset_;
    std::size_t bucket_ = 8;
    QByteArray out_;
    quint16 recordType_ = 0;
    QByteArray record_;
    std::vector<std::pair<qsizetype, qsizetype>> buckets_;
};

// Only the first sheet is selected and shown; several selected sheets would
// open grouped, and an edit on one would change them all.
QByteArray Window2Data(bool firstSheet)
{
    constexpr quint16 Shown = 0x00B6; // grid lines, headers, zeros, automatic grid colour, outline symbols
    constexpr quint16 SelectedAndActive = 0x0600;
    QByteArray window;
    for (quint16 v : {quint16(firstSheet ? Shown | SelectedAndActive : Shown), quint16(0), quint16(0), quint16(0x40),
                      quint16(0), quint16(0), quint16(0)})
        PutU16(window, v);
    PutU32(window, 0);
    return window;
}

QByteArray SheetStream(const XlsWorksheet& sheet, const std::vector<quint32>& textIds, bool firstSheet)
{
    const std::vector<XlsWorksheet::Cell> cells = sheet.sortedCells();
    QByteArray out;
    out.reserve(static_cast<qsizetype>(cells.size()) * 18 + 100);
    Put(out, Bof, BofData(0x0010));
    QByteArray dimensions;
    quint16 lastCol = 0;
    for (const auto& cell : cells)
        lastCol = std::max(lastCol, cell.col);
    PutU32(dimensions, 0);
    PutU32(dimensions, cells.empty() ? 0 : cells.back().row + 1u);
    PutU16(dimensions, 0);
    PutU16(dimensions, cells.empty() ? 0 : lastCol + 1);
    PutU16(dimensions, 0);
    Put(out, Dimensions, dimensions);
    Put(out, Window2, Window2Data(firstSheet));
    for (const auto& cell : cells) {
        const bool text = cell.kind == XlsWorksheet::Kind::Text;
        const bool flag = cell.kind == XlsWorksheet::Kind::Bool;
        PutU16(out, text ? LabelSst : flag ? BoolErr : Number);
        PutU16(out, text ? 10 : flag ? 8 : 14);
        PutU16(out, cell.row);
        PutU16(out, cell.col);
        PutU16(out, cell.kind == XlsWorksheet::Kind::Date ? DateXf : GeneralXf);
        if (text) {
            PutU32(out, textIds[static_cast<std::size_t>(cell.number)]);
        } else if (flag) {
            out.append(static_cast<char>(cell.number != 0));
            out.append('\0');
        } else {
            PutDouble(out, cell.number);
        }
    }
    Put(out, Eof, {});
    return out;
}

// Each distinct text once; every cell refers to its text by number.
struct TextTable {
    QHash<QString, quint32> index;
    std::vector<QString> unique;
    quint32 total = 0;

    quint32 add(const QString& text)
    {
        ++total;
        const auto found = index.constFind(text);
        if (found != index.cend())
            return *found;
        const auto id = static_cast<quint32>(unique.size());
        index.insert(text, id);
        unique.push_back(text);
        return id;
    }
};

QByteArray Globals(const std::vector<const XlsWorksheet*>& sheets, std::vector<qsizetype>& sheetPositionAt)
{
    QByteArray out;
    Put(out, Bof, BofData(0x0005));
    QByteArray codepage;
    PutU16(codepage, 1200);
    Put(out, Codepage, codepage);
    QByteArray window;
    for (quint16 v : {quint16(0), quint16(0), quint16(0x3A5C), quint16(0x2328), quint16(0x38), quint16(0), quint16(0),
                      quint16(1), quint16(0x258)})
        PutU16(window, v);
    Put(out, Window1, window);
    for (int i = 0; i < 4; ++i)
        Put(out, Font, FontData());
    QByteArray format;
    PutU16(format, DateFormat);
    const QString pattern = u"dd.mm.yyyy"_s;
    PutU16(format, static_cast<quint16>(pattern.size()));
    format.append('\0');
    PutChars(format, pattern, true);
    Put(out, Format, format);
    for (int i = 0; i < 15; ++i)
        Put(out, Xf, XfData(0, true));
    Put(out, Xf, XfData(0, false));
    Put(out, Xf, XfData(DateFormat, false));
    Put(out, Style, QByteArray::fromHex("008000FF"));
    for (const XlsWorksheet* sheet : sheets) {
        QByteArray entry;
        sheetPositionAt.push_back(out.size() + 4);
        PutU32(entry, 0); // the sheet's position, filled in once known
        PutU16(entry, 0);
        const bool compressed = Compressible(sheet->name());
        entry.append(static_cast<char>(sheet->name().size()));
        entry.append(static_cast<char>(compressed ? 0 : 1));
        PutChars(entry, sheet->name(), compressed);
        Put(out, BoundSheet, entry);
    }
    return out;
}
} // namespace

QByteArray WorkbookStream(const std::vector<const XlsWorksheet*>& sheets)
{
    TextTable texts;
    std::vector<std::vector<quint32>> textIds;
    for (const XlsWorksheet* sheet : sheets) {
        std::vector<quint32> ids;
        ids.reserve(sheet->texts().size());
        for (const QString& text : sheet->texts())
            ids.push_back(texts.add(text));
        textIds.push_back(std::move(ids));
    }
    std::vector<qsizetype> sheetPositionAt;
    QByteArray stream = Globals(sheets, sheetPositionAt);
    SharedStrings table(stream.size());
    stream += table.build(texts.unique, texts.total);
    Put(stream, ExtSst, table.extSst());
    Put(stream, Eof, {});
    for (std::size_t i = 0; i < sheets.size(); ++i) {
        SetU32(stream, sheetPositionAt[i], static_cast<quint32>(stream.size()));
        stream += SheetStream(*sheets[i], textIds[i], i == 0);
    }
    return stream;
}
