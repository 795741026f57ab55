#include "gui/errors/TFExceptionDlg.h"

#include <QApplication>
#include <QClipboard>
#include <QFontMetrics>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QUrl>
#include <QUrlQuery>

#include <memory>

using namespace Qt::StringLiterals;

namespace {
const QString Report = u"Wyjątek EAccessViolation w module HALVARN.EXE\n"
                       "Naruszenie dostępu pod adresem 0040A1B2, odczyt adresu 00000000.\n"
                       "Stos:\n"
                       "  TdmIRZ_PLUS::Authorize (TdmIRZ_PLUS.cpp:71)\n"
                       "  Zestawienie a=b&c+d #1 w stadzie PL005123456789"_s;
const QString SendTip = u"Wysyła pocztą elektroniczną informację o błędzie\ndo producenta programu."_s;
const QString Sent = u"Raport został wysłany. Dziękujemy."_s;

// What the dialog asked of the desktop and of the senders.
struct Calls {
    bool online = true;
    bool sendResult = true;
    QString failure;
    QList<QUrl> urls;
    QStringList messages; // caption|text|icon
    QStringList sent;     // button|description|email
    QStringList enabledWhileSending;
    bool busyCursorWhileSending = false;
    const QWidget* dialog = nullptr;
};

QString IconName(MessageIcon icon)
{
    switch (icon) {
    case MessageIcon::Information: return u"Information"_s;
    case MessageIcon::Warning: return u"Warning"_s;
    case MessageIcon::Error: return u"Error"_s;
    case MessageIcon::Question: return u"Question"_s;
    }
    return {};
}

ErrorDialogOptions::Sender Recorder(Calls& calls, const QString& button)
{
    return [&calls, button](const QString& description, const QString& email, QString& failure) {
        calls.sent << button + u'|' + description + u'|' + email;
        const QCursor* cursor = QApplication::overrideCursor();
        calls.busyCursorWhileSending = cursor && cursor->shape() == Qt::WaitCursor;
        for (const QPushButton* pushButton : calls.dialog->findChildren<QPushButton*>())
            if (pushButton->isEnabled())
                calls.enabledWhileSending << pushButton->objectName();
        failure = calls.failure;
        return calls.sendResult;
    };
}

ErrorDialogOptions Options(Calls& calls)
{
    ErrorDialogOptions options;
    options.sendDirect = Recorder(calls, u"BSave"_s);
    options.supportAddress = u"pomoc@fernhill.pl"_s;
    options.subject = u"Błąd w programie Halvarn & raport+stos"_s;
    options.programName = u"Halvarn Poczta"_s;
    options.sendWithProgram = Recorder(calls, u"BSend"_s);
    options.openUrl = [&calls](const QUrl& url) {
        calls.urls << url;
        return true;
    };
    options.showMessage = [&calls](QWidget*, const QString& caption, const QString& text, MessageIcon icon) {
        calls.messages << caption + u'|' + text + u'|' + IconName(icon);
    };
    options.isOnline = [&calls] { return calls.online; };
    return options;
}

std::unique_ptr<TFExceptionDlg> Open(Calls& calls, ErrorDialogOptions options)
{
    auto dialog = std::make_unique<TFExceptionDlg>(Report, std::move(options));
    calls.dialog = dialog.get();
    return dialog;
}

template <typename Widget> Widget* Find(const QWidget& dialog, const QString& name)
{
    return dialog.findChild<Widget*>(name);
}

void Click(const QWidget& dialog, const QString& name)
{
    auto* button = Find<QPushButton>(dialog, name);
    QVERIFY2(button, qPrintable(name));
    button->click();
}

void Fill(const QWidget& dialog, const QString& description, const QString& email)
{
    Find<QPlainTextEdit>(dialog, u"MDescription"_s)->setPlainText(description);
    Find<QLineEdit>(dialog, u"Edit1"_s)->setText(email);
}
} // namespace

class TestErrorDialog : public QObject {
    Q_OBJECT

private:
    Calls calls_;

private Q_SLOTS:
    void init() { calls_ = {}; }

    void buttons_data();
    void buttons();
    void labels_data();
    void labels();
    void captionAndEdits();
    void reportIsReadOnly();
    void buttonVisibility_data();
    void buttonVisibility();
    void desktopConnectionDecidesProgramButton();
    void copy_data();
    void copy();
    void mailUrl_data();
    void mailUrl();
    void mailNeedsEmail_data();
    void mailNeedsEmail();
    void send_data();
    void send();
    void closeGoesOn();
    void screenshot();
};

