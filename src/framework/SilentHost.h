#pragma once

#include "framework/OperationHost.h"

// The host of work nobody watches, such as a session of its own that reads a
// stored download: it hears nothing, shows nothing and answers No.
class SilentHost : public OperationHost {
public:
    void statusModeChanged(bool, bool) override {}
    void statusTextChanged(StatusPanel, const QString&) override {}
    void progressChanged(int, int, int) override {}
    void memoAppended(Memo, const QString&) override {}
    void memoCleared(Memo) override {}
    void showMessage(const QString&, const QString&, MessageIcon) override {}
    bool askYesNo(const QString&, const QString&) override { return false; }
    std::optional<QString> askHerd() override { return std::nullopt; }
    std::vector<int> summaryRowsInDisplayOrder() override { return {}; }
    void openWithDesktop(const QString&) override {}
};
