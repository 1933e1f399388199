#include "linux/PosixFileStore.h"
#include "systools/StoreFixture.h"
#include "systools/security/IdentityStore.h"
#include "systools/security/StoreLock.h"

#include <cerrno>

namespace halvane::systools {
namespace {

using namespace std::chrono_literals;

/// The real file system, which refuses to write identity files on demand.
class FailingFiles final : public platform::FileStore {
public:
    util::Result<util::Bytes> read(const std::filesystem::path& path) const override { return files_.read(path); }
    util::Result<void> write(const std::filesystem::path& path, const util::Bytes& bytes) override {
        return refuse ? util::fileError(ENOSPC, "write " + path.string()) : files_.write(path, bytes);
    }
    util::Result<void> makeDirectory(const std::filesystem::path& path) override { return files_.makeDirectory(path); }
    util::Result<void> remove(const std::filesystem::path& path) override {
        return refuse ? util::fileError(EROFS, "remove " + path.string()) : files_.remove(path);
    }
    util::Result<void> removeDirectory(const std::filesystem::path& path) override { return files_.removeDirectory(path); }
    bool exists(const std::filesystem::path& path) const override { return files_.exists(path); }

    bool refuse = false;

private:
    linux::PosixFileStore files_;
};

class IdentityStoreTest : public StoreTest {
protected:
    [[nodiscard]] IdentityStore store() { return IdentityStore(*StorePlaces::ofThisUser(), files_); }

    FailingFiles files_;
};

TEST_F(IdentityStoreTest, file_that_cannot_be_written_leaves_the_database_alone) {
    ASSERT_TRUE(store().import(forge_.make({.keyLabel = "old"}), "pw"));
    const auto before = snapshot();
    files_.refuse = true;
    const auto result = store().import(forge_.make({.keyLabel = "new"}), "pw");
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().code, ENOSPC);
    EXPECT_EQ(snapshot(), before);
}

TEST_F(IdentityStoreTest, certificate_that_the_database_refuses_brings_the_older_identity_back) {
    // No database takes two certificates of one number from one authority; it notices after file and key are stored.
    ASSERT_TRUE(store().import(forge_.make({.commonName = "li.wei", .serial = 5}), "pw"));
    const auto refused = forge_.make({.serial = 5});
    auto before = snapshot();
    ASSERT_FALSE(store().import(refused, "pw"));
    EXPECT_EQ(snapshot(), before) << "no older one: file and key go again";

    ASSERT_TRUE(store().import(forge_.make({.keyLabel = "old"}), "pw"));
    before = snapshot();
    const auto listed = listing();
    ASSERT_FALSE(store().import(refused, "pw"));
    EXPECT_EQ(snapshot().keys, before.keys);
    EXPECT_EQ(snapshot().files, before.files);
    EXPECT_EQ(listing(), listed);

    // An older one with the very key of the refused one keeps it.
    ASSERT_FALSE(store().import(forge_.make({.keyLabel = "old", .serial = 5}), "pw"));
    EXPECT_EQ(listing(), listed);
}

TEST_F(IdentityStoreTest, removal_goes_on_where_one_place_fails) {
    ASSERT_TRUE(store().import(forge_.make({}), "pw"));
    files_.refuse = true;
    const auto result = store().remove("chen.xiao");
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().code, EROFS);
    EXPECT_EQ(listing(), "     0 identities found\n") << "the database was left";

    files_.refuse = false;
    const auto second = store().remove("chen.xiao");
    ASSERT_TRUE(second);
    EXPECT_TRUE(*second) << "the file alone is something, too";
    EXPECT_TRUE(snapshot().files.empty());
}

