#include "app/CommandLine.h"

#include <gtest/gtest.h>

namespace halvane::app {
namespace {

using Action = CommandLine::Action;
using Wish = CommandLine::Wish;

TEST(CommandLine, understands_what_it_offers) {
    struct Row {
        const char* name;
        std::vector<std::string> arguments;
        Action action;
        std::optional<std::string> server;
        Wish wish = Wish::None;
    };
    const Row rows[] = {
        {"nothing", {}, Action::Run, std::nullopt},
        {"server", {"--server", "http://127.0.0.1:8080"}, Action::Run, "http://127.0.0.1:8080"},
        {"server in one word", {"--server=https://it.example.com/halvane/"}, Action::Run, "https://it.example.com/halvane"},
        {"slashes at the end", {"--server", "HTTP://[::1]:80//"}, Action::Run, "HTTP://[::1]:80"},
        {"help", {"--server", "http://h", "--help"}, Action::ShowHelp, "http://h"},
        {"version", {"--version"}, Action::ShowVersion, std::nullopt},
        {"uninstall", {"--uninstall"}, Action::Run, std::nullopt, Wish::Uninstall},
        {"uninstall, said twice", {"--uninstall", "--server", "http://h", "--uninstall"}, Action::Run, "http://h", Wish::Uninstall},
        {"quit", {"--quit"}, Action::Run, std::nullopt, Wish::Quit},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const auto line = CommandLine::parse(row.arguments);
        ASSERT_TRUE(line) << line.error().description;
        EXPECT_EQ(line->action, row.action);
        EXPECT_EQ(line->server, row.server);
        EXPECT_EQ(line->wish, row.wish);
    }
}

TEST(CommandLine, says_what_it_does_not_understand) {
    const std::tuple<const char*, std::vector<std::string>, const char*> rows[] = {
        {"unknown", {"--sever", "http://h"}, "\"--sever\""},
        {"stray word", {"http://h"}, "\"http://h\""},
        {"empty word", {""}, "\"\""},
        {"no value", {"--server"}, "needs an address"},
        {"empty value", {"--server="}, "http://"},
        {"no scheme", {"--server", "127.0.0.1:8080"}, "http://"},
        {"another scheme", {"--server", "file:///etc/passwd"}, "http://"},
        {"no host", {"--server", "http://"}, "http://"},
        {"no host but slashes", {"--server", "http:////"}, "http://"},
        {"a space", {"--server", "http://h /"}, "http://"},
        {"two wishes", {"--uninstall", "--quit"}, "exclude each other"},
        {"two wishes, the other way round", {"--quit", "--server=http://h", "--uninstall"}, "exclude each other"},
        {"a wish with a value", {"--quit=now"}, "\"--quit=now\""},
        {"a query", {"--server", "http://h?x"}, "http://"},
    };
    for (const auto& [name, arguments, part] : rows) {
        SCOPED_TRACE(name);
        const auto line = CommandLine::parse(arguments);
        ASSERT_FALSE(line);
        EXPECT_NE(line.error().description.find(part), std::string::npos) << line.error().description;
    }
}

}  // namespace
}  // namespace halvane::app
