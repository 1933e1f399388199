#pragma once

#include "server/Company.h"
#include "server/CompanyServer.h"
#include "server/HttpProbe.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <string>

namespace halvane::test {

/// A directory of the test's own, which goes with it.
class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

/// Stands still until it is turned. Any thread.
class HandClock {
public:
    void turn(std::chrono::seconds by) { seconds_ += by.count(); }
    [[nodiscard]] server::Clock clock() const {
        return [this] { return server::Time(std::chrono::seconds(seconds_.load())); };
    }

private:
    std::atomic<std::int64_t> seconds_{1'750'000'000};
};

/// The real server on a real directory, with one employee: chen.xiao@example.com, number 1001.
class RunningCompany : public testing::Test {
public:
    static constexpr const char* kPassword = "Halvane-demo-1";
    static constexpr const char* kOk = R"({"code":200,)";
    static constexpr const char* kSignedOut = R"({"code":401,"msg":"登录已过期，请重新登录","data":{}})";
    static constexpr const char* kNotAllowed = R"({"code":403,"msg":"没有权限执行此操作","data":{}})";
    static constexpr const char* kRefused = R"({"code":4001,"msg":"用户名或密码错误","data":{}})";

protected:
    RunningCompany();
    ~RunningCompany() override;

    server::User addUser(const std::string& shortName);
    /// A reply's body to a sign-in.
    [[nodiscard]] std::string signIn(const std::string& name, const std::string& password = kPassword) const;
    /// Signs in and answers the token.
    [[nodiscard]] std::string tokenOf(const std::string& name) const;
    [[nodiscard]] std::string statusOf(const std::string& name, const std::string& sn, const std::string& token) const;

    TemporaryDirectory directory;
    HandClock time;
    server::Company company;
    server::CompanyServer server;
    const std::string url;
    const HttpProbe probe;
};

/// The six digits in the newest mail; empty when there are none.
std::string mailedCode(const server::Company& company);

/// The text of a field of the reply's "data"; empty when it is not there.
std::string dataField(const std::string& body, const std::string& key);

}  // namespace halvane::test
