#include "systools/scutil/ScutilTool.h"

int main(int argc, char** argv) {
    using namespace halvane;
    const systools::ScutilTool tool{linux::SystemFiles()};
    return systools::runTool("scutil", systools::argumentsOf(argc, argv), std::bind_front(&systools::ScutilTool::run, &tool));
}
