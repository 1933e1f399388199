#include "login/CertificateFetch.h"

#include "device/HVDeviceInfoHelper.h"
#include "platform/DispatchQueue.h"
#include "platform/FileStore.h"
#include "platform/HttpMessage.h"
#include "service/HVRequstHelper.h"
#include "session/HDCLUserConfig.h"
#include "tools/HVMobileConfigTool.h"
#include "util/Log.h"
#include "util/Text.h"

#include <fmt/format.h>

#include <utility>

namespace halvane::login {

namespace {

constexpr const char* kProfileTemplate = "brelton.mobileconfig";

std::string pathOf(const std::string& fileUrl) { return util::replaced(fileUrl, "file://", ""); }

}  // namespace

std::optional<std::string> CertificateFetch::sessionOf(const Collaborators& to) {
    const auto* user = to.user.user_getUserInfo();
    return user == nullptr ? std::nullopt : user->token;
}

CertificateFetch::CertificateFetch(Collaborators collaborators) : to_(collaborators) {}

void CertificateFetch::requestCertificateWithUserName(const std::string& userName, const std::string& passWord) {
    if (!to_.user.isShouldUpdateCertificate()) return;
    to_.requests.getP12CertificateInfoWithUserName(
        userName, passWord,
        [to = to_, userName](const util::Value& response) {
            const util::Value* data = util::member(&response, "data");
            const bool hasData = data != nullptr && data->dictionary() != nullptr && !data->dictionary()->empty();
            if (!service::HVRequstHelper::isAccepted(response) || !hasData) return;
            downloadP12WithUrl(to, util::textOf(util::member(data, "download_url")).value_or(""),
                               util::textOf(util::member(data, "ad_cert_password")), userName);
        },
        [&log = to_.log](const std::optional<util::Error>& error) {
            if (error) log.write("no certificate information: " + error->description);
        });
}

void CertificateFetch::downloadP12WithUrl(const Collaborators& to, const std::string& url, const std::optional<std::string>& password,
                                          const std::string& certificateFileName) {
    to.requests.downloadP12CertificateWithUrl(
        url, [&log = to.log](const platform::HttpProgress&) { log.write("下载证书中..."); },
        [to, password, certificateFileName, whose = sessionOf(to)](const std::string& fileUrl) {
            // A computer that was marked as lost meanwhile signed its user out, and one that was locked as well has had its
            // certificate deleted already: nothing would ever take this one away.
            if (!whose || sessionOf(to) != whose) {
                to.log.write("its user has signed out: the certificate is not installed");
                (void)to.files.remove(pathOf(fileUrl));
                return;
            }
            to.toolQueue.async([to, fileUrl, password, certificateFileName] { install(to, fileUrl, password, certificateFileName); });
        },
        [&log = to.log](const std::optional<util::Error>& error) {
            if (error) log.write(fmt::format("出错了 code = {} description = {}", error->code, error->description));
        });
}

void CertificateFetch::install(const Collaborators& to, const std::string& fileUrl, const std::optional<std::string>& password,
                               const std::string& certificateFileName) {
    const std::string path = pathOf(fileUrl);
    to.device.installCertWithPath(path, password.value_or(""));

    auto file = to.files.read(path);
    if (!file) to.log.write(file.error().description);
    const util::Bytes bytes = file ? *std::move(file) : util::Bytes();
    to.log.write(util::kRedacted);  // where the certificate's base64 text would stand
    const std::string profile = to.profiles.configFilePathWithTemplateFilePath(kProfileTemplate, certificateFileName, password, bytes);
    to.profiles.installMobileConfigFileWithFilePath(profile);
}

}  // namespace halvane::login
