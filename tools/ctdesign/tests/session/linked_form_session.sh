#!/usr/bin/env bash
# A person's session in ctdesign, scripted through tmux: a new form gets a connection, a master
# table, a data source and a detail table linked through the link editor, and is saved; a
# program then reads the form and prints the linked records. A malformed form is shown with the
# reader's message and never written back.
#
# Usage: linked_form_session.sh CTDESIGN FORMCHECK. Exits 77 (skipped) without tmux.
set -euo pipefail
ctdesign=$1
formcheck=$2
command -v tmux >/dev/null || { echo "tmux is not installed: skipped"; exit 77; }

dir=$(mktemp -d /tmp/ctdesign_session_XXXXXX)
socket="ctdesign-session-$$"
tmux_() { tmux -L "$socket" -f /dev/null "$@"; }
cleanup() {
  tmux_ kill-server 2>/dev/null || true
  rm -rf "$dir"
}
trap cleanup EXIT

start() {  # start FORM: the designer on FORM in a fresh 120 x 40 terminal
  tmux_ new-session -d -x 120 -y 40 -c "$dir" "env TERM=screen $ctdesign $1"
}
press() { tmux_ send-keys "$@"; }        # key names: Enter, Tab, Down, Escape, C-u, ...
type_() { tmux_ send-keys -l "$1"; }     # literal text
expect() {  # expect REGEX: wait up to 10 s for the screen to show it
  local screen
  for _ in $(seq 100); do
    screen=$(tmux_ capture-pane -p 2>/dev/null || true)
    if grep -Eq -- "$1" <<<"$screen"; then return 0; fi
    sleep 0.1
  done
  echo "the screen never showed: $1"
  echo "----- screen -----"
  echo "$screen"
  exit 1
}
finished() {  # the designer has exited
  for _ in $(seq 100); do
    tmux_ has-session 2>/dev/null || return 0
    sleep 0.1
  done
  echo "ctdesign did not exit"
  tmux_ capture-pane -p
  exit 1
}
find_() { press /; expect "Find a"; type_ "$1"; press Enter; }   # jump to an entry of the pane
edit() { find_ "$1"; press Enter; }                               # open a property's editor
set_text() {  # set_text PROPERTY VALUE: typed into the property's text field
  find_ "$1"; press e; expect "$1 of"; press C-u; type_ "$2"; press Enter; expect "$1 = "
}
pick() {  # pick PROPERTY PREFIX EXPECTED: chosen from the property's value list
  edit "$1"; expect "$1 of"; type_ "$2"; press Enter; expect "$1 = $3"
}
add() {  # add CLASS NAME: from the palette, then renamed
  press Tab; expect "Palette"; find_ "$1"; press Enter; expect "Added "
  set_text Name "$2"
}

"$formcheck" create "$dir"

start shop.fm
expect "New form Shop"
press '?'; expect "ctdesign keys"; press Space; sleep 0.2
find_ TCTConnection; press Enter; expect "Added CTConnection1"
set_text DataExt .dat
find_ MaxFiles; press e; press C-u; type_ lots; press Enter
expect "MaxFiles: 'lots' is not a valid integer value"
expect "MaxFiles +50 "
pick Active T True

add TCTTable Customers
pick Connection CT CTConnection1
edit Database; expect "DataFiles \(\*\.dat\)"; expect "orders\.dat"; press Escape; sleep 0.3
set_text Database "$dir"
pick TableName cu customers.dat
pick Active T True

add TDataSource CustomerSource
pick DataSet Cu Customers

add TCTTable Orders
pick Connection CT CTConnection1
set_text Database "$dir"
pick TableName or orders.dat
pick MasterSource Cu CustomerSource
edit MasterFields; expect "Link Orders to master Customers"
press Down Enter; expect "\* ByCustomer"
press Tab Tab Enter; expect "MasterFields = 'CUSTNO'"
press o; expect "MasterFields = CUSTNO"
pick Active T True
press s; expect "Saved shop.fm"
press q; finished

actual=$("$formcheck" read "$dir/shop.fm")
wanted="Orders: IndexName=ByCustomer MasterFields=CUSTNO
1 Harbour Kilns: 501 clay 503 glaze
2 Quillon Press: 500 ink 502 paper
3 Tamsin Yarns:"
if [[ $actual != "$wanted" ]]; then
  printf 'the saved form reads as\n%s\ninstead of\n%s\n' "$actual" "$wanted"
  cat "$dir/shop.fm"
  exit 1
fi

# A form that does not parse: the reader's message and line, and nothing written back.
printf "object Broken: TDataModule\n  object Db: TCTConnection\n    DataExt = 'dat\n  end\nend\n" >"$dir/broken.fm"
cp "$dir/broken.fm" "$dir/broken.orig"
start broken.fm
expect "could not be read: Line 3"
press s; expect "not written back"
press q; finished
cmp "$dir/broken.fm" "$dir/broken.orig"
echo "session passed"
