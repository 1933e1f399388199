#pragma once

#include <filesystem>
#include <string>

namespace halvane::http {

/// The media type that a file's name stands for, by its extension in any case; "application/octet-stream" for others.
/// The same on every computer, whatever its desktop has been told about types.
std::string mediaTypeOf(const std::filesystem::path& file);

}  // namespace halvane::http
