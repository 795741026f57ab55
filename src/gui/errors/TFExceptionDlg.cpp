#include "gui/errors/TFExceptionDlg.h"

#include "gui/preview/MessageBoxIcon.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QNetworkInformation>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScopeGuard>
#include <QUrl>
#include <QUrlQuery>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace {
const QString Caption = u"Obsługa błędów"_s;
const QString SendToolTip = u"Wysyła pocztą elektroniczną informację o błędzie\ndo producenta programu."_s;
const QColor WarningRed(215, 0, 0);

bool OpenWithDesktop(const QUrl& url)
{
    return QDesktopServices::openUrl(url);
}

void ShowMessageBox(QWidget* parent, const QString& caption, const QString& text, MessageIcon icon)
{
    QMessageBox box(MessageBoxIcon(icon), caption, text, QMessageBox::Ok, parent);
    box.exec();
}

QLabel* NamedLabel(const QString& text, const char* name, QWidget* buddy = nullptr)
{
    auto* label = new QLabel(text);
    label->setObjectName(QLatin1StringView(name));
    label->setBuddy(buddy);
    return label;
}

void PaintRed(QLabel& label)
{
    QPalette palette = label.palette();
    palette.setColor(QPalette::WindowText, WarningRed);
    label.setPalette(palette);
}

QLabel* HeadingLabel()
{
    QLabel* heading = NamedLabel(u"W programie wystąpił poważny błąd.\nProszę przekazać tę informację do producenta:"_s,
                                 "lblHeading");
    QFont font = heading->font();
    font.setBold(true);
    heading->setFont(font);
    PaintRed(*heading);
    return heading;
}

// Mail clients expect CRLF whatever line ends the report came with.
QString WithCrLf(QString text)
{
    text.replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n');
    return text.replace(u'\n', u"\r\n"_s);
}

// Encoded in full, so that '+', '&' and '=' in the text reach the mail client as they are.
QString QueryValue(const QString& text)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(text));
}
} // namespace

TFExceptionDlg::TFExceptionDlg(QString report, ErrorDialogOptions options, QWidget* parent)
    : QDialog(parent), report_(std::move(report)), options_(std::move(options))
{
    setObjectName(u"TFExceptionDlg"_s);
    setWindowTitle(Caption);
    fillInDefaults();
    buildLayout();
    updateSendButtons();
    watchReachability();
    descriptionEdit_->setFocus();
    resize(720, 560);
}

void TFExceptionDlg::fillInDefaults()
{
    if (!options_.openUrl)
        options_.openUrl = OpenWithDesktop;
    if (!options_.showMessage)
        options_.showMessage = ShowMessageBox;
    if (!options_.isOnline)
        options_.isOnline = desktopIsOnline;
}

void TFExceptionDlg::buildLayout()
{
    reportEdit_ = new QPlainTextEdit(report_);
    reportEdit_->setObjectName(u"MReport"_s);
    reportEdit_->setReadOnly(true);
    reportEdit_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    reportEdit_->setLineWrapMode(QPlainTextEdit::NoWrap);
    reportEdit_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));

    descriptionEdit_ = new QPlainTextEdit;
    descriptionEdit_->setObjectName(u"MDescription"_s);
    descriptionEdit_->setTabChangesFocus(true);

    emailEdit_ = new QLineEdit;
    emailEdit_->setObjectName(u"Edit1"_s);
    QLabel* emailLabel =
        NamedLabel(u"Twój adres e-mail (do odpowiedzi). Nie akceptujemy załącznikow mail-i w formacie MS Office"_s,
                   "lblEmail", emailEdit_);
    PaintRed(*emailLabel);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(HeadingLabel());
    layout->addWidget(reportEdit_, 3);
    layout->addSpacing(4);
    layout->addWidget(NamedLabel(u"Dodatkowe informacje:"_s, "lblDescription", descriptionEdit_));
    layout->addWidget(descriptionEdit_, 1);
    layout->addSpacing(4);
    layout->addWidget(emailLabel);
    layout->addWidget(emailEdit_);
    layout->addSpacing(4);
    layout->addWidget(buildButtonRow());
}

