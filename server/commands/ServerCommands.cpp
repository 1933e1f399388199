#include "server/Company.h"
#include "server/CompanyServer.h"
#include "server/UserName.h"
#include "server/commands/CommandGroups.h"
#include "server/commands/PasswordInput.h"
#include "server/commands/SampleCompany.h"

#include <charconv>
#include <csignal>
#include <iostream>

namespace halvane::server {

namespace {

std::optional<int> portOf(const std::string& text) {
    int port = -1;
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), port);
    if (problem != std::errc() || end != text.data() + text.size() || port < 0 || port > 65535) return std::nullopt;
    return port;
}

/// The options of `serve`, or what is wrong with them.
util::Result<CompanyServer::Options> optionsOf(const Arguments& arguments) {
    CompanyServer::Options options;
    options.host = arguments.option("--host", options.host);
    const auto port = portOf(arguments.option("--port", "0"));
    if (!port) return util::dataError("--port takes a number from 0 to 65535");
    options.port = *port;
    options.publicUrl = arguments.option("--public-url", "");
    while (options.publicUrl.ends_with('/')) options.publicUrl.pop_back();
    if (!options.publicUrl.empty() && !options.publicUrl.starts_with("http://") && !options.publicUrl.starts_with("https://")) {
        return util::dataError("--public-url takes an http or https address");
    }
    if (options.publicUrl.empty() && (options.host == "0.0.0.0" || options.host == "::")) {
        return util::dataError("clients cannot fetch files from " + options.host + "; say --public-url");
    }
    const auto certificate = arguments.option("--cert");
    const auto key = arguments.option("--key");
    if (certificate.has_value() != key.has_value()) return util::dataError("--cert and --key go together");
    if (certificate) options.tls = HttpServer::Tls{*certificate, *key};
    return options;
}

ExitCode serve(const Command::Call& call) {
    auto options = optionsOf(call.arguments);
    if (!options) return failed(call.console, options.error().description, ExitCode::Usage);
    std::optional<AccessLog> log;
    if (const auto file = call.arguments.option("--access-log")) options->accessLog = &log.emplace(*file, call.company.clock);

    // Before the threads begin, so that they inherit it and only sigwait sees these signals.
    sigset_t ending;
    sigemptyset(&ending);
    sigaddset(&ending, SIGTERM);
    sigaddset(&ending, SIGINT);
    ::pthread_sigmask(SIG_BLOCK, &ending, nullptr);

    CompanyServer server(call.company, std::move(*options));
    const auto url = server.start();
    if (!url) return failed(call.console, url.error().description);
    call.console.out << "halvane-server: " << *url << std::endl;
    int received = 0;
    ::sigwait(&ending, &received);
    server.stop();
    return ExitCode::Done;
}

ExitCode seed(const Command::Call& call) {
    const std::string domain = call.arguments.option("--domain", HALVANE_MAIL_DOMAIN);
    if (!UserName::parse("a@" + domain)) return failed(call.console, domain + " is no mail domain", ExitCode::Usage);
    auto password = call.arguments.option("--password");
    if (!password) password = call.console.password;
    if (password) {
        const auto checked = PasswordInput::checked(*password);
        if (!checked) return failed(call.console, checked.error().description);
    }
    for (const auto& account : SampleCompany::addTo(call.company, domain, password)) {
        call.console.out << account.userName << '\t' << account.password.value_or("(as before)") << '\n';
    }
    return ExitCode::Done;
}

ExitCode showAuthority(const Command::Call& call) {
    call.console.out << call.company.authority().certificatePem() << std::flush;
    return ExitCode::Done;
}

}  // namespace

std::vector<Command> serverCommands() {
    return {
        {.name = "serve",
         .synopsis = "[--port N] [--host ADDRESS] [--access-log FILE] [--cert FILE --key FILE] [--public-url URL]",
         .summary = "Answers clients until SIGTERM or SIGINT. Prints its address when ready. Port 0: any free one;\n"
                    "      an access log called - goes to standard error; the public URL is how clients reach this server.",
         .options = {"--port", "--host", "--access-log", "--cert", "--key", "--public-url"},
         .data = Command::Data::MayBeMade,
         .run = serve},
        {.name = "seed",
         .synopsis = "[--domain DOMAIN] [--password P]",
         .summary = "Adds a small company to try with and prints the passwords; P is for demonstrations only.",
         .options = {"--domain", "--password"},
         .data = Command::Data::MayBeMade,
         .run = seed},
        {.name = "ca show",
         .synopsis = "",
         .summary = "Prints the certificate of the company's authority, PEM.",
         .options = {},
         .data = Command::Data::MayBeMade,
         .run = showAuthority},
    };
}

}  // namespace halvane::server
