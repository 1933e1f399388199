#include "http/FormEncoding.h"

#include "util/Json.h"
#include "util/Text.h"

#include <algorithm>

namespace halvane::http {

namespace {

void addPairs(std::vector<QueryPair>& pairs, const std::string& field, const util::Value& value);

void addMembers(std::vector<QueryPair>& pairs, const std::string& parent, const util::Dictionary& members) {
    std::vector<const util::Dictionary::Entry*> sorted;
    sorted.reserve(members.size());
    for (const auto& member : members) sorted.push_back(&member);
    std::ranges::sort(sorted, {}, [](const auto* member) -> const std::string& { return member->key; });
    for (const auto* member : sorted) addPairs(pairs, parent.empty() ? member->key : parent + "[" + member->key + "]", member->value);
}

void addPairs(std::vector<QueryPair>& pairs, const std::string& field, const util::Value& value) {
    if (const auto* members = value.dictionary()) {
        addMembers(pairs, field, *members);
    } else if (const auto* list = value.list()) {
        for (const util::Value& element : *list) addPairs(pairs, field + "[]", element);
    } else if (value.isNull()) {
        pairs.push_back({field, std::nullopt});
    } else if (const auto* text = value.text()) {
        pairs.push_back({field, *text});
    } else if (const auto* bytes = value.data()) {
        pairs.push_back({field, *bytes});
    } else if (const auto* date = value.date()) {
        pairs.push_back({field, util::Json::dateText(*date)});
    } else {
        pairs.push_back({field, util::textOf(&value)});
    }
}

}  // namespace

std::vector<QueryPair> queryPairs(const util::Dictionary& parameters) {
    std::vector<QueryPair> pairs;
    addMembers(pairs, "", parameters);
    return pairs;
}

std::string formEncoded(const util::Dictionary& parameters) {
    std::string encoded;
    for (const auto& [field, value] : queryPairs(parameters)) {
        if (!encoded.empty()) encoded += '&';
        encoded += util::percentEscapedComponent(field);
        if (value) encoded.append(1, '=').append(util::percentEscapedComponent(*value));
    }
    return encoded;
}

}  // namespace halvane::http
