#include "ui/download_view.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "screens/download_text.h"
#include "ui/page_labels.h"

namespace quietlark {

DownloadView::DownloadView(ModelDownloader& downloader, Qt::AlignmentFlag side)
    : m_downloader(downloader),
      m_bar(new QProgressBar),
      m_text(makeCaption({})),
      m_retry(makeButton(tr("Try Again"))) {
    if (side == Qt::AlignHCenter) m_text->setAlignment(Qt::AlignCenter);
    m_bar->setAccessibleName(tr("Model download"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_bar);
    layout->addWidget(m_text);
    layout->addWidget(m_retry, 0, side);
    connect(m_retry, &QPushButton::clicked, &m_downloader, &ModelDownloader::start);
    connect(&m_downloader, &ModelDownloader::stateChanged, this, &DownloadView::refresh);
    connect(&m_downloader, &ModelDownloader::progressChanged, this, &DownloadView::refresh);
    refresh();
}

void DownloadView::refresh() {
    const auto shown = DownloadText::of(m_downloader.state(), m_downloader.progress());
    m_bar->setVisible(shown.showsBar);
    // Without an end it only says that something is going on.
    m_bar->setMaximum(shown.percent ? 100 : 0);
    m_bar->setValue(shown.percent.value_or(0));
    m_text->setVisible(!shown.text.isEmpty());
    m_text->setText(shown.text);
    m_retry->setVisible(shown.offersRetry);
}

}  // namespace quietlark
