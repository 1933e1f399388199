#include "server/AdministeredCompany.h"
#include "util/PropertyList.h"
#include "util/Text.h"
#include "util/Value.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace halvane::test {
namespace {

using server::ExitCode;

class Commands : public AdministeredCompany {};

TEST_F(Commands, an_added_user_can_sign_in_at_the_running_server) {
    company.workplaces.put({"dalian", "大连"});
    const auto added = run({"user", "add", "Li.Wen@example.com", "--nick-name", "李雯", "--department=市场部", "--work-address", "dalian"},
                           {.input = "correct horse\nsecond line", .password = {}});
    EXPECT_EQ(added.code, ExitCode::Done) << added.err;
    const auto body = signIn("li.wen", "correct horse");
    EXPECT_EQ(dataField(body, "nick_name"), "李雯");
    EXPECT_EQ(dataField(body, "department_name"), "市场部");
    EXPECT_EQ(dataField(body, "work_address"), "dalian");
    EXPECT_NE(run({"user", "list"}).out.find("\tli.wen@example.com\t李雯\t"), std::string::npos);
    expectFailure(run({"user", "add", "li.wen@example.com"}, {.input = "correct horse\n", .password = {}}), ExitCode::Failed,
                  "there is a user");
}

TEST_F(Commands, another_password_ends_the_sessions_and_removal_the_user) {
    const auto token = tokenOf("chen.xiao");
    EXPECT_EQ(run({"user", "passwd", "chen.xiao"}, {.input = "", .password = "another one"}).code, ExitCode::Done);
    EXPECT_EQ(statusOf("chen.xiao", "S", token), kSignedOut);
    EXPECT_EQ(signIn("chen.xiao"), kRefused);
    EXPECT_TRUE(signIn("chen.xiao", "another one").starts_with(kOk));
    EXPECT_EQ(run({"user", "remove", "chen.xiao@example.com"}).code, ExitCode::Done);
    EXPECT_EQ(signIn("chen.xiao", "another one"), kRefused);
    expectFailure(run({"user", "remove", "chen.xiao"}), ExitCode::Failed, "there is no user chen.xiao");
}

TEST_F(Commands, marks_of_a_computer_reach_the_next_question) {
    const auto token = tokenOf("chen.xiao");
    const auto stands = [&] {
        const auto body = statusOf("chen.xiao", "S1", token);
        return dataField(body, "lock_status") + "/" + dataField(body, "lose_status");
    };
    EXPECT_EQ(stands(), "No/No");
    const std::pair<const char*, const char*> rows[] = {{"lock", "Yes/No"}, {"lost", "Yes/Yes"}, {"unlock", "No/Yes"}, {"found", "No/No"}};
    for (const auto& [verb, expected] : rows) {
        SCOPED_TRACE(verb);
        EXPECT_EQ(run({"computer", verb, "S1"}).code, ExitCode::Done);
        EXPECT_EQ(stands(), expected);
        expectFailure(run({"computer", verb, "S2"}), ExitCode::Failed, "there is no computer S2");
    }
    run({"computer", "lock", "S1"});
    const auto listed = run({"computer", "list"}).out;
    EXPECT_NE(listed.find("S1\t\tchen.xiao@example.com\t\t\t2025-06-15T15:06:40Z\tlocked\n"), std::string::npos) << listed;
}

TEST_F(Commands, mails_are_listed_and_shown) {
    expectFailure(run({"mail", "show"}), ExitCode::Failed, "the outbox is empty");
    probe.postJson("/api/client/user/equipment/uninstall_apply", R"({"username":"chen.xiao","host_name":"laptop"})", tokenOf("chen.xiao"));
    const auto names = run({"mail", "list"}).out;
    const auto shown = run({"mail", "show", util::trimmed(names)});
    EXPECT_EQ(shown.code, ExitCode::Done);
    EXPECT_NE(shown.out.find(mailedCode(company)), std::string::npos);
    EXPECT_EQ(run({"mail", "show"}).out, shown.out);
    expectFailure(run({"mail", "show", "../authority.pem"}), ExitCode::Failed, "there is no mail");
}

TEST_F(Commands, workplaces_come_in_the_order_in_which_they_were_added) {
    for (const auto& [value, name] : {std::pair("b", "乙"), std::pair("a", "甲"), std::pair("b", "丙")}) {
        EXPECT_EQ(run({"workplace", "add", value, name}).code, ExitCode::Done);
    }
    EXPECT_EQ(run({"workplace", "list"}).out, "VALUE\tNAME\nb\t丙\na\t甲\n");
    EXPECT_EQ(run({"workplace", "remove", "b"}).code, ExitCode::Done);
    expectFailure(run({"workplace", "remove", "b"}), ExitCode::Failed, "there is no workplace b");
    expectFailure(run({"workplace", "add", "上海", "上海"}), ExitCode::Usage, "ASCII");
}

TEST_F(Commands, seeding_twice_keeps_the_passwords_of_the_first_time) {
    EXPECT_EQ(run({"user", "remove", "chen.xiao"}).code, ExitCode::Done);
    const auto first = run({"seed", "--domain", "example.net"});
    EXPECT_EQ(first.code, ExitCode::Done);
    const auto line = util::split(first.out, '\n').front();
    const auto parts = util::split(line, '\t');
    EXPECT_EQ(parts.at(0), "chen.xiao@example.net");
    EXPECT_NE(run({"seed", "--domain", "example.net", "--password", "Another-1"}).out.find("chen.xiao@example.net\t(as before)\n"),
              std::string::npos);
    EXPECT_EQ(dataField(signIn("chen.xiao@example.net", parts.at(1)), "nick_name"), "陈晓");
    EXPECT_EQ(company.workplaces.all().size(), 7U);
}

TEST_F(Commands, the_authority_is_the_same_for_command_and_server) {
    EXPECT_EQ(run({"ca", "show"}).out, company.authority().certificatePem());
    EXPECT_EQ(run({"ca", "show"}).out.find("PRIVATE"), std::string::npos);
}

TEST_F(Commands, wrong_usage_says_what_is_wrong_and_ends_with_2) {
    const std::tuple<std::vector<std::string>, const char*> rows[] = {
        {{"dance"}, "unknown command dance"},
        {{"user"}, "unknown command user"},
        {{"user", "dance"}, "unknown command user"},
        {{"user", "add"}, "usage: halvane-server user add"},
        {{"user", "add", "a@b", "c@d"}, "usage: halvane-server user add"},
        {{"user", "add", "--nick"}, "unknown option --nick"},
        {{"user", "add", "a@b", "--nick-name", "x", "--nick-name", "y"}, "given twice"},
        {{"user", "add", "chen"}, "chen is no login name"},
        {{"user", "add", "../x@example.com"}, "is no login name"},
        {{"user", "add", "a b@example.com"}, "is no login name"},
        {{"user", "add", "陈@example.com"}, "is no login name"},
        {{"user", "add", std::string(65, 'x') + "@example.com"}, "is no login name"},
        {{"user", "list", "--password", "x"}, "unknown option --password"},
        {{"computer", "lock"}, "usage: halvane-server computer lock SERIAL"},
        {{"serve", "--port", "65536"}, "--port takes a number"},
        {{"serve", "--port", "80x"}, "--port takes a number"},
        {{"serve", "--cert", "c.pem"}, "go together"},
        {{"serve", "--host", "0.0.0.0"}, "say --public-url"},
        {{"serve", "--public-url", "ftp://x"}, "http or https"},
        {{"seed", "--domain", "no domain"}, "no domain is no mail domain"},
        {{"feed", "add"}, "usage: halvane-server feed add PACKAGE.deb"},
    };
    for (const auto& [words, reason] : rows) {
        SCOPED_TRACE(testing::PrintToString(words));
        expectFailure(run(words), ExitCode::Usage, reason);
    }
    EXPECT_EQ(run({}, {}, false).code, ExitCode::Usage);
    expectFailure(run({"user", "list"}, {}, false), ExitCode::Usage, "--data DIR is missing");
    expectFailure(run({"user", "list", "--data"}, {}, false), ExitCode::Usage, "--data needs a value");
}

TEST_F(Commands, passwords_that_cannot_be_used_are_refused) {
    const std::tuple<const char*, std::string, const char*> rows[] = {
        {"none", "", "no password"},
        {"empty line", "\nHalvane-demo-1\n", "no password"},
        {"short", "1234567\n", "at least 8"},
        {"not UTF-8", "abcdefg\xff\xfe\n", "not UTF-8"},
        {"NUL", std::string("abcd\0efgh\n", 10), "not UTF-8"},
        {"endless", std::string(5000, 'x') + "\n", "too long"},
    };
    for (const auto& [name, input, reason] : rows) {
        SCOPED_TRACE(name);
        expectFailure(run({"user", "add", "li.wen@example.com"}, {.input = input, .password = {}}), ExitCode::Failed, reason);
    }
    EXPECT_EQ(company.users.all().size(), 1U);
}

TEST_F(Commands, a_directory_without_a_company_is_not_made_by_looking_at_it) {
    const auto nowhere = directory.path() / "nowhere";
    const auto outcome = run({"user", "list", "--data", nowhere.string()}, {}, false);
    expectFailure(outcome, ExitCode::Failed, "there is no company in");
    EXPECT_FALSE(std::filesystem::exists(nowhere));
    std::ofstream(data / "company.sqlite")
        << "no database any more, long enough to be noticed as a broken one.....................................";
    EXPECT_EQ(run({"user", "list", "--data", (data / "company.sqlite").string()}, {}, false).code, ExitCode::Failed);
}

TEST_F(Commands, help_names_every_command_and_version_is_said) {
    const auto help = run({"--help"}, {}, false);
    EXPECT_EQ(help.code, ExitCode::Done);
    for (const char* name :
         {"serve", "seed", "ca show", "user passwd", "computer found", "mail show", "workplace add", "feed remove", "HALVANE_PASSWORD"}) {
        EXPECT_NE(help.out.find(name), std::string::npos) << name;
    }
    EXPECT_EQ(run({"user", "add", "--help"}, {}, false).out, help.out);
    EXPECT_TRUE(run({"--version"}, {}, false).out.starts_with("halvane-server "));
}

TEST_F(Commands, an_authenticator_gets_a_certificate_that_its_network_is_known_by) {
    const auto file = (directory.path() / "radius.pem").string();
    ASSERT_EQ(run({"radius-cert", "radius.example.com", "--out", file}).code, ExitCode::Done);
    EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    const auto authority = (directory.path() / "ca.pem").string();
    std::ofstream(authority) << run({"ca", "show"}).out;
    const auto verify = [&](const char* host) {
        const std::string at = std::to_string(time.clock()().time_since_epoch().count() + 1);
        return std::system(("openssl verify -attime " + at + " -purpose sslserver -verify_hostname " + host + " -CAfile " + authority +
                            " " + file + " >/dev/null 2>&1")
                               .c_str());
    };
    EXPECT_EQ(verify("radius.example.com"), 0);
    EXPECT_NE(verify("radius.example.org"), 0);
    // Not only in the subject, where newer programs do not look any more.
    EXPECT_EQ(std::system(("openssl x509 -in " + file + " -noout -ext subjectAltName | grep -q DNS:radius.example.com").c_str()), 0);
    EXPECT_EQ(std::system(("openssl pkey -in " + file + " -noout -check >/dev/null 2>&1").c_str()), 0);

    const auto before = std::filesystem::file_size(file);
    expectFailure(run({"radius-cert", "other.example.com", "--out", file}), ExitCode::Failed, "is there already");
    EXPECT_EQ(std::filesystem::file_size(file), before);
    const auto another = (directory.path() / "another.pem").string();
    for (const char* name : {"", "a b", "a;b", "*.example.com"})
        expectFailure(run({"radius-cert", name, "--out", another}), ExitCode::Usage, "no host name");
    expectFailure(run({"radius-cert", "radius.example.com"}), ExitCode::Usage, "--out");
    EXPECT_FALSE(std::filesystem::exists(another));
}

TEST_F(Commands, a_profile_template_gets_the_authority_where_it_has_none) {
    using util::Dictionary;
    using util::Value;
    const auto written = [&](const Value& value) {
        const auto path = directory.path() / "template";
        std::ofstream(path, std::ios::binary) << util::PropertyList::encode(value);
        return path.string();
    };
    const auto root = [](Value content) {
        return Dictionary{{"PayloadType", "com.halvane.payload.root"}, {"PayloadContent", std::move(content)}};
    };
    const Value own = root(Value::Data{"somebody's own"});
    const Value other = Dictionary{{"PayloadType", "com.halvane.payload.wifi"}};
    const auto source = written(Dictionary{{"PayloadContent", Value::List{root(Value::Data{}), own, other}}, {"kept", "as it is"}});
    const auto file = (directory.path() / "filled").string();
    ASSERT_EQ(run({"profile", source, "--out", file}).code, ExitCode::Done);
    std::ostringstream bytes;
    bytes << std::ifstream(file, std::ios::binary).rdbuf();
    const auto filled = util::PropertyList::decode(bytes.str());
    ASSERT_TRUE(filled);
    const auto expected = Value::List{root(Value::Data{company.authority().certificateDer()}), own, other};
    EXPECT_EQ(*util::member(&*filled, "PayloadContent"), Value(expected));
    EXPECT_EQ(*util::member(&*filled, "kept"), Value("as it is"));

    expectFailure(run({"profile", source, "--out", file}), ExitCode::Failed, "is there already");
    const auto fresh = (directory.path() / "fresh").string();
    for (const Value& useless :
         {Value(Dictionary{}), Value(Value::List{}), Value(Dictionary{{"PayloadContent", Value::List{"x", own, other}}})})
        expectFailure(run({"profile", written(useless), "--out", fresh}), ExitCode::Failed, "no empty root payload");
    std::ofstream(directory.path() / "template") << "no property list";
    expectFailure(run({"profile", source, "--out", fresh}), ExitCode::Failed, "template: ");
    expectFailure(run({"profile", "/nowhere", "--out", fresh}), ExitCode::Failed, "cannot read /nowhere");
    EXPECT_FALSE(std::filesystem::exists(fresh));
}

}  // namespace
}  // namespace halvane::test
