#include "server/api/PagesApi.h"

#include "server/api/Envelope.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace halvane::server {

namespace {

constexpr std::string_view kSuffix = ".svg";
constexpr std::size_t kMostDigits = 18;

}  // namespace

ApiReply PagesApi::passwordPage() {
    return {.status = 200,
            .contentType = "text/html; charset=utf-8",
            .body = R"(<!doctype html>
<html lang="zh-CN">
<meta charset="utf-8">
<meta name="viewport" content="width=device-width">
<title>修改密码</title>
<style>body { font: 16px/1.7 sans-serif; color: #222; max-width: 32em; margin: 4em auto; padding: 0 1em }</style>
<h1>修改密码</h1>
<p>请联系公司信息技术部重置密码，并说明您的用户名和工号。</p>
<p>出于安全考虑，信息技术部不会向您询问现有密码。</p>
</html>
)",
            .headers = {}};
}

ApiReply PagesApi::avatar(const ApiRequest& request) {
    constexpr std::array kColours = {"#c2571a", "#2f6f9f", "#4b7f3a", "#7a4f9a", "#a23b4c", "#3f7f7a", "#8a6d1f"};
    std::string_view number = std::string_view(request.path).substr(std::string_view(kAvatarPath).size());
    if (!number.ends_with(kSuffix)) return Envelope::failed(404, "no such file");
    number.remove_suffix(kSuffix.size());
    if (number.empty() || number.size() > kMostDigits ||
        !std::all_of(number.begin(), number.end(), [](char c) { return c >= '0' && c <= '9'; })) {
        return Envelope::failed(404, "no such file");
    }
    const auto colour = kColours[std::stoull(std::string(number)) % kColours.size()];
    return {.status = 200,
            .contentType = "image/svg+xml",
            .body = fmt::format(R"(<svg xmlns="http://www.w3.org/2000/svg" width="96" height="96" viewBox="0 0 96 96">
<rect width="96" height="96" rx="48" fill="{}"/>
<circle cx="48" cy="37" r="17" fill="#fff"/>
<path d="M16 83a32 26 0 0 1 64 0a46 46 0 0 1-64 0z" fill="#fff"/>
</svg>
)",
                                colour),
            .headers = {}};
}

}  // namespace halvane::server
