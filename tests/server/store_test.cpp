#include "server/RunningCompany.h"

#include <fstream>
#include <thread>

namespace halvane::test {
namespace {

using server::Company;
using server::Database;

class Store : public testing::Test {
protected:
    [[nodiscard]] std::filesystem::path file() const { return directory.path() / "company.sqlite"; }

    TemporaryDirectory directory;
    HandClock time;
};

TEST_F(Store, only_its_owner_can_read_the_directory) {
    const Company company(directory.path() / "a" / "b", time.clock());
    const auto made = directory.path() / "a" / "b";
    EXPECT_EQ(std::filesystem::status(made).permissions(), std::filesystem::perms::owner_all);
    for (const auto& entry : std::filesystem::directory_iterator(made)) {
        SCOPED_TRACE(entry.path());
        EXPECT_EQ(entry.status().permissions(), std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    }
}

TEST_F(Store, what_was_written_is_there_for_the_next_process) {
    {
        Company company(directory.path(), time.clock());
        const auto user =
            company.users.add({.userName = "li.wen@example.com", .shortName = "li.wen", .nickName = "李'雯\"--"}, "hash").value();
        EXPECT_EQ(user.id, 1001);
        EXPECT_EQ(user.jobNumber, "HV1001");
        company.computers.signedIn({.sn = "S", .mac = "", .hostName = "h", .system = ""}, user.id);
        company.computers.mark("S", server::ComputerStore::Mark::Lost);
        company.computers.signedIn({.sn = "S", .mac = "", .hostName = "h2", .system = ""}, user.id);
    }
    Company company(directory.path(), time.clock());
    EXPECT_EQ(company.users.findByName("LI.WEN").value().user.nickName, "李'雯\"--");
    const auto computer = company.computers.find("S").value();
    EXPECT_TRUE(computer.lost) << "signing in again must not make a lost computer a found one";
    EXPECT_FALSE(computer.locked);
    EXPECT_EQ(computer.hostName, "h2");
}

TEST_F(Store, a_name_is_taken_once_by_login_and_by_short_name) {
    Company company(directory.path(), time.clock());
    EXPECT_TRUE(company.users.add({.userName = "li.wen@example.com", .shortName = "li.wen"}, "hash"));
    EXPECT_FALSE(company.users.add({.userName = "li.wen@example.com", .shortName = "other"}, "hash"));
    EXPECT_FALSE(company.users.add({.userName = "li.wen@example.org", .shortName = "li.wen"}, "hash"));
    EXPECT_EQ(company.users.all().size(), 1U);
}

TEST_F(Store, a_number_is_never_given_twice) {
    Company company(directory.path(), time.clock());
    const auto first = company.users.add({.userName = "a@example.com", .shortName = "a"}, "hash").value();
    company.users.remove(first.id);
    EXPECT_NE(company.users.add({.userName = "b@example.com", .shortName = "b"}, "hash").value().id, first.id);
}

TEST_F(Store, a_transaction_that_is_not_committed_leaves_nothing) {
    Database database(file());
    {
        const Database::Transaction transaction(database);
        database.run("INSERT INTO workplaces (value, name) VALUES ('a', 'A')");
    }
    EXPECT_FALSE(database.query("SELECT 1 FROM workplaces").next());
    EXPECT_THROW(database.run("INSERT INTO sessions (token_hash, user_id, expires_at) VALUES ('t', 7, 0)"), server::DatabaseError)
        << "a session without its user";
}

TEST_F(Store, several_processes_write_at_once_and_nothing_is_lost) {
    constexpr int kWriters = 4;
    constexpr int kEach = 25;
    std::vector<std::thread> writers;
    for (int writer = 0; writer < kWriters; ++writer) {
        writers.emplace_back([this, writer] {
            // A connection of its own, as another process has; all of them also race to make the tables.
            Company company(directory.path(), time.clock());
            for (int i = 0; i < kEach; ++i) {
                const std::string name = "u" + std::to_string(writer) + "." + std::to_string(i);
                company.users.add({.userName = name + "@example.com", .shortName = name}, "hash");
            }
        });
    }
    for (auto& writer : writers) writer.join();
    EXPECT_EQ(Company(directory.path(), time.clock()).users.all().size(), static_cast<std::size_t>(kWriters * kEach));
}

TEST_F(Store, a_database_of_an_older_version_keeps_its_rows_and_gets_the_new_tables) {
    {
        Company company(directory.path(), time.clock());
        company.workplaces.put({"a", "A"});
        company.database.run("DROP TABLE packages");
        company.database.run("PRAGMA user_version = 1");
    }
    Company company(directory.path(), time.clock());
    EXPECT_TRUE(company.workplaces.has("a"));
    EXPECT_TRUE(company.packages.all().empty());
}

TEST_F(Store, a_database_of_a_newer_version_is_refused_and_left_alone) {
    { Database(file()).run("PRAGMA user_version = 1000"); }
    EXPECT_THROW(Database{file()}, server::DatabaseError);
    EXPECT_THROW(Database{file()}, server::DatabaseError);
}

TEST_F(Store, a_file_that_is_no_database_is_refused) {
    std::ofstream(file()) << std::string(8192, 'x');
    EXPECT_THROW(Database{file()}, server::DatabaseError);
    EXPECT_THROW(Database{directory.path()}, server::DatabaseError);
    EXPECT_THROW(Database{directory.path() / "missing" / "file"}, server::DatabaseError);
}

}  // namespace
}  // namespace halvane::test
