#include "linux/http/HttpFixture.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <csignal>

namespace halvane::linux_http {
namespace {

namespace fs = std::filesystem;
using test::LoopbackConnection;
using test::LoopbackServer;
using test::okReply;
using util::UrlError;

class HttpDownload : public HttpFixture {
protected:
    void SetUp() override {
        directory = fs::path(::getenv("HOME")) / "downloads";
        fs::remove_all(directory);
    }
    static mode_t modeOf(const fs::path& path) {
        struct stat status {};
        return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 0777U : 0;
    }
    /// Files below the directory, neighbours of half-done downloads among them.
    [[nodiscard]] std::size_t filesLeft() const {
        std::size_t count = 0;
        if (fs::exists(directory)) {
            for (const auto& entry : fs::recursive_directory_iterator(directory)) count += entry.is_regular_file() ? 1U : 0U;
        }
        return count;
    }

    fs::path directory;
};

TEST_F(HttpDownload, whole_bodies_stand_in_private_files) {
    struct Row {
        const char* name;
        std::string reply;
        std::string contents;
    };
    const std::string large(3'000'001, 'x');
    const Row rows[] = {
        {"small", okReply("abc"), "abc"},
        {"empty", okReply(""), ""},
        {"no content", "HTTP/1.1 204 No Content\r\n\r\n", ""},
        {"large", okReply(large), large},
        {"chunked", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n0\r\n\r\n", "abc"},
        {"replacing", okReply("new"), "new"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        LoopbackServer server(LoopbackServer::replying(row.reply));
        makeSession();
        const fs::path file = directory / "deep" / "er" / "file.p12";
        const auto result = download(server.url(), file);
        ASSERT_EQ(codeOf(result), 0) << result.error->description;
        EXPECT_EQ(result.file, file);
        EXPECT_TRUE(contentsOf(file) == row.contents);
        EXPECT_EQ(modeOf(file), 0600U);
        EXPECT_EQ(modeOf(file.parent_path()), 0700U);
        EXPECT_EQ(modeOf(directory), 0700U);
        EXPECT_EQ(filesLeft(), 1U);
    }
}

TEST_F(HttpDownload, the_destination_is_asked_once_with_the_last_header) {
    LoopbackServer server(LoopbackServer::answering([](const std::string& request) {
        return request.find("/start") != std::string::npos
                   ? std::string("HTTP/1.1 302 Found\r\nLocation: /chen.p12\r\nContent-Length: 3\r\n\r\nabc")
                   : okReply("certificate");
    }));
    makeSession();
    EventLog log;
    session
        ->downloadTask({.url = server.url("/start")}, {.destination =
                                                           [&](const platform::HttpResponse& response) {
                                                               log.add(response.suggestedFileName());
                                                               return directory / response.suggestedFileName();
                                                           },
                                                       .onCompletion = [&](auto result) { log.add(contentsOf(result.file.value_or(""))); }})
        ->resume();
    ASSERT_TRUE(log.await(2));
    EXPECT_EQ(log.events(), (std::vector<std::string>{"chen.p12", "certificate"}));
}

TEST_F(HttpDownload, anything_but_a_whole_success_leaves_no_file) {
    struct Row {
        const char* name;
        std::string reply;
        UrlError expected;
    };
    const Row rows[] = {
        {"not found", "HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\n\r\nhtml", UrlError::BadServerResponse},
        {"large failure", "HTTP/1.1 500 Oh\r\nContent-Length: 5000000\r\n\r\n" + std::string(5'000'000, 'x'), UrlError::BadServerResponse},
        {"not modified", "HTTP/1.1 304 Not Modified\r\n\r\n", UrlError::BadServerResponse},
        {"short body", "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nabc", UrlError::ConnectionLost},
        {"unfinished chunks", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n", UrlError::ConnectionLost},
        {"broken compression", okReply("this is no gzip", "Content-Encoding: gzip\r\n"), UrlError::CannotDecode},
        {"no reply", "", UrlError::ConnectionLost},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        LoopbackServer server([&](LoopbackConnection& connection) {
            if (!connection.readRequest().empty()) connection.send(row.reply);
        });
        makeSession();
        const auto result = download(server.url(), directory / "file");
        EXPECT_EQ(codeOf(result), static_cast<int>(row.expected));
        EXPECT_FALSE(result.file);
        EXPECT_EQ(filesLeft(), 0U);
    }
}

TEST_F(HttpDownload, a_failure_spares_what_stood_there) {
    LoopbackServer server([](LoopbackConnection& connection) {
        connection.readRequest();
        connection.send("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nabc");
    });
    fs::create_directories(directory);
    std::ofstream(directory / "file") << "before";
    EXPECT_NE(codeOf(download(server.url(), directory / "file")), 0);
    EXPECT_EQ(contentsOf(directory / "file"), "before");
    EXPECT_EQ(filesLeft(), 1U);
}

TEST_F(HttpDownload, places_that_cannot_be_written) {
    LoopbackServer server(LoopbackServer::replying(okReply("abc")));
    fs::create_directories(directory / "taken");
    std::ofstream(directory / "plain") << "before";
    makeSession();
    for (const fs::path& place : {fs::path(), fs::path("/"), directory / "taken", directory / "plain" / "file",
                                  directory / std::string(300, 'n'), fs::path("/proc/halvane/file"), directory / ""}) {
        SCOPED_TRACE(place);
        const auto result = download(server.url(), place);
        EXPECT_EQ(codeOf(result), static_cast<int>(UrlError::CannotWriteFile));
        EXPECT_FALSE(result.file);
        EXPECT_EQ(filesLeft(), 1U);
    }
    EXPECT_EQ(codeOf(get(server.url())), 0) << "the session goes on";
}

TEST_F(HttpDownload, a_full_disk_fails_the_download) {
    LoopbackServer server(LoopbackServer::replying(okReply(std::string(1'000'000, 'x'))));
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{300'000, before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &small);
    const auto result = download(server.url(), directory / "file");
    ::setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(codeOf(result), static_cast<int>(UrlError::CannotWriteFile));
    EXPECT_EQ(filesLeft(), 0U);
}

TEST_F(HttpDownload, a_cancelled_download_leaves_no_file) {
    Gate arrived;
    LoopbackServer server([](LoopbackConnection& connection) {
        connection.readRequest();
        connection.send("HTTP/1.1 200 OK\r\nContent-Length: 900000\r\n\r\n" + std::string(500'000, 'x'));
        connection.stall();
    });
    makeSession();
    EventLog log;
    const auto task = session->downloadTask(
        {.url = server.url()},
        {.destination = [&](const auto&) { return directory / "file"; },
         .onProgress = [&](const platform::HttpProgress&) { arrived.open(); },
         .onCompletion = [&](auto result) { log.add(std::to_string(codeOf(result)) + (result.file ? " file" : "")); }});
    task->resume();
    ASSERT_TRUE(arrived.pass());
    task->cancel();
    ASSERT_TRUE(log.await(1));
    EXPECT_EQ(log.events().front(), "-999");
    EXPECT_EQ(filesLeft(), 0U);
}

TEST_F(HttpDownload, cancelled_when_asked_for_its_destination_it_leaves_no_file) {
    LoopbackServer server(LoopbackServer::replying(okReply("abc")));
    makeSession();
    EventLog log;
    std::shared_ptr<platform::HttpTask> task;
    task = session->downloadTask({.url = server.url()}, {.destination =
                                                             [&](const auto&) {
                                                                 task->cancel();
                                                                 return directory / "file";
                                                             },
                                                         .onCompletion = [&](auto result) { log.add(std::to_string(codeOf(result))); }});
    task->resume();
    ASSERT_TRUE(log.await(1));
    EXPECT_EQ(log.events().front(), "-999");
    EXPECT_EQ(filesLeft(), 0U);
}

}  // namespace
}  // namespace halvane::linux_http
