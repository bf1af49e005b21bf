#!/bin/sh
# zelkin's HTML report drawn by a real browser: headless Chromium loads the
# page, runs its script and hands back the page as it left it. The script
# must have drawn every plot it set out to draw (data-plots-drawn equal to
# data-plots-expected, above 0) and met no error (no data-script-errors).
# Three pages: the demo part, which passes; the dome part, whose findings
# are drawn as well; and the demo part with one line of its second ply
# moved, opened on that line's course: the plots must show that course
# alone and mark the finding at the line's path length, worked out here
# from the NC text.
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

fail() { # MESSAGE
    echo "$1" >&2
    cat "$work/browser.log" >&2
    exit 1
}

# The page at ADDRESS once its scripts have run, one tag a line; the
# virtual time budget lets them finish before the page is dumped.
drawn_page() { # ADDRESS
    HOME="$work" timeout 120 "$browser" --headless --no-sandbox --disable-gpu --disable-dev-shm-usage \
        --user-data-dir="$work/profile" --virtual-time-budget=10000 --dump-dom "$1" \
        2> "$work/browser.log" | tr '\n' ' ' | sed 's/</\n</g' || true
}

attribute() { # TAG NAME
    printf '%s\n' "$1" | sed -n "s/.* $2=\"\([^\"]*\)\".*/\1/p"
}

# The first tag of PAGE that starts with START.
tag() { # PAGE START
    printf '%s\n' "$1" | grep -F -m 1 -- "$2" || true
}

# The tag of the plot NAME in the plots of PLY.
plot_tag() { # PAGE PLY NAME
    printf '%s\n' "$1" | sed -n "/^<div class=\"plots\" id=\"plots-$2\"/,/^<div class=\"plots\"/p" |
        grep -F -m 1 -- "data-plot=\"$3\"" || true
}

check_drawn() { # NAME PAGE
    body=$(tag "$2" '<body')
    drawn=$(attribute "$body" data-plots-drawn)
    expected=$(attribute "$body" data-plots-expected)
    errors=$(attribute "$body" data-script-errors)
    echo "$1: ${body:-no page}"
    if [ -z "$expected" ] || [ "$expected" -eq 0 ] || [ "$drawn" != "$expected" ] || [ "${errors:-0}" -ne 0 ]; then
        fail "$1: the script drew ${drawn:-no} of ${expected:-no} plots, with ${errors:-0} errors"
    fi
}

# Writes the report of the NC in FOLDER; the page is written whether the
# checks pass (status 0) or fail (1).
report() { # FOLDER TOOLPATH PAGE
    status=0
    "$zelkin" report --quiet --machine "$machine" --toolpath "$2" --nc "$1" -o "$3" > /dev/null 2>&1 || status=$?
    if [ "$status" -gt 1 ]; then
        fail "$3: the report ended with status $status"
    fi
}

check() { # NAME TOOLPATH
    "$zelkin" post --quiet --machine "$machine" --toolpath "$2" --output "$work/$1-nc" > /dev/null 2>&1
    report "$work/$1-nc" "$2" "$work/$1.html"
    check_drawn "$1" "$(drawn_page "file://$work/$1.html")"
}

check demo "$toolpath"
"$zelkin" generate-toolpath --part dome --plies 0,90 -o "$work/dome.json" > /dev/null
check dome "$work/dome.json"

# The tenth line along course 3 of ply 0102, its X word a tenth of an inch
# further on.
ply="$work/demo-nc/cylinder-section/cylinder-section#0102.PPF"
line=$(awk '/^;\[COURSE\] CourseNumber=3,/ { course = 1 } course && /^COURSE_MODE$/ { print NR + 10; exit }' "$ply")
awk -v line="$line" 'NR == line && match($0, /X-?[0-9]+\.[0-9]+/) {
        $0 = substr($0, 1, RSTART) sprintf("%.4f", substr($0, RSTART + 1, RLENGTH - 1) + 0.1) substr($0, RSTART + RLENGTH)
    } { print }' "$ply" > "$work/moved.PPF"
mv "$work/moved.PPF" "$ply"
# The roller centre's path length up to that line: X, Y and Z in inches,
# each kept until a line writes it again, from the ply's first motion line.
length=$(awk -v line="$line" '
    function word(text, name) {
        if (!match(text, name "-?[0-9]+(\\.[0-9]+)?"))
            return ""
        return substr(text, RSTART + 1, RLENGTH - 1) * 25.4
    }
    /^N[0-9]/ {
        text = $0
        sub(/;.*/, "", text)
        if ((value = word(text, "X")) != "") x = value
        if ((value = word(text, "Y")) != "") y = value
        if ((value = word(text, "Z")) != "") z = value
        if (started) s += sqrt((x - px) ^ 2 + (y - py) ^ 2 + (z - pz) ^ 2)
        started = 1; px = x; py = y; pz = z
        if (NR == line) { printf "%.2f\n", s; exit }
    }' "$ply")
report "$work/demo-nc" "$toolpath" "$work/moved.html"
page=$(drawn_page "file://$work/moved.html#ply-0102&courses=3")
check_drawn moved "$page"
plots=$(tag "$page" '<div class="plots" id="plots-0102"')
[ "$(attribute "$plots" data-view)" = "3-3" ] || fail "moved: the plots of ply 0102 show '$(attribute "$plots" data-view)', not course 3"
whole=$(attribute "$(plot_tag "$page" 0102 overview)" data-x-range)
for axis in X C U; do
    plot=$(plot_tag "$page" 0102 "axis-$axis")
    range=$(attribute "$plot" data-x-range)
    marks=$(attribute "$plot" data-marks)
    echo "moved: line $line at $length mm; $axis plots $range mm of $whole, marks at $marks"
    awk -v s="$length" -v range="$range" -v whole="$whole" -v marks="$marks" 'BEGIN {
        split(range, r, " "); split(whole, w, " ")
        if (!(r[1] < s && s < r[2] && r[2] - r[1] < (w[2] - w[1]) / 2)) exit 1
        n = split(marks, m, " ")
        for (i = 1; i <= n; i++)
            if (m[i] - s < 0.02 && s - m[i] < 0.02) exit 0
        exit 1
    }' || fail "moved: the $axis plot of course 3 does not mark line $line at $length mm"
done
