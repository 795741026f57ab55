#pragma once

#include <QString>

class HalvarnSession;

// The overall group table and each downloaded herd's group table as aligned text.
QString GroupReport(HalvarnSession& session);
