#pragma once

#include "systools/Tool.h"
#include "systools/security/IdentityStore.h"

namespace halvane::systools {

/// The commands of `security`: import, find-identity, delete-certificate. Keeps no state between runs.
class SecurityTool {
public:
    /// `files` must outlive it. `variable`: the environment, out of which `-P env:NAME` takes the password.
    SecurityTool(StorePlaces places, platform::FileStore& files, StorePlaces::Variable variable)
        : store_(std::move(places), files), files_(files), variable_(std::move(variable)) {}

    int run(const Arguments& arguments, std::ostream& out, std::ostream& err);
    static const char* usageText();

private:
    int import(const Arguments& arguments, std::ostream& out, std::ostream& err);
    int importFile(const std::string& path, const std::string& password, std::ostream& out, std::ostream& err);
    int findIdentity(const Arguments& arguments, std::ostream& out, std::ostream& err);
    int deleteCertificate(const Arguments& arguments, std::ostream& out, std::ostream& err);

    IdentityStore store_;
    platform::FileStore& files_;
    const StorePlaces::Variable variable_;
};

}  // namespace halvane::systools
