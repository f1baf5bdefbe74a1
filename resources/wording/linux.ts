<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<!-- What a text says on Linux, where it names a part of macOS. All others stay as they are. -->
<TS version="2.1" language="en">
<context>
    <name>DoneStepTexts</name>
    <message>
        <source>%1 takes about %2 the audio length to transcribe. You can switch to this Mac later in Preferences.</source>
        <translation>%1 takes about %2 the audio length to transcribe. You can switch to this computer later in Preferences.</translation>
    </message>
</context>
<context>
    <name>HotkeyDisplay</name>
    <message>
        <source>⌃</source>
        <comment>compact</comment>
        <translation>Ctrl+</translation>
    </message>
    <message>
        <source>⌃</source>
        <comment>joined</comment>
        <translation>Ctrl</translation>
    </message>
    <message>
        <source>⌃</source>
        <comment>chip</comment>
        <translation>Ctrl</translation>
    </message>
    <message>
        <source>⌥</source>
        <comment>compact</comment>
        <translation>Alt+</translation>
    </message>
    <message>
        <source>⌥</source>
        <comment>joined</comment>
        <translation>Alt</translation>
    </message>
    <message>
        <source>⌥</source>
        <comment>chip</comment>
        <translation>Alt</translation>
    </message>
    <message>
        <source>Opt</source>
        <translation>Alt</translation>
    </message>
    <message>
        <source>⇧</source>
        <comment>compact</comment>
        <translation>Shift+</translation>
    </message>
    <message>
        <source>⇧</source>
        <comment>joined</comment>
        <translation>Shift</translation>
    </message>
    <message>
        <source>⇧</source>
        <comment>chip</comment>
        <translation>Shift</translation>
    </message>
    <message>
        <source>⌘</source>
        <comment>compact</comment>
        <translation>Super+</translation>
    </message>
    <message>
        <source>⌘</source>
        <comment>joined</comment>
        <translation>Super</translation>
    </message>
    <message>
        <source>⌘</source>
        <comment>chip</comment>
        <translation>Super</translation>
    </message>
    <message>
        <source>Cmd</source>
        <translation>Super</translation>
    </message>
    <message>
        <source>fn </source>
        <comment>compact</comment>
        <translation>Fn+</translation>
    </message>
    <message>
        <source>fn</source>
        <comment>joined</comment>
        <translation>Fn</translation>
    </message>
    <message>
        <source>fn</source>
        <comment>chip</comment>
        <translation>Fn</translation>
    </message>
    <message>
        <source>⏎</source>
        <translation>Enter</translation>
    </message>
    <message>
        <source>⇥</source>
        <translation>Tab</translation>
    </message>
    <message>
        <source>⎋</source>
        <translation>Esc</translation>
    </message>
    <message>
        <source>⌫</source>
        <translation>Backspace</translation>
    </message>
</context>
<context>
    <name>LocalServerSummary</name>
    <message>
        <source>On this Mac</source>
        <translation>On this computer</translation>
    </message>
    <message>
        <source>On this Mac (%1)</source>
        <translation>On this computer (%1)</translation>
    </message>
</context>
<context>
    <name>PermissionList</name>
    <message>
        <source>Synthesize ⌘V to paste.</source>
        <translation>Press Ctrl+V for you, to paste.</translation>
    </message>
    <message>
        <source>Synthesize ⌘V to paste the transcript.</source>
        <translation>Press Ctrl+V for you, to paste the transcript.</translation>
    </message>
</context>
<context>
    <name>ServerCopy</name>
    <message>
        <source>Transcribe on this Mac</source>
        <translation>Transcribe on this computer</translation>
    </message>
    <message>
        <source>1 server, slower than this Mac.</source>
        <translation>1 server, slower than this computer.</translation>
    </message>
    <message numerus="yes">
        <source>%n servers, all slower than this Mac.</source>
        <translation>
            <numerusform>%n server, slower than this computer.</numerusform>
            <numerusform>%n servers, all slower than this computer.</numerusform>
        </translation>
    </message>
    <message>
        <source>Faster than this Mac</source>
        <translation>Faster than this computer</translation>
    </message>
    <message>
        <source>Slower than this Mac</source>
        <translation>Slower than this computer</translation>
    </message>
</context>
<context>
    <name>quietlark::DoneStepModel</name>
    <message>
        <source>Quietlark Server needs your approval in System Settings → General → Login Items &amp; Extensions. Toggle it on and we'll pick up from there.</source>
        <translation>Quietlark Server is not allowed to run: its service is masked. Allow it with “systemctl --user unmask net.quietlark.server.service” and we'll pick up from there.</translation>
    </message>
    <message>
        <source>You skipped the server setup. Click the Quietlark icon in your menu bar and choose Preferences → Server to finish setting up.</source>
        <translation>You skipped the server setup. Click the Quietlark icon in the system tray and choose Preferences → Server to finish setting up.</translation>
    </message>
</context>
<context>
    <name>quietlark::GeneralPane</name>
    <message>
        <source>Stops the server, deletes the model and settings, revokes permissions (admin password required), and moves the app to the Trash.</source>
        <translation>Stops the server, deletes the model and settings, and moves the program to the Trash.</translation>
    </message>
</context>
<context>
    <name>quietlark::OnboardingView</name>
    <message>
        <source>Dictate with a global hotkey, transcribed on your Mac or by a server on your LAN.</source>
        <translation>Dictate with a global hotkey, transcribed on your computer or by a server on your LAN.</translation>
    </message>
</context>
<context>
    <name>quietlark::PermissionsAlertView</name>
    <message>
        <source>Grant each item below in System Settings to dictate again.</source>
        <translation>Grant each item below to dictate again.</translation>
    </message>
</context>
<context>
    <name>quietlark::ServerCardsPage</name>
    <message>
        <source>On this Mac</source>
        <translation>On this computer</translation>
    </message>
</context>
<context>
    <name>quietlark::ServerPane</name>
    <message>
        <source>Approve in System Settings to start transcription.</source>
        <translation>The server's service is masked. Allow it with “systemctl --user unmask net.quietlark.server.service” to start transcription.</translation>
    </message>
</context>
<context>
    <name>quietlark::WindowPresenter</name>
    <message>
        <source>Move Quietlark to Applications</source>
        <translation>Install Quietlark</translation>
    </message>
    <message>
        <source>Quietlark needs to live in your Applications folder so macOS can start the background server reliably.

Quit, drag Quietlark to Applications, then open it from there.</source>
        <translation>Quietlark needs to be installed in /opt or ~/.local/opt, or as a package, so that your system can start the background server reliably.

Quit, install Quietlark, then start it from there.</translation>
    </message>
    <message>
        <source>This will stop the background server, delete the downloaded model and all settings, revoke granted permissions, and move Quietlark to the Trash. macOS will prompt for your administrator password to revoke the permissions. You can always reinstall by downloading the app again.</source>
        <translation>This will stop the background server, delete the downloaded model and all settings, and move Quietlark to the Trash. You can always install it again.</translation>
    </message>
</context>
</TS>
