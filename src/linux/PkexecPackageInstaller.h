#pragma once

#include "linux/Pipe.h"
#include "linux/PkexecChild.h"
#include "platform/DispatchQueue.h"
#include "platform/PackageInstaller.h"

#include <memory>

namespace halvane::util {
class Log;
}

namespace halvane::linux {

/// Installs through `install-update`, which pkexec makes the administrator. The program gets the package's bytes as its standard
/// input: it opens no path of this user's. The waiting happens on `worker`.
class PkexecPackageInstaller final : public platform::PackageInstaller {
public:
    struct Collaborators {
        std::filesystem::path program;  ///< as it is installed; never chosen by an environment
        PkexecChild pkexec;
        std::shared_ptr<platform::DispatchQueue> worker;
        std::shared_ptr<platform::DispatchQueue> mainQueue;
    };

    explicit PkexecPackageInstaller(Collaborators collaborators);
    ~PkexecPackageInstaller() override;

    void install(const std::filesystem::path& package, const std::string& signature, Ended onEnd) override;

private:
    struct Work;
    const Collaborators to_;
    std::shared_ptr<const Pipe> stop_;  ///< its write end closes with this object
    std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

}  // namespace halvane::linux
