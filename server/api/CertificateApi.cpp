#include "server/api/CertificateApi.h"

#include "server/Company.h"
#include "server/api/Authenticator.h"
#include "server/api/Envelope.h"
#include "server/api/RequestFields.h"

#include <string_view>

namespace halvane::server {

CertificateApi::CertificateApi(Company& company, Authenticator& authenticator, std::string baseUrl)
    : company_(company), authenticator_(authenticator), baseUrl_(std::move(baseUrl)) {}

ApiReply CertificateApi::create(const ApiRequest& request) {
    RequestFields fields(request);
    const std::string name = fields.text("username");
    const std::string password = fields.text("password");
    if (fields.problem()) return Envelope::malformed(*fields.problem());

    const auto outcome = authenticator_.byPassword(name, password);
    if (const auto* refusal = std::get_if<ApiReply>(&outcome)) return *refusal;
    const User& user = std::get<User>(outcome);
    const auto identity = company_.authority().issue({.shortName = user.shortName, .email = user.userName}, company_.clock());
    const auto secret =
        company_.certificates.put(user.id, {.serial = identity.serial, .notAfter = identity.notAfter, .pkcs12 = identity.pkcs12});
    return Envelope::succeeded("证书已签发", {{"download_url", baseUrl_ + kDownloadPath + secret + "/" + user.certificateFileName()},
                                              {"ad_cert_password", identity.password}});
}

ApiReply CertificateApi::download(const ApiRequest& request) {
    const std::string_view rest = std::string_view(request.path).substr(std::string_view(kDownloadPath).size());
    const auto slash = rest.find('/');
    auto file = company_.certificates.fetch(rest.substr(0, slash));
    if (!file || slash == std::string_view::npos || rest.substr(slash + 1) != file->name) return Envelope::failed(404, "no such file");
    return {.status = 200,
            .contentType = "application/x-pkcs12",
            .body = std::move(file->pkcs12),
            .headers = {{"Content-Disposition", "attachment; filename=\"" + file->name + "\""}}};
}

}  // namespace halvane::server
