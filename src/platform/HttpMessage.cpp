#include "platform/HttpMessage.h"

#include "util/Text.h"
#include "util/Url.h"

#include <algorithm>

namespace halvane::platform {

namespace {

// Compared in place: a header is looked at several times in every exchange.
bool sameName(std::string_view left, std::string_view right) {
    constexpr auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; };
    return std::ranges::equal(left, right, {}, lower, lower);
}

bool breaksLine(std::string_view text) { return text.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos; }

/// Parameters of a header value such as `attachment; filename="a;b.pfx"`, names in lower case.
std::vector<std::pair<std::string, std::string>> parametersOf(std::string_view value) {
    std::vector<std::pair<std::string, std::string>> parameters;
    std::size_t i = value.find(';');
    while (i < value.size()) {
        const auto equals = value.find('=', ++i);
        if (equals == std::string_view::npos) break;
        std::string name = util::lowercasedAscii(util::trimmed(value.substr(i, equals - i)));
        std::string text;
        i = equals + 1;
        while (i < value.size() && value[i] == ' ') ++i;
        if (i < value.size() && value[i] == '"') {
            for (++i; i < value.size() && value[i] != '"'; ++i) {
                if (value[i] == '\\' && i + 1 < value.size()) ++i;
                text += value[i];
            }
            i = value.find(';', i);
        } else {
            const auto end = value.find(';', i);
            text = util::trimmed(value.substr(i, end - i));
            i = end;
        }
        parameters.emplace_back(std::move(name), std::move(text));
    }
    return parameters;
}

std::string dispositionFileName(std::string_view disposition) {
    std::string plain;
    for (const auto& [name, value] : parametersOf(disposition)) {
        if (name == "filename*") {
            const auto quote = value.rfind('\'');
            const auto decoded =
                util::percentDecoded(quote == std::string::npos ? std::string_view(value) : std::string_view(value).substr(quote + 1));
            if (util::isValidUtf8(decoded)) return decoded;
        } else if (name == "filename") {
            plain = value;
        }
    }
    return plain;
}

}  // namespace

HttpHeaders::HttpHeaders(std::initializer_list<Field> fields) {
    for (const auto& [name, value] : fields) set(name, value);
}

void HttpHeaders::set(const std::string& name, std::string value) {
    if (breaksLine(name) || breaksLine(value)) {
        remove(name);
        return;
    }
    const auto existing = std::ranges::find_if(fields_, [&](const Field& field) { return sameName(field.first, name); });
    if (existing == fields_.end()) {
        fields_.emplace_back(name, std::move(value));
        return;
    }
    existing->second = std::move(value);
    fields_.erase(std::remove_if(existing + 1, fields_.end(), [&](const Field& field) { return sameName(field.first, name); }),
                  fields_.end());
}

void HttpHeaders::append(std::string_view name, std::string_view value) {
    if (breaksLine(name) || breaksLine(value)) return;
    const auto existing = std::ranges::find_if(fields_, [&](const Field& field) { return sameName(field.first, name); });
    if (existing == fields_.end()) {
        fields_.emplace_back(name, value);
    } else {
        existing->second.append(", ").append(value);
    }
}

void HttpHeaders::remove(std::string_view name) {
    std::erase_if(fields_, [name](const Field& field) { return sameName(field.first, name); });
}

const std::string* HttpHeaders::find(std::string_view name) const {
    const auto found = std::ranges::find_if(fields_, [name](const Field& field) { return sameName(field.first, name); });
    return found == fields_.end() ? nullptr : &found->second;
}

std::string HttpResponse::mimeType() const {
    const std::string* type = headers.find("Content-Type");
    if (type == nullptr) return {};
    return util::lowercasedAscii(util::trimmed(std::string_view(*type).substr(0, type->find(';'))));
}

std::string HttpResponse::suggestedFileName() const {
    if (const std::string* disposition = headers.find("Content-Disposition")) {
        if (std::string name = util::fileNameOf(dispositionFileName(*disposition)); !name.empty()) return name;
    }
    const bool isDirectory = url.substr(0, url.find_first_of("?#")).ends_with('/');
    std::string name = isDirectory ? std::string() : util::fileNameOfUrl(url);
    return name.empty() ? "Unknown" : name;
}

}  // namespace halvane::platform
