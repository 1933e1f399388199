#pragma once

#include "util/Bytes.h"
#include "util/Result.h"
#include "util/Value.h"

#include <optional>
#include <string>

namespace halvane::session {

/// The signed-in user's profile and session, as the login reply's "data" gave them. A plain value.
struct HDCLUserModel {
    std::optional<std::string> department_name;
    std::optional<std::string> email;
    std::optional<std::string> header_img;  ///< address of the avatar
    std::optional<std::string> numId;       ///< numeric user id as text
    std::optional<std::string> job_number;  ///< employee number; names the session file
    std::optional<std::string> nick_name;
    std::optional<std::string> role_id;
    std::optional<std::string> role_name;
    std::optional<std::string> status;
    std::optional<std::string> token;         ///< present, even when empty: signed in
    std::optional<std::string> user_name;     ///< login name, in the form of a mail address
    std::optional<std::string> work_address;  ///< "value" of the chosen workplace
    std::optional<std::string> ad_cert_name;  ///< name of the user's directory certificate

    /// Each field from the key of exactly its name; numbers become decimal text; what is neither
    /// text nor number is absent.
    static HDCLUserModel fromDictionary(const util::Dictionary& dictionary);

    /// A keyed archive under "Key_" and the field's name; absent fields are left out.
    [[nodiscard]] util::Bytes archived() const;
    static util::Result<HDCLUserModel> unarchived(const util::Bytes& archive);

    friend bool operator==(const HDCLUserModel&, const HDCLUserModel&) = default;
};

}  // namespace halvane::session
