#include "framework/errors/ErrorControl.h"

#include "framework/HalvarnError.h"

#include <QDir>
#include <QFileInfo>

#include <optional>

using namespace Qt::StringLiterals;

namespace {
const QString CloseQuestion = u"W programie ponownie wystąpił błąd. Czy zamknąć program?"_s;

// The message of an error the program raised for the user; none for any other.
std::optional<QString> UserMessage(const std::exception_ptr& error)
{
    try {
        std::rethrow_exception(error);
    } catch (const HalvarnError& forTheUser) {
        return forTheUser.message();
    } catch (...) {
        return std::nullopt;
    }
}
} // namespace

QString ScreenshotFileName(const QDateTime& when, const QString& suffix)
{
    const QString stamp = when.toString(u"yyyyMMdd-HHmmss");
    return (suffix.isEmpty() ? stamp : stamp + u'-' + suffix) + u".jpg"_s;
}

ErrorControl::ErrorControl(ErrorControlSettings settings, ErrorControlHost& host)
    : settings_(std::move(settings)), host_(host)
{}

void ErrorControl::handle(const std::exception_ptr& error)
{
    if (const std::optional<QString> message = UserMessage(error)) {
        host_.showMessage(scrubber().scrub(*message));
        return;
    }
    if (closing_)
        return;
    if (++count_ > 1 && host_.askToClose(CloseQuestion)) {
        closing_ = true;
        host_.closeProgram();
        return;
    }
    report(Describe(error));
}

void ErrorControl::report(const CaughtError& error)
{
    const QString screenshot = takeScreenshot();
    QString text = composeReport(error, QFileInfo(screenshot).fileName());
    if (const QString failure = ErrorLog(settings_.logPath).append(text); !failure.isEmpty())
        text += u"\n\nRaportu nie dopisano do dziennika błędów. "_s + failure;
    host_.showReport(text, screenshot);
}

QString ErrorControl::composeReport(const CaughtError& error, const QString& attachment) const
{
    return scrubber().scrub(ReportLines(error, attachment, settings_.names).join(u'\n'));
}

SecretScrubber ErrorControl::scrubber() const
{
    SecretScrubber scrubber;
    if (secrets_)
        for (const QString& secret : secrets_())
            scrubber.add(secret);
    return scrubber;
}

// Two errors within a second get names of their own.
QString ErrorControl::takeScreenshot()
{
    const QDir folder(settings_.screenshotFolder);
    if (settings_.screenshotFolder.isEmpty() || !folder.exists())
        return {};
    const QDateTime now = QDateTime::currentDateTime();
    QString path = folder.filePath(ScreenshotFileName(now));
    for (int n = 1; QFileInfo::exists(path); ++n)
        path = folder.filePath(ScreenshotFileName(now, QString::number(n)));
    return host_.saveScreenshot(path) ? path : QString();
}
