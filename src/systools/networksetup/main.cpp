#include "systools/CallingUser.h"
#include "systools/network/LibnmNetworkService.h"
#include "systools/networksetup/NetworksetupTool.h"

namespace {

using namespace halvane;

int run(const systools::Arguments& arguments, std::ostream& out, std::ostream& err) {
    const auto user = systools::CallingUser::find();
    if (!user) {
        err << "networksetup: " << user.error().description << "\n";
        return systools::kFailure;
    }
    return systools::NetworksetupTool(user->name(), systools::LibnmNetworkService::connect).run(arguments, out, err);
}

}  // namespace

int main(int argc, char** argv) { return systools::runTool("networksetup", systools::argumentsOf(argc, argv), run); }
