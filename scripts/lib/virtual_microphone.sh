# shellcheck shell=bash
# A sound server of its own with one microphone, which hears whatever is played into the room.

start_microphone() {
    start sound_server pulseaudio --daemonize=no --exit-idle-time=-1 --disable-shm=yes -n \
        --load="module-native-protocol-unix" \
        --load="module-null-sink sink_name=room" \
        --load="module-remap-source master=room.monitor source_name=microphone" \
        --load="module-always-sink"
    wait_until 30 pactl set-default-source microphone ||
        fail "The sound server (pulseaudio) did not start."
    # A room nobody listens to falls asleep, and takes up to two seconds to wake.
    start listener parec --latency-msec=20 --device=microphone --format=s16le --rate=16000 --channels=1 /dev/null
    wait_until 30 microphone_is_recorded_by 1 || fail "The virtual microphone does not work."
}

# microphone_is_recorded_by N: N programs at least, the listener above included.
microphone_is_recorded_by() {
    [ "$(pactl list short source-outputs | grep -c protocol-native)" -ge "$1" ]
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
