#include "util/Error.h"

#include <system_error>
#include <utility>

namespace halvane::util {

Error urlError(UrlError code, std::string description) { return {kUrlErrorDomain, static_cast<int>(code), std::move(description)}; }

Error fileError(int errnoValue, const std::string& subject) {
    return {kFileErrorDomain, errnoValue, subject + ": " + std::generic_category().message(errnoValue)};
}

Error dataError(std::string description) { return {kDataErrorDomain, 1, std::move(description)}; }

Error serviceError(std::string description) { return {kServiceErrorDomain, 1, std::move(description)}; }

}  // namespace halvane::util
