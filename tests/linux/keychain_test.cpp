#include "linux/LocalSocket.h"
#include "linux/SecretServiceKeychain.h"
#include "linux/SecretServiceProgram.h"
#include "support/KeychainContract.h"
#include "support/MemoryKeychain.h"
#include "support/RecordingLog.h"

#include <systemd/sd-bus.h>

#include <algorithm>
#include <cstdlib>

namespace halvane::test {

struct MemoryKeychainHarness {
    platform::Keychain& keychain() { return keychain_; }
    MemoryKeychain keychain_;
};

struct SecretServiceHarness {
    platform::Keychain& keychain() { return keychain_; }
    SecretServiceProgram program;
    RecordingLog log;
    // A busy machine may be slow; what takes no time is not asserted here.
    linux::SecretServiceKeychain keychain_{log, std::chrono::seconds(20)};
};

INSTANTIATE_TYPED_TEST_SUITE_P(Memory, KeychainContract, MemoryKeychainHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(SecretService, KeychainContract, SecretServiceHarness);

}  // namespace halvane::test

namespace halvane::linux {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kNoWait{5000};
const platform::KeychainQuery kQuery{"generic password", "com.example.clouddisk", "com.example.clouddisk", "after first unlock"};

/// How long each of the three operations takes to fail, in the order add, remove, copy; the longest.
/// Fails the test when one succeeds.
milliseconds longestFailure(SecretServiceKeychain& keychain) {
    const std::function<bool()> operations[] = {[&] { return keychain.add(kQuery, "secret").ok(); },
                                                [&] { return keychain.remove(kQuery).ok(); },
                                                [&] { return keychain.copyMatching(kQuery).ok(); }};
    milliseconds longest{0};
    for (const auto& operation : operations) {
        const auto begin = Clock::now();
        EXPECT_FALSE(operation());
        longest = std::max(longest, std::chrono::duration_cast<milliseconds>(Clock::now() - begin));
    }
    return longest;
}

/// Has the name of the Secret Service and never answers.
class SilentService {
public:
    explicit SilentService(const test::PrivateBus& bus) {
        sd_bus_new(&bus_);
        sd_bus_set_address(bus_, bus.address().c_str());
        sd_bus_set_bus_client(bus_, 1);
        sd_bus_start(bus_);
        EXPECT_GE(sd_bus_request_name(bus_, "org.freedesktop.secrets", 0), 0);
    }
    ~SilentService() { sd_bus_close_unref(bus_); }
    SilentService(const SilentService&) = delete;
    SilentService& operator=(const SilentService&) = delete;

private:
    sd_bus* bus_ = nullptr;
};

class SecretServiceKeychainTest : public testing::Test {
protected:
    void TearDown() override { ::unsetenv("DBUS_SESSION_BUS_ADDRESS"); }
    static void useBus(const std::string& address) { ::setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1); }

    /// Everything failed, and the log said so once, with this reason.
    void expectOneLine(std::string_view reason) {
        ASSERT_EQ(log.lines().size(), 1U);
        EXPECT_TRUE(log.contains("nothing is stored"));
        EXPECT_TRUE(log.contains(reason)) << log.lines().front();
        EXPECT_FALSE(log.contains("secret\""));
    }

    test::RecordingLog log;
    // Far beyond what a busy machine needs: whoever waits shows.
    SecretServiceKeychain keychain{log, 6 * kNoWait};
};

TEST_F(SecretServiceKeychainTest, an_item_of_another_program_is_found_as_it_is_and_replaced) {
    test::SecretServiceProgram program;
    program.storeForeign(kQuery.service, "no archive of ours");
    EXPECT_EQ(keychain.copyMatching(kQuery).value(), std::optional<util::Bytes>("no archive of ours"));
    EXPECT_FALSE(keychain.add(kQuery, "ours"));
    ASSERT_TRUE(keychain.remove(kQuery));
    ASSERT_TRUE(keychain.add(kQuery, "ours"));
    EXPECT_EQ(keychain.copyMatching(kQuery).value(), std::optional<util::Bytes>("ours"));
}

TEST_F(SecretServiceKeychainTest, a_locked_collection_is_an_error_and_never_a_question) {
    test::SecretServiceProgram program;
    ASSERT_TRUE(keychain.add(kQuery, "secret"));
    program.lock();
    EXPECT_LT(longestFailure(keychain), kNoWait);
    expectOneLine("locked");
    // Of something that was never stored nobody can say so while the collection is locked.
    EXPECT_FALSE(keychain.copyMatching({"generic password", "never stored", "never stored", "after first unlock"}));
}

TEST_F(SecretServiceKeychainTest, a_service_without_a_collection_is_an_error) {
    const test::SecretServiceProgram program(test::SecretServiceProgram::Start::WithoutPassword);
    EXPECT_LT(longestFailure(keychain), kNoWait);
    expectOneLine("there is no default collection");
}

TEST_F(SecretServiceKeychainTest, without_a_service_or_a_bus_there_is_an_error_at_once) {
    const test::PrivateBus bus;
    useBus(bus.address());
    EXPECT_LT(longestFailure(keychain), kNoWait);
    expectOneLine("is not there");

    const char* const buses[] = {"unix:path=/nowhere/bus", "", "autolaunch:", "nonsense", "unix:path=/dev/null"};
    for (const char* address : buses) {
        SCOPED_TRACE(address);
        useBus(address);
        SecretServiceKeychain other(log, 6 * kNoWait);
        EXPECT_LT(longestFailure(other), kNoWait);
    }
}

TEST_F(SecretServiceKeychainTest, a_silent_service_or_bus_costs_no_more_than_the_deadline) {
    constexpr milliseconds kShort{200};
    constexpr milliseconds kSlack{2000};
    const test::PrivateBus bus;
    const SilentService service(bus);
    useBus(bus.address());
    SecretServiceKeychain first(log, kShort);
    const auto time = longestFailure(first);
    EXPECT_GE(time, kShort);
    EXPECT_LT(time, kShort + kSlack);
    expectOneLine("no answer in time");

    const test::TemporaryDirectory directory;
    const auto silentBus = LocalSocket::listenAt(directory.path() / "bus");
    useBus("unix:path=" + (directory.path() / "bus").string());
    SecretServiceKeychain second(log, kShort);
    EXPECT_LT(longestFailure(second), kShort + kSlack);
}

}  // namespace
}  // namespace halvane::linux
