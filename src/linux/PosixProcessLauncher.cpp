#include "linux/PosixProcessLauncher.h"

#include "linux/ChildStart.h"
#include "linux/Pipe.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace halvane::linux {

namespace {

util::Result<pid_t> start(const platform::ProcessRequest& request, const std::string& program, std::optional<int> standardOutput) {
    std::vector<std::string> arguments{request.launchPath};
    arguments.insert(arguments.end(), request.arguments.begin(), request.arguments.end());
    const ChildStart child{
        .program = program, .arguments = std::move(arguments), .environment = request.environment, .standardOutput = standardOutput};
    return child.start("start " + request.launchPath);
}

}  // namespace

PosixProcessLauncher::PosixProcessLauncher(std::filesystem::path toolRoot)
    : toolRoot_(std::move(toolRoot)), ending_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

PosixProcessLauncher::~PosixProcessLauncher() {
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(ending_.get(), &one, sizeof one);
}

util::Result<util::Bytes> PosixProcessLauncher::readOutput(const platform::ProcessRequest& request) {
    auto pipe = Pipe::open("start " + request.launchPath);
    if (!pipe) return pipe.error();
    const auto child = start(request, toolRoot_.programFor(request.launchPath), pipe->writeEnd.get());
    if (!child) return child.error();
    pipe->writeEnd.close();

    auto output = Pipe::readToEnd(pipe->readEnd.get(), "read the output of " + request.launchPath, ending_.get());
    if (!output && output.error().code != ECANCELED) ::kill(*child, SIGKILL);
    children_.watch(*child, {});
    return output;
}

util::Result<void> PosixProcessLauncher::launch(const platform::ProcessRequest& request, Termination onTermination) {
    const auto child = start(request, toolRoot_.programFor(request.launchPath), std::nullopt);
    if (!child) return child.error();
    children_.watch(*child, std::move(onTermination));
    return {};
}

}  // namespace halvane::linux
