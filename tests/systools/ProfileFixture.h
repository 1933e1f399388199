#pragma once

#include "linux/PosixFileStore.h"
#include "support/TestAuthority.h"
#include "systools/FakeNetworkService.h"
#include "systools/StoreFixture.h"
#include "systools/profiles/ProfilesTool.h"
#include "util/PropertyList.h"
#include "util/Value.h"

#include <sstream>

namespace halvane::systools {

/// A user whose store has the identity "chen.xiao", and a profile for it.
class ProfileTest : public StoreTest {
protected:
    using List = util::Value::List;
    using Data = util::Value::Data;

    ProfileTest() { store("chen.xiao", identity_); }

    void store(const std::string& name, const util::Bytes& bytes) {
        ASSERT_TRUE(identities_.prepare());
        ASSERT_TRUE(identities_.write(name, bytes));
    }
    [[nodiscard]] static util::Dictionary eap(util::Value servers = List{"radius.example.com"}, util::Value types = List{13}) {
        return {{"AcceptEAPTypes", std::move(types)}, {"TLSTrustedServerNames", std::move(servers)}};
    }
    [[nodiscard]] static util::Dictionary network(const std::string& kind, util::Value name = "test_dot1x", util::Value settings = eap()) {
        return {{"PayloadType", "com.halvane.payload." + kind},
                {kind == "wifi" ? "SSID_STR" : "NetworkName", std::move(name)},
                {"PayloadCertificateUUID", "id-1"},
                {"EAPClientConfiguration", std::move(settings)}};
    }
    [[nodiscard]] static util::Dictionary certificate(const util::Bytes& bytes, const std::string& password = "pw") {
        return {{"PayloadType", "com.halvane.payload.pkcs12"},
                {"PayloadUUID", "id-1"},
                {"Password", password},
                {"PayloadContent", Data{bytes}}};
    }
    [[nodiscard]] static util::Dictionary root(const util::Bytes& bytes) {
        return {{"PayloadType", "com.halvane.payload.root"}, {"PayloadContent", Data{bytes}}};
    }
    [[nodiscard]] List usual() const { return {certificate(identity_), root(authority_.root().der), network("wifi"), network("wired")}; }
    [[nodiscard]] static util::Value profile(List payloads, const std::string& identifier = "com.example.net") {
        return util::Dictionary{{"PayloadIdentifier", identifier}, {"PayloadContent", std::move(payloads)}};
    }

    struct Run {
        int code = -1;
        std::string out;
        std::string err;
    };
    Run run(const Arguments& arguments) {
        auto user = CallingUser::find();
        ProfilesTool tool(ProfileInstaller(*user, profiles(), files_, identities_, net_.connector()), files_, *user);
        std::ostringstream out;
        std::ostringstream err;
        const int code = tool.run(arguments, out, err);
        return {code, out.str(), err.str()};
    }
    Run install(const util::Value& value) { return run({"install", "-path", file(util::PropertyList::encode(value)).string()}); }
    std::filesystem::path file(const util::Bytes& bytes) { return download(bytes, "a b \"c\" 网络.mobileconfig"); }
    [[nodiscard]] std::filesystem::path profiles() const { return data() / "halvane/profiles"; }
    [[nodiscard]] std::filesystem::path authorities(const std::string& identifier = "com.example.net") const {
        return profiles() / identifier / "authorities.pem";
    }

    const std::string me_ = CallingUser::find()->name();
    linux::PosixFileStore files_;
    IdentityFiles identities_{identityFiles(), files_};
    const util::Bytes identity_ = forge_.make({});
    const test::TestAuthority authority_;
    test::FakeNetwork net_;
};

}  // namespace halvane::systools
