#!/usr/bin/env bash
# check_layers.sh CHECK SRC: the layer check passes on the sources as they are and
# names file, line and both layers for an include of a layer that is not below
# the file's own, and any file in a folder without a layer.
set -euo pipefail
check="$1"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

cp -r "$2" "$work/src"
"$check" "$work/src" || fail "the sources themselves break the layers"

expect_failure() {  # FILE LINE-TEXT WORDS...: FILE gets LINE-TEXT appended; the check must name WORDS
  local file="$1" text="$2"; shift 2
  cp "$work/src/$file" "$work/saved"
  echo "$text" >> "$work/src/$file"
  local line; line="$(wc -l < "$work/src/$file")"
  if out="$("$check" "$work/src" 2>&1)"; then fail "$file: $text passed"; fi
  for word in "src/$file:$line" "$@"; do
    grep -qF -- "$word" <<<"$out" || fail "$file: $text: no \"$word\" in: $out"
  done
  cp "$work/saved" "$work/src/$file"
}

expect_failure fileutils/NameOrder.cpp '#include "pane/ControllerManager.h"' "layer fileutils" "(layer logic)"
expect_failure keys/KVKeyCombination.cpp '#include "platform/linux/XkbKeyboardLayout.h"' "layer keys" "(layer platform-linux)"
expect_failure pane/UpdatesController.cpp '#include "controls/AlertSheet.h"' "layer logic" "(layer ui)"
mkdir "$work/src/elsewhere" && touch "$work/src/elsewhere/Stray.cpp"
out="$("$check" "$work/src" 2>&1)" && fail "a file outside every layer passed"
grep -qF "src/elsewhere/Stray.cpp: in no layer" <<<"$out" || fail "no word of the stray file in: $out"
echo "ok"
