#include "server/api/Envelope.h"

#include "util/Json.h"

namespace halvane::server {

namespace {

ApiReply reply(int status, int code, const std::string& msg, util::Dictionary data) {
    const util::Value envelope = util::Dictionary{{"code", code}, {"msg", msg}, {"data", std::move(data)}};
    return {.status = status, .contentType = "application/json; charset=utf-8", .body = util::Json::encode(envelope), .headers = {}};
}

}  // namespace

ApiReply Envelope::succeeded(const std::string& msg, util::Dictionary data) {
    return reply(200, static_cast<int>(ReplyCode::Ok), msg, std::move(data));
}

ApiReply Envelope::refused(ReplyCode code, const std::string& msg) { return reply(200, static_cast<int>(code), msg, {}); }

ApiReply Envelope::signedOut() { return refused(ReplyCode::SignedOut, "登录已过期，请重新登录"); }

ApiReply Envelope::notAllowed() { return refused(ReplyCode::NotAllowed, "没有权限执行此操作"); }

ApiReply Envelope::failed(int status, const std::string& reason) { return reply(status, status, reason, {}); }

}  // namespace halvane::server
