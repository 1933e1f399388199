#include "qt/QtMessages.h"
#include "support/RecordingLog.h"

#include <gtest/gtest.h>
#include <QLoggingCategory>
#include <memory>

namespace halvane::test {
namespace {

TEST(QtMessagesTest, warnings_come_to_the_log_with_their_category_until_the_end_and_then_go_where_they_went) {
    RecordingLog log;
    static QStringList others;
    const auto before = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) { others << text; });
    {
        const qt::QtMessages messages(log);
        qWarning("字体 %d%%", 7);
        qCWarning(QLoggingCategory("qt.qpa.xcb")).noquote() << "no such screen";
    }
    qWarning("later");
    qInstallMessageHandler(before);
    EXPECT_EQ(log.lines(), (std::vector<std::string>{"Qt: 字体 7%", "Qt: qt.qpa.xcb: no such screen"}));
    EXPECT_EQ(others, QStringList{QStringLiteral("later")});
}

}  // namespace
}  // namespace halvane::test
