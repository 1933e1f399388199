#pragma once

#include "util/Value.h"
#include "util/Xml.h"

#include <filesystem>
#include <memory>
#include <variant>

namespace halvane::http {

/// What a reply became: a value (decoded JSON or property list; bytes that were not decoded), the root of an XML
/// document, or the file that it was downloaded to. A plain value; XML is shared, so that copies are cheap.
class ResponseObject {
public:
    ResponseObject(util::Value value) : object_(std::move(value)) {}
    ResponseObject(std::shared_ptr<const util::XmlElement> root) : object_(std::move(root)) {}
    ResponseObject(std::filesystem::path file) : object_(std::move(file)) {}

    // Each is null when the object is of another kind. Valid until the object changes.
    [[nodiscard]] const util::Value* value() const { return std::get_if<util::Value>(&object_); }
    [[nodiscard]] const util::Bytes* bytes() const { return value() == nullptr ? nullptr : value()->data(); }
    [[nodiscard]] const util::XmlElement* xml() const {
        const auto* root = std::get_if<std::shared_ptr<const util::XmlElement>>(&object_);
        return root == nullptr ? nullptr : root->get();
    }
    [[nodiscard]] const std::filesystem::path* file() const { return std::get_if<std::filesystem::path>(&object_); }

private:
    std::variant<util::Value, std::shared_ptr<const util::XmlElement>, std::filesystem::path> object_;
};

}  // namespace halvane::http
