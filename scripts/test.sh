#!/usr/bin/env bash
# Builds and runs every test: the release build with the unit, integration, export,
# package and 32-bit layout tests, against Qt 5 and again against Qt 6 (build/qt6, without the
# benchmarks); a clang build with AddressSanitizer and UndefinedBehaviorSanitizer
# running the same tests (a short endurance run among them, under the leak checker); the fuzz
# targets for a bounded time with leak detection; and a short run of each benchmark so that
# they stay working. The sanitizer build, the fuzzing, the benchmarks and the i386 run use
# Qt 5. Installs missing packages first. Each stage's time is shown at the end.
#
#   PF_FUZZ_SECONDS   seconds per fuzz target (default 30; at least 60 for the two that play
#                     the host, fuzz_host_messages and fuzz_chart_input)
#   PF_SKIP_ASAN=1    skip the sanitizer build (quicker local runs)
#   PF_I386=1         also build and run the tests as 32-bit x86 programs (scripts/test-i386.sh)
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh

jobs=$(nproc)
passed=0
failed=0
summary=()
counts=()
times=()
stage_name=""
stage_start=$SECONDS

stage() {  # name: ends the running stage (its time goes into the summary), starts the next
    [ -z "$stage_name" ] || times+=("$stage_name $((SECONDS - stage_start)) s")
    stage_name=$1
    stage_start=$SECONDS
    [ -z "$1" ] || echo "== $1"
}

build() {  # build-dir: compile quietly, show the log's end when it fails
    if ! cmake --build "$1" -j"$jobs" >"$1/build.log" 2>&1; then
        tail -n 60 "$1/build.log"
        echo "build in $1 failed"
        exit 1
    fi
    grep -E 'warning:' "$1/build.log" | sort -u | head -n 20 || true
}

run_ctest() {  # build-dir label
    local out rc=0
    out=$(cd "$1" && ctest --output-on-failure -j"$jobs" 2>&1) || rc=$?
    echo "$out" | tail -n 40
    tally "$out" "$rc" "$2"
}

tally() {  # ctest-output exit-code label: adds ctest's counts to the totals
    local line total fails
    line=$(echo "$1" | grep -E 'tests passed, [0-9]+ tests failed out of [0-9]+' | tail -n 1 || true)
    if [ -z "$line" ]; then
        failed=$((failed + 1)); summary+=("$3: ctest did not finish"); return
    fi
    total=$(echo "$line" | sed -E 's/.*out of ([0-9]+).*/\1/')
    fails=$(echo "$line" | sed -E 's/.* ([0-9]+) tests failed.*/\1/')
    passed=$((passed + total - fails)); failed=$((failed + fails))
    summary+=("$3: $((total - fails)) of $total passed")
    counts+=("$3 $((total - fails))/$total")
    [ "$2" -eq 0 ] || [ "$fails" -gt 0 ] || { failed=$((failed + 1)); summary+=("$3: ctest exit $2"); }
}

stage "release build (Qt 5)"
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
build build/release
stage "release tests (Qt 5)"
run_ctest build/release release

stage "benchmarks (smoke run)"
for b in build/release/bench/bench_*; do
    [ -f "$b" ] && [ -x "$b" ] || continue
    if "$b" --benchmark_min_time=0.01 >/dev/null 2>&1; then
        passed=$((passed + 1))
    else
        failed=$((failed + 1)); summary+=("benchmark $(basename "$b") failed")
    fi
done

# The same tests against Qt 6, optimised as the Qt 5 build but without debug information,
# which would only make the compiler and linker slower here. The benchmarks measure the same
# code and stay with Qt 5.
stage "release build (Qt 6)"
cmake -S . -B build/qt6 -G Ninja -DCMAKE_BUILD_TYPE=Release "-DCMAKE_CXX_FLAGS_RELEASE=-O2 -DNDEBUG" \
    -DPF_QT_VERSION=6 -DPF_BENCH=OFF >/dev/null
