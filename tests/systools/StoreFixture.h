#pragma once

#include "support/TemporaryHome.h"
#include "systools/ChildProgram.h"
#include "systools/Pkcs12Forge.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

namespace halvane::systools {

/// A user with a home of their own and an empty store, looked at from outside: by the system's own
/// certificate tools and by reading the files.
class StoreTest : public testing::Test {
protected:
    /// All that makes up the store's meaning.
    struct Snapshot {
        std::string certificates;  ///< names and trust
        std::string keys;
        std::map<std::string, util::Bytes> files;

        friend bool operator==(const Snapshot&, const Snapshot&) = default;
    };

    [[nodiscard]] std::filesystem::path data() const { return home_.path() / "data"; }
    [[nodiscard]] std::filesystem::path database() const { return data() / "pki/nssdb"; }
    [[nodiscard]] std::filesystem::path identityFiles() const { return data() / "halvane/identities"; }

    static test::ProgramResult security(const std::vector<std::string>& arguments) {
        return test::runProgram(test::inToolRoot("usr/bin/security"), arguments);
    }
    std::filesystem::path download(const util::Bytes& bytes, const std::string& name = "download.p12") {
        std::ofstream(home_.path() / name, std::ios::binary) << bytes;
        return home_.path() / name;
    }
    /// As the client does it: the password in the environment.
    test::ProgramResult import(const util::Bytes& bytes, const std::string& password = "pw") {
        return test::runProgram(test::inToolRoot("usr/bin/security"),
                                {"import", download(bytes), "-k", "login.keychain", "-P", "env:HALVANE_P12"}, {{"HALVANE_P12", password}});
    }
    static std::string listing() { return security({"find-identity"}).out; }

    [[nodiscard]] std::string certutil(const std::string& command, const std::filesystem::path& directory) const {
        return test::runProgram("certutil", {command, "-d", "sql:" + directory.string()}).out;
    }
    [[nodiscard]] std::string certificates() const { return certutil("-L", database()); }
    [[nodiscard]] std::string keys() const { return certutil("-K", database()); }
    /// Lines of certutil's list of keys: "< 0> rsa  …  name".
    [[nodiscard]] long keyCount() const {
        const std::string text = keys();
        long count = 0;
        for (auto at = text.find('<'); at != std::string::npos; at = text.find('<', at + 1)) ++count;
        return count;
    }
    [[nodiscard]] Snapshot snapshot() const {
        Snapshot taken;
        if (std::filesystem::exists(database() / "cert9.db")) {
            taken.certificates = certificates();
            taken.keys = keys();
        }
        std::error_code ignored;
        for (const auto& entry : std::filesystem::directory_iterator(identityFiles(), ignored)) {
            std::ostringstream bytes;
            bytes << std::ifstream(entry.path(), std::ios::binary).rdbuf();
            if (entry.path().extension() == ".p12") taken.files[entry.path().filename()] = bytes.str();
        }
        return taken;
    }

    test::TemporaryHome home_;
    test::Pkcs12Forge forge_;
};

}  // namespace halvane::systools
