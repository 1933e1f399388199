#pragma once

#include <compare>
#include <optional>
#include <string>
#include <string_view>

namespace halvane::util {

/// The version of a Debian package, "[epoch:]upstream[-revision]", in the order in which the package manager sees it:
/// runs of digits count as numbers, "~" stands before the end. A value; any thread.
class PackageVersion {
public:
    /// Absent when the package manager would not take it: its characters are letters, digits and ".+-~:".
    static std::optional<PackageVersion> parse(std::string_view text);

    friend std::strong_ordering operator<=>(const PackageVersion& a, const PackageVersion& b);
    friend bool operator==(const PackageVersion& a, const PackageVersion& b) { return (a <=> b) == 0; }

private:
    std::string epoch_;  ///< digits
    std::string upstream_;
    std::string revision_;
};

}  // namespace halvane::util
