#include "export/xls/CompoundFile.h"

#include "export/xls/LittleEndian.h"

#include <vector>

using namespace Qt::StringLiterals;

namespace {
constexpr int SectorSize = 512;
constexpr quint32 FreeSector = 0xFFFFFFFF;
constexpr quint32 EndOfChain = 0xFFFFFFFE;
constexpr quint32 FatSector = 0xFFFFFFFD;
constexpr quint32 DifatSector = 0xFFFFFFFC;
constexpr quint32 NoStream = 0xFFFFFFFF;
constexpr int HeaderDifatEntries = 109;
constexpr int EntriesPerSector = SectorSize / 4;

struct Layout {
    quint32 streamSectors = 0;
    quint32 directorySector = 0;
    quint32 fatSectors = 0;
    quint32 difatSectors = 0;
    quint32 total() const { return streamSectors + 1 + fatSectors + difatSectors; }
};

// The FAT must map every sector, its own included, so its size is found by iteration.
Layout Plan(qsizetype streamSize)
{
    Layout layout;
    layout.streamSectors = static_cast<quint32>((streamSize + SectorSize - 1) / SectorSize);
    layout.directorySector = layout.streamSectors;
    while (layout.fatSectors * EntriesPerSector < layout.total()) {
        ++layout.fatSectors;
        layout.difatSectors =
            layout.fatSectors > HeaderDifatEntries
                ? (layout.fatSectors - HeaderDifatEntries + EntriesPerSector - 2) / (EntriesPerSector - 1)
                : 0;
    }
    return layout;
}

void DirectoryEntry(QByteArray& out, const QString& name, quint8 type, quint32 child, quint32 start, quint32 size)
{
    const qsizetype begin = out.size();
    for (const QChar c : name)
        PutU16(out, c.unicode());
    PutU16(out, 0);
    out.append(64 - (out.size() - begin), '\0');
    PutU16(out, static_cast<quint16>((name.size() + 1) * 2));
    out.append(static_cast<char>(type));
    out.append(static_cast<char>(1)); // black
    PutU32(out, NoStream);            // left sibling
    PutU32(out, NoStream);            // right sibling
    PutU32(out, child);
    out.append(16 + 4 + 8 + 8, '\0'); // class id, state bits, creation and modification times
    PutU32(out, start);
    PutU32(out, size);
    PutU32(out, 0);
}

QByteArray Header(const Layout& layout)
{
    QByteArray header = QByteArray::fromHex("D0CF11E0A1B11AE1");
    header.append(16, '\0');
    PutU16(header, 0x003E);
    PutU16(header, 0x0003);
    PutU16(header, 0xFFFE);
    PutU16(header, 9); // sectors of 2^9 bytes
    PutU16(header, 6); // mini sectors of 2^6 bytes
    header.append(6, '\0');
    PutU32(header, 0); // directory sectors (always 0 in version 3)
    PutU32(header, layout.fatSectors);
    PutU32(header, layout.directorySector);
    PutU32(header, 0);
    PutU32(header, 4096); // mini stream cut-off
    PutU32(header, EndOfChain);
    PutU32(header, 0);
    const quint32 firstFat = layout.directorySector + 1;
    const quint32 firstDifat = firstFat + layout.fatSectors;
    PutU32(header, layout.difatSectors > 0 ? firstDifat : EndOfChain);
    PutU32(header, layout.difatSectors);
    for (quint32 i = 0; i < HeaderDifatEntries; ++i)
        PutU32(header, i < layout.fatSectors ? firstFat + i : FreeSector);
    return header;
}

QByteArray Fat(const Layout& layout)
{
    std::vector<quint32> fat(layout.fatSectors * EntriesPerSector, FreeSector);
    for (quint32 i = 0; i < layout.streamSectors; ++i)
        fat[i] = i + 1 < layout.streamSectors ? i + 1 : EndOfChain;
    fat[layout.directorySector] = EndOfChain;
    const quint32 firstFat = layout.directorySector + 1;
    for (quint32 i = 0; i < layout.fatSectors; ++i)
        fat[firstFat + i] = FatSector;
    for (quint32 i = 0; i < layout.difatSectors; ++i)
        fat[firstFat + layout.fatSectors + i] = DifatSector;
    QByteArray out;
    out.reserve(static_cast<qsizetype>(fat.size() * 4));
    for (quint32 entry : fat)
        PutU32(out, entry);
    return out;
}

// FAT sectors beyond the header's 109 are listed in chained DIFAT sectors.
QByteArray Difat(const Layout& layout)
{
    QByteArray out;
    const quint32 firstFat = layout.directorySector + 1;
    const quint32 firstDifat = firstFat + layout.fatSectors;
    quint32 fat = HeaderDifatEntries;
    for (quint32 d = 0; d < layout.difatSectors; ++d) {
        for (int i = 0; i < EntriesPerSector - 1; ++i, ++fat)
            PutU32(out, fat < layout.fatSectors ? firstFat + fat : FreeSector);
        PutU32(out, d + 1 < layout.difatSectors ? firstDifat + d + 1 : EndOfChain);
    }
    return out;
}
} // namespace

QByteArray CompoundFileWithWorkbook(QByteArray workbook)
{
    // Streams under 4096 bytes would belong in the mini stream; padding the
    // workbook keeps every stream in ordinary sectors.
    if (workbook.size() < 4096)
        workbook.append(4096 - workbook.size(), '\0');
    const quint32 size = static_cast<quint32>(workbook.size());
    workbook.append((SectorSize - workbook.size() % SectorSize) % SectorSize, '\0');
    const Layout layout = Plan(workbook.size());

    QByteArray directory;
    DirectoryEntry(directory, u"Root Entry"_s, 5, 1, EndOfChain, 0);
    DirectoryEntry(directory, u"Workbook"_s, 2, NoStream, 0, size);
    while (directory.size() < SectorSize)
        DirectoryEntry(directory, QString(), 0, NoStream, 0, 0);
    // An empty entry carries a name length of 0, not 2.
    for (int entry = 2; entry < 4; ++entry)
        directory[entry * 128 + 64] = 0;

    QByteArray file = Header(layout);
    file.reserve(static_cast<qsizetype>(layout.total() + 1) * SectorSize);
    file += workbook;
    file += directory;
    file += Fat(layout);
    file += Difat(layout);
    return file;
}
