#pragma once

#include "framework/HalvarnError.h"

// The archive cannot be opened, read or written; the message is for the user.
class ArchiveError : public HalvarnError {
public:
    using HalvarnError::HalvarnError;
};
