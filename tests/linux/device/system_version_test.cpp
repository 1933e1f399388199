#include "linux/device/LinuxSystemVersion.h"
#include "linux/device/RecordedMachine.h"

#include <gtest/gtest.h>

namespace halvane::linux {
namespace {

using test::RecordedMachine;
using util::Dictionary;

constexpr const char* kDebian =
    "PRETTY_NAME=\"Debian GNU/Linux 12 (bookworm)\"\nNAME=\"Debian GNU/Linux\"\nVERSION_ID=\"12\"\nVERSION=\"12 (bookworm)\"\n"
    "VERSION_CODENAME=bookworm\nID=debian\n";

TEST(SystemVersion, each_kind_of_distribution_gets_a_name_and_a_version) {
    const std::tuple<const char*, const char*, Dictionary> rows[] = {
        {"Debian", kDebian, {{"ProductName", "Debian GNU/Linux"}, {"ProductVersion", "12"}}},
        {"Ubuntu", "NAME=\"Ubuntu\"\nVERSION_ID=\"22.04\"\n", {{"ProductName", "Ubuntu"}, {"ProductVersion", "22.04"}}},
        {"Fedora, unquoted",
         "NAME=\"Fedora Linux\"\nVERSION=\"39 (Workstation Edition)\"\nID=fedora\nVERSION_ID=39\n",
         {{"ProductName", "Fedora Linux"}, {"ProductVersion", "39"}}},
        {"rolling with a build",
         "NAME=\"Arch Linux\"\nID=arch\nBUILD_ID=rolling\n",
         {{"ProductName", "Arch Linux"}, {"ProductVersion", "rolling"}}},
        {"Debian before its release",
         "PRETTY_NAME=\"Debian GNU/Linux trixie/sid\"\nNAME=\"Debian GNU/Linux\"\nVERSION_CODENAME=trixie\n",
         {{"ProductName", "Debian GNU/Linux"}, {"ProductVersion", "trixie"}}},
        {"no version of any kind", "NAME=Own\n", {{"ProductName", "Own"}}},
        {"an empty version is none", "NAME=Own\nVERSION_ID=\"\"\nBUILD_ID=7\n", {{"ProductName", "Own"}, {"ProductVersion", "7"}}},
        {"no name", "VERSION_ID=3\n", {{"ProductName", "Linux"}, {"ProductVersion", "3"}}},
        {"quoting as in a shell",
         "# NAME=comment\n  NAME='Tux \"$HOME\"'\nVERSION_ID=\"1\\\"2\\\\3\\$\"\r\n",
         {{"ProductName", "Tux \"$HOME\""}, {"ProductVersion", "1\"2\\3$"}}},
        {"unfinished quote and no end of line", "NAME=\"Half", {{"ProductName", "Half"}}},
        {"not UTF-8", "NAME=\"\xff\xfe\"\nVERSION_ID=1\n", {{"ProductName", "Linux"}, {"ProductVersion", "1"}}},
    };
    for (const auto& [name, text, expected] : rows) {
        const RecordedMachine machine{{"etc/os-release", text}};
        EXPECT_EQ(LinuxSystemVersion(machine.files()).propertyList(), expected) << name;
    }
}

TEST(SystemVersion, file_in_etc_wins_over_the_one_in_usr_lib) {
    const RecordedMachine both{{"etc/os-release", kDebian}, {"usr/lib/os-release", "NAME=Other\nVERSION_ID=9\n"}};
    EXPECT_EQ(*LinuxSystemVersion(both.files()).propertyList().find("ProductVersion")->text(), "12");
    const RecordedMachine vendor{{"usr/lib/os-release", "NAME=Other\nVERSION_ID=9\n"}};
    EXPECT_EQ(*LinuxSystemVersion(vendor.files()).propertyList().find("ProductVersion")->text(), "9");
    const RecordedMachine neither;
    EXPECT_TRUE(LinuxSystemVersion(neither.files()).propertyList().empty());
}

}  // namespace
}  // namespace halvane::linux
