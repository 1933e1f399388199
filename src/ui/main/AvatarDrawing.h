#pragma once

#include <QByteArray>

namespace halvane::ui {

/// Judges a drawing (SVG) that somebody else wrote before it is given to the renderer, which would open local
/// files that a drawing names, and work at a small one for hours. Any thread.
class AvatarDrawing {
public:
    [[nodiscard]] static bool isDrawing(const QByteArray& data);

    /// Only plain shapes, gradients and texts in at most 64 KiB: nothing that repeats, loads, moves or is dashed.
    /// False for what is not well formed. Read by the reader that the renderer uses, so that both see the same
    /// elements whatever the encoding or the prefixes.
    [[nodiscard]] static bool isHarmless(const QByteArray& data);
};

}  // namespace halvane::ui
