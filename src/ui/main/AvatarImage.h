#pragma once

#include "util/Bytes.h"

#include <QImage>

namespace halvane::ui {

/// Makes a person's picture of bytes that somebody else wrote. Any thread.
class AvatarImage {
public:
    static constexpr int edge = 192;  ///< pixels of the result at the most, each side

    /// Square, cut out of the middle. Null for what is no picture, or one too large to be a face: more than
    /// 4096 pixels a side, 16 million in all. Of drawings those are refused that could take long or look
    /// beyond themselves.
    [[nodiscard]] static QImage decoded(const util::Bytes& bytes);
};

}  // namespace halvane::ui
