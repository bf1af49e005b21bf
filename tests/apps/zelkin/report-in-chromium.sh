#!/bin/sh
# zelkin's HTML report drawn by a real browser: headless Chromium loads the
# page, runs its script and hands back the page as it left it. The script
# must have drawn every plot it set out to draw (data-plots-drawn equal to
# data-plots-expected, above 0) and met no error (no data-script-errors).
# Two pages: the demo part, which passes, and the dome part, whose findings
# are drawn as well.
#   report-in-chromium.sh ZELKIN MACHINE TOOLPATH
# Exit status 77, which CTest counts as skipped, when no Chromium is installed.
set -eu
zelkin="$1"
machine="$2"
toolpath="$3"

browser=""
for candidate in chromium chromium-browser google-chrome; do
    if command -v "$candidate" > /dev/null 2>&1; then
        browser=$(command -v "$candidate")
        break
    fi
done
if [ -z "$browser" ]; then
    echo "no Chromium installed: skipped"
    exit 77
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The <body> tag of PAGE once its scripts have run; the virtual time budget
# lets them finish before the page is dumped.
drawn_body() { # PAGE
    HOME="$work" timeout 120 "$browser" --headless --no-sandbox --disable-gpu --disable-dev-shm-usage \
        --user-data-dir="$work/profile" --virtual-time-budget=10000 --dump-dom "file://$1" \
        2> "$work/browser.log" | grep -o '<body[^>]*>' | head -n 1 || true
}

attribute() { # BODY NAME
    printf '%s\n' "$1" | sed -n "s/.* $2=\"\([0-9]*\)\".*/\1/p"
}

check() { # NAME TOOLPATH
    name="$1"
    "$zelkin" post --machine "$machine" --toolpath "$2" --output "$work/$name-nc" > /dev/null 2>&1
    # The page is written whether the checks pass (status 0) or fail (1).
    status=0
    "$zelkin" report --machine "$machine" --toolpath "$2" --nc "$work/$name-nc" -o "$work/$name.html" \
        > /dev/null 2>&1 || status=$?
    if [ "$status" -gt 1 ]; then
        echo "$name: the report ended with status $status" >&2
        exit 1
    fi
    body=$(drawn_body "$work/$name.html")
    drawn=$(attribute "$body" data-plots-drawn)
    expected=$(attribute "$body" data-plots-expected)
    errors=$(attribute "$body" data-script-errors)
    echo "$name: ${body:-no page}"
    if [ -z "$expected" ] || [ "$expected" -eq 0 ] || [ "$drawn" != "$expected" ] || [ "${errors:-0}" -ne 0 ]; then
        echo "$name: the script drew ${drawn:-no} of ${expected:-no} plots, with ${errors:-0} errors" >&2
        cat "$work/browser.log" >&2
        exit 1
    fi
}

check demo "$toolpath"
"$zelkin" generate-toolpath --part dome --plies 0,90 -o "$work/dome.json" > /dev/null
check dome "$work/dome.json"
