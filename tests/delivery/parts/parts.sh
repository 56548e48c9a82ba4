#!/bin/sh
# SPDX-License-Identifier: MIT
# ./test --target runs all its parts, whichever of them fails, and lists those that failed. Stubs replace all programs that
# it calls. Usage: parts.sh SOURCE_FOLDER
set -eu
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mkdir -p "$folder/tools/guest" "$folder/bin"
cp "$1/test" "$folder/test"
cat >"$folder/bin/stand-in" <<'END'
#!/bin/sh
call="$(basename "$0") $*"
echo "$call" >>"$CALLS"
case $call in
"$FAILING"*) exit 8 ;;
esac
END
chmod +x "$folder/bin/stand-in"
for tool in bin/cmake bin/ctest tools/setup tools/package tools/guest/base; do
    cp "$folder/bin/stand-in" "$folder/$tool"
done

# run_test CALL: runs ./test --target; calls that start with CALL fail.
run_test() {
    : >"$folder/calls"
    status=0
    PATH=$folder/bin:$PATH CALLS=$folder/calls FAILING=$1 PRESET='' CI='' \
        "$folder/test" --target -j 1 >"$folder/output" 2>&1 || status=$?
}

fail() {
    echo "FAILED: $*"
    cat "$folder/output" "$folder/calls"
    exit 1
}

run_test "nothing fails"
[ "$status" -eq 0 ] || fail "ended with status $status"
grep -qx 'ctest --preset dev --parallel [0-9]* -j 1' "$folder/calls" || fail "the arguments are not passed to ctest"
cp "$folder/calls" "$folder/all"

# expect CALL PART: checks that if CALL fails, all parts run and only PART is listed.
expect() {
    run_test "$1"
    [ "$status" -eq 1 ] || fail "$1: ended with status $status"
    grep -vx "cmake --build --preset.*" "$folder/all" >"$folder/expected"
    grep -vx "cmake --build --preset.*" "$folder/calls" | cmp -s - "$folder/expected" || fail "$1: not all parts ran"
    [ "$(tail -n 1 "$folder/output")" = "== Failed: $2;" ] || fail "$1: not listed"
}
expect "cmake --preset dev" "Building (dev)"
expect "cmake --build --preset dev" "Building (dev)"
expect "package --arch armhf" "Packaging (armhf)"
expect "ctest --preset dev" "Testing (dev)"
expect "cmake --build --preset armhf" "Building (armhf)"
expect "ctest --preset armhf" "Testing (armhf, emulated)"
expect "base" "Preparing the target"
expect "ctest --preset target" "Testing (on the booted target)"

run_test "ctest"
[ "$(tail -n 1 "$folder/output")" = \
    "== Failed: Testing (dev); Testing (armhf, emulated); Testing (on the booted target);" ] ||
    fail "several failures are not all listed"
