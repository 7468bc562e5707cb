#!/usr/bin/env bash
# files_commands.sh PREFS: "corvalis-prefs examine" on Mach-O files compiled here
# must report the architecture records llvm-objdump reads from them, and
# "corvalis-prefs apps" must list a real tree's applications sorted, once each
# (what the walk finds is the unit tests'; here, the command's own listing).
set -euo pipefail
prefs="$1"
here="$(cd "$(dirname "$0")" && pwd)"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

"$here/make_macho_fixtures.sh" "$work/macho"
objdump="$(command -v llvm-objdump || command -v llvm-objdump-14)" || fail "llvm-objdump is not installed"
# A header-only big-endian PowerPC executable: no compiler here makes one.
printf '\xfe\xed\xfa\xce\x00\x00\x00\x12\x00\x00\x00\x00\x00\x00\x00\x02%048d' 0 | tr 0 '\0' > "$work/macho/ppc"

for file in "$work"/macho/*.o "$work/macho/ppc"; do
  ours="$("$prefs" examine "$file")"
  expected="$(python3 - "$objdump" "$file" "$(uname -m)" <<'PY'
import re, subprocess, sys
objdump, path, machine = sys.argv[1:]
def run(*args):
    return subprocess.run([objdump, "--macho", *args, "--non-verbose", path], capture_output=True, text=True).stdout
def signed(value):
    return value - (1 << 32) if value >= 1 << 31 else value
records = []
fat = run("--universal-headers")
if "fat_magic" in fat:
    for cputype, subtype, caps in re.findall(r"cputype (\d+)\s+cpusubtype (\d+)\s+capabilities (0x[0-9a-f]+)", fat):
        records.append((int(cputype), signed(int(subtype) | int(caps, 16) << 24)))
else:
    lines = run("--private-headers").splitlines()
    title = next(i for i, line in enumerate(lines) if "cpusubtype" in line)
    magic, cputype, subtype, caps = lines[title + 1].split()[:4]
    records.append((int(cputype), signed(int(subtype) | int(caps, 16) << 24)))
types = {cputype for cputype, _ in records}
# A 64-bit Intel machine runs generic x86-64 and i386 code (not Haswell-only code).
intel = any(t == 0x01000007 and s & 0xFFFFFF in (3, 4) for t, s in records) or 7 in types
host = int(intel) if machine == "x86_64" else "?"
print(f"status=0 host={host} ppc={int(18 in types)} i386={int(7 in types)}")
for cputype, subtype in records:
    print(f"cputype={cputype} cpusubtype={subtype}")
PY
)"
  if [ "$(uname -m)" != x86_64 ]; then ours="$(sed -E '1s/host=[01]/host=?/' <<<"$ours")"; fi
  [ "$ours" = "$expected" ] || fail "examine $(basename "$file"):"$'\n'"$ours"$'\n'"llvm-objdump says:"$'\n'"$expected"
done

# Not an executable: status -1, no records, and still a successful run.
[ "$("$prefs" examine "$work/macho/answer.c")" = "status=-1 host=0 ppc=0 i386=0" ] || fail "examine of a C file"
set +e
"$prefs" examine "$work/missing" 2>/dev/null; [ $? -eq 3 ] || fail "examine of a missing file must exit 3"
"$prefs" apps "$work/missing" 2>/dev/null; [ $? -eq 3 ] || fail "apps of a missing folder must exit 3"
"$prefs" apps "$work" --depth -1 2>/dev/null; [ $? -eq 2 ] || fail "a negative depth is a usage error"
set -e

# A tree with an application reached twice through links.
make_app() { mkdir -p "$1/Contents" && printf '<plist><dict/></plist>' > "$1/Contents/Info.plist"; }
tree="$work/tree"
make_app "$tree/App 10.app"
make_app "$tree/sub/App 9.app"
make_app "$work/elsewhere/Shared.app"
mkdir -p "$tree/links1" "$tree/links2"
ln -s "$work/elsewhere/Shared.app" "$tree/links1/Shared.app"
ln -s "$work/elsewhere/Shared.app" "$tree/links2/Shared.app"
real="$(cd "$work" && pwd -P)"
expected="$(printf 'App 9\t%s\nApp 10\t%s\nShared\t%s' "$real/tree/sub/App 9.app" "$real/tree/App 10.app" "$real/elsewhere/Shared.app")"
[ "$("$prefs" apps "$tree")" = "$expected" ] || fail "apps of the tree:"$'\n'"$("$prefs" apps "$tree")"
[ "$("$prefs" apps "$tree" --depth 1 | cut -f1 | tr '\n' ,)" = "App 10," ] || fail "apps --depth 1"
echo "files commands: ok"
