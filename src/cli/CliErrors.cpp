#include "cli/CliErrors.h"

#include "framework/DataFolder.h"
#include "framework/HalvarnError.h"
#include "framework/errors/CrashRecord.h"
#include "framework/errors/ErrorControl.h"
#include "framework/errors/ErrorReport.h"

#include <QTextStream>

namespace {
// The terminal as the host of the error control: the report goes to stderr.
class CliErrorHost : public ErrorControlHost {
public:
    void showMessage(const QString& text) override { QTextStream(stderr) << text << Qt::endl; }
    bool askToClose(const QString&) override { return true; }
    void closeProgram() override {}
    bool saveScreenshot(const QString&) override { return false; }
    void showReport(const QString& report, const QString&) override { QTextStream(stderr) << report << Qt::endl; }
};
} // namespace

QString ReportUnhandled(const std::exception_ptr& error, const QString& dataDir, const QStringList& secrets)
{
    const DataFolder folder(DataFolder::resolve(dataDir));
    folder.prepare();
    CliErrorHost host;
    ErrorControl control({folder.errorLog(), {}, ProgramNames()}, host);
    control.setSecrets([secrets] { return secrets; });
    const CaughtError caught = Describe(error);
    control.report(caught);
    return caught.message;
}

int RunGuarded(const QString& dataDir, const QStringList& secrets, int userErrorExit,
               const std::function<int()>& command)
{
    InstallCrashRecorder(DataFolder(DataFolder::resolve(dataDir)).crashRecord());
    try {
        return command();
    } catch (const HalvarnError& failure) {
        QTextStream(stderr) << failure.message() << Qt::endl;
        return userErrorExit;
    } catch (...) {
        ReportUnhandled(std::current_exception(), dataDir, secrets);
        return UnhandledErrorExit;
    }
}
