#include "framework/Cp1250.h"

#include <QStringDecoder>
#include <QStringEncoder>

QByteArray ToCp1250(const QString& text)
{
    QStringEncoder encoder("windows-1250", QStringConverter::Flag::Stateless);
    return encoder.encode(text);
}

QString FromCp1250(const QByteArray& bytes)
{
    QStringDecoder decoder("windows-1250", QStringConverter::Flag::Stateless);
    return decoder.decode(bytes);
}
