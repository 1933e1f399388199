#include "server/api/UpdateApi.h"

#include "server/Company.h"
#include "server/api/Envelope.h"
#include "server/updates/UpdateFeed.h"

#include <string_view>

namespace halvane::server {

ApiReply UpdateApi::feed() {
    auto packages = company_.packages.all();
    std::erase_if(packages, [this](const Package& package) { return !company_.packages.isOffered(package); });
    return {.status = 200,
            .contentType = "application/xml; charset=utf-8",
            .body = UpdateFeed(company_.updateKey(), filesUrl_).text(packages, company_.clock()),
            .headers = {}};
}

ApiReply UpdateApi::download(const ApiRequest& request) {
    auto bytes = company_.packages.read(std::string_view(request.path).substr(std::string_view(kFilesPath).size()));
    if (!bytes) return Envelope::failed(404, "no such file");
    return {.status = 200, .contentType = "application/vnd.debian.binary-package", .body = std::move(*bytes), .headers = {}};
}

}  // namespace halvane::server
