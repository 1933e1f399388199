#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace halvane::util {

/// Small text operations that the standard library lacks. All on UTF-8 bytes; any thread.

/// Every occurrence of `from` replaced by `to`, left to right; an empty `from` replaces nothing.
std::string replaced(std::string_view text, std::string_view from, std::string_view to);
/// Every "\n" removed.
std::string withoutLineFeeds(std::string_view text);
std::string lowercasedAscii(std::string_view text);
/// The pieces between separators; an empty text is one empty piece.
std::vector<std::string> split(std::string_view text, char separator);
std::string trimmed(std::string_view text);
bool isValidUtf8(std::string_view bytes);
/// ASCII control characters, line feeds among them.
bool hasControls(std::string_view text);
/// Each of them replaced by "?": what comes from elsewhere, on a line of its own.
std::string withoutControls(std::string text);
/// Letters, digits, hyphens and dots, at most 253 of them. Nothing that would be a separator somewhere.
bool isHostName(std::string_view name);
/// Escapes what may not stand in a URL: controls, space, ``"#%<>[\]^`{|}`` and all bytes above 127.
/// An existing "%" is escaped too.
std::string addingPercentEscapes(std::string_view text);
/// Escapes all but what RFC 3986 leaves unreserved, "/" and "?": a name or a value in a query or a form.
std::string percentEscapedComponent(std::string_view text);
/// The decimal number ("-1.5e3") that a text begins with after white space, and what follows it; absent when there is none.
/// One that is too large is infinite, one that is too small is 0. Neither locale nor "inf", "nan" and "0x" count.
struct LeadingNumber {
    double number;
    std::string_view rest;
};
std::optional<LeadingNumber> leadingNumber(std::string_view text);
/// "%41" becomes "A"; what is no escape stays.
std::string percentDecoded(std::string_view text);
/// The last component of what may be a path, or empty where that would not name a file.
std::string fileNameOf(std::string text);

}  // namespace halvane::util
