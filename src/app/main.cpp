#include "app/CommandLine.h"
#include "app/Deployment.h"
#include "app/Services.h"
#include "app/Surroundings.h"
#include "app/UserInterface.h"
#include "linux/GlibMessages.h"
#include "linux/base/SystemLog.h"
#include "platform/Reachability.h"
#include "platform/SingleInstance.h"
#include "qt/QtApplication.h"
#include "qt/QtDisplay.h"
#include "qt/QtMainLoop.h"
#include "qt/QtMessages.h"
#include "request/XMEngine.h"
#include "ui/widgets/AlertSheet.h"
#include "ui/widgets/HDCLUICenter.h"
#include "update/UpdateWindow.h"

#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

using namespace halvane;

constexpr int kEnded = 0;
constexpr int kCannotRun = 1;
constexpr int kWrongArguments = 2;

/// On standard error, and in the journal, because who starts it from a menu sees no standard error.
int complain(const std::string& problem, int exitCode) {
    linux::SystemLog().write(problem);
    return exitCode;
}

/// What a start wishes beyond bringing the client to the front: this one, or a later one that hands over.
void follow(app::CommandLine::Wish wish, app::AppDelegate& delegate) {
    switch (wish) {
        case app::CommandLine::Wish::None:
            return delegate.applicationShouldHandleReopen();
        case app::CommandLine::Wish::Uninstall:
            return delegate.applicationShouldUninstall();
        case app::CommandLine::Wish::Quit:
            return QCoreApplication::quit();
    }
}

/// From the first window to the end of the program.
int runClient(QApplication& application, app::Services& services, const std::vector<std::string>& arguments, app::CommandLine::Wish wish) {
    app::UserInterface windows(services);
    app::AppDelegate& delegate = windows.delegate();
    const auto role = services.singleInstance().enter(arguments, [&delegate](const std::vector<std::string>& later) {
        // A later version may know arguments that this one does not: it wants the client in any case.
        const auto line = app::CommandLine::parse(later);
        follow(line ? line->wish : app::CommandLine::Wish::None, delegate);
    });
    if (role == platform::SingleInstance::Role::Later || wish == app::CommandLine::Wish::Quit) return kEnded;

    delegate.applicationDidFinishLaunching();
    if (wish != app::CommandLine::Wish::None) follow(wish, delegate);
    const int exitCode = application.exec();
    delegate.applicationWillTerminate();
    return exitCode;
}

/// The client in its surroundings, whole. Answers the exit code; `restartWanted` when an installed update is to take over.
int run(int argc, char** argv, const app::CommandLine& line, const app::Surroundings& surroundings, bool& restartWanted) {
    linux::SystemLog log;
    const linux::GlibMessages glibMessages(log);
    const qt::QtMessages qtMessages(log);
    qt::choosePlatform();
    qt::QtApplication application(argc, argv);
    ui::HDCLUICenter::applyTo(application);
    const auto services = app::Services::make(
        {.log = log,
         .serverBaseUrl = line.server.value_or(app::Deployment::kServerBaseUrl),
         .toolRoot = surroundings.toolRoot,
         .resources = surroundings.resources,
         .language = surroundings.language,
         .inform = [](const std::string& text) { ui::AlertSheet::presentWhereThePersonIs(QString::fromStdString(text)); },
         .makeUpdateScreen = [] { return std::make_unique<update::UpdateWindow>(); },
         .restart =
             [&restartWanted] {
                 restartWanted = true;
                 QCoreApplication::quit();
             }},
        std::make_shared<qt::QtMainLoop>());
    if (!services) return complain(services.error().description, kCannotRun);
    request::XMEngine::load((*services)->reachability());
    return runClient(application, **services, {argv + 1, argv + argc}, line.wish);
}

/// Becomes the program that stands there now. Comes back only when that cannot be.
int beginAnew(const std::filesystem::path& program, const std::optional<std::string>& server) {
    std::string name = program.string();
    std::string option = "--server=" + server.value_or("");
    char* arguments[] = {name.data(), server ? option.data() : nullptr, nullptr};
    ::execv(name.c_str(), arguments);
    return complain("cannot start " + name + " anew: " + std::strerror(errno), kCannotRun);
}

}  // namespace

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);  // a reader that went away is an error of the write, not our end
    linux::SystemLog::nameStandardStreams();
    auto line = app::CommandLine::parse({argv + 1, argv + argc});
    if (!line) return complain(line.error().description, kWrongArguments);
    if (line->action == app::CommandLine::Action::ShowHelp)
        return std::fputs(app::CommandLine::help().c_str(), stdout) < 0 ? kCannotRun : kEnded;
    if (line->action == app::CommandLine::Action::ShowVersion)
        return std::printf("halvane %s\n", app::Deployment::kVersion) < 0 ? kCannotRun : kEnded;

    const auto surroundings = app::Surroundings::ofThisProcess();
    const auto given = line->server;
    if (!line->server && !surroundings.server.empty()) {
        line->server = app::CommandLine::serverAddress(surroundings.server);
        if (!line->server) return complain("HALVANE_SERVER is no address that begins with http:// or https://", kWrongArguments);
    }
    if (const auto problem = qt::displayProblem()) return complain(*problem, kCannotRun);
    bool restartWanted = false;
    const int exitCode = run(argc, argv, *line, surroundings, restartWanted);
    return restartWanted ? beginAnew(surroundings.program, given) : exitCode;
}
