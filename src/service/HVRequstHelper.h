#pragma once

#include "service/APIClient.h"

#include <functional>
#include <optional>
#include <string>

namespace halvane::service {

/// Every operation of the company server, by address, method and parameters; what replies mean is the
/// caller's to read. Each call is answered by exactly one of its two callbacks, on the main thread; an
/// empty callback is not called. A reply whose "code" is not 200 is a success here.
class HVRequstHelper {
public:
    using Success = std::function<void(const util::Value& response)>;
    using Downloaded = std::function<void(const std::string& fileUrl)>;
    using Failure = std::function<void(const std::optional<util::Error>& error)>;  ///< absent: no network

    /// Whether the server did what it was asked for: the reply's "code" reads as 200.
    [[nodiscard]] static bool isAccepted(const util::Value& response);

    /// `baseUrl`: scheme and host, no trailing slash.
    HVRequstHelper(APIClient& client, std::string baseUrl);

    void loginWithParams(const util::Dictionary& params, Success success, Failure failure);
    /// The chosen workplace travels in the query of a GET.
    void updateOfficeAddressWithUserID(const std::optional<std::string>& userId, const std::optional<std::string>& workAddress,
                                       Success success, Failure failure);
    void getContactListUrlWithCurrentPage(const std::string& currentPage, const std::string& length, Success success, Failure failure);
    /// `userName`: without the mail domain.
    void getP12CertificateInfoWithUserName(const std::string& userName, const std::string& passWord, Success success, Failure failure);
    void downloadP12CertificateWithUrl(const std::string& url, APIClient::Progress progress, Downloaded success, Failure failure);
    void downloadFileWithUrl(const std::string& url, APIClient::Progress progress, Downloaded success, Failure failure);
    void reportLockOrReportTheLossWithParams(const util::Dictionary& params, Success success, Failure failure);
    /// The same address as the status report: the server tells the two apart by the parameters.
    void checkVersionUpdateInfoWithParams(const util::Dictionary& params, Success success, Failure failure);
    void applyUnInstallCodeWithParams(const util::Dictionary& params, Success success, Failure failure);
    void verifyUnInstallWithParams(const util::Dictionary& params, Success success, Failure failure);
    void postRequestWithUrl(const std::string& url, const util::Dictionary& params, Success success, Failure failure);

private:
    void send(const std::string& url, int httpMethod, const std::optional<util::Dictionary>& params, Success success, Failure failure);
    [[nodiscard]] std::string urlOf(const std::string& path) const;

    APIClient& client_;
    std::string baseUrl_;
};

}  // namespace halvane::service
