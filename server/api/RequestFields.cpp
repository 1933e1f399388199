#include "server/api/RequestFields.h"

#include "util/Json.h"
#include "util/Text.h"

namespace halvane::server {

namespace {

bool isJson(const std::string& contentType) {
    const auto type = util::split(contentType, ';').front();
    return util::lowercasedAscii(util::trimmed(type)) == "application/json";
}

}  // namespace

RequestFields::RequestFields(const ApiRequest& request) {
    auto decoded = util::Json::decode(request.body);
    if (!isJson(request.contentType)) {
        note("the content type must be application/json");
    } else if (!decoded) {
        note("the body is " + decoded.error().description);
    } else if (decoded->dictionary() == nullptr) {
        note("the body must be a JSON object");
    } else {
        body_ = std::move(*decoded);
    }
}

std::string RequestFields::text(std::string_view name) { return read(name, Presence::Required); }

std::string RequestFields::optionalText(std::string_view name) { return read(name, Presence::Optional); }

std::string RequestFields::read(std::string_view name, Presence presence) {
    const std::string quoted = "field \"" + std::string(name) + "\"";
    const util::Value* value = util::member(&body_, name);
    if (value == nullptr || value->isNull()) {
        if (presence == Presence::Required) note(quoted + " is missing");
        return {};
    }
    if (value->text() == nullptr) {
        note(quoted + " must be text");
        return {};
    }
    if (value->text()->size() > kLongestText) note(quoted + " is too long");
    // JSON can spell a NUL; in names and files it would end the text early.
    if (value->text()->find('\0') != std::string::npos) note(quoted + " holds a NUL");
    return *value->text();
}

void RequestFields::note(std::string problem) {
    if (!problem_) problem_ = std::move(problem);
}

}  // namespace halvane::server
