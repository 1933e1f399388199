#include "util/KeyedArchive.h"

#include "util/PropertyList.h"

namespace halvane::util {

namespace {
constexpr const char* kClass = "$class";
constexpr const char* kObjects = "$objects";
}  // namespace

Bytes KeyedArchive::encode(const std::string& className, const Dictionary& fields) {
    return PropertyList::encode(Dictionary{{kClass, className}, {kObjects, fields}});
}

Result<Dictionary> KeyedArchive::decode(const std::string& className, const Bytes& bytes) {
    const auto list = PropertyList::decode(bytes);
    if (!list) return list.error();
    const Value* name = member(&*list, kClass);
    const Value* objects = member(&*list, kObjects);
    if (name == nullptr || name->text() == nullptr || objects == nullptr || objects->dictionary() == nullptr) {
        return dataError("not a keyed archive");
    }
    if (*name->text() != className) return dataError("an archive of another class than " + className);
    return *objects->dictionary();
}

}  // namespace halvane::util
