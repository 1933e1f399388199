#pragma once

#include "util/Value.h"

#include <optional>
#include <string>
#include <vector>

namespace halvane::http {

/// One field of a form or query, not escaped. An absent value is null: the field stands alone.
struct QueryPair {
    std::string field;
    std::optional<util::Bytes> value;
};

/// The parameters one after the other, keys in the order of their bytes, lists in their own. What lies deeper is named in
/// brackets: `user[name]`, `tags[]`, `rows[][id]`. Numbers are decimal text, booleans "1" and "0", dates ISO 8601, bytes
/// as they are. An empty list or dictionary leaves nothing.
std::vector<QueryPair> queryPairs(const util::Dictionary& parameters);

/// `a=1&user%5Bname%5D=x`: field and value escaped, all but what RFC 3986 leaves unreserved, "/" and "?".
std::string formEncoded(const util::Dictionary& parameters);

}  // namespace halvane::http