build build/qt6
stage "release tests (Qt 6)"
run_ctest build/qt6 qt6

if [ "${PF_SKIP_ASAN:-0}" != "1" ]; then
    stage "sanitizer build (clang, ASan + UBSan)"
    cmake -S . -B build/asan -G Ninja -DCMAKE_BUILD_TYPE=Debug \
        -DCMAKE_CXX_COMPILER=clang++ -DPF_SANITIZE=ON -DPF_FUZZ=ON -DPF_BENCH=OFF >/dev/null
    build build/asan
    stage "sanitizer tests"
    run_ctest build/asan asan

    stage "fuzzing (${PF_FUZZ_SECONDS:-30} s per target)"
    mkdir -p build/asan/fuzz-corpus
    for f in build/asan/tests/fuzz_*; do
        [ -f "$f" ] && [ -x "$f" ] || continue
        name=$(basename "$f")
        mkdir -p "build/asan/fuzz-corpus/$name"
        seconds=${PF_FUZZ_SECONDS:-30}
        # The targets that play the whole host get at least a minute. Their heap holds Qt,
        # the module and the kept chart windows (hundreds of MB): a leak check after every
        # input that allocated more than it freed, which scans all of it, and the entropic
        # schedule's bookkeeping of the tens of thousands of features each input touches
        # would cost more than the inputs. Leaks are looked for once, at exit, where every
        # block the run lost is reported.
        flags=()
        case "$name" in
            fuzz_host_messages | fuzz_chart_input)
                [ "$seconds" -ge 60 ] || seconds=60
                flags=(-detect_leaks=0 -entropic=0) ;;
        esac
        # Inputs of earlier findings are kept in the source tree and run first.
        seeds=()
        [ -d "tests/fuzz/corpus/$name" ] && seeds=("$PWD/tests/fuzz/corpus/$name")
        # Leaks are looked for after every input that allocated more than it freed (at exit
        # for the targets above); what Qt and the font libraries keep until exit is suppressed.
        supp="$PWD/tests/lsan.supp"
        if (cd build/asan && QT_QPA_PLATFORM=offscreen ASAN_OPTIONS=detect_leaks=1 \
              LSAN_OPTIONS="suppressions=$supp:print_suppressions=0" \
              "tests/$name" -max_total_time="$seconds" -rss_limit_mb=4096 "${flags[@]}" \
              "fuzz-corpus/$name" "${seeds[@]}" >"fuzz-corpus/$name.log" 2>&1); then
            passed=$((passed + 1)); summary+=("fuzz $name: $(grep -Eo 'Done [0-9]+ runs' "build/asan/fuzz-corpus/$name.log" | tail -n 1)")
        else
            failed=$((failed + 1)); summary+=("fuzz $name: FINDING, see build/asan/fuzz-corpus/$name.log")
            # The whole sanitizer report (access, free and allocation stacks), not only its end.
            sed -n "/ERROR: \(Address\|Undefined\|Leak\)Sanitizer\|runtime error\|deadly signal/,\$p" "build/asan/fuzz-corpus/$name.log" | grep -v "^  0x\|^Shadow\|^  [A-Z][a-z].*:  *[0-9a-f]" | head -n 160
        fi
    done
fi

if [ "${PF_I386:-0}" = "1" ]; then
    stage "32-bit x86 (release build and tests in an i386 Debian root)"
    rc=0
    bash scripts/test-i386.sh >build/test-i386.log 2>&1 || rc=$?
    tail -n 40 build/test-i386.log
    if [ "$rc" -eq 0 ] && grep -q '^i386: skipped' build/test-i386.log; then
        summary+=("$(grep '^i386: skipped' build/test-i386.log)")
    else
        tally "$(cat build/test-i386.log)" "$rc" i386
    fi
fi

stage ""
echo
printf '%s\n' "${summary[@]}"
printf 'time: %s\n' "${times[@]}" "all $SECONDS s"
echo "$passed passed, $failed failed (ctest: ${counts[*]})"
[ "$failed" -eq 0 ]
