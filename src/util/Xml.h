#pragma once

#include "util/Bytes.h"
#include "util/Result.h"

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace halvane::util {

/// One element of an XML document with everything in it. A plain value.
struct XmlElement {
    std::string name;  ///< as written, with its prefix
    std::vector<std::pair<std::string, std::string>> attributes;
    std::string text;  ///< its own text and CDATA, in one piece, without white space at the ends
    std::vector<XmlElement> children;

    /// The first child of that name, or null. Valid until the element changes.
    [[nodiscard]] const XmlElement* child(std::string_view childName) const;
    /// The attribute's value, or null.
    [[nodiscard]] const std::string* attribute(std::string_view attributeName) const;
};

/// XML documents. The door to the XML library. Any thread.
struct Xml {
    /// The root element. Entities other than XML's own five and character references stay as they are written; a
    /// document type is read over, nothing outside is ever fetched. Errors: not well-formed, no root element, nested
    /// deeper than 512.
    static Result<std::shared_ptr<const XmlElement>> decode(const Bytes& bytes);
};

}  // namespace halvane::util
