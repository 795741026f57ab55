#include "gui/errors/HalvarnApplication.h"
#include "gui/errors/WindowErrorHost.h"
#include "support/RecordingErrorHost.h"

#include <QImageReader>
#include <QLabel>
#include <QTemporaryDir>
#include <QTest>

#include <stdexcept>

using namespace Qt::StringLiterals;

namespace {
// A widget whose handler of one kind of event fails, as a command's handler might.
class FailingWidget : public QLabel {
public:
    static constexpr QEvent::Type Failing = QEvent::User;

protected:
    bool event(QEvent* e) override
    {
        if (e->type() == Failing)
            throw std::out_of_range("wiersz 12 poza tabelą");
        return QLabel::event(e);
    }
};
} // namespace

// Exceptions that escape an event handler reach the error control through the
// application; the window's host takes the screenshot.
class TestErrorHandling : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anExceptionFromAnEventHandlerIsReported()
    {
        QTemporaryDir folder;
        RecordingErrorHost host;
        ErrorControl control({folder.filePath(u"BLEDY.LOG"_s), {}, {u"Fernhill"_s, u"Halvarn"_s}}, host);
        static_cast<HalvarnApplication*>(qApp)->setErrorControl(&control);
        FailingWidget widget;
        QCoreApplication::postEvent(&widget, new QEvent(FailingWidget::Failing));
        QCoreApplication::processEvents();
        static_cast<HalvarnApplication*>(qApp)->setErrorControl(nullptr);
        QCOMPARE(host.reports.size(), 1);
        const QStringList lines = host.reports.front().split(u'\n');
        QVERIFY2(lines[0].startsWith(u"Exception std::out_of_range "_s), qPrintable(lines[0]));
        QCOMPARE(lines[1], u"wiersz 12 poza tabelą"_s);
        QCOMPARE(lines[4], u" CallStack:"_s);
        QCOMPARE(lines.last(), u"Halvarn"_s);
    }

    void theScreenshotShowsTheProgramsWindows()
    {
        QTemporaryDir folder;
        QLabel window(u"Halvarn"_s);
        window.resize(320, 200);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        WindowErrorHost host({}, {}, {});
        const QString path = folder.filePath(u"20261123-101500.jpg"_s);
        QVERIFY(host.saveScreenshot(path));
        QImageReader reader(path);
        QCOMPARE(reader.format(), QByteArray("jpeg"));
        QVERIFY(reader.size().width() >= 320 && reader.size().height() >= 200);
    }
};

int main(int argc, char* argv[])
{
    HalvarnApplication app(argc, argv);
    TestErrorHandling test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_error_handling.moc"
