#pragma once

#include "platform/HttpMessage.h"

#include <memory>
#include <variant>
#include <vector>

namespace halvane::http {

/// Pieces of memory and other bodies, sent one after the other. The length is known when each of theirs is.
class ChainedBody final : public platform::HttpBodyStream {
public:
    void append(std::shared_ptr<const util::Bytes> bytes) { pieces_.emplace_back(std::move(bytes)); }
    void append(std::shared_ptr<platform::HttpBodyStream> body) { pieces_.emplace_back(std::move(body)); }

    [[nodiscard]] std::optional<std::uint64_t> length() const override;
    std::optional<std::size_t> read(char* buffer, std::size_t capacity) override;
    bool rewind() override;

private:
    using Memory = std::shared_ptr<const util::Bytes>;
    using Body = std::shared_ptr<platform::HttpBodyStream>;

    /// Of the piece that is sent now; 0 at its end.
    std::optional<std::size_t> readPiece(char* buffer, std::size_t capacity);

    std::vector<std::variant<Memory, Body>> pieces_;
    std::size_t piece_ = 0;
    std::size_t position_ = 0;  ///< in a piece of memory
};

}  // namespace halvane::http
