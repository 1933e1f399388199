#pragma once

#include "server/Clock.h"
#include "server/authority/CertificateAuthority.h"
#include "server/crypto/SigningKey.h"
#include "server/store/CertificateStore.h"
#include "server/store/ComputerStore.h"
#include "server/store/Database.h"
#include "server/store/Outbox.h"
#include "server/store/PackageStore.h"
#include "server/store/SessionStore.h"
#include "server/store/UninstallCodeStore.h"
#include "server/store/UserStore.h"
#include "server/store/WorkplaceStore.h"

#include <filesystem>
#include <mutex>
#include <optional>

namespace halvane::server {

/// All that one data directory holds. Any thread; several processes may each have one of the same directory.
class Company {
public:
    /// Makes the directory (0700) and what is missing in it. Throws DatabaseError or std::system_error.
    Company(std::filesystem::path directory, Clock clockToUse);

    const Clock clock;
    Database database;
    UserStore users;
    SessionStore sessions;
    ComputerStore computers;
    WorkplaceStore workplaces;
    CertificateStore certificates;
    UninstallCodeStore uninstallCodes;
    PackageStore packages;
    Outbox outbox;

    /// Made when it is first needed. Throws what its constructor throws.
    const CertificateAuthority& authority();
    /// In update-key.pem, made when it is first needed. Throws CryptoError or std::system_error.
    const SigningKey& updateKey();

private:
    const std::filesystem::path directory_;
    std::once_flag authorityMade_;
    std::optional<CertificateAuthority> authority_;  ///< set under authorityMade_
    std::once_flag updateKeyMade_;
    std::optional<SigningKey> updateKey_;  ///< set under updateKeyMade_
};

}  // namespace halvane::server
