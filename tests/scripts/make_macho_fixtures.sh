#!/usr/bin/env bash
# make_macho_fixtures.sh OUT: compiles a small C file into Mach-O objects for
# several architectures with clang and joins some of them into fat files with
# llvm-lipo, all into OUT. Prints nothing on success; fails when the tools are missing.
set -euo pipefail
out="$1"
mkdir -p "$out"

find_tool() {
  local name="$1" candidate
  for candidate in "$name" "$name"-{19,18,17,16,15,14,13} /usr/lib/llvm-*/bin/"$name"; do
    if command -v "$candidate" >/dev/null 2>&1; then command -v "$candidate"; return 0; fi
  done
  echo "make_macho_fixtures.sh: $name not found (Debian: apt-get install llvm)" >&2
  return 1
}
lipo=$(find_tool llvm-lipo)

echo 'int answer(void) { return 42; }' > "$out/answer.c"
declare -A targets=(
  [x86_64]=x86_64-apple-macos10.12
  [x86_64h]=x86_64h-apple-macos10.12
  [i386]=i386-apple-macos10.12
  [arm64]=arm64-apple-macos11
  [arm64e]=arm64e-apple-macos11
  [armv7]=armv7-apple-ios9
)
for arch in "${!targets[@]}"; do
  clang -target "${targets[$arch]}" -c "$out/answer.c" -o "$out/$arch.o"
done

"$lipo" -create "$out/i386.o" "$out/x86_64.o" -output "$out/fat-intel.o"
"$lipo" -create "$out/x86_64.o" "$out/i386.o" "$out/arm64.o" -output "$out/fat-three.o"
"$lipo" -create "$out/arm64.o" "$out/armv7.o" -output "$out/fat-arm.o"
"$lipo" -create "$out/x86_64h.o" "$out/arm64e.o" -output "$out/fat-specific.o"