TEST_F(IdentityStoreTest, what_interruptions_leave_behind_is_no_identity_and_repaired_by_an_import) {
    const auto file = forge_.make({.keyLabel = "a"});
    // Only the file got there.
    std::filesystem::create_directories(identityFiles());
    ASSERT_TRUE(files_.write(identityFiles() / "chen.xiao.p12", file));
    EXPECT_EQ(listing(), "     0 identities found\n");
    ASSERT_TRUE(store().import(file, "pw"));
    EXPECT_EQ(store().identities()->size(), 1U);

    // Only the key is left in the database.
    ASSERT_EQ(test::runProgram("certutil", {"-D", "-n", "chen.xiao", "-d", "sql:" + database().string()}).exitCode, 0);
    EXPECT_EQ(listing(), "     0 identities found\n");
    EXPECT_EQ(keyCount(), 1);
    ASSERT_TRUE(store().import(file, "pw"));
    EXPECT_EQ(store().identities()->size(), 1U);
    EXPECT_EQ(keyCount(), 1);

    // The file went astray: network connections are told so.
    ASSERT_TRUE(files_.remove(identityFiles() / "chen.xiao.p12"));
    EXPECT_NE(security({"find-identity"}).err.find("chen.xiao"), std::string::npos);
    ASSERT_TRUE(store().import(file, "pw"));
    EXPECT_EQ(security({"find-identity"}).err, "");
}

TEST_F(IdentityStoreTest, second_program_waits_for_its_turn_and_not_for_ever) {
    const auto file = home_.path() / "lock";
    auto held = std::make_unique<util::Result<StoreLock>>(StoreLock::take(file, 0ms));
    ASSERT_TRUE(*held);
    const auto refused = StoreLock::take(file, 60ms);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().description, "another program is changing " + home_.path().string());
    held.reset();
    EXPECT_TRUE(StoreLock::take(file, 0ms));
    EXPECT_EQ(StoreLock::take(home_.path() / "no/such/lock", 0ms).error().code, ENOENT);
}

TEST_F(IdentityStoreTest, places_follow_the_environment_and_the_account) {
    using Map = std::map<std::string, std::string>;
    struct Row {
        const char* name;
        Map environment;
        std::optional<std::filesystem::path> account;
        std::optional<std::string> identities;
        std::size_t databases;
    };
    const Row rows[] = {
        {"home alone", {{"HOME", "/h"}}, "/a", "/h/.local/share/halvane/identities", 2},
        {"data directory", {{"HOME", "/h"}, {"XDG_DATA_HOME", "/d"}}, "/a", "/d/halvane/identities", 2},
        {"relative data directory", {{"HOME", "/h"}, {"XDG_DATA_HOME", "d"}}, "/a", "/h/.local/share/halvane/identities", 2},
        {"empty home", {{"HOME", ""}}, "/a", "/a/.local/share/halvane/identities", 2},
        {"no home but a data directory", {{"XDG_DATA_HOME", "/d"}}, std::nullopt, "/d/halvane/identities", 1},
        {"nothing", {}, std::nullopt, std::nullopt, 0},
    };
    for (const auto& row : rows) {
        const auto variable = [&](const char* name) {
            const auto found = row.environment.find(name);
            return found == row.environment.end() ? std::nullopt : std::optional(found->second);
        };
        const auto places = StorePlaces::find(variable, row.account);
        ASSERT_EQ(places.ok(), row.identities.has_value()) << row.name;
        if (!places) continue;
        EXPECT_EQ(places->identities, *row.identities) << row.name;
        EXPECT_EQ(places->databases.size(), row.databases) << row.name;
    }
}

TEST_F(IdentityStoreTest, names_too_long_for_a_file_still_have_files_of_their_own) {
    linux::PosixFileStore files;
    const IdentityFiles identities("/x", files);
    const std::string name(300, 'a');
    EXPECT_LE(identities.pathOf(name).filename().native().size(), 255U);
    EXPECT_NE(identities.pathOf(name), identities.pathOf(name + "b"));
    for (const char* hostile : {"..", ".", "../x", "a/b", "/", ".lock"}) {
        EXPECT_EQ(identities.pathOf(hostile).parent_path(), "/x") << hostile;
        EXPECT_NE(identities.pathOf(hostile).filename().native().front(), '.') << hostile;
    }
}

}  // namespace
}  // namespace halvane::systools
