#pragma once

#include "server/store/Database.h"

#include <string>
#include <string_view>
#include <vector>

namespace halvane::server {

struct Workplace {
    std::string value;  ///< ASCII: it travels in a query without being escaped
    std::string name;   ///< as people read it
};

/// The company's offices, in the order in which they were added. Any thread; throws DatabaseError.
class WorkplaceStore {
public:
    explicit WorkplaceStore(Database& database) : database_(database) {}

    /// Appends; a known value only gets the new name.
    void put(const Workplace& workplace);
    bool has(std::string_view value);
    std::vector<Workplace> all();
    /// False when there is no such value.
    bool remove(std::string_view value);

private:
    Database& database_;
};

}  // namespace halvane::server
