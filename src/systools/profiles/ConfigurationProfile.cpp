#include "systools/profiles/ConfigurationProfile.h"

#include "util/PropertyList.h"
#include "util/Text.h"
#include "util/Value.h"

#include <algorithm>
#include <filesystem>
#include <optional>

namespace halvane::systools {

namespace {

using util::dataError;
using Network = ConfigurationProfile::Network;

constexpr const char* kIdentityType = "com.halvane.payload.pkcs12";
constexpr const char* kRootType = "com.halvane.payload.root";
constexpr const char* kWifiType = "com.halvane.payload.wifi";
constexpr const char* kWiredType = "com.halvane.payload.wired";
constexpr std::int64_t kEapTls = 13;
constexpr std::size_t kLongestSsid = 32;  // bytes, by the radio's standard
constexpr std::size_t kLongestName = 120;

std::string textIn(const util::Value& payload, const char* key) { return util::textOf(util::member(&payload, key)).value_or(""); }

/// The texts of a list, or of one text standing alone.
std::vector<std::string> textsIn(const util::Value* value) {
    std::vector<std::string> texts;
    if (value == nullptr) return texts;
    if (value->text() != nullptr) texts.push_back(*value->text());
    if (value->list() == nullptr) return texts;
    for (const auto& each : *value->list()) {
        if (each.text() != nullptr) texts.push_back(*each.text());
    }
    return texts;
}

bool acceptsTls(const util::Value* types) {
    const auto* list = types == nullptr ? nullptr : types->list();
    return list != nullptr && std::ranges::any_of(*list, [](const util::Value& type) { return util::integerOf(&type) == kEapTls; });
}

class Reader {
public:
    explicit Reader(ConfigurationProfile& profile) : profile_(profile) {}

    util::Result<void> read(const util::Value& payload) {
        if (payload.dictionary() == nullptr) return dataError("a payload is no dictionary");
        const std::string type = textIn(payload, "PayloadType");
        if (type == kIdentityType) return readIdentity(payload);
        if (type == kRootType) return readRoot(payload);
        if (type == kWifiType) return readNetwork(payload, Medium::Wifi);
        if (type == kWiredType) return readNetwork(payload, Medium::Wired);
        profile_.skipped.push_back(type.empty() ? "without a type" : type);
        return {};
    }

private:
    util::Result<void> readIdentity(const util::Value& payload) {
        const auto* content = util::member(&payload, "PayloadContent");
        if (content == nullptr || content->data() == nullptr || content->data()->empty())
            return dataError("its certificate payload holds no certificate");
        profile_.identities.push_back({textIn(payload, "PayloadUUID"), textIn(payload, "Password"), *content->data()});
        return {};
    }

    util::Result<void> readRoot(const util::Value& payload) {
        const auto* content = util::member(&payload, "PayloadContent");
        if (content == nullptr || content->data() == nullptr || content->data()->empty())
            return dataError("its root payload holds no certificate: the company's has to be put in when the client is deployed");
        profile_.roots.push_back(*content->data());
        return {};
    }

    util::Result<void> readNetwork(const util::Value& payload, Medium medium) {
        Network network{.medium = medium};
        network.name = textIn(payload, medium == Medium::Wifi ? "SSID_STR" : "NetworkName");
        const std::size_t longest = medium == Medium::Wifi ? kLongestSsid : kLongestName;
        if (network.name.empty() || network.name.size() > longest || util::hasControls(network.name))
            return dataError("a network payload has no usable name");
        network.hidden = util::booleanOf(util::member(&payload, "HIDDEN_NETWORK"));
        network.onlyWpa3 = textIn(payload, "EncryptionType") == "WPA3";
        network.identityUuid = textIn(payload, "PayloadCertificateUUID");
        if (network.identityUuid.empty()) return dataError("network " + network.name + " names no certificate to join with");

        const auto* eap = util::member(&payload, "EAPClientConfiguration");
        if (!acceptsTls(util::member(eap, "AcceptEAPTypes"))) return dataError("network " + network.name + " does not accept EAP-TLS");
        network.serverNames = textsIn(util::member(eap, "TLSTrustedServerNames"));
        // Without it anybody with a certificate of the same authority, every employee, could pose as the network.
        if (network.serverNames.empty() || !std::ranges::all_of(network.serverNames, util::isHostName))
            return dataError("network " + network.name + " does not say its authenticator's name");
        network.userName = util::textOf(util::member(eap, "UserName")).value_or("");
        profile_.networks.push_back(std::move(network));
        return {};
    }

    ConfigurationProfile& profile_;
};

/// What the networks refer to has to be there.
util::Result<void> check(const ConfigurationProfile& profile) {
    for (const auto& network : profile.networks) {
        if (std::ranges::none_of(profile.identities, [&](const auto& identity) { return identity.uuid == network.identityUuid; }))
            return dataError("network " + network.name + " names a certificate that is not in the profile");
        if (profile.roots.empty()) return dataError("has no root certificate to know the networks' authenticators by");
    }
    return {};
}

}  // namespace

bool ConfigurationProfile::isIdentifier(const std::string& text) {
    return !text.empty() && text.size() <= kLongestName && std::filesystem::path(text).filename() == text && !text.starts_with('.') &&
           !util::hasControls(text) && util::isValidUtf8(text);
}

util::Result<ConfigurationProfile> ConfigurationProfile::parse(const util::Bytes& bytes) {
    if (bytes.size() > kLargest) return dataError("is larger than 4 MiB: not a profile");
    const auto list = util::PropertyList::decode(bytes);
    if (!list) return list.error();
    if (list->dictionary() == nullptr) return dataError("is no dictionary");

    ConfigurationProfile profile;
    profile.identifier = textIn(*list, "PayloadIdentifier");
    if (!isIdentifier(profile.identifier)) return dataError("has no usable identifier");
    const auto* content = util::member(&*list, "PayloadContent");
    if (content == nullptr || content->list() == nullptr || content->list()->empty()) return dataError("has no payloads");
    Reader reader(profile);
    for (const auto& payload : *content->list()) {
        if (auto read = reader.read(payload); !read) return read.error();
    }
    if (auto checked = check(profile); !checked) return checked.error();
    return profile;
}

}  // namespace halvane::systools
