#include "linux/InstanceMessage.h"

namespace halvane::linux {

namespace {

util::Bytes number(std::size_t value) {
    util::Bytes bytes;
    for (int shift = 24; shift >= 0; shift -= 8) bytes.push_back(static_cast<char>(value >> shift & 0xFFU));
    return bytes;
}

/// Takes a number off the front; absent when there are too few bytes.
std::optional<std::size_t> takeNumber(std::string_view& bytes) {
    if (bytes.size() < InstanceMessage::kHeaderSize) return std::nullopt;
    std::size_t value = 0;
    for (std::size_t i = 0; i < InstanceMessage::kHeaderSize; ++i) value = value << 8 | static_cast<unsigned char>(bytes[i]);
    bytes.remove_prefix(InstanceMessage::kHeaderSize);
    return value;
}

}  // namespace

std::optional<util::Bytes> InstanceMessage::encode(const std::vector<std::string>& arguments) {
    util::Bytes body;
    for (const auto& argument : arguments) {
        if (argument.size() > kLargestBody || body.size() > kLargestBody) return std::nullopt;
        body += number(argument.size()) + argument;
    }
    if (body.size() > kLargestBody) return std::nullopt;
    return number(body.size()) + body;
}

std::optional<std::size_t> InstanceMessage::bodySize(std::string_view header) {
    const auto size = takeNumber(header);
    return size && *size <= kLargestBody ? size : std::nullopt;
}

std::optional<std::vector<std::string>> InstanceMessage::decode(std::string_view body) {
    std::vector<std::string> arguments;
    while (!body.empty()) {
        const auto size = takeNumber(body);
        if (!size || *size > body.size()) return std::nullopt;
        arguments.emplace_back(body.substr(0, *size));
        body.remove_prefix(*size);
    }
    return arguments;
}

}  // namespace halvane::linux
