#include "linux/GlibMessages.h"

#include <glib.h>

#include <atomic>
#include <string>
#include <string_view>

namespace halvane::linux {

namespace {

/// Process-wide as GLib's writer is, which can be set only once.
std::atomic<util::Log*> currentLog = nullptr;

std::string textOf(const GLogField& field) {
    const auto* text = static_cast<const char*>(field.value);
    return field.length < 0 ? std::string(text) : std::string(text, static_cast<std::size_t>(field.length));
}

GLogWriterOutput write(GLogLevelFlags level, const GLogField* fields, gsize count, gpointer /*data*/) {
    auto* log = currentLog.load();
    if (log == nullptr) return g_log_writer_default(level, fields, count, nullptr);
    std::string domain = "GLib";
    std::string message;
    for (gsize i = 0; i < count; ++i) {
        const std::string_view key = fields[i].key;
        if (key == "GLIB_DOMAIN") domain = textOf(fields[i]);
        if (key == "MESSAGE") message = textOf(fields[i]);
    }
    if (g_log_writer_default_would_drop(level, domain.c_str()) == FALSE) log->write(domain + ": " + message);
    // After an error GLib ends the program by itself.
    return G_LOG_WRITER_HANDLED;
}

}  // namespace

GlibMessages::GlibMessages(util::Log& log) {
    currentLog = &log;
    [[maybe_unused]] static const bool kSet = (g_log_set_writer_func(&write, nullptr, nullptr), true);
}

GlibMessages::~GlibMessages() { currentLog = nullptr; }

}  // namespace halvane::linux
