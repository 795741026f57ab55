#pragma once

#include <QStatusBar>

#include <array>

class QHBoxLayout;
class QLabel;
class QProgressBar;

// The status bar's nine panels: general text, current herd, current step, both
// progress bars, the version and today's date. Idle shows the general text;
// busy shows the herd (when asked), the step and the progress bars.
class StatusDisplay : public QStatusBar {
    Q_OBJECT

public:
    static constexpr int PanelCount = 9;
    enum Panel { General = 0, Herd = 2, Step = 3, Progress1 = 5, Progress2 = 6, Version = 7, Today = 8 };

    explicit StatusDisplay(QWidget* parent = nullptr);

    void setMode(bool busy, bool showHerd);
    void setText(Panel panel, const QString& text);
    QString text(Panel panel) const;
    void setProgress(int bar, int position, int maximum);
    QProgressBar* progressBar(int bar) const { return bar == 1 ? bar1_ : bar2_; }
    QWidget* panel(int index) const { return panels_[static_cast<std::size_t>(index)]; }
    bool busy() const { return busy_; }
    // "TEST" beside the panels while requests go to the registry's test branch.
    void setTestBranch(bool on);

private:
    QLabel* addLabel(int index, int width);
    QProgressBar* addProgressBar(int index);
    void addHidden(int index);

    QHBoxLayout* layout_ = nullptr;
    std::array<QWidget*, PanelCount> panels_{};
    QProgressBar* bar1_ = nullptr;
    QProgressBar* bar2_ = nullptr;
    QLabel* testBranch_ = nullptr;
    bool busy_ = false;
};
