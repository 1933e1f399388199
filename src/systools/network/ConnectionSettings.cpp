#include "systools/network/ConnectionSettings.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cstdlib>

namespace halvane::systools {

namespace {

constexpr const char* kProfile = "com.halvane.profile";
constexpr const char* kNetwork = "com.halvane.network";
constexpr const char* kCertificateEnds = "com.halvane.certificate-ends";
/// Seconds that the authenticator may take, for each of the few messages there are.
constexpr int kAuthTimeout = 6;

struct UnrefBytes {
    void operator()(GBytes* bytes) const { g_bytes_unref(bytes); }
};
using BytesPointer = std::unique_ptr<GBytes, UnrefBytes>;

/// NetworkManager wants the NUL that ends the text as well.
BytesPointer pathBytes(const std::filesystem::path& path) {
    const std::string uri = "file://" + path.string();
    return BytesPointer(g_bytes_new(uri.c_str(), uri.size() + 1));
}

NMSetting* general(const CompanyConnection& from) {
    const std::string identifier = from.network + (from.medium == Medium::Wired ? " (wired)" : "");
    const std::unique_ptr<char, void (*)(void*)> uuid(nm_utils_uuid_generate(), g_free);
    NMSetting* setting = nm_setting_connection_new();
    g_object_set(setting, NM_SETTING_CONNECTION_ID, identifier.c_str(), NM_SETTING_CONNECTION_UUID, uuid.get(), NM_SETTING_CONNECTION_TYPE,
                 from.medium == Medium::Wired ? NM_SETTING_WIRED_SETTING_NAME : NM_SETTING_WIRELESS_SETTING_NAME,
                 // A refused certificate is not accepted the second time either.
                 NM_SETTING_CONNECTION_AUTH_RETRIES, 1, nullptr);
    nm_setting_connection_add_permission(NM_SETTING_CONNECTION(setting), "user", from.owner.c_str(), nullptr);
    return setting;
}

void addWireless(NMConnection* connection, const CompanyConnection& from) {
    const BytesPointer ssid(g_bytes_new(from.network.data(), from.network.size()));
    NMSetting* wireless = nm_setting_wireless_new();
    g_object_set(wireless, NM_SETTING_WIRELESS_SSID, ssid.get(), NM_SETTING_WIRELESS_MODE, NM_SETTING_WIRELESS_MODE_INFRA,
                 NM_SETTING_WIRELESS_HIDDEN, from.hidden ? TRUE : FALSE, nullptr);
    nm_connection_add_setting(connection, wireless);

    NMSetting* security = nm_setting_wireless_security_new();
    g_object_set(security, NM_SETTING_WIRELESS_SECURITY_KEY_MGMT, "wpa-eap", NM_SETTING_WIRELESS_SECURITY_PMF,
                 from.onlyWpa3 ? NM_SETTING_WIRELESS_SECURITY_PMF_REQUIRED : NM_SETTING_WIRELESS_SECURITY_PMF_OPTIONAL, nullptr);
    // Not the first WPA, which is broken.
    nm_setting_wireless_security_add_proto(NM_SETTING_WIRELESS_SECURITY(security), "rsn");
    nm_connection_add_setting(connection, security);
}

NMSetting* authentication(const CompanyConnection& from) {
    const BytesPointer identity = pathBytes(from.identityFile);
    const BytesPointer authorities = pathBytes(from.authoritiesFile);
    NMSetting* setting = nm_setting_802_1x_new();
    nm_setting_802_1x_add_eap_method(NM_SETTING_802_1X(setting), "tls");
    g_object_set(setting, NM_SETTING_802_1X_IDENTITY, from.userName.c_str(), NM_SETTING_802_1X_CA_CERT, authorities.get(),
                 NM_SETTING_802_1X_DOMAIN_SUFFIX_MATCH, fmt::format("{}", fmt::join(from.serverNames, ";")).c_str(),
                 // One file holds both.
                 NM_SETTING_802_1X_CLIENT_CERT, identity.get(), NM_SETTING_802_1X_PRIVATE_KEY, identity.get(),
                 NM_SETTING_802_1X_PRIVATE_KEY_PASSWORD, from.identityPassword.c_str(), NM_SETTING_802_1X_AUTH_TIMEOUT, kAuthTimeout,
                 nullptr);
    return setting;
}

NMSetting* mark(const CompanyConnection& from) {
    NMSetting* setting = nm_setting_user_new();
    auto* data = NM_SETTING_USER(setting);
    nm_setting_user_set_data(data, kProfile, from.profile.c_str(), nullptr);
    nm_setting_user_set_data(data, kNetwork, from.network.c_str(), nullptr);
    nm_setting_user_set_data(data, kCertificateEnds, std::to_string(from.certificateEnds).c_str(), nullptr);
    return setting;
}

std::string ownerOf(NMSettingConnection* setting) {
    const char* type = nullptr;
    const char* name = nullptr;
    if (nm_setting_connection_get_num_permissions(setting) != 1 ||
        nm_setting_connection_get_permission(setting, 0, &type, &name, nullptr) == FALSE || std::string_view(type) != "user")
        return {};
    return name;
}

}  // namespace

linux::GObjectPointer<NMConnection> ConnectionSettings::make(const CompanyConnection& from) {
    linux::GObjectPointer<NMConnection> connection(nm_simple_connection_new());
    nm_connection_add_setting(connection.get(), general(from));
    if (from.medium == Medium::Wifi) {
        addWireless(connection.get(), from);
    } else {
        nm_connection_add_setting(connection.get(), nm_setting_wired_new());
    }
    nm_connection_add_setting(connection.get(), authentication(from));
    nm_connection_add_setting(connection.get(), mark(from));
    return connection;
}

std::optional<CompanyConnection> ConnectionSettings::read(NMConnection& settings) {
    auto* data = reinterpret_cast<NMSettingUser*>(nm_connection_get_setting(&settings, NM_TYPE_SETTING_USER));
    auto* generalSetting = nm_connection_get_setting_connection(&settings);
    auto* eap = nm_connection_get_setting_802_1x(&settings);
    if (data == nullptr || generalSetting == nullptr || eap == nullptr) return std::nullopt;
    const char* profile = nm_setting_user_get_data(data, kProfile);
    const char* network = nm_setting_user_get_data(data, kNetwork);
    const char* ends = nm_setting_user_get_data(data, kCertificateEnds);
    if (profile == nullptr || network == nullptr) return std::nullopt;

    CompanyConnection connection;
    connection.profile = profile;
    connection.network = network;
    connection.owner = ownerOf(generalSetting);
    auto* wireless = nm_connection_get_setting_wireless(&settings);
    connection.medium = wireless != nullptr ? Medium::Wifi : Medium::Wired;
    connection.hidden = wireless != nullptr && nm_setting_wireless_get_hidden(wireless) != FALSE;
    if (nm_setting_802_1x_get_private_key_scheme(eap) == NM_SETTING_802_1X_CK_SCHEME_PATH)
        connection.identityFile = nm_setting_802_1x_get_private_key_path(eap);
    if (nm_setting_802_1x_get_ca_cert_scheme(eap) == NM_SETTING_802_1X_CK_SCHEME_PATH)
        connection.authoritiesFile = nm_setting_802_1x_get_ca_cert_path(eap);
    connection.certificateEnds = ends == nullptr ? 0 : std::strtoll(ends, nullptr, 10);
    return connection;
}

}  // namespace halvane::systools
