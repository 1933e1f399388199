#include "linux/device/LinuxSystemVersion.h"

#include "linux/device/Assignments.h"

namespace halvane::linux {

util::Dictionary LinuxSystemVersion::propertyList() const {
    auto text = files_.text("etc/os-release");
    if (!text) text = files_.text("usr/lib/os-release");
    util::Dictionary list;
    if (!text) return list;

    const auto values = assignments(*text);
    const auto name = values.find("NAME");
    list.set("ProductName", name == values.end() ? "Linux" : name->second);
    for (const char* key : {"VERSION_ID", "BUILD_ID", "VERSION_CODENAME", "VERSION"}) {
        if (const auto version = values.find(key); version != values.end()) {
            list.set("ProductVersion", version->second);
            break;
        }
    }
    return list;
}

}  // namespace halvane::linux
