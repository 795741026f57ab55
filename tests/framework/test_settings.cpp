#include "analysis/AgeLimits.h"
#include "framework/DataFolder.h"
#include "framework/IniFile.h"
#include "framework/SafeFile.h"
#include "support/Files.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

class TestSettings : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> dir_;
    QString file(const QString& name) const { return dir_->filePath(name); }

private Q_SLOTS:
    void init() { dir_ = std::make_unique<QTemporaryDir>(); }
    void polishTextSurvivesInWindows1250WithCrLf();
    void missingFilesAndKeysGiveDefaults();
    void malformedLinesAreSkippedAndKept();
    void readsBooleansAndIntegers_data();
    void readsBooleansAndIntegers();
    void erasingASectionKeepsTheOthers();
    void aFailedWriteLeavesNoFile();
    void ageLimitsReadTheirKeys();
    void invalidAgeLimitsFallBackToTheirDefaults_data();
    void invalidAgeLimitsFallBackToTheirDefaults();
    void aUtf8ByteOrderMarkIsTolerated();
    void startUpSwitches();
    void dataFolderPrecedenceAndSubfolders();
};

void TestSettings::polishTextSurvivesInWindows1250WithCrLf()
{
    const QString path = file(u"HALVARN.INI"_s);
    const QString folder = u"C:\\Eksport\\Zażółć gęślą jaźń"_s;
    IniFile(path).writeString(u"PATHS"_s, u"CSV"_s, folder);
    QCOMPARE(IniFile(path).readString(u"paths"_s, u"csv"_s, {}), folder);
    const QByteArray bytes = ReadAll(path);
    QCOMPARE(bytes, QByteArray("[PATHS]\r\nCSV=C:\\Eksport\\Za\xBF\xF3\xB3\xE6 g\xEA\x9Cl\xB9 ja\x9F\xF1\r\n"));
}

void TestSettings::missingFilesAndKeysGiveDefaults()
{
    const IniFile missing(file(u"none.ini"_s));
    QCOMPARE(missing.readInteger(u"WIEK"_s, u"X"_s, 7), 7);
    QCOMPARE(missing.readString(u"PATHS"_s, u"CSV"_s, u"d"_s), u"d"_s);
    QVERIFY(!QFile::exists(missing.path()));
}

void TestSettings::malformedLinesAreSkippedAndKept()
{
    const QString path = file(u"a.ini"_s);
    WriteAll(path, "garbage line\r\n[WIEK]\r\n=5\r\nCieletaGrp_Do_150KG_Wiek_Do = 4\r\nbroken\r\n; note\r\n");
    IniFile ini(path);
    QCOMPARE(ini.readInteger(u"WIEK"_s, u"CieletaGrp_Do_150KG_Wiek_Do"_s, 3), 4);
    ini.writeInteger(u"WIEK"_s, u"Nowy"_s, 1);
    QCOMPARE(ReadAll(path), QByteArray("garbage line\r\n[WIEK]\r\n=5\r\nCieletaGrp_Do_150KG_Wiek_Do = 4\r\nbroken\r\n"
                                       "; note\r\nNowy=1\r\n"));
}

void TestSettings::readsBooleansAndIntegers_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<bool>("flag");
    QTest::addColumn<int>("number");
    QTest::newRow("1") << QByteArray("1") << true << 1;
    QTest::newRow("0") << QByteArray("0") << false << 0;
    QTest::newRow("true") << QByteArray("true") << true << -1;
    QTest::newRow("not a number") << QByteArray("abc") << false << -1;
    QTest::newRow("blank") << QByteArray("") << false << -1;
}

void TestSettings::readsBooleansAndIntegers()
{
    QFETCH(QByteArray, value);
    QFETCH(bool, flag);
    QFETCH(int, number);
    const QString path = file(u"a.ini"_s);
    WriteAll(path, "[S]\r\nK=" + value + "\r\n");
    const IniFile ini(path);
    QCOMPARE(ini.readBool(u"S"_s, u"K"_s, false), flag);
    QCOMPARE(ini.readInteger(u"S"_s, u"K"_s, -1), number);
}

void TestSettings::erasingASectionKeepsTheOthers()
{
    const QString path = file(u"a.ini"_s);
    IniFile ini(path);
    ini.writeInteger(u"WIEK"_s, u"A"_s, 1);
    ini.writeString(u"PATHS"_s, u"CSV"_s, u"x"_s);
    ini.eraseSection(u"wiek"_s);
    const IniFile again(path);
    QVERIFY(!again.sectionExists(u"WIEK"_s));
    QCOMPARE(again.readString(u"PATHS"_s, u"CSV"_s, {}), u"x"_s);
}

void TestSettings::aFailedWriteLeavesNoFile()
{
    const QString path = file(u"missing/a.ini"_s);
    IniFile ini(path);
    QVERIFY_THROWS_EXCEPTION(FileWriteError, ini.writeInteger(u"S"_s, u"K"_s, 1));
    QVERIFY(QDir(dir_->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).isEmpty());
}

