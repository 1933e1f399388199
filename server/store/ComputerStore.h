#pragma once

#include "server/Clock.h"
#include "server/store/Database.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace halvane::server {

struct Computer {
    std::string sn;
    std::string mac;
    std::string hostName;
    std::string system;
    std::string userName;  ///< who used it last; empty when that user is gone
    Time lastSeen;
    bool locked = false;
    bool lost = false;
};

/// The computers that signed in or reported, by serial number. Any thread; throws DatabaseError.
/// An empty serial number is no computer: nothing is recorded for it.
class ComputerStore {
public:
    enum class Mark { Locked, Unlocked, Lost, Found };

    struct Facts {
        std::string sn;
        std::string mac;
        std::string hostName;
        std::string system;
    };

    ComputerStore(Database& database, Clock clock) : database_(database), clock_(std::move(clock)) {}

    void signedIn(const Facts& facts, std::int64_t userId);
    /// Notes that it reported, and answers how it stands; absent only for an empty serial number.
    std::optional<Computer> reported(std::string_view sn, std::int64_t userId);
    std::optional<Computer> find(std::string_view sn);
    std::vector<Computer> all();
    /// False when there is no such computer.
    bool mark(std::string_view sn, Mark mark);

private:
    Database& database_;
    Clock clock_;
};

}  // namespace halvane::server
