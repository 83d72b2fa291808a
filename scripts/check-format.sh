#!/usr/bin/env bash
# Fails, listing the files, when clang-format 14 (Debian 12's) would change a
# C++ file of the project. Fix with: clang-format-14 -i <file>...
set -euo pipefail
cd "$(dirname "$0")/.."

CF=$(command -v clang-format-14 || command -v clang-format || true)
if [ -z "$CF" ] || ! "$CF" --version | grep -q "version 14\."; then
  echo "check-format: clang-format 14 is needed (scripts/install-deps.sh installs it)" >&2
  exit 2
fi
bad=()
while IFS= read -r -d '' f; do
  "$CF" --dry-run --Werror "$f" >/dev/null 2>&1 || bad+=("$f")
done < <(git ls-files -z -- '*.cpp' '*.h')
if [ ${#bad[@]} -gt 0 ]; then
  echo "check-format: clang-format would change ${#bad[@]} file(s):" >&2
  printf '  %s\n' "${bad[@]}" >&2
  exit 1
fi
echo "check-format: every C++ file is formatted"
