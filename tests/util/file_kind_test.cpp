#include "util/FileKind.h"

#include "util/FileName.h"

#include <gtest/gtest.h>

#include <vector>

namespace halvane::util {
namespace {

using Test = bool (*)(std::string_view);

const std::tuple<const char*, Test, std::vector<std::string>> kKinds[] = {
    {"pkg", FileKind::fileIsInstallPkg, {"dmg", "exe", "apk", "ipa"}},
    {"package", FileKind::fileIsPackage, {"rar", "zip", "gzip", "iso"}},
    {"picture", FileKind::fileIsPicture, {"png", "jpg", "gif", "bmp", "psd", "jpeg", "tiff"}},
    {"video",
     FileKind::fileIsVideo,
     {"asf", "3gp", "divx", "avi", "m4v", "flv", "mpeg", "mpe", "mov", "mkv", "mpg", "mp4", "rmvb", "rm", "vob"}},
    {"voice",
     FileKind::fileIsVoice,
     {"aiff", "aac", "ape", "amr", "m4a", "flac", "midi", "mid", "mp3", "mod", "ogg", "mp3pro", "real", "ra", "wav", "rma", "wma"}},
    {"excel", FileKind::fileIsExcel, {"xlsm", "xlsx", "xlsb", "xltm", "xls", "xlam"}},
    {"ppt", FileKind::fileIsPPT, {"pptx", "ppt"}},
    {"word", FileKind::fileIsWord, {"docx", "doc"}},
};

TEST(FileKind, each_extension_is_of_one_kind) {
    for (const auto& [kind, own, extensions] : kKinds) {
        for (std::string extension : extensions) {
            EXPECT_EQ(FileKind::getFileTypeImgNameWithFilePath("/a.b/c." + extension), kind);
            for (const auto& [other, test, ignored] : kKinds) EXPECT_EQ(test(extension), test == own) << extension << ", " << other;
            extension.front() = static_cast<char>(std::toupper(extension.front()));
            EXPECT_EQ(own(extension), extension == "3gp") << extension << " is compared as it is";
            EXPECT_EQ(FileKind::getFileTypeImgNameWithFilePath(extension + "." + extension), kind) << "in any case";
        }
    }
}

TEST(FileKind, what_is_in_no_list_is_other) {
    const std::pair<const char*, std::string> rows[] = {
        {"installer of the other kind", "a.pkg"},
        {"compressed", "a.gz"},
        {"archive", "a.tar"},
        {"archive", "a.7z"},
        {"two", "a.zip.gz"},
        {"none", "readme"},
        {"only in the folder", "/a.zip/readme"},
        {"hidden", ".zip"},
        {"hidden in a folder", "/home/.png"},
        {"empty", "a."},
        {"empty path", ""},
        {"root", "/"},
        {"beginning of one", "a.doc2"},
        {"with a space", "a.doc "},
        {"dots", ".."},
        {"broken bytes", "a.\xFF"},
        {"NUL", std::string("a.doc\0", 6)},
    };
    for (const auto& [name, path] : rows) EXPECT_EQ(FileKind::getFileTypeImgNameWithFilePath(path), "other") << name;
}

TEST(FileKind, the_last_component_decides) {
    const std::pair<const char*, const char*> rows[] = {
        {"photo.JPG", "picture"},   {"a.zip.png", "picture"},    {"/a/b.DocX", "word"},     {".hidden.mp3", "voice"},
        {"folder.zip/", "package"}, {"folder.zip//", "package"}, {"文件.表.XLSX", "excel"},
    };
    for (const auto& [path, kind] : rows) EXPECT_EQ(FileKind::getFileTypeImgNameWithFilePath(path), kind) << path;
}

TEST(FileName, a_name_is_refused_for_a_character_or_a_dot_at_an_end) {
    const std::pair<std::string, bool> rows[] = {
        {"", true},     {"report", true},     {"a.b", true},
        {"a..b", true}, {"say \"hi\"", true}, {"报告 2026", true},
        {"a'b", true},  {"a\nb", true},       {std::string("a\0b", 3), true},
        {"‘a’", true},  {"a？", true},        {"\xE2\x80", true},
        {" .a", true},  {".hidden", false},   {"a.", false},
        {".", false},   {"..", false},        {"a\\b", false},
        {"a/b", false}, {"a:b", false},       {"*", false},
        {"a?", false},  {"“a", false},        {"a”", false},
        {"<a", false},  {"a>", false},        {"a|b", false},
    };
    for (const auto& [name, valid] : rows) EXPECT_EQ(FileName::validFileName(name), valid) << name;
}

}  // namespace
}  // namespace halvane::util
