#include "server/RunningCompany.h"
#include "server/api/LoginThrottle.h"
#include "server/crypto/PasswordHash.h"

namespace halvane::test {
namespace {

using namespace std::chrono_literals;
using SignIn = RunningCompany;

TEST_F(SignIn, login_name_and_short_name_open_sessions_in_any_case) {
    for (const char* name : {"chen.xiao@example.com", "chen.xiao", "Chen.Xiao@Example.com"}) {
        SCOPED_TRACE(name);
        EXPECT_TRUE(signIn(name).starts_with(kOk));
    }
}

TEST_F(SignIn, wrong_and_unknown_and_hostile_names_read_the_same) {
    const std::pair<const char*, const char*> rows[] = {
        {"chen.xiao@example.com", "halvane-demo-1"},
        {"chen.xiao@example.com", ""},
        {"nobody@example.com", kPassword},
        {"", ""},
        {"' OR '1'='1", "' OR '1'='1"},
        {"chen.xiao'; DROP TABLE users; --", kPassword},
        {"chen.xiao@example.com\n", kPassword},
        {"%", kPassword},
    };
    for (const auto& [name, password] : rows) {
        SCOPED_TRACE(name);
        EXPECT_EQ(signIn(name, password), kRefused);
    }
    EXPECT_EQ(company.users.all().size(), 1U);
}

TEST_F(SignIn, a_session_ends_after_a_month_of_silence_and_lives_on_while_it_is_used) {
    const auto token = tokenOf("chen.xiao");
    const auto nearlyAll = server::SessionStore::kLifetime - 1s;
    time.turn(nearlyAll);
    EXPECT_TRUE(statusOf("chen.xiao", "S", token).starts_with(kOk));
    time.turn(nearlyAll);
    EXPECT_TRUE(statusOf("chen.xiao", "S", token).starts_with(kOk));
    time.turn(server::SessionStore::kLifetime);
    EXPECT_EQ(statusOf("chen.xiao", "S", token), kSignedOut);
}

TEST_F(SignIn, tokens_are_their_own_and_not_in_the_database) {
    const auto first = tokenOf("chen.xiao");
    const auto second = tokenOf("chen.xiao");
    EXPECT_EQ(first.size(), 64U);
    EXPECT_NE(first, second);
    EXPECT_TRUE(statusOf("chen.xiao", "S", first).starts_with(kOk)) << "a second sign-in must not end the first";
    EXPECT_FALSE(company.database.query("SELECT 1 FROM sessions WHERE token_hash = ?", first).next());
}

TEST_F(SignIn, another_password_or_removal_ends_the_sessions) {
    const auto token = tokenOf("chen.xiao");
    company.sessions.closeAll(1001);
    EXPECT_EQ(statusOf("chen.xiao", "S", token), kSignedOut);
    const auto next = tokenOf("chen.xiao");
    EXPECT_TRUE(statusOf("chen.xiao", "S", next).starts_with(kOk));
    EXPECT_EQ(company.computers.find("S").value().userName, "chen.xiao@example.com");
    company.users.remove(1001);
    EXPECT_EQ(statusOf("chen.xiao", "S", next), kSignedOut);
    EXPECT_EQ(company.computers.find("S").value().userName, "");
}

TEST_F(SignIn, guessing_closes_one_account_for_a_while_and_no_other) {
    constexpr const char* kTooMany = R"({"code":4002,"msg":"尝试次数过多，请稍后再试","data":{}})";
    addUser("li.wen");
    for (std::size_t i = 0; i < server::LoginThrottle::kFailures; ++i) {
        EXPECT_EQ(signIn(i % 2 == 0 ? "chen.xiao" : "chen.xiao@example.com", "guess"), kRefused);
    }
    EXPECT_EQ(signIn("chen.xiao"), kTooMany);
    EXPECT_EQ(probe.postJson("/papi/admin/create_ad_cert", R"({"username":"CHEN.XIAO","password":"Halvane-demo-1"})").body, kTooMany);
    EXPECT_TRUE(signIn("li.wen").starts_with(kOk));
    time.turn(server::LoginThrottle::kWindow);
    EXPECT_TRUE(signIn("chen.xiao").starts_with(kOk));
}

TEST_F(SignIn, a_session_serves_its_own_user_only) {
    const auto other = addUser("li.wen");
    const auto token = tokenOf("chen.xiao");
    company.workplaces.put({"chengdu", "成都"});
    EXPECT_EQ(statusOf("li.wen", "S", token), kNotAllowed);
    for (const char* operation : {"uninstall_apply", "uninstall_sure"}) {
        EXPECT_EQ(probe.postJson(std::string("/api/client/user/equipment/") + operation, R"({"username":"li.wen"})", token).body,
                  kNotAllowed);
    }
    for (const std::string& number : {std::to_string(other.id), std::string(), std::string("1001/"), std::string("01001")}) {
        SCOPED_TRACE(number);
        EXPECT_EQ(probe.get("/api/client/user/work_address/" + number + "?work_address=chengdu", token).body, kNotAllowed);
    }
    EXPECT_EQ(company.users.find(other.id)->workAddress, "");
    EXPECT_TRUE(company.outbox.names().empty());
}

TEST_F(SignIn, only_a_known_workplace_can_be_chosen) {
    const auto token = tokenOf("chen.xiao");
    for (const char* value : {"atlantis", "", "%E6%88%90%E9%83%BD", "chengdu'--"}) {
        SCOPED_TRACE(value);
        const auto reply = probe.get(std::string("/api/client/user/work_address/1001?work_address=") + value, token);
        EXPECT_EQ(reply.body, R"({"code":4005,"msg":"没有这个职场","data":{}})");
    }
}

TEST_F(SignIn, computers_are_known_by_serial_number_and_none_without) {
    const auto token = tokenOf("chen.xiao");
    constexpr const char* kNeither = R"({"code":200,"msg":"查询成功","data":{"lock_status":"No","lose_status":"No"}})";
    EXPECT_EQ(statusOf("chen.xiao", "", token), kNeither);
    EXPECT_TRUE(company.computers.all().empty());
    EXPECT_EQ(statusOf("chen.xiao@example.com", "序列 1", token), kNeither);
    EXPECT_TRUE(company.computers.mark("序列 1", server::ComputerStore::Mark::Locked));
    EXPECT_EQ(dataField(statusOf("chen.xiao", "序列 1", token), "lock_status"), "Yes");
    EXPECT_EQ(dataField(statusOf("chen.xiao", "序列 2", token), "lock_status"), "No");
}

TEST(PasswordHash, matches_only_its_password_and_nothing_that_is_no_hash) {
    const auto hash = server::PasswordHash::of("密码 one");
    EXPECT_TRUE(server::PasswordHash::matches("密码 one", hash));
    EXPECT_FALSE(server::PasswordHash::matches("密码 two", hash));
    EXPECT_NE(hash, server::PasswordHash::of("密码 one"));
    for (const char* stored : {"", "scrypt", "scrypt$16384$8$1$salt$", "scrypt$0$8$1$00$00", "scrypt$-1$8$1$00$00",
                               "scrypt$1099511627776$8$1$00$00", "plain$16384$8$1$salt$key"}) {
        SCOPED_TRACE(stored);
        EXPECT_FALSE(server::PasswordHash::matches("", stored));
    }
}

}  // namespace
}  // namespace halvane::test
