#pragma once

#include "support/ChildProcess.h"
#include "support/TemporaryDirectory.h"

#include <optional>
#include <string>

namespace halvane::test {

/// A bus daemon of the test's own, on a socket in a directory of its own, with nobody on it and
/// nobody who could be started.
class PrivateBus {
public:
    PrivateBus();

    [[nodiscard]] const std::string& address() const { return address_; }

private:
    TemporaryDirectory directory_;
    std::string address_;
    std::optional<ChildProcess> daemon_;
};

}  // namespace halvane::test
