#include "linux/PolkitAuthorization.h"

#include "linux/ShellScriptInterpreter.h"
#include "support/BusService.h"
#include "support/Eventually.h"
#include "support/RecordingLog.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cerrno>
#include <fstream>
#include <iterator>
#include <map>

namespace halvane::linux {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Failure = platform::ScriptInterpreter::Failure;

/// pkexec, as far as it matters: its descriptors but the standard ones close when it becomes the program.
constexpr const char* kBecomesTheProgram = R"(#!/usr/bin/python3
import os, sys
assert sys.argv[1:3] == ["--keep-cwd", "--disable-internal-agent"], sys.argv
os.set_inheritable(3, False)
os.execv(sys.argv[3], sys.argv[3:])
)";

class AuthorizationTest : public testing::Test {
protected:
    AuthorizationTest() {
        place(directory.path() / "tools/usr/bin/profiles", "#!/bin/sh\necho profiles \"$@\"; pwd; exit 126");
        pkexec(kBecomesTheProgram);
    }

    /// How many children this process has, zombies included.
    static int children() {
        std::ifstream file("/proc/thread-self/children");
        return static_cast<int>(std::distance(std::istream_iterator<int>(file), {}));
    }
    static void place(const fs::path& path, const std::string& content) {
        fs::create_directories(path.parent_path());
        std::ofstream(path) << content;
        fs::permissions(path, fs::perms::owner_all);
    }
    void pkexec(const std::string& content) { place(pkexecPath(), content); }
    [[nodiscard]] fs::path pkexecPath() const { return directory.path() / "pkexec"; }
    [[nodiscard]] PkexecChild child(std::chrono::milliseconds longestQuestion = 5s) const {
        return PkexecChild(PolkitAuthority(bus.address(), 2s), pkexecPath(), longestQuestion);
    }
    PolkitAuthorization authorization() { return {ToolRoot(directory.path() / "tools"), log, child()}; }
    /// What polkit says of each action: "yes", "ask", "no", or the name of an error.
    test::BusService polkit(std::map<std::string, std::string> answers) {
        return {bus, "org.freedesktop.PolicyKit1", "/org/freedesktop/PolicyKit1/Authority",
                [answers = std::move(answers), this](sd_bus_message* call) { return answer(call, answers); }};
    }
    int answer(sd_bus_message* call, const std::map<std::string, std::string>& answers) {
        if (sd_bus_message_is_method_call(call, "org.freedesktop.PolicyKit1.Authority", "CheckAuthorization") <= 0) return 0;
        const char* kind = nullptr;
        const char* action = nullptr;
        std::uint32_t flags = 99;
        sd_bus_message_enter_container(call, 'r', "sa{sv}");
        sd_bus_message_read(call, "s", &kind);
        sd_bus_message_skip(call, "a{sv}");
        sd_bus_message_exit_container(call);
        sd_bus_message_read(call, "s", &action);
        sd_bus_message_skip(call, "a{ss}");
        sd_bus_message_read(call, "u", &flags);
        asked.push_back(std::string(kind) + " " + action + " " + std::to_string(flags));
        const std::string& word = answers.at(action);
        if (word.find('.') != std::string::npos) return sd_bus_reply_method_errorf(call, word.c_str(), "so it is");
        return sd_bus_reply_method_return(call, "(bba{ss})", word == "yes", word == "ask", 0);
    }

    const test::TemporaryDirectory directory;
    const test::PrivateBus bus;
    test::RecordingLog log;
    std::vector<std::string> asked;  // of polkit; written by its thread, read when that is gone
};

TEST_F(AuthorizationTest, a_started_programs_output_directory_and_exit_code_are_its_own) {
    auto own = authorization();
    ASSERT_TRUE(own.canExecuteWithPrivileges());
    auto execution = own.executeWithPrivileges(
        1, {.path = "/usr/bin/profiles", .arguments = {"remove", "a 'b' $c", ""}, .workingDirectory = directory.path().string()});
    ASSERT_EQ(execution.status, 0);
    const auto output = execution.output->readDataToEndOfFile();
    ASSERT_TRUE(output);
    EXPECT_EQ(*output, "profiles remove a 'b' $c \n" + directory.path().string() + "\n");
    std::optional<int> status;
    ASSERT_TRUE(test::eventually([&] { return (status = own.collect(execution.processIdentifier)).has_value(); }));
    EXPECT_EQ(WEXITSTATUS(*status), 126) << "which is pkexec's own word for dismissed, but not here";
    EXPECT_EQ(own.collect(execution.processIdentifier), 0) << "there is nothing to collect any more";
}

