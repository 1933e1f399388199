#pragma once

#include <QAbstractNativeEventFilter>
#include <QDBusServiceWatcher>
#include <QTimer>
#include <cstdint>
#include <functional>

class QDBusPendingCallWatcher;

namespace halvane::qt {

/// Waits until the desktop has a status bar: a StatusNotifierItem host, or else an XEmbed tray. Nothing is asked
/// again and again, both tell of themselves when they begin. A desktop that has neither, or no session bus, costs
/// nothing but memory, one whose bus does not answer gets no icon. Main thread.
class StatusBarWatch final : private QAbstractNativeEventFilter {
public:
    /// `appeared` is called once, from the event loop; it may not destroy the watch.
    explicit StatusBarWatch(std::function<void()> appeared);
    ~StatusBarWatch() override;
    StatusBarWatch(const StatusBarWatch&) = delete;
    StatusBarWatch& operator=(const StatusBarWatch&) = delete;

private:
    void watchForTray();
    void watchForHost();
    void askForHost();
    void answered(QDBusPendingCallWatcher& call);
    void finish();
    [[nodiscard]] bool trayExists() const;

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

    std::function<void()> appeared_;
    QDBusServiceWatcher service_;    ///< on no connection where there is no bus
    QTimer ask_;                     ///< asks from the event loop; the bus's signals can start it
    std::uint32_t managerAtom_ = 0;  ///< what an XEmbed tray announces itself with; 0 without X11
    std::uint32_t trayAtom_ = 0;     ///< whose owner is the tray of this screen
};

}  // namespace halvane::qt
