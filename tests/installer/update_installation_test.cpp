#include "installer/UpdateInstallation.h"

#include "installer/Surroundings.h"
#include "linux/ChildStart.h"
#include "linux/base/Descriptor.h"
#include "support/TemporaryDirectory.h"
#include "support/TestSigner.h"
#include "util/UpdateError.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>

namespace halvane::installer {
namespace {

namespace fs = std::filesystem;
using util::UpdateError;

/// Packages are real, and read by the real package manager; what is installed, and what installing does, says the test.
class UpdateInstallationTest : public testing::Test {
protected:
    struct Package {
        std::string name = "halvane";
        std::string version = "1.1.0";
        std::string architecture = "all";
    };

    UpdateInstallationTest() { install("1.0.0"); }

    static void place(const fs::path& path, const std::string& content, bool isProgram = false) {
        fs::create_directories(path.parent_path());
        std::ofstream(path) << content;
        if (isProgram) fs::permissions(path, fs::perms::owner_all);
    }
    static std::string contentOf(const fs::path& path) {
        std::ifstream stream(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    /// The bytes of a package.
    std::string make(const Package& package) {
        const auto tree = root() / "tree";
        place(tree / "usr/share/doc/it", std::string(50'000, 'd'));
        place(tree / "DEBIAN/control", "Package: " + package.name + "\nVersion: " + package.version + "\nArchitecture: " +
                                           package.architecture + "\nMaintainer: Test <test@example.com>\nDescription: made by a test\n");
        const auto file = root() / "made.deb";
        const auto built =
            SystemProgram("/usr/bin/dpkg-deb").outputOf({"--root-owner-group", "-Znone", "--build", tree.string(), file.string()});
        EXPECT_TRUE(built) << built.error().description;
        return contentOf(file);
    }
    /// What `dpkg-query` says from now on.
    void install(const std::string& version, const std::string& status = "installed") {
        place(root() / "version", version);
        place(root() / "status", status);
    }
    void aptGet(const std::string& script) { place(root() / "apt-get", "#!/bin/sh\n" + script + "\n", true); }

    [[nodiscard]] fs::path root() const { return directory.path(); }
    [[nodiscard]] fs::path updates() const { return root() / "var/halvane/updates"; }

    util::Result<std::string> run(const std::string& bytes, const std::string& signature) {
        place(root() / "handed over", bytes);
        const linux::Descriptor input(::open((root() / "handed over").c_str(), O_RDONLY | O_CLOEXEC));
        return run(input.get(), signature);
    }
    util::Result<std::string> run(int input, const std::string& signature) {
        place(root() / "dpkg-query",
              "#!/bin/sh\n[ \"$3\" = halvane ] && printf '%s %s' \"$(cat " + (root() / "status").string() + ")\" \"$(cat " +
                  (root() / "version").string() + ")\"\n",
              true);
        fs::create_directories(updates().parent_path().parent_path());
        return UpdateInstallation({.key = *util::PublicKey::fromBase64(signer.publicKey()),
                                   .package = "halvane",
                                   .directory = updates(),
                                   .dpkg = SystemProgram(fs::exists(root() / "dpkg") ? (root() / "dpkg").string() : "/usr/bin/dpkg"),
                                   .dpkgQuery = SystemProgram((root() / "dpkg-query").string()),
                                   .aptGet = SystemProgram((root() / "apt-get").string())})
            .install(input, signature);
    }
    [[nodiscard]] int copiesLeft() const {
        int count = 0;
        std::error_code none;
        for (const auto& entry : fs::directory_iterator(updates(), none)) count += entry.path().extension() == ".deb" ? 1 : 0;
        return count;
    }
    util::Result<std::string> run(const std::string& bytes) { return run(bytes, signer.sign(bytes)); }
    static int codeOf(const util::Result<std::string>& result) { return result ? 0 : result.error().code; }

    /// Takes the package for installed, whatever it is, and notes what it was asked.
    std::string installing(const std::string& version) const {
        return "printf '%s\\n' \"$@\" >" + (root() / "asked").string() + "; cp \"$(printf '%s\\n' \"$@\" | tail -n 1)\" " +
               (root() / "installed.deb").string() + "; printf " + version + " >" + (root() / "version").string() + "; printf installed >" +
               (root() / "status").string();
    }

    const test::TemporaryDirectory directory;
    const test::TestSigner signer;
};

TEST_F(UpdateInstallationTest, exactly_the_verified_bytes_reach_the_package_manager) {
    aptGet(installing("1.1.0") + "; stat -c %a " + updates().string() + " " + updates().string() + "/*.deb >" +
           (root() / "modes").string());
    const std::string bytes = make({});
    const auto installed = run(bytes);
    ASSERT_TRUE(installed) << installed.error().description;
    EXPECT_EQ(*installed, "1.1.0");
    EXPECT_EQ(contentOf(root() / "installed.deb"), bytes);
    EXPECT_EQ(contentOf(root() / "modes"), "700\n600\n");
    const std::string asked = contentOf(root() / "asked");
    for (const char* word : {"--assume-yes\n", "--no-remove\n", "--only-upgrade\n", "install\n"})
        EXPECT_NE(asked.find(word), std::string::npos) << asked;
    EXPECT_EQ(copiesLeft(), 0);
}

TEST_F(UpdateInstallationTest, what_is_refused_is_never_installed) {
    const test::TestSigner other;
    const std::string good = make({});
    std::string altered = good;
    altered[altered.size() / 2] = static_cast<char>(altered[altered.size() / 2] ^ 1);
    struct Row {
        const char* name;
        UpdateError expected;
        std::string bytes;
        std::string signature;
    };
    const auto row = [&](const char* name, UpdateError expected, const std::string& bytes) {
        return Row{name, expected, bytes, signer.sign(bytes)};
    };
    const Row rows[] = {
        {"package without a signature", UpdateError::PackageSignature, good, ""},
        {"package signed by another key", UpdateError::PackageSignature, good, other.sign(good)},
        {"package altered after it was verified", UpdateError::PackageSignature, altered, signer.sign(good)},
        {"package cut short", UpdateError::PackageSignature, good.substr(0, good.size() - 1), signer.sign(good)},
        {"package with something behind it", UpdateError::PackageSignature, good + "x", signer.sign(good)},
        {"nothing at all", UpdateError::PackageSignature, "", signer.sign(good)},
        row("signed file that is no package", UpdateError::OtherPackage, "text"),
        row("signed package, cut short before that", UpdateError::OtherPackage, good.substr(0, 60)),
        row("other package", UpdateError::OtherPackage, make({.name = "halvane-server"})),
        row("package for another processor", UpdateError::OtherArchitecture, make({.architecture = "m68k"})),
        row("the version that is installed", UpdateError::NotHigher, make({.version = "1.0.0"})),
        row("lower version", UpdateError::NotHigher, make({.version = "0.9.9"})),
        row("version before the installed one", UpdateError::NotHigher, make({.version = "1.0.0~rc1"})),
    };
    aptGet(installing("9"));
    for (const auto& [name, expected, bytes, signature] : rows) {
        const auto result = run(bytes, signature);
        EXPECT_EQ(codeOf(result), static_cast<int>(expected)) << name;
        EXPECT_FALSE(fs::exists(root() / "asked")) << name;
        EXPECT_EQ(copiesLeft(), 0) << name;
        std::cout << "  refused: " << name << " | " << (result ? "" : result.error().description) << "\n";
    }
    aptGet(installing("1.1.0"));
    EXPECT_EQ(codeOf(run(good)), 0) << "and the next one is installed";
}

TEST_F(UpdateInstallationTest, a_copy_that_cannot_be_written_leaves_nothing) {
    const std::string good = make({});
    aptGet(installing("1.1.0"));
    (void)run("");  // makes the directory, and what follows writes no file
    place(root() / "handed over", good);
    const linux::Descriptor input(::open((root() / "handed over").c_str(), O_RDONLY | O_CLOEXEC));
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{30'000, before.rlim_max};
    const auto was = std::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &small);
    const auto result = run(input.get(), signer.sign(good));
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, was);
    EXPECT_EQ(codeOf(result), static_cast<int>(UpdateError::CannotCopy));
    EXPECT_EQ(copiesLeft(), 0);
    EXPECT_FALSE(fs::exists(root() / "asked"));
}

TEST_F(UpdateInstallationTest, what_the_package_manager_says_becomes_a_reason) {
    const std::string good = make({});
    const std::pair<std::string, UpdateError> rows[] = {
        {"echo 'E: Could not get lock /var/lib/dpkg/lock-frontend. It is held by process 7'; exit 100", UpdateError::Busy},
        {"echo \"E: You don't have enough free space in /var/cache/apt/archives/.\"; exit 100", UpdateError::NoSpace},
        {"echo 'dpkg: error: failed to write: No space left on device' >&2; exit 100", UpdateError::NoSpace},
        {"echo 'E: Unmet dependencies.'; exit 100", UpdateError::InstallationFailed},
        {"echo 'Waiting for cache lock: Could not get lock /var/lib/dpkg/lock-frontend.'; echo 'E: Unmet dependencies.'; exit 100",
         UpdateError::InstallationFailed},
        {installing("1.1.0") + "; printf half-configured >" + (root() / "status").string() + "; exit 0", UpdateError::InstallationFailed},
        {"exit 0", UpdateError::InstallationFailed},
        {"kill -9 $$", UpdateError::InstallationFailed},
    };
    for (const auto& [script, expected] : rows) {
        aptGet(script);
        install("1.0.0");
        const auto result = run(good);
        EXPECT_EQ(codeOf(result), static_cast<int>(expected)) << script;
        std::cout << "  refused: " << (result ? "" : result.error().description) << "\n";
    }
    fs::remove(root() / "apt-get");
    EXPECT_EQ(codeOf(run(good)), static_cast<int>(UpdateError::InstallationFailed));
}

TEST_F(UpdateInstallationTest, a_package_manager_that_was_interrupted_is_mended_and_asked_again) {
    const std::string mended = (root() / "mended").string();
    const std::string refuse = "echo 'E: dpkg was interrupted, you must manually run'; exit 100";
    place(root() / "dpkg",
          "#!/bin/sh\n[ \"$1\" = --print-architecture ] && exec dpkg \"$@\"; printf '%s ' \"$@\" >" + mended + "; exit 1\n", true);
    aptGet("[ -e " + mended + " ] || { " + refuse + "; }; " + installing("1.1.0"));
    EXPECT_EQ(codeOf(run(make({}))), 0);
    EXPECT_EQ(contentOf(mended), "--configure --force-confdef --force-confold halvane ") << "nobody else's package";
    aptGet(refuse);
    install("1.0.0");
    EXPECT_EQ(codeOf(run(make({}))), static_cast<int>(UpdateError::InstallationFailed)) << "it is asked twice, not for ever";
}

TEST_F(UpdateInstallationTest, an_installation_that_was_cut_off_is_brought_to_its_end_by_the_same_package) {
    aptGet(installing("1.1.0"));
    for (const char* status : {"unpacked", "half-configured", "half-installed"}) {
        install("1.1.0", status);
        EXPECT_EQ(codeOf(run(make({}))), 0) << status;
    }
    install("1.2.0", "unpacked");
    EXPECT_EQ(codeOf(run(make({}))), static_cast<int>(UpdateError::NotHigher));
    for (const char* status : {"triggers-pending", "installed"}) {
        install("1.1.0", status);
        EXPECT_EQ(codeOf(run(make({}))), static_cast<int>(UpdateError::NotHigher)) << status;
    }
    for (const char* status : {"config-files", "not-installed", ""}) {
        install("1.0.0", status);
        EXPECT_EQ(codeOf(run(make({}))), static_cast<int>(UpdateError::InstallationFailed)) << status;
    }
}

TEST_F(UpdateInstallationTest, nothing_of_the_callers_reaches_or_stops_the_package_manager) {
    aptGet("kill -HUP $$; kill -INT $$; kill -TERM $$; { env; ulimit -f; ulimit -t; nice; } >" + (root() / "surroundings").string() + "; " +
           installing("1.1.0"));
    const std::string good = make({});
    const auto child = ::fork();
    if (child == 0) {
        const rlimit small{100 << 20, RLIM_INFINITY};
        ::setrlimit(RLIMIT_FSIZE, &small);
        ::setenv("LD_PRELOAD", "", 1);
        ::setenv("HALVANE_TOOL_ROOT", "/elsewhere", 1);
        std::signal(SIGCHLD, SIG_IGN);
        Surroundings::leave();
        ::_exit(codeOf(run(good)));
    }
    EXPECT_EQ(linux::ChildStart::awaitEnd(child), 0);
    const std::string surroundings = contentOf(root() / "surroundings");
    EXPECT_NE(surroundings.find("DEBIAN_FRONTEND=noninteractive\n"), std::string::npos);
    EXPECT_NE(surroundings.find("PATH=/usr/sbin:/usr/bin:/sbin:/bin\n"), std::string::npos);
    EXPECT_EQ(surroundings.find("LD_PRELOAD"), std::string::npos);
    EXPECT_EQ(surroundings.find("HALVANE_"), std::string::npos);
    if (::geteuid() == 0) {
        EXPECT_NE(surroundings.find("\nunlimited\nunlimited\n0\n"), std::string::npos) << surroundings;
    }
}

TEST_F(UpdateInstallationTest, one_at_a_time_and_what_a_killed_one_left_is_no_hindrance) {
    const std::string good = make({});
    aptGet(installing("1.1.0"));
    (void)run("");
    place(updates() / "package-left.deb", "left by one that was killed");
    {
        const linux::Descriptor lock(::open((updates() / "lock").c_str(), O_RDWR | O_CLOEXEC));
        ASSERT_EQ(::flock(lock.get(), LOCK_EX), 0);
        EXPECT_EQ(codeOf(run(good)), static_cast<int>(UpdateError::Busy));
        EXPECT_EQ(copiesLeft(), 1) << "which may be what the other one installs";
    }
    EXPECT_EQ(codeOf(run(good)), 0);
    EXPECT_EQ(copiesLeft(), 0);
}

TEST_F(UpdateInstallationTest, a_directory_that_others_can_reach_is_not_used) {
    const std::string good = make({});
    aptGet(installing("1.1.0"));
    fs::create_directories(updates().parent_path());
    fs::create_directories(root() / "elsewhere");
    fs::create_directory_symlink(root() / "elsewhere", updates());
    EXPECT_EQ(codeOf(run(good)), static_cast<int>(UpdateError::CannotCopy));
    fs::remove(updates());
    fs::create_directory(updates());
    fs::permissions(updates(), fs::perms::owner_all | fs::perms::others_write);
    EXPECT_EQ(codeOf(run(good)), static_cast<int>(UpdateError::CannotCopy));
    EXPECT_FALSE(fs::exists(root() / "asked"));
}

}  // namespace
}  // namespace halvane::installer
