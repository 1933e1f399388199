#pragma once

#include "util/Log.h"

#include <QtGlobal>

namespace halvane::qt {

/// What Qt warns about comes to the log, for as long as this lives. One at a time; messages come from any thread, and at
/// its end none may be on its way.
class QtMessages {
public:
    explicit QtMessages(util::Log& log);
    ~QtMessages();
    QtMessages(const QtMessages&) = delete;
    QtMessages& operator=(const QtMessages&) = delete;

private:
    const QtMessageHandler before_;
};

}  // namespace halvane::qt
