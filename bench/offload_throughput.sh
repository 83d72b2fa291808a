#!/usr/bin/env bash
# Offload of a card to two destinations against doing the same by hand:
# "cp -a" to each destination, "sync", then "xxhsum -H1" of the source and of
# both copies with the copies' pages dropped from the cache. Also reports the
# offload's peak resident memory (GNU time's maximum resident set size).
#
#   bench/offload_throughput.sh [data folder]   (default: <build folder>/bench-data)
#   SIZE_MIB=1024 RUNS=3 BUILD=build-bench bench/offload_throughput.sh
#
# The card is a generated card with a random file of SIZE_MIB beside its
# clips, made once; both destinations lie in the data folder (one disk).
set -euo pipefail
cd "$(dirname "$0")/.."

BUILD=${BUILD:-build-bench}
DATA=${1:-$PWD/$BUILD/bench-data}
SIZE_MIB=${SIZE_MIB:-1024}
RUNS=${RUNS:-3}

command -v xxhsum >/dev/null || { echo "xxhsum is missing (scripts/install-deps.sh installs it)" >&2; exit 1; }
[ -x /usr/bin/time ] || { echo "GNU time (/usr/bin/time) is missing" >&2; exit 1; }
cmake -S . -B "$BUILD" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCLIPWRIGHT_BENCH=ON -DCLIPWRIGHT_TESTS=OFF >/dev/null
cmake --build "$BUILD" --target clipwright-cli cardgen >/dev/null
CLI=$PWD/$BUILD/tools/cli/clipwright-cli

CARD=$DATA/offload-card
mkdir -p "$DATA"
if [ "$(stat -c %s "$CARD/BPAV/CLPR/FILLER.BIN" 2>/dev/null || echo 0)" != "$((SIZE_MIB * 1048576))" ]; then
  rm -rf "$CARD"
  "$BUILD/tools/cardgen/cardgen" "$CARD" --clips 3 >/dev/null
  head -c "$((SIZE_MIB * 1048576))" /dev/urandom >"$CARD/BPAV/CLPR/FILLER.BIN"
  sync
fi
export HOME=$DATA/home # the tool's settings and log stay out of the real home
mkdir -p "$HOME"

now() { date +%s.%N; }
calc() { awk "BEGIN { print $1 }"; }
median() { sort -g | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }
drop_tree() { find "$1" -type f -exec dd if={} iflag=nocache count=0 status=none \;; }
clean() { rm -rf "$DATA/d1" "$DATA/d2"; mkdir -p "$DATA/d1" "$DATA/d2"; sync; sleep 1; }

ours=() hand=() rss=()
for _ in $(seq "$RUNS"); do
  clean
  cat "$CARD"/BPAV/CLPR/FILLER.BIN >/dev/null
  start=$(now)
  /usr/bin/time -f %M -o "$DATA/rss" "$CLI" offload --name CARD "$CARD" "$DATA/d1" "$DATA/d2" >/dev/null
  ours+=("$(calc "$(now) - $start")")
  rss+=("$(cat "$DATA/rss")")

  clean
  cat "$CARD"/BPAV/CLPR/FILLER.BIN >/dev/null
  start=$(now)
  cp -a "$CARD" "$DATA/d1/CARD"
  cp -a "$CARD" "$DATA/d2/CARD"
  sync
  drop_tree "$DATA/d1/CARD"
  drop_tree "$DATA/d2/CARD"
  (cd "$CARD" && find . -type f -exec xxhsum -H1 {} + >/dev/null)
  (cd "$DATA/d1/CARD" && find . -type f -exec xxhsum -H1 {} + >/dev/null)
  (cd "$DATA/d2/CARD" && find . -type f -exec xxhsum -H1 {} + >/dev/null)
  hand+=("$(calc "$(now) - $start")")
done
clean

o=$(printf '%s\n' "${ours[@]}" | median)
h=$(printf '%s\n' "${hand[@]}" | median)
r=$(printf '%s\n' "${rss[@]}" | sort -g | tail -1)
echo "card: $SIZE_MIB MiB + a generated card, two destinations on one disk, $RUNS runs (medians)"
echo "offload: ${o} s   by hand (cp -a ×2, sync, xxhsum of all three): ${h} s   ratio (by hand / offload): $(calc "$h / $o")"
echo "offload peak RSS: $(calc "$r / 1024") MiB"
