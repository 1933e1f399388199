#include "service/HVRequstHelper.h"

#include <fmt/format.h>

#include <utility>

namespace halvane::service {

namespace {
constexpr int kGet = 0;
constexpr int kPost = 1;
}  // namespace

bool HVRequstHelper::isAccepted(const util::Value& response) {
    constexpr int kOk = 200;
    return util::integerOf(util::member(&response, "code")) == kOk;
}

HVRequstHelper::HVRequstHelper(APIClient& client, std::string baseUrl) : client_(client), baseUrl_(std::move(baseUrl)) {}

std::string HVRequstHelper::urlOf(const std::string& path) const { return baseUrl_ + "/" + path; }

void HVRequstHelper::send(const std::string& url, int httpMethod, const std::optional<util::Dictionary>& params, Success success,
                          Failure failure) {
    client_.requestURL(url, httpMethod, params,
                       [success = std::move(success), failure = std::move(failure)](int code, const std::optional<util::Value>& object,
                                                                                    const std::optional<util::Error>& error) {
                           if (code == APIClient::kSuccess) {
                               if (success) success(object ? *object : util::Value());
                           } else if (failure) {
                               failure(error);
                           }
                       });
}

void HVRequstHelper::loginWithParams(const util::Dictionary& params, Success success, Failure failure) {
    send(urlOf("api/client/login"), kPost, params, std::move(success), std::move(failure));
}

void HVRequstHelper::updateOfficeAddressWithUserID(const std::optional<std::string>& userId, const std::optional<std::string>& workAddress,
                                                   Success success, Failure failure) {
    const std::string url =
        fmt::format("{}{}?work_address={}", urlOf("api/client/user/work_address/"), util::printed(userId), util::printed(workAddress));
    send(url, kGet, std::nullopt, std::move(success), std::move(failure));
}

void HVRequstHelper::getContactListUrlWithCurrentPage(const std::string& currentPage, const std::string& length, Success success,
                                                      Failure failure) {
    const std::string url = fmt::format("{}?current_page={}&length={}", urlOf("api/client/chat/contact_list"), currentPage, length);
    send(url, kGet, std::nullopt, std::move(success), std::move(failure));
}

void HVRequstHelper::getP12CertificateInfoWithUserName(const std::string& userName, const std::string& passWord, Success success,
                                                       Failure failure) {
    send(urlOf("papi/admin/create_ad_cert"), kPost, util::Dictionary{{"username", userName}, {"password", passWord}}, std::move(success),
         std::move(failure));
}

void HVRequstHelper::downloadP12CertificateWithUrl(const std::string& url, APIClient::Progress progress, Downloaded success,
                                                   Failure failure) {
    downloadFileWithUrl(url, std::move(progress), std::move(success), std::move(failure));
}

void HVRequstHelper::downloadFileWithUrl(const std::string& url, APIClient::Progress progress, Downloaded success, Failure failure) {
    client_.downloadURL(url, std::move(progress), std::move(success), [failure = std::move(failure)](const util::Error& error) {
        if (failure) failure(error);
    });
}

void HVRequstHelper::reportLockOrReportTheLossWithParams(const util::Dictionary& params, Success success, Failure failure) {
    send(urlOf("api/client/user/equipment_status"), kPost, params, std::move(success), std::move(failure));
}

void HVRequstHelper::checkVersionUpdateInfoWithParams(const util::Dictionary& params, Success success, Failure failure) {
    send(urlOf("api/client/user/equipment_status"), kPost, params, std::move(success), std::move(failure));
}

void HVRequstHelper::applyUnInstallCodeWithParams(const util::Dictionary& params, Success success, Failure failure) {
    postRequestWithUrl(urlOf("api/client/user/equipment/uninstall_apply"), params, std::move(success), std::move(failure));
}

void HVRequstHelper::verifyUnInstallWithParams(const util::Dictionary& params, Success success, Failure failure) {
    postRequestWithUrl(urlOf("api/client/user/equipment/uninstall_sure"), params, std::move(success), std::move(failure));
}

void HVRequstHelper::postRequestWithUrl(const std::string& url, const util::Dictionary& params, Success success, Failure failure) {
    send(url, kPost, params, std::move(success), std::move(failure));
}

}  // namespace halvane::service
