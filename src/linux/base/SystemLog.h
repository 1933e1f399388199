#pragma once

#include "util/Log.h"

#include <mutex>
#include <optional>
#include <string>

namespace halvane::linux {

/// Writes to the journal, or to syslog where no journal runs, and to standard error unless that is
/// the journal already. Each line is one write to standard error, line feeds and other controls in it
/// escaped, so that no text can pass for another line or steer a terminal; the journal keeps its line
/// feeds. Bytes that are no UTF-8 are escaped in both. Lines beyond `kLongestLine` are cut and say so.
class SystemLog final : public util::Log {
public:
    static constexpr std::size_t kLongestLine = std::size_t{64} << 10;
    static constexpr const char* kIdentifier = "halvane";

    /// Where a journal would be found.
    struct Journal {
        std::string socket = "/run/systemd/journal/socket";
        /// "device:inode" of the stream that services get as standard error.
        std::optional<std::string> stream = {};
        /// Where streams lead to, also those that a desktop gives to the programs it starts without saying so.
        std::string streams = "/run/systemd/journal/stdout";

        static Journal ofThisProcess();
        [[nodiscard]] bool isBehind(int descriptor) const;
    };

    /// What libraries, the system and child processes write to standard output and error would stand in the journal under
    /// the name of whoever started us, or nowhere: has it stand there under `identifier`. A terminal, a file or a pipe
    /// stays what it is, and without a journal everything does. Before the first thread and the first file.
    static void nameStandardStreams(const Journal& journal = Journal::ofThisProcess(), const std::string& identifier = kIdentifier);

    /// `identifier` is the program's name at the head of each line.
    explicit SystemLog(const Journal& journal = Journal::ofThisProcess(), std::string identifier = kIdentifier);
    void write(std::string_view line) noexcept override;

private:
    const std::string identifier_;
    const bool hasJournal_;
    const bool hasStandardError_;
    std::mutex mutex_;  // keeps lines whole where one write is not
};

}  // namespace halvane::linux
