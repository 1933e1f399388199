#include "installer/Surroundings.h"
#include "installer/UpdateInstallation.h"
#include "linux/base/SystemLog.h"
#include "util/UpdateError.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

using namespace halvane;

constexpr int kUsage = 64;
constexpr int kForbidden = 77;
constexpr int kNotConfigured = 78;

int complain(const std::string& problem, int exitCode) {
    std::fprintf(stdout, "%s\n", problem.c_str());
    return exitCode;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string signature = argc == 2 ? argv[1] : "";
    if (signature.empty() || signature.starts_with('-')) {
        return complain(
            "usage: install-update SIGNATURE < PACKAGE\n"
            "Installs the package over the client, when it is a higher version and signed by the company. For the administrator;\n"
            "the client calls it.",
            kUsage);
    }
    if (::geteuid() != 0) return complain("only the administrator may install updates", kForbidden);
    const auto key = util::PublicKey::fromBase64(HALVANE_UPDATE_PUBLIC_KEY);
    if (!key) return complain("this client was built without a key for updates", kNotConfigured);
    const char* caller = std::getenv("PKEXEC_UID");
    const std::string who = caller == nullptr ? "" : std::string(", asked by user ") + caller;
    installer::Surroundings::leave();
    linux::SystemLog log(linux::SystemLog::Journal::ofThisProcess());
    const auto installed = installer::UpdateInstallation({.key = *key, .package = HALVANE_PACKAGE, .directory = "/var/lib/halvane/updates"})
                               .install(STDIN_FILENO, signature);
    if (!installed) {
        log.write("updates: nothing was installed" + who + ": " + installed.error().description);
        return complain(installed.error().description, installed.error().code);
    }
    log.write("updates: " + *installed + " was installed" + who);
    return 0;
}
