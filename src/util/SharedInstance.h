#pragma once

#include <atomic>
#include <stdexcept>

namespace halvane::util {

/// Behind an accessor such as `HDCLUserConfig::sharedUser()`: the one instance of a class that a
/// process has. The assembly owns it and names it here, for as long as it lives; classes keep
/// ordinary constructors, and tests make instances of their own.
template <typename T>
class SharedInstance {
public:
    /// Null takes the instance back. Any thread.
    static void set(T* instance) { slot().store(instance); }

    /// Any thread. Asking while there is none means that the program is put together wrongly: throws
    /// std::logic_error.
    static T& get() {
        T* const instance = slot().load();
        if (instance == nullptr) throw std::logic_error("a shared instance was asked for before the assembly made it");
        return *instance;
    }

private:
    static std::atomic<T*>& slot() {
        static std::atomic<T*> instance{nullptr};
        return instance;
    }
};

}  // namespace halvane::util
