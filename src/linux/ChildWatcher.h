#pragma once

#include "linux/base/Descriptor.h"

#include <sys/types.h>

#include <functional>
#include <memory>
#include <thread>

namespace halvane::linux {

/// Waits for children of this process on one thread of its own, which begins with the first child.
/// Any thread may call. Destroying it, which a callback may do, ends the watching: a callback that
/// runs is waited for, the others never come.
class ChildWatcher {
public:
    /// `exitStatus`: the exit code, 128 + signal, or -1 when somebody else collected the child.
    using Ended = std::function<void(int exitStatus)>;

    ChildWatcher();
    ~ChildWatcher();
    ChildWatcher(const ChildWatcher&) = delete;
    ChildWatcher& operator=(const ChildWatcher&) = delete;

    /// Collects `child` when it ends and calls `onEnded` once, on the watcher's thread. An empty
    /// `onEnded` only collects it.
    void watch(pid_t child, Ended onEnded);

private:
    struct Child;
    class State;
    std::shared_ptr<State> state_;
};

}  // namespace halvane::linux
