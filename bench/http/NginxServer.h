#pragma once

#include "ChildProgram.h"

#include <filesystem>
#include <memory>
#include <string>

namespace halvane::bench {

/// nginx on 127.0.0.1, so that nobody measures our client against our own idea of a server. One process, as the
/// user who runs the bench, with everything it writes below one directory. Ends as ChildProgram does.
class NginxServer {
public:
    /// Makes what it needs in the empty `directory`. Throws std::runtime_error, with what nginx said.
    explicit NginxServer(std::filesystem::path directory);

    /// Answers GET and POST alike, with a little JSON.
    [[nodiscard]] std::string smallUrl() const { return url("/api/v1/user/info"); }
    /// Where a file of `publicDirectory` is to be had, or PUT when it begins with "upload/".
    [[nodiscard]] std::string fileUrl(const std::string& name) const { return url("/" + name); }
    [[nodiscard]] std::filesystem::path publicDirectory() const { return directory_ / "public"; }

private:
    [[nodiscard]] std::string url(const std::string& path) const { return "http://127.0.0.1:" + std::to_string(port_) + path; }
    [[nodiscard]] bool start();

    const std::filesystem::path directory_;
    int port_ = 0;
    std::unique_ptr<ChildProgram> program_;
};

}  // namespace halvane::bench
