#pragma once

#include <string>
#include <vector>

namespace quietlark {

/// What was said in a recording.
struct Transcript {
    /// A stretch of it that was said in one go, such as a subtitle shows. Times are counted from
    /// the beginning of the recording.
    struct Segment {
        double startSeconds = 0;
        double endSeconds = 0;
        std::string text;
    };

    std::string text;      ///< UTF-8; empty when nothing was said
    std::string language;  ///< its English name in lower case, such as "german"; empty if unknown
    std::vector<Segment> segments;
};

}  // namespace quietlark
