#include "systools/StoreFixture.h"
#include "systools/security/Certificate.h"
#include "systools/security/Pkcs12File.h"

#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

namespace halvane::systools {
namespace {

using namespace std::chrono_literals;
using Key = test::Pkcs12Forge::Key;

class SecurityProgram : public StoreTest {
protected:
    [[nodiscard]] static std::string line(int number, const util::Bytes& pkcs12) {
        const auto identity = Pkcs12File::open(pkcs12, "pw");
        return "  " + std::to_string(number) + ") " + identity->certificate.fingerprint + " \"" + identity->certificate.commonName + "\"\n";
    }
    [[nodiscard]] static bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }
};

TEST_F(SecurityProgram, import_list_and_delete_are_seen_by_other_programs) {
    EXPECT_EQ(listing(), "     0 identities found\n");
    EXPECT_FALSE(std::filesystem::exists(data() / "pki")) << "looking must not make a store";

    const auto chen = forge_.make({.commonName = "chen.xiao", .key = Key::Rsa});
    const auto li = forge_.make({.commonName = "li.wei", .key = Key::P256});
    const auto imported = import(chen);
    EXPECT_EQ(imported.exitCode, 0) << imported.err;
    EXPECT_EQ(imported.out, "1 identity imported.\n");
    EXPECT_EQ(import(li).exitCode, 0);
    EXPECT_EQ(listing(), line(1, chen) + line(2, li) + "     2 identities found\n");

    EXPECT_TRUE(contains(certificates(), "chen.xiao")) << certificates();
    EXPECT_TRUE(contains(certificates(), "u,u,u")) << "no private key beside it: " << certificates();
    EXPECT_EQ(keyCount(), 2) << keys();
    EXPECT_EQ(snapshot().files, (std::map<std::string, util::Bytes>{{"chen.xiao.p12", chen}, {"li.wei.p12", li}}));

    EXPECT_EQ(security({"delete-certificate", "-c", "chen"}).exitCode, 44) << "the name is matched whole";
    const auto removed = security({"delete-certificate", "-c", "chen.xiao"});
    EXPECT_EQ(removed.exitCode, 0) << removed.err;
    EXPECT_EQ(removed.out, "");
    EXPECT_EQ(listing(), line(1, li) + "     1 identities found\n");
    EXPECT_FALSE(contains(certificates() + keys(), "chen.xiao"));
    EXPECT_EQ(snapshot().files.size(), 1U);
    const auto again = security({"delete-certificate", "-c", "chen.xiao"});
    EXPECT_EQ(again.exitCode, 44);
    EXPECT_TRUE(contains(again.err, "chen.xiao")) << again.err;
}

TEST_F(SecurityProgram, stored_key_is_usable_outside) {
    const auto chen = forge_.make({.key = Key::Rsa});
    ASSERT_EQ(import(chen).exitCode, 0);
    const auto exported = home_.path() / "exported.p12";
    const auto result = test::runProgram("pk12util", {"-o", exported, "-n", "chen.xiao", "-d", "sql:" + database().string(), "-W", "new",
                                                      "-C", "AES-256-CBC", "-c", "AES-256-CBC"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    std::ostringstream bytes;
    bytes << std::ifstream(exported, std::ios::binary).rdbuf();
    const auto identity = Pkcs12File::open(bytes.str(), "new");
    ASSERT_TRUE(identity) << identity.error().description;
    EXPECT_EQ(identity->certificate.fingerprint, Pkcs12File::open(chen, "pw")->certificate.fingerprint);
}

TEST_F(SecurityProgram, store_belongs_to_the_user_alone) {
    ::umask(0);
    std::filesystem::create_directories(identityFiles());
    ASSERT_EQ(import(forge_.make({})).exitCode, 0);
    ::umask(022);
    for (const auto& path : {identityFiles(), database()}) {
        EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0700)) << path;
        for (const auto& entry : std::filesystem::directory_iterator(path))
            EXPECT_EQ(entry.status().permissions(), std::filesystem::perms(0600)) << entry.path();
    }
}

TEST_F(SecurityProgram, authority_that_comes_along_is_never_trusted) {
    ASSERT_EQ(import(forge_.make({})).exitCode, 0);
    EXPECT_TRUE(contains(certificates(), "Test Authority                                               ,,")) << certificates();

    // Trust that the owner gave it is the owner's business: it stays.
    ASSERT_EQ(test::runProgram("certutil", {"-M", "-d", "sql:" + database().string(), "-n", "Test Authority", "-t", "C,,"}).exitCode, 0);
    ASSERT_EQ(import(forge_.make({.commonName = "li.wei"})).exitCode, 0);
    EXPECT_TRUE(contains(certificates(), "Test Authority                                               C,,")) << certificates();
}

TEST_F(SecurityProgram, refused_file_says_why_and_leaves_the_store_as_it_was) {
    ASSERT_EQ(import(forge_.make({.keyLabel = "first"})).exitCode, 0);
    const auto before = snapshot();
    const auto good = forge_.make({});
    std::filesystem::create_directory(home_.path() / "folder");
    ASSERT_EQ(::mkfifo((home_.path() / "pipe").c_str(), 0600), 0);
    const std::string folder = home_.path() / "folder";
    const std::tuple<const char*, std::vector<std::string>, int, const char*> rows[] = {
        {"wrong password", {"import", download(good, "a"), "-k", "login.keychain", "-P", "wrong"}, 1, "wrong password"},
        {"old cipher", {"import", download(forge_.make({.cipher = test::Pkcs12Forge::Cipher::Rc2}), "b"), "-P", "pw"}, 1, "RC2/3DES"},
        {"damaged", {"import", download(good.substr(0, 500), "c"), "-P", "pw"}, 1, "damaged"},
        {"no key", {"import", download(forge_.make({.withKey = false}), "d"), "-P", "pw"}, 1, "no private key"},
        {"foreign key", {"import", download(forge_.make({.withForeignKey = true}), "e"), "-P", "pw"}, 1, "none of its certificates"},
        {"oversized", {"import", download(util::Bytes(2 << 20, 'x'), "f"), "-P", "pw"}, 1, "larger than 1 MiB"},
        {"missing", {"import", folder + "/none", "-P", "pw"}, 1, "No such file"},
        {"a directory", {"import", folder, "-P", "pw"}, 1, "Is a directory"},
        {"a pipe that nobody fills", {"import", home_.path() / "pipe", "-P", "pw"}, 1, "Invalid argument"},
        {"a variable that is not set", {"import", download(good, "g"), "-P", "env:HALVANE_NOT_SET"}, 1, "HALVANE_NOT_SET"},
        {"another keychain", {"import", download(good, "h"), "-k", "system.keychain", "-P", "pw"}, 64, "system.keychain"},
        {"no password", {"import", download(good, "i"), "-k", "login.keychain"}, 64, "-P"},
        {"option without a value", {"import", download(good, "j"), "-P"}, 64, "-P"},
        {"two files", {"import", download(good, "k"), folder, "-P", "pw"}, 64, "one file"},
        {"no file", {"import", "-P", "pw"}, 64, "a file"},
        {"an option of its own making", {"import", download(good, "l"), "-A", "-P", "pw"}, 64, "-A"},
        {"empty name", {"delete-certificate", "-c", ""}, 64, "a name"},
        {"other command", {"delete-keychain"}, 64, "delete-keychain"},
        {"arguments to the listing", {"find-identity", "-v"}, 64, "no arguments"},
    };
    for (const auto& [name, arguments, code, words] : rows) {
        const auto result = security(arguments);
        EXPECT_EQ(result.exitCode, code) << name;
        EXPECT_EQ(result.out, "") << name;
        EXPECT_TRUE(contains(result.err, words)) << name << ": " << result.err;
        EXPECT_FALSE(contains(result.err, "wrong\n")) << name << ": the password has no place there";
    }
    EXPECT_EQ(snapshot(), before);
}

TEST_F(SecurityProgram, password_is_taken_literally_or_from_the_environment) {
    const auto path = download(forge_.make({.password = "p w$"}));
    EXPECT_EQ(security({"import", path, "-k", "login.keychain", "-P", "p w$"}).exitCode, 0);
    EXPECT_EQ(security({"import", "-P", "p w$", "-k", "login.keychain", path}).exitCode, 0) << "the order is free";
    EXPECT_EQ(import(forge_.make({.password = ""}), "").exitCode, 0) << "a variable may be empty";
    EXPECT_EQ(import(forge_.make({.password = "env:X"}), "env:X").exitCode, 0) << "what the variable holds is no reference again";
}

TEST_F(SecurityProgram, import_takes_the_place_of_the_identity_of_that_name) {
    const auto other = forge_.make({.commonName = "li.wei", .keyLabel = "li"});
    ASSERT_EQ(import(other).exitCode, 0);
    const std::tuple<const char*, test::Pkcs12Forge::Recipe> rows[] = {
        {"first", {.keyLabel = "a", .serial = 5}},
        {"the same again", {.keyLabel = "a", .serial = 5}},
        {"renewed with the same key", {.keyLabel = "a", .serial = 6}},
        {"renewed with a new key", {.keyLabel = "b", .serial = 7}},
        {"of another kind", {.key = Key::Rsa, .keyLabel = "b", .serial = 8}},
        {"of another department, so another subject", {.organisation = "Sales", .keyLabel = "c", .serial = 9}},
        {"a number that its authority gave away twice", {.organisation = "Sales", .keyLabel = "d", .serial = 9}},
        {"with the key that another name has too", {.keyLabel = "li", .serial = 10}},
    };
    for (const auto& [name, recipe] : rows) {
        const auto file = forge_.make(recipe);
        const auto result = import(file);
        EXPECT_EQ(result.exitCode, 0) << name << ": " << result.err;
        EXPECT_EQ(result.err, "") << name;
        EXPECT_EQ(listing(), line(1, file) + line(2, other) + "     2 identities found\n") << name;
        EXPECT_EQ(keyCount(), recipe.keyLabel == "li" ? 1 : 2) << name << ": " << keys();
        EXPECT_EQ(snapshot().files.at("chen.xiao.p12"), file) << name;
    }
    ASSERT_EQ(security({"delete-certificate", "-c", "chen.xiao"}).exitCode, 0);
    EXPECT_EQ(listing(), line(1, other) + "     1 identities found\n") << "the key of the other was taken away";
}

TEST_F(SecurityProgram, names_are_matched_to_the_letter_and_harmless_as_file_names) {
    const char* names[] = {"../../evil", "a/b", ".hidden", "chen xiao", "陈晓", "Chen.Xiao", "chen.xiao", "100%"};
    for (const char* name : names) ASSERT_EQ(import(forge_.make({.commonName = name})).exitCode, 0) << name;
    EXPECT_EQ(snapshot().files.size(), std::size(names));
    EXPECT_TRUE(contains(listing(), "     8 identities found\n")) << listing();
    for (const char* name : names) EXPECT_EQ(security({"delete-certificate", "-c", name}).exitCode, 0) << name;
    EXPECT_EQ(listing(), "     0 identities found\n");
    EXPECT_TRUE(snapshot().files.empty());
    EXPECT_EQ(keyCount(), 0);
}

TEST_F(SecurityProgram, older_browsers_database_is_used_when_it_is_the_only_one) {
    const auto older = home_.path() / ".pki/nssdb";
    std::filesystem::create_directories(older);
    ASSERT_EQ(test::runProgram("certutil", {"-N", "--empty-password", "-d", "sql:" + older.string()}).exitCode, 0);
    ASSERT_EQ(import(forge_.make({})).exitCode, 0);
    EXPECT_TRUE(contains(certutil("-L", older), "chen.xiao"));
    EXPECT_FALSE(std::filesystem::exists(data() / "pki"));

    // A newer browser makes its own later: the identity is imported there, and deleting reaches both.
    std::filesystem::create_directories(database());
    ASSERT_EQ(test::runProgram("certutil", {"-N", "--empty-password", "-d", "sql:" + database().string()}).exitCode, 0);
    EXPECT_EQ(listing(), "     0 identities found\n");
    ASSERT_EQ(import(forge_.make({})).exitCode, 0);
    ASSERT_EQ(security({"delete-certificate", "-c", "chen.xiao"}).exitCode, 0);
    EXPECT_FALSE(contains(certutil("-L", older) + certutil("-K", older) + certificates() + keys(), "chen.xiao"));
}

TEST_F(SecurityProgram, database_with_the_owners_password_is_said_and_never_asked_for) {
    std::filesystem::create_directories(database());
    std::ofstream(home_.path() / "password") << "the owner's\n";
    ASSERT_EQ(test::runProgram("certutil", {"-N", "-f", home_.path() / "password", "-d", "sql:" + database().string()}).exitCode, 0);
    const auto imported = import(forge_.make({}));
    EXPECT_EQ(imported.exitCode, 1);
    EXPECT_TRUE(contains(imported.err, "protected by a password of their owner")) << imported.err;
    EXPECT_TRUE(snapshot().files.empty());
    const auto listed = security({"find-identity"});
    EXPECT_EQ(listed.exitCode, 1) << "nothing can be seen, which is not the same as nothing there";
    EXPECT_TRUE(contains(listed.err, "password")) << listed.err;
}

TEST_F(SecurityProgram, database_that_another_program_holds_is_said_within_seconds) {
    ASSERT_EQ(import(forge_.make({.commonName = "li.wei"})).exitCode, 0);
    const auto before = snapshot();
    sqlite3* certificatesHeld = nullptr;
    sqlite3* keysHeld = nullptr;
    ASSERT_EQ(sqlite3_open((database() / "cert9.db").c_str(), &certificatesHeld), SQLITE_OK);
    ASSERT_EQ(sqlite3_open((database() / "key4.db").c_str(), &keysHeld), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(certificatesHeld, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(keysHeld, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
    const auto result = import(forge_.make({}));
    sqlite3_close(certificatesHeld);
    sqlite3_close(keysHeld);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(contains(result.err, "another program holds it")) << result.err;
    EXPECT_EQ(snapshot(), before);
    EXPECT_EQ(import(forge_.make({})).exitCode, 0);
}

TEST_F(SecurityProgram, damaged_database_and_places_that_are_no_directories) {
    std::filesystem::create_directories(database());
    std::ofstream(database() / "cert9.db") << std::string(5000, 'x');
    EXPECT_EQ(security({"find-identity"}).exitCode, 1);
    const auto damaged = import(forge_.make({}));
    EXPECT_EQ(damaged.exitCode, 1);
    EXPECT_TRUE(contains(damaged.err, "damaged")) << damaged.err;
    EXPECT_FALSE(std::filesystem::exists(identityFiles() / "chen.xiao.p12"));

    std::filesystem::remove_all(database());
    std::ofstream(database()) << "a file";
    EXPECT_EQ(import(forge_.make({})).exitCode, 1);
    EXPECT_FALSE(std::filesystem::exists(identityFiles() / "chen.xiao.p12"));
}

TEST_F(SecurityProgram, database_that_may_not_be_written_is_said) {
    ASSERT_EQ(import(forge_.make({.commonName = "li.wei"})).exitCode, 0);
    // The superuser may write everywhere; then another user stands in, with a program they can reach.
    const auto program = home_.path() / "security";
    std::filesystem::copy_file(test::inToolRoot("usr/bin/security"), program);
    const auto file = download(forge_.make({}));
    std::vector<std::string> command = {program, "import", file, "-P", "pw"};
    if (::geteuid() == 0) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(home_.path()))
            ASSERT_EQ(::lchown(entry.path().c_str(), 65534, 65534), 0);
        ASSERT_EQ(::chown(home_.path().c_str(), 65534, 65534), 0);
        command.insert(command.begin(), {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"});
    }
    std::filesystem::permissions(database() / "cert9.db", std::filesystem::perms(0400));
    std::filesystem::permissions(database() / "key4.db", std::filesystem::perms(0400));
    std::filesystem::permissions(database(), std::filesystem::perms(0500));
    const auto result = test::runProgram(command[0], {command.begin() + 1, command.end()});
    std::filesystem::permissions(database(), std::filesystem::perms(0700));
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(contains(result.err, "may not be written")) << result.err;
    EXPECT_FALSE(std::filesystem::exists(identityFiles() / "chen.xiao.p12"));
}

TEST_F(SecurityProgram, imports_at_the_same_time_take_turns) {
    constexpr int kPrograms = 6;
    std::vector<util::Bytes> files;
    std::vector<std::unique_ptr<test::ChildProgram>> running;
    for (int i = 0; i < kPrograms; ++i) {
        // Three names, two programs for each.
        files.push_back(forge_.make({.commonName = "user" + std::to_string(i / 2)}));
        const auto path = download(files.back(), std::to_string(i) + ".p12");
        running.push_back(std::make_unique<test::ChildProgram>(test::inToolRoot("usr/bin/security"),
                                                               std::vector<std::string>{"import", path, "-P", "pw"}));
    }
    for (auto& program : running) {
        const auto result = program->wait();
        EXPECT_EQ(result.exitCode, 0) << result.err;
    }
    EXPECT_TRUE(contains(listing(), "     3 identities found\n")) << listing();
    EXPECT_EQ(keyCount(), 3) << keys();
    // Whoever came last: file and database tell of the same certificate.
    for (const auto& [name, bytes] : snapshot().files)
        EXPECT_TRUE(contains(listing(), Pkcs12File::open(bytes, "pw")->certificate.fingerprint)) << name;
}

TEST_F(SecurityProgram, import_that_was_killed_anywhere_is_repaired_by_the_next) {
    const auto older = forge_.make({.keyLabel = "old"});
    const auto newer = forge_.make({.keyLabel = "new"});
    const auto path = download(newer, "newer.p12");
    const auto start = std::chrono::steady_clock::now();
    ASSERT_EQ(import(older).exitCode, 0);
    const auto whole = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
    constexpr int kSteps = 10;
    int killed = 0;
    for (int step = 0; step < kSteps; ++step) {
        ASSERT_EQ(import(older).exitCode, 0) << step;
        test::ChildProgram program(test::inToolRoot("usr/bin/security"), {"import", path, "-P", "pw"});
        killed += program.waitFor(whole * step / kSteps).exitCode == 128 + SIGKILL ? 1 : 0;
        const auto next = import(newer);
        ASSERT_EQ(next.exitCode, 0) << step << ": " << next.err;
        EXPECT_EQ(listing(), line(1, newer) + "     1 identities found\n") << step;
        EXPECT_EQ(snapshot().files, (std::map<std::string, util::Bytes>{{"chen.xiao.p12", newer}})) << step;
    }
    EXPECT_GT(killed, 0) << "every program was faster than its killer";
}

}  // namespace
}  // namespace halvane::systools
