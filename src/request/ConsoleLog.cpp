#include "request/ConsoleLog.h"

#include "util/Json.h"
#include "util/Redaction.h"
#include "util/Text.h"
#include "util/Url.h"

#include <fmt/format.h>

namespace halvane::request {

namespace {

std::string printedValue(const util::Value& value) { return util::Json::encode(util::redacted(value)); }

std::string printedHeaders(const platform::HttpHeaders& headers) {
    util::Dictionary fields;
    for (const auto& [name, value] : headers.fields()) fields.set(name, value);
    return fields.empty() ? util::printed(std::nullopt) : printedValue(fields);
}

std::string printedParameters(const std::optional<util::Dictionary>& parameters) {
    return parameters ? printedValue(*parameters) : util::printed(std::nullopt);
}

/// `a=1&token=<redacted>`: the values of secret fields covered.
std::string coveredFields(std::string_view form) {
    std::string covered;
    for (const std::string& field : util::split(form, '&')) {
        const auto equals = field.find('=');
        const bool secret = equals != std::string::npos && util::isSecretKey(util::percentDecoded(field.substr(0, equals)));
        if (!covered.empty()) covered += '&';
        covered += secret ? field.substr(0, equals + 1) + util::kRedacted : field;
    }
    return covered;
}

/// Without user name, password and fragment; values of secret fields of the query covered.
std::string printedUrl(std::optional<std::string> url) {
    if (!url) return util::printed(url);
    url->resize(std::min(url->find('#'), url->size()));
    const auto question = std::min(url->find('?'), url->size());
    std::string result = url->substr(0, question);
    if (const std::string_view host = util::hostTextOf(result); host.data() != nullptr) {
        const std::size_t authority = result.find("://") + 3;
        result.erase(authority, static_cast<std::size_t>(host.data() - result.data()) - authority);
    }
    if (question < url->size()) result.append("?").append(coveredFields(std::string_view(*url).substr(question + 1)));
    return result;
}

/// By element name, so that secrets in it are found like those of a dictionary.
util::Value asValue(const util::XmlElement& element) {
    util::Value::List content;
    for (const auto& [name, value] : element.attributes) content.push_back(util::Dictionary{{name, value}});
    if (!element.text.empty()) content.push_back(element.text);
    for (const auto& child : element.children) content.push_back(asValue(child));
    return util::Dictionary{{element.name, content.size() == 1 && !element.text.empty() ? content.front() : util::Value(content)}};
}

/// As text, where it is, the secrets of JSON, XML and forms covered.
std::string printedBytes(const util::Bytes& bytes) {
    if (const auto json = util::Json::decode(bytes); json && (json->dictionary() != nullptr || json->list() != nullptr)) {
        return printedValue(*json);
    }
    if (const auto root = util::Xml::decode(bytes)) return printedValue(asValue(**root));
    return util::isValidUtf8(bytes) ? coveredFields(bytes) : util::printed(std::nullopt);
}

std::string printedResponse(const Response& response) {
    if (!response) return util::printed(std::nullopt);
    if (const auto* file = response->file()) return file->string();
    if (const auto* root = response->xml()) return printedValue(asValue(*root));
    if (const auto* bytes = response->bytes()) return printedBytes(*bytes);
    return response->value() == nullptr ? util::printed(std::nullopt) : printedValue(*response->value());
}

std::string printedFailure(const Failure& failure) {
    return failure ? fmt::format("{} {}: {}", failure->domain, failure->code, failure->description) : util::printed(std::nullopt);
}

}  // namespace

void ConsoleLog::write(const std::string& text) const {
    if (log_) log_->write(text);
}

// The banners are uneven; support staff search for them as they are.

void ConsoleLog::request(const XMRequest& request) const {
    const std::string url = printedUrl(request.url);
    const std::string headers = printedHeaders(request.headers);
    const std::string parameters = printedParameters(request.parameters);
    if (request.requestType == XMRequestDownload) {
        const auto path = request.downloadSavePath ? std::optional(request.downloadSavePath->string()) : std::nullopt;
        write(
            fmt::format("\n============ [XMRequest Info] ============\nrequest download url: {}\nrequest save path: {} \nrequest headers: "
                        "\n{} \nrequest parameters: \n{} \n==========================================\n",
                        url, util::printed(path), headers, parameters));
    } else {
        write(
            fmt::format("\n============ [XMRequest Info] ============\nrequest url: {} \nrequest headers: \n{} \nrequest parameters: \n{} "
                        "\n==========================================\n",
                        url, headers, parameters));
    }
}

void ConsoleLog::response(const XMRequest& request, const Response& response) const {
    const std::string url = printedUrl(request.url);
    const std::string data = printedResponse(response);
    if (request.requestType == XMRequestDownload) {
        write(
            fmt::format("\n============ [XMResponse Data] ===========\nrequest download url: {}\nresponse data: "
                        "{}\n==========================================\n",
                        url, data));
    } else {
        write(
            fmt::format("\n============ [XMResponse Data] ===========\nrequest url: {} \nresponse data: "
                        "\n{}\n==========================================\n",
                        url, data));
    }
}

void ConsoleLog::failure(const XMRequest& request, const Failure& failure) const {
    write(
        fmt::format("\n=========== [XMResponse Error] ===========\nrequest url: {} \nerror info: "
                    "\n{}\n==========================================\n",
                    printedUrl(request.url), printedFailure(failure)));
}

}  // namespace halvane::request
