#include "server/commands/PasswordInput.h"

#include "server/api/RequestFields.h"
#include "util/Text.h"

#include <termios.h>
#include <unistd.h>

#include <iostream>

namespace halvane::server {

namespace {

/// Switches a terminal's echo off while it lives.
class Silence {
public:
    explicit Silence(bool isTerminal) : active_(isTerminal && ::tcgetattr(STDIN_FILENO, &before_) == 0) {
        if (!active_) return;
        termios silent = before_;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
    }
    ~Silence() {
        if (active_) ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_);
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    termios before_{};
    const bool active_;
};

}  // namespace

util::Result<std::string> PasswordInput::read(Console& console) {
    if (console.password) return checked(*console.password);
    const bool isTerminal = &console.in == &std::cin && ::isatty(STDIN_FILENO) == 1;
    if (isTerminal) console.err << "Password: " << std::flush;
    std::string password;
    {
        const Silence silence(isTerminal);
        std::getline(console.in, password);
    }
    if (isTerminal) console.err << std::endl;
    if (password.ends_with('\r')) password.pop_back();
    if (password.empty()) return util::dataError("no password on standard input or in HALVANE_PASSWORD");
    return checked(std::move(password));
}

util::Result<std::string> PasswordInput::checked(std::string password) {
    if (password.size() < kShortest) return util::dataError("the password needs at least " + std::to_string(kShortest) + " characters");
    if (password.size() > RequestFields::kLongestText) return util::dataError("the password is too long");
    if (!util::isValidUtf8(password) || password.find('\0') != std::string::npos) return util::dataError("the password is not UTF-8 text");
    return password;
}

}  // namespace halvane::server