TEST_F(AuthorizationTest, what_pkexec_ends_with_itself_is_a_status_and_no_child_is_left) {
    const auto there = polkit({{"org.freedesktop.policykit.exec", "ask"}});
    const std::pair<const char*, platform::OSStatus> rows[] = {
        {"exit 126", platform::kAuthorizationCanceled},
        {"exit 127", platform::kAuthorizationDenied},
        {"kill -9 $$", platform::kAuthorizationDenied},
        // Slower than we look: its descriptor is closed before it ends.
        {"exec 3>&-; sleep 0.2; exit 126", platform::kAuthorizationCanceled},
    };
    for (const auto& [script, status] : rows) {
        SCOPED_TRACE(script);
        pkexec(std::string("#!/bin/sh\n") + script + "\n");
        const auto execution = authorization().executeWithPrivileges(1, {.path = "/bin/true"});
        EXPECT_EQ(execution.status, status);
        EXPECT_EQ(execution.output, nullptr);
        EXPECT_EQ(children(), 1) << "the bus";
    }
}

TEST_F(AuthorizationTest, a_person_who_never_answers_has_not_agreed) {
    pkexec("#!/bin/sh\nexec sleep 60 # as pkexec waits\n");
    EXPECT_EQ(child(300ms).start({.program = "/bin/true"}).status, platform::kAuthorizationCanceled);
    EXPECT_EQ(children(), 1) << "the bus";
}

TEST_F(AuthorizationTest, nobody_is_asked_for_what_cannot_be_executed) {
    pkexec("#!/bin/sh\ntouch \"$0.asked\"\nexit 126\n");
    place(directory.path() / "data", "text");
    fs::permissions(directory.path() / "data", fs::perms::owner_read);
    for (const std::string& path : {std::string("/nowhere"), std::string("relative"), std::string(""), directory.path().string(),
                                    (directory.path() / "data").string(), std::string("/usr/sbin/scutil"), pkexecPath().string()}) {
        EXPECT_EQ(authorization().executeWithPrivileges(1, {.path = path}).status, platform::kAuthorizationToolExecuteFailure) << path;
    }
    EXPECT_FALSE(fs::exists(directory.path() / "pkexec.asked"));

    fs::remove(pkexecPath());
    EXPECT_FALSE(authorization().canExecuteWithPrivileges());
    EXPECT_EQ(authorization().executeWithPrivileges(1, {.path = "/bin/true"}).status, platform::kAuthorizationNotAvailable);
}

TEST_F(AuthorizationTest, rights_are_what_polkit_would_give_without_asking_anybody) {
    struct Row {
        const char* path;
        const char* own;
        const char* general;
        platform::OSStatus status;
        std::size_t questions;
    };
    constexpr const char* kUnknown = "org.freedesktop.PolicyKit1.Error.Failed";
    constexpr const char* kForbidden = "org.freedesktop.PolicyKit1.Error.NotAuthorized";
    const Row rows[] = {
        {"/usr/bin/profiles", "ask", "no", platform::kAuthorizationSuccess, 1},
        {"/usr/bin/profiles", "yes", "no", platform::kAuthorizationSuccess, 1},
        {"/usr/bin/profiles", "no", "yes", platform::kAuthorizationDenied, 1},
        {"/usr/bin/profiles", kUnknown, "ask", platform::kAuthorizationSuccess, 2},
        {"/usr/bin/profiles", kForbidden, "ask", platform::kAuthorizationDenied, 1},
        {"/bin/true", "yes", "no", platform::kAuthorizationDenied, 1},
        {"/bin/true", "no", "ask", platform::kAuthorizationSuccess, 1},
        {"/bin/true", "no", "org.freedesktop.DBus.Error.NoReply", platform::kAuthorizationNotAvailable, 1},
    };
    for (const auto& [path, own, general, status, questions] : rows) {
        SCOPED_TRACE(std::string(path) + " " + own + " " + general);
        asked.clear();
        {
            const auto there = polkit({{"com.halvane.profiles", own}, {"org.freedesktop.policykit.exec", general}});
            EXPECT_EQ(authorization().copyRights(1, {{.name = "system.privilege.admin", .value = path}}, 19), status);
        }
        ASSERT_EQ(asked.size(), questions);
        EXPECT_TRUE(asked.front().starts_with("unix-process ") && asked.front().ends_with(" 0")) << asked.front();
    }
}

