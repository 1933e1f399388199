#pragma once

#include "util/Bytes.h"
#include "util/Result.h"

#include <cstddef>
#include <optional>
#include <string>

namespace halvane::platform {

/// The computer's network interfaces. "en0" means the primary one: the physical interface with the
/// best route, else the first physical one; never a tunnel or a bridge. Any thread.
class NetworkInterfaces {
public:
    virtual ~NetworkInterfaces() = default;
    /// The interface's number; 0 when there is none of that name.
    [[nodiscard]] virtual unsigned indexOf(const std::string& name) const = 0;
    /// Length of the list of the interface's addresses; absent when the system refuses to tell.
    [[nodiscard]] virtual std::optional<std::size_t> addressListLength(unsigned index) const = 0;
    /// The six bytes of the link-layer address, out of a list of `length` bytes. Errors are of the
    /// "halvane.file" domain: ENOMEM when a list of that length cannot be held, else why it cannot be read.
    [[nodiscard]] virtual util::Result<util::Bytes> linkAddress(unsigned index, std::size_t length) const = 0;
};

}  // namespace halvane::platform
