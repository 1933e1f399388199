#include "server/updates/PackageName.h"

#include "util/PackageVersion.h"

#include <algorithm>
#include <string_view>

namespace halvane::server {

namespace {

constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kLowerCase = "abcdefghijklmnopqrstuvwxyz";

bool isIn(char c, std::initializer_list<std::string_view> sets) {
    return std::ranges::any_of(sets, [c](std::string_view set) { return set.find(c) != std::string_view::npos; });
}

/// Begins with one of `first`, goes on with those or `others`.
bool isWord(std::string_view text, std::initializer_list<std::string_view> first, std::string_view others) {
    return !text.empty() && isIn(text.front(), first) &&
           std::ranges::all_of(text, [&](char c) { return isIn(c, first) || isIn(c, {others}); });
}

}  // namespace

std::optional<PackageName> PackageName::parse(std::string name, std::string version, std::string architecture) {
    if (name.size() < 2 || !isWord(name, {kDigits, kLowerCase}, "+.-")) return std::nullopt;
    if (!util::PackageVersion::parse(version) || !isWord(architecture, {kDigits, kLowerCase}, "-")) return std::nullopt;
    return PackageName{std::move(name), std::move(version), std::move(architecture)};
}

}  // namespace halvane::server
