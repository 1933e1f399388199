#include "update/UpdateTexts.h"

#include "util/SizeText.h"
#include "util/UpdateError.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace halvane::update {

namespace {

using util::UpdateError;

constexpr const char* kLater = "稍后";
constexpr const char* kCancel = "取消";

std::string sizeOf(std::uint64_t bytes) { return util::SizeText::formatSize(static_cast<double>(bytes)); }

/// What is new stays before the person's eyes from the offer to the restart.
std::string notesOf(const UpdateItem& item) { return item.notes.empty() ? "此版本没有更新说明。" : item.notes; }

/// What each refusal says.
constexpr std::pair<UpdateError, const char*> kReasons[] = {
    {UpdateError::FeedUnreachable, "无法连接更新服务器，请检查网络后重试。"},
    {UpdateError::FeedUnreadable, "更新服务器返回的内容无法识别，请联系 IT 服务台。"},
    {UpdateError::FeedSignature, "更新信息的签名无效，已拒绝。请联系 IT 服务台。"},
    {UpdateError::FeedExpired, "更新信息已过期，已拒绝。请检查这台电脑的日期和时间，或联系 IT 服务台。"},
    {UpdateError::FeedOlder, "更新信息比之前收到的更旧，已拒绝。请联系 IT 服务台。"},
    {UpdateError::OtherScheme, "更新服务器转向了另一种协议的地址，已拒绝。请联系 IT 服务台。"},
    {UpdateError::PackageUnreachable, "更新下载失败，请检查网络后重试。"},
    {UpdateError::PackageLonger, "下载的更新比预期的长，已拒绝。请联系 IT 服务台。"},
    {UpdateError::PackageShorter, "下载的更新不完整，已拒绝。请重试。"},
    {UpdateError::CannotSave, "无法保存下载的更新，请检查磁盘空间后重试。"},
    {UpdateError::PackageSignature, "更新的签名无效，已拒绝，没有安装任何内容。请联系 IT 服务台。"},
    {UpdateError::OtherPackage, "下载的文件不是 Halvane 的安装包，已拒绝。请联系 IT 服务台。"},
    {UpdateError::OtherArchitecture, "更新不适用于这台电脑的处理器架构，已拒绝。"},
    {UpdateError::NotHigher, "更新的版本不高于已安装的版本，已拒绝。重新启动 Halvane 即可使用已安装的版本。"},
    {UpdateError::NoSpace, "系统磁盘空间不足，没有安装任何内容。请清理后重试。"},
    {UpdateError::CannotCopy, "无法保存安装包，没有安装任何内容。请联系 IT 服务台。"},
    {UpdateError::Busy, "系统正在安装其他软件，请稍后重试。"},
    {UpdateError::InstallationFailed, "系统未能安装更新，请联系 IT 服务台。"},
    {UpdateError::Interrupted, "安装被中断。Halvane 可以继续使用，请重试。"},
    {UpdateError::Dismissed, "没有获得管理员授权，没有安装任何内容。"},
    {UpdateError::NotAllowed, "没有获得管理员授权：系统不允许，或无法显示授权窗口。请联系 IT 服务台。"},
    {UpdateError::NoAuthority, "这台电脑上没有可用的管理员授权服务，请联系 IT 服务台。"},
};

}  // namespace

UpdateScene UpdateTexts::checking() { return {.heading = "正在检查更新…", .isBusy = true, .secondary = kCancel}; }

UpdateScene UpdateTexts::upToDate(const std::string& version) {
    return {.heading = "已经是最新版本",
            .text = fmt::format("Halvane {} 是目前的最新版本。", version),
            .mood = UpdateScene::Mood::Good,
            .primary = "确定"};
}

UpdateScene UpdateTexts::offer(const UpdateItem& item, const std::string& installed) {
    return {.heading = "发现新版本 V" + item.version,
            .text = fmt::format("当前版本 V{}，下载大小 {}。", installed, sizeOf(item.length)),
            .notes = notesOf(item),
            .primary = "下载更新",
            .secondary = kLater};
}

UpdateScene UpdateTexts::downloading(const UpdateItem& item, std::uint64_t received) {
    const auto done = std::min(received, item.length);
    return {.heading = "正在下载 V" + item.version,
            .text = fmt::format("{} / {}", sizeOf(done), sizeOf(item.length)),
            .notes = notesOf(item),
            .isBusy = true,
            .fraction = static_cast<double>(done) / static_cast<double>(item.length),
            .secondary = kCancel};
}

UpdateScene UpdateTexts::verifying(const UpdateItem& item) {
    return {.heading = "正在验证 V" + item.version,
            .text = "正在核对长度和公司的签名。",
            .notes = notesOf(item),
            .isBusy = true,
            .secondary = kCancel};
}

UpdateScene UpdateTexts::ready(const UpdateItem& item) {
    return {.heading = fmt::format("V{} 已准备好安装", item.version),
            .text = "下载的更新由公司签名。安装需要管理员授权，安装后重新启动 Halvane 即可使用。",
            .notes = notesOf(item),
            .mood = UpdateScene::Mood::Good,
            .primary = "安装",
            .secondary = kLater};
}

UpdateScene UpdateTexts::installing(const UpdateItem& item) {
    return {.heading = "正在安装 V" + item.version,
            .text = "如果系统询问，请在授权窗口中确认。安装期间可以继续使用 Halvane。",
            .notes = notesOf(item),
            .isBusy = true,
            .secondary = "隐藏"};
}

UpdateScene UpdateTexts::installed(const UpdateItem& item) {
    return {.heading = fmt::format("V{} 已安装", item.version),
            .text = "重新启动 Halvane 后使用新版本。",
            .notes = notesOf(item),
            .mood = UpdateScene::Mood::Good,
            .primary = "重新启动",
            .secondary = kLater};
}

UpdateScene UpdateTexts::failed(const util::Error& error) {
    return {.heading = "没有更新",
            .text = reason(error),
            .mood = UpdateScene::Mood::Bad,
            .primary = isInstalledAlready(error) ? "重新启动" : "重试",
            .secondary = "关闭"};
}

bool UpdateTexts::isInstalledAlready(const util::Error& error) {
    return error.domain == util::kUpdateErrorDomain && error.code == static_cast<int>(UpdateError::NotHigher);
}

std::string UpdateTexts::reason(const util::Error& error) {
    const auto* found = std::ranges::find(kReasons, static_cast<UpdateError>(error.code), &std::pair<UpdateError, const char*>::first);
    if (error.domain == util::kUpdateErrorDomain && found != std::end(kReasons)) return found->second;
    return "更新没有完成，请联系 IT 服务台。";
}

}  // namespace halvane::update
