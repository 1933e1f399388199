// Runs one program with the administrator's rights, as the client does, and tells what came of it:
//     privileged_probe INSTALLED-TOOLS task PROGRAM [ARGUMENT…]
//     privileged_probe INSTALLED-TOOLS script COMMAND
// It begins when a line arrives on its standard input, so that somebody can be there to be asked.
#include "linux/PolkitAuthorization.h"
#include "linux/ShellScriptInterpreter.h"
#include "support/ManualMainLoop.h"
#include "tools/AdministratorScript.h"
#include "tools/STPrivilegedTask.h"
#include "util/Log.h"
#include "util/NotificationCenter.h"

#include <filesystem>
#include <iostream>

namespace {

using namespace halvane;

class PrintedLog final : public util::Log {
public:
    void write(std::string_view line) override { std::cout << "log: " << line << std::endl; }
};

void runTask(const std::string& installedTools, std::vector<std::string> words, util::Log& log) {
    linux::PolkitAuthorization authorization(linux::ToolRoot(installedTools), log);
    test::ManualMainLoop mainLoop;
    util::NotificationCenter notifications;
    const auto task = tools::STPrivilegedTask::initWithLaunchPath(
        {authorization, mainLoop, notifications, log, [] { return std::filesystem::current_path().string(); }},
        {.launchPath = words.front(), .arguments = {words.begin() + 1, words.end()}});
    const auto status = task->launch();
    std::cout << "status " << status << std::endl;
    if (!task->isRunning()) return;
    const auto output = task->outputFileHandle()->readDataToEndOfFile();
    task->waitUntilExit();
    std::cout << "exit " << task->terminationStatus() << "\noutput " << (output ? *output : output.error().description) << std::endl;
}

void runScript(const std::string& command, util::Log& log) {
    linux::ShellScriptInterpreter interpreter;
    const auto result = tools::runShellScriptAsAdministrator(interpreter, log, command, {}, true);
    std::cout << "success " << result.success << "\noutput " << result.output.value_or("(absent)") << "\nerror "
              << result.errorDescription.value_or("(absent)") << std::endl;
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    if (words.size() < 3) return 2;
    std::string line;
    std::getline(std::cin, line);
    PrintedLog log;
    if (words[1] == "task") {
        runTask(words[0], {words.begin() + 2, words.end()}, log);
    } else {
        runScript(words[2], log);
    }
    return 0;
}
