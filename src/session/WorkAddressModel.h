#pragma once

#include "util/Bytes.h"
#include "util/Result.h"
#include "util/Value.h"

#include <optional>
#include <string>

namespace halvane::session {

/// One workplace, an office site, as the server lists it. A plain value.
struct WorkAddressModel {
    std::optional<std::string> name;   ///< what people read
    std::optional<std::string> value;  ///< what the server and the user's `work_address` know it by

    /// Each field from the key of its name; numbers become decimal text; what is neither text nor number is absent.
    static WorkAddressModel fromDictionary(const util::Dictionary& dictionary);

    /// A keyed archive; absent fields are left out.
    [[nodiscard]] util::Bytes archived() const;
    static util::Result<WorkAddressModel> unarchived(const util::Bytes& archive);

    friend bool operator==(const WorkAddressModel&, const WorkAddressModel&) = default;
};

}  // namespace halvane::session
