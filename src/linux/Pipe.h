#pragma once

#include "linux/base/Descriptor.h"
#include "util/Bytes.h"
#include "util/Result.h"

#include <cstddef>
#include <string>

namespace halvane::linux {

/// A pipe to a child: both ends are closed in every program that we start, unless it is handed one.
struct Pipe {
    /// More than this nobody writes who means to be read.
    static constexpr std::size_t kLargestOutput = std::size_t{64} << 20;

    Descriptor readEnd;
    Descriptor writeEnd;

    /// Above the numbers that a child's own descriptors have. Error: an errno, `subject` in its text.
    static util::Result<Pipe> open(const std::string& subject);
    /// Everything up to end of file. Error: an errno, `subject` in its text; EFBIG beyond the limit, ECANCELED as soon
    /// as `stop`, a descriptor, becomes readable.
    static util::Result<util::Bytes> readToEnd(int descriptor, const std::string& subject, int stop = -1);
};

}  // namespace halvane::linux
