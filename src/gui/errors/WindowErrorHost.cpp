#include "gui/errors/WindowErrorHost.h"

#include "framework/DataFolder.h"
#include "framework/HalvarnError.h"
#include "framework/SafeFile.h"
#include "framework/mail/MailSettings.h"
#include "framework/mail/SmtpSender.h"

#include <QApplication>
#include <QBuffer>
#include <QMessageBox>
#include <QPainter>
#include <QPixmap>
#include <QProgressDialog>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace {
QWidget* ActiveWindow()
{
    return QApplication::activeWindow();
}

std::vector<QWidget*> VisibleWindows()
{
    std::vector<QWidget*> windows;
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (widget->isVisible() && !widget->geometry().isEmpty())
            windows.push_back(widget);
    return windows;
}
} // namespace

WindowErrorHost::WindowErrorHost(QString supportAddress, QString subject, Mailer mailer) : mailer_(std::move(mailer))
{
    options_.supportAddress = std::move(supportAddress);
    options_.subject = std::move(subject);
}

// The mail goes while a progress window turns; its button stops the sending.
WindowErrorHost WindowErrorHost::fromSettings(const DataFolder& folder)
{
    QStringList problems;
    const MailSettings settings = MailSettings::read(folder.commonSettingsFile(), problems);
    const QString version = QCoreApplication::applicationVersion();
    Mailer mailer;
    if (settings.configured() && settings.refusal().isEmpty())
        mailer = [settings, version](const ErrorMailInput& report, QString& failure) {
            QProgressDialog progress(u"Wysyłanie raportu błędu…"_s, u"Przerwij"_s, 0, 0, ActiveWindow());
            progress.setWindowModality(Qt::WindowModal);
            progress.setMinimumDuration(0);
            progress.show();
            try {
                const ErrorMail mail = ErrorMail::compose(settings, report, version, LibraryVersions());
                const SendResult result = SmtpSender::send(settings, mail, [&progress] {
                    QCoreApplication::processEvents();
                    return progress.wasCanceled();
                });
                failure = result.message;
                return result.sent();
            } catch (const HalvarnError& error) {
                failure = error.message();
                return false;
            }
        };
    return {settings.support, ErrorMailSubject(version), std::move(mailer)};
}

void WindowErrorHost::showMessage(const QString& text)
{
    QMessageBox::critical(ActiveWindow(), u"Błąd"_s, text);
}

bool WindowErrorHost::askToClose(const QString& question)
{
    QMessageBox box(QMessageBox::Critical, QApplication::applicationName(), question,
                    QMessageBox::Yes | QMessageBox::No, ActiveWindow());
    box.setDefaultButton(QMessageBox::No);
    return box.exec() == QMessageBox::Yes;
}

void WindowErrorHost::closeProgram()
{
    QApplication::closeAllWindows();
    QApplication::exit(1);
}

// Every visible window of the program where it stands on the screen, in one picture.
bool WindowErrorHost::saveScreenshot(const QString& path)
{
    const std::vector<QWidget*> windows = VisibleWindows();
    if (windows.empty())
        return false;
    QRect area;
    for (const QWidget* window : windows)
        area = area.united(window->geometry());
    QImage picture(area.size(), QImage::Format_RGB32);
    picture.fill(Qt::darkGray);
    QPainter painter(&picture);
    for (QWidget* window : windows)
        painter.drawPixmap(window->geometry().topLeft() - area.topLeft(), window->grab());
    painter.end();
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    if (!buffer.open(QIODevice::WriteOnly) || !picture.save(&buffer, "JPG", 85))
        return false;
    try {
        WriteFileAtomically(path, jpeg, FileAccess::Private);
        return true;
    } catch (const FileWriteError&) {
        return false;
    }
}

void WindowErrorHost::showReport(const QString& report, const QString& screenshot)
{
    ErrorDialogOptions options = options_;
    if (mailer_)
        options.sendDirect = [this, report, screenshot](const QString& description, const QString& email,
                                                        QString& failure) {
            return mailer_({description, report, email, screenshot}, failure);
        };
    TFExceptionDlg dialog(report, options, ActiveWindow());
    dialog.exec();
}
