#include "gui/window/WindowHost.h"

#include "gui/window/StatusDisplay.h"
#include "gui/window/UserDialogs.h"

#include <QCoreApplication>
#include <QGroupBox>
#include <QPlainTextEdit>
#include <QTextDocument>

namespace {
// Often enough that the window follows the work smoothly and the "Przerwij"
// button answers at once, rarely enough that repainting costs next to nothing.
constexpr qint64 PaintIntervalMs = 40;
} // namespace

WindowHost::WindowHost(UserDialogs& dialogs) : dialogs_(dialogs)
{
    sincePaint_.start();
}

void WindowHost::attach(Widgets widgets, std::function<std::vector<int>()> summaryRows,
                        std::function<void()> modeChanged)
{
    widgets_ = widgets;
    summaryRows_ = std::move(summaryRows);
    modeChanged_ = std::move(modeChanged);
}

void WindowHost::statusModeChanged(bool busy, bool showHerd)
{
    widgets_.status->setMode(busy, showHerd);
    modeChanged_();
    if (!busy && !widgets_.errors->document()->isEmpty())
        widgets_.errorGroup->show();
    widgets_.status->repaint();
    QCoreApplication::processEvents();
    sincePaint_.restart();
}

void WindowHost::statusTextChanged(StatusPanel panel, const QString& text)
{
    widgets_.status->setText(static_cast<StatusDisplay::Panel>(panel), text);
    processPendingEvents();
}

void WindowHost::processPendingEvents()
{
    if (sincePaint_.elapsed() < PaintIntervalMs)
        return;
    QCoreApplication::processEvents();
    sincePaint_.restart();
}

void WindowHost::progressChanged(int bar, int position, int maximum)
{
    widgets_.status->setProgress(bar, position, maximum);
}

void WindowHost::memoAppended(Memo memo, const QString& text)
{
    if (memo == Memo::Errors)
        widgets_.errors->appendPlainText(text);
    else
        pendingLoaded_.append(text);
}

void WindowHost::showLoaded()
{
    if (pendingLoaded_.isEmpty())
        return;
    widgets_.loaded->appendPlainText(pendingLoaded_.join(u'\n'));
    pendingLoaded_.clear();
}

void WindowHost::memoCleared(Memo memo)
{
    if (memo == Memo::Loaded) {
        pendingLoaded_.clear();
        widgets_.loaded->clear();
        return;
    }
    widgets_.errors->clear();
    widgets_.errorGroup->hide();
}

void WindowHost::showMessage(const QString& caption, const QString& text, MessageIcon icon)
{
    dialogs_.message(caption, text, icon);
}

bool WindowHost::askYesNo(const QString& caption, const QString& text)
{
    return dialogs_.question(caption, text);
}

std::optional<QString> WindowHost::askUseDirection()
{
    return dialogs_.useDirection();
}

bool WindowHost::askToResend(const QString& question)
{
    return dialogs_.cautiousQuestion(u"Pytanie"_s, question);
}

std::optional<QString> WindowHost::askHerd()
{
    return dialogs_.herd();
}

void WindowHost::openWithDesktop(const QString& path)
{
    dialogs_.openFile(path);
}
