#pragma once

#include "util/Value.h"

namespace halvane::util {

/// A copy of `value` in which everything secret by its key (password, token, certificate password,
/// certificate bytes) is replaced by "<redacted>", at any depth. For log lines.
Value redacted(const Value& value);

}  // namespace halvane::util
