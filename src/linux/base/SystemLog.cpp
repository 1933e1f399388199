// The place in the source would always be this file.
#define SD_JOURNAL_SUPPRESS_LOCATION

#include "linux/base/SystemLog.h"

#include "linux/base/Descriptor.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <sys/un.h>
#include <syslog.h>
#include <systemd/sd-journal.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <ctime>

namespace halvane::linux {

namespace {

constexpr std::string_view kCutMark = " … [cut]";

/// The length of the well-formed UTF-8 character at the beginning of `text`, 0 when there is none.
std::size_t characterLength(std::string_view text) {
    const auto byte = [text](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U; };
    const auto follows = [&byte](std::size_t i) { return (byte(i) & 0xC0U) == 0x80U; };
    const unsigned first = byte(0);
    if (first < 0x80) return text.empty() ? 0 : 1;
    if (first >= 0xC2 && first <= 0xDF) return follows(1) ? 2 : 0;
    if (first >= 0xE0 && first <= 0xEF) {
        const bool overlong = first == 0xE0 && byte(1) < 0xA0;
        const bool surrogate = first == 0xED && byte(1) > 0x9F;
        return follows(1) && follows(2) && !overlong && !surrogate ? 3 : 0;
    }
    if (first >= 0xF0 && first <= 0xF4) {
        const bool overlong = first == 0xF0 && byte(1) < 0x90;
        const bool beyond = first == 0xF4 && byte(1) > 0x8F;
        return follows(1) && follows(2) && follows(3) && !overlong && !beyond ? 4 : 0;
    }
    return 0;
}

enum class LineFeeds { Keep, Escape };

void appendEscaped(std::string& out, char character) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const auto value = static_cast<unsigned char>(character);
    if (character == '\n') {
        out += "\\n";
    } else {
        out += {'\\', 'x', kDigits[value >> 4], kDigits[value & 15]};
    }
}

/// `line` as text that is safe to show, cut where it is too long.
std::string printable(std::string_view line, LineFeeds lineFeeds) {
    std::string out;
    out.reserve(std::min(line.size(), SystemLog::kLongestLine) + 16);
    while (!line.empty()) {
        if (out.size() >= SystemLog::kLongestLine) return out.append(kCutMark);
        const auto length = characterLength(line);
        const auto first = static_cast<unsigned char>(line.front());
        const bool isControl = (first < 0x20 && first != '\t') || first == 0x7F;
        if (length == 0 || (isControl && !(first == '\n' && lineFeeds == LineFeeds::Keep))) {
            appendEscaped(out, line.front());
            line.remove_prefix(1);
        } else {
            out.append(line.substr(0, length));
            line.remove_prefix(length);
        }
    }
    return out;
}

bool isFile(int descriptor, const std::string& deviceAndInode) {
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 && deviceAndInode == std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
}

bool isSocketOf(int descriptor, const std::string& listener) {
    sockaddr_un peer{};
    socklen_t size = sizeof peer - 1;  // so that the path ends
    return ::getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &size) == 0 && peer.sun_family == AF_UNIX &&
           listener == peer.sun_path;
}

/// Closed, or the null device.
bool leadsNowhere(int descriptor) {
    struct stat status {};
    struct stat nothing {};
    if (::fstat(descriptor, &status) != 0) return true;
    return ::stat("/dev/null", &nothing) == 0 && S_ISCHR(status.st_mode) && status.st_rdev == nothing.st_rdev;
}

/// A reader of our standard error that went away must not end the program.
class NoBrokenPipeSignal {
public:
    NoBrokenPipeSignal() {
        ::sigemptyset(&signal_);
        ::sigaddset(&signal_, SIGPIPE);
        sigset_t pending;
        wasPending_ = ::sigpending(&pending) == 0 && ::sigismember(&pending, SIGPIPE) == 1;
        ::pthread_sigmask(SIG_BLOCK, &signal_, &before_);
    }
    ~NoBrokenPipeSignal() {
        const timespec now{};
        if (!wasPending_) ::sigtimedwait(&signal_, nullptr, &now);
        ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }
    NoBrokenPipeSignal(const NoBrokenPipeSignal&) = delete;
    NoBrokenPipeSignal& operator=(const NoBrokenPipeSignal&) = delete;

private:
    sigset_t signal_{};
    sigset_t before_{};
    bool wasPending_ = false;
};

void writeToStandardError(std::string_view text) {
    const NoBrokenPipeSignal guard;
    while (!text.empty()) {
        const auto written = ::write(STDERR_FILENO, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

void writeToJournal(const std::string& text, const std::string& identifier) {
    std::array<std::string, 3> fields = {"MESSAGE=" + text, "PRIORITY=" + std::to_string(LOG_INFO), "SYSLOG_IDENTIFIER=" + identifier};
    std::array<iovec, fields.size()> parts{};
    for (std::size_t i = 0; i < fields.size(); ++i) parts[i] = {fields[i].data(), fields[i].size()};
    ::sd_journal_sendv(parts.data(), static_cast<int>(parts.size()));
}

}  // namespace

SystemLog::Journal SystemLog::Journal::ofThisProcess() {
    Journal journal;
    if (const char* stream = std::getenv("JOURNAL_STREAM")) journal.stream = stream;
    return journal;
}

bool SystemLog::Journal::isBehind(int descriptor) const {
    return (stream && isFile(descriptor, *stream)) || isSocketOf(descriptor, streams);
}

void SystemLog::nameStandardStreams(const Journal& journal, const std::string& identifier) {
    const bool output = journal.isBehind(STDOUT_FILENO);
    const bool error = journal.isBehind(STDERR_FILENO) || leadsNowhere(STDERR_FILENO);
    if (!output && !error) return;
    Descriptor opened(::sd_journal_stream_fd(identifier.c_str(), LOG_INFO, 0));
    // It may have got the number of a standard one that was closed.
    const Descriptor stream(opened ? ::fcntl(opened.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1) : -1);
    opened.close();
    if (!stream) return;
    if (output) ::dup2(stream.get(), STDOUT_FILENO);
    if (error) ::dup2(stream.get(), STDERR_FILENO);
}

SystemLog::SystemLog(const Journal& journal, std::string identifier)
    : identifier_(std::move(identifier)),
      hasJournal_(::access(journal.socket.c_str(), W_OK) == 0),
      // A closed descriptor 2 will be given to some file of ours, which is no place for lines.
      hasStandardError_(::fcntl(STDERR_FILENO, F_GETFD) >= 0 && !(hasJournal_ && journal.isBehind(STDERR_FILENO))) {}

void SystemLog::write(std::string_view line) noexcept {
    try {
        const auto oneLine = printable(line, LineFeeds::Escape);
        const std::lock_guard lock(mutex_);
        if (hasStandardError_) writeToStandardError(identifier_ + ": " + oneLine + "\n");
        if (hasJournal_) {
            writeToJournal(printable(line, LineFeeds::Keep), identifier_);
        } else {
            ::syslog(LOG_USER | LOG_INFO, "%s", oneLine.c_str());
        }
    } catch (...) {
        // Out of memory: the line is lost, the program is not.
    }
}

}  // namespace halvane::linux
