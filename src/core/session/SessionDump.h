#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

class HalvarnSession;

struct ShownMessage {
    QString caption;
    QString text;
};

// The whole state of a session as one JSON document: herd count, slots, every
// working table row by row, the memos and the messages shown.
QByteArray DumpSessionJson(HalvarnSession& session, const std::vector<ShownMessage>& messages);
