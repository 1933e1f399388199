#include "util/NotificationCenter.h"

#include <utility>
#include <vector>

namespace halvane::util {

NotificationCenter::Token NotificationCenter::addObserver(const std::string& name, Observer observer) {
    const std::lock_guard lock(mutex_);
    registrations_.emplace(nextToken_, Registration{name, std::move(observer)});
    return nextToken_++;
}

NotificationCenter::Token NotificationCenter::addObserver(const std::string& name, std::function<void()> observer) {
    return addObserver(name, Observer([observer = std::move(observer)](const Object& /*object*/) { observer(); }));
}

void NotificationCenter::removeObserver(Token token) {
    const std::lock_guard lock(mutex_);
    registrations_.erase(token);
}

void NotificationCenter::post(const std::string& name, const Object& object) {
    std::vector<Observer> observers;
    {
        const std::lock_guard lock(mutex_);
        for (const auto& [token, registration] : registrations_) {
            if (registration.name == name) observers.push_back(registration.observer);
        }
    }
    for (const Observer& observer : observers) observer(object);
}

}  // namespace halvane::util
