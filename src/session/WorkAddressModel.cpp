#include "session/WorkAddressModel.h"

#include "util/KeyedArchive.h"

namespace halvane::session {

namespace {
constexpr const char* kClassName = "WorkAddressModel";
// Crossed: "key" and "value" are those of a table of workplaces, whose key is what the server knows.
constexpr const char* kArchivedName = "Key_workAddressValue";
constexpr const char* kArchivedValue = "Key_workAddressKey";
}  // namespace

WorkAddressModel WorkAddressModel::fromDictionary(const util::Dictionary& dictionary) {
    return {.name = util::textOf(dictionary.find("name")), .value = util::textOf(dictionary.find("value"))};
}

util::Bytes WorkAddressModel::archived() const {
    util::Dictionary fields;
    if (name) fields.set(kArchivedName, *name);
    if (value) fields.set(kArchivedValue, *value);
    return util::KeyedArchive::encode(kClassName, fields);
}

util::Result<WorkAddressModel> WorkAddressModel::unarchived(const util::Bytes& archive) {
    const auto fields = util::KeyedArchive::decode(kClassName, archive);
    if (!fields) return fields.error();
    return WorkAddressModel{.name = util::textOf(fields->find(kArchivedName)), .value = util::textOf(fields->find(kArchivedValue))};
}

}  // namespace halvane::session
