#pragma once

#include "http/ResponseObject.h"
#include "platform/HttpMessage.h"
#include "platform/Reachability.h"
#include "util/Error.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <variant>
#include <vector>

namespace halvane::request {

// The numbers are fixed: callers store them. A number outside a list is possible and has its rule in XMEngine.

/// Kind of transport task.
enum XMRequestType : std::int64_t {
    XMRequestNormal = 0,   ///< request and reply in memory
    XMRequestUpload = 1,   ///< multipart form, streamed
    XMRequestDownload = 2  ///< reply into a file
};

enum XMHTTPMethod : std::int64_t {
    XMHTTPMethodGET = 0,
    XMHTTPMethodPOST = 1,
    XMHTTPMethodHEAD = 2,
    XMHTTPMethodDELETE = 3,
    XMHTTPMethodPUT = 4,
    XMHTTPMethodPATCH = 5
};

/// How `parameters` are encoded. With GET, HEAD and DELETE they always stand in the address, as a form.
enum XMRequestSerializerType : std::int64_t {
    XMRequestSerializerRAW = 0,   ///< form
    XMRequestSerializerJSON = 1,  ///< JSON
    XMRequestSerializerPlist = 2  ///< XML property list; null, far dates and control characters in it are errors
};

/// How the body of the reply is decoded. Replies of another status than 200-299 are failures whatever their body is.
enum XMResponseSerializerType : std::int64_t {
    XMResponseSerializerRAW = 0,    ///< not at all: the bytes, of any content type
    XMResponseSerializerJSON = 1,   ///< application/json, text/json, text/javascript; an empty body is an absent response
    XMResponseSerializerPlist = 2,  ///< application/x-plist; a binary one of at most 128 KiB
    XMResponseSerializerXML = 3     ///< application/xml, text/xml: a tree; an empty body is an absent response
};

using XMNetworkStatus = platform::ReachabilityStatus;

/// What a reply became. A download's is the file, a RAW reply's bytes.
using ResponseObject = http::ResponseObject;
using Response = std::optional<ResponseObject>;
/// Absent in a failure only where the error hook has cleared it. A refused reply's body is in the error.
using Failure = std::optional<util::Error>;

/// How a request, batch or chain ended.
enum class Outcome : std::uint8_t { Succeeded, Failed };

using XMSuccessBlock = std::function<void(const Response&)>;
using XMFailureBlock = std::function<void(const Failure&)>;
using XMFinishedBlock = std::function<void(const Response&, const Failure&)>;
using XMProgressBlock = std::function<void(const platform::HttpProgress&)>;

/// What a caller gives along with a request. Any of them may be absent; a response comes as success, then finished,
/// an error as failure, then finished.
struct XMCallbacks {
    XMProgressBlock onProgress;  ///< uploads and downloads only
    XMSuccessBlock onSuccess;
    XMFailureBlock onFailure;
    XMFinishedBlock onFinished;
};

/// One place of a batch or chain: nothing (it never ran, or produced neither), the response, or the error.
using XMResult = std::variant<std::monostate, ResponseObject, util::Error>;
using XMResults = std::vector<XMResult>;

using XMResultsBlock = std::function<void(const XMResults&)>;
using XMGroupFinishedBlock = std::function<void(const std::optional<XMResults>&, const std::optional<XMResults>&)>;

/// What a caller gives along with a batch or chain. Success and failure get all results, in order; finished gets them
/// first for a success, second for a failure.
struct XMGroupCallbacks {
    XMResultsBlock onSuccess;
    XMResultsBlock onFailure;
    XMGroupFinishedBlock onFinished;
};

}  // namespace halvane::request
