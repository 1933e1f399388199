#include "server/Company.h"
#include "server/commands/CommandGroups.h"
#include "server/store/PrivateFile.h"
#include "util/PropertyList.h"
#include "util/Text.h"

#include <fstream>
#include <iostream>
#include <iterator>
#include <span>

namespace halvane::server {

namespace {

constexpr const char* kRootType = "com.halvane.payload.root";
constexpr std::size_t kLongestCommonName = 64;

/// Never over a file that is there: it may be the key of a running server.
ExitCode written(const Command::Call& call, const std::string& file, std::string_view content) {
    if (PrivateFile::write(file, content) == PrivateFile::Created::AlreadyThere) return failed(call.console, file + " is there already");
    return ExitCode::Done;
}

ExitCode issueAuthenticator(const Command::Call& call) {
    const std::string& name = call.arguments.words().front();
    const auto file = call.arguments.option("--out");
    if (!file) return failed(call.console, "--out FILE is missing", ExitCode::Usage);
    if (!util::isHostName(name) || name.size() > kLongestCommonName)
        return failed(call.console, name + " is no host name", ExitCode::Usage);
    return written(call, *file, call.company.authority().issueAuthenticator(name, call.company.clock()));
}

/// Puts the authority's certificate into each root payload that is empty; how many there were.
int fill(util::Value& profile, const util::Bytes& authority) {
    auto* content = profile.dictionary() == nullptr ? nullptr : profile.dictionary()->find("PayloadContent");
    auto* payloads = content == nullptr ? nullptr : content->list();
    int filled = 0;
    for (auto& payload : payloads == nullptr ? std::span<util::Value>() : std::span(*payloads)) {
        if (payload.dictionary() == nullptr || util::textOf(util::member(&payload, "PayloadType")) != kRootType) continue;
        const auto* now = util::member(&payload, "PayloadContent");
        if (now != nullptr && now->data() != nullptr && !now->data()->empty()) continue;
        payload.dictionary()->set("PayloadContent", util::Value::Data{authority});
        ++filled;
    }
    return filled;
}

ExitCode fillProfile(const Command::Call& call) {
    const auto file = call.arguments.option("--out");
    const std::string source = call.arguments.words().front();
    if (!file) return failed(call.console, "--out FILE is missing", ExitCode::Usage);
    std::ifstream stream(source, std::ios::binary);
    if (!stream) return failed(call.console, "cannot read " + source);
    auto profile = util::PropertyList::decode(util::Bytes(std::istreambuf_iterator<char>(stream), {}));
    if (!profile) return failed(call.console, source + ": " + profile.error().description);
    if (fill(*profile, call.company.authority().certificateDer()) == 0) return failed(call.console, source + " has no empty root payload");
    return written(call, *file, util::PropertyList::encode(*profile));
}

}  // namespace

std::vector<Command> networkCommands() {
    return {
        {.name = "radius-cert",
         .synopsis = "HOST --out FILE",
         .summary = "Signs a certificate for the network's authentication server of that name; key and certificate, PEM, go to FILE.",
         .options = {"--out"},
         .fewestWords = 1,
         .mostWords = 1,
         .data = Command::Data::MayBeMade,
         .run = issueAuthenticator},
        {.name = "profile",
         .synopsis = "TEMPLATE --out FILE",
         .summary = "Copies a profile template and puts the authority's certificate into its empty root payload.",
         .options = {"--out"},
         .fewestWords = 1,
         .mostWords = 1,
         .data = Command::Data::MayBeMade,
         .run = fillProfile},
    };
}

}  // namespace halvane::server
