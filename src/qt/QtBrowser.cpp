#include "qt/QtBrowser.h"

#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

namespace halvane::qt {

bool QtBrowser::open(const std::string& url) {
    const QUrl address(QString::fromStdString(url), QUrl::StrictMode);
    if (!address.isValid() || address.host().isEmpty() || (address.scheme() != u"https" && address.scheme() != u"http")) return false;

    // Desktop first; the second stands on Debian machines without the first's package.
    for (const auto* opener : {"xdg-open", "x-www-browser"}) {
        QProcess process;
        process.setProgram(QStandardPaths::findExecutable(QString::fromLatin1(opener)));
        if (process.program().isEmpty()) continue;
        process.setArguments({QString::fromLatin1(address.toEncoded())});
        process.setStandardOutputFile(QProcess::nullDevice());
        process.setStandardErrorFile(QProcess::nullDevice());
        if (process.startDetached()) return true;
    }
    return false;
}

}  // namespace halvane::qt
