#pragma once

#include "util/Log.h"

namespace halvane::linux {

/// What GLib, and libraries that speak through it, warn about comes to the log, for as long as this lives; before and
/// afterwards it goes where GLib writes by itself. Messages for debugging are dropped unless G_MESSAGES_DEBUG wants them.
/// One at a time; messages come from any thread, and at its end none may be on its way.
class GlibMessages {
public:
    explicit GlibMessages(util::Log& log);
    ~GlibMessages();
    GlibMessages(const GlibMessages&) = delete;
    GlibMessages& operator=(const GlibMessages&) = delete;
};

}  // namespace halvane::linux
