#!/usr/bin/env bash
# Side-by-side throughput of copyFileWithProgress (10 MiB chunks, each flushed
# to disk) and of "cp" followed by "sync" of the copied file, on one file.
#
#   bench/copy_throughput.sh [data folder]   (default: <build folder>/bench-data)
#   SIZE_MIB=1024 RUNS=5 BUILD=build-bench DEST_DIR=/media/u/CARD bench/copy_throughput.sh
#
# The copies go to DEST_DIR (default: the data folder), which should lie on
# the disk to be measured; a DEST_DIR on another file system measures the
# buffered path that card-to-disk copies take. Runs alternate
# between the two so that both see the same machine load; medians are compared.
set -euo pipefail
cd "$(dirname "$0")/.."

BUILD=${BUILD:-build-bench}
DATA=${1:-$PWD/$BUILD/bench-data}
SIZE_MIB=${SIZE_MIB:-1024}
RUNS=${RUNS:-5}

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
cat "$SRC" >/dev/null # both read from the page cache

now() { date +%s.%N; }
calc() { awk "BEGIN { print $1 }"; }
median() { sort -g | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }

cp_times=()
our_times=()
for run in $(seq "$RUNS"); do
  rm -f "$DST"
  start=$(now)
  cp "$SRC" "$DST"
  sync "$DST"
  end=$(now)
  cp_times+=("$(calc "$end - $start")")
  rm -f "$DST"

  ms=$(COPY_BENCH_SOURCE="$SRC" COPY_BENCH_DEST="$OURS" "$BENCH" --benchmark_filter='BM_CopyWithProgress/' --benchmark_format=csv 2>/dev/null |
       awk -F, '/^"BM_CopyWithProgress/ { print $3 }')
  our_times+=("$(calc "$ms / 1000")")
  printf 'run %d: cp+sync %.2f s, copyFileWithProgress %.2f s\n' "$run" "${cp_times[-1]}" "${our_times[-1]}"
done

cp_median=$(printf '%s\n' "${cp_times[@]}" | median)
our_median=$(printf '%s\n' "${our_times[@]}" | median)
printf 'file: %d MiB\n' "$SIZE_MIB"
printf 'cp + sync:            %.2f s  %.0f MiB/s\n' "$cp_median" "$(calc "$SIZE_MIB / $cp_median")"
printf 'copyFileWithProgress: %.2f s  %.0f MiB/s\n' "$our_median" "$(calc "$SIZE_MIB / $our_median")"
printf 'throughput ratio (copyFileWithProgress / cp+sync): %.2f\n' "$(calc "$cp_median / $our_median")"

if [ "${WITH_PAUSE:-0}" = 1 ]; then
  COPY_BENCH_SOURCE="$SRC" COPY_BENCH_DEST="$OURS" "$BENCH" --benchmark_filter='DefaultPause'
fi
