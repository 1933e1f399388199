#pragma once

namespace halvane::bench {

/// What a request that waits for its turn takes of the heap, while the server that they all want to ask never answers.
class QueuedRequests {
public:
    /// Measures and prints.
    static void run(int count);
};

}  // namespace halvane::bench
