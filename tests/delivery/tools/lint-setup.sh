#!/bin/sh
# SPDX-License-Identifier: MIT
# tools/lint installs clang-tidy and the packages of the JavaScript tools if they are missing. Usage: lint-setup.sh SOURCE_FOLDER
set -eu
source=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

fail() {
    echo "FAILED: $*" >&2
    exit 1
}

mkdir -p "$folder/bin" "$folder/project/tools" "$folder/project/build/lint"
cp "$source/tools/lint" "$source/tools/setup" "$folder/project/tools"
printf '#!/bin/sh\necho "$@" >>%s/node-packages\n' "$folder" >"$folder/project/tools/node-packages"
chmod +x "$folder/project/tools/node-packages"
echo '  "command": "clang++-14 -o app/one.o -c one.cpp",' >"$folder/project/build/lint/compile_commands.json"
for tool in cat chmod cp dirname find grep id mkdir sed sh xargs; do
    ln -s "$(command -v "$tool")" "$folder/bin/$tool"
done
for tool in cmake git shellcheck ../project/tools/prose ../project/tools/lint-javascript; do
    printf '#!/bin/sh\necho some-file\n' >"$folder/bin/$tool"
    chmod +x "$folder/bin/$tool"
done
# A machine without packages, and an archive that has all.
printf '#!/bin/sh\nexit 1\n' >"$folder/bin/dpkg-query"
# shellcheck disable=SC2016
printf '#!/bin/sh\nexec "$@"\n' >"$folder/bin/sudo"
cat >"$folder/bin/apt-get" <<END
#!/bin/sh
case "\$* " in
*" install "*" clang-tidy "*)
    printf '#!/bin/sh\necho "\$@" >>$folder/checked\n' >$folder/bin/clang-tidy
    chmod +x $folder/bin/clang-tidy
    ;;
esac
END
chmod +x "$folder/bin/dpkg-query" "$folder/bin/sudo" "$folder/bin/apt-get"

status=0
PATH=$folder/bin "$folder/project/tools/lint" >"$folder/output" 2>&1 || status=$?
[ "$status" -eq 0 ] || fail "status $status: $(cat "$folder/output")"
grep -q 'one\.cpp' "$folder/checked" || fail "nothing was checked"
grep -qx 'tools/javascript build/lint/javascript' "$folder/node-packages" || fail "no packages for JavaScript"