void TestErrorDialog::buttons_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("toolTip");
    QTest::newRow("direct") << u"BSave"_s << u"W&yślij bezpośrednio"_s << SendTip;
    QTest::newRow("mail client") << u"Button1"_s << u"Wyślij O&utlookiem"_s << SendTip;
    QTest::newRow("program") << u"BSend"_s << u"Wyślij programem: 'Halvarn Poczta'"_s << SendTip;
    QTest::newRow("copy") << u"BCopy"_s << u"&Kopiuj"_s << u"Kopiuje do schowka informację o błędzie."_s;
    QTest::newRow("close") << u"BClose"_s << u"&Zamknij"_s << u"Zamyka to okno..."_s;
}

void TestErrorDialog::buttons()
{
    QFETCH(QString, name);
    QFETCH(QString, text);
    QFETCH(QString, toolTip);
    const auto dialog = Open(calls_, Options(calls_));
    const auto* button = Find<QPushButton>(*dialog, name);
    QVERIFY(button);
    QCOMPARE(button->text(), text);
    QCOMPARE(button->toolTip(), toolTip);
}

void TestErrorDialog::labels_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("buddy");
    QTest::addColumn<bool>("red");
    QTest::newRow("heading") << u"lblHeading"_s
                             << u"W programie wystąpił poważny błąd.\nProszę przekazać tę informację do producenta:"_s
                             << QString() << true;
    QTest::newRow("description") << u"lblDescription"_s << u"Dodatkowe informacje:"_s << u"MDescription"_s << false;
    QTest::newRow("e-mail") << u"lblEmail"_s
                            << u"Twój adres e-mail (do odpowiedzi). "
                               "Nie akceptujemy załącznikow mail-i w formacie MS Office"_s
                            << u"Edit1"_s << true;
}

void TestErrorDialog::labels()
{
    QFETCH(QString, name);
    QFETCH(QString, text);
    QFETCH(QString, buddy);
    QFETCH(bool, red);
    const auto dialog = Open(calls_, Options(calls_));
    const auto* label = Find<QLabel>(*dialog, name);
    QVERIFY(label);
    QCOMPARE(label->text(), text);
    QCOMPARE(label->buddy() ? label->buddy()->objectName() : QString(), buddy);
    const QColor colour = label->palette().color(label->foregroundRole());
    QCOMPARE(colour == QColor(215, 0, 0), red);
}

void TestErrorDialog::captionAndEdits()
{
    const auto dialog = Open(calls_, Options(calls_));
    QCOMPARE(dialog->windowTitle(), u"Obsługa błędów"_s);
    const auto* report = Find<QPlainTextEdit>(*dialog, u"MReport"_s);
    QVERIFY(report);
    QCOMPARE(report->toPlainText(), Report);
    const QFontMetrics metrics(report->font());
    QCOMPARE(metrics.horizontalAdvance(u"iiii"_s), metrics.horizontalAdvance(u"WWWW"_s));
    const auto* description = Find<QPlainTextEdit>(*dialog, u"MDescription"_s);
    QVERIFY(description && !description->isReadOnly() && description->toPlainText().isEmpty());
    const auto* email = Find<QLineEdit>(*dialog, u"Edit1"_s);
    QVERIFY(email && !email->isReadOnly() && email->text().isEmpty());
    QCOMPARE(dialog->focusWidget(), description);
}

void TestErrorDialog::reportIsReadOnly()
{
    const auto dialog = Open(calls_, Options(calls_));
    auto* report = Find<QPlainTextEdit>(*dialog, u"MReport"_s);
    QVERIFY(report->isReadOnly());
    dialog->show();
    QVERIFY(QTest::qWaitForWindowExposed(dialog.get()));
    report->setFocus();
    QTest::keyClicks(report, u"xyz"_s);
    QTest::keyClick(report, Qt::Key_Delete);
    QTest::keyClick(report, Qt::Key_Backspace);
    QCOMPARE(report->toPlainText(), Report);
}

void TestErrorDialog::buttonVisibility_data()
{
    QTest::addColumn<bool>("direct");
    QTest::addColumn<QString>("program");
    QTest::addColumn<bool>("programSender");
    QTest::addColumn<bool>("online");
    QTest::addColumn<bool>("directShown");
    QTest::addColumn<bool>("programShown");
    QTest::addColumn<bool>("programEnabled");
    const QString program = u"Halvarn Poczta"_s;
    QTest::newRow("everything, online") << true << program << true << true << true << true << true;
    QTest::newRow("no direct sender") << false << program << true << true << false << true << true;
    QTest::newRow("no other program") << true << QString() << true << true << true << false << false;
    QTest::newRow("other program, offline") << true << program << true << false << true << true << false;
    QTest::newRow("other program without a sender") << true << program << false << true << true << true << false;
}

