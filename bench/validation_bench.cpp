#include "login/ValidateInput.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

// What a text can cost that was made to keep a pattern busy: each check with each of them, at lengths up to 10 MB. Beside it
// what it costs to look at every character of that text once, by counting its Chinese characters.

namespace {

using V = halvane::login::ValidateInput;

struct Check {
    const char* name;
    bool (*check)(std::string_view);
};

constexpr Check kChecks[] = {
    {"validateEmail", V::validateEmail},
    {"validatePhone", V::validatePhone},
    {"validateCarNo", V::validateCarNo},
    {"validateCarType", V::validateCarType},
    {"validateUserName", V::validateUserName},
    {"validatePassword", V::validatePassword},
    {"validateNickname", V::validateNickname},
    {"validateIdentityCard", V::validateIdentityCard},
    {"validateNumber", V::validateNumber},
    {"validateQQ", V::validateQQ},
    {"validateAddress", V::validateAddress},
    {"validateLinkPhone", V::validateLinkPhone},
    {"validateIdentityName", V::validateIdentityName},
    {"validateChannelName", V::validateChannelName},
    {"validateRegisterAddress", V::validateRegisterAddress},
    {"validateName", V::validateName},
    {"validateNonnegative", V::validateNonnegative},
    {"validateFourNumber", V::validateFourNumber},
    {"validateIdentityCustomName", V::validateIdentityCustomName},
    {"validateIdentityHKMacao", V::validateIdentityHKMacao},
    {"validateIdentityTaiWan", V::validateIdentityTaiWan},
    {"validateIdentityPassport", V::validateIdentityPassport},
    {"validateIdentityAddress", V::validateIdentityAddress},
    {"validateIdentityTaiwanAddress", V::validateIdentityTaiwanAddress},
    {"validateIdentityPassporAddress", V::validateIdentityPassporAddress},
    {"validateIdentityNumAndLetter", V::validateIdentityNumAndLetter},
    {"validateIdentityConnectPhone", V::validateIdentityConnectPhone},
    {"validateMobile", V::validateMobile},
};

struct Hostile {
    const char* name;
    const char* piece;
    const char* end;
    const char* beginning = "";
};

constexpr Hostile kHostile[] = {
    {"digits", "1", "!"},
    {"zeros", "0", "!"},
    {"letters", "a", "!"},
    {"letters d", "d", "!"},
    {"Chinese", "一", "!"},
    {"dots", "a.", "!", "a@"},
    {"at signs", "a@", "!"},
    {"d and U+0001", "d\x01\x01\x01\x01", "d"},
    {"area code", "12345678", "-", "010-"},
    {"no UTF-8", "\xE4", ""},
};

/// Seconds of the fastest of three, so that what else the machine does counts little.
double fastest(bool (*check)(std::string_view), const std::string& text) {
    double least = 1e9;
    for (int i = 0; i < 3; ++i) {
        const auto start = std::chrono::steady_clock::now();
        [[maybe_unused]] volatile const bool answer = check(text);
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        least = std::min(least, took.count());
    }
    return least;
}

struct Cost {
    const char* text = "";
    std::size_t length = 0;
    double seconds = 0;
    double look = 0;
};

Cost slowest(bool (*check)(std::string_view)) {
    Cost worst;
    for (const Hostile& hostile : kHostile) {
        for (const std::size_t length : {60, 200, 1'000, 30'000, 300'000, 10'000'000}) {
            std::string text = hostile.beginning;
            while (text.size() < length) text += hostile.piece;
            text += hostile.end;
            const double seconds = fastest(check, text);
            if (seconds <= worst.seconds) continue;
            worst = {hostile.name, text.size(), seconds,
                     fastest([](std::string_view each) { return V::isValidateChineseCount(each, 1); }, text)};
        }
    }
    return worst;
}

}  // namespace

int main() {
    std::printf("  %-30s %9s  %6s  %s\n", "slowest text of each check", "ms", "ratio", "text");
    double worst = 0;
    for (const Check& check : kChecks) {
        const Cost cost = slowest(check.check);
        worst = std::max(worst, cost.seconds);
        std::printf("  %-30s %9.2f  %6.2f  %s, %zu bytes\n", check.name, cost.seconds * 1e3, cost.seconds / cost.look, cost.text,
                    cost.length);
    }
    std::printf("  slowest of all: %.1f ms\n", worst * 1e3);
    return 0;
}
