#include "linux/PosixFileStore.h"
#include "systools/security/SecurityTool.h"

#include <cstdlib>
#include <cstring>

namespace {

using namespace halvane;

std::optional<std::string> variable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

int run(const systools::Arguments& arguments, std::ostream& out, std::ostream& err) {
    auto places = systools::StorePlaces::ofThisUser();
    if (!places) {
        err << "security: " << places.error().description << "\n";
        return systools::kFailure;
    }
    linux::PosixFileStore files;
    return systools::SecurityTool(std::move(*places), files, variable).run(arguments, out, err);
}

}  // namespace

int main(int argc, char** argv) {
    const auto arguments = systools::argumentsOf(argc, argv);
    // A password on the command line is in every user's list of processes; not for longer than we can help.
    for (int i = 1; i + 1 < argc; ++i) {
        if (std::strcmp(argv[i], "-P") == 0) std::memset(argv[i + 1], '*', std::strlen(argv[i + 1]));
    }
    return systools::runTool("security", arguments, run);
}
