#include "server/commands/Command.h"

#include <sys/stat.h>

#include <cstdlib>
#include <iostream>

int main(int argc, char** argv) {
    using namespace halvane::server;
    ::umask(077);
    const auto variable = [](const char* name) {
        const char* value = std::getenv(name);
        return value == nullptr ? std::nullopt : std::optional<std::string>(value);
    };
    Console console{.in = std::cin,
                    .out = std::cout,
                    .err = std::cerr,
                    .clock = systemClock(),
                    .password = variable("HALVANE_PASSWORD"),
                    .dataDirectory = variable("HALVANE_SERVER_DATA")};
    return static_cast<int>(runCommandLine({argv + 1, argv + argc}, console));
}
