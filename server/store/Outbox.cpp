#include "server/store/Outbox.h"

#include "server/crypto/Random.h"
#include "server/store/PrivateFile.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <iterator>

namespace halvane::server {

namespace {

constexpr const char* kExtension = ".eml";

}  // namespace

void Outbox::put(const Mail& mail) {
    PrivateFile::makeDirectory(directory_);
    const auto now = fmt::gmtime(clock_());
    const std::string content = fmt::format(
        "Date: {:%a, %d %b %Y %H:%M:%S} +0000\nTo: {}\nSubject: {}\nMIME-Version: 1.0\nContent-Type: text/plain; charset=utf-8\n"
        "Content-Transfer-Encoding: 8bit\n\n{}\n",
        now, mail.to, mail.subject, mail.text);
    // The count keeps mails of one second in their order.
    for (std::size_t count = 1;; ++count) {
        const auto name = fmt::format("{:%Y%m%dT%H%M%SZ}-{:04}{}", now, count, kExtension);
        if (PrivateFile::write(directory_ / name, content) == PrivateFile::Created::Yes) return;
    }
}

std::vector<std::string> Outbox::names() const {
    std::vector<std::string> names;
    std::error_code none;
    for (const auto& entry : std::filesystem::directory_iterator(directory_, none)) {
        if (entry.path().extension() == kExtension) names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::optional<std::string> Outbox::read(const std::string& name) const {
    const auto known = names();
    if (std::find(known.begin(), known.end(), name) == known.end()) return std::nullopt;
    std::ifstream file(directory_ / name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

}  // namespace halvane::server
