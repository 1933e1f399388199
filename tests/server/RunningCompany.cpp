#include "server/RunningCompany.h"

#include "server/crypto/PasswordHash.h"
#include "util/Json.h"

#include <stdlib.h>

#include <stdexcept>

namespace halvane::test {

TemporaryDirectory::TemporaryDirectory() {
    std::string name = (std::filesystem::temp_directory_path() / "halvane-server-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("cannot make " + name);
    path_ = name;
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

RunningCompany::RunningCompany()
    : company(directory.path() / "data", time.clock()), server(company, {}), url(server.start().value()), probe(url) {
    addUser("chen.xiao");
}

RunningCompany::~RunningCompany() = default;

server::User RunningCompany::addUser(const std::string& shortName) {
    // One hash for all: making it is slow on purpose.
    static const std::string hash = server::PasswordHash::of(kPassword);
    return company.users.add({.userName = shortName + "@example.com", .shortName = shortName}, hash).value();
}

std::string RunningCompany::signIn(const std::string& name, const std::string& password) const {
    return probe.postJson("/api/client/login", util::Json::encode(util::Dictionary{{"username", name}, {"password", password}})).body;
}

std::string RunningCompany::tokenOf(const std::string& name) const { return dataField(signIn(name), "token"); }

std::string RunningCompany::statusOf(const std::string& name, const std::string& sn, const std::string& token) const {
    return probe.postJson("/api/client/user/equipment_status", util::Json::encode(util::Dictionary{{"username", name}, {"sn", sn}}), token)
        .body;
}

std::string mailedCode(const server::Company& company) {
    const auto names = company.outbox.names();
    const std::string mail = names.empty() ? "" : company.outbox.read(names.back()).value_or("");
    constexpr std::string_view kLabel = "安全码：";
    const auto at = mail.find(kLabel);
    if (at == std::string::npos) return {};
    const auto end = mail.find_first_not_of("0123456789", at + kLabel.size());
    const std::string code = mail.substr(at + kLabel.size(), end - at - kLabel.size());
    return code.size() == 6 ? code : "";
}

std::string dataField(const std::string& body, const std::string& key) {
    const auto decoded = util::Json::decode(body);
    if (!decoded) return {};
    const auto* value = util::member(util::member(&*decoded, "data"), key);
    return util::textOf(value).value_or("");
}

}  // namespace halvane::test
