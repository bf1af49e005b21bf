#!/bin/sh
# zelkin post of the demo part under valgrind: no invalid read or write, no
# use of uninitialised memory, no memory definitely lost.
#   valgrind-post.sh ZELKIN MACHINE
set -eu
zelkin="$1"
machine="$2"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$zelkin" generate-toolpath --part cylinder --plies 0,45,-45,90 -o "$work/demo.json" > /dev/null
valgrind --quiet --error-exitcode=1 --leak-check=full --errors-for-leak-kinds=definite \
    "$zelkin" post --machine "$machine" --toolpath "$work/demo.json" --output "$work/nc" > /dev/null
test -s "$work/nc/cylinder-section/cylinder-section.PPSF"
