#include "systools/ProfileFixture.h"

#include "systools/network/ConnectionSettings.h"
#include "systools/security/StoreLock.h"

#include <sys/stat.h>

#include <thread>
#include <tuple>

namespace halvane::systools {
namespace {

TEST_F(ProfileTest, makes_a_connection_for_each_network_and_undoes_exactly_that) {
    net_.connections.push_back({"/other", {.profile = "com.other", .owner = me_, .network = "x"}});
    net_.connections.push_back({"/li", {.profile = "com.example.net", .owner = "li", .network = "test_dot1x"}});
    const auto installed = install(profile(usual()));
    EXPECT_EQ(installed.code, kSuccess) << installed.err;
    EXPECT_EQ(installed.out, "installed com.example.net: Wi-Fi test_dot1x, wired test_dot1x\n");
    ASSERT_EQ(net_.connections.size(), 4U);
    const auto& wifi = net_.connections[2].connection;
    const auto& wired = net_.connections[3].connection;
    EXPECT_EQ(wifi.medium, Medium::Wifi);
    EXPECT_EQ(wired.medium, Medium::Wired);
    for (const auto* each : {&wifi, &wired}) {
        EXPECT_EQ(each->owner, me_);
        EXPECT_EQ(each->network, "test_dot1x");
        EXPECT_EQ(each->identityFile, identityFiles() / "chen.xiao.p12");
        EXPECT_EQ(each->identityPassword, "pw");
        EXPECT_EQ(each->userName, "chen.xiao");
        EXPECT_EQ(each->serverNames, std::vector<std::string>{"radius.example.com"});
        EXPECT_EQ(each->authoritiesFile, authorities());
        EXPECT_GT(each->certificateEnds, 1'600'000'000);
    }
    EXPECT_EQ(*files_.read(authorities()), authority_.root().certificate);
    struct stat seen {};
    ASSERT_EQ(::stat(authorities().c_str(), &seen), 0);
    EXPECT_EQ(seen.st_mode & 0777U, 0600U);

    EXPECT_EQ(run({"remove", "-path", (home_.path() / "a b \"c\" 网络.mobileconfig").string()}).code, kSuccess);
    EXPECT_EQ(net_.handles(), (std::vector<std::string>{"/other", "/li"}));
    EXPECT_FALSE(std::filesystem::exists(profiles() / "com.example.net"));
    EXPECT_TRUE(identities_.exists("chen.xiao")) << "the certificate is the store's";
    EXPECT_EQ(run({"remove", "-identifier", "com.example.net"}).code, kNotFound);
    EXPECT_EQ(run({"remove", "-identifier", "com.other"}).code, kSuccess);
}

TEST_F(ProfileTest, installed_twice_it_is_replaced_and_what_it_lost_goes) {
    ASSERT_EQ(install(profile(usual())).code, kSuccess);
    const test::TestAuthority newer("newer");
    ASSERT_EQ(install(profile({certificate(identity_), root(newer.root().certificate), network("wired", "新 网络 \"x\"")})).code, kSuccess);
    EXPECT_EQ(net_.handles(), std::vector<std::string>{"/3"});
    EXPECT_EQ(net_.connections[0].connection.network, "新 网络 \"x\"");
    EXPECT_EQ(*files_.read(authorities()), newer.root().certificate);
    ASSERT_EQ(install(profile({root(authority_.root().der)})).out, "installed com.example.net: no networks\n");
    EXPECT_TRUE(net_.connections.empty());
}

TEST_F(ProfileTest, an_installation_that_fails_on_its_way_leaves_all_as_it_was) {
    net_.addsUntilFailure = 2;
    const auto first = install(profile(usual()));
    EXPECT_EQ(first.code, kForbidden);
    EXPECT_NE(first.err.find("not allowed"), std::string::npos);
    EXPECT_TRUE(net_.connections.empty());
    EXPECT_FALSE(std::filesystem::exists(profiles() / "com.example.net"));

    ASSERT_EQ(install(profile(usual())).code, kSuccess);
    const auto before = net_.handles();
    const test::TestAuthority newer("newer");
    auto changed = usual();
    changed[1] = root(newer.root().der);
    net_.addsUntilFailure = 2;
    EXPECT_EQ(install(profile(changed)).code, kForbidden);
    EXPECT_EQ(net_.handles(), before);
    EXPECT_EQ(*files_.read(authorities()), authority_.root().certificate);

    net_.running = false;
    std::filesystem::remove_all(profiles());
    EXPECT_EQ(install(profile(changed)).code, kNoService);
    EXPECT_FALSE(std::filesystem::exists(profiles() / "com.example.net"));
    net_.running = true;

    // An order that is carried out although its answer came too late.
    net_.connections.clear();
    net_.addsUntilFailure = 2;
    net_.failsLate = true;
    EXPECT_EQ(install(profile(usual())).code, kForbidden);
    EXPECT_TRUE(net_.connections.empty());
}

TEST_F(ProfileTest, what_network_manager_does_not_give_up_goes_with_the_next_installation) {
    ASSERT_EQ(install(profile(usual())).code, kSuccess);
    net_.refusesRemoval = true;
    const auto kept = install(profile(usual()));
    EXPECT_EQ(kept.code, kFailure);
    EXPECT_NE(kept.err.find("kept /1"), std::string::npos);
    EXPECT_EQ(run({"remove", "-identifier", "com.example.net"}).code, kFailure);
    EXPECT_TRUE(std::filesystem::exists(authorities())) << "the connections that are left need it";
    net_.refusesRemoval = false;
    ASSERT_EQ(install(profile(usual())).code, kSuccess);
    EXPECT_EQ(net_.connections.size(), 2U);
}

TEST_F(ProfileTest, a_certificate_has_to_be_in_the_store_and_to_open) {
    struct Row {
        const char* name;
        util::Dictionary payload;
        int code;
        const char* says;
    };
    const auto other = forge_.make({.commonName = "li.wen"});
    const Row rows[] = {
        {"wrong password", certificate(identity_, "n0-such-pw"), kWrongPassword, "wrong password"},
        {"not in the store", certificate(other), kNotFound, "\"li.wen\" is not in the certificate store"},
        {"no certificate", certificate("certainly not"), kMalformed, "damaged, or not a PKCS#12"},
        {"nothing", certificate(""), kMalformed, "holds no certificate"},
        {"old cipher", certificate(forge_.make({.cipher = test::Pkcs12Forge::Cipher::Rc2})), kMalformed, "old cipher"},
    };
    for (const auto& [name, payload, code, says] : rows) {
        SCOPED_TRACE(name);
        auto payloads = usual();
        payloads[0] = payload;
        const auto result = install(profile(payloads));
        EXPECT_EQ(result.code, code);
        EXPECT_NE(result.err.find(says), std::string::npos) << result.err;
        EXPECT_EQ(result.err.find(*payload.find("Password")->text()), std::string::npos);
    }
    EXPECT_TRUE(net_.connections.empty());

    // Newly issued under the same name and password: the store's is the one that joins.
    store("chen.xiao", forge_.make({}));
    EXPECT_EQ(install(profile(usual())).code, kSuccess);
    store("chen.xiao", forge_.make({.commonName = "somebody.else"}));
    EXPECT_EQ(install(profile(usual())).code, kWrongPassword);
    store("chen.xiao", forge_.make({.password = "another"}));
    EXPECT_EQ(install(profile(usual())).code, kWrongPassword);
}

TEST_F(ProfileTest, what_is_no_usable_profile_is_named_and_changes_nothing) {
    const auto with = [this](std::size_t index, util::Value payload) {
        auto payloads = usual();
        payloads[index] = std::move(payload);
        return profile(payloads);
    };
    const auto without = [this](std::size_t index) {
        auto payloads = usual();
        payloads.erase(payloads.begin() + static_cast<std::ptrdiff_t>(index));
        return profile(payloads);
    };
    const auto nameless = [](util::Dictionary payload, const char* key) {
        payload.set(key, "");
        return payload;
    };
    // One that is a whole profile, and then more.
    auto huge = usual();
    huge.push_back(util::Dictionary{{"PayloadType", std::string(5'000'000, 'x')}});
    const std::pair<util::Value, const char*> rows[] = {
        {profile(huge), "larger than 4 MiB"},
        {List{}, "no dictionary"},
        {profile({}), "no payloads"},
        {util::Dictionary{{"PayloadIdentifier", "x"}, {"PayloadContent", "x"}}, "no payloads"},
        {with(2, "x"), "a payload is no dictionary"},
        {profile(usual(), ""), "identifier"},
        {profile(usual(), "../x"), "identifier"},
        {profile(usual(), ".."), "identifier"},
        {profile(usual(), ".lock"), "identifier"},
        {without(0), "not in the profile"},
        {without(1), "no root certificate"},
        {profile({nameless(certificate(identity_), "PayloadUUID"), root(authority_.root().der),
                  nameless(network("wifi"), "PayloadCertificateUUID")}),
         "names no certificate"},
        {with(1, root("")), "deployed"},
        {with(1, root("text")), "not a certificate"},
        {with(1, root(authority_.issueClient("chen.xiao").der)), "no authority's"},
        {with(2, network("wifi", "")), "no usable name"},
        {with(2, network("wifi", std::string(33, 'x'))), "no usable name"},
        {with(3, network("wired", "a\nb")), "no usable name"},
        {with(2, network("wifi", "n", eap(List{}))), "authenticator's name"},
        {with(2, network("wifi", "n", eap(List{"a;b"}))), "authenticator's name"},
        {with(2, network("wifi", "n", eap(List{""}))), "authenticator's name"},
        {with(2, network("wifi", "n", eap(List{"r"}, List{25}))), "EAP-TLS"},
        {with(2, network("wifi", "n", "x")), "EAP-TLS"},
    };
    for (const auto& [value, says] : rows) {
        SCOPED_TRACE(says);
        const auto result = install(value);
        EXPECT_EQ(result.code, kMalformed);
        EXPECT_NE(result.err.find(says), std::string::npos) << result.err;
    }
    EXPECT_EQ(run({"install", "-path", file("not a property list").string()}).code, kMalformed);
    EXPECT_EQ(run({"install", "-path", file(util::Bytes(50'000'000, ' ')).string()}).code, kMalformed);
    EXPECT_EQ(run({"install", "-path", "/nowhere"}).code, kFailure);
    EXPECT_TRUE(net_.connections.empty());
    EXPECT_FALSE(std::filesystem::exists(profiles()));
}

TEST_F(ProfileTest, what_a_network_asks_for_is_taken_over) {
    auto settings = eap(List{"a.example.com", "b.example.com"});
    settings.set("UserName", "host/pc1");
    auto wifi = network("wifi", "Office", settings);
    wifi.set("EncryptionType", "WPA3");
    wifi.set("HIDDEN_NETWORK", true);
    ASSERT_EQ(install(profile({certificate(identity_), root(authority_.root().certificate), wifi})).code, kSuccess) << "a root may be PEM";
    const auto& made = net_.connections.at(0).connection;
    EXPECT_EQ(made.userName, "host/pc1");
    EXPECT_TRUE(made.onlyWpa3);
    EXPECT_TRUE(made.hidden);
    EXPECT_EQ(made.serverNames, (std::vector<std::string>{"a.example.com", "b.example.com"}));
    EXPECT_EQ(*files_.read(authorities()), authority_.root().certificate);
}

TEST_F(ProfileTest, payloads_of_other_kinds_are_named_and_left_out) {
    auto payloads = usual();
    payloads.push_back(util::Dictionary{{"PayloadType", "com.other.mail"}});
    payloads.push_back(util::Dictionary{});
    const auto result = install(profile(payloads));
    EXPECT_EQ(result.code, kSuccess);
    EXPECT_NE(result.err.find("payload com.other.mail"), std::string::npos);
    EXPECT_NE(result.err.find("payload without a type"), std::string::npos);
}

TEST_F(ProfileTest, arguments_that_make_no_sense_are_answered_with_the_usage) {
    const std::vector<Arguments> rows = {{},
                                         {"list"},
                                         {"install"},
                                         {"install", "-path"},
                                         {"install", "-path", ""},
                                         {"install", "-identifier", "x"},
                                         {"remove", "-path", "x", "y"},
                                         {"remove", "-name", "x"},
                                         {"remove", "-identifier", "../x"}};
    for (const auto& arguments : rows) {
        const auto result = run(arguments);
        EXPECT_EQ(result.code, kUsage);
        EXPECT_NE(result.err.find("usage:"), std::string::npos);
    }
    EXPECT_EQ(run({"--help"}).code, kSuccess);
}

TEST_F(ProfileTest, a_second_installation_waits_for_its_turn_and_replaces_what_came_meanwhile) {
    ASSERT_TRUE(files_.makeDirectory(profiles()));
    auto held = std::make_unique<util::Result<StoreLock>>(StoreLock::take(profiles() / ".lock"));
    // The first one, at its end.
    std::thread first([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        {
            const std::lock_guard lock(net_.mutex);
            net_.connections.push_back({"/first", {.profile = "com.example.net", .owner = me_, .network = "old"}});
        }
        held.reset();
    });
    const auto second = install(profile(usual()));
    first.join();
    EXPECT_EQ(second.code, kSuccess);
    EXPECT_EQ(net_.handles(), (std::vector<std::string>{"/1", "/2"}));
}

TEST_F(ProfileTest, files_go_from_where_the_connections_say_they_are_and_from_nowhere_else) {
    const auto elsewhere = home_.path() / "elsewhere/com.example.net/authorities.pem";
    const auto precious = home_.path() / "precious/authorities.pem";
    for (const auto& path : {elsewhere, precious}) {
        ASSERT_TRUE(files_.makeDirectory(path.parent_path()));
        ASSERT_TRUE(files_.write(path, "pem"));
        net_.connections.push_back({path, {.profile = "com.example.net", .owner = me_, .authoritiesFile = path}});
    }
    EXPECT_EQ(run({"remove", "-identifier", "com.example.net"}).code, kSuccess);
    EXPECT_FALSE(std::filesystem::exists(elsewhere.parent_path()));
    EXPECT_TRUE(std::filesystem::exists(precious));
}

TEST_F(ProfileTest, programs_without_a_network_service_say_so_at_once) {
    const auto path = file(util::PropertyList::encode(profile(usual()))).string();
    const std::vector<std::pair<std::string, std::string>> nowhere{{"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere/bus"}};
    const auto installed = test::runProgram(test::inToolRoot("usr/bin/profiles"), {"install", "-path", path}, nowhere);
    EXPECT_EQ(installed.exitCode, kNoService);
    EXPECT_EQ(installed.out, "");
    EXPECT_TRUE(installed.err.starts_with("profiles: " + path + ": NetworkManager cannot be reached")) << installed.err;
    for (const Arguments& arguments :
         {Arguments{"-setairportnetwork", "en0", "x"}, Arguments{"-setnetworkserviceenabled", "Wi-Fi", "off"}}) {
        EXPECT_EQ(test::runProgram(test::inToolRoot("usr/sbin/networksetup"), arguments, nowhere).exitCode, kNoService);
    }
}

CompanyConnection example(Medium medium) {
    return {.profile = "com.example.net",
            .owner = "chen",
            .medium = medium,
            .network = "公司 \"net\"",
            .hidden = true,
            .onlyWpa3 = true,
            .identityFile = "/home/陈/a b%c.p12",
            .identityPassword = "s3cret",
            .authoritiesFile = "/home/陈/ca.pem",
            .serverNames = {"radius.example.com", "b.example.com"},
            .userName = "chen.xiao",
            .certificateEnds = 1'800'000'000};
}

TEST(ConnectionSettingsTest, are_valid_bind_the_authenticator_and_come_back) {
    for (const Medium medium : {Medium::Wifi, Medium::Wired}) {
        const auto made = ConnectionSettings::make(example(medium));
        GError* error = nullptr;
        EXPECT_TRUE(nm_connection_verify(made.get(), &error)) << error->message;
        auto* eap = nm_connection_get_setting_802_1x(made.get());
        EXPECT_EQ(nm_setting_802_1x_get_num_eap_methods(eap), 1U);
        EXPECT_STREQ(nm_setting_802_1x_get_eap_method(eap, 0), "tls");
        EXPECT_STREQ(nm_setting_802_1x_get_domain_suffix_match(eap), "radius.example.com;b.example.com");
        EXPECT_STREQ(nm_setting_802_1x_get_ca_cert_path(eap), "/home/陈/ca.pem");
        EXPECT_FALSE(nm_setting_802_1x_get_system_ca_certs(eap));
        EXPECT_EQ(nm_setting_802_1x_get_ca_path(eap), nullptr);
        EXPECT_STREQ(nm_setting_802_1x_get_private_key_path(eap), "/home/陈/a b%c.p12");
        EXPECT_STREQ(nm_setting_802_1x_get_client_cert_path(eap), "/home/陈/a b%c.p12");
        EXPECT_STREQ(nm_setting_802_1x_get_private_key_password(eap), "s3cret");
        EXPECT_EQ(
            nm_connection_is_type(made.get(), medium == Medium::Wifi ? NM_SETTING_WIRELESS_SETTING_NAME : NM_SETTING_WIRED_SETTING_NAME),
            TRUE);

        auto* general = nm_connection_get_setting_connection(made.get());
        EXPECT_EQ(nm_setting_connection_get_auth_retries(general), 1) << "nobody is asked for another password";
        const auto read = ConnectionSettings::read(*made);
        ASSERT_TRUE(read);
        EXPECT_EQ(read->hidden, medium == Medium::Wifi);
        nm_setting_connection_add_permission(general, "user", "li", nullptr);
        EXPECT_EQ(ConnectionSettings::read(*made)->owner, "") << "one that somebody has opened to others is nobody's";
        auto expected = example(medium);
        EXPECT_EQ(std::tie(read->profile, read->owner, read->medium, read->network, read->identityFile, read->authoritiesFile,
                           read->certificateEnds),
                  std::tie(expected.profile, expected.owner, expected.medium, expected.network, expected.identityFile,
                           expected.authoritiesFile, expected.certificateEnds));
        EXPECT_EQ(read->identityPassword, "");
    }
    const linux::GObjectPointer<NMConnection> foreign(nm_simple_connection_new());
    EXPECT_FALSE(ConnectionSettings::read(*foreign));
}

TEST(ConnectionSettingsTest, the_radio_keeps_to_what_the_network_offers) {
    auto wanted = example(Medium::Wifi);
    for (const bool onlyWpa3 : {false, true}) {
        wanted.onlyWpa3 = onlyWpa3;
        const auto made = ConnectionSettings::make(wanted);
        auto* security = nm_connection_get_setting_wireless_security(made.get());
        EXPECT_STREQ(nm_setting_wireless_security_get_key_mgmt(security), "wpa-eap");
        EXPECT_EQ(nm_setting_wireless_security_get_pmf(security),
                  onlyWpa3 ? NM_SETTING_WIRELESS_SECURITY_PMF_REQUIRED : NM_SETTING_WIRELESS_SECURITY_PMF_OPTIONAL);
        EXPECT_EQ(nm_setting_wireless_security_get_num_protos(security), 1U);
        EXPECT_STREQ(nm_setting_wireless_security_get_proto(security, 0), "rsn");
        auto* wireless = nm_connection_get_setting_wireless(made.get());
        gsize size = 0;
        const auto* ssid = static_cast<const char*>(g_bytes_get_data(nm_setting_wireless_get_ssid(wireless), &size));
        EXPECT_EQ(std::string(ssid, size), wanted.network);
        EXPECT_TRUE(nm_setting_wireless_get_hidden(wireless));
    }
}

}  // namespace
}  // namespace halvane::systools
