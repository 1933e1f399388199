#pragma once

#include "systools/security/IdentityFiles.h"
#include "systools/security/NssDatabase.h"
#include "systools/security/Pkcs12File.h"
#include "systools/security/StorePlaces.h"

#include <string>
#include <vector>

namespace halvane::systools {

/// The user's identities, each in two places: certificate and key in the NSS database, for browsers,
/// and the PKCS#12 file as it came, for network connections. One thread; programs that change the
/// store take turns.
///
/// An import writes the file first and the database last, and the listing goes by the database: what
/// is listed is whole, and an import that was interrupted is not listed and simply comes again.
class IdentityStore {
public:
    struct Imported {
        Certificate certificate;
        std::vector<std::string> remarks;  ///< what went wrong on the side, for the person
    };

    /// `files` must outlive it.
    IdentityStore(StorePlaces places, platform::FileStore& files);

    /// Takes the place of an older identity with the same common name. The authorities that came along
    /// are stored without any trust. After an error the store is as it was.
    util::Result<Imported> import(const util::Bytes& pkcs12, const std::string& password);

    /// Sorted by name, then fingerprint. Makes nothing.
    [[nodiscard]] util::Result<std::vector<Certificate>> identities() const;
    /// Whether network connections find the identity of that name.
    [[nodiscard]] bool hasFile(const std::string& commonName) const { return identityFiles_.exists(commonName); }

    /// Removes every certificate with exactly that common name, its key and the identity file. Answers
    /// whether there was anything. The file goes first: it is what joins the network. A key that a
    /// certificate of another name uses too is kept.
    util::Result<bool> remove(const std::string& commonName);

private:
    util::Result<void> restoreFile(const std::string& commonName, const std::optional<util::Bytes>& bytes);
    util::Result<bool> removeFrom(const std::filesystem::path& database, const std::string& commonName);

    const StorePlaces places_;
    platform::FileStore& files_;
    IdentityFiles identityFiles_;
};

}  // namespace halvane::systools