void TestErrorDialog::buttonVisibility()
{
    QFETCH(bool, direct);
    QFETCH(QString, program);
    QFETCH(bool, programSender);
    QFETCH(bool, online);
    QFETCH(bool, directShown);
    QFETCH(bool, programShown);
    QFETCH(bool, programEnabled);
    ErrorDialogOptions options = Options(calls_);
    if (!direct)
        options.sendDirect = nullptr;
    if (!programSender)
        options.sendWithProgram = nullptr;
    options.programName = program;
    calls_.online = online;
    const auto dialog = Open(calls_, std::move(options));
    dialog->show();
    QVERIFY(QTest::qWaitForWindowExposed(dialog.get()));
    QCOMPARE(Find<QPushButton>(*dialog, u"BSave"_s)->isVisible(), directShown);
    QCOMPARE(Find<QPushButton>(*dialog, u"BSend"_s)->isVisible(), programShown);
    QCOMPARE(Find<QPushButton>(*dialog, u"BSend"_s)->isEnabled(), programEnabled);
    for (const QString& always : {u"Button1"_s, u"BCopy"_s, u"BClose"_s})
        QVERIFY2(Find<QPushButton>(*dialog, always)->isVisible(), qPrintable(always));
}

// Without a check of its own the dialog asks the desktop; an unknown state counts as offline.
void TestErrorDialog::desktopConnectionDecidesProgramButton()
{
    ErrorDialogOptions options = Options(calls_);
    options.isOnline = nullptr;
    const auto dialog = Open(calls_, std::move(options));
    QCOMPARE(Find<QPushButton>(*dialog, u"BSend"_s)->isEnabled(), TFExceptionDlg::desktopIsOnline());
}

void TestErrorDialog::copy_data()
{
    QTest::addColumn<QString>("description");
    QTest::addColumn<QString>("expected");
    QTest::newRow("report only") << QString() << Report;
    QTest::newRow("blank description") << u"  \n "_s << Report;
    QTest::newRow("with description") << u"Kliknąłem „Drukuj” przy stadzie.\n"_s
                                      << Report + u"\n\nDodatkowe informacje:\nKliknąłem „Drukuj” przy stadzie."_s;
}

void TestErrorDialog::copy()
{
    QFETCH(QString, description);
    QFETCH(QString, expected);
    QGuiApplication::clipboard()->setText(u"poprzednia zawartość"_s);
    const auto dialog = Open(calls_, Options(calls_));
    Fill(*dialog, description, {});
    Click(*dialog, u"BCopy"_s);
    QCOMPARE(QGuiApplication::clipboard()->text(), expected);
    QVERIFY(calls_.messages.isEmpty());
}

void TestErrorDialog::mailUrl_data()
{
    QTest::addColumn<QString>("description");
    QTest::addColumn<QString>("body");
    QString crLfReport = Report;
    crLfReport.replace(u"\n"_s, u"\r\n"_s);
    QTest::newRow("report only") << QString() << crLfReport;
    QTest::newRow("with description") << u"Przy wydruku żółtych kolczyków.\nDrugi wiersz"_s
                                      << u"Przy wydruku żółtych kolczyków.\r\nDrugi wiersz\r\n\r\n"_s + crLfReport;
    QTest::newRow("CRLF description stays CRLF")
        << u"Pierwszy\r\nDrugi"_s << u"Pierwszy\r\nDrugi\r\n\r\n"_s + crLfReport;
}

void TestErrorDialog::mailUrl()
{
    QFETCH(QString, description);
    QFETCH(QString, body);
    const auto dialog = Open(calls_, Options(calls_));
    Fill(*dialog, description, u" hodowca@gospodarstwo.pl "_s);
    Click(*dialog, u"Button1"_s);
    QVERIFY(calls_.messages.isEmpty());
    QCOMPARE(calls_.urls.size(), 1);

    // What the mail client gets is the encoded form; read it back from there.
    const QByteArray encoded = calls_.urls[0].toEncoded();
    for (const char c : encoded)
        QVERIFY2(c > 0x20 && c < 0x7f, encoded.constData());
    QVERIFY2(!encoded.contains('+'), encoded.constData());
    QVERIFY2(encoded.contains("%0D%0A"), encoded.constData());
    const QUrl url = QUrl::fromEncoded(encoded, QUrl::StrictMode);
    QVERIFY(url.isValid());
    QCOMPARE(url.scheme(), u"mailto"_s);
    QCOMPARE(url.path(), u"pomoc@fernhill.pl"_s);
    const QUrlQuery query(url);
    QCOMPARE(query.queryItems(QUrl::FullyDecoded).size(), 2);
    QCOMPARE(query.queryItemValue(u"subject"_s, QUrl::FullyDecoded), u"Błąd w programie Halvarn & raport+stos"_s);
    QCOMPARE(query.queryItemValue(u"body"_s, QUrl::FullyDecoded), body);
}

