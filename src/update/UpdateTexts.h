#pragma once

#include "update/UpdateItem.h"
#include "update/UpdateScene.h"
#include "util/Error.h"

#include <cstdint>
#include <string>

namespace halvane::update {

/// The scenes of an update, in the person's language. Any thread.
struct UpdateTexts {
    static UpdateScene checking();
    static UpdateScene upToDate(const std::string& version);
    static UpdateScene offer(const UpdateItem& item, const std::string& installed);
    static UpdateScene downloading(const UpdateItem& item, std::uint64_t received);
    static UpdateScene verifying(const UpdateItem& item);
    static UpdateScene ready(const UpdateItem& item);
    static UpdateScene installing(const UpdateItem& item);
    static UpdateScene installed(const UpdateItem& item);
    static UpdateScene failed(const util::Error& error);
    /// Somebody else has installed what the running program has not: trying again would lead in a circle, a restart does not.
    static bool isInstalledAlready(const util::Error& error);

    /// Why there is no update, in a sentence or two; what to do where the person can do something.
    static std::string reason(const util::Error& error);
};

}  // namespace halvane::update
