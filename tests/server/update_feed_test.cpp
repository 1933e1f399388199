#include "server/AdministeredCompany.h"
#include "server/ServerProcess.h"
#include "server/crypto/OpenSsl.h"
#include "support/TestEnvironment.h"
#include "util/Base64.h"
#include "util/Text.h"
#include "util/Xml.h"

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace halvane::test {
namespace {

using server::ExitCode;

/// The control file of a package.
struct Control {
    std::string name = "halvane";
    std::string version = "1.1.0";
    std::string architecture = "amd64";
    std::string text() const {
        return "Package: " + name + "\nVersion: " + version + "\nArchitecture: " + architecture +
               "\nMaintainer: Halvane <it@example.com>\nDescription: made by a test\n";
    }
};

class UpdateFeed : public AdministeredCompany {
protected:
    std::string written(const std::string& name, const std::string& content) const {
        const auto file = directory.path() / name;
        std::ofstream(file, std::ios::binary) << content;
        return file;
    }
    static std::string contentOf(const std::filesystem::path& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    /// A real package with this control file; unchecked, for what no proper tool would make.
    std::string package(const std::string& control, const std::string& fileName = "given.deb") const {
        const auto tree = directory.path() / "tree";
        std::filesystem::create_directories(tree / "DEBIAN");
        std::filesystem::permissions(tree / "DEBIAN", std::filesystem::perms(0755));
        std::ofstream(tree / "DEBIAN" / "control") << control;
        const std::string file = directory.path() / fileName;
        const auto command = "dpkg-deb --nocheck --root-owner-group --build " + tree.string() + " " + file + " >/dev/null 2>&1";
        EXPECT_EQ(std::system(command.c_str()), 0) << control;
        return file;
    }
    /// What `feed key` prints has signed `bytes`; seen with the library itself.
    bool isSigned(const std::string& bytes, const std::string& signature) {
        const auto key = util::Base64::decode(util::trimmed(run({"feed", "key"}).out)).value_or("");
        const auto raw = util::Base64::decode(signature).value_or("");
        const auto unsignedBytes = [](const std::string& text) { return reinterpret_cast<const unsigned char*>(text.data()); };
        const server::KeyPtr known(EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, unsignedBytes(key), key.size()));
        const std::unique_ptr<EVP_MD_CTX, server::OpenSslDeleter<EVP_MD_CTX_free>> context(EVP_MD_CTX_new());
        return known && EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, known.get()) == 1 &&
               EVP_DigestVerify(context.get(), unsignedBytes(raw), raw.size(), unsignedBytes(bytes), bytes.size()) == 1;
    }
    std::string feed() const { return probe.get("/update/appcast.xml").body; }
    /// How many packages the feed offers.
    std::size_t offered() const { return items().size(); }
    std::vector<util::XmlElement> items() const {
        const auto root = util::Xml::decode(feed());
        EXPECT_TRUE(root) << feed();
        auto all = (*root)->child("channel")->children;
        std::erase_if(all, [](const auto& element) { return element.name != "item"; });
        return all;
    }
    std::string fileAt(const std::string& name) const { return data / "updates" / name; }
};

TEST_F(UpdateFeed, says_exactly_what_clients_read_and_signs_every_byte_of_it) {
    const auto file = package(Control{}.text());
    const auto notes = written("notes", "第一行 ]]> & <b>\"\n\x01\x1f\t\uFFFE\uFFFF二");
    ASSERT_EQ(run({"feed", "add", file, "--notes", notes, "--minimum-system", "12.5"}).out, "added halvane_1.1.0_amd64.deb\n");
    time.turn(std::chrono::hours(1));
    const std::string bytes = contentOf(file);
    const std::string signature = util::trimmed(run({"feed", "sign", file}).out);
    EXPECT_TRUE(isSigned(bytes, signature));
    EXPECT_FALSE(isSigned(bytes + "x", signature));

    const auto text = feed();
    const auto end = text.find("<!-- signature: ");
    EXPECT_EQ(text.substr(0, end), R"(<?xml version="1.0" encoding="UTF-8"?>
<rss version="2.0" xmlns:halvane="urn:halvane:update">
  <channel>
    <title>Halvane</title>
    <halvane:issued>2025-06-15T16:06:40Z</halvane:issued>
    <halvane:expires>2025-06-22T16:06:40Z</halvane:expires>
    <item>
      <title>Halvane 1.1.0</title>
      <pubDate>Sun, 15 Jun 2025 15:06:40 GMT</pubDate>
      <description>第一行 ]]&gt; &amp; &lt;b&gt;&quot;
	二</description>
      <halvane:minimumSystem>12.5</halvane:minimumSystem>
      <enclosure url=")" + url + R"(/update/halvane_1.1.0_amd64.deb" length=")" +
                                       std::to_string(bytes.size()) +
                                       R"(" type="application/vnd.debian.binary-package" halvane:package="halvane" )"
                                       R"(halvane:version="1.1.0" halvane:architecture="amd64" halvane:signature=")" +
                                       signature + "\"/>\n    </item>\n  </channel>\n</rss>\n");
    const auto last = text.substr(end);
    ASSERT_TRUE(last.ends_with(" -->\n")) << last;
    EXPECT_TRUE(isSigned(text.substr(0, end), last.substr(16, last.size() - 16 - 5)));
    EXPECT_EQ(probe.get("/update/appcast.xml").headers.at("content-type"), "application/xml; charset=utf-8");
}

