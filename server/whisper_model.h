#pragma once

#include <string>

namespace quietlark {

/// Where the application puts the model that it downloads; `dataHome` and `home` are the variables
/// XDG_DATA_HOME and HOME, or empty. Empty when neither says.
[[nodiscard]] std::string usualModelFile(const std::string& dataHome, const std::string& home);

/// What to call a model: "whisper-large-v3-turbo" for ggml-large-v3-turbo.bin. A file FILE.name
/// beside FILE holds the name under which the model was published.
[[nodiscard]] std::string whisperModelId(const std::string& modelFile);

/// Which languages a model was made for.
enum class ModelLanguages { English, AllButCantonese, All };

/// By the size of its vocabulary, which the file begins with after four bytes of its format
/// (whisper.cpp, models/convert-pt-to-ggml.py). All when the file does not tell.
[[nodiscard]] ModelLanguages languagesOf(const std::string& modelFile);

}  // namespace quietlark
