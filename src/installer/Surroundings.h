#pragma once

namespace halvane::installer {

/// What a process gets from whoever started it.
struct Surroundings {
    /// Lets go of it: signals, limits, priority, environment, session, standard error. The package manager is not to be stopped in the
    /// middle, whatever becomes of who called us, and nothing that an ordinary user can set reaches it. Once, at the beginning; for the
    /// administrator.
    static void leave();
};

}  // namespace halvane::installer
