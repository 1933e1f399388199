#include "linux/SecretServiceProgram.h"

#include "support/Eventually.h"

#include <systemd/sd-bus.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace halvane::test {

namespace {

constexpr const char* kName = "org.freedesktop.secrets";
constexpr const char* kPath = "/org/freedesktop/secrets";
constexpr const char* kInterface = "org.freedesktop.Secret.Service";

struct UnrefMessage {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using Message = std::unique_ptr<sd_bus_message, UnrefMessage>;

void check(int outcome, const char* what) {
    if (outcome < 0) throw std::runtime_error(std::string(what) + ": error " + std::to_string(-outcome));
}

std::vector<std::string> arguments(SecretServiceProgram::Start start) {
    std::vector<std::string> all{"gnome-keyring-daemon", "--foreground", "--components=secrets"};
    if (start == SecretServiceProgram::Start::Unlocked) all.emplace_back("--unlock");
    return all;
}

}  // namespace

SecretServiceProgram::SecretServiceProgram(Start start)
    : daemon_(arguments(start),
              {{"DBUS_SESSION_BUS_ADDRESS", bus_.address()},
               {"XDG_DATA_HOME", files_.path() / "data"},
               {"XDG_RUNTIME_DIR", files_.path()},
               {"HOME", files_.path()}},
              start == Start::Unlocked ? "password of the session" : "") {
    check(sd_bus_new(&client_), "bus");
    check(sd_bus_set_address(client_, bus_.address().c_str()), "address");
    check(sd_bus_set_bus_client(client_, 1), "client");
    check(sd_bus_start(client_), "start");
    const bool up = eventually([this] { return sd_bus_get_name_creds(client_, kName, 0, nullptr) >= 0; });
    if (!up) throw std::runtime_error("gnome-keyring-daemon did not start");
    ::setenv("DBUS_SESSION_BUS_ADDRESS", bus_.address().c_str(), 1);
}

SecretServiceProgram::~SecretServiceProgram() {
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
    sd_bus_close_unref(client_);
}

std::string SecretServiceProgram::defaultCollection() {
    sd_bus_message* raw = nullptr;
    check(sd_bus_call_method(client_, kName, kPath, kInterface, "ReadAlias", nullptr, &raw, "s", "default"), "ReadAlias");
    const Message reply(raw);
    const char* path = nullptr;
    check(sd_bus_message_read(raw, "o", &path), "path");
    return path;
}

void SecretServiceProgram::lock() {
    check(sd_bus_call_method(client_, kName, kPath, kInterface, "Lock", nullptr, nullptr, "ao", 1, defaultCollection().c_str()), "Lock");
}

void SecretServiceProgram::storeForeign(const std::string& service, const std::string& bytes) {
    sd_bus_message* raw = nullptr;
    check(sd_bus_call_method(client_, kName, kPath, kInterface, "OpenSession", nullptr, &raw, "sv", "plain", "s", ""), "OpenSession");
    const Message session(raw);
    const char* path = nullptr;
    check(sd_bus_message_skip(raw, "v"), "output");
    check(sd_bus_message_read(raw, "o", &path), "session");

    check(sd_bus_message_new_method_call(client_, &raw, kName, defaultCollection().c_str(), "org.freedesktop.Secret.Collection",
                                         "CreateItem"),
          "call");
    const Message create(raw);
    check(sd_bus_message_append(raw, "a{sv}", 2, "org.freedesktop.Secret.Item.Label", "s", "foreign",
                                "org.freedesktop.Secret.Item.Attributes", "a{ss}", 4, "service", service.c_str(), "account",
                                service.c_str(), "xdg:schema", "org.example.Other", "color", "green"),
          "properties");
    check(sd_bus_message_open_container(raw, 'r', "oayays"), "secret");
    check(sd_bus_message_append(raw, "o", path), "session");
    check(sd_bus_message_append_array(raw, 'y', nullptr, 0), "parameters");
    check(sd_bus_message_append_array(raw, 'y', bytes.data(), bytes.size()), "value");
    check(sd_bus_message_append(raw, "s", "text/plain"), "type");
    check(sd_bus_message_close_container(raw), "secret");
    check(sd_bus_message_append(raw, "b", 0), "replace");
    check(sd_bus_call(client_, raw, 0, nullptr, nullptr), "CreateItem");
}

}  // namespace halvane::test
