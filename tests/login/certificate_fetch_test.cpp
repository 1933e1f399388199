#include "login/LoginStory.h"

#include <gtest/gtest.h>

namespace halvane::login {
namespace {

constexpr const char* kInfo =
    R"({"code":200,"data":{"download_url":"http://company.test/static/ad_cert/k1/chen.xiao.pfx","ad_cert_password":"c3rt"}})";

class CertificateFetchTest : public testing::Test, protected LoginStory {
protected:
    CertificateFetchTest() { on.user.user_loginSuccessWithDic(util::Dictionary{{"token", "t"}, {"job_number", "7"}}); }

    void request() { certificates.requestCertificateWithUserName("chen.xiao", "pw"); }
    void download(const util::Bytes& bytes) {
        on.transport.reply(requestCount() - 1, 200, "application/x-pkcs12", bytes);
        settle();
    }
    const std::string file = "/home/test/Caches/chen.xiao.pfx";
    const std::string profile = "/home/test/Temporary/XMMBConfWeb/com.example.identity.mobileconfig";
};

TEST_F(CertificateFetchTest, goes_from_information_to_the_company_network) {
    request();
    answer(kInfo);
    EXPECT_EQ(lastUrl(), "http://company.test/static/ad_cert/k1/chen.xiao.pfx");
    EXPECT_TRUE(device.launcher.starts.empty());
    download("p12 bytes");
    device.launcher.terminateFirst(1);
    EXPECT_EQ(device.launcher.starts,
              (std::vector<std::string>{"/usr/bin/security import " + file + " -k login.keychain -P env:HALVANE_CERT_PASSWORD",
                                        "/usr/bin/profiles install -path " + profile,
                                        "/usr/sbin/networksetup -setairportnetwork en0 test_dot1x"}));
    EXPECT_EQ(device.launcher.requests[0].environment[0].second, "c3rt");
    const auto written = util::PropertyList::decode(on.files.files.at(profile));
    const auto& payload = (*util::member(&*written, "PayloadContent")->list())[0];
    EXPECT_EQ(*util::member(&payload, "PayloadContent")->data(), "p12 bytes");
    EXPECT_EQ(*util::member(&payload, "Password"), util::Value("c3rt"));
    EXPECT_EQ(*util::member(&payload, "PayloadCertificateFileName"), util::Value("chen.xiao"));
}

TEST_F(CertificateFetchTest, information_that_says_no_installs_nothing) {
    for (const char* reply : {R"({"code":500,"data":{"download_url":"http://h/x"}})", R"({"code":200})", R"({"code":200,"data":{}})",
                              R"({"code":200,"data":"x"})", "[]", "null"}) {
        SCOPED_TRACE(reply);
        request();
        const auto sent = requestCount();
        answer(reply);
        EXPECT_EQ(requestCount(), sent);
    }
    request();
    on.transport.fail(requestCount() - 1, util::UrlError::TimedOut);
    settle();
    EXPECT_TRUE(device.launcher.starts.empty());
    EXPECT_TRUE(device.log.contains("no certificate information: "));
}

TEST_F(CertificateFetchTest, a_failed_download_is_a_log_line_and_nothing_is_installed) {
    request();
    answer(kInfo);
    on.transport.fail(requestCount() - 1, util::UrlError::ConnectionLost, "the connection was lost");
    settle();
    EXPECT_TRUE(device.log.contains("出错了 code = -1005 description = the connection was lost"));
    EXPECT_TRUE(device.launcher.starts.empty());
}

TEST_F(CertificateFetchTest, who_has_signed_out_meanwhile_gets_nothing_installed_whoever_came_next) {
    for (const bool somebodyElse : {false, true}) {
        SCOPED_TRACE(somebodyElse);
        on.user.user_loginSuccessWithDic(util::Dictionary{{"token", "t"}, {"job_number", "7"}});
        request();
        answer(kInfo);
        on.user.user_deleteUserInfo();
        if (somebodyElse) on.user.user_loginSuccessWithDic(util::Dictionary{{"token", "u"}, {"job_number", "8"}});
        download("p12 bytes");
        EXPECT_TRUE(device.launcher.starts.empty());
        EXPECT_FALSE(on.files.exists(file));
        EXPECT_TRUE(device.log.contains("its user has signed out"));
    }
}

TEST_F(CertificateFetchTest, progress_is_a_log_line_each_time) {
    request();
    answer(kInfo);
    for (int i = 0; i < 3; ++i) on.last().download.onProgress({1, 3});
    const auto lines = device.log.lines();
    EXPECT_EQ(std::ranges::count(lines, "下载证书中..."), 3);
}

TEST_F(CertificateFetchTest, an_empty_password_takes_the_profiles_default_and_stays_empty_for_the_import) {
    request();
    answer(R"({"code":200,"data":{"download_url":"http://h/c.pfx","ad_cert_password":""}})");
    download("x");
    EXPECT_EQ(device.launcher.requests[0].environment[0].second, "");
    const auto written = util::PropertyList::decode(on.files.files.at(profile));
    EXPECT_EQ(*util::member(&(*util::member(&*written, "PayloadContent")->list())[0], "Password"), util::Value("tarnelk.quopse"));
}

TEST_F(CertificateFetchTest, without_a_template_the_tool_still_starts_and_the_network_is_still_joined) {
    on.files.files.erase("/home/test/Resources/brelton.mobileconfig");
    request();
    answer(kInfo);
    download("x");
    ASSERT_EQ(device.launcher.starts.back(), "/usr/bin/profiles install -path ");
    device.launcher.terminateFirst(0);
    EXPECT_EQ(device.launcher.starts.back(), "/usr/sbin/networksetup -setairportnetwork en0 test_dot1x");
}

TEST_F(CertificateFetchTest, neither_password_nor_bytes_reach_the_log) {
    request();
    answer(kInfo);
    download("p12 bytes");
    for (const char* secret : {"c3rt", "p12 bytes", "cDEyIGJ5dGVz"}) EXPECT_FALSE(device.log.contains(secret)) << secret;
}

}  // namespace
}  // namespace halvane::login
