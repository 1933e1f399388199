#include "server/RunningCompany.h"
#include "server/commands/SampleCompany.h"
#include "support/GoldenExchange.h"

#include <set>

namespace halvane::test {
namespace {

/// The sample company, asked in the words that are recorded, in the order of an employee's day.
class GoldenExchanges : public testing::Test {
protected:
    GoldenExchanges()
        : company(directory.path(), time.clock()), server(company, {}), url(server.start().value()), probe(url), values{{"BASE", url}} {
        server::SampleCompany::addTo(company, "example.com", "Halvane-demo-1");
    }

    /// Sends what is recorded, requires the reply that is recorded, and keeps what its placeholders stood for.
    void play(const std::string& operation, const std::string& name = "accepted") {
        SCOPED_TRACE(operation + ", " + name);
        played.insert(operation + "/" + name);
        const auto exchange = goldenExchange(operation, name);
        std::string headers;
        for (const auto& [field, value] : exchange.request.headers) headers += field + ": " + filled(value, values) + "\r\n";
        const auto reply = probe.request(exchange.request.method, filled(exchange.request.target, values), headers,
                                         filled(exchange.request.body.value_or(""), values));
        EXPECT_EQ(reply.status, exchange.reply.status);
        for (const auto& [field, value] : exchange.reply.headers) EXPECT_EQ(reply.headers.at(field), filled(value, values));
        auto read = matched(exchange.reply.body, reply.body, values);
        ASSERT_TRUE(read) << reply.body;
        values = std::move(*read);
        values.erase("PKCS12");
    }

    TemporaryDirectory directory;
    HandClock time;
    server::Company company;
    server::CompanyServer server;
    const std::string url;
    const HttpProbe probe;
    GoldenValues values;
    std::set<std::string> played;
};

TEST_F(GoldenExchanges, every_recorded_request_is_accepted_and_answered_as_recorded) {
    play("login", "wrong password");
    play("login");
    play("create_ad_cert", "wrong password");
    play("create_ad_cert");
    play("download_p12");
    play("download_file");
    play("contact_list", "signed out");
    play("contact_list");
    play("update_office_address", "session expired");
    play("update_office_address");
    EXPECT_EQ(company.users.find(1001)->workAddress, "shanghai");
    play("equipment_status", "signed out");
    play("equipment_status");
    play("check_version_update");
    company.computers.mark("HV-0001", server::ComputerStore::Mark::Locked);
    company.computers.mark("HV-0001", server::ComputerStore::Mark::Lost);
    play("equipment_status", "locked and lost");
    play("uninstall_apply", "signed out");
    play("uninstall_apply");
    play("uninstall_sure", "wrong code");
    values["UNINSTALL_CODE"] = mailedCode(company);
    play("uninstall_sure");

    std::set<std::string> recorded;
    for (const auto& operation : goldenOperations()) {
        for (const auto& exchange : goldenExchanges(operation)) recorded.insert(operation + "/" + exchange.name);
    }
    EXPECT_EQ(played, recorded);

    const auto computer = company.computers.find("HV-0001").value();
    EXPECT_EQ(computer.hostName, "chen-laptop");
    EXPECT_EQ(computer.mac, "A4:83:E7:01:0B:2C");
    EXPECT_EQ(computer.userName, "chen.xiao@example.com");
}

}  // namespace
}  // namespace halvane::test
