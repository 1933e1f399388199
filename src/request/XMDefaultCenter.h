#pragma once

#include "request/XMCenter.h"
#include "request/XMEngine.h"

#include <utility>

namespace halvane::request {

/// The operations of XMCenter, and of its engine's security, on `XMCenter::defaultCenter()`.
class XMDefaultCenter {
public:
    XMDefaultCenter() = delete;

    static void setupConfig(const XMCenter::ConfigBlock& configure) { XMCenter::defaultCenter()->setupConfig(configure); }
    static void setGeneralHeaderValue(std::optional<std::string> value, const std::string& field) {
        XMCenter::defaultCenter()->setGeneralHeaderValue(std::move(value), field);
    }
    static void setGeneralParameterValue(std::optional<util::Value> value, const std::string& key) {
        XMCenter::defaultCenter()->setGeneralParameterValue(std::move(value), key);
    }
    static void setRequestProcessBlock(XMRequestProcessBlock block) { XMCenter::defaultCenter()->setRequestProcessBlock(std::move(block)); }
    static void setResponseProcessBlock(XMResponseProcessBlock block) {
        XMCenter::defaultCenter()->setResponseProcessBlock(std::move(block));
    }
    static void setErrorProcessBlock(XMErrorProcessBlock block) { XMCenter::defaultCenter()->setErrorProcessBlock(std::move(block)); }

    static std::optional<std::string> sendRequest(const XMCenter::RequestBlock& configure, XMCallbacks callbacks = {}) {
        return XMCenter::defaultCenter()->sendRequest(configure, std::move(callbacks));
    }
    static std::optional<std::string> sendBatchRequest(const XMCenter::BatchBlock& configure, XMGroupCallbacks callbacks = {}) {
        return XMCenter::defaultCenter()->sendBatchRequest(configure, std::move(callbacks));
    }
    static std::optional<std::string> sendChainRequest(const XMCenter::ChainBlock& configure, XMGroupCallbacks callbacks = {}) {
        return XMCenter::defaultCenter()->sendChainRequest(configure, std::move(callbacks));
    }
    static void cancelRequest(const std::optional<std::string>& identifier, const XMCenter::CancelBlock& onCancel = {}) {
        XMCenter::defaultCenter()->cancelRequest(identifier, onCancel);
    }
    [[nodiscard]] static XMCenter::Running getRequest(const std::optional<std::string>& identifier) {
        return XMCenter::defaultCenter()->getRequest(identifier);
    }
    [[nodiscard]] static bool isNetworkReachable() { return XMCenter::defaultCenter()->isNetworkReachable(); }
    [[nodiscard]] static XMNetworkStatus networkConnectionType() { return XMCenter::defaultCenter()->networkConnectionType(); }

    static void addSSLPinningURL(const std::string& url) { engine()->addSSLPinningURL(url); }
    static void addSSLPinningCert(util::Bytes certificate) { engine()->addSSLPinningCert(std::move(certificate)); }
    static void addTwowayAuthenticationPKCS12(util::Bytes pkcs12, std::optional<std::string> keyPassword) {
        engine()->addTwowayAuthenticationPKCS12(std::move(pkcs12), std::move(keyPassword));
    }

private:
    static std::shared_ptr<XMEngine> engine() { return XMCenter::defaultCenter()->settings()->engine; }
};

}  // namespace halvane::request
