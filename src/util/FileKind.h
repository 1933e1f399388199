#pragma once

#include <string>
#include <string_view>

namespace halvane::util {

/// What kind of file it is, by its extension. Any thread.
struct FileKind {
    /// The name of its picture: "pkg", "package", "picture", "video", "voice", "excel", "ppt", "word" or "other". The
    /// extension counts in whatever case it is written.
    static std::string getFileTypeImgNameWithFilePath(std::string_view path);

    // Whether an extension, without its dot and in lower case, is one of that kind.
    /// What installs something: "dmg", "exe" and the like, but not "pkg".
    static bool fileIsInstallPkg(std::string_view extension);
    /// "rar", "zip" and the like, but neither "gz", "tar" nor "7z".
    static bool fileIsPackage(std::string_view extension);
    static bool fileIsPicture(std::string_view extension);
    static bool fileIsVideo(std::string_view extension);
    static bool fileIsVoice(std::string_view extension);
    static bool fileIsExcel(std::string_view extension);
    static bool fileIsPPT(std::string_view extension);
    static bool fileIsWord(std::string_view extension);
};

}  // namespace halvane::util
