#include "linux/GioCalls.h"

namespace halvane::linux {

GioCalls::GioCalls(std::chrono::milliseconds deadline) : context_(g_main_context_new()), cancellable_(g_cancellable_new()) {
    g_main_context_push_thread_default(context_);
    allow(deadline);
}

void GioCalls::allow(std::chrono::milliseconds time) {
    stopTimer();
    g_cancellable_reset(cancellable_.get());
    timer_ = g_timeout_source_new(static_cast<guint>(time.count()));
    g_source_set_callback(timer_, &GioCalls::onDeadline, this, nullptr);
    g_source_attach(timer_, context_);
}

void GioCalls::stopTimer() {
    if (timer_ == nullptr) return;
    g_source_destroy(timer_);
    g_source_unref(timer_);
    timer_ = nullptr;
}

GioCalls::~GioCalls() {
    stopTimer();
    // What the calls left to be released later is released now; bounded, should it go on and on.
    for (int i = 0; i < 1000 && g_main_context_iteration(context_, FALSE) != FALSE; ++i) {
    }
    g_main_context_pop_thread_default(context_);
    g_main_context_unref(context_);
    g_clear_error(&error_);
}

std::string GioCalls::whatFailed() const {
    if (g_cancellable_is_cancelled(cancellable_.get()) != FALSE) return "no answer in time";
    return error_ == nullptr ? "no reason given" : error_->message;
}

void GioCalls::onResult(GObject* /*source*/, GAsyncResult* result, void* self) {
    static_cast<GioCalls*>(self)->result_.reset(G_ASYNC_RESULT(g_object_ref(result)));
}

int GioCalls::onDeadline(void* self) {
    g_cancellable_cancel(static_cast<GioCalls*>(self)->cancellable_.get());
    return G_SOURCE_REMOVE;
}

}  // namespace halvane::linux
