#include "reports/ShippedTemplates.h"
#include "support/Files.h"

#include <QDir>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>
#include <QXmlStreamReader>

using namespace Qt::StringLiterals;

namespace {
const QString SourceFolder = QStringLiteral(HALVARN_TEST_DATA "/../../templates");

// Every attribute value of the file, after checking that it is well-formed XML rooted in TfrxReport.
QStringList AttributeValues(const QByteArray& xml)
{
    QStringList values;
    QXmlStreamReader reader(xml);
    if (!reader.readNextStartElement() || reader.name() != u"TfrxReport")
        return {};
    do {
        if (reader.isStartElement())
            for (const QXmlStreamAttribute& attribute : reader.attributes())
                values.append(attribute.value().toString());
    } while (!reader.atEnd() && reader.readNext() != QXmlStreamReader::Invalid);
    return reader.hasError() ? QStringList() : values;
}
} // namespace

class TestShippedTemplates : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void installsAllIntoAnEmptyFolder()
    {
        QTemporaryDir data;
        const QString folder = data.filePath(u"SZABLONY"_s);
        const TemplateInstallResult result = InstallShippedTemplates(folder);
        QCOMPARE(result.installed, ShippedTemplateNames());
        QCOMPARE(result.failed, QStringList());
        QCOMPARE(ShippedTemplateNames().size(), 6);
        for (const QString& name : ShippedTemplateNames()) {
            const QByteArray source = ReadAll(SourceFolder + u'/' + name);
            QVERIFY2(!source.isEmpty(), qPrintable(name));
            QCOMPARE(ReadAll(QDir(folder).filePath(name)), source);
        }
        QCOMPARE(InstallShippedTemplates(folder).installed, QStringList());
    }

    void keepsAFileAlreadyThere()
    {
        QTemporaryDir folder;
        const QString edited = folder.filePath(u"Grupy technologiczne.fr3"_s);
        WriteAll(edited, "szablon poprawiony przez użytkownika");
        const TemplateInstallResult result = InstallShippedTemplates(folder.path());
        QCOMPARE(result.installed.size(), ShippedTemplateNames().size() - 1);
        QVERIFY(!result.installed.contains(u"Grupy technologiczne.fr3"_s));
        QCOMPARE(ReadAll(edited), QByteArray("szablon poprawiony przez użytkownika"));
    }

    void reportsAnUnwritableFolder()
    {
        QTemporaryDir data;
        QString folder = data.filePath(u"SZABLONY"_s);
        QVERIFY(QDir().mkpath(folder));
        QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));
        // The superuser writes through permissions: a folder beneath a plain file is unwritable for anyone.
        QFile probe(QDir(folder).filePath(u"proba"_s));
        if (probe.open(QIODevice::WriteOnly)) {
            probe.remove();
            WriteAll(data.filePath(u"plik"_s), "to nie jest folder");
            folder = data.filePath(u"plik/SZABLONY"_s);
        }
        const TemplateInstallResult result = InstallShippedTemplates(folder);
        QFile::setPermissions(data.filePath(u"SZABLONY"_s), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QCOMPARE(result.installed, QStringList());
        QCOMPARE(result.failed.size(), ShippedTemplateNames().size());
        for (int i = 0; i < result.failed.size(); ++i) {
            QVERIFY2(result.failed[i].startsWith(u"Nie można zapisać pliku"_s), qPrintable(result.failed[i]));
            QVERIFY2(result.failed[i].contains(ShippedTemplateNames()[i]), qPrintable(result.failed[i]));
        }
    }

    void everyShippedTemplateIsAReportOnKnownLinks()
    {
        static const QRegularExpression link(u"frxDBDataset(\\d+)"_s);
        for (const QString& name : ShippedTemplateNames()) {
            QFile resource(u":/templates/"_s + name);
            QVERIFY2(resource.open(QIODevice::ReadOnly), qPrintable(name));
            const QStringList values = AttributeValues(resource.readAll());
            QVERIFY2(!values.isEmpty(), qPrintable(name + u": not a well-formed TfrxReport"_s));
            QSet<int> links;
            for (const QString& value : values)
                for (const QRegularExpressionMatch& match : link.globalMatch(value))
                    links.insert(match.captured(1).toInt());
            QVERIFY2(links.contains(1) && links.contains(30), qPrintable(name));
            for (int number : links)
                QVERIFY2(number >= 1 && number <= 30, qPrintable(u"%1: frxDBDataset%2"_s.arg(name).arg(number)));
        }
    }
};

QTEST_GUILESS_MAIN(TestShippedTemplates)
#include "test_shipped_templates.moc"
