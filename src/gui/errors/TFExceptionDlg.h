#pragma once

#include "framework/OperationHost.h"

#include <QDialog>
#include <QString>

#include <functional>

class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QUrl;

// How the error report may leave the machine, and the desktop services the dialog
// uses. The services are here so that a test can stand in for them; null means the
// desktop's own.
struct ErrorDialogOptions {
    // Sends the report; false with failure filled in when it did not go.
    using Sender = std::function<bool(const QString& description, const QString& email, QString& failure)>;
    using UrlOpener = std::function<bool(const QUrl& url)>;
    using MessageShower =
        std::function<void(QWidget* parent, const QString& caption, const QString& text, MessageIcon icon)>;
    using ConnectionCheck = std::function<bool()>;

    Sender sendDirect;      // null: "Wyślij bezpośrednio" hidden
    QString supportAddress; // for the mail-client link
    QString subject;        // mail subject
    QString programName;    // another program of ours to send with; empty: that button hidden
    Sender sendWithProgram; // hands the report to programName; null: that button disabled

    UrlOpener openUrl;         // default QDesktopServices::openUrl
    MessageShower showMessage; // default a modal QMessageBox
    ConnectionCheck isOnline;  // default QNetworkInformation reporting Online
};

// "Obsługa błędów": the report of a serious error, a place for the user's own
// description and e-mail, and the ways to pass it all to the producer: directly,
// through the mail client, through another program of ours or the clipboard.
// Closing it lets the program go on.
class TFExceptionDlg : public QDialog {
    Q_OBJECT

public:
    TFExceptionDlg(QString report, ErrorDialogOptions options, QWidget* parent = nullptr);

    QString report() const { return report_; }
    QString description() const;
    QString email() const;

    // The report, followed by the description when one was typed.
    QString clipboardText() const;
    // mailto: the support address with the subject and, as the body, the description,
    // a blank line and the report, with CRLF line ends.
    QUrl mailUrl() const;

    void sendDirect();
    void sendWithMailClient();
    void sendWithProgram();
    void copyToClipboard();

    // True when QNetworkInformation says the machine is Online; unknown is not.
    static bool desktopIsOnline();

private:
    void buildLayout();
    QWidget* buildButtonRow();
    QPushButton* addButton(const QString& text, const char* name, const QString& toolTip);
    void fillInDefaults();
    void watchReachability();
    void updateSendButtons();
    void setBusy(bool busy);
    void send(const ErrorDialogOptions::Sender& sender);
    void message(const QString& text, MessageIcon icon);

    QString report_;
    ErrorDialogOptions options_;
    QPlainTextEdit* reportEdit_ = nullptr;
    QPlainTextEdit* descriptionEdit_ = nullptr;
    QLineEdit* emailEdit_ = nullptr;
    QPushButton* directButton_ = nullptr;
    QPushButton* mailButton_ = nullptr;
    QPushButton* programButton_ = nullptr;
    QPushButton* copyButton_ = nullptr;
    QPushButton* closeButton_ = nullptr;
    bool busy_ = false;
};