QWidget* TFExceptionDlg::buildButtonRow()
{
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    directButton_ = addButton(u"W&yślij bezpośrednio"_s, "BSave", SendToolTip);
    mailButton_ = addButton(u"Wyślij O&utlookiem"_s, "Button1", SendToolTip);
    programButton_ = addButton(u"Wyślij programem: '"_s + options_.programName + u'\'', "BSend", SendToolTip);
    copyButton_ = addButton(u"&Kopiuj"_s, "BCopy", u"Kopiuje do schowka informację o błędzie."_s);
    closeButton_ = addButton(u"&Zamknij"_s, "BClose", u"Zamyka to okno..."_s);
    // Enter in the e-mail field must neither send nor close; copying is harmless.
    copyButton_->setDefault(true);

    directButton_->setVisible(static_cast<bool>(options_.sendDirect));
    programButton_->setVisible(!options_.programName.isEmpty());

    connect(directButton_, &QPushButton::clicked, this, &TFExceptionDlg::sendDirect);
    connect(mailButton_, &QPushButton::clicked, this, &TFExceptionDlg::sendWithMailClient);
    connect(programButton_, &QPushButton::clicked, this, &TFExceptionDlg::sendWithProgram);
    connect(copyButton_, &QPushButton::clicked, this, &TFExceptionDlg::copyToClipboard);
    connect(closeButton_, &QPushButton::clicked, this, &QDialog::reject);

    for (QPushButton* button : {directButton_, mailButton_, programButton_})
        layout->addWidget(button);
    layout->addStretch();
    layout->addWidget(copyButton_);
    layout->addWidget(closeButton_);
    return row;
}

QPushButton* TFExceptionDlg::addButton(const QString& text, const char* name, const QString& toolTip)
{
    auto* button = new QPushButton(text, this);
    button->setObjectName(QLatin1StringView(name));
    button->setToolTip(toolTip);
    return button;
}

void TFExceptionDlg::watchReachability()
{
    if (const QNetworkInformation* info = QNetworkInformation::instance())
        connect(info, &QNetworkInformation::reachabilityChanged, this, &TFExceptionDlg::updateSendButtons);
}

void TFExceptionDlg::updateSendButtons()
{
    const bool usable = !options_.programName.isEmpty() && options_.sendWithProgram;
    programButton_->setEnabled(!busy_ && usable && options_.isOnline());
}

void TFExceptionDlg::setBusy(bool busy)
{
    busy_ = busy;
    if (busy)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
    for (QPushButton* button : {directButton_, mailButton_, copyButton_, closeButton_})
        button->setEnabled(!busy);
    updateSendButtons();
}

QString TFExceptionDlg::description() const
{
    return descriptionEdit_->toPlainText().trimmed();
}

QString TFExceptionDlg::email() const
{
    return emailEdit_->text().trimmed();
}

QString TFExceptionDlg::clipboardText() const
{
    if (description().isEmpty())
        return report_;
    return report_ + u"\n\nDodatkowe informacje:\n"_s + description();
}

QUrl TFExceptionDlg::mailUrl() const
{
    const QString body = description().isEmpty() ? report_ : description() + u"\n\n"_s + report_;
    QUrlQuery query;
    query.addQueryItem(u"subject"_s, QueryValue(options_.subject));
    query.addQueryItem(u"body"_s, QueryValue(WithCrLf(body)));
    QUrl url;
    url.setScheme(u"mailto"_s);
    url.setPath(options_.supportAddress);
    url.setQuery(query);
    return url;
}

void TFExceptionDlg::sendDirect()
{
    send(options_.sendDirect);
}

void TFExceptionDlg::sendWithProgram()
{
    send(options_.sendWithProgram);
}

void TFExceptionDlg::sendWithMailClient()
{
    if (email().isEmpty()) {
        message(u"Podaj swój adres e-mail."_s, MessageIcon::Warning);
        emailEdit_->setFocus();
        return;
    }
    options_.openUrl(mailUrl());
}

void TFExceptionDlg::copyToClipboard()
{
    QGuiApplication::clipboard()->setText(clipboardText());
}

// A failure leaves the dialog open, so that the report can still be copied.
void TFExceptionDlg::send(const ErrorDialogOptions::Sender& sender)
{
    if (!sender)
        return;
    QString failure;
    bool sent = false;
    {
        setBusy(true);
        const auto idle = qScopeGuard([this] { setBusy(false); });
        sent = sender(description(), email(), failure);
    }
    if (!sent) {
        message(failure, MessageIcon::Warning);
        return;
    }
    message(u"Raport został wysłany. Dziękujemy."_s, MessageIcon::Information);
    accept();
}

void TFExceptionDlg::message(const QString& text, MessageIcon icon)
{
    options_.showMessage(this, Caption, text, icon);
}

bool TFExceptionDlg::desktopIsOnline()
{
    if (!QNetworkInformation::instance())
        QNetworkInformation::loadDefaultBackend();
    const QNetworkInformation* info = QNetworkInformation::instance();
    return info && info->reachability() == QNetworkInformation::Reachability::Online;
}
