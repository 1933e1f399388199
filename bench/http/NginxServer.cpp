#include "NginxServer.h"

#include "SilentServer.h"

#include <chrono>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string_view>
#include <thread>

namespace halvane::bench {

namespace {

constexpr const char* kProgram = "/usr/sbin/nginx";  // not on everybody's path

/// One process, so that there is one to end, and none that changes its user. An uploaded body is written to a file,
/// because a mere `return` answers before the body has come, and contestants differ in what they make of that.
constexpr const char* kConfiguration = R"(
daemon off;
master_process off;
pid @directory@/pid;
lock_file @directory@/lock;
error_log @directory@/error.log;
events { worker_connections 64; }
http {
  access_log off;
  sendfile on;
  keepalive_requests 1000000000;
  client_max_body_size 0;
  client_body_temp_path @directory@/temporary;
  proxy_temp_path @directory@/temporary;
  fastcgi_temp_path @directory@/temporary;
  uwsgi_temp_path @directory@/temporary;
  scgi_temp_path @directory@/temporary;
  server {
    listen 127.0.0.1:@port@;
    root @directory@/public;
    location /api/ {
      default_type "application/json; charset=utf-8";
      return 200 '{"code":0,"message":"OK","data":{"user_name":"chen.xiao","token":"0123456789abcdef"}}';
    }
    location /upload/ {
      dav_methods PUT;
      client_body_buffer_size 1m;
    }
  }
}
)";

std::string withReplaced(std::string text, std::string_view mark, const std::string& value) {
    for (auto at = text.find(mark); at != std::string::npos; at = text.find(mark, at + value.size())) text.replace(at, mark.size(), value);
    return text;
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
    port_ = SilentServer().port();  // free until a moment ago
    const std::filesystem::path file = directory_ / "nginx.conf";
    std::ofstream(file) << withReplaced(withReplaced(kConfiguration, "@directory@", directory_.string()), "@port@", std::to_string(port_));
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
