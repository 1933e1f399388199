#pragma once

#include "platform/HttpMessage.h"
#include "util/Result.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace halvane::http {

/// The body of a form with files, put together part by part (RFC 7578). What lies in files stays there until it is
/// sent; what lies in memory is shared, not copied. One thread.
class MultipartFormData {
public:
    using Bytes = std::shared_ptr<const util::Bytes>;
    /// Makes a body out of a file, or says why it cannot be read.
    using FileBodies = std::function<util::Result<std::shared_ptr<platform::HttpBodyStream>>(const std::filesystem::path&)>;

    explicit MultipartFormData(FileBodies files);

    void appendPartWithFileData(Bytes data, const std::string& name, const std::string& fileName, const std::string& mimeType);
    void appendPartWithFormData(Bytes data, const std::string& name);
    void appendPartWithFormData(util::Bytes data, const std::string& name);
    /// Errors: the file is not there, not a file, or may not be read; then nothing is appended.
    util::Result<void> appendPartWithFileURL(const std::filesystem::path& file, const std::string& name, const std::string& fileName,
                                             const std::string& mimeType);
    /// File name and type are those of the file.
    util::Result<void> appendPartWithFileURL(const std::filesystem::path& file, const std::string& name);

    [[nodiscard]] bool empty() const { return pieces_.empty(); }
    /// "multipart/form-data" with the boundary.
    [[nodiscard]] std::string contentType() const;
    /// The whole body; its length is known.
    [[nodiscard]] std::shared_ptr<platform::HttpBodyStream> finish() &&;

private:
    using Piece = std::variant<Bytes, std::shared_ptr<platform::HttpBodyStream>>;

    void append(const std::string& disposition, const std::string& mimeType, Piece content);

    FileBodies files_;
    std::string boundary_;
    std::vector<Piece> pieces_;
};

}  // namespace halvane::http
