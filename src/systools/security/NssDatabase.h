#pragma once

#include "systools/security/Certificate.h"
#include "util/Result.h"

#include <filesystem>
#include <memory>
#include <vector>

namespace halvane::systools {

/// One NSS certificate database: where browsers look for a person's certificates. The door to NSS.
/// One thread; one database is open at a time in a process. Only the database itself is opened, none
/// of the security modules that its owner added (smart cards), and no password is ever asked for:
/// where the owner protected the keys by one, opening for writing fails and says so.
class NssDatabase {
public:
    enum class Access { Read, Write };
    enum class Keys {
        Visible,
        Locked  ///< the owner protected them by a password
    };
    struct Entry {
        Certificate certificate;
        bool hasPrivateKey = false;
    };

    /// `directory` holds the database; for writing it is made there when missing (the directory itself must exist).
    static util::Result<NssDatabase> open(const std::filesystem::path& directory, Access access);
    /// Whether there is a database to open.
    static bool exists(const std::filesystem::path& directory);

    NssDatabase(NssDatabase&&) noexcept;
    NssDatabase& operator=(NssDatabase&&) = delete;
    ~NssDatabase();

    [[nodiscard]] Keys keys() const;
    /// All certificates, those of authorities among them.
    [[nodiscard]] util::Result<std::vector<Entry>> entries() const;

    /// Stores the certificate, named after its common name, without any trust. One that is there
    /// already stays as it is.
    util::Result<void> addCertificate(const Certificate& certificate);
    /// Stores the key (PKCS#8) that belongs to the certificate. One that is there already stays.
    util::Result<void> addPrivateKey(const util::Bytes& privateKey, const Certificate& certificate);
    [[nodiscard]] bool hasPrivateKey(const Certificate& certificate) const;
    /// Neither touches the other; what is not there is a success.
    util::Result<void> removeCertificate(const Certificate& certificate);
    util::Result<void> removePrivateKey(const Certificate& certificate);

private:
    struct State;
    explicit NssDatabase(std::unique_ptr<State> state);

    std::unique_ptr<State> state_;
};

}  // namespace halvane::systools
