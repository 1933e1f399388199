#pragma once

#include "HttpContestant.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace halvane::bench {

struct SmallContestant {
    std::string name;
    std::function<std::unique_ptr<HttpContestant>(const std::string& url)> make;
};

// Who takes part, topic by topic; the first of each list is the measure of the others.

[[nodiscard]] std::vector<SmallContestant> smallContestants();

}  // namespace halvane::bench
