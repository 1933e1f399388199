#pragma once

#include "util/Bytes.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace halvane::request {

/// One part of an upload: bytes, or a file that is read while it is sent. `fileName` and `mimeType` count only
/// together: bytes with both are a file to the server, without them a form field; a file without them goes under its own
/// name and the type that this stands for. A part with neither bytes nor file is left out. A plain value; copies share
/// the bytes.
struct XMUploadFormData {
    std::string name;
    std::optional<std::string> fileName;
    std::optional<std::string> mimeType;
    std::shared_ptr<const util::Bytes> fileData;
    std::optional<std::filesystem::path> fileURL;

    static XMUploadFormData formDataWithName(std::string name, util::Bytes fileData) {
        return {.name = std::move(name), .fileData = std::make_shared<const util::Bytes>(std::move(fileData))};
    }
    static XMUploadFormData formDataWithName(std::string name, std::string fileName, std::string mimeType, util::Bytes fileData) {
        return {.name = std::move(name),
                .fileName = std::move(fileName),
                .mimeType = std::move(mimeType),
                .fileData = std::make_shared<const util::Bytes>(std::move(fileData))};
    }
    static XMUploadFormData formDataWithName(std::string name, std::filesystem::path fileURL) {
        return {.name = std::move(name), .fileURL = std::move(fileURL)};
    }
    static XMUploadFormData formDataWithName(std::string name, std::string fileName, std::string mimeType, std::filesystem::path fileURL) {
        return {.name = std::move(name), .fileName = std::move(fileName), .mimeType = std::move(mimeType), .fileURL = std::move(fileURL)};
    }
};

}  // namespace halvane::request
