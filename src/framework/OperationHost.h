#pragma once

#include "framework/UserPrompts.h"

#include <QString>

#include <optional>
#include <vector>

enum class Memo { Errors, Loaded }; // mErrors, mLoaded
enum class StatusPanel { Herd = 2, Step = 3 };

// What a long operation (download, clearing, exports, prints, use-direction
// change) needs from whoever runs it: the window, the command-line program or a
// test. Operations are written once against this and never against a widget;
// messages and questions come from UserPrompts.
class OperationHost : public UserPrompts {
public:
    virtual void statusModeChanged(bool busy, bool showHerd) = 0;
    // Called for every status text; a window repaints here so it stays drawn.
    virtual void statusTextChanged(StatusPanel panel, const QString& text) = 0;
    virtual void progressChanged(int bar, int position, int maximum) = 0;
    virtual void memoAppended(Memo memo, const QString& text) = 0;
    virtual void memoCleared(Memo memo) = 0;
    // Asked between animals of a download; true stops it.
    virtual bool cancelRequested() { return false; }

    // The herd a print or export is for: "ALL", "000" or a herd code; none when cancelled.
    virtual std::optional<QString> askHerd() = 0;
    // Rows of mdRZ00 as the summary grid shows them now (filter, sort, grouping applied).
    virtual std::vector<int> summaryRowsInDisplayOrder() = 0;
    // The new use direction's code for the marked animals; none when cancelled.
    virtual std::optional<QString> askUseDirection() { return std::nullopt; }
    // Whether to send again a notice that may already have reached the registry.
    // The safe answer is no: it is the default, and a host that cannot ask gives it.
    virtual bool askToResend(const QString& /*question*/) { return false; }
    // Opens a written file with the desktop's application for its type.
    virtual void openWithDesktop(const QString& path) = 0;
};
