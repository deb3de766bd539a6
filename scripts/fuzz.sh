#!/usr/bin/env bash
# Builds the libFuzzer targets with clang (ASan + UBSan) in build-fuzz/ and runs each
# for the given number of seconds (default 60), starting from its seed corpus. Inputs go
# up to 1 MiB at once (-len_control=0), so slow-downs that grow with a file's size show
# up, and an input that runs longer than 10 s is a finding (-timeout=10).
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
CC=clang CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DVEXO_BUILD_GUI=OFF -DVEXO_BUILD_TESTS=OFF -DVEXO_BUILD_BENCH=OFF -DVEXO_BUILD_FUZZ=ON >/dev/null
cmake --build build-fuzz -j"$(nproc)"
status=0
for fuzzer in build-fuzz/bin/fuzz_*; do
  [ -x "$fuzzer" ] || continue
  name=$(basename "$fuzzer")
  corpus="build-fuzz/corpus/$name"
  mkdir -p "$corpus"
  seeds=()
  [ -d "fuzz/seeds/$name" ] && seeds+=("fuzz/seeds/$name")
  echo "fuzz: $name for ${seconds}s"
  if ! "$fuzzer" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -max_len=1048576 -len_control=0 \
       -print_final_stats=0 "$corpus" "${seeds[@]}" >"build-fuzz/$name.log" 2>&1; then
    echo "fuzz: $name FAILED"; tail -40 "build-fuzz/$name.log"; status=1
  fi
done
[ $status -eq 0 ] && echo "fuzz: all fuzzers ran clean"
exit $status
