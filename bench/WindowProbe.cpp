#include "WindowProbe.h"

#include <poll.h>
#include <unistd.h>
#include <xcb/damage.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace halvane::bench {

namespace {

using Clock = std::chrono::steady_clock;

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename T>
using Reply = std::unique_ptr<T, Free>;

double millisecondsSince(Clock::time_point start) { return std::chrono::duration<double, std::milli>(Clock::now() - start).count(); }

}  // namespace

WindowProbe::WindowProbe() {
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("no pipe");
    const char* variable = std::getenv("PATH");
    const std::string path = variable == nullptr ? "" : variable;
    server_ = std::make_unique<Program>(
        std::vector<std::string>{"Xvfb", "-displayfd", "3", "-screen", "0", "1280x1024x24", "-nolisten", "tcp", "-noreset"},
        std::vector<std::string>{"PATH=" + path}, ends[1]);
    close(ends[1]);
    // To the end of the line, or the server would write the rest of it to nobody and die of that.
    std::string number;
    pollfd ready{ends[0], POLLIN, 0};
    for (char letter = 0; letter != '\n'; number += letter)
        if (poll(&ready, 1, 10'000) != 1 || read(ends[0], &letter, 1) != 1) throw std::runtime_error("Xvfb did not start");
    close(ends[0]);
    display_ = ":" + std::to_string(std::atoi(number.c_str()));

    connection_ = xcb_connect(display_.c_str(), nullptr);
    if (xcb_connection_has_error(connection_) != 0) throw std::runtime_error("cannot open display " + display_);
    damageEvent_ = xcb_get_extension_data(connection_, &xcb_damage_id)->first_event;
    const Reply<xcb_damage_query_version_reply_t> version(
        xcb_damage_query_version_reply(connection_, xcb_damage_query_version(connection_, 1, 1), nullptr));
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection_, xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(connection_);
}

WindowProbe::~WindowProbe() {
    if (connection_ != nullptr) xcb_disconnect(connection_);
}

double WindowProbe::untilFirstPaint(Clock::time_point start) {
    pollfd ready{xcb_get_file_descriptor(connection_), POLLIN, 0};
    while (millisecondsSince(start) < 20'000) {
        const Reply<xcb_generic_event_t> event(xcb_poll_for_event(connection_));
        if (!event) {
            poll(&ready, 1, 100);
            continue;
        }
        const auto type = static_cast<std::uint8_t>(event->response_type & 0x7F);
        if (type == XCB_MAP_NOTIFY) {
            // Watching begins with one event for the whole window, painted or not.
            const auto* mapped = reinterpret_cast<const xcb_map_notify_event_t*>(event.get());
            xcb_damage_create(connection_, xcb_generate_id(connection_), mapped->window, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
            xcb_flush(connection_);
        } else if (type == damageEvent_ + XCB_DAMAGE_NOTIFY) {
            const auto* damaged = reinterpret_cast<const xcb_damage_notify_event_t*>(event.get());
            const double now = millisecondsSince(start);
            xcb_damage_subtract(connection_, damaged->damage, XCB_NONE, XCB_NONE);
            if (isPainted(damaged->drawable, damaged->geometry.width, damaged->geometry.height)) return now;
        }
    }
    throw std::runtime_error("no window appeared");
}

bool WindowProbe::isPainted(std::uint32_t window, std::uint16_t width, std::uint16_t height) {
    constexpr std::uint16_t kSmallest = 100;
    if (width < kSmallest || height < kSmallest) return false;
    const Reply<xcb_get_image_reply_t> image(
        xcb_get_image_reply(connection_, xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, window, 0, 0, width, height, ~0U), nullptr));
    if (!image) return false;
    // The display paints the ground in one colour before the program paints anything.
    const auto* pixels = reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(image.get()));
    const auto count = static_cast<std::size_t>(xcb_get_image_data_length(image.get())) / sizeof(std::uint32_t);
    return std::any_of(pixels, pixels + count, [first = pixels[0]](std::uint32_t pixel) { return pixel != first; });
}

std::unique_ptr<Program> WindowProbe::show(const std::vector<std::string>& command, const std::vector<std::string>& environment,
                                           double* firstPaint) {
    while (const Reply<xcb_generic_event_t> stale{xcb_poll_for_event(connection_)}) {
    }
    auto surroundings = environment;
    surroundings.push_back("DISPLAY=" + display_);
    const auto start = Clock::now();
    auto program = std::make_unique<Program>(command, surroundings);
    const double painted = untilFirstPaint(start);
    if (firstPaint != nullptr) *firstPaint = painted;
    return program;
}

WindowProbe::Start WindowProbe::measure(const std::vector<std::string>& command, const std::vector<std::string>& environment) {
    Start result;
    const auto program = show(command, environment, &result.firstPaint);
    usleep(1'000'000);
    result.resident = program->residentSize();
    result.privateSize = program->privateSize();
    result.cpu = program->processorTime();
    return result;
}

}  // namespace halvane::bench
