#pragma once

#include <chrono>
#include <memory>
#include <vector>

#include <QObject>
#include <QString>

namespace quietlark {

class AppState;
class Scheduler;
class ServerPickerModel;
class ServerRanker;

/// One server as the list shows it.
struct ServerRow {
    QString id;       ///< the entry's id()
    QString name;     ///< one line of plain text
    QString address;  ///< HOST:PORT, one line of plain text
    QString hint;     ///< empty for none
    /// The address where another row has the same name; else empty.
    QString detail = {};

    bool operator==(const ServerRow&) const = default;
};

/// What the choice of a server says of this computer and of the network while it is on the screen.
/// Main thread.
class ServerStep final : public QObject {
    Q_OBJECT

public:
    /// After this long without a server the search says that there is none.
    static constexpr std::chrono::milliseconds initialScan{3000};

    ServerStep(ServerPickerModel& model, AppState& appState, const ServerRanker& ranker,
               Scheduler& scheduler);
    ~ServerStep() override;

    /// Searches the network from appear() to disappear().
    void appear();
    void disappear();

    [[nodiscard]] QString localCardCopy() const;
    [[nodiscard]] QString networkCardCopy() const;
    /// All servers, in the order of their last answers. The network's search bounds the number of
    /// services, and MDNSBrowser how often each is among them.
    [[nodiscard]] std::vector<ServerRow> rows() const;

Q_SIGNALS:
    /// Any of the texts may be another now.
    void changed();

private:
    void onInitialScanDone();

    AppState& m_appState;
    const ServerRanker& m_ranker;
    Scheduler& m_scheduler;
    ServerPickerModel& m_model;
    std::unique_ptr<QObject> m_screen;  ///< while it is shown
    bool m_initialScanIsDone = false;
};

}  // namespace quietlark
