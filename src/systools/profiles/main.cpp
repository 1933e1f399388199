#include "linux/PosixFileStore.h"
#include "systools/network/LibnmNetworkService.h"
#include "systools/profiles/ProfilesTool.h"
#include "systools/security/StorePlaces.h"

#include <cstdlib>

namespace {

using namespace halvane;

/// Behind pkexec the environment is the administrator's; what stands in it says nothing about the user's places.
util::Result<systools::StorePlaces> placesOf(const systools::CallingUser& user) {
    if (!user.isBehindAdministrator()) return systools::StorePlaces::ofThisUser();
    return systools::StorePlaces::find([](const char*) { return std::optional<std::string>(); }, user.home());
}

int run(const systools::Arguments& arguments, std::ostream& out, std::ostream& err) {
    const auto user = systools::CallingUser::find();
    const auto places = user ? placesOf(*user) : util::Result<systools::StorePlaces>(user.error());
    if (!places) {
        err << "profiles: " << places.error().description << "\n";
        return systools::kFailure;
    }
    linux::PosixFileStore files;
    const systools::IdentityFiles identities(places->identities, files);
    systools::ProfileInstaller installer(*user, places->profiles, files, identities, systools::LibnmNetworkService::connect);
    return systools::ProfilesTool(std::move(installer), files, *user).run(arguments, out, err);
}

}  // namespace

int main(int argc, char** argv) { return systools::runTool("profiles", systools::argumentsOf(argc, argv), run); }
