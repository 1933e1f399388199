#include "server/api/Authenticator.h"

#include "server/Company.h"
#include "server/api/Envelope.h"
#include "server/crypto/PasswordHash.h"
#include "util/Text.h"

namespace halvane::server {

Authenticator::Authenticator(Company& company) : company_(company), throttle_(company.clock) {}

std::variant<User, ApiReply> Authenticator::byPassword(const std::string& name, const std::string& password) {
    auto known = company_.users.findByName(name);
    // Both spellings of one account count together.
    const std::string account = known ? known->user.userName : util::lowercasedAscii(name);
    if (throttle_.isClosed(account)) return Envelope::refused(ReplyCode::TooManyTries, "尝试次数过多，请稍后再试");
    bool matches = false;
    if (known) {
        matches = PasswordHash::matches(password, known->passwordHash);
    } else {
        PasswordHash::spendTime(password);
    }
    if (!matches) {
        throttle_.failed(account);
        return Envelope::refused(ReplyCode::BadCredentials, "用户名或密码错误");
    }
    throttle_.succeeded(account);
    return std::move(known->user);
}

std::optional<User> Authenticator::bySession(const ApiRequest& request) {
    if (request.token.empty()) return std::nullopt;
    const auto userId = company_.sessions.userOf(request.token);
    if (!userId) return std::nullopt;
    return company_.users.find(*userId);
}

}  // namespace halvane::server
