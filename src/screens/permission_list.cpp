#include "screens/permission_list.h"

namespace quietlark {

std::vector<PermissionRow> PermissionList::all(const Permissions::Status& status) const {
    Permissions& permissions = m_permissions;
    return {
        {tr("Microphone"), tr("Capture your voice."), status.microphone,
         [&permissions] { permissions.grantMic(); }},
        {tr("Input Monitoring"), tr("Hear the global hotkey."), status.inputMonitoring,
         [&permissions] { permissions.grantInputMonitoring(); }},
        {tr("Accessibility"), tr("Synthesize ⌘V to paste."), status.accessibility,
         [&permissions] { permissions.grantAccessibility(); }},
        {tr("Local Network"), tr("Discover transcription servers on your LAN."),
         status.localNetwork, [&permissions] { permissions.grantLocalNetwork(); }},
    };
}

std::vector<PermissionRow> PermissionList::missing(const Permissions::Status& status) const {
    auto rows = all(status);
    rows[0].blurb = tr("Capture your voice for transcription.");
    rows[1].blurb = tr("Hear the global dictation hotkey.");
    rows[2].blurb = tr("Synthesize ⌘V to paste the transcript.");
    std::erase_if(rows, [](const PermissionRow& row) { return row.isGranted; });
    return rows;
}

}  // namespace quietlark
