#pragma once

#include "util/Value.h"

#include <string_view>

namespace halvane::util {

/// A copy of `value` in which everything secret by its key (password, token, certificate password,
/// certificate bytes) is replaced by "<redacted>", at any depth. For log lines.
Value redacted(const Value& value);

/// Whether what stands under `key` (of a field, a header, a form) is kept out of log lines.
bool isSecretKey(std::string_view key);

}  // namespace halvane::util