void TestSettings::ageLimitsReadTheirKeys()
{
    const QString path = file(u"HALVARN.INI"_s);
    const AgeLimits defaults = AgeLimits::read(IniFile(path));
    QList<int> values;
    for (const AgeLimitKey& key : AgeLimitKeys())
        values.append(defaults[key.limit]);
    QCOMPARE(values, (QList<int>{3, 3, 4, 4, 10, 10, 3, 3, 5, 5, 3, 3, 5, 5, 3, 3, 4, 4, 10, 10}));
    WriteAll(path, "[WIEK]\r\nHalvOpasowGrp_Ponad_450KG_Wiek_Od=12\r\n");
    QCOMPARE(AgeLimits::read(IniFile(path))[AgeLimit::HalvOpasowGrp_Ponad_450KG_Wiek_Od], 12);
    IniFile ini(path);
    defaults.write(ini);
    QCOMPARE(AgeLimits::read(IniFile(path))[AgeLimit::HalvOpasowGrp_Ponad_450KG_Wiek_Od], 10);
}

void TestSettings::invalidAgeLimitsFallBackToTheirDefaults_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<int>("lower"); // CieletaGrp_Od_150KG_Do_220KG_Wiek_Od
    QTest::addColumn<int>("upper"); // CieletaGrp_Od_150KG_Do_220KG_Wiek_Do
    QTest::addColumn<QString>("problem");
    const QByteArray lower = "CieletaGrp_Od_150KG_Do_220KG_Wiek_Od=";
    const QByteArray upper = "CieletaGrp_Od_150KG_Do_220KG_Wiek_Do=";
    QTest::newRow("valid, at the bounds") << lower + "0\r\n" + upper + "600" << 0 << 600 << QString();
    QTest::newRow("not a number") << lower + "abc" << 3 << 5 << u"CieletaGrp_Od_150KG_Do_220KG_Wiek_Od=abc"_s;
    QTest::newRow("a fraction") << lower + "2.5" << 3 << 5 << u"=2.5"_s;
    QTest::newRow("negative") << upper + "-1" << 3 << 5 << u"CieletaGrp_Od_150KG_Do_220KG_Wiek_Do=-1"_s;
    QTest::newRow("over 600") << upper + "601" << 3 << 5 << u"=601"_s;
    QTest::newRow("lower above upper") << lower + "8\r\n" + upper + "6" << 3 << 5
                                       << u"CieletaGrp_Od_150KG_Do_220KG_Wiek_Od=8 jest większe"_s;
    QTest::newRow("equal bounds") << lower + "6\r\n" + upper + "6" << 6 << 6 << QString();
}

void TestSettings::invalidAgeLimitsFallBackToTheirDefaults()
{
    QFETCH(QByteArray, lines);
    QFETCH(int, lower);
    QFETCH(int, upper);
    QFETCH(QString, problem);
    const QString path = file(u"HALVARN.INI"_s);
    WriteAll(path, "[WIEK]\r\nHalvOpasowGrp_Ponad_450KG_Wiek_Od=12\r\n" + lines + "\r\n");
    QStringList problems;
    const AgeLimits limits = AgeLimits::read(IniFile(path), &problems);
    QCOMPARE(limits[AgeLimit::CieletaGrp_Od_150KG_Do_220KG_Wiek_Od], lower);
    QCOMPARE(limits[AgeLimit::CieletaGrp_Od_150KG_Do_220KG_Wiek_Do], upper);
    QCOMPARE(limits[AgeLimit::HalvOpasowGrp_Ponad_450KG_Wiek_Od], 12); // a good neighbour is kept
    QCOMPARE(problems.size(), problem.isEmpty() ? 0 : 1);
    if (!problem.isEmpty())
        QVERIFY2(problems[0].contains(problem), qPrintable(problems[0]));
}

// Files saved by some editors start with a byte-order mark and are UTF-8 then.
void TestSettings::aUtf8ByteOrderMarkIsTolerated()
{
    const QString path = file(u"HALVARN.INI"_s);
    WriteAll(path, "\xEF\xBB\xBF[PATHS]\r\nCSV=C:\\Dane\\Zwierzęta\r\n[WIEK]\r\nCieletaGrp_Do_150KG_Wiek_Do=4\r\n");
    const IniFile ini(path);
    QCOMPARE(ini.readString(u"PATHS"_s, u"CSV"_s, {}), u"C:\\Dane\\Zwierzęta"_s);
    QCOMPARE(AgeLimits::read(ini)[AgeLimit::CieletaGrp_Do_150KG_Wiek_Do], 4);
}

void TestSettings::startUpSwitches()
{
    const QString path = file(u"COMMON.INI"_s);
    QVERIFY(!CommonSettings::read(path).torvLogin && !CommonSettings::read(path).tester);
    WriteAll(path, "[PARAM]\r\nTORV_Login=1\r\n");
    QVERIFY(CommonSettings::read(path).torvLogin && !CommonSettings::read(path).tester);
}

void TestSettings::dataFolderPrecedenceAndSubfolders()
{
    qputenv("HALVARN_DATA_DIR", file(u"env"_s).toUtf8());
    QCOMPARE(DataFolder::resolve(file(u"arg"_s)), file(u"arg"_s));
    QCOMPARE(DataFolder::resolve({}), file(u"env"_s));
    qunsetenv("HALVARN_DATA_DIR");
    QCOMPARE(DataFolder::resolve({}), QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
    const DataFolder folder(file(u"dane"_s));
    QVERIFY(folder.prepare());
    for (const char* sub : {"EXPORT", "SZABLONY", "PDF"})
        QVERIFY(QDir(folder.root()).exists(QLatin1String(sub)));
    QCOMPARE(folder.settingsFile(), file(u"dane/HALVARN.INI"_s));
}

QTEST_GUILESS_MAIN(TestSettings)
#include "test_settings.moc"
