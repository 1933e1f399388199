#pragma once

#include "platform/Browser.h"

namespace halvane::qt {

/// The default browser, asked through the desktop's opener. Addresses that are not of the web are
/// refused: what an opener would do with them is the desktop's choice, not ours.
class QtBrowser final : public platform::Browser {
public:
    bool open(const std::string& url) override;
};

}  // namespace halvane::qt
