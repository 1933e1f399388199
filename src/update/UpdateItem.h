#pragma once

#include <cstdint>
#include <string>

namespace halvane::update {

/// One package that the feed offers. A plain value; what stands in it was signed.
struct UpdateItem {
    std::string version;
    std::string package;        ///< the package's name
    std::string architecture;   ///< as the package manager calls it
    std::string minimumSystem;  ///< lowest version of the operating system; empty for any
    std::string notes;          ///< plain text, in lines; empty for none
    std::string url;            ///< absolute, or seen from the feed
    std::uint64_t length = 0;   ///< of the package, in bytes
    std::string signature;      ///< of the package's bytes, base64

    friend bool operator==(const UpdateItem&, const UpdateItem&) = default;
};

}  // namespace halvane::update