TEST_F(UpdateFeed, hands_out_the_files_that_it_lists_and_no_others) {
    const std::string name = "halvane_1:1.1.0+b1~rc-1_amd64.deb";
    const auto file = package(Control{.version = "1:1.1.0+b1~rc-1"}.text(), "-z.deb");
    ASSERT_EQ(run({"feed", "add", file}).code, ExitCode::Done);
    const auto whole = probe.get("/update/" + name);
    EXPECT_EQ(whole.status, 200);
    EXPECT_EQ(whole.headers.at("content-type"), "application/vnd.debian.binary-package");
    EXPECT_EQ(whole.body, contentOf(file));
    const auto part = probe.request("GET", "/update/" + name, "Range: bytes=8-20\r\n");
    EXPECT_EQ(part.status, 206) << "who resumes must not take a part for the whole";
    EXPECT_EQ(part.body, whole.body.substr(8, 13));
    const auto head = probe.request("HEAD", "/update/" + name);
    EXPECT_EQ(head.headers.at("content-length") + head.body, std::to_string(whole.body.size()));

    std::ofstream(fileAt("unlisted.deb")) << "x";
    for (const char* other : {"unlisted.deb", "", "../update-key.pem", "..%2fupdate-key.pem", "appcast.xml/", "halvane_1.1.0_amd64.deb"})
        EXPECT_EQ(probe.get(std::string("/update/") + other).status, 404) << other;
    EXPECT_EQ(probe.postJson("/update/appcast.xml", "{}").status, 405);
}

TEST_F(UpdateFeed, a_file_that_is_gone_or_another_is_not_offered) {
    ASSERT_EQ(run({"feed", "add", package(Control{}.text())}).code, ExitCode::Done);
    const std::string name = "halvane_1.1.0_amd64.deb";
    EXPECT_EQ(offered(), 1U);
    const auto file = fileAt(name);
    const auto length = std::filesystem::file_size(file);
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"longer", [&] { std::filesystem::resize_file(file, length + 1); }},
        {"shorter", [&] { std::filesystem::resize_file(file, length - 1); }},
        {"gone", [&] { std::filesystem::remove(file); }},
    };
    for (const auto& [what, happens] : rows) {
        SCOPED_TRACE(what);
        happens();
        EXPECT_EQ(probe.get("/update/" + name).status, 404);
        EXPECT_EQ(offered(), 0U);
        EXPECT_NE(run({"feed", "list"}).err.find(name + " is missing or was changed"), std::string::npos);
    }
    ASSERT_EQ(run({"feed", "add", package(Control{}.text())}).code, ExitCode::Done);
    EXPECT_EQ(offered(), 1U);
}

