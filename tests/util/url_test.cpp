#include "util/Url.h"

#include <gtest/gtest.h>

namespace halvane::util {
namespace {

TEST(Url, references_resolve_as_the_standard_lists_them) {
    struct Row {
        const char* reference;
        const char* expected;
    };
    // RFC 3986, 5.4, less those that lead out of http and those whose meaning is the same without its fragment.
    const Row rows[] = {
        {"g", "http://a/b/c/g"},
        {"./g", "http://a/b/c/g"},
        {"g/", "http://a/b/c/g/"},
        {"/g", "http://a/g"},
        {"//g", "http://g/"},
        {"?y", "http://a/b/c/d;p?y"},
        {"g?y", "http://a/b/c/g?y"},
        {"#s", "http://a/b/c/d;p?q#s"},
        {"g#s", "http://a/b/c/g#s"},
        {";x", "http://a/b/c/;x"},
        {"g;x?y#s", "http://a/b/c/g;x?y#s"},
        {"", "http://a/b/c/d;p?q"},
        {".", "http://a/b/c/"},
        {"..", "http://a/b/"},
        {"../g", "http://a/b/g"},
        {"../..", "http://a/"},
        {"../../g", "http://a/g"},
        {"../../../g", "http://a/g"},
        {"/./g", "http://a/g"},
        {"/../g", "http://a/g"},
        {"g.", "http://a/b/c/g."},
        {"..g", "http://a/b/c/..g"},
        {"./../g", "http://a/b/g"},
        {"./g/.", "http://a/b/c/g/"},
        {"g/./h", "http://a/b/c/g/h"},
        {"g/../h", "http://a/b/c/h"},
        {"g;x=1/../y", "http://a/b/c/y"},
        {"g?y/./x", "http://a/b/c/g?y/./x"},
        {"https://h/x", "https://h/x"},
    };
    for (const Row& row : rows) EXPECT_EQ(resolvedReference("http://a/b/c/d;p?q", row.reference), row.expected) << row.reference;
    for (const char* reference : {"g:h", "a b", "\xC3\xA9", "%zz", "http://", "ftp://h/x"}) {
        EXPECT_EQ(resolvedReference("http://a/b", reference), std::nullopt) << reference;
    }
    EXPECT_EQ(resolvedReference("http://h/a/#x/y", "b"), "http://h/a/b");
    EXPECT_EQ(resolvedReference("http://h/a/#f", "?q=1"), "http://h/a/?q=1");
    EXPECT_EQ(resolvedReference("no server", "g"), std::nullopt);
    EXPECT_EQ(resolvedReference("no server", "https://h/x"), "https://h/x");
}

TEST(Url, no_host_hides_behind_escapes) {
    // These would be mapped to "api.corp.example" on the way, past whoever looks for that name.
    for (const char* url : {"https://api.%EF%BD%83orp.example/", "https://api.corp%C2%AD.example/", "https://user@api%2Ecorp.example/"}) {
        EXPECT_FALSE(isSendableUrl(url)) << url;
    }
    EXPECT_TRUE(isSendableUrl("https://us%20er@corp.example/a%20b"));
}

TEST(Url, a_path_becomes_a_directory_unless_the_text_ends_in_a_slash) {
    struct Row {
        const char* url;
        const char* expected;
    };
    for (const Row& row :
         {Row{"http://h", "http://h"}, Row{"http://h/", "http://h/"}, Row{"http://h/a", "http://h/a/"}, Row{"http://h/a/", "http://h/a/"},
          Row{"http://h?x=/a", "http://h?x=/a"}, Row{"http://h/a?x=1", "http://h/a/?x=1"}, Row{"http://h/a?x=/", "http://h/a?x=/"},
          Row{"http://h/?x", "http://h/?x"}, Row{"http://h/a#f", "http://h/a/#f"}}) {
        EXPECT_EQ(withDirectoryPath(row.url), row.expected);
    }
}

TEST(Url, a_file_name_is_the_last_component_and_nothing_that_leads_elsewhere) {
    struct Row {
        const char* url;
        const char* expected;
    };
    for (const Row& row : {Row{"http://h/a/b.zip?x=/y", "b.zip"}, Row{"http://h/a%20b", "a b"}, Row{"http://h/a/", "a"},
                           Row{"http://h", ""}, Row{"http://h/", ""}, Row{"http://h/..", ""}, Row{"http://h/%2e%2e", ""},
                           Row{"http://h/x%2F..%2Fy", "y"}, Row{"http://h/a%00b", "a"}}) {
        EXPECT_EQ(fileNameOfUrl(row.url), row.expected) << row.url;
    }
}

}  // namespace
}  // namespace halvane::util
