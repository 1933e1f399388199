#include "server/AdministeredCompany.h"

#include <sstream>

namespace halvane::test {

AdministeredCompany::Outcome AdministeredCompany::run(std::vector<std::string> words, const Given& given, bool withData) {
    std::istringstream in(given.input);
    std::ostringstream out;
    std::ostringstream err;
    server::Console console{in, out, err, time.clock(), given.password, std::nullopt};
    if (withData) words.insert(words.end(), {"--data", data.string()});
    const server::ExitCode code = server::runCommandLine(words, console);
    return {code, out.str(), err.str()};
}

void AdministeredCompany::expectFailure(const Outcome& outcome, server::ExitCode code, const std::string& reason) {
    EXPECT_EQ(outcome.code, code);
    EXPECT_NE(outcome.err.find(reason), std::string::npos) << outcome.err;
    EXPECT_EQ(outcome.out, "");
}

}  // namespace halvane::test
