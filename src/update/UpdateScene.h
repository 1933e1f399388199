#pragma once

#include <optional>
#include <string>

namespace halvane::update {

/// What the update window shows at one moment. A plain value; texts are the person's.
struct UpdateScene {
    enum class Mood { Neutral, Good, Bad };

    std::string heading;
    std::string text;                ///< one or two sentences below it
    std::string notes;               ///< plain text, in lines; empty for none
    bool isBusy = false;             ///< something goes on
    std::optional<double> fraction;  ///< how much of it is done, 0 to 1; absent while nobody knows
    Mood mood = Mood::Neutral;
    std::string primary;    ///< the key button's title; empty for none
    std::string secondary;  ///< the other button's, which Escape presses too; empty for none

    friend bool operator==(const UpdateScene&, const UpdateScene&) = default;
};

}  // namespace halvane::update
