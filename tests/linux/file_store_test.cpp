#include "linux/PosixFileStore.h"
#include "support/FileStoreContract.h"
#include "support/MemoryFileStore.h"
#include "support/TemporaryDirectory.h"

#include <sys/stat.h>

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

namespace halvane::test {

struct PosixFileStoreHarness {
    platform::FileStore& store() { return store_; }
    [[nodiscard]] const std::filesystem::path& root() const { return directory_.path(); }
    linux::PosixFileStore store_;
    TemporaryDirectory directory_;
};

struct MemoryFileStoreHarness {
    MemoryFileStoreHarness() { EXPECT_TRUE(store_.makeDirectory(root())); }
    platform::FileStore& store() { return store_; }
    [[nodiscard]] static std::filesystem::path root() { return "/memory"; }
    MemoryFileStore store_;
};

INSTANTIATE_TYPED_TEST_SUITE_P(Memory, FileStoreContract, MemoryFileStoreHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(Posix, FileStoreContract, PosixFileStoreHarness);

}  // namespace halvane::test

namespace halvane::linux {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

class PosixFileStoreTest : public testing::Test {
protected:
    test::PosixFileStoreHarness harness;
    PosixFileStore& store = harness.store_;
    const fs::path root = harness.root();

    static unsigned modeOf(const fs::path& path) {
        struct stat status {};
        EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
        return status.st_mode & 07777U;
    }
    /// Names in the root: what a failed write left behind would show here.
    std::vector<std::string> names() const {
        std::vector<std::string> all;
        for (const auto& entry : fs::directory_iterator(root)) all.push_back(entry.path().filename());
        std::ranges::sort(all);
        return all;
    }
};

TEST_F(PosixFileStoreTest, only_the_user_can_read_what_is_written_whatever_the_umask) {
    const auto before = ::umask(0);
    ASSERT_TRUE(store.makeDirectory(root / "a" / "b"));
    ASSERT_TRUE(store.write(root / "a" / "b" / "secret", "x"));
    ::umask(before);
    EXPECT_EQ(modeOf(root / "a"), 0700U);
    EXPECT_EQ(modeOf(root / "a" / "b"), 0700U);
    EXPECT_EQ(modeOf(root / "a" / "b" / "secret"), 0600U);
}

TEST_F(PosixFileStoreTest, a_link_at_the_end_of_the_path_is_replaced_and_its_target_untouched) {
    ASSERT_TRUE(store.write(root / "victim", "precious"));
    fs::create_symlink(root / "victim", root / "link");
    ASSERT_TRUE(store.write(root / "link", "new"));
    EXPECT_EQ(store.read(root / "victim").value(), "precious");
    EXPECT_FALSE(fs::is_symlink(root / "link"));
    EXPECT_EQ(store.read(root / "link").value(), "new");
}

TEST_F(PosixFileStoreTest, a_failed_write_leaves_the_old_file_and_nothing_else) {
    fs::create_directory(root / "directory");
    ASSERT_TRUE(store.write(root / "file", "old"));
    const std::pair<fs::path, int> rows[] = {
        {root / "directory", EISDIR},
        {root / "file" / "below", ENOTDIR},
        {root / std::string(300, 'n'), ENAMETOOLONG},
        {fs::path(root.string() + "/file\0.plist"s), EINVAL},
        {fs::path(root.string() + "/"), EISDIR},
        {fs::path(), EINVAL},
    };
    for (const auto& [path, code] : rows) {
        const auto outcome = store.write(path, "new");
        ASSERT_FALSE(outcome) << path;
        EXPECT_EQ(outcome.error().code, code) << outcome.error().description;
    }
    EXPECT_EQ(names(), (std::vector<std::string>{"directory", "file"}));
    EXPECT_EQ(store.read(root / "file").value(), "old");
    EXPECT_TRUE(store.write(root / std::string(255, 'n'), "the longest name there is"));
}

TEST_F(PosixFileStoreTest, what_is_no_regular_file_is_refused_without_waiting) {
    ASSERT_EQ(::mkfifo((root / "pipe").c_str(), 0600), 0);
    fs::create_symlink("loop", root / "loop");
    const std::pair<fs::path, int> rows[] = {
        {root, EISDIR}, {root / "pipe", EINVAL}, {root / "loop", ELOOP}, {"/dev/zero", EINVAL}, {fs::path(), EINVAL}};
    for (const auto& [path, code] : rows) {
        const auto read = store.read(path);
        ASSERT_FALSE(read) << path;
        EXPECT_EQ(read.error().code, code) << read.error().description;
    }
    // Bigger than any file of ours, without its blocks on the disk.
    ASSERT_TRUE(store.write(root / "huge", ""));
    ASSERT_EQ(::truncate((root / "huge").c_str(), static_cast<off_t>(PosixFileStore::kLargestFile) + 1), 0);
    EXPECT_EQ(store.read(root / "huge").error().code, EFBIG);
    // Files of /proc have no size to go by.
    EXPECT_FALSE(store.read("/proc/self/status").value().empty());
}

TEST_F(PosixFileStoreTest, a_directory_cannot_be_made_through_a_file_or_a_dead_link) {
    ASSERT_TRUE(store.write(root / "file", ""));
    fs::create_symlink(root / "nowhere", root / "dead");
    EXPECT_EQ(store.makeDirectory(root / "file").error().code, EEXIST);
    EXPECT_EQ(store.makeDirectory(root / "file" / "below").error().code, EEXIST);
    EXPECT_EQ(store.makeDirectory(root / "dead" / "below").error().code, EEXIST);
    fs::create_directory_symlink(root, root / "alias");
    EXPECT_TRUE(store.makeDirectory(root / "alias" / "new"));
}

TEST_F(PosixFileStoreTest, readers_see_one_whole_version_while_others_write) {
    const std::string versions[] = {std::string(200000, 'a'), std::string(100000, 'b')};
    ASSERT_TRUE(store.write(root / "file", versions[0]));
    std::jthread writer([&](const std::stop_token& stop) {
        for (int i = 0; i < 200 && !stop.stop_requested(); ++i) EXPECT_TRUE(store.write(root / "file", versions[i % 2]));
    });
    for (int i = 0; i < 100; ++i) {
        const auto read = store.read(root / "file");
        ASSERT_TRUE(read) << read.error().description;
        ASSERT_TRUE(*read == versions[0] || *read == versions[1]) << read->size();
    }
}

}  // namespace
}  // namespace halvane::linux
