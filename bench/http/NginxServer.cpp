#include "NginxServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#include <chrono>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <thread>

namespace halvane::bench {

namespace {

constexpr const char* kProgram = "/usr/sbin/nginx";  // not on everybody's path

/// A port that was free a moment ago.
int freePort() {
    const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const plain = reinterpret_cast<sockaddr*>(&address);
    const bool bound = ::bind(listener, plain, size) == 0 && ::getsockname(listener, plain, &size) == 0;
    ::close(listener);
    if (!bound) throw std::runtime_error("no port is free");
    return ntohs(address.sin_port);
}

/// An uploaded body is written to a file, because a mere `return` answers before the body has come and contestants
/// differ in what they make of that.
std::string configuration(const std::string& directory, int port) {
    std::string temporaryPaths;
    for (const char* which : {"client_body", "proxy", "fastcgi", "uwsgi", "scgi"})
        temporaryPaths.append("  ").append(which).append("_temp_path ").append(directory).append("/temporary;\n");
    return "daemon off;\n"
           "master_process off;\n"  // one process to end, and none that changes its user
           "pid " +
           directory +
           "/pid;\n"
           "lock_file " +
           directory +
           "/lock;\n"
           "error_log " +
           directory +
           "/error.log;\n"
           "events { worker_connections 64; }\n"
           "http {\n" +
           temporaryPaths +
           "  access_log off;\n"
           "  sendfile on;\n"
           "  keepalive_requests 1000000000;\n"
           "  client_max_body_size 0;\n"
           "  server {\n"
           "    listen 127.0.0.1:" +
           std::to_string(port) +
           ";\n"
           "    root " +
           directory +
           "/public;\n"
           "    location /api/ {\n"
           "      default_type \"application/json; charset=utf-8\";\n"
           R"(      return 200 '{"code":0,"message":"OK","data":{"user_name":"chen.xiao","token":"0123456789abcdef"}}';)"
           "\n"
           "    }\n"
           "    location /upload/ {\n"
           "      dav_methods PUT;\n"
           "      client_body_buffer_size 1m;\n"
           "    }\n"
           "  }\n"
           "}\n";
}

std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace

NginxServer::NginxServer(std::filesystem::path directory) : directory_(std::move(directory)) {
    std::filesystem::create_directories(publicDirectory() / "upload");
    constexpr int kAttempts = 5;  // somebody else may take the port first
    for (int i = 0; i < kAttempts; ++i) {
        if (start()) return;
    }
    throw std::runtime_error("nginx does not start (package nginx-light): " + contentOf(directory_ / "error.log"));
}

bool NginxServer::start() {
    port_ = freePort();
    const std::filesystem::path file = directory_ / "nginx.conf";
    std::ofstream(file) << configuration(directory_.string(), port_);
    program_ =
        std::make_unique<ChildProgram>(std::vector<std::string>{kProgram, "-e", (directory_ / "error.log").string(), "-c", file.string()});
    // It writes its number once it listens.
    while (!std::filesystem::exists(directory_ / "pid")) {
        if (!program_->isRunning()) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

}  // namespace halvane::bench
