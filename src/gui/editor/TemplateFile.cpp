#include "gui/editor/TemplateFile.h"

#include "framework/Cp1250.h"
#include "framework/SafeFile.h"
#include "reports/ShippedTemplates.h"
#include "reports/TemplateReader.h"

#include <QDir>
#include <QFile>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {
qsizetype Utf8SequenceLength(uchar lead)
{
    if (lead >= 0xF0)
        return 4;
    if (lead >= 0xE0)
        return 3;
    return lead >= 0xC0 ? 2 : 1;
}

QString DecodedText(const QByteArray& bytes)
{
    if (QByteArrayView(bytes).isValidUtf8())
        return QString::fromUtf8(bytes);
    QString text;
    for (qsizetype at = 0; at < bytes.size();) {
        const qsizetype length = std::min(Utf8SequenceLength(static_cast<uchar>(bytes[at])), bytes.size() - at);
        const QByteArrayView sequence = QByteArrayView(bytes).sliced(at, length);
        if (sequence.isValidUtf8()) {
            text += QString::fromUtf8(sequence);
            at += length;
        } else {
            text += FromCp1250(bytes.sliced(at, 1));
            ++at;
        }
    }
    return text;
}

QString WithUnixLineBreaks(QString text)
{
    return text.replace(u"\r\n"_s, u"\n"_s);
}

void KeepPreviousVersion(const QString& path)
{
    QFile previous(path);
    if (!previous.exists())
        return;
    if (!previous.open(QIODevice::ReadOnly))
        throw FileWriteError(u"Nie można zachować poprzedniej wersji pliku \"%1\": %2"_s.arg(
            QDir::toNativeSeparators(path), previous.errorString()));
    WriteFileAtomically(path + u".bak"_s, previous.readAll());
}
} // namespace

QString ReadTemplateText(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw TemplateError(u"Nie można odczytać szablonu \"%1\": %2"_s.arg(path, file.errorString()));
    return WithUnixLineBreaks(DecodedText(file.readAll()));
}

QString ShippedTemplateText(const QString& fileName)
{
    if (!ShippedTemplateNames().contains(fileName))
        return {};
    QFile resource(u":/templates/"_s + fileName);
    return resource.open(QIODevice::ReadOnly) ? WithUnixLineBreaks(QString::fromUtf8(resource.readAll())) : QString();
}

void SaveTemplateText(const QString& path, const QString& text)
{
    KeepPreviousVersion(path);
    WriteFileAtomically(path, text.toUtf8());
}
