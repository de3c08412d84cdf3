#!/usr/bin/env bash
# Runs the whole cycle of a storage administrator against two simulated arrays and checks every step: find volumes, take
# a consistent snapshot set, clone, map, unmap, roll back, clean up.
#
#   demo-cycle.sh SIMULATOR [OPTION...] -- KORVELCTL...
#
# KORVELCTL may have a program before it that runs it (wine-run korvelctl.exe). Where the registry is a real one, the
# variable KORVEL_DEMO_WINE names what runs the registry editor. KORVEL_DEMO_JOURNAL names a file for the requests that
# came over the wire. Ends with 0 only if every step did what it says and the arrays end as they began.
set -euo pipefail

simulator=()
while [[ $# -gt 0 && $1 != -- ]]; do
    simulator+=("$1")
    shift
done
if [[ $# -lt 2 || ${#simulator[@]} -eq 0 ]]; then
    sed -n '2,9s/^# \{0,1\}//p' "$0" >&2
    exit 64
fi
korvelctl=("${@:2}")
host_iqn=iqn.2011-03.example.korvel:host-0001
work=$(mktemp -d)
simulator_pid=
step_number=0
output=

end() {
    [[ -z $simulator_pid ]] || kill "$simulator_pid" 2>/dev/null || true
    rm -rf "$work"
}
trap end EXIT

fail() {
    printf '\nThe cycle FAILED: %s\n' "$1"
    exit 1
}

# step SENTENCE STATUS ARGUMENTS... shows and runs one command, which has to end with STATUS; its result is in $output.
step() {
    local sentence=$1 wanted=$2 status=0
    shift 2
    step_number=$((step_number + 1))
    printf '\n%d. %s\n   $ korvelctl %s\n' "$step_number" "$sentence" "$*"
    "${korvelctl[@]}" "$@" >"$work/out" 2>"$work/err" || status=$?
    output=$(tr -d '\r' <"$work/out")
    tr -d '\r' <"$work/out" | sed 's/^/     /'
    tr -d '\r' <"$work/err" | sed 's/^/     /'
    [[ $status -eq $wanted ]] || fail "step $step_number ended with status $status instead of $wanted"
}

# expect TEXT: the last step's result has to hold the text.
expect() {
    [[ $output == *"$1"* ]] || fail "the result of step $step_number does not show '$1'"
}

# column NUMBER [PATTERN]: the words of one column of the last table, of the lines that hold the pattern.
column() {
    sed '1,/^-/d' <<<"$output" | awk -v column="$1" -v pattern="${2:-}" 'index($0, pattern) { print $column }'
}

# ask PATH: what the simulator's control interface answers.
ask() {
    exec 4<>"/dev/tcp/${control%:*}/${control##*:}"
    printf 'GET %s HTTP/1.1\r\nHost: %s\r\nConnection: close\r\n\r\n' "$1" "$control" >&4
    sed '1,/^\r*$/d' <&4
    exec 4>&-
}

# state ARRAY: what an array holds, as the simulator tells it and not through the library. The number of the next
# generated name and the mark of the last rollback are history, not contents.
state() { ask "/arrays/$1/state"; }
contents() { state "$1" | grep -v -e '"nextNumber"' -e '"rolledBackTo"'; }

exec 3< <(exec "${simulator[@]}" --arrays 2 --snapshots 1 --reg-file "$work/arrays.reg")
simulator_pid=$!
read -r -t 60 -u 3 ready || fail "the simulator did not start"
first_line='^ready control=([^ ]+) array=([^ ]+) key=[^ ]+ array=([^ ]+) key='
[[ $ready =~ $first_line ]] || fail "not the simulator's first line: $ready"
control=${BASH_REMATCH[1]} first=${BASH_REMATCH[2]} second=${BASH_REMATCH[3]}
export no_proxy=127.0.0.1 NO_PROXY=127.0.0.1 # the library heeds a proxy in the environment
export KORVEL_REGISTRY=$work/arrays.reg
[[ -z ${KORVEL_DEMO_WINE:-} ]] || "$KORVEL_DEMO_WINE" regedit /S "$work/arrays.reg"
contents 0 >"$work/before-0"
contents 1 >"$work/before-1"
ieee_id=$(sed -n 's/.*"ieeeId": "\([^"]*\)".*/\1/p' "$work/before-0" | head -n 1)
[[ -n $ieee_id ]] || fail "the simulator does not tell what the first array holds"
echo "Two simulated storage arrays answer at $first and $second, each with four volumes."

step "The configuration that the library reads is in order." 0 config check
step "These are the configured arrays." 0 array list
[[ $(column 1 | sort) == "$(printf '%s\n' "$first" "$second" | sort)" ]] || fail "not the two arrays"
step "The first array accepts its access key." 0 array validate "$first"
step "So does the second." 0 array validate "$second"

step "A volume is found by its display name, on whichever array it is." 0 volume find --name mail-2-0003
[[ $(column 1) == "$second" ]] || fail "the volume was found on the wrong array"
step "A volume is found by the identifier that the host sees of its disk." 0 volume find --id "$ieee_id"
expect sql-data-1-0001

step "Two volumes on each array get their snapshots, one consistent set on each array." 0 \
    snapshot create sql-data-1-0001 sql-log-1-0002 mail-2-0003 files-2-0004
mapfile -t first_set < <(column 4 "$first ")
mapfile -t second_set < <(column 4 "$second ")
[[ ${#first_set[@]} -eq 2 && ${#second_set[@]} -eq 2 ]] || fail "not two snapshots on each array"
snapshot=${first_set[0]}
for name in "${first_set[@]}"; do state 0 | grep -qF "\"$name\"" || fail "the first array has no snapshot $name"; done
for name in "${second_set[@]}"; do state 1 | grep -qF "\"$name\"" || fail "the second array has no snapshot $name"; done

step "The volume behind a snapshot is found by the snapshot's name." 0 volume find --snapshot "$snapshot" --array "$first"
expect sql-data-1-0001
step "The snapshot becomes a volume of its own." 0 volume clone --snapshot "$snapshot" --array "$first"
clone=$(column 2)
[[ $clone == "$snapshot"_*.clone ]] || fail "'$clone' is not the name of a clone of $snapshot"

step "The host is known to the array by its iSCSI initiator name." 0 server find "$host_iqn" --array "$first"
server=$(column 3)
step "The clone is mapped to the host." 0 volume attach "$clone" --iqn "$host_iqn"
expect "$server"
state 0 | tr -d '\n ' | grep -qF "\"mappedTo\":[\"$server\"]" || fail "the array does not list the mapping"
echo "     The array lists it: volume $clone is mapped to server $server."
step "The clone is unmapped again." 0 volume detach "$clone" --iqn "$host_iqn"
! state 0 | tr -d '\n ' | grep -qF "\"mappedTo\":[\"$server\"]" || fail "the array still lists the mapping"

step "The volume's consistency group goes back to the snapshot." 0 volume rollback --snapshot "$snapshot" --array "$first" --yes
state 0 | grep -qF "\"rolledBackTo\": \"$snapshot\"" || fail "the array knows of no rollback"
step "The clone is deleted." 0 volume delete "$clone" --yes
step "The snapshots on the first array are deleted." 0 snapshot delete "${first_set[@]}" --array "$first" --yes
step "The snapshots on the second array are deleted." 0 snapshot delete "${second_set[@]}" --array "$second" --yes
step "The clone is not found any more, which is status 2." 2 volume find --name "$clone"

[[ -z ${KORVEL_DEMO_JOURNAL:-} ]] || ask /journal >"$KORVEL_DEMO_JOURNAL"
contents 0 | diff "$work/before-0" - || fail "the first array does not end as it began"
contents 1 | diff "$work/before-1" - || fail "the second array does not end as it began"
printf '\nThe cycle is COMPLETE: %d steps, and both arrays hold exactly what they held before.\n' "$step_number"
