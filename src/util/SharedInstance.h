#pragma once

#include <functional>
#include <memory>
#include <stdexcept>
#include <utility>

namespace halvane::util {

/// Behind an accessor such as `HDCLUserConfig::sharedUser()`: the one instance of a class that a
/// process has. The assembly says at start how it is made; the first `get` makes it, under the
/// language's once-only guard of a local static. Classes keep ordinary constructors for tests.
template <typename T>
class SharedInstance {
public:
    using Maker = std::function<std::unique_ptr<T>()>;

    /// Main thread, before the first `get`.
    static void setMaker(Maker maker) { makerSlot() = std::move(maker); }

    /// Any thread. Without a maker, or with one that makes nothing, the program is put together
    /// wrongly: throws std::logic_error.
    static T& get() {
        static const std::unique_ptr<T> instance = make();
        return *instance;
    }

private:
    static Maker& makerSlot() {
        static Maker maker;
        return maker;
    }
    static std::unique_ptr<T> make() {
        auto made = makerSlot() ? makerSlot()() : nullptr;
        if (!made) throw std::logic_error("shared instance asked for before the assembly said how it is made");
        return made;
    }
};

}  // namespace halvane::util
