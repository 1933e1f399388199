#include "linux/PkexecPackageInstaller.h"

#include "support/Eventually.h"
#include "support/ManualMainLoop.h"
#include "support/TemporaryDirectory.h"
#include "support/ThreadQueue.h"
#include "util/UpdateError.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

namespace halvane::linux {
namespace {

namespace fs = std::filesystem;
using util::UpdateError;

class PackageInstallerTest : public testing::Test {
protected:
    PackageInstallerTest() {
        place("package.deb", "the package's bytes");
        place("pkexec", "#!/usr/bin/python3\nimport os, sys\nos.set_inheritable(3, False)\nos.execv(sys.argv[3], sys.argv[3:])\n");
        program("cat >" + at("received") + "; printf '%s' \"$*\" >" + at("arguments"));
    }

    void place(const char* name, const std::string& content) {
        std::ofstream(at(name)) << content;
        fs::permissions(at(name), fs::perms::owner_all);
    }
    void program(const std::string& script) { place("install-update", "#!/bin/sh\n" + script + "\n"); }
    [[nodiscard]] std::string at(const char* name) const { return (directory.path() / name).string(); }
    [[nodiscard]] std::string contentOf(const char* name) const {
        std::ifstream stream(at(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    void make() {
        installer = std::make_unique<PkexecPackageInstaller>(PkexecPackageInstaller::Collaborators{
            at("install-update"), PkexecChild(PolkitAuthority("unix:path=/nowhere/bus"), at("pkexec")), worker, loop});
    }
    void begin() {
        outcome.reset();
        if (!installer) make();
        installer->install(at("package.deb"), "c2lnbmF0dXJl", [this](const util::Result<void>& ended) { outcome = ended; });
    }
    int install() {
        begin();
        EXPECT_FALSE(outcome) << "not before it has returned";
        EXPECT_TRUE(test::eventually([this] {
            loop->runPending();
            return outcome.has_value();
        }));
        return outcome && !*outcome ? outcome->error().code : 0;
    }

    const test::TemporaryDirectory directory;
    const std::shared_ptr<test::ManualMainLoop> loop = std::make_shared<test::ManualMainLoop>();
    std::optional<util::Result<void>> outcome;
    std::shared_ptr<test::ThreadQueue> worker = std::make_shared<test::ThreadQueue>();
    std::unique_ptr<PkexecPackageInstaller> installer;
};

TEST_F(PackageInstallerTest, the_program_gets_bytes_and_signature_and_no_path) {
    EXPECT_EQ(install(), 0);
    EXPECT_EQ(contentOf("received"), "the package's bytes");
    EXPECT_EQ(contentOf("arguments"), "c2lnbmF0dXJl");
}

TEST_F(PackageInstallerTest, however_it_ends_there_is_a_reason) {
    const std::pair<const char*, UpdateError> rows[] = {{"exit 20", UpdateError::PackageSignature},
                                                        {"exit 21", UpdateError::OtherPackage},
                                                        {"exit 23", UpdateError::NotHigher},
                                                        {"exit 24", UpdateError::NoSpace},
                                                        {"exit 26", UpdateError::Busy},
                                                        {"exit 27", UpdateError::InstallationFailed},
                                                        {"exit 28", UpdateError::InstallationFailed},
                                                        {"exit 1", UpdateError::InstallationFailed},
                                                        {"exit 30", UpdateError::InstallationFailed},
                                                        {"exit 126", UpdateError::InstallationFailed},
                                                        {"kill -9 $$", UpdateError::Interrupted}};
    for (const auto& [script, expected] : rows) {
        program(std::string("echo said so; sleep 0.05; ") + script);
        EXPECT_EQ(install(), static_cast<int>(expected)) << script;
    }
    EXPECT_EQ(outcome->error().description, "the installing program was ended by a signal");
    program("echo said so; sleep 0.05; exit 23");
    install();
    EXPECT_EQ(outcome->error().description, "said so");
}

TEST_F(PackageInstallerTest, whoever_does_not_get_the_authorisation_learns_why) {
    place("pkexec", "#!/bin/sh\nexit 126\n");
    EXPECT_EQ(install(), static_cast<int>(UpdateError::Dismissed));
    place("pkexec", "#!/bin/sh\nexit 127\n");
    EXPECT_EQ(install(), static_cast<int>(UpdateError::NoAuthority));
    fs::remove(at("pkexec"));
    EXPECT_EQ(install(), static_cast<int>(UpdateError::NoAuthority));
    EXPECT_FALSE(fs::exists(at("received")));
}

TEST_F(PackageInstallerTest, what_is_no_file_of_the_person_s_is_not_opened) {
    fs::rename(at("package.deb"), at("other"));
    EXPECT_EQ(install(), static_cast<int>(UpdateError::PackageUnreachable));
    fs::create_symlink(at("other"), at("package.deb"));
    EXPECT_EQ(install(), static_cast<int>(UpdateError::PackageUnreachable));
    EXPECT_FALSE(fs::exists(at("received")));
}

TEST_F(PackageInstallerTest, when_it_goes_a_question_is_taken_back_and_an_installation_goes_on) {
    place("pkexec", "#!/bin/sh\ntouch " + at("asks") + "\nexec sleep 60 # as pkexec waits\n");
    begin();
    ASSERT_TRUE(test::eventually([this] { return fs::exists(at("asks")); }));
    installer.reset();
    worker.reset();  // waits for what runs there
    EXPECT_FALSE(outcome);

    worker = std::make_shared<test::ThreadQueue>();
    place("pkexec", "#!/usr/bin/python3\nimport os, sys\nos.set_inheritable(3, False)\nos.execv(sys.argv[3], sys.argv[3:])\n");
    program("touch " + at("runs") + "; while [ ! -e " + at("go-on") + " ]; do sleep 0.01; done; touch " + at("done"));
    begin();
    ASSERT_TRUE(test::eventually([this] { return fs::exists(at("runs")); }));
    installer.reset();
    worker.reset();
    EXPECT_FALSE(fs::exists(at("done")));
    place("go-on", "");
    EXPECT_TRUE(test::eventually([this] { return fs::exists(at("done")); }));
    EXPECT_TRUE(test::eventually([] { return ::waitpid(-1, nullptr, WNOHANG) > 0; })) << "nobody else collects it in this process";
    loop->runPending();
    EXPECT_FALSE(outcome);
}

}  // namespace
}  // namespace halvane::linux
