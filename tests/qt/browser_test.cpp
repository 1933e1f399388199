#include "qt/QtBrowser.h"

#include <gtest/gtest.h>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace halvane::test {
namespace {

/// A PATH with nothing but the openers that a test puts there; each writes what it was asked.
class BrowserTest : public testing::Test {
protected:
    void SetUp() override { qputenv("PATH", bin.path().toUtf8()); }
    void TearDown() override { qputenv("PATH", path); }

    void install(const QString& opener) {
        QFile script(bin.filePath(opener));
        ASSERT_TRUE(script.open(QIODevice::WriteOnly));
        // Renamed when it is complete, so that a reader never sees half of it.
        const QByteArray record = bin.filePath(QStringLiteral("asked")).toUtf8();
        script.write("#!/bin/sh\nprintf '%s|' " + opener.toUtf8() + " \"$@\" >'" + record + ".new'\n/bin/mv '" + record + ".new' '" +
                     record + "'\n");
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    std::string asked() {
        QFile record(bin.filePath(QStringLiteral("asked")));
        EXPECT_TRUE(QTest::qWaitFor([&record] { return record.exists(); }, 5000));
        EXPECT_TRUE(record.open(QIODevice::ReadOnly));
        return record.readAll().toStdString();
    }

    const QByteArray path = qgetenv("PATH");
    QTemporaryDir bin;
    qt::QtBrowser browser;
};

TEST_F(BrowserTest, asks_the_desktops_opener_first_and_hands_it_the_address_alone) {
    install(QStringLiteral("x-www-browser"));
    install(QStringLiteral("xdg-open"));
    EXPECT_TRUE(browser.open("https://sso.example.com/updatepwd/index?a=1&b=$(id)'x'"));
    EXPECT_EQ(asked(), "xdg-open|https://sso.example.com/updatepwd/index?a=1&b=$(id)'x'|");
}

TEST_F(BrowserTest, takes_the_default_browser_where_the_desktop_has_no_opener) {
    install(QStringLiteral("x-www-browser"));
    EXPECT_TRUE(browser.open("http://127.0.0.1:8080/updatepwd/index"));
    EXPECT_EQ(asked(), "x-www-browser|http://127.0.0.1:8080/updatepwd/index|");
}

TEST_F(BrowserTest, says_so_where_nothing_can_be_asked) { EXPECT_FALSE(browser.open("https://sso.example.com/")); }

TEST_F(BrowserTest, refuses_what_is_no_address_of_the_web) {
    install(QStringLiteral("xdg-open"));
    for (const char* url :
         {"", "--help", "file:///etc/passwd", "javascript:alert(1)", "sso.example.com", "http://", "https://a b/", "https://a/\""})
        EXPECT_FALSE(browser.open(url)) << url;
}

}  // namespace
}  // namespace halvane::test
