#include "util/Xml.h"

#include <gtest/gtest.h>

namespace halvane::util {
namespace {

TEST(Xml, becomes_a_tree_of_elements) {
    const auto decoded = Xml::decode(
        "<?xml version=\"1.0\"?><!DOCTYPE r [<!ENTITY e SYSTEM \"file:///etc/passwd\">]><!-- c -->"
        "<r a='1' b=\"x &amp; y\"> one <c>&lt;&#233;</c> two <![CDATA[<raw>]]><c n='2'/><ns:d/>&e;</r>");
    ASSERT_TRUE(decoded) << decoded.error().description;
    const XmlElement& root = **decoded;
    EXPECT_EQ(root.name, "r");
    EXPECT_EQ(*root.attribute("b"), "x & y");
    EXPECT_EQ(root.attribute("c"), nullptr);
    EXPECT_EQ(root.text, "one  two <raw>&e;");
    ASSERT_EQ(root.children.size(), 3U);
    EXPECT_EQ(root.child("c")->text, "<\xC3\xA9");
    EXPECT_EQ(*root.children[1].attribute("n"), "2");
    EXPECT_NE(root.child("ns:d"), nullptr);
    EXPECT_EQ(root.child("d"), nullptr);
}

TEST(Xml, refuses_what_is_none) {
    std::string deep;
    for (int i = 0; i < 10'000; ++i) deep += "<a>";
    for (int i = 0; i < 10'000; ++i) deep += "</a>";
    for (const std::string& text : {std::string(), std::string("  "), std::string("text"), std::string("<a"), std::string("<a></b>"),
                                    std::string("<!-- only -->"), std::string("<a/\0>", 6), deep}) {
        EXPECT_FALSE(Xml::decode(text)) << text.substr(0, 20);
    }
}

}  // namespace
}  // namespace halvane::util
