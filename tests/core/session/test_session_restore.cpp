#include "core/session/HalvarnSession.h"
#include "core/session/SessionDump.h"
#include "core/session/SessionRestore.h"
#include "support/RecordingHost.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
struct Session {
    QTemporaryDir folder;
    RecordingHost host;
    HalvarnSession session{DataFolder(folder.path()), host};
};

void AddRow(Table& table, const std::vector<std::pair<QString, FieldValue>>& values)
{
    const bool readOnly = table.readOnly();
    table.open();
    table.setReadOnly(false);
    table.append();
    for (const auto& [name, value] : values)
        table.setValue(name, value);
    table.post();
    table.setReadOnly(readOnly);
}

void Fill(HalvarnSession& session)
{
    session.herdCount = 2;
    WorkingTables& tables = session.tables();
    tables.HerdSlots[1] = {u"001"_s, 1, &tables.mdRZ(1), &tables.mdGT(1), true, {}};
    tables.HerdSlots[2] = {u"002"_s, 2, &tables.mdRZ(2), &tables.mdGT(2), false, {}};
    AddRow(tables.mdRZ00(), {{u"NumerIdentyfikacyjny"_s, u"PL005123456789"_s},
                             {u"Plec"_s, u"Samica"_s},
                             {u"DataUrodzenia"_s, QDate(2019, 4, 2)},
                             {u"Wiek"_s, 85},
                             {u"CzyMatka"_s, 1},
                             {u"GdzieRozpatrzono"_s, u"Krowy mleczne – zasuszone"_s},
                             {u"Rozpatrzono"_s, u"T"_s},
                             {u"STADO"_s, u"001"_s},
                             {u"ZAZNACZONE"_s, true}});
    AddRow(tables.mdRZ00(), {{u"NumerIdentyfikacyjny"_s, u"PL005987654321"_s}, {u"ZAZNACZONE"_s, false}});
    AddRow(tables.mdRZ(1), {{u"NumerIdentyfikacyjny"_s, u"PL005123456789"_s}, {u"CzyMatka"_s, 0}});
    AddRow(tables.mdGT00(), {{u"ID"_s, 2}, {u"GT"_s, u"Jałówki"_s}, {u"Ilosc"_s, 4}});
    AddRow(tables.mdGT00(), {{u"ID"_s, 1}, {u"GT"_s, u"Cielęta"_s}, {u"ZakresWieku"_s, u"0-6 m-cy"_s}});
    AddRow(tables.mdProducent(), {{u"PRODUCENT"_s, u"071234562"_s},
                                  {u"NAZWA"_s, u"Gospodarstwo Łąka"_s},
                                  {u"DATA1"_s, QDate(2026, 11, 1)},
                                  {u"DATA3"_s, QDate(2026, 10, 31)}});
    AddRow(tables.mdTUKU(), {{u"ST_KOD"_s, -3}, {u"BLEDY"_s, u"błąd 1\nbłąd 2"_s}});
}

QString ErrorOf(const QByteArray& json)
{
    Session target;
    try {
        RestoreSessionJson(target.session, json);
    } catch (const HalvarnError& error) {
        return error.message();
    }
    return {};
}
} // namespace

class TestSessionRestore : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void restoresWhatWasDumped()
    {
        Session source;
        Fill(source.session);
        const QByteArray dump = DumpSessionJson(source.session, {});
        Session target;
        RestoreSessionJson(target.session, dump);
        QCOMPARE(DumpSessionJson(target.session, {}), dump);
        QVERIFY(target.session.tables().mdRZ(1).readOnly() && !target.session.tables().mdTUKU().readOnly());
    }

    void skipsUnknownTablesFieldsAndKinds()
    {
        Session target;
        RestoreSessionJson(target.session, R"({"tables": {"mdNieMa": [{}],
            "mdProducent": [{"PRODUCENT": "071234562", "NIEZNANE": 5, "DATA1": 12}]}})");
        const Table& producer = target.session.tables().mdProducent();
        QCOMPARE(producer.recordCount(), 1);
        QCOMPARE(producer.at(0, producer.fieldIndex(u"PRODUCENT")), FieldValue(u"071234562"_s));
        QVERIFY(IsNull(producer.at(0, producer.fieldIndex(u"DATA1"))));
    }

    void refusesWhatIsNotADump_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("broken") << QByteArray(R"({"herdCount": )");
        QTest::newRow("array") << QByteArray("[1, 2]");
    }
    void refusesWhatIsNotADump()
    {
        QFETCH(QByteArray, json);
        const QString message = ErrorOf(json);
        QVERIFY2(message.startsWith(u"Plik stanu nie jest poprawnym zrzutem: "_s), qPrintable(message));
    }
};

QTEST_GUILESS_MAIN(TestSessionRestore)
#include "test_session_restore.moc"
