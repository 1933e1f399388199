#include "server/RunningCompany.h"
#include "server/crypto/Random.h"

namespace halvane::test {
namespace {

using namespace std::chrono_literals;

class Uninstall : public RunningCompany {
protected:
    static constexpr const char* kAccepted = R"({"code":200,"msg":"验证通过","data":{}})";
    static constexpr const char* kWrong = R"({"code":4003,"msg":"安全码错误","data":{}})";
    static constexpr const char* kNoCode = R"({"code":4004,"msg":"安全码已失效，请重新申请","data":{}})";

    /// Asks for a code and answers the one that was mailed.
    std::string apply(const std::string& host = "laptop") {
        const auto reply = probe.postJson("/api/client/user/equipment/uninstall_apply",
                                          R"({"username":"chen.xiao","host_name":")" + host + R"(","sn":"S"})", token);
        EXPECT_TRUE(reply.body.starts_with(kOk)) << reply.body;
        return mailedCode(company);
    }
    [[nodiscard]] std::string confirm(const std::string& code, const std::string& host = "laptop") const {
        return probe
            .postJson("/api/client/user/equipment/uninstall_sure",
                      R"({"username":"chen.xiao","host_name":")" + host + R"(","uninstall_num":")" + code + R"("})", token)
            .body;
    }
    static std::string otherThan(const std::string& code) { return code == "000000" ? "000001" : "000000"; }

    const std::string token = tokenOf("chen.xiao");
};

TEST_F(Uninstall, a_code_works_once) {
    const auto code = apply();
    EXPECT_EQ(confirm(code), kAccepted);
    EXPECT_EQ(confirm(code), kNoCode);
}

TEST_F(Uninstall, without_asking_there_is_no_code) {
    EXPECT_EQ(confirm(""), kNoCode);
    EXPECT_EQ(confirm("123456"), kNoCode);
}

TEST_F(Uninstall, a_code_lives_for_ten_minutes) {
    const auto code = apply();
    time.turn(10min - 1s);
    EXPECT_EQ(confirm(otherThan(code)), kWrong);
    time.turn(1s);
    EXPECT_EQ(confirm(code), kNoCode);
}

TEST_F(Uninstall, the_fifth_wrong_try_voids_the_code_and_a_new_one_starts_afresh) {
    const auto code = apply();
    for (int i = 0; i < 4; ++i) EXPECT_EQ(confirm(i % 2 == 0 ? otherThan(code) : ""), kWrong);
    EXPECT_EQ(confirm(otherThan(code)), kWrong);
    EXPECT_EQ(confirm(code), kNoCode);
    EXPECT_EQ(confirm(apply()), kAccepted);
}

TEST_F(Uninstall, the_newest_code_counts_and_each_host_has_its_own) {
    const auto first = apply();
    const auto other = apply("desk");
    const auto second = apply();
    if (first != second) {
        EXPECT_EQ(confirm(first), kWrong);
    }
    EXPECT_EQ(confirm(second), kAccepted);
    EXPECT_EQ(confirm(other, "desk"), kAccepted);
}

TEST_F(Uninstall, the_mail_goes_to_the_employee_and_only_the_server_can_read_it) {
    apply();
    apply();
    const auto names = company.outbox.names();
    ASSERT_EQ(names.size(), 2U) << "mails of one second do not replace each other";
    EXPECT_LT(names[0], names[1]);
    EXPECT_NE(company.outbox.read(names[0])->find("\nTo: chen.xiao@example.com\n"), std::string::npos);
    const auto outbox = directory.path() / "data" / "outbox";
    EXPECT_EQ(std::filesystem::status(outbox).permissions(), std::filesystem::perms::owner_all);
    for (const auto& entry : std::filesystem::directory_iterator(outbox)) {
        EXPECT_EQ(entry.status().permissions(), std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    }
    for (const char* name : {"../company.sqlite", "", "."}) EXPECT_FALSE(company.outbox.read(name)) << name;
}

TEST(Random, digits_keep_leading_zeros_and_use_every_digit) {
    std::string all;
    for (int i = 0; i < 100; ++i) {
        const auto code = server::Random::digits(6);
        EXPECT_EQ(code.size(), 6U);
        all += code;
    }
    for (char digit = '0'; digit <= '9'; ++digit) EXPECT_NE(all.find(digit), std::string::npos) << digit;
    EXPECT_EQ(all.find_first_not_of("0123456789"), std::string::npos);
}

}  // namespace
}  // namespace halvane::test
