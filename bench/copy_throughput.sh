#!/usr/bin/env bash
# Side-by-side throughput of copyFileWithProgress (10 MiB chunks, each flushed
# to disk) and of the shell's way to the same result, on one file:
#   - without verification, against "cp" followed by "sync" of the copy;
#   - with verification (the bytes hashed with XXH64 on their way, the copy
#     read back from the disk), against "cp", "sync", then "xxhsum" of the
#     source and of the copy with the copy's pages dropped from the cache,
#     and against "cp" + "sync" alone.
#
#   bench/copy_throughput.sh [data folder]   (default: <build folder>/bench-data)
#   SIZE_MIB=1024 RUNS=5 BUILD=build-bench DEST_DIR=/media/u/CARD bench/copy_throughput.sh
#
# The copies go to DEST_DIR (default: the data folder), which should lie on
# the disk to be measured; a DEST_DIR on another file system measures the
# buffered path that card-to-disk copies take. Every run measures the four
# ways one after the other so that all see the same machine load; medians
# are compared.
set -euo pipefail
cd "$(dirname "$0")/.."

BUILD=${BUILD:-build-bench}
DATA=${1:-$PWD/$BUILD/bench-data}
SIZE_MIB=${SIZE_MIB:-1024}
RUNS=${RUNS:-5}

command -v xxhsum >/dev/null || { echo "xxhsum is missing (scripts/install-deps.sh installs it)" >&2; exit 1; }
cmake -S . -B "$BUILD" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCLIPWRIGHT_BENCH=ON -DCLIPWRIGHT_TESTS=OFF >/dev/null
cmake --build "$BUILD" --target copy_bench >/dev/null
BENCH=$BUILD/bench/copy_bench

mkdir -p "$DATA"
DEST_DIR=${DEST_DIR:-$DATA}
mkdir -p "$DEST_DIR"
SRC=$DATA/source.bin
DST=$DEST_DIR/cp.copy
OURS=$DEST_DIR/ours.copy
if [ "$(stat -c %s "$SRC" 2>/dev/null || echo 0)" != "$((SIZE_MIB * 1048576))" ]; then
  head -c "$((SIZE_MIB * 1048576))" /dev/urandom >"$SRC"
  sync "$SRC"
fi
cat "$SRC" >/dev/null # every way reads the source from the page cache

now() { date +%s.%N; }
calc() { awk "BEGIN { print $1 }"; }
median() { sort -g | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }
hash_of() { xxhsum -H1 "$1" 2>/dev/null | cut -d' ' -f1; }
# Lets the disk finish what the removal of the last copy gave it (blocks
# freed, trimmed on a volume mounted with "discard") before the next one.
settle() { sync; sleep 1; }
# Drops a file's pages from the page cache (posix_fadvise POSIX_FADV_DONTNEED).
drop_cache() { dd if="$1" iflag=nocache count=0 status=none; }
# Seconds copyFileWithProgress took, verify 0 or 1.
ours() {
  local ms
  ms=$(COPY_BENCH_SOURCE="$SRC" COPY_BENCH_DEST="$OURS" "$BENCH" --benchmark_filter="BM_CopyWithProgress/verify:$1/" \
         --benchmark_format=csv 2>/dev/null | awk -F, '/^"BM_CopyWithProgress/ { print $3 }')
  [ -n "$ms" ] || { echo "copy_bench failed" >&2; exit 1; }
  calc "$ms / 1000"
}

cp_times=()
plain_times=()
verified_times=()
manual_times=()
for run in $(seq "$RUNS"); do
  rm -f "$DST" "$OURS"
  settle
  start=$(now)
  cp "$SRC" "$DST"
  sync "$DST"
  end=$(now)
  cp_times+=("$(calc "$end - $start")")
  rm -f "$DST"
  settle

  plain_times+=("$(ours 0)") # the copy is removed when it has been timed
  settle
  verified_times+=("$(ours 1)")
  settle

  start=$(now)
  cp "$SRC" "$DST"
  sync "$DST"
  source_hash=$(hash_of "$SRC")
  drop_cache "$DST"
  copy_hash=$(hash_of "$DST")
  end=$(now)
  [ "$source_hash" = "$copy_hash" ] || { echo "cp made a copy that differs from the source" >&2; exit 1; }
  manual_times+=("$(calc "$end - $start")")
  rm -f "$DST"

  printf 'run %d: cp+sync %.2f s, copy %.2f s, verified copy %.2f s, cp+sync+xxhsum %.2f s\n' "$run" \
    "${cp_times[-1]}" "${plain_times[-1]}" "${verified_times[-1]}" "${manual_times[-1]}"
done

cp_median=$(printf '%s\n' "${cp_times[@]}" | median)
plain_median=$(printf '%s\n' "${plain_times[@]}" | median)
verified_median=$(printf '%s\n' "${verified_times[@]}" | median)
manual_median=$(printf '%s\n' "${manual_times[@]}" | median)
line() { printf '%-36s %6.2f s  %5.0f MiB/s\n' "$1" "$2" "$(calc "$SIZE_MIB / $2")"; }
printf 'file: %d MiB, medians of %d runs\n' "$SIZE_MIB" "$RUNS"
line 'cp + sync:' "$cp_median"
line 'copyFileWithProgress:' "$plain_median"
line 'copyFileWithProgress, verified:' "$verified_median"
line 'cp + sync + xxhsum of both:' "$manual_median"
printf 'throughput ratio, copy / cp+sync:                    %.2f (target >= 0.9)\n' \
  "$(calc "$cp_median / $plain_median")"
printf 'throughput ratio, verified copy / cp+sync+xxhsum:    %.2f (target >= 1.0)\n' \
  "$(calc "$manual_median / $verified_median")"
printf 'throughput ratio, verified copy / cp+sync:           %.2f (target >= 0.5)\n' \
  "$(calc "$cp_median / $verified_median")"

if [ "${WITH_PAUSE:-0}" = 1 ]; then
  COPY_BENCH_SOURCE="$SRC" COPY_BENCH_DEST="$OURS" "$BENCH" --benchmark_filter='DefaultPause'
fi
