#pragma once

#include <optional>

#include <QObject>
#include <QString>

#include "config/server_mode.h"
#include "picker/address_probe.h"
#include "servers/mdns_browser.h"

namespace quietlark {

class AppState;
struct ManualAddress;
class ServerRanker;

/// The user's way to a server: this computer or the network, then one of those found there, or an
/// address of their own. Lives as long as the screen it is shown on. Main thread.
class ServerPickerModel final : public QObject {
    Q_OBJECT

public:
    using ProbeState = quietlark::ProbeState;
    enum class Phase { cards, remoteList, manualEntry };
    enum class CardChoice { local, network };
    /// What there is beside going on.
    enum class WayOut { none, back, finishLater, cancel };

    struct Options {
        bool allowFinishLater = false;  ///< the choice may be left open
        bool offersCancel = false;      ///< the choice that was made before may be kept
    };

    /// What was chosen goes to `appState`; all must outlive the model.
    ServerPickerModel(AppState& appState, const ServerRanker& ranker, ServerResolver& resolver,
                      Scheduler& scheduler, Options options);

    [[nodiscard]] Phase phase() const { return m_phase; }
    void setPhase(Phase phase);

    [[nodiscard]] CardChoice cardSelection() const { return m_cardSelection; }
    void setCardSelection(CardChoice choice);

    /// The id() of the chosen server, which may have gone in the meantime.
    [[nodiscard]] const std::optional<QString>& listSelection() const { return m_listSelection; }
    void setListSelection(const std::optional<QString>& id);

    /// What the user has typed; another text is checked in the background.
    [[nodiscard]] const QString& manualHostPort() const { return m_manualHostPort; }
    void setManualHostPort(const QString& text);
    /// The last result stays until the next check begins.
    [[nodiscard]] const ProbeState& manualProbe() const { return m_probe.state(); }
    /// Whether that is about the address as it stands, and not as it was before the last edit.
    [[nodiscard]] bool manualProbeIsUpToDate() const { return m_probe.isUpToDate(); }

    /// How many choices have been stored, and how often the user has cancelled.
    [[nodiscard]] qint64 commitTick() const { return m_commitTick; }
    [[nodiscard]] qint64 cancelTick() const { return m_cancelTick; }

    /// The screen appears: the first time, selects the card that the settings suggest.
    void onAppear();
    /// The address field appears: shows the address in the settings, and checks what is there.
    void onManualEntryAppear();
    /// Nobody sees any more whether the address is right.
    void onManualEntryDisappear();

    /// Whether the phase has what it needs: a server chosen, or one that answers.
    [[nodiscard]] bool canAdvance() const;
    /// As canAdvance(), and the chosen server has not gone, nor the address changed since.
    [[nodiscard]] bool canConnect() const;
    /// Stores the choice, or goes from the cards to the list of servers.
    void advance();

    /// Each stores one choice and does what follows from it; nothing without what it needs.
    void commitLocal();
    void commitSelectedRemote();
    void commitManualIfReady();
    void commitFinishLater();

    [[nodiscard]] WayOut wayOut() const;
    /// Takes it.
    void leave();

Q_SIGNALS:
    /// Any of the above may answer something else once changed() is emitted, which follows at once.
    void willChange();
    /// Any of the above may answer something else now.
    void changed();
    /// After changed(). What follows from them may be the end of the model.
    void commitTickChanged(qint64 tick);
    void cancelTickChanged(qint64 tick);

private:
    template <typename Field>
    void publish(Field& field, const Field& value);
    [[nodiscard]] CardChoice initialCardSelection() const;
    [[nodiscard]] std::optional<MDNSBrowser::Entry> selectedRemote() const;
    /// manualHostPort(), where it is an address.
    [[nodiscard]] std::optional<ManualAddress> parsedManual() const;
    void scheduleProbe();
    void store(const ServerMode& mode);
    void announceCommit();

    AppState& m_appState;
    const ServerRanker& m_ranker;
    const Options m_options;
    Phase m_phase = Phase::cards;
    CardChoice m_cardSelection = CardChoice::local;
    bool m_selectionInitialized = false;
    std::optional<QString> m_listSelection;
    QString m_manualHostPort;
    qint64 m_commitTick = 0;
    qint64 m_cancelTick = 0;
    AddressProbe m_probe;
};

}  // namespace quietlark
