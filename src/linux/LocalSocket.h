#pragma once

#include "linux/base/Descriptor.h"
#include "util/Bytes.h"

#include <chrono>
#include <filesystem>
#include <optional>
#include <string_view>

namespace halvane::linux {

/// A stream socket between processes of one user. Nothing waits beyond its deadline. A path may be
/// longer than socket addresses are. One thread at a time.
class LocalSocket {
public:
    using Deadline = std::chrono::steady_clock::time_point;

    LocalSocket() = default;

    /// Replaces what stands at `path`. Not open when that fails.
    static LocalSocket listenAt(const std::filesystem::path& path);
    /// Not open when nobody listens there, or somebody who is not this user.
    static LocalSocket connectTo(const std::filesystem::path& path);
    /// The next caller that is this user; not open when there is none now.
    [[nodiscard]] LocalSocket accept() const;

    explicit operator bool() const { return static_cast<bool>(socket_); }
    [[nodiscard]] int descriptor() const { return socket_.get(); }

    bool send(std::string_view bytes, Deadline deadline) const;
    /// Exactly `size` bytes; absent when the other side ended or is too slow.
    [[nodiscard]] std::optional<util::Bytes> receive(std::size_t size, Deadline deadline) const;

private:
    explicit LocalSocket(Descriptor socket) : socket_(std::move(socket)) {}

    Descriptor socket_;
};

}  // namespace halvane::linux
