#!/usr/bin/env bash
# The main job: sample customers and orders imported into c-tree tables on the embedded engine,
# then listed by two indexes, seeked and restricted to a range. Usage: main_job.sh BUILD_DIR
set -euo pipefail
build=${1:?usage: main_job.sh BUILD_DIR}
ctt="$build/tools/ctt"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

"$build/tools/ctt_sample" .
step() { printf '\n$ %s\n' "$*"; "$@"; }

step "$ctt" create customers \
  -f id:integer,name:string:40,company:string:40,city:string:20,email:string:60,since:date,note:string:80 \
  -x byid:id:primary -x bycity:city+name:nocase
step "$ctt" import customers customers.csv
step "$ctt" create orders -f orderno:integer,customer:integer,ordered:date,amount:float,status:string:10 \
  -x byno:orderno:primary -x bycustomer:customer+ordered
step "$ctt" import orders orders.csv
step "$ctt" info customers
step "$ctt" list customers --index byid --limit 5
step "$ctt" list customers --index bycity --limit 5
step "$ctt" list customers --index bycity --find Oslo --limit 5
step "$ctt" list orders --index bycustomer --from 42 --to 42
step "$ctt" export orders --index bycustomer --from 1 --to 3 -c orderno,customer,amount
