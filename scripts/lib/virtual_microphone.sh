# shellcheck shell=bash
# A sound server of its own with one microphone, which hears whatever is played into the room.

# PipeWire where the computer has that and no PulseAudio: Debian's packages of the two do not go
# together on a usual desktop. Names the list of its packages, too.
sound_server() {
    if command -v pipewire >/dev/null && ! command -v pulseaudio >/dev/null; then
        echo pipewire
    else
        echo pulseaudio
    fi
}

start_microphone() {
    "start_$(sound_server)"
    wait_until 30 pactl set-default-source microphone ||
        fail "The sound server ($(sound_server)) did not start."
    # A room nobody listens to falls asleep, and takes up to two seconds to wake.
    start listener parec --latency-msec=20 --device=microphone --format=s16le --rate=16000 \
        --channels=1 /dev/null
    wait_until 30 microphone_is_recorded_by 1 || fail "The virtual microphone does not work."
}

start_pulseaudio() {
    start sound_server pulseaudio --daemonize=no --exit-idle-time=-1 --disable-shm=yes -n \
        --load="module-native-protocol-unix" \
        --load="module-null-sink sink_name=room" \
        --load="module-remap-source master=room.monitor source_name=microphone" \
        --load="module-always-sink"
    sound_server_id=$started_id
}

start_pipewire() {
    start pipewire pipewire
    wait_until 30 test -S "$XDG_RUNTIME_DIR/pipewire-0" || fail "PipeWire did not start."
    start wireplumber wireplumber
    start sound_server pipewire-pulse
    sound_server_id=$started_id
    wait_until 30 pactl info || fail "PipeWire's sound server (pipewire-pulse) did not start."
    pactl load-module module-null-sink sink_name=room >/dev/null
    pactl load-module module-remap-source master=room.monitor source_name=microphone >/dev/null
}

# microphone_is_recorded_by N: N programs at least, the listener above included. What the sound
# server itself records has no client.
microphone_is_recorded_by() {
    [ "$(pactl list short source-outputs | awk '$3 != "-"' | wc -l)" -ge "$1" ]
}

# synthesise TEXT FILE.wav
synthesise() {
    flite -voice rms --setf duration_stretch=1.2 -t "$1" -o "$2"
}

# say_into_microphone FILE.wav: returns when the last word has been heard. The sound server gets all
# of a sentence ahead of time, so that a busy machine leaves no gaps in it.
say_into_microphone() {
    paplay --latency-msec=2000 --device=room "$1" || fail "The recording $1 could not be played."
}
