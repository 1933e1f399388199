#include "systools/sysctl/SysctlTool.h"

#include "linux/device/LinuxSystemControl.h"

int main(int argc, char** argv) {
    using namespace halvane;
    const linux::LinuxSystemControl control{linux::SystemFiles()};
    const systools::SysctlTool tool(control, linux::LinuxSystemControl::names());
    return systools::runTool("sysctl", systools::argumentsOf(argc, argv), std::bind_front(&systools::SysctlTool::run, &tool));
}
