#include "framework/IniFile.h"

#include "framework/Cp1250.h"
#include "framework/FileLock.h"
#include "framework/SafeFile.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {
bool SameName(const QString& a, const QString& b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

QString ValueOf(const QString& keyLine)
{
    return keyLine.mid(keyLine.indexOf(u'=') + 1).trimmed();
}
} // namespace

IniFile::IniFile(QString path) : path_(std::move(path))
{
    load();
}

void IniFile::load()
{
    sections_.assign(1, Section{});
    QFile file(path_);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QByteArray bytes = file.readAll();
    const QByteArray utf8Mark("\xEF\xBB\xBF");
    const QString text = bytes.startsWith(utf8Mark) ? QString::fromUtf8(bytes.mid(utf8Mark.size())) : FromCp1250(bytes);
    for (QStringView raw : QStringView(text).split(u'\n')) {
        const QStringView line = raw.trimmed();
        if (line.startsWith(u'[') && line.endsWith(u']')) {
            sections_.push_back(Section{line.mid(1, line.size() - 2).trimmed().toString(), {}});
            continue;
        }
        const auto eq = line.indexOf(u'=');
        const bool comment = line.startsWith(u';') || line.startsWith(u'#');
        if (eq > 0 && !comment)
            sections_.back().lines.push_back({line.left(eq).trimmed().toString(), line.toString()});
        else if (!line.isEmpty())
            sections_.back().lines.push_back({QString(), line.toString()});
    }
}

void IniFile::save() const
{
    QString text;
    for (const Section& section : sections_) {
        if (!section.name.isNull())
            text += u'[' + section.name + u"]\r\n"_s;
        for (const Line& line : section.lines)
            text += line.text + u"\r\n"_s;
    }
    WriteFileAtomically(path_, ToCp1250(text));
}

const IniFile::Section* IniFile::findSection(const QString& name) const
{
    for (const Section& section : sections_)
        if (!section.name.isNull() && SameName(section.name, name))
            return &section;
    return nullptr;
}

bool IniFile::sectionExists(const QString& section) const
{
    return findSection(section) != nullptr;
}

const QString* IniFile::findValue(const QString& section, const QString& key) const
{
    const Section* found = findSection(section);
    if (!found)
        return nullptr;
    for (const Line& line : found->lines)
        if (!line.key.isEmpty() && SameName(line.key, key))
            return &line.text;
    return nullptr;
}

QString IniFile::readString(const QString& section, const QString& key, const QString& defaultValue) const
{
    const QString* line = findValue(section, key);
    return line ? ValueOf(*line) : defaultValue;
}

int IniFile::readInteger(const QString& section, const QString& key, int defaultValue) const
{
    bool ok = false;
    const int value = readString(section, key, QString()).toInt(&ok);
    return ok ? value : defaultValue;
}

int IniFile::readInteger(const QString& section, const QString& key, int defaultValue, Range range,
                         QStringList& problems) const
{
    const QString* line = findValue(section, key);
    if (!line)
        return defaultValue;
    const QString text = ValueOf(*line);
    bool ok = false;
    const int value = text.toInt(&ok);
    if (ok && value >= range.least && value <= range.most)
        return value;
    problems.append(
        u"Niepoprawna wartość w ustawieniach: [%1] %2=%3 (dozwolone %4..%5); użyto %6"_s.arg(section, key, text)
            .arg(range.least)
            .arg(range.most)
            .arg(defaultValue));
    return defaultValue;
}

bool IniFile::readBool(const QString& section, const QString& key, bool defaultValue) const
{
    const QString text = readString(section, key, QString()).toLower();
    if (text == u"true" || text == u"yes")
        return true;
    if (text == u"false" || text == u"no")
        return false;
    return readInteger(section, key, defaultValue ? 1 : 0) != 0;
}

void IniFile::writeInteger(const QString& section, const QString& key, int value)
{
    writeString(section, key, QString::number(value));
}

// Another window or command may have changed the file since it was read: the
// change is made to the file as it is now, by one writer at a time.
FileLock IniFile::lockAndReload()
{
    const QString busy =
        u"Plik ustawień \"%1\" zapisuje w tej chwili inne okno programu"_s.arg(QFileInfo(path_).fileName());
    FileLock lock(path_, busy + u" (PID %1)"_s);
    load();
    return lock;
}

void IniFile::writeString(const QString& section, const QString& key, const QString& value)
{
    const FileLock lock = lockAndReload();
    auto target = std::find_if(sections_.begin(), sections_.end(),
                               [&section](const Section& s) { return !s.name.isNull() && SameName(s.name, section); });
    if (target == sections_.end()) {
        sections_.push_back(Section{section, {}});
        target = std::prev(sections_.end());
    }
    const Line line{key, key + u'=' + value};
    auto existing = std::find_if(target->lines.begin(), target->lines.end(),
                                 [&key](const Line& l) { return !l.key.isEmpty() && SameName(l.key, key); });
    if (existing != target->lines.end())
        *existing = line;
    else
        target->lines.push_back(line);
    save();
}

void IniFile::eraseSection(const QString& section)
{
    const FileLock lock = lockAndReload();
    const auto erased = std::erase_if(
        sections_, [&section](const Section& s) { return !s.name.isNull() && SameName(s.name, section); });
    if (erased > 0)
        save();
}
