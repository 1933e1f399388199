#include "linux/XdgDirectories.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <map>

namespace halvane::linux {
namespace {

namespace fs = std::filesystem;

class XdgDirectoriesTest : public testing::Test {
protected:
    XdgDirectoriesTest() {
        fs::create_directory(shared);
        fs::create_directory(runtime);
        fs::permissions(runtime, fs::perms::owner_all);
    }

    util::Result<XdgDirectories> locate() {
        return XdgDirectories::locate("/app/resources", {.variable = [this](const char* name) -> std::optional<std::string> {
                                                             const auto found = variables.find(name);
                                                             return found == variables.end() ? std::nullopt : std::optional(found->second);
                                                         },
                                                         .accountHome = accountHome,
                                                         .sharedTemporary = shared});
    }
    static unsigned modeOf(const fs::path& path) {
        struct stat status {};
        EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
        return status.st_mode & 07777U;
    }

    const test::TemporaryDirectory home;
    const fs::path runtime = home.path() / "run";
    const fs::path shared = home.path() / "shared";
    const fs::path own = shared / ("halvane-" + std::to_string(::geteuid()));
    std::map<std::string, std::string> variables{{"HOME", "/home/wang"}};
    std::optional<fs::path> accountHome;
};

TEST_F(XdgDirectoriesTest, variables_count_only_as_absolute_paths) {
    variables["XDG_DATA_HOME"] = "/data";
    variables["XDG_CACHE_HOME"] = "cache";  // relative
    variables["XDG_CONFIG_HOME"] = "";
    auto directories = locate();
    ASSERT_TRUE(directories) << directories.error().description;
    EXPECT_EQ(directories->documents(), "/data/halvane/Documents");
    EXPECT_EQ(directories->caches(), "/home/wang/.cache/halvane");
    EXPECT_EQ(directories->configuration(), "/home/wang/.config/halvane");
    EXPECT_EQ(directories->resources(), "/app/resources");

    variables.erase("XDG_DATA_HOME");
    EXPECT_EQ(locate()->documents(), "/home/wang/.local/share/halvane/Documents");
}

TEST_F(XdgDirectoriesTest, without_HOME_the_list_of_users_decides_and_else_there_is_a_clear_error) {
    for (const char* unusable : {"", "relative", "."}) {
        SCOPED_TRACE(unusable);
        variables["HOME"] = unusable;
        accountHome = "/home/by-account";
        EXPECT_EQ(locate()->caches(), "/home/by-account/.cache/halvane");
        accountHome.reset();
        const auto none = locate();
        ASSERT_FALSE(none);
        EXPECT_NE(none.error().description.find("HOME"), std::string::npos) << none.error().description;
    }
}

TEST_F(XdgDirectoriesTest, the_sessions_runtime_directory_is_used_when_it_is_private) {
    variables["XDG_RUNTIME_DIR"] = runtime;
    EXPECT_EQ(locate()->temporary(), runtime / "halvane");
    ASSERT_EQ(::chmod(runtime.c_str(), 0755), 0);
    EXPECT_EQ(locate()->temporary(), own);
    ASSERT_EQ(::chmod(runtime.c_str(), 0700), 0);
    for (const auto& unusable : {std::string("run"), (home.path() / "none").string()}) {
        variables["XDG_RUNTIME_DIR"] = unusable;
        EXPECT_EQ(locate()->temporary(), own) << unusable;
    }
}

TEST_F(XdgDirectoriesTest, without_one_a_private_directory_is_made_and_found_again) {
    EXPECT_EQ(locate()->temporary(), own);
    EXPECT_EQ(modeOf(own), 0700U);
    // Left open, by an older version or a careless hand: it is ours to close.
    ASSERT_EQ(::chmod(own.c_str(), 0777), 0);
    EXPECT_EQ(locate()->temporary(), own);
    EXPECT_EQ(modeOf(own), 0700U);
}

TEST_F(XdgDirectoriesTest, a_place_that_somebody_else_prepared_is_not_used) {
    const auto instead = fs::path("/home/wang/.cache/halvane/temporary");
    fs::create_directory_symlink(home.path(), own);
    EXPECT_EQ(locate()->temporary(), instead) << "a link to a directory";
    fs::remove(own);
    ASSERT_EQ(::symlink("/nowhere", own.c_str()), 0);
    EXPECT_EQ(locate()->temporary(), instead) << "a dead link";
    fs::remove(own);
    ASSERT_EQ(::mknod(own.c_str(), S_IFREG | 0600, 0), 0);
    EXPECT_EQ(locate()->temporary(), instead) << "a file";
    fs::remove(own);
    fs::create_directory(own);
    if (::geteuid() != 0 || ::chown(own.c_str(), 12345, 12345) != 0) GTEST_SKIP() << "only root can make another user's directory";
    EXPECT_EQ(locate()->temporary(), instead) << "another user's directory";
}

}  // namespace
}  // namespace halvane::linux
