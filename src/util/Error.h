#pragma once

#include <optional>
#include <string>

namespace halvane::util {

/// Codes of the "halvane.url" domain: what a transfer can end with. Callers compare them; the
/// numbers are those the company's support staff know from its other desktop platform.
enum class UrlError : int {
    Unknown = -1,
    Cancelled = -999,             ///< the caller, or the end of its session, cancelled the transfer
    BadUrl = -1000,               ///< the address does not parse, or its scheme is not http(s)
    TimedOut = -1001,             ///< no byte moved for the request's idle time
    CannotFindHost = -1003,       ///< the name does not resolve
    CannotConnect = -1004,        ///< refused, or no route to the host
    ConnectionLost = -1005,       ///< closed after it had been established, before the reply was whole
    NotConnected = -1009,         ///< this computer has no network
    RedirectRefused = -1010,      ///< the server redirected to another scheme, which the caller forbade
    BadServerResponse = -1011,    ///< not HTTP, or a status outside 200-299
    CannotDecode = -1016,         ///< a body of another content type, or one that does not decode
    TooLarge = -1103,             ///< the body is longer than the caller allows
    CannotWriteFile = -3003,      ///< a download could not be written to its destination
    SecureConnection = -1200,     ///< the TLS handshake failed
    UntrustedCertificate = -1202  ///< the server's certificate is not trusted for this host
};

/// An expected failure, as a value. `domain` names the list that `code` belongs to.
struct Error {
    std::string domain;
    int code = 0;
    std::string description;          ///< for the log and for support; English, one sentence, no secret in it
    std::optional<std::string> body;  ///< what a server sent that was refused; may hold secrets, so no log line prints it

    friend bool operator==(const Error&, const Error&) = default;
};

inline constexpr const char* kUrlErrorDomain = "halvane.url";          ///< codes: UrlError
inline constexpr const char* kFileErrorDomain = "halvane.file";        ///< codes: errno
inline constexpr const char* kDataErrorDomain = "halvane.data";        ///< unreadable JSON, property lists, archives
inline constexpr const char* kServiceErrorDomain = "halvane.service";  ///< a service of the desktop refused or is absent

Error urlError(UrlError code, std::string description);
/// `subject` is what could not be done, such as "open /a/b"; the text of `errnoValue` follows it.
Error fileError(int errnoValue, const std::string& subject);
Error dataError(std::string description);
Error serviceError(std::string description);

}  // namespace halvane::util