void TestErrorDialog::mailNeedsEmail_data()
{
    QTest::addColumn<QString>("email");
    QTest::newRow("empty") << QString();
    QTest::newRow("spaces") << u"   "_s;
}

void TestErrorDialog::mailNeedsEmail()
{
    QFETCH(QString, email);
    const auto dialog = Open(calls_, Options(calls_));
    Fill(*dialog, u"opis"_s, email);
    Click(*dialog, u"Button1"_s);
    QVERIFY(calls_.urls.isEmpty());
    QCOMPARE(calls_.messages, QStringList{u"Obsługa błędów|Podaj swój adres e-mail.|Warning"_s});
    QCOMPARE(dialog->focusWidget(), Find<QLineEdit>(*dialog, u"Edit1"_s));
}

void TestErrorDialog::send_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<bool>("succeeds");
    QTest::newRow("direct, sent") << u"BSave"_s << true;
    QTest::newRow("direct, failed") << u"BSave"_s << false;
    QTest::newRow("other program, sent") << u"BSend"_s << true;
    QTest::newRow("other program, failed") << u"BSend"_s << false;
}

void TestErrorDialog::send()
{
    QFETCH(QString, button);
    QFETCH(bool, succeeds);
    calls_.sendResult = succeeds;
    calls_.failure = succeeds ? QString() : u"Nie można połączyć się z serwerem (przekroczony czas)."_s;
    const auto dialog = Open(calls_, Options(calls_));
    dialog->show();
    QVERIFY(QTest::qWaitForWindowExposed(dialog.get()));
    Fill(*dialog, u"Drukowałem zestawienie.\n"_s, u"hodowca@gospodarstwo.pl"_s);
    Click(*dialog, button);

    QCOMPARE(calls_.sent, QStringList{button + u"|Drukowałem zestawienie.|hodowca@gospodarstwo.pl"_s});
    QVERIFY(calls_.busyCursorWhileSending);
    QCOMPARE(calls_.enabledWhileSending, QStringList());
    QVERIFY(!QApplication::overrideCursor());
    if (succeeds) {
        QCOMPARE(calls_.messages, QStringList{u"Obsługa błędów|"_s + Sent + u"|Information"_s});
        QVERIFY(!dialog->isVisible());
        QCOMPARE(dialog->result(), int(QDialog::Accepted));
        return;
    }
    QCOMPARE(calls_.messages, QStringList{u"Obsługa błędów|"_s + calls_.failure + u"|Warning"_s});
    QVERIFY(dialog->isVisible());
    QCOMPARE(Find<QPlainTextEdit>(*dialog, u"MReport"_s)->toPlainText(), Report);
    for (const QPushButton* pushButton : dialog->findChildren<QPushButton*>())
        QVERIFY2(pushButton->isEnabled(), qPrintable(pushButton->objectName()));
    Click(*dialog, u"BCopy"_s);
    QVERIFY(QGuiApplication::clipboard()->text().startsWith(Report));
}

void TestErrorDialog::closeGoesOn()
{
    const auto dialog = Open(calls_, Options(calls_));
    dialog->show();
    QVERIFY(QTest::qWaitForWindowExposed(dialog.get()));
    Click(*dialog, u"BClose"_s);
    QVERIFY(!dialog->isVisible());
    QCOMPARE(dialog->result(), int(QDialog::Rejected));
    QVERIFY(calls_.sent.isEmpty() && calls_.urls.isEmpty() && calls_.messages.isEmpty());
}

// Kept for a look at the layout: /tmp/error-dialog.png.
void TestErrorDialog::screenshot()
{
    const auto dialog = Open(calls_, Options(calls_));
    Fill(*dialog, u"Program przerwał drukowanie zestawienia stada."_s, u"hodowca@gospodarstwo.pl"_s);
    dialog->show();
    QVERIFY(QTest::qWaitForWindowExposed(dialog.get()));
    QVERIFY(dialog->minimumSizeHint().width() <= dialog->width());
    QVERIFY(dialog->minimumSizeHint().height() <= dialog->height());
    QVERIFY(dialog->grab().save(u"/tmp/error-dialog.png"_s));
}

QTEST_MAIN(TestErrorDialog)
#include "test_error_dialog.moc"
