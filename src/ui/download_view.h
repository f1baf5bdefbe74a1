#pragma once

#include <QWidget>

#include "local_server/model_downloader.h"

class QLabel;
class QProgressBar;
class QPushButton;

namespace quietlark {

/// How the model's download goes.
class DownloadView final : public QWidget {
    Q_OBJECT

public:
    /// `downloader` must outlive the view. Text and button stand at that side.
    DownloadView(ModelDownloader& downloader, Qt::AlignmentFlag side);

private:
    void refresh();

    ModelDownloader& m_downloader;
    QProgressBar* m_bar;
    QLabel* m_text;
    QPushButton* m_retry;
};

}  // namespace quietlark
