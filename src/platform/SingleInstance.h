#pragma once

#include <functional>
#include <string>
#include <vector>

namespace halvane::platform {

/// Keeps a user's session to one running client. Main thread.
class SingleInstance {
public:
    enum class Role {
        First,  ///< this process is the client; it now listens for later starts
        Later   ///< another one runs; it took the arguments over and raises itself
    };
    /// Arguments of a later start, without the program's name.
    using Handover = std::function<void(const std::vector<std::string>& arguments)>;

    virtual ~SingleInstance() = default;
    /// Finds out which this process is; waits at most 2 s for a running one. A running one that does
    /// not answer is taken for dead and replaced.
    virtual Role enter(const std::vector<std::string>& arguments, Handover onLaterStart) = 0;
};

}  // namespace halvane::platform
