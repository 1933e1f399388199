#pragma once

#include "support/ChildProcess.h"
#include "support/PrivateBus.h"
#include "support/TemporaryDirectory.h"

#include <string>

struct sd_bus;

namespace halvane::test {

/// A real Secret Service, gnome-keyring's, on a bus of the test's own and with files of its own; and
/// what another program does with it. DBUS_SESSION_BUS_ADDRESS leads to it while it lives.
class SecretServiceProgram {
public:
    enum class Start {
        Unlocked,        ///< as a session leaves it: a default collection that is open
        WithoutPassword  ///< nobody opened it, there is no collection yet
    };

    explicit SecretServiceProgram(Start start = Start::Unlocked);
    ~SecretServiceProgram();
    SecretServiceProgram(const SecretServiceProgram&) = delete;
    SecretServiceProgram& operator=(const SecretServiceProgram&) = delete;

    void lock();
    /// As another program does it: with attributes of its own beside service and account.
    void storeForeign(const std::string& service, const std::string& bytes);

private:
    std::string defaultCollection();

    PrivateBus bus_;
    TemporaryDirectory files_;
    ChildProcess daemon_;
    sd_bus* client_ = nullptr;
};

}  // namespace halvane::test
