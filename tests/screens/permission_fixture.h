#pragma once

#include "fakes/fake_privacy.h"
#include "permissions/permissions.h"
#include "state/app_state_fixture.h"

namespace quietlark {

/// The application's state on a computer whose user grants what the test says; nothing at first.
class PermissionFixture : public AppStateFixture {
protected:
    static QString text(const char* utf8) { return QString::fromUtf8(utf8); }

    void grantAllButLocalNetwork() {
        for (const auto grant :
             {PrivacyGrant::Microphone, PrivacyGrant::InputMonitoring, PrivacyGrant::Accessibility})
            privacy.grant(grant);
    }
    void grantAll() {
        grantAllButLocalNetwork();
        localNetwork = true;
    }

    FakePrivacy privacy;
    bool localNetwork = false;
    Permissions permissions{privacy, panes, scheduler, {[this] { return localNetwork; }}};
};

}  // namespace quietlark
