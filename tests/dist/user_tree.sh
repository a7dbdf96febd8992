#!/usr/bin/env bash
# The packaged layout: installs the build with its install rules into a temporary
# /usr, then runs the launcher as a person would: the first start lays out the person's
# tree under XDG_DATA_HOME with the edition of the locale; a receive, a backup and a
# restore work there; a newer package renews the read-only files but keeps config.cnf
# and the database; --edition switches; a running desktop program blocks a restore.
set -euo pipefail
src="$1"
build="$2"
tmp="$(mktemp -d)"
desktop_pid=""
cleanup() {
  [ -n "$desktop_pid" ] && kill "$desktop_pid" 2>/dev/null || true
  rm -rf "$tmp"
}
trap cleanup EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

cmake --install "$build" --prefix "$tmp/usr" >/dev/null
lib="$tmp/usr/lib/vantora"
for f in bin/vantora-cli lib/vantora/libexec/vantora share/icons/hicolor/48x48/apps/org.vantora.Vantora.png \
         share/icons/hicolor/scalable/apps/org.vantora.Vantora.svg; do
  [ -e "$tmp/usr/$f" ] || fail "installed file $f missing"
done

# The desktop entry and the metainfo pass the validators, where they are installed.
if command -v desktop-file-validate >/dev/null; then
  desktop-file-validate "$tmp/usr/share/applications/org.vantora.Vantora.desktop" || fail "desktop entry"
fi
if command -v appstreamcli >/dev/null; then
  appstreamcli validate --no-net "$tmp/usr/share/metainfo/org.vantora.Vantora.metainfo.xml" >/dev/null ||
    fail "metainfo"
fi

export VANTORA_LIBDIR="$lib" HOME="$tmp/home" XDG_DATA_HOME="$tmp/home/data"
unset LC_ALL LC_MESSAGES
{ export LANG=ja_JP.UTF-8; } 2>/dev/null  # the locale need not exist here
mkdir -p "$HOME/work"
cd "$HOME/work"
cli="$tmp/usr/bin/vantora-cli"

# First start: the tree of the locale's edition, with a database.
"$cli" version | grep -q '^vantora-cli ' || fail "first start"
tree="$XDG_DATA_HOME/vantora/ja"
[ "$(cat "$XDG_DATA_HOME/vantora/edition")" = ja ] || fail "edition from the locale"
for d in bin conf data/mdb data/backup temp log raw reader help images; do
  [ -d "$tree/$d" ] || fail "folder $d missing"
done
[ -f "$tree/data/mdb/ACTA.db" ] || fail "no database"
[ -f "$tree/conf/config.cnf" ] && [ ! -L "$tree/conf/config.cnf" ] || fail "config.cnf is not the person's own copy"
[ -L "$tree/conf/resource.ini" ] && [ -L "$tree/bin/ACTA.res" ] || fail "read-only files are not links"
grep -q '^LANG=0' "$tree/conf/config.cnf" || fail "Japanese configuration"

# A receive, a backup named after the time, then more data and a restore.
"$cli" make-recorder --kind BRIO_NORMAL --lang ja --days 20 --out "$tree/reader/recorder.img" >/dev/null
"$cli" receive --fast --new-user "山田 花子" >/dev/null 2>&1 || fail "receive"
"$cli" users | grep -q '山田' || fail "received user not listed"
backup="$("$cli" backup)"
case "$backup" in "$tree/data/backup/ACTA-"*.db) ;; *) fail "backup name $backup" ;; esac
"$cli" backup own.db >/dev/null && [ -f "$HOME/work/own.db" ] || fail "backup FILE counts from the caller's folder"
"$cli" receive --fast --new-user "山田 太郎" >/dev/null 2>&1 || fail "second receive"
head -c 4096 "$backup" > truncated.db
before="$(sha256sum < "$tree/data/mdb/ACTA.db")"
if "$cli" restore truncated.db 2>/dev/null; then fail "a truncated backup was restored"; fi
[ "$(sha256sum < "$tree/data/mdb/ACTA.db")" = "$before" ] || fail "a refused restore changed the database"
"$cli" restore "$backup" >/dev/null || fail "restore"
"$cli" users | grep -q '山田 花子' || fail "restored user missing"
if "$cli" users | grep -q '山田 太郎'; then fail "data after the backup still there"; fi
[ -f "$tree/data/mdb/ACTA.db.before-restore" ] || fail "no .before-restore"

# A newer package: links renewed, settings and database kept.
sed -i 's/^SORT_ORDER=.*/SORT_ORDER=3/' "$tree/conf/config.cnf"
rm "$tree/conf/resource.ini"
echo 9.9.9 > "$lib/VERSION"
"$cli" users | grep -q '山田 花子' || fail "data lost on upgrade"
grep -q '^SORT_ORDER=3$' "$tree/conf/config.cnf" || fail "config.cnf replaced on upgrade"
[ -L "$tree/conf/resource.ini" ] || fail "read-only files not renewed"
[ "$(cat "$tree/.version")" = 9.9.9 ] || fail "version stamp"

# Another edition on demand, kept for later starts.
"$cli" --edition en version >/dev/null || fail "--edition en"
[ -f "$XDG_DATA_HOME/vantora/en/data/mdb/ACTA.db" ] || fail "English tree"
[ "$(cat "$XDG_DATA_HOME/vantora/edition")" = en ] || fail "edition not kept"
grep -q '^LANG=1' "$XDG_DATA_HOME/vantora/en/conf/config.cnf" || fail "English configuration"
set +e
"$cli" --edition fr version >/dev/null 2>&1; rc=$?
set -e
[ $rc -eq 2 ] || fail "bad edition gave $rc"

# While the desktop program runs on the tree, a restore is refused.
QT_QPA_PLATFORM=offscreen "$tmp/usr/bin/vantora" >/dev/null 2>&1 &
desktop_pid=$!
lock="${TMPDIR:-/tmp}/vantora-$(printf '%s' "$(cd "$XDG_DATA_HOME/vantora/en/bin" && pwd -P)" | sha1sum | cut -c1-16).lock"
for _ in $(seq 1 100); do [ -f "$lock" ] && break; sleep 0.2; done
[ -f "$lock" ] || fail "the desktop program took no lock"
set +e
"$cli" restore "$backup" >/dev/null 2>&1; rc=$?
set -e
[ $rc -eq 1 ] || fail "restore under a running program gave $rc"
echo "user tree: ok"
