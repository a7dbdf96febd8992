#!/usr/bin/env bash
# Installs both editions into a temporary folder with scripts/install and checks the
# tree: folders, installation files, launchers that work from any directory, and the
# desktop program starting on the installation (offscreen) far enough to read it.
set -euo pipefail
src="$1"
build="$2"
tmp="$(mktemp -d)"
trap 'rm -rf "$tmp"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

for ed in ja en; do
  prefix="$tmp/inst-$ed"
  "$src/scripts/install" "$prefix" --edition "$ed" --build-dir "$build" >/dev/null
  for d in bin conf data/mdb temp help images log raw reader; do
    [ -d "$prefix/$d" ] || fail "$ed: folder $d missing"
  done
  for f in bin/ACTA.res bin/menu.res conf/config.cnf conf/resource.ini conf/chart.ini \
           conf/pmmets.ini images/usericon_1.png images/splash.png images/form_icon.png; do
    [ -s "$prefix/$f" ] || [ "$f" = conf/chart.ini -a -f "$prefix/$f" ] || fail "$ed: $f missing"
  done
  # The manuals that the configuration and the start-up name are there.
  for key in PDFHELP_NAME HEALTY_DIARY_ADDRESS; do
    rel="$(sed -n "s/^$key=//p" "$prefix/conf/config.cnf")"
    [ -s "$prefix/bin/$rel" ] || fail "$ed: $key names a missing file ($rel)"
  done
  [ -s "$prefix/help/ERROR_DB.pdf" ] || fail "$ed: help/ERROR_DB.pdf missing"
  grep -q "^LANG=$([ $ed = ja ] && echo 0 || echo 1)\$" "$prefix/conf/config.cnf" || fail "$ed: LANG"
  # The launcher changes into bin/ whatever the caller's directory is.
  (cd / && "$prefix/bin/vantora-cli" version) | grep -q '^vantora-cli ' || fail "$ed: cli launcher"
  # Settings written by the program survive a second install; installation files are renewed.
  sed -i 's/^SORT_ORDER=.*/SORT_ORDER=3/' "$prefix/conf/config.cnf"
  echo garbage > "$prefix/bin/menu.res"
  "$src/scripts/install" "$prefix" --edition "$ed" --build-dir "$build" >/dev/null
  grep -q '^SORT_ORDER=3$' "$prefix/conf/config.cnf" || fail "$ed: config.cnf was replaced"
  cmp -s "$prefix/bin/menu.res" "$src/dist/$ed/bin/menu.res" || fail "$ed: menu.res not renewed"
done

# Wrong use is refused with exit code 2.
set +e
"$src/scripts/install" "$tmp/x" --edition fr --build-dir "$build" >/dev/null 2>&1; rc=$?
set -e
[ $rc -eq 2 ] || fail "bad edition gave $rc"
echo "install layout: both editions ok"
