#include "screens/permission_poll.h"

#include <algorithm>

#include "screens/permission_fixture.h"
#include "screens/permission_list.h"

namespace quietlark {
namespace {

class PermissionPollTest : public PermissionFixture {
protected:
    PermissionPoll& poll() {
        if (!m_poll) {
            m_poll.emplace(permissions, scheduler);
            QObject::connect(&*m_poll, &PermissionPoll::changed, [this] { ++changes; });
            QObject::connect(&*m_poll, &PermissionPoll::allGranted, [this] { ++allGranted; });
            m_poll->start();
        }
        return *m_poll;
    }

    QStringList missingLabels() {
        QStringList labels;
        for (const auto& row : list.missing(poll().status()))
            labels << row.label;
        return labels;
    }

    PermissionList list{permissions};
    int changes = 0;
    int allGranted = 0;

private:
    std::optional<PermissionPoll> m_poll;
};

TEST_F(PermissionPollTest, WithOnlyLocalNetworkMissingOneRowIsListed) {
    grantAllButLocalNetwork();
    EXPECT_EQ(missingLabels(), QStringList{text("Local Network")});
}

TEST_F(PermissionPollTest, WhatIsMissingIsListedInAFixedOrder) {
    EXPECT_EQ(missingLabels().join(u'|'),
              text("Microphone|Input Monitoring|Accessibility|Local Network"));
    QStringList blurbs;
    for (const auto& row : list.missing(poll().status()))
        blurbs << row.blurb;
    EXPECT_EQ(blurbs.join(u'|'),
              text("Capture your voice for transcription.|Hear the global dictation hotkey.|"
                   "Synthesize ⌘V to paste the transcript.|"
                   "Discover transcription servers on your LAN."));
}

TEST_F(PermissionPollTest, AllGrantedIsReportedAtTheFirstLookThatFindsItEvenIfNothingChanged) {
    grantAll();
    poll();
    EXPECT_EQ(allGranted, 0);
    scheduler.advance(PermissionPoll::interval);
    EXPECT_EQ(allGranted, 1);
    EXPECT_EQ(changes, 0);
}

TEST_F(PermissionPollTest, GrantingOneRemovesItsRowWithinASecondAndEndsNothing) {
    poll();
    privacy.grant(PrivacyGrant::InputMonitoring);
    scheduler.advance(PermissionPoll::interval);
    EXPECT_EQ(missingLabels().join(u'|'), text("Microphone|Accessibility|Local Network"));
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(allGranted, 0);
}

TEST_F(PermissionPollTest, AStoppedPollLooksNoMore) {
    poll().stop();
    grantAll();
    scheduler.advance(PermissionPoll::interval * 3);
    EXPECT_EQ(allGranted, 0);
}

TEST_F(PermissionPollTest, EachRowAsksForItsOwnGrant) {
    for (const auto& row : list.missing(poll().status()))
        row.grant();
    EXPECT_EQ(privacy.requests(),
              (std::vector{PrivacyGrant::Microphone, PrivacyGrant::InputMonitoring,
                           PrivacyGrant::Accessibility}));
    EXPECT_EQ(panes.opened().back(), SettingsPane::LocalNetwork);
}

}  // namespace
}  // namespace quietlark
