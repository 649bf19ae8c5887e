#!/bin/sh
# Runs every fuzz target in turn, at low priority, for FUZZ_SECONDS seconds
# each (or FUZZ_RUNS executions), starting from the committed seeds; new
# inputs go to a scratch corpus in the build folder, findings to
# BUILD/findings. Prints the executions of each target; exits 1 on a finding.
# usage: fuzz/run.sh BUILD_FOLDER [TARGET...]
set -u
build=$1
shift
here=$(cd "$(dirname "$0")" && pwd)
seconds=${FUZZ_SECONDS:-60}
runs=${FUZZ_RUNS:--1}
targets=${*:-"Regex Utf8 CodePages StoredHeads WideList Masks Listings Zip Ini Log Languages"}
mkdir -p "$build/corpus" "$build/findings"
status=0
for t in $targets; do
  case $t in
    Regex) len=1024 ;;
    Zip|StoredHeads) len=4096 ;;
    *) len=2048 ;;
  esac
  mkdir -p "$build/corpus/$t"
  log="$build/$t.log"
  nice -n 19 "$build/fuzz/${t}Fuzz" -max_total_time="$seconds" -runs="$runs" -max_len="$len" \
    -timeout=20 -rss_limit_mb=2048 -print_final_stats=1 \
    -artifact_prefix="$build/findings/$t-" "$build/corpus/$t" "$here/seeds/$t" >"$log" 2>&1
  rc=$?
  execs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
  if [ $rc -ne 0 ]; then
    status=1
    echo "$t: FINDING after ${execs:-?} executions (see $log)"
  else
    echo "$t: ${execs:-?} executions, no finding"
  fi
done
exit $status
