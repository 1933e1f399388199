#include "http/ChainedBody.h"

#include <algorithm>

namespace halvane::http {

std::optional<std::uint64_t> ChainedBody::length() const {
    std::uint64_t sum = 0;
    for (const auto& piece : pieces_) {
        const auto* memory = std::get_if<Memory>(&piece);
        const auto length = memory != nullptr ? (*memory)->size() : std::get<Body>(piece)->length();
        if (!length) return std::nullopt;
        sum += *length;
    }
    return sum;
}

std::optional<std::size_t> ChainedBody::readPiece(char* buffer, std::size_t capacity) {
    if (const auto* body = std::get_if<Body>(&pieces_[piece_])) return (*body)->read(buffer, capacity);
    const std::size_t count = std::get<Memory>(pieces_[piece_])->copy(buffer, capacity, position_);
    position_ += count;
    return count;
}

std::optional<std::size_t> ChainedBody::read(char* buffer, std::size_t capacity) {
    std::size_t filled = 0;
    while (piece_ < pieces_.size() && filled < capacity) {
        const auto count = readPiece(buffer + filled, capacity - filled);
        if (!count) return std::nullopt;
        filled += *count;
        if (*count > 0) continue;
        ++piece_;
        position_ = 0;
    }
    return filled;
}

bool ChainedBody::rewind() {
    piece_ = 0;
    position_ = 0;
    return std::ranges::all_of(pieces_, [](const auto& piece) {
        const auto* body = std::get_if<Body>(&piece);
        return body == nullptr || (*body)->rewind();
    });
}

}  // namespace halvane::http
