#!/usr/bin/env bash
# client.sh read [ELEMENT] | write ELEMENT FUNCTION VALUE | follow; see README.md for the rest.
set -eu
fail() { printf 'client.sh: %s\n' "$*" >&2 && exit 1; }
command -v mosquitto_rr >/dev/null || fail "there is no mosquitto_rr; Debian has it in mosquitto-clients"
: "${TORLAN_USER:?is the name of an API user}" "${TORLAN_PASSWORD:?is its password}"
root=local/api/v1/$TORLAN_USER list=elements/objects_list wait=${TORLAN_WAIT:-10}
own=$root/sh$$
# Everybody reads command lines, so the programs get the password from files that only we can read.
listener=
umask 077
XDG_CONFIG_HOME=$(mktemp -d) && export XDG_CONFIG_HOME
trap '[ -z "$listener" ] || kill "$listener" 2>/dev/null || true; rm -rf "$XDG_CONFIG_HOME"' EXIT
trap 'exit 1' INT TERM HUP
for program in pub sub rr; do
    printf '%s\n' "-h ${TORLAN_HOST:-127.0.0.1}" "-p ${TORLAN_PORT:-1883}" \
        "-u $TORLAN_USER" "-P $TORLAN_PASSWORD" >"$XDG_CONFIG_HOME/mosquitto_$program"
done

ask() { mosquitto_rr -q 1 -W "$wait" -t "$own/request/$1" -e "$own/status/$1" -m "$2"; }
read_all() { ask "get/$list${1:+/$1}" '{}'; }

# States come on descriptor 3, "RETAINED TOPIC PAYLOAD" each. When the first is there, which is a
# retained one, the subscription is too.
listen() {
    exec 3< <(exec mosquitto_sub -q 1 -t "$root/status/$list/$1" -F '%r %t %p') && listener=$!
}

write() { # ELEMENT FUNCTION VALUE
    local before answer wanted="\"$2\":{\"value\":\"$3\"}"
    before=$(read_all "$1")
    [[ $before != *'"error":'* ]] || fail "$1 cannot be read: $before"
    listen "$1"
    read -t "$wait" -r -u 3 || fail "no state of $1"
    answer=$(ask "set/$list/$1" "{\"data\":{\"functions\":{\"$2\":$3}}}")
    [[ $answer == *"\"$2\":\"202\""* ]] || fail "refused: $answer"
    # It may be so already.
    until [[ $before == *"$wanted"* ]]; do
        read -t "$wait" -r -u 3 before || fail "$1 $2 was asked to be $3; it is not so after $wait s"
    done
    printf '%s %s %s\n' "$1" "$2" "$3"
}

follow() {
    local retained topic payload first=
    listen +
    while read -r -u 3 retained topic payload; do
        # The first state again, retained: there was a gap.
        [ "$retained ${first:=$topic}" != "1 $topic" ] || read_all
        [ "$retained" = 1 ] || printf '%s %s\n' "${topic##*/}" "$payload"
    done
}

case "$#:${1-}" in
    1:read | 2:read) read_all "${2-}" ;;
    4:write) write "$2" "$3" "$4" ;;
    1:follow) follow ;;
    *) fail "read [ELEMENT] | write ELEMENT FUNCTION VALUE | follow" ;;
esac
