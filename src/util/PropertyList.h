#pragma once

#include "util/Bytes.h"
#include "util/Result.h"
#include "util/Value.h"

namespace halvane::util {

/// Property lists. The door to the property-list library. Any thread.
struct PropertyList {
    /// XML or binary. Errors: empty, neither of the two, damaged, nested
    /// deeper than 512, a binary one beyond 128 KiB.
    static Result<Value> decode(const Bytes& bytes);

    /// XML. Null entries of a dictionary are left out; null elements of a list become empty texts.
    static Bytes encode(const Value& value);
};

}  // namespace halvane::util
