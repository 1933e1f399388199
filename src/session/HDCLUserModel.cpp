#include "session/HDCLUserModel.h"

#include "util/KeyedArchive.h"

namespace halvane::session {

namespace {

constexpr const char* kClassName = "HDCLUserModel";
constexpr const char* kArchivePrefix = "Key_";

struct Field {
    const char* key;
    std::optional<std::string> HDCLUserModel::*member;
};

/// In the order in which an archive is written.
constexpr Field kFields[] = {
    {"department_name", &HDCLUserModel::department_name},
    {"user_name", &HDCLUserModel::user_name},
    {"token", &HDCLUserModel::token},
    {"email", &HDCLUserModel::email},
    {"header_img", &HDCLUserModel::header_img},
    {"numId", &HDCLUserModel::numId},
    {"job_number", &HDCLUserModel::job_number},
    {"nick_name", &HDCLUserModel::nick_name},
    {"role_name", &HDCLUserModel::role_name},
    {"role_id", &HDCLUserModel::role_id},
    {"status", &HDCLUserModel::status},
    {"work_address", &HDCLUserModel::work_address},
    {"ad_cert_name", &HDCLUserModel::ad_cert_name},
};

HDCLUserModel filled(const util::Dictionary& dictionary, const std::string& prefix) {
    HDCLUserModel model;
    for (const Field& field : kFields) model.*field.member = util::textOf(dictionary.find(prefix + field.key));
    return model;
}

}  // namespace

HDCLUserModel HDCLUserModel::fromDictionary(const util::Dictionary& dictionary) { return filled(dictionary, ""); }

util::Bytes HDCLUserModel::archived() const {
    util::Dictionary fields;
    for (const Field& field : kFields) {
        if (const auto& value = this->*field.member) fields.set(std::string(kArchivePrefix) + field.key, *value);
    }
    return util::KeyedArchive::encode(kClassName, fields);
}

util::Result<HDCLUserModel> HDCLUserModel::unarchived(const util::Bytes& archive) {
    const auto fields = util::KeyedArchive::decode(kClassName, archive);
    if (!fields) return fields.error();
    return filled(*fields, kArchivePrefix);
}

}  // namespace halvane::session
