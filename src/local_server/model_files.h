#pragma once

#include <QString>
#include <tl/expected.hpp>

namespace quietlark {

/// Where the speech model lives, and what lies beside it while it is fetched. The local server
/// reads the same directory. Any thread.
class ModelFiles {
public:
    /// The name under which the model is published.
    static constexpr const char* publishedName = "ggml-large-v3-turbo.bin";

    /// `$XDG_DATA_HOME/Quietlark/models`; `~/.local/share` where that is not set.
    [[nodiscard]] static ModelFiles atDefaultDirectory();
    explicit ModelFiles(QString directory);

    [[nodiscard]] const QString& directory() const { return m_directory; }
    /// The model itself.
    [[nodiscard]] QString active() const;
    /// The whole model on its way to active().
    [[nodiscard]] QString partial() const;
    /// What has been received of it so far.
    [[nodiscard]] QString received() const;
    /// What is needed to continue received() later; see ResumeData.
    [[nodiscard]] QString resume() const;
    /// Holds the published name of the model and a line end.
    [[nodiscard]] QString name() const;

    /// Whether the model is in place. A directory of that name is no model.
    [[nodiscard]] bool isInstalled() const;

    /// Creates the directory where there is nothing, readable by everybody (mode 0755); leaves it
    /// as it is otherwise. A failure is the system's description.
    [[nodiscard]] tl::expected<void, QString> ensureDirectory() const;

private:
    [[nodiscard]] QString file(const char* name) const;

    QString m_directory;
};

}  // namespace quietlark