TEST_F(UpdateFeed, packages_are_added_replaced_and_removed) {
    const auto add = [this](const Control& control, const std::string& extra = "") {
        EXPECT_EQ(run({"feed", "add", package(control.text() + extra)}).code, ExitCode::Done);
        return std::to_string(std::filesystem::file_size(directory.path() / "given.deb"));
    };
    add({});
    const auto newer = add({.version = "1.2.0"});
    const auto other = add({.architecture = "arm64"});
    const auto again = add({}, "Homepage: https://" + std::string(300, 'x') + ".example.com\n");
    EXPECT_EQ(run({"feed", "list"}).out, "VERSION\tARCHITECTURE\tLENGTH\tFILE\n1.2.0\tamd64\t" + newer +
                                             "\thalvane_1.2.0_amd64.deb\n1.1.0\tarm64\t" + other +
                                             "\thalvane_1.1.0_arm64.deb\n1.1.0\tamd64\t" + again + "\thalvane_1.1.0_amd64.deb\n");
    for (const auto& item : items()) {
        const auto* enclosure = item.child("enclosure");
        const auto body = probe.get(enclosure->attribute("url")->substr(url.size())).body;
        EXPECT_TRUE(isSigned(body, *enclosure->attribute("halvane:signature"))) << *enclosure->attribute("url");
    }
    EXPECT_EQ(run({"feed", "remove", "1.1.0"}).out, "removed 1.1.0, packages: 2\n");
    EXPECT_EQ(offered(), 1U);
    const std::filesystem::directory_iterator left(data / "updates");
    EXPECT_EQ(std::distance(begin(left), end(left)), 1) << "nothing half-written and nothing removed stays behind";
    expectFailure(run({"feed", "remove", "1.1.0"}), ExitCode::Failed, "there is no package of version 1.1.0");
}

TEST_F(UpdateFeed, what_cannot_be_offered_is_refused_and_leaves_nothing) {
    const auto good = package(Control{}.text(), "good.deb");
    const auto large = written("large", "");
    std::filesystem::resize_file(large, server::PackageStore::kLargest + 1);
    using Words = std::vector<std::string>;
    const std::tuple<const char*, Words, ExitCode, const char*> rows[] = {
        {"no such file", {"/nowhere.deb"}, ExitCode::Failed, "cannot read /nowhere.deb: No such file"},
        {"a folder", {directory.path()}, ExitCode::Failed, "it is no file"},
        {"no package", {written("text.deb", "text")}, ExitCode::Failed, "text.deb: dpkg-deb finds no proper Debian package"},
        {"too large", {large}, ExitCode::Failed, "is larger than 268435456 bytes"},
        {"no notes", {good, "--notes", "/nowhere"}, ExitCode::Failed, "cannot read /nowhere"},
        {"long notes", {good, "--notes", written("long", std::string(4097, 'x'))}, ExitCode::Failed, "is larger than 4096 bytes"},
        {"not UTF-8", {good, "--notes", written("latin", "\xe4")}, ExitCode::Failed, "is not UTF-8 text"},
        {"no system", {good, "--minimum-system", ""}, ExitCode::Usage, "--minimum-system takes a version"},
        {"word", {good, "--minimum-system", "bookworm"}, ExitCode::Usage, "--minimum-system takes a version"},
        {"two dots", {good, "--minimum-system", "12..5"}, ExitCode::Usage, "--minimum-system takes a version"},
    };
    for (const auto& [name, words, code, reason] : rows) {
        SCOPED_TRACE(name);
        Words all = {"feed", "add"};
        all.insert(all.end(), words.begin(), words.end());
        expectFailure(run(all), code, reason);
    }
    const auto policy = "is none by Debian's policy";
    const auto none = "no proper Debian package";
    const std::tuple<std::string, const char*> controls[] = {
        {Control{.name = "../halvane"}.text(), none},
        {Control{.architecture = "amd64/x"}.text(), policy},
        {Control{.version = "1/../../x"}.text(), none},
        {Control{.architecture = "amd64\n Oops: 2"}.text(), "are not one line each"},
        {"Package: halvane\nVersion: 1\n", "are not one line each"},
        {"", none},
    };
    for (const auto& [control, reason] : controls) {
        SCOPED_TRACE(control);
        expectFailure(run({"feed", "add", package(control)}), ExitCode::Failed, reason);
    }
    {
        const TestEnvironment nothing({"PATH"}, {{"PATH", directory.path()}});
        expectFailure(run({"feed", "add", good}), ExitCode::Failed, "cannot run dpkg-deb, which reads packages: No such file");
    }
    EXPECT_EQ(offered(), 0U);
    EXPECT_TRUE(std::filesystem::is_empty(data / "updates"));
}

