#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace halvane::test {

/// One recorded request and its reply from tests/fixtures/golden (the format is in the README.md there).
/// Texts are as recorded: placeholders such as ${TOKEN} still stand in them.
struct GoldenExchange {
    using Headers = std::vector<std::pair<std::string, std::string>>;
    struct Request {
        std::string method;
        std::string target;  ///< path and query, relative to the server's base address
        Headers headers;     ///< must be there with these values
        std::vector<std::string> absentHeaders;
        std::optional<std::string> body;  ///< absent: sent without one
    };
    struct Reply {
        int status = 0;
        Headers headers;
        std::string body;
    };
    std::string name;
    Request request;
    Reply reply;
};

/// Placeholder names (without `${}`) to what stands for them in this run.
using GoldenValues = std::map<std::string, std::string>;

/// The exchanges of tests/fixtures/golden/<operation>.txt in their order. Throws std::runtime_error
/// with file and line when there is no such file or it breaks the format.
std::vector<GoldenExchange> goldenExchanges(const std::string& operation);
/// The exchange called `name` of that operation; throws when there is none.
GoldenExchange goldenExchange(const std::string& operation, std::string_view name = "accepted");
/// Every recorded operation, sorted.
std::vector<std::string> goldenOperations();

/// `text` with its placeholders replaced; throws std::runtime_error for one without a value.
std::string filled(const std::string& text, const GoldenValues& values);

/// Whether `actual` is `recorded`, where each placeholder stands for any text, and the same text for
/// the same placeholder. A placeholder with an entry in `values` stands for just that. Answers `values`
/// with what the others stood for; absent when `actual` is something else.
std::optional<GoldenValues> matched(const std::string& recorded, std::string_view actual, GoldenValues values = {});

}  // namespace halvane::test
