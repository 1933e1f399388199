#pragma once

#include "platform/FileStore.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace halvane::test {

/// What every FileStore does. `Harness`: `store()`, and `root()`, an empty directory that exists.
template <typename Harness>
class FileStoreContract : public testing::Test {
protected:
    platform::FileStore& store() { return harness_.store(); }
    std::filesystem::path at(const char* name) { return harness_.root() / name; }

    static void expectFileError(const util::Error& error, int code) {
        EXPECT_EQ(error.domain, util::kFileErrorDomain) << error.description;
        EXPECT_EQ(error.code, code) << error.description;
    }

private:
    Harness harness_;
};

TYPED_TEST_SUITE_P(FileStoreContract);

TYPED_TEST_P(FileStoreContract, reads_the_bytes_that_were_written_last) {
    const std::pair<const char*, util::Bytes> rows[] = {
        {"text", "职场\n"}, {"nothing", ""}, {"every byte", util::Bytes("\0\r\n\xFF\x1A\0", 6)}, {"large", util::Bytes(300000, 'x')}};
    for (const auto& [name, bytes] : rows) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(this->store().write(this->at("file"), bytes));
        const auto read = this->store().read(this->at("file"));
        ASSERT_TRUE(read) << read.error().description;
        EXPECT_TRUE(*read == bytes);
    }
}

TYPED_TEST_P(FileStoreContract, a_missing_file_is_told_apart_from_other_failures) {
    this->expectFileError(this->store().read(this->at("none")).error(), ENOENT);
    this->expectFileError(this->store().remove(this->at("none")).error(), ENOENT);
    this->expectFileError(this->store().write(this->at("none/file"), "x").error(), ENOENT);
    EXPECT_FALSE(this->store().exists(this->at("none")));
    EXPECT_FALSE(this->store().exists(this->at("none/file")));
}

TYPED_TEST_P(FileStoreContract, a_directory_is_made_with_its_parents_and_may_exist) {
    const auto directory = this->at("a/b/c");
    ASSERT_TRUE(this->store().makeDirectory(directory));
    ASSERT_TRUE(this->store().makeDirectory(directory));
    EXPECT_TRUE(this->store().exists(directory.parent_path()));
    EXPECT_TRUE(this->store().write(directory / "file", "x"));
}

TYPED_TEST_P(FileStoreContract, a_removed_file_is_gone) {
    ASSERT_TRUE(this->store().write(this->at("file"), "x"));
    EXPECT_TRUE(this->store().exists(this->at("file")));
    ASSERT_TRUE(this->store().remove(this->at("file")));
    EXPECT_FALSE(this->store().exists(this->at("file")));
    this->expectFileError(this->store().read(this->at("file")).error(), ENOENT);
}

TYPED_TEST_P(FileStoreContract, a_removed_directory_is_gone_with_what_is_in_it_and_nothing_else) {
    ASSERT_TRUE(this->store().makeDirectory(this->at("a/b/c")));
    ASSERT_TRUE(this->store().makeDirectory(this->at("a/bb")));
    ASSERT_TRUE(this->store().write(this->at("a/b/c/file"), "x"));
    ASSERT_TRUE(this->store().write(this->at("a/bb/file"), "x"));
    for (int time = 0; time < 2; ++time) {
        ASSERT_TRUE(this->store().removeDirectory(this->at("a/b")));
        EXPECT_FALSE(this->store().exists(this->at("a/b/c/file")) || this->store().exists(this->at("a/b")));
        EXPECT_TRUE(this->store().exists(this->at("a/bb/file")));
    }
}

REGISTER_TYPED_TEST_SUITE_P(FileStoreContract, reads_the_bytes_that_were_written_last, a_missing_file_is_told_apart_from_other_failures,
                            a_directory_is_made_with_its_parents_and_may_exist, a_removed_file_is_gone,
                            a_removed_directory_is_gone_with_what_is_in_it_and_nothing_else);

}  // namespace halvane::test