TEST_F(UpdateFeed, only_what_the_policy_allows_becomes_a_file_name) {
    const std::pair<Control, bool> rows[] = {
        {Control{}, true},
        {Control{.version = "2:1.0~rc1+B-0.1", .architecture = "kfreebsd-amd64"}, true},
        {Control{.name = "libx+2.0-dev"}, true},
        {Control{.name = ""}, false},
        {Control{.name = "h"}, false},
        {Control{.name = "-halvane"}, false},
        {Control{.name = "Halvane"}, false},
        {Control{.name = "hal_vane"}, false},
        {Control{.version = ""}, false},
        {Control{.version = "beta"}, false},
        {Control{.version = "1:"}, false},
        {Control{.version = ":1"}, false},
        {Control{.version = "x:1"}, false},
        {Control{.version = std::string(129, '1')}, false},
        {Control{.version = "1/../../x"}, false},
        {Control{.version = "1_0"}, false},
        {Control{.version = "1 0"}, false},
        {Control{.version = "1\n"}, false},
        {Control{.version = "1\u00e9"}, false},
        {Control{.architecture = ""}, false},
        {Control{.architecture = "-x"}, false},
        {Control{.architecture = "amd64/x"}, false},
    };
    for (const auto& [control, allowed] : rows)
        EXPECT_EQ(server::PackageName::parse(control.name, control.version, control.architecture).has_value(), allowed) << control.text();
}

TEST_F(UpdateFeed, the_key_is_made_once_and_kept) {
    const auto fresh = (directory.path() / "fresh").string();
    std::vector<std::unique_ptr<ServerProcess>> processes;
    for (int i = 0; i < 6; ++i) {
        processes.push_back(std::make_unique<ServerProcess>(std::vector<std::string>{"feed", "key", "--data", fresh}));
    }
    const auto first = processes.front()->line();
    EXPECT_EQ(util::Base64::decode(first).value_or("").size(), 32U) << first;
    for (std::size_t i = 1; i < processes.size(); ++i) EXPECT_EQ(processes[i]->line(), first);
    for (const auto& process : processes) EXPECT_EQ(process->end(), 0);
    const auto file = std::filesystem::path(fresh) / "update-key.pem";
    EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    const auto check =
        "openssl pkey -in " + file.string() + " -pubout -outform DER | tail -c 32 | openssl base64 | grep -qxF '" + first + "'";
    EXPECT_EQ(std::system(check.c_str()), 0) << "a tool of others reads the key that is backed up";

    const auto otherKey = (directory.path() / "radius.pem").string();
    ASSERT_EQ(run({"radius-cert", "radius.example.com", "--out", otherKey}).code, ExitCode::Done);
    for (const std::string& broken : {std::string("no key"), contentOf(otherKey)}) {
        std::ofstream(file) << broken;
        expectFailure(run({"feed", "key", "--data", fresh}, {}, false), ExitCode::Failed, "update key's file");
        EXPECT_EQ(contentOf(file), broken) << "what may be repaired is not replaced";
    }
}

}  // namespace
}  // namespace halvane::test
