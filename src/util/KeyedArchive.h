#pragma once

#include "util/Bytes.h"
#include "util/Result.h"
#include "util/Value.h"

#include <string>

namespace halvane::util {

/// A record under named keys together with the name of its class, so that a file of another class
/// is told apart from a damaged one. The bytes are an XML property list. Any thread.
struct KeyedArchive {
    static Bytes encode(const std::string& className, const Dictionary& fields);

    /// Errors: not a property list, not a keyed archive, an archive of another class.
    static Result<Dictionary> decode(const std::string& className, const Bytes& bytes);
};

}  // namespace halvane::util
