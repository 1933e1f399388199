#include "linux/PolkitAuthority.h"

#include "linux/ProcessStatus.h"
#include "linux/device/BusCalls.h"

#include <unistd.h>

#include <cstdint>

namespace halvane::linux {

namespace {

constexpr const char* kName = "org.freedesktop.PolicyKit1";
constexpr const char* kPath = "/org/freedesktop/PolicyKit1/Authority";
constexpr const char* kInterface = "org.freedesktop.PolicyKit1.Authority";

/// Ourselves: a process id alone could be another process's by the time it is looked at.
bool appendSubject(sd_bus_message* message) {
    const auto own = ProcessStatus::of(::getpid());
    return own && sd_bus_message_append(message, "(sa{sv})", "unix-process", 3, "pid", "u", static_cast<std::uint32_t>(::getpid()),
                                        "start-time", "t", own->startTime, "uid", "i", static_cast<std::int32_t>(::getuid())) >= 0;
}

}  // namespace

PolkitAuthority::Answer PolkitAuthority::check(const std::string& action) const {
    BusCalls calls(busAddress_, deadline_);
    const BusMessage call = calls.question(kName, kPath, kInterface, "CheckAuthorization");
    constexpr std::uint32_t kWithoutAsking = 0;
    if (!call || !appendSubject(call.get()) || sd_bus_message_append(call.get(), "sa{ss}us", action.c_str(), 0, kWithoutAsking, "") < 0)
        return Answer::Unavailable;
    const BusMessage answer = calls.ask(call.get());
    // An action that it does not know is the plain failure among its own errors; that it is not there is the bus's.
    if (!answer && calls.error() == "org.freedesktop.PolicyKit1.Error.Failed") return Answer::UnknownAction;
    if (!answer) return calls.error() == "org.freedesktop.PolicyKit1.Error.NotAuthorized" ? Answer::Refused : Answer::Unavailable;
    int authorised = 0;
    int challenge = 0;
    if (sd_bus_message_enter_container(answer.get(), 'r', "bba{ss}") <= 0 ||
        sd_bus_message_read(answer.get(), "bb", &authorised, &challenge) <= 0)
        return Answer::Unavailable;
    return authorised != 0 || challenge != 0 ? Answer::Possible : Answer::Refused;
}

}  // namespace halvane::linux
