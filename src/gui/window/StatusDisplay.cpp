#include "gui/window/StatusDisplay.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>

using namespace Qt::StringLiterals;

StatusDisplay::StatusDisplay(QWidget* parent) : QStatusBar(parent)
{
    setObjectName(u"dxStatusBar1"_s);
    setSizeGripEnabled(false);
    auto* strip = new QWidget(this);
    layout_ = new QHBoxLayout(strip);
    layout_->setContentsMargins(0, 0, 0, 0);
    layout_->setSpacing(4);
    addWidget(strip, 1);

    addLabel(General, 100);
    addHidden(1);
    addLabel(Herd, 60);
    addLabel(Step, 220);
    addHidden(4);
    bar1_ = addProgressBar(Progress1);
    bar2_ = addProgressBar(Progress2);
    testBranch_ = new QLabel(u"TEST"_s, this);
    testBranch_->setObjectName(u"lblTestBranch"_s);
    testBranch_->setToolTip(u"Zapytania i zgłoszenia trafiają do gałęzi testowej rejestru"_s);
    testBranch_->setStyleSheet(
        u"QLabel { background: rgb(215, 0, 0); color: white; font-weight: bold; padding: 0 6px; }"_s);
    testBranch_->hide();
    layout_->addWidget(testBranch_);
    addLabel(Version, 80)->setText(u"Ver.: "_s + QCoreApplication::applicationVersion());
    addLabel(Today, 110);
    setMode(false, false);
}

QLabel* StatusDisplay::addLabel(int index, int width)
{
    auto* label = new QLabel(this);
    label->setObjectName(u"StatusPanel%1"_s.arg(index));
    label->setFrameShape(QFrame::StyledPanel);
    label->setMinimumWidth(width);
    layout_->addWidget(label);
    panels_[static_cast<std::size_t>(index)] = label;
    return label;
}

QProgressBar* StatusDisplay::addProgressBar(int index)
{
    auto* bar = new QProgressBar(this);
    bar->setObjectName(u"cxProgressBar%1"_s.arg(index == Progress1 ? 1 : 2));
    bar->setMinimumWidth(100);
    bar->setTextVisible(false);
    bar->setRange(0, 100);
    bar->setValue(0);
    layout_->addWidget(bar);
    panels_[static_cast<std::size_t>(index)] = bar;
    return bar;
}

// Panels 1 and 4 hold nothing the user needs; they are kept hidden in both modes.
void StatusDisplay::addHidden(int index)
{
    auto* panel = new QWidget(this);
    panel->setObjectName(u"StatusPanel%1"_s.arg(index));
    panel->hide();
    layout_->addWidget(panel);
    panels_[static_cast<std::size_t>(index)] = panel;
}

void StatusDisplay::setMode(bool busy, bool showHerd)
{
    busy_ = busy;
    panel(General)->setVisible(!busy);
    panel(Herd)->setVisible(busy && showHerd);
    for (int index : {Step, Progress1, Progress2})
        panel(index)->setVisible(busy);
    if (busy) {
        setText(Herd, QString());
        setText(Step, QString());
    }
    // Idle: the general text takes the free width; busy: the progress bars do.
    layout_->setStretchFactor(panel(General), busy ? 0 : 1);
    layout_->setStretchFactor(panel(Progress1), busy ? 1 : 0);
    layout_->setStretchFactor(panel(Progress2), busy ? 1 : 0);
}

void StatusDisplay::setTestBranch(bool on)
{
    testBranch_->setVisible(on);
}

void StatusDisplay::setText(Panel panel, const QString& text)
{
    static_cast<QLabel*>(panels_[static_cast<std::size_t>(panel)])->setText(text);
}

QString StatusDisplay::text(Panel panel) const
{
    return static_cast<QLabel*>(panels_[static_cast<std::size_t>(panel)])->text();
}

void StatusDisplay::setProgress(int bar, int position, int maximum)
{
    QProgressBar* target = progressBar(bar);
    target->setMaximum(maximum);
    target->setValue(position);
}
