#include "support/PrivateBus.h"

#include <fstream>
#include <stdexcept>

namespace halvane::test {

namespace {

/// Everything that is not asked of a test's own: the usual configuration would look for services to start.
std::string configuration(const std::string& address) {
    return "<busconfig><type>session</type><listen>" + address +
           "</listen><auth>EXTERNAL</auth><policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/><allow "
           "receive_sender=\"*\" eavesdrop=\"true\"/><allow own=\"*\"/>"
           "<allow user=\"*\"/></policy></busconfig>";
}

}  // namespace

PrivateBus::PrivateBus() : address_("unix:path=" + (directory_.path() / "socket").string()) {
    const auto file = directory_.path() / "configuration";
    std::ofstream(file) << configuration(address_);
    daemon_.emplace(
        std::vector<std::string>{"dbus-daemon", "--config-file=" + file.string(), "--print-address=1", "--nofork", "--nosyslog"});
    // It prints its address once it listens; end of file means that it did not come up.
    if (daemon_->readLine().empty()) throw std::runtime_error("dbus-daemon did not start");
}

}  // namespace halvane::test
