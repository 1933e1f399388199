#include "tools/HVMobileConfigTool.h"

#include "device/HVDeviceInfoHelper.h"
#include "platform/Directories.h"
#include "platform/FileStore.h"
#include "platform/ProcessLauncher.h"
#include "util/Json.h"
#include "util/Log.h"
#include "util/PropertyList.h"
#include "util/Redaction.h"
#include "util/Value.h"

#include <fmt/format.h>

#include <filesystem>
#include <utility>

namespace halvane::tools {

namespace {

constexpr const char* kProfiles = "/usr/bin/profiles";
constexpr const char* kCompanyNetwork = "test_dot1x";
constexpr const char* kProfileDirectory = "XMMBConfWeb";
constexpr const char* kDefaultCertificatePassword = "tarnelk.quopse";
constexpr const char* kPayloadContent = "PayloadContent";

bool isGiven(const std::optional<std::string>& text) { return text && !text->empty(); }

/// The first payload of a profile, or null where it has none that can be filled.
util::Dictionary* firstPayload(util::Value& profile) {
    util::Dictionary* top = profile.dictionary();
    util::Value* content = top == nullptr ? nullptr : top->find(kPayloadContent);
    util::Value::List* payloads = content == nullptr ? nullptr : content->list();
    return payloads == nullptr || payloads->empty() ? nullptr : payloads->front().dictionary();
}

}  // namespace

HVMobileConfigTool::HVMobileConfigTool(Collaborators collaborators) : collaborators_(collaborators) {}

std::string HVMobileConfigTool::configFilePathWithTemplateFilePath(const std::string& templateName,
                                                                   const std::optional<std::string>& certificateFileName,
                                                                   const std::optional<std::string>& password,
                                                                   const util::Bytes& certificateData) const {
    const auto bytes = collaborators_.files.read(collaborators_.directories.resources() / templateName);
    if (!bytes) return "";
    auto profile = util::PropertyList::decode(*bytes);
    if (!profile || profile->dictionary() == nullptr) return "";
    collaborators_.log.write("fileDict:" + util::Json::encode(util::redacted(*profile)));

    util::Dictionary* payload = firstPayload(*profile);
    if (payload == nullptr) return "";
    payload->set("Password", isGiven(password) ? *password : std::string(kDefaultCertificatePassword));
    if (isGiven(certificateFileName)) {
        payload->set("PayloadCertificateFileName", *certificateFileName);
        payload->set("PayloadDisplayName", *certificateFileName);
    }
    payload->set(kPayloadContent, util::Value::Data{certificateData});

    const std::filesystem::path identifier(util::textOf(payload->find("PayloadIdentifier")).value_or(""));
    if (identifier.empty() || identifier != identifier.filename() || identifier == "." || identifier == "..") return "";
    const auto directory = collaborators_.directories.temporary() / kProfileDirectory;
    (void)collaborators_.files.makeDirectory(directory);
    const auto path = directory / (identifier.string() + ".mobileconfig");
    if (!collaborators_.files.write(path, util::PropertyList::encode(*profile))) return "";
    collaborators_.log.write("saveFile:" + util::PropertyList::encode(util::redacted(*profile)));
    return path.string();
}

void HVMobileConfigTool::installMobileConfigFileWithFilePath(const std::string& path) const {
    const auto launched = collaborators_.launcher.launch(
        {.launchPath = kProfiles, .arguments = {"install", "-path", path}},
        [device = collaborators_.device](int /*exitStatus*/) { device.switchToNewWifiName(kCompanyNetwork); });
    if (!launched) collaborators_.log.write(launched.error().description);
}

void HVMobileConfigTool::removeMobileConfigFileWithName(const std::string& path) const {
    const auto task = STPrivilegedTask::initWithLaunchPath(collaborators_.administrator,
                                                           {.launchPath = kProfiles, .arguments = {"remove", "-path", path}});
    const platform::OSStatus status = task->launch();
    if (status == platform::kAuthorizationCanceled) {
        collaborators_.log.write("User cancelled");
        return;
    }
    if (status != platform::kAuthorizationSuccess) collaborators_.log.write(fmt::format("Something went wrong: {}", status));
    task->waitUntilExit();
}

}  // namespace halvane::tools
