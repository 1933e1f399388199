#include "http/MediaTypes.h"

#include "util/Text.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace halvane::http {

namespace {

// In the order of the extensions, for the search.
constexpr auto kTypes = std::to_array<std::pair<std::string_view, std::string_view>>({
    {".7z", "application/x-7z-compressed"},
    {".avi", "video/x-msvideo"},
    {".bmp", "image/bmp"},
    {".bz2", "application/x-bzip2"},
    {".cer", "application/pkix-cert"},
    {".css", "text/css"},
    {".csv", "text/csv"},
    {".deb", "application/vnd.debian.binary-package"},
    {".doc", "application/msword"},
    {".docx", "application/vnd.openxmlformats-officedocument.wordprocessingml.document"},
    {".eml", "message/rfc822"},
    {".flac", "audio/flac"},
    {".gif", "image/gif"},
    {".gz", "application/gzip"},
    {".heic", "image/heic"},
    {".htm", "text/html"},
    {".html", "text/html"},
    {".ico", "image/vnd.microsoft.icon"},
    {".ics", "text/calendar"},
    {".jar", "application/java-archive"},
    {".jpeg", "image/jpeg"},
    {".jpg", "image/jpeg"},
    {".js", "text/javascript"},
    {".json", "application/json"},
    {".log", "text/plain"},
    {".m4a", "audio/mp4"},
    {".md", "text/markdown"},
    {".mov", "video/quicktime"},
    {".mp3", "audio/mpeg"},
    {".mp4", "video/mp4"},
    {".odp", "application/vnd.oasis.opendocument.presentation"},
    {".ods", "application/vnd.oasis.opendocument.spreadsheet"},
    {".odt", "application/vnd.oasis.opendocument.text"},
    {".ogg", "audio/ogg"},
    {".p12", "application/x-pkcs12"},
    {".pdf", "application/pdf"},
    {".pem", "application/x-pem-file"},
    {".pfx", "application/x-pkcs12"},
    {".plist", "application/x-plist"},
    {".png", "image/png"},
    {".ppt", "application/vnd.ms-powerpoint"},
    {".pptx", "application/vnd.openxmlformats-officedocument.presentationml.presentation"},
    {".rtf", "application/rtf"},
    {".svg", "image/svg+xml"},
    {".tar", "application/x-tar"},
    {".tif", "image/tiff"},
    {".tiff", "image/tiff"},
    {".txt", "text/plain"},
    {".wav", "audio/x-wav"},
    {".webm", "video/webm"},
    {".webp", "image/webp"},
    {".xls", "application/vnd.ms-excel"},
    {".xlsx", "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet"},
    {".xml", "application/xml"},
    {".xz", "application/x-xz"},
    {".yaml", "application/yaml"},
    {".zip", "application/zip"},
});
static_assert(std::ranges::is_sorted(kTypes));

}  // namespace

std::string mediaTypeOf(const std::filesystem::path& file) {
    const std::string extension = util::lowercasedAscii(file.extension().string());
    const auto found = std::ranges::lower_bound(kTypes, extension, {}, &std::pair<std::string_view, std::string_view>::first);
    return std::string(found != kTypes.end() && found->first == extension ? found->second : "application/octet-stream");
}

}  // namespace halvane::http
