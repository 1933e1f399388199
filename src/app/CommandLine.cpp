#include "app/CommandLine.h"

#include "util/Text.h"

#include <string_view>

namespace halvane::app {

namespace {

util::Error usage(const std::string& problem) { return util::dataError(problem + "; see halvane --help"); }

CommandLine::Wish wishOf(const std::string& argument) {
    if (argument == "--uninstall") return CommandLine::Wish::Uninstall;
    if (argument == "--quit") return CommandLine::Wish::Quit;
    return CommandLine::Wish::None;
}

}  // namespace

util::Result<CommandLine> CommandLine::parse(const std::vector<std::string>& arguments) {
    constexpr std::string_view kServer = "--server";
    CommandLine line;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--help" || argument == "-h") {
            line.action = Action::ShowHelp;
        } else if (argument == "--version" || argument == "-V") {
            line.action = Action::ShowVersion;
        } else if (const Wish wish = wishOf(argument); wish != Wish::None) {
            if (line.wish != Wish::None && line.wish != wish) return usage("--uninstall and --quit exclude each other");
            line.wish = wish;
        } else if (argument == kServer || argument.starts_with(std::string(kServer) + "=")) {
            if (argument == kServer && i + 1 == arguments.size()) return usage("--server needs an address");
            auto address = serverAddress(argument == kServer ? arguments[++i] : argument.substr(kServer.size() + 1));
            if (!address) return usage("--server needs an address that begins with http:// or https://");
            line.server = std::move(address);
        } else {
            return usage("unknown argument \"" + argument + "\"");
        }
    }
    return line;
}

std::optional<std::string> CommandLine::serverAddress(std::string text) {
    const auto authority = text.find("://");
    const std::string scheme = util::lowercasedAscii(text.substr(0, authority));
    if (authority == std::string::npos || (scheme != "http" && scheme != "https")) return std::nullopt;
    while (text.ends_with('/') && text.size() > authority + 3) text.pop_back();
    if (text.size() == authority + 3 || text.find_first_of(" \t\r\n\"<>?#") != std::string::npos) return std::nullopt;
    return text;
}

std::string CommandLine::help() {
    return "Usage: halvane [OPTION]…\n"
           "Signs you in to your company, and keeps this computer on the company network.\n"
           "\n"
           "  --server URL   ask this company server (also: HALVANE_SERVER)\n"
           "  --uninstall    ask for the removal of this client\n"
           "  --quit         end the running client\n"
           "  --version      print the version and end\n"
           "  --help         print this help and end\n"
           "\n"
           "A second start brings the running client to the front.\n"
           "Exit status: 0 ended as asked, 1 could not run here, 2 wrong arguments.\n";
}

}  // namespace halvane::app
