#include "app/AppDelegate.h"
#include "app/CommandLine.h"
#include "app/Deployment.h"
#include "app/Services.h"
#include "app/Surroundings.h"
#include "login/LoginFlow.h"
#include "platform/Reachability.h"
#include "platform/SingleInstance.h"
#include "qt/QtApplication.h"
#include "qt/QtBrowser.h"
#include "qt/QtDisplay.h"
#include "qt/QtMainLoop.h"
#include "session/HDCLUserConfig.h"
#include "ui/main/MainView.h"
#include "ui/widgets/HDCLUICenter.h"

#include <csignal>
#include <cstdio>
#include <string>
#include <vector>

namespace {

using namespace halvane;

constexpr int kEnded = 0;
constexpr int kCannotRun = 1;
constexpr int kWrongArguments = 2;

int complain(const std::string& problem, int exitCode) {
    std::fprintf(stderr, "halvane: %s\n", problem.c_str());
    return exitCode;
}

ui::UserSummary summaryOf(session::HDCLUserConfig& user) {
    const session::HDCLUserModel* model = user.user_getUserInfo();
    if (model == nullptr) return {};
    return {
        .nickName = model->nick_name, .departmentName = model->department_name, .email = model->email, .workAddress = model->work_address};
}

/// The windows above the services, from the first to the end of the program.
int runClient(QApplication& application, app::Services& services) {
    qt::QtBrowser browser;
    const auto makeMainWindow = [&services] {
        return std::make_unique<ui::MainWindow>([&services] { return std::make_unique<ui::MainView>(summaryOf(services.user())); });
    };
    const auto makeLoginView = [&services, &browser, makeMainWindow] {
        return std::make_unique<login::LoginView>(
            [&services, &browser](login::LoginScreen& screen) { return services.makeLoginFlow(screen, browser); }, makeMainWindow);
    };
    app::AppDelegate delegate({services.notifications(), services.updater(), services.user(), makeLoginView, makeMainWindow});

    const auto arguments = QCoreApplication::arguments().mid(1);
    std::vector<std::string> handedOver;
    for (const QString& argument : arguments) handedOver.push_back(argument.toStdString());
    const auto role = services.singleInstance().enter(
        handedOver, [&delegate](const std::vector<std::string>& /*arguments*/) { delegate.applicationShouldHandleReopen(); });
    if (role == platform::SingleInstance::Role::Later) return kEnded;

    delegate.applicationDidFinishLaunching();
    const int exitCode = application.exec();
    delegate.applicationWillTerminate();
    return exitCode;
}

}  // namespace

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);  // a reader that went away is an error of the write, not our end
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    auto line = app::CommandLine::parse(arguments);
    if (!line) return complain(line.error().description, kWrongArguments);
    if (line->action == app::CommandLine::Action::ShowHelp)
        return std::fputs(app::CommandLine::help().c_str(), stdout) < 0 ? kCannotRun : kEnded;
    if (line->action == app::CommandLine::Action::ShowVersion)
        return std::printf("halvane %s\n", app::Deployment::kVersion) < 0 ? kCannotRun : kEnded;

    const auto surroundings = app::Surroundings::ofThisProcess();
    if (!line->server && !surroundings.server.empty()) {
        line->server = app::CommandLine::serverAddress(surroundings.server);
        if (!line->server) return complain("HALVANE_SERVER is no address that begins with http:// or https://", kWrongArguments);
    }
    if (const auto problem = qt::displayProblem()) return complain(*problem, kCannotRun);

    qt::choosePlatform();
    qt::QtApplication application(argc, argv);
    ui::HDCLUICenter::applyTo(application);
    const auto services = app::Services::make({.serverBaseUrl = line->server.value_or(app::Deployment::kServerBaseUrl),
                                               .toolRoot = surroundings.toolRoot,
                                               .resources = surroundings.resources,
                                               .language = surroundings.language},
                                              std::make_shared<qt::QtMainLoop>());
    if (!services) return complain(services.error().description, kCannotRun);
    (*services)->reachability().startMonitoring();
    return runClient(application, **services);
}
