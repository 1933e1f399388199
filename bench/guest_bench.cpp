#include "BenchMain.h"
#include "WindowProbe.h"
#include "linux/PosixFileStore.h"
#include "linux/PropertyListPreferences.h"
#include "linux/XdgDirectories.h"
#include "session/HDCLUserConfig.h"
#include "support/TemporaryDirectory.h"
#include "util/Log.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

// What the client costs a computer while nobody does anything: with the page of the computer on the screen, with
// another page, and before the login, beside the least programs with a window and with a chart. All of them at the
// same time, each on a display of its own, for a minute.

namespace {

using halvane::bench::Program;
using halvane::bench::WindowProbe;

constexpr unsigned kSettling = 8;
constexpr unsigned kSeconds = 60;
constexpr double kMebibyte = 1024.0 * 1024.0;

struct Silence final : halvane::util::Log {
    void write(std::string_view) override {}
};

/// A home directory in which somebody is signed in, or nobody.
class Home {
public:
    explicit Home(bool signedIn) {
        if (signedIn) signIn();
    }

    [[nodiscard]] std::vector<std::string> environment() const {
        const char* path = std::getenv("PATH");
        return {"HOME=" + path_,
                "XDG_RUNTIME_DIR=" + path_,
                "LANG=C.UTF-8",
                "QT_QPA_PLATFORM=xcb",
                "DBUS_SESSION_BUS_ADDRESS=disabled:",
                "DBUS_SYSTEM_BUS_ADDRESS=disabled:",
                std::string("PATH=") + (path == nullptr ? "" : path)};
    }

private:
    void signIn() const {
        using namespace halvane;
        Silence log;
        linux::PosixFileStore files;
        const auto directories = linux::XdgDirectories::locate(
            path_, {.variable = [this](const char* name) { return std::string(name) == "HOME" ? std::optional(path_) : std::nullopt; },
                    .accountHome = {},
                    .sharedTemporary = path_});
        if (!directories) throw std::runtime_error(directories.error().description);
        linux::PropertyListPreferences preferences(files, directories->configuration() / "preferences.plist", log);
        preferences.set("HDCL_ISAUTOLOGIN", true);
        session::HDCLUserConfig(preferences, files, *directories)
            .user_loginSuccessWithDic(
                util::Dictionary{{"job_number", "1"}, {"token", "t"}, {"user_name", "a@example.com"}, {"nick_name", "陈晓"}});
        preferences.flush();
    }

    const halvane::test::TemporaryDirectory directory_;
    const std::string path_ = directory_.path();
};

/// One program on its display, and what it cost since a moment.
struct Guest {
    const char* name;
    std::vector<std::string> command;
    bool signedIn = false;
    bool showsDevicePage = false;
    std::unique_ptr<Home> home{};
    std::unique_ptr<WindowProbe> display{};
    std::unique_ptr<Program> program{};
    double processorTime = 0;
    double wakeUpsASecond = 0;
    Program::WakeUps wakeUps{};

    void start() {
        home = std::make_unique<Home>(signedIn);
        display = std::make_unique<WindowProbe>();
        program = display->show(command, home->environment());
    }
    void bringUpPage() const {
        const std::string click =
            "DISPLAY=" + display->display() +
            " xdotool search --onlyvisible --name '^Halvane$' mousemove --window %1 100 158 click 1 mousemove 2 2 >/dev/null";
        if (std::system(click.c_str()) != 0) throw std::runtime_error("the menu cannot be clicked");
    }
    void begin() {
        processorTime = program->processorTime();
        wakeUps = program->wakeUps();
    }
    void end() {
        processorTime = (program->processorTime() - processorTime) / (kSeconds * 10.0);  // percent
        wakeUpsASecond = static_cast<double>(program->wakeUpsSince(wakeUps)) / kSeconds;
    }
};

void report(const Guest& guest, const Guest& window, const Guest& chart) {
    const double memory = static_cast<double>(guest.program->residentSize()) / kMebibyte;
    const auto ratio = [&](const Guest& peer) { return memory * kMebibyte / static_cast<double>(peer.program->residentSize()); };
    std::printf(
        "%-22s processor %7.3f %% (%5.2f of the chart)  wake-ups %6.2f/s  resident %6.1f MiB (%4.2f of the chart, %4.2f of the window)\n",
        guest.name, guest.processorTime, guest.processorTime / chart.processorTime, guest.wakeUpsASecond, memory, ratio(chart),
        ratio(window));
}

int run(const std::filesystem::path& directory) {
    const std::string client = directory / "halvane";
    const std::vector<std::string> offline{client, "--server", "http://127.0.0.1:9"};
    std::vector<Guest> guests;
    guests.push_back({.name = "minimal window", .command = {directory / "minimal_window"}});
    guests.push_back({.name = "minimal chart, 1 Hz", .command = {directory / "minimal_chart"}});
    guests.push_back({.name = "the same with a title", .command = {directory / "minimal_chart", "cpu占用"}});
    guests.push_back({.name = "page visible", .command = offline, .signedIn = true, .showsDevicePage = true});
    guests.push_back({.name = "another page", .command = offline, .signedIn = true});
    guests.push_back({.name = "before the login", .command = offline});
    for (auto& guest : guests) guest.start();
    sleep(2);
    for (auto& guest : guests)
        if (guest.showsDevicePage) guest.bringUpPage();
    sleep(kSettling);
    for (auto& guest : guests) guest.begin();
    sleep(kSeconds);
    for (auto& guest : guests) guest.end();
    if (guests[3].processorTime < 1.5 * guests[4].processorTime) throw std::runtime_error("the page of the computer did not come up");
    for (const auto& guest : guests) report(guest, guests[0], guests[1]);
    std::printf("goals: page visible 1.3 of the chart, another page 0.05 %%, resident 1.5 of the chart\n");
    return 0;
}

}  // namespace

int main(int /*argc*/, char** argv) { return halvane::bench::benchMain("guest_bench", argv[0], run); }
