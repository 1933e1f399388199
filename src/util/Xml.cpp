#include "util/Xml.h"

#include "util/Text.h"

#include <pugixml.hpp>

#include <algorithm>

namespace halvane::util {

namespace {

constexpr int kMaxDepth = 512;

bool fill(XmlElement& element, const pugi::xml_node& node, int depth) {
    if (depth > kMaxDepth) return false;
    element.name = node.name();
    for (const auto& attribute : node.attributes()) element.attributes.emplace_back(attribute.name(), attribute.value());
    for (const auto& child : node.children()) {
        if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata) element.text += child.value();
        if (child.type() == pugi::node_element && !fill(element.children.emplace_back(), child, depth + 1)) return false;
    }
    element.text = trimmed(element.text);
    return true;
}

}  // namespace

const XmlElement* XmlElement::child(std::string_view childName) const {
    const auto found = std::ranges::find(children, childName, &XmlElement::name);
    return found == children.end() ? nullptr : &*found;
}

const std::string* XmlElement::attribute(std::string_view attributeName) const {
    const auto found = std::ranges::find(attributes, attributeName, [](const auto& one) -> std::string_view { return one.first; });
    return found == attributes.end() ? nullptr : &found->second;
}

Result<std::shared_ptr<const XmlElement>> Xml::decode(const Bytes& bytes) {
    pugi::xml_document document;
    const auto parsed = document.load_buffer(bytes.data(), bytes.size());
    if (!parsed) return dataError("not XML, at byte " + std::to_string(parsed.offset) + ": " + parsed.description());
    auto root = std::make_shared<XmlElement>();
    if (!fill(*root, document.document_element(), 1)) return dataError("XML nested deeper than " + std::to_string(kMaxDepth));
    return std::shared_ptr<const XmlElement>(std::move(root));
}

}  // namespace halvane::util
