#pragma once

#include <gio/gio.h>

#include <chrono>
#include <memory>
#include <string>

namespace halvane::linux {

struct UnrefGObject {
    void operator()(void* object) const { g_object_unref(object); }
};
template <typename T>
using GObjectPointer = std::unique_ptr<T, UnrefGObject>;

struct UnrefVariant {
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
};
using VariantPointer = std::unique_ptr<GVariant, UnrefVariant>;

/// Makes GIO's asynchronous calls one after another and waits for each, all of them together no
/// longer than a deadline; then the call under way is cancelled and ends with an error. The waiting
/// runs a main context of this object's own: nothing else of the program runs inside it. One thread,
/// on which this object is the newest of its kind.
class GioCalls {
public:
    explicit GioCalls(std::chrono::milliseconds deadline);
    ~GioCalls();
    GioCalls(const GioCalls&) = delete;
    GioCalls& operator=(const GioCalls&) = delete;

    /// `begin(cancellable, callback, userData)` starts the call; its result is for the call's `_finish`.
    template <typename Begin>
    [[nodiscard]] GObjectPointer<GAsyncResult> wait(Begin begin) {
        result_.reset();
        begin(cancellable_.get(), &GioCalls::onResult, static_cast<void*>(this));
        while (!result_) g_main_context_iteration(context_, TRUE);
        return std::move(result_);
    }

    /// Waits for `done` to say yes, looking anew after whatever happens; false when the deadline came first.
    template <typename Done>
    bool waitUntil(Done done) {
        while (!done()) {
            if (g_cancellable_is_cancelled(cancellable_.get()) != FALSE) return false;
            g_main_context_iteration(context_, TRUE);
        }
        return true;
    }

    /// A new deadline from now on, for calls that are yet to be made.
    void allow(std::chrono::milliseconds time);

    /// Where the calls put their errors. Cleared by each use.
    [[nodiscard]] GError** error() {
        g_clear_error(&error_);
        return &error_;
    }
    /// Whether the last call ended with that error.
    [[nodiscard]] bool endedWith(GQuark domain, int code) const { return g_error_matches(error_, domain, code) != FALSE; }
    /// What the last call ended with, as a sentence.
    [[nodiscard]] std::string whatFailed() const;

private:
    void stopTimer();
    static void onResult(GObject* source, GAsyncResult* result, void* self);
    static int onDeadline(void* self);

    GMainContext* const context_;
    const GObjectPointer<GCancellable> cancellable_;
    GSource* timer_ = nullptr;
    GObjectPointer<GAsyncResult> result_;
    GError* error_ = nullptr;
};

}  // namespace halvane::linux
