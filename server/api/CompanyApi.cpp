#include "server/api/CompanyApi.h"

#include "server/Company.h"
#include "server/api/Envelope.h"
#include "server/api/PagesApi.h"
#include "util/Text.h"

#include <algorithm>
#include <iostream>

namespace halvane::server {

CompanyApi::CompanyApi(Company& company, const std::string& baseUrl)
    : authenticator_(company),
      signIn_(company, authenticator_, baseUrl),
      workplaces_(company, authenticator_),
      certificates_(company, authenticator_, baseUrl),
      equipment_(company, authenticator_),
      updates_(company, baseUrl),
      routes_{
          {"POST", "/api/client/login", Match::WholePath, [this](const auto& request) { return signIn_.login(request); }},
          {"GET", WorkplaceApi::kAddressPath, Match::Beginning, [this](const auto& request) { return workplaces_.choose(request); }},
          {"GET", "/api/client/chat/contact_list", Match::WholePath, [this](const auto& request) { return workplaces_.list(request); }},
          {"POST", "/papi/admin/create_ad_cert", Match::WholePath, [this](const auto& request) { return certificates_.create(request); }},
          {"GET", CertificateApi::kDownloadPath, Match::Beginning, [this](const auto& request) { return certificates_.download(request); }},
          {"POST", "/api/client/user/equipment_status", Match::WholePath,
           [this](const auto& request) { return equipment_.status(request); }},
          {"POST", "/api/client/user/equipment/uninstall_apply", Match::WholePath,
           [this](const auto& request) { return equipment_.applyForUninstall(request); }},
          {"POST", "/api/client/user/equipment/uninstall_sure", Match::WholePath,
           [this](const auto& request) { return equipment_.confirmUninstall(request); }},
          {"GET", "/updatepwd/index", Match::WholePath, [](const auto&) { return PagesApi::passwordPage(); }},
          {"GET", PagesApi::kAvatarPath, Match::Beginning, [](const auto& request) { return PagesApi::avatar(request); }},
          // Before the files, whose path its own begins with.
          {"GET", UpdateApi::kFeedPath, Match::WholePath, [this](const auto&) { return updates_.feed(); }},
          {"GET", UpdateApi::kFilesPath, Match::Beginning, [this](const auto& request) { return updates_.download(request); }},
      } {}

ApiReply CompanyApi::handle(const ApiRequest& request) {
    try {
        return dispatch(request);
    } catch (const std::exception& problem) {
        std::cerr << "halvane-server: " << pathForLog(request.path) << ": " << problem.what() << std::endl;
        return Envelope::failed(500, "服务器内部错误");
    }
}

ApiReply CompanyApi::dispatch(const ApiRequest& request) {
    const auto route = std::find_if(routes_.begin(), routes_.end(), [&request](const Route& candidate) {
        return candidate.match == Match::WholePath ? request.path == candidate.path : request.path.starts_with(candidate.path);
    });
    if (route == routes_.end()) return Envelope::failed(404, "no such operation");
    if (request.method != route->method) {
        ApiReply reply = Envelope::failed(405, "this operation takes " + std::string(route->method));
        reply.headers.emplace_back("Allow", route->method);
        return reply;
    }
    const bool clean = std::all_of(request.query.begin(), request.query.end(), [](const auto& entry) {
        return util::isValidUtf8(entry.second) && entry.second.find('\0') == std::string::npos;
    });
    if (!clean) return Envelope::malformed("the query is not UTF-8 text");
    return route->operation(request);
}

std::string CompanyApi::pathForLog(const std::string& path) {
    constexpr std::size_t kLongest = 200;
    constexpr std::string_view kDownload = CertificateApi::kDownloadPath;
    std::string shown = path.substr(0, kLongest);
    if (path.starts_with(kDownload)) {
        const auto end = path.find('/', kDownload.size());
        shown = std::string(kDownload) + "<redacted>" + (end == std::string::npos ? "" : path.substr(end, kLongest));
    }
    // Spaces and control characters would forge columns and lines; our paths are ASCII.
    std::replace_if(
        shown.begin(), shown.end(), [](char c) { return c <= ' ' || c >= '\x7f'; }, '?');
    return shown;
}

}  // namespace halvane::server
