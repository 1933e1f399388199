#include "util/FileKind.h"

#include "util/Text.h"

#include <algorithm>
#include <initializer_list>

namespace halvane::util {

namespace {

bool isOneOf(std::string_view extension, std::initializer_list<std::string_view> kind) {
    return std::ranges::find(kind, extension) != kind.end();
}

/// Of the last component; a dot at its beginning makes a hidden file, not an extension, and trailing slashes do not count.
std::string_view extensionOf(std::string_view path) {
    while (path.ends_with('/')) path.remove_suffix(1);
    path.remove_prefix(path.rfind('/') + 1);
    const auto dot = path.rfind('.');
    return dot == std::string_view::npos || dot == 0 ? std::string_view() : path.substr(dot + 1);
}

}  // namespace

std::string FileKind::getFileTypeImgNameWithFilePath(std::string_view path) {
    const std::string extension = lowercasedAscii(extensionOf(path));
    if (fileIsInstallPkg(extension)) return "pkg";
    if (fileIsPackage(extension)) return "package";
    if (fileIsPicture(extension)) return "picture";
    if (fileIsVideo(extension)) return "video";
    if (fileIsVoice(extension)) return "voice";
    if (fileIsExcel(extension)) return "excel";
    if (fileIsPPT(extension)) return "ppt";
    if (fileIsWord(extension)) return "word";
    return "other";
}

bool FileKind::fileIsInstallPkg(std::string_view extension) { return isOneOf(extension, {"dmg", "exe", "apk", "ipa"}); }

bool FileKind::fileIsPackage(std::string_view extension) { return isOneOf(extension, {"rar", "zip", "gzip", "iso"}); }

bool FileKind::fileIsPicture(std::string_view extension) { return isOneOf(extension, {"png", "jpg", "gif", "bmp", "psd", "jpeg", "tiff"}); }

bool FileKind::fileIsVideo(std::string_view extension) {
    return isOneOf(extension, {"asf", "3gp", "divx", "avi", "m4v", "flv", "mpeg", "mpe", "mov", "mkv", "mpg", "mp4", "rmvb", "rm", "vob"});
}

bool FileKind::fileIsVoice(std::string_view extension) {
    return isOneOf(extension, {"aiff", "aac", "ape", "amr", "m4a", "flac", "midi", "mid", "mp3", "mod", "ogg", "mp3pro", "real", "ra",
                               "wav", "rma", "wma"});
}

bool FileKind::fileIsExcel(std::string_view extension) { return isOneOf(extension, {"xlsm", "xlsx", "xlsb", "xltm", "xls", "xlam"}); }

bool FileKind::fileIsPPT(std::string_view extension) { return isOneOf(extension, {"pptx", "ppt"}); }

bool FileKind::fileIsWord(std::string_view extension) { return isOneOf(extension, {"docx", "doc"}); }

}  // namespace halvane::util
