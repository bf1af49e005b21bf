#!/bin/sh
# run-for-cpu-time.sh SECONDS FUZZER [ARGUMENT...]
#
# Runs the libFuzzer target FUZZER with its arguments until its process has
# used SECONDS of CPU time (user plus system), then interrupts it as Ctrl-C
# would, so that libFuzzer prints its final figures and exits. A fuzzer that
# shares its cores with other work takes longer in wall time and does the
# same work. Exits 0 when the budget ends the run (libFuzzer's status for an
# interrupted run is 72), and with the fuzzer's own status otherwise: a
# finding, or a fuzzer that could not start.
set -u
budget=$1
shift
"$@" &
pid=$!
ticks=$(getconf CLK_TCK)
stopped=no
while kill -0 "$pid" 2>/dev/null; do
    sleep 5
    # Fields 14 and 15 of /proc/PID/stat: user and system time in ticks.
    used=$(awk -v t="$ticks" '{ print int(($14 + $15) / t) }' "/proc/$pid/stat" 2>/dev/null) || break
    [ -n "$used" ] || break
    if [ "$used" -ge "$budget" ]; then
        echo "run-for-cpu-time: $used s of CPU time used, stopping the fuzzer" >&2
        kill -INT "$pid"
        stopped=yes
        break
    fi
done
wait "$pid"
status=$?
if [ "$stopped" = yes ] && [ "$status" -eq 72 ]; then
    exit 0
fi
exit "$status"
