#include "util/PropertyList.h"

#include <plist/plist.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string_view>

namespace halvane::util {

namespace {

struct FreeNode {
    void operator()(void* node) const { plist_free(node); }
};
using Node = std::unique_ptr<void, FreeNode>;

struct FreeText {
    void operator()(char* text) const { std::free(text); }
};
using CText = std::unique_ptr<char, FreeText>;

// The library itself recurses, over as many levels as the bytes say, until the stack ends.
constexpr int kMaxDepth = 512;
constexpr std::size_t kLargestBinary = 128 * 1024;  // no room in it for more levels than a stack has

/// Where the mark-up that begins at `start` ends, one past it: no tag is looked for in between. Absent for what is read in
/// more than one way: a document type with declarations, a processing instruction anywhere but at the beginning or with
/// a quote that does not close. Double quotes are the only ones that the library knows.
std::optional<std::size_t> endOfMarkup(std::string_view xml, std::size_t start) {
    const std::string_view rest = xml.substr(start);
    const auto behind = [&](std::string_view mark) {
        const auto found = xml.find(mark, start);
        return found == std::string_view::npos ? xml.size() : found + mark.size();
    };
    if (rest.starts_with("<!--")) return behind("-->");
    if (rest.starts_with("<![CDATA[")) return behind("]]>");
    if (rest.starts_with("<?")) {
        const std::size_t end = behind("?>");
        const auto quotes = std::ranges::count(xml.substr(start, end - start), '"');
        return start == 0 && quotes % 2 == 0 ? std::optional(end) : std::nullopt;
    }
    if (rest.starts_with("<!") && (!rest.starts_with("<!DOCTYPE") || rest.substr(0, rest.find('>')).find('[') != rest.npos)) {
        return std::nullopt;
    }
    for (std::size_t at = start; at < xml.size(); ++at) {
        if (xml[at] == '>') return at + 1;
        if (xml[at] == '"') at = std::min(xml.find('"', at + 1), xml.size());
    }
    return xml.size();
}

/// Whether arrays and dictionaries of an XML property list certainly stand no deeper in one another than they may.
bool isShallow(std::string_view xml) {
    int depth = 0;
    for (std::size_t at = xml.find('<'); at != std::string_view::npos;) {
        const auto end = endOfMarkup(xml, at);
        if (!end) return false;
        const std::string_view tag = xml.substr(at, *end - at);
        const bool isEmpty = tag.ends_with("/>");
        if (!isEmpty && (tag.starts_with("<array") || tag.starts_with("<dict"))) ++depth;
        if (!isEmpty && (tag.starts_with("</array") || tag.starts_with("</dict"))) --depth;
        if (depth > kMaxDepth || depth < 0) return false;
        at = xml.find('<', *end);
    }
    return true;
}

Value fromLibrary(plist_t node, int depth);

Value::List listFrom(plist_t node, int depth) {
    Value::List list;
    const std::uint32_t size = plist_array_get_size(node);
    list.reserve(size);
    for (std::uint32_t i = 0; i < size; ++i) list.push_back(fromLibrary(plist_array_get_item(node, i), depth));
    return list;
}

Dictionary dictionaryFrom(plist_t node, int depth) {
    Dictionary dictionary;
    plist_dict_iter rawIterator = nullptr;
    plist_dict_new_iter(node, &rawIterator);
    const std::unique_ptr<void, decltype(&std::free)> iterator(rawIterator, &std::free);
    for (;;) {
        char* rawKey = nullptr;
        plist_t item = nullptr;
        plist_dict_next_item(node, iterator.get(), &rawKey, &item);
        const CText key(rawKey);
        if (item == nullptr) return dictionary;
        dictionary.set(key ? key.get() : "", fromLibrary(item, depth));
    }
}

/// The library counts from the first of January 2001.
constexpr std::int64_t kLibraryEpoch = 978307200;

Value::Date dateFrom(plist_t node) {
    std::int32_t seconds = 0;
    std::int32_t micros = 0;
    plist_get_date_val(node, &seconds, &micros);
    return {kLibraryEpoch + seconds};
}

Value scalarFrom(plist_t node) {
    switch (plist_get_node_type(node)) {
        case PLIST_BOOLEAN: {
            std::uint8_t value = 0;
            plist_get_bool_val(node, &value);
            return value != 0;
        }
        case PLIST_UINT: {
            std::uint64_t value = 0;
            plist_get_uint_val(node, &value);
            return static_cast<std::int64_t>(value);
        }
        case PLIST_REAL: {
            double value = 0;
            plist_get_real_val(node, &value);
            return value;
        }
        case PLIST_STRING: {
            std::uint64_t length = 0;
            const char* text = plist_get_string_ptr(node, &length);
            return text == nullptr ? Value("") : Value(std::string(text, length));
        }
        case PLIST_DATA: {
            std::uint64_t length = 0;
            const char* bytes = plist_get_data_ptr(node, &length);
            return Value::Data{bytes == nullptr ? Bytes() : Bytes(bytes, length)};
        }
        case PLIST_DATE:
            return dateFrom(node);
        default:
            return {};
    }
}

Value fromLibrary(plist_t node, int depth) {
    if (node == nullptr || depth > kMaxDepth) return {};
    switch (plist_get_node_type(node)) {
        case PLIST_ARRAY:
            return listFrom(node, depth + 1);
        case PLIST_DICT:
            return dictionaryFrom(node, depth + 1);
        default:
            return scalarFrom(node);
    }
}

plist_t toLibrary(const Value& value) {
    if (const auto* boolean = value.boolean()) return plist_new_bool(*boolean ? 1 : 0);
    if (const auto* integer = value.integer()) return plist_new_uint(static_cast<std::uint64_t>(*integer));
    if (const auto* real = value.real()) return plist_new_real(*real);
    if (const auto* text = value.text()) return plist_new_string(text->c_str());
    if (const auto* data = value.data()) return plist_new_data(data->data(), data->size());
    if (const auto* date = value.date()) return plist_new_date(static_cast<std::int32_t>(date->seconds - kLibraryEpoch), 0);
    if (const auto* list = value.list()) {
        plist_t array = plist_new_array();
        for (const Value& element : *list) plist_array_append_item(array, toLibrary(element));
        return array;
    }
    if (const auto* dictionary = value.dictionary()) {
        plist_t dict = plist_new_dict();
        for (const auto& [key, field] : *dictionary) {
            if (!field.isNull()) plist_dict_set_item(dict, key.c_str(), toLibrary(field));
        }
        return dict;
    }
    return plist_new_string("");
}

}  // namespace

Result<Value> PropertyList::decode(const Bytes& bytes) {
    if (bytes.empty()) return dataError("property list is empty");
    if (bytes.size() > UINT32_MAX) return dataError("property list is too large");
    plist_t raw = nullptr;
    const auto length = static_cast<std::uint32_t>(bytes.size());
    // The XML reader prints to standard error about bytes that are no XML; it is asked only for what looks like it.
    if (plist_is_binary(bytes.data(), length) != 0) {
        if (length > kLargestBinary) return dataError("binary property list is too large");
        plist_from_bin(bytes.data(), length, &raw);
    } else if (const auto start = bytes.find_first_not_of(" \t\r\n\xEF\xBB\xBF"); start != Bytes::npos && bytes[start] == '<') {
        const std::string_view xml = std::string_view(bytes).substr(start);
        if (!isShallow(xml)) return dataError("property list is nested deeper than " + std::to_string(kMaxDepth) + ", or not plain");
        plist_from_xml(bytes.data() + start, length - static_cast<std::uint32_t>(start), &raw);
    }
    const Node node(raw);
    if (!node) return dataError("not a property list");
    return fromLibrary(node.get(), 0);
}

Bytes PropertyList::encode(const Value& value) {
    const Node node(toLibrary(value));
    char* xml = nullptr;
    std::uint32_t length = 0;
    plist_to_xml(node.get(), &xml, &length);
    const std::unique_ptr<char, decltype(&plist_to_xml_free)> owned(xml, &plist_to_xml_free);
    return xml == nullptr ? Bytes() : Bytes(xml, length);
}

}  // namespace halvane::util
