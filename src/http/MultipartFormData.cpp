#include "http/MultipartFormData.h"

#include "http/ChainedBody.h"
#include "http/MediaTypes.h"

#include <fmt/format.h>

#include <random>
#include <utility>

namespace halvane::http {

namespace {

std::string randomBoundary() {
    std::random_device random;
    return fmt::format("Boundary+{:08X}{:08X}{:08X}", random(), random(), random());
}

/// As browsers write names: a quote or a line break would end the field.
std::string quoted(const std::string& name) {
    std::string result = "\"";
    for (const char c : name) {
        switch (c) {
            case '"':
                result += "%22";
                break;
            case '\r':
                result += "%0D";
                break;
            case '\n':
                result += "%0A";
                break;
            default:
                result += c;
        }
    }
    return result + "\"";
}

std::string withoutLineBreaks(std::string text) {
    std::erase_if(text, [](char c) { return c == '\r' || c == '\n'; });
    return text;
}

std::string fileDisposition(const std::string& name, const std::string& fileName) {
    return "form-data; name=" + quoted(name) + "; filename=" + quoted(fileName);
}

}  // namespace

MultipartFormData::MultipartFormData(FileBodies files) : files_(std::move(files)), boundary_(randomBoundary()) {}

void MultipartFormData::append(const std::string& disposition, const std::string& mimeType, Piece content) {
    std::string head = (pieces_.empty() ? "--" : "\r\n--") + boundary_ + "\r\nContent-Disposition: " + disposition + "\r\n";
    if (!mimeType.empty()) head += "Content-Type: " + withoutLineBreaks(mimeType) + "\r\n";
    pieces_.emplace_back(std::make_shared<const util::Bytes>(head + "\r\n"));
    pieces_.push_back(std::move(content));
}

void MultipartFormData::appendPartWithFileData(Bytes data, const std::string& name, const std::string& fileName,
                                               const std::string& mimeType) {
    append(fileDisposition(name, fileName), mimeType, std::move(data));
}

void MultipartFormData::appendPartWithFormData(Bytes data, const std::string& name) {
    append("form-data; name=" + quoted(name), "", std::move(data));
}

void MultipartFormData::appendPartWithFormData(util::Bytes data, const std::string& name) {
    appendPartWithFormData(std::make_shared<const util::Bytes>(std::move(data)), name);
}

util::Result<void> MultipartFormData::appendPartWithFileURL(const std::filesystem::path& file, const std::string& name,
                                                            const std::string& fileName, const std::string& mimeType) {
    auto body = files_(file);
    if (!body) return body.error();
    append(fileDisposition(name, fileName), mimeType, *std::move(body));
    return {};
}

util::Result<void> MultipartFormData::appendPartWithFileURL(const std::filesystem::path& file, const std::string& name) {
    return appendPartWithFileURL(file, name, file.filename().string(), mediaTypeOf(file));
}

std::string MultipartFormData::contentType() const { return "multipart/form-data; boundary=" + boundary_; }

std::shared_ptr<platform::HttpBodyStream> MultipartFormData::finish() && {
    auto body = std::make_shared<ChainedBody>();
    for (Piece& piece : pieces_) std::visit([&body](auto& content) { body->append(std::move(content)); }, piece);
    body->append(std::make_shared<const util::Bytes>("\r\n--" + boundary_ + "--\r\n"));
    pieces_.clear();
    return body;
}

}  // namespace halvane::http
