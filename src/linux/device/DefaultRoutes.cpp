#include "linux/device/DefaultRoutes.h"

#include "util/Text.h"

#include <algorithm>
#include <sstream>

namespace halvane::linux {

namespace {

constexpr unsigned long long kUp = 0x1;        // RTF_UP
constexpr unsigned long long kReject = 0x200;  // RTF_REJECT

std::vector<std::string> words(const std::string& line) {
    std::istringstream stream(line);
    std::vector<std::string> found;
    for (std::string word; stream >> word;) found.push_back(word);
    return found;
}

bool isZero(const std::string& digits) { return digits.find_first_not_of('0') == std::string::npos; }

void append(std::vector<DefaultRoute>& routes, const std::string& interface, const std::string& flags,
            std::optional<unsigned long long> metric) {
    const auto bits = wholeNumber(flags, 16);
    if (!bits || !metric || (*bits & kUp) == 0 || (*bits & kReject) != 0 || interface == "lo") return;
    routes.push_back({interface, *metric});
}

}  // namespace

std::vector<DefaultRoute> defaultRoutes(const SystemFiles& files) {
    std::vector<DefaultRoute> routes;
    // Iface Destination Gateway Flags RefCnt Use Metric Mask …, the metric in decimal
    for (const auto& line : util::split(files.text("proc/net/route").value_or(""), '\n')) {
        const auto column = words(line);
        if (column.size() >= 8 && isZero(column[1]) && isZero(column[7])) append(routes, column[0], column[3], wholeNumber(column[6]));
    }
    // destination length source length gateway metric references use flags interface, all in hexadecimal
    for (const auto& line : util::split(files.text("proc/net/ipv6_route").value_or(""), '\n')) {
        const auto column = words(line);
        if (column.size() >= 10 && isZero(column[0]) && isZero(column[1])) append(routes, column[9], column[8], wholeNumber(column[5], 16));
    }
    std::ranges::stable_sort(routes, {}, &DefaultRoute::metric);
    return routes;
}

}  // namespace halvane::linux
