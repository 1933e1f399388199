#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace halvane::util {

/// Posts named notifications to whoever registered for the name. Delivery is synchronous, on the
/// posting thread, in the order of registration; an observer added or removed by another observer
/// counts from the next post on. Observers are called outside the lock and may do anything.
class NotificationCenter {
public:
    /// Whom a notification is about; often nobody.
    using Object = std::shared_ptr<void>;
    using Observer = std::function<void(const Object&)>;
    using Token = std::uint64_t;

    Token addObserver(const std::string& name, Observer observer);
    Token addObserver(const std::string& name, std::function<void()> observer);
    void removeObserver(Token token);
    void post(const std::string& name, const Object& object = nullptr);

private:
    struct Registration {
        std::string name;
        Observer observer;
    };
    std::mutex mutex_;
    std::map<Token, Registration> registrations_;  // guarded by mutex_; ordered by age
    Token nextToken_ = 1;                          // guarded by mutex_
};

}  // namespace halvane::util
