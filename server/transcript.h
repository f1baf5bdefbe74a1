#pragma once

#include <cstdint>
#include <optional>
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
        std::string text = {};
        // What OpenAI's interface tells of a stretch; where an engine does not know, what says
        // neither good nor bad.
        std::int64_t seek = 0;          ///< where the engine looked, in its own units
        std::vector<int> tokens = {};   ///< in the model's own numbers
        double temperature = 0;         ///< 0 to 1: how daringly it was guessed
        double meanLogProbability = 0;  ///< of the tokens; at most 0
        double compressionRatio = 1;    ///< of the text; high when it repeats itself
        double noSpeechProbability = 0;
    };

    /// One word; times as in a segment.
    struct Word {
        double startSeconds = 0;
        double endSeconds = 0;
        std::string text = {};
    };

    std::string text = {};      ///< UTF-8; empty when nothing was said
    std::string language = {};  ///< its English name in lower case, "german"; empty if unknown
    std::vector<Segment> segments = {};
    std::optional<std::vector<Word>> words = {};  ///< absent when the engine does not know them
    bool isTranslation = false;                   ///< into English
};

}  // namespace quietlark
