#include "util/Base64.h"

#include <openssl/evp.h>

#include <algorithm>

namespace halvane::util {

std::string Base64::encode(std::string_view bytes) {
    std::string text(4 * ((bytes.size() + 2) / 3) + 1, '\0');
    const int length = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), reinterpret_cast<const unsigned char*>(bytes.data()),
                                       static_cast<int>(bytes.size()));
    text.resize(static_cast<std::size_t>(length));
    return text;
}

std::optional<Bytes> Base64::decode(std::string_view text) {
    if (text.size() % 4 != 0) return std::nullopt;
    const auto padding = static_cast<std::size_t>(std::ranges::count(text.substr(text.size() < 2 ? 0 : text.size() - 2), '='));
    Bytes bytes(text.size() / 4 * 3 + 1, '\0');
    const int length = EVP_DecodeBlock(reinterpret_cast<unsigned char*>(bytes.data()), reinterpret_cast<const unsigned char*>(text.data()),
                                       static_cast<int>(text.size()));
    if (length < 0) return std::nullopt;
    bytes.resize(static_cast<std::size_t>(length) - padding);
    return bytes;
}

}  // namespace halvane::util
