#pragma once

#include <QWidget>

#include "local_server/model_downloader.h"

class QLabel;
class QProgressBar;

namespace quietlark {

/// How the model's download goes.
class DownloadView final : public QWidget {
    Q_OBJECT

public:
    /// `downloader` must outlive the view.
    explicit DownloadView(ModelDownloader& downloader);

private:
    void refresh();

    ModelDownloader& m_downloader;
    QProgressBar* m_bar;
    QLabel* m_text;
};

}  // namespace quietlark
