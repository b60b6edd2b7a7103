#!/bin/sh
# Joins captured PDFs with Corvalis, with "qpdf --empty --pages" and with pdfunite: time, size, and what
# is left of outlines and links, side by side. The PDFs are kept for the next run.
#
# usage: run.sh PROGRAM [FOLDER [COUNT]]    PROGRAM is the built pdf-merge-benchmark
set -eu
program=$1
folder=${2:-/tmp/corvalis-pdf-merge}
count=${3:-200}
here=$(dirname "$0")
browser=${CORVALIS_ENGINE:-chromium-headless-shell}

mkdir -p "$folder/pdf"
if [ ! -e "$folder/pages-$count" ]; then
  python3 "$here/make-pages.py" "$folder/html" "$count"
  touch "$folder/pages-$count"
fi

print_page() {
  "$browser" --no-sandbox --disable-gpu --user-data-dir="$folder/profile" \
    --host-resolver-rules="MAP * ~NOTFOUND, EXCLUDE localhost, EXCLUDE 127.0.0.1" \
    --no-pdf-header-footer --generate-pdf-document-outline --export-tagged-pdf \
    --print-to-pdf="$2" "file://$1" >/dev/null 2>&1
}

number=0
while [ "$number" -lt "$count" ]; do
  name=$(printf 'page%03d' "$number")
  [ -s "$folder/pdf/$name.pdf" ] || print_page "$folder/html/$name.html" "$folder/pdf/$name.pdf"
  number=$((number + 1))
done

set -- $(ls "$folder"/pdf/*.pdf | head -n "$count")
echo "$# documents, $(cat "$@" | wc -c) bytes"

measure() {
  name=$1 output=$2
  shift 2
  best=
  for round in 1 2 3 4 5; do
    rm -f "$output"
    start=$(date +%s%N)
    "$@"
    milliseconds=$((($(date +%s%N) - start) / 1000000))
    if [ -z "$best" ] || [ "$milliseconds" -lt "$best" ]; then best=$milliseconds; fi
  done
  links=$(pdfinfo -dests "$output" 2>/dev/null | grep -c '"' || true)
  outline=$(qpdf --json --json-key=outlines "$output" | grep -c '"title"' || true)
  printf '%-10s %6d ms %10d bytes %6d destinations %6d outline items\n' \
    "$name" "$best" "$(stat -c %s "$output")" "$links" "$outline"
}

measure corvalis "$folder/corvalis.pdf" "$program" "$folder/corvalis.pdf" "$@"
measure qpdf "$folder/qpdf.pdf" qpdf --empty --pages "$@" -- "$folder/qpdf.pdf"
measure pdfunite "$folder/pdfunite.pdf" pdfunite "$@" "$folder/pdfunite.pdf"
qpdf --check "$folder/corvalis.pdf" | tail -n 1
