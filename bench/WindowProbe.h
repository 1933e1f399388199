#pragma once

#include "Program.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct xcb_connection_t;

namespace halvane::bench {

/// A virtual display of its own, which ends with this object, and the view that a bystander has of the
/// windows on it.
class WindowProbe {
public:
    WindowProbe();
    ~WindowProbe();
    WindowProbe(const WindowProbe&) = delete;
    WindowProbe& operator=(const WindowProbe&) = delete;

    struct Start {
        double firstPaint = 0;          ///< milliseconds from starting the program to the first pixels in its window
        double cpu = 0;                 ///< milliseconds of processor time until a second after that
        std::uint64_t resident = 0;     ///< bytes in memory, shared libraries included, a second after that
        std::uint64_t privateSize = 0;  ///< bytes that no other program shares
    };

    /// Starts the program, waits for its first painted window, measures and ends it. Throws
    /// std::runtime_error when no window appears within 20 s.
    Start measure(const std::vector<std::string>& command, const std::vector<std::string>& environment);

    /// Starts the program and waits for its first painted window. `firstPaint`: in milliseconds.
    [[nodiscard]] std::unique_ptr<Program> show(const std::vector<std::string>& command, const std::vector<std::string>& environment,
                                                double* firstPaint = nullptr);

    /// As DISPLAY names it.
    [[nodiscard]] const std::string& display() const { return display_; }

private:
    [[nodiscard]] double untilFirstPaint(std::chrono::steady_clock::time_point start);
    [[nodiscard]] bool isPainted(std::uint32_t window, std::uint16_t width, std::uint16_t height);

    std::unique_ptr<Program> server_;
    std::string display_;
    xcb_connection_t* connection_ = nullptr;
    std::uint8_t damageEvent_ = 0;
};

}  // namespace halvane::bench
