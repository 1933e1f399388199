#include "support/GoldenExchange.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace halvane::test {

namespace {

/// Walks the lines of one recorded file and knows where it is, for the messages.
class Lines {
public:
    Lines(std::string file, const std::string& content) : file_(std::move(file)) {
        std::size_t from = 0;
        while (from < content.size()) {
            const auto end = std::min(content.find('\n', from), content.size());
            lines_.push_back(content.substr(from, end - from));
            from = end + 1;
        }
    }

    [[nodiscard]] bool atEnd() const { return next_ == lines_.size(); }
    [[nodiscard]] bool atSection() const { return !atEnd() && lines_[next_].starts_with("== "); }
    const std::string& take() {
        if (atEnd()) fail("ends too early");
        return lines_[next_++];
    }
    [[noreturn]] void fail(const std::string& problem) const {
        throw std::runtime_error(file_ + ":" + std::to_string(next_) + ": " + problem);
    }

private:
    std::string file_;
    std::vector<std::string> lines_;
    std::size_t next_ = 0;
};

struct Message {
    GoldenExchange::Headers headers;
    std::vector<std::string> absentHeaders;
    std::optional<std::string> body;
};

Message readMessage(Lines& lines) {
    Message message;
    while (!lines.atEnd() && !lines.atSection()) {
        const std::string& line = lines.take();
        if (line.empty()) {
            message.body.emplace();
            break;
        }
        if (line.front() == '-') {
            message.absentHeaders.push_back(line.substr(1));
            continue;
        }
        const auto colon = line.find(':');
        if (colon == std::string::npos) lines.fail("a header without a colon");
        const auto value = line.find_first_not_of(' ', colon + 1);
        message.headers.emplace_back(line.substr(0, colon), value == std::string::npos ? "" : line.substr(value));
    }
    for (bool first = true; message.body && !lines.atEnd() && !lines.atSection(); first = false) {
        if (!first) *message.body += '\n';
        *message.body += lines.take();
    }
    return message;
}

GoldenExchange readExchange(Lines& lines) {
    constexpr std::string_view kRequest = "== request ";
    GoldenExchange exchange;
    const std::string& title = lines.take();
    if (!title.starts_with(kRequest)) lines.fail("expected == request NAME");
    exchange.name = title.substr(kRequest.size());

    const std::string& start = lines.take();
    const auto space = start.find(' ');
    if (space == std::string::npos) lines.fail("expected METHOD TARGET");
    Message request = readMessage(lines);
    exchange.request = {start.substr(0, space), start.substr(space + 1), std::move(request.headers), std::move(request.absentHeaders),
                        std::move(request.body)};

    if (lines.take() != "== reply") lines.fail("expected == reply");
    exchange.reply.status = std::atoi(lines.take().c_str());
    if (exchange.reply.status < 100) lines.fail("expected a status");
    Message reply = readMessage(lines);
    exchange.reply.headers = std::move(reply.headers);
    exchange.reply.body = reply.body.value_or("");
    return exchange;
}

struct Piece {
    std::string literal;                     ///< what stands before the placeholder
    std::optional<std::string> placeholder;  ///< absent after the last literal
};

std::vector<Piece> piecesOf(const std::string& text) {
    std::vector<Piece> pieces;
    std::size_t from = 0;
    for (;;) {
        const auto open = text.find("${", from);
        const auto close = open == std::string::npos ? open : text.find('}', open);
        if (close == std::string::npos) break;
        pieces.push_back({text.substr(from, open - from), text.substr(open + 2, close - open - 2)});
        from = close + 1;
    }
    pieces.push_back({text.substr(from), std::nullopt});
    return pieces;
}

}  // namespace

std::vector<GoldenExchange> goldenExchanges(const std::string& operation) {
    const std::string path = std::string(HALVANE_GOLDEN_DIR) + "/" + operation + ".txt";
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error(path + ": cannot be read");
    Lines lines(path, {std::istreambuf_iterator<char>(file), {}});
    while (!lines.atEnd() && !lines.atSection()) {
        if (!lines.take().starts_with("#")) lines.fail("expected a comment or == request NAME");
    }
    std::vector<GoldenExchange> exchanges;
    while (!lines.atEnd()) exchanges.push_back(readExchange(lines));
    return exchanges;
}

GoldenExchange goldenExchange(const std::string& operation, std::string_view name) {
    for (auto& exchange : goldenExchanges(operation)) {
        if (exchange.name == name) return exchange;
    }
    throw std::runtime_error("no exchange " + std::string(name) + " is recorded for " + operation);
}

std::vector<std::string> goldenOperations() {
    std::vector<std::string> operations;
    for (const auto& entry : std::filesystem::directory_iterator(HALVANE_GOLDEN_DIR)) {
        if (entry.path().extension() == ".txt") operations.push_back(entry.path().stem());
    }
    std::sort(operations.begin(), operations.end());
    return operations;
}

std::string filled(const std::string& text, const GoldenValues& values) {
    std::string result;
    for (const auto& [literal, placeholder] : piecesOf(text)) {
        result += literal;
        if (!placeholder) continue;
        const auto value = values.find(*placeholder);
        if (value == values.end()) throw std::runtime_error("no value for ${" + *placeholder + "}");
        result += value->second;
    }
    return result;
}

std::optional<GoldenValues> matched(const std::string& recorded, std::string_view actual, GoldenValues values) {
    const auto pieces = piecesOf(recorded);
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        const auto& [literal, placeholder] = pieces[i];
        if (!actual.starts_with(literal)) return std::nullopt;
        actual.remove_prefix(literal.size());
        if (!placeholder) break;
        if (const auto known = values.find(*placeholder); known != values.end()) {
            if (!actual.starts_with(known->second)) return std::nullopt;
            actual.remove_prefix(known->second.size());
            continue;
        }
        // The shortest text up to what is recorded next; everything when nothing is.
        const std::string& following = pieces[i + 1].literal;
        const auto end = following.empty() ? actual.size() : actual.find(following);
        if (end == std::string_view::npos) return std::nullopt;
        values[*placeholder] = std::string(actual.substr(0, end));
        actual.remove_prefix(end);
    }
    if (!actual.empty()) return std::nullopt;
    return values;
}

}  // namespace halvane::test