TEST_F(AuthorizationTest, without_polkit_there_are_no_rights) {
    auto own = authorization();
    const auto created = own.create();
    EXPECT_EQ(created.status, 0);
    EXPECT_NE(created.authorization, own.create().authorization);
    const std::vector<platform::AuthorizationRight> rights{{.name = "system.privilege.admin", .value = "/usr/bin/profiles"}};
    EXPECT_EQ(own.copyRights(created.authorization, rights, 19), platform::kAuthorizationNotAvailable);
    EXPECT_EQ(log.lines(), std::vector<std::string>{"polkit: not available"});
    PolkitAuthorization noBus(ToolRoot("/nowhere"), log, PkexecChild(PolkitAuthority("unix:path=/nowhere/bus"), pkexecPath()));
    EXPECT_EQ(noBus.copyRights(1, rights, 19), platform::kAuthorizationNotAvailable);
    pkexec("#!/bin/sh\nexit 127\n");
    EXPECT_EQ(own.executeWithPrivileges(1, {.path = "/bin/true"}).status, platform::kAuthorizationNotAvailable);
}

std::string told(const std::variant<std::string, Failure>& answer) {
    if (const auto* text = std::get_if<std::string>(&answer)) return "ok: " + *text;
    const auto& failure = std::get<Failure>(answer);
    return std::to_string(failure.number.value_or(0)) + ": " + failure.message.value_or("none");
}

TEST_F(AuthorizationTest, scripts_of_the_one_form_run_and_tell_what_they_wrote) {
    ShellScriptInterpreter interpreter(child());
    const std::pair<std::string, std::string> rows[] = {
        {R"(do shell script "echo a; echo b" )", "ok: a\nb"},
        {R"(do shell script "printf 'x\\ny'")", "ok: x\ny"},
        {R"(do shell script "echo \"quoted\"" with administrator privileges)", "ok: quoted"},
        {R"(do shell script "echo why >&2; exit 3")", "3: why"},
        {R"(do shell script "exit 4" with administrator privileges)", "4: The command exited with a non-zero status."},
        {R"(do shell script "kill -9 $$")", "137: The command exited with a non-zero status."},
        // More than a pipe holds, on both.
        {R"(do shell script "head -c 200000 /dev/zero >&2; head -c 200000 /dev/zero | wc -c")", "ok: 200000"},
        {R"(do shell script "a" and then some)", "-2741: Expected: do shell script \"COMMAND\" [with administrator privileges]"},
        {R"(do shell script "open)", "-2741: Expected: do shell script \"COMMAND\" [with administrator privileges]"},
        {"tell somebody", "-2741: Expected: do shell script \"COMMAND\" [with administrator privileges]"},
        {"", "-2741: Expected: do shell script \"COMMAND\" [with administrator privileges]"},
        {R"(do shell script "cat /dev/zero")", std::to_string(EFBIG) + ": The command writes without end."},
    };
    for (const auto& [script, outcome] : rows) EXPECT_EQ(told(interpreter.execute(script)), outcome) << script;
}

TEST_F(AuthorizationTest, scripts_that_may_not_run_tell_why) {
    constexpr const char* kScript = "do shell script \"id\" with administrator privileges";
    pkexec("#!/bin/sh\nexit 126\n");
    EXPECT_EQ(told(ShellScriptInterpreter(child()).execute(kScript)), "-128: User canceled.");
    pkexec("#!/bin/sh\necho Not authorized >&2\nexit 127\n");
    const auto there = polkit({{"org.freedesktop.policykit.exec", "ask"}});
    EXPECT_EQ(told(ShellScriptInterpreter(child()).execute(kScript)), "-60005: The administrator's rights were refused.");
    fs::remove(pkexecPath());
    EXPECT_TRUE(told(ShellScriptInterpreter(child()).execute(kScript)).starts_with("-70001: "));
    EXPECT_EQ(told(ShellScriptInterpreter(child()).execute("do shell script \"echo still\"")), "ok: still");
}

}  // namespace
}  // namespace halvane::linux
