#include "linux/base/NetworkManagerClient.h"

#include "linux/device/BusCalls.h"

#include <cstdint>
#include <string_view>

namespace halvane::linux {

namespace {

using platform::ReachabilityStatus;

constexpr const char* kName = "org.freedesktop.NetworkManager";
constexpr const char* kPath = "/org/freedesktop/NetworkManager";
constexpr std::uint64_t kAnswerTimeUsec = 2'000'000;

ReachabilityStatus statusOf(std::uint32_t state, std::string_view connectionType) {
    constexpr std::uint32_t kDisconnected = 20;
    if (state <= kDisconnected || connectionType.empty()) return ReachabilityStatus::NotReachable;
    const bool isWideArea = connectionType == "gsm" || connectionType == "cdma" || connectionType == "bluetooth";
    return isWideArea ? ReachabilityStatus::WideAreaNetwork : ReachabilityStatus::Wifi;
}

}  // namespace

class NetworkManagerClient::State {
public:
    explicit State(const std::string& busAddress) : bus(connectToBus(busAddress)) {
        if (bus && follow() && ask()) return;
        drop();
    }

    void process() {
        // Bounded, so that a chattering bus cannot keep the owner from ending.
        for (int i = 0; bus && i < 1000; ++i) {
            const int worked = sd_bus_process(bus.get(), nullptr);
            if (worked == 0) return;
            if (worked < 0) drop();
        }
    }

    BusPointer bus;
    Knowledge knowledge = Knowledge::Asked;
    std::uint32_t networkState = 0;
    std::string connectionType;

private:
    void drop() {
        bus.reset();
        knowledge = Knowledge::Absent;
    }

    bool follow() {
        return sd_bus_match_signal_async(bus.get(), nullptr, kName, kPath, "org.freedesktop.DBus.Properties", "PropertiesChanged",
                                         &State::onPropertiesChanged, nullptr, this) >= 0 &&
               sd_bus_add_match_async(bus.get(), nullptr,
                                      "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
                                      "member='NameOwnerChanged',arg0='org.freedesktop.NetworkManager'",
                                      &State::onOwnerChanged, nullptr, this) >= 0;
    }

    bool ask() {
        sd_bus_message* raw = nullptr;
        if (sd_bus_message_new_method_call(bus.get(), &raw, kName, kPath, "org.freedesktop.DBus.Properties", "GetAll") < 0) return false;
        const BusMessage question(raw);
        // A machine whose NetworkManager is switched off keeps it so.
        return sd_bus_message_set_auto_start(raw, 0) >= 0 && sd_bus_message_append(raw, "s", kName) >= 0 &&
               sd_bus_call_async(bus.get(), nullptr, raw, &State::onAnswer, this, kAnswerTimeUsec) >= 0;
    }

    static int onAnswer(sd_bus_message* message, void* self, sd_bus_error*) {
        auto& state = *static_cast<State*>(self);
        const bool answered = sd_bus_message_is_method_error(message, nullptr) == 0 && state.readProperties(message);
        state.knowledge = answered ? Knowledge::Known : Knowledge::Absent;
        return 0;
    }

    static int onPropertiesChanged(sd_bus_message* message, void* self, sd_bus_error*) {
        auto& state = *static_cast<State*>(self);
        const char* interface = nullptr;
        if (sd_bus_message_read(message, "s", &interface) > 0 && std::string_view(interface) == kName) state.readProperties(message);
        return 0;
    }

    static int onOwnerChanged(sd_bus_message* message, void* self, sd_bus_error*) {
        auto& state = *static_cast<State*>(self);
        const char* name = nullptr;
        const char* before = nullptr;
        const char* now = nullptr;
        if (sd_bus_message_read(message, "sss", &name, &before, &now) <= 0) return 0;
        if (*now == '\0') {
            state.knowledge = Knowledge::Absent;
        } else {
            state.ask();
        }
        return 0;
    }

    /// Takes the two properties of interest out of a dictionary; false when it is none.
    bool readProperties(sd_bus_message* message) {
        if (sd_bus_message_enter_container(message, 'a', "{sv}") <= 0) return false;
        while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
            const char* key = nullptr;
            if (sd_bus_message_read(message, "s", &key) <= 0) return false;
            if (!readValue(message, key) && sd_bus_message_skip(message, "v") < 0) return false;
            if (sd_bus_message_exit_container(message) < 0) return false;
        }
        return sd_bus_message_exit_container(message) >= 0;
    }

    /// False, and nothing read, for a property of no interest or of an unexpected type.
    bool readValue(sd_bus_message* message, std::string_view key) {
        const char* contents = nullptr;
        if (sd_bus_message_peek_type(message, nullptr, &contents) <= 0) return false;
        const std::string_view type = contents;
        if (key == "State" && type == "u") return sd_bus_message_read(message, "v", "u", &networkState) > 0;
        if (key != "PrimaryConnectionType" || type != "s") return false;
        const char* text = nullptr;
        if (sd_bus_message_read(message, "v", "s", &text) <= 0) return false;
        connectionType = text;
        return true;
    }
};

NetworkManagerClient::NetworkManagerClient(const std::string& busAddress) : state_(std::make_unique<State>(busAddress)) {}

NetworkManagerClient::~NetworkManagerClient() = default;

NetworkManagerClient::Knowledge NetworkManagerClient::knowledge() const { return state_->knowledge; }

ReachabilityStatus NetworkManagerClient::status() const { return statusOf(state_->networkState, state_->connectionType); }

int NetworkManagerClient::descriptor() const { return state_->bus ? sd_bus_get_fd(state_->bus.get()) : -1; }

short NetworkManagerClient::events() const {
    const int events = state_->bus ? sd_bus_get_events(state_->bus.get()) : 0;
    return static_cast<short>(events < 0 ? 0 : events);
}

std::optional<std::chrono::steady_clock::time_point> NetworkManagerClient::due() const {
    std::uint64_t usec = UINT64_MAX;
    if (!state_->bus || sd_bus_get_timeout(state_->bus.get(), &usec) < 0 || usec == UINT64_MAX) return std::nullopt;
    return std::chrono::steady_clock::time_point(std::chrono::microseconds(usec));
}

void NetworkManagerClient::process() { state_->process(); }

}  // namespace halvane::linux
