#!/usr/bin/env bash
# Playing live: a private JACK server (dummy driver, no real-time scheduling) runs the amp as
# jalv's client, and jack_probe plays a tone through it and checks the take. Everything this
# script starts is stopped on every way out, by process id.
#
#   jack_live_test.sh LV2_DIR JACK_PROBE
#
# Exit 0 pass, 77 skipped (jackd or jalv missing, or every take disturbed), anything else a
# failure.
set -euo pipefail
lv2_dir=$1
probe=$2

for tool in jackd jack_wait jalv; do
  if ! command -v "$tool" >/dev/null; then
    echo "skipped: $tool is not installed (scripts/install-deps installs it)"
    exit 77
  fi
done

work=$(mktemp -d)
server="tarnwell-test-$$"
amp="tarnwell-amp-$$"
jackd_pid=""
jalv_pid=""
stop() {
  set +e
  for pid in $jalv_pid $jackd_pid; do
    kill "$pid" 2>/dev/null
    wait "$pid" 2>/dev/null
  done
  exec 3>&-
  rm -rf "$work"
}
trap stop EXIT
trap 'exit 130' INT TERM

export JACK_DEFAULT_SERVER=$server
export JACK_NO_AUDIO_RESERVATION=1 JACK_NO_START_SERVER=1
export LV2_PATH=$lv2_dir

jackd --no-realtime -n "$server" -d dummy -r 48000 -p 1024 >"$work/jackd.log" 2>&1 &
jackd_pid=$!
if ! jack_wait -w -t 60 >/dev/null; then
  echo "the JACK server did not start"; cat "$work/jackd.log"
  exit 1
fi

# jalv reads commands from its input and quits at its end: hold a pipe open for it.
mkfifo "$work/commands"
exec 3<>"$work/commands"
jalv -x -n "$amp" -c treble=8 urn:tarnwell:amp <&3 >"$work/jalv.log" 2>&1 &
jalv_pid=$!

status=0
"$probe" "$amp" 8 || status=$?
if [ "$status" -eq 77 ]; then
  echo "skipped: every take was disturbed by xruns"
  exit 77
elif [ "$status" -ne 0 ]; then
  echo "--- jackd:"; cat "$work/jackd.log"
  echo "--- jalv:"; cat "$work/jalv.log"
  exit 1
fi
