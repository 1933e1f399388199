#include "server/Company.h"

#include "server/store/PrivateFile.h"

namespace halvane::server {

namespace {

std::filesystem::path prepared(const std::filesystem::path& directory) {
    PrivateFile::makeDirectory(directory);
    return directory;
}

}  // namespace

Company::Company(std::filesystem::path directory, Clock clockToUse)
    : clock(std::move(clockToUse)),
      database(prepared(directory) / "company.sqlite"),
      users(database),
      sessions(database, clock),
      computers(database, clock),
      workplaces(database),
      certificates(database, clock),
      uninstallCodes(database, clock),
      packages(database, directory / "updates"),
      outbox(directory / "outbox", clock),
      directory_(std::move(directory)) {}

const CertificateAuthority& Company::authority() {
    std::call_once(authorityMade_, [this] { authority_.emplace(directory_ / "authority.pem", clock); });
    return *authority_;
}

const SigningKey& Company::updateKey() {
    std::call_once(updateKeyMade_,
                   [this] { updateKey_.emplace(PrivateFile::readOrMake(directory_ / "update-key.pem", SigningKey::makePem)); });
    return *updateKey_;
}

}  // namespace halvane::server
