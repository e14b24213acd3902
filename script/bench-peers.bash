# The other engines that script/bench --peers compares with, each in the best light that we know: the
# same rules in its own language, its own way to take a message apart, no name look-ups, no
# statistics, large batches, and a template that prints the fields that were found. To be sourced by
# script/bench; what is not installed is named, and the others run.
# shellcheck shell=bash

peers=() # of lognormalizer pdbtool rsyslog syslog-ng, those that are there
peer_values=5 # the most variables that a FORMAT has behind the process number

package_of() {
  case $1 in
    lognormalizer) echo liblognorm-utils ;;
    pdbtool | syslog-ng) echo syslog-ng-core ;;
    rsyslog) echo rsyslog ;;
  esac
}

peer_program() { # peer_program NAME: its path, or nothing
  local program=$1
  [ "$program" != rsyslog ] || program=rsyslogd
  PATH=$PATH:/usr/sbin:$root/build/peers/usr/bin:$root/build/peers/usr/sbin type -P "$program"
}

find_peers() {
  local peer
  for peer in lognormalizer pdbtool rsyslog syslog-ng; do
    if peer_program "$peer" >/dev/null; then
      peers+=("$peer")
    else
      printf '%s: no %s: package %s; script/bootstrap --peers unpacks it below build/peers\n' \
        "$name" "$peer" "$(package_of "$peer")" >&2
    fi
  done
}

is_tool() { [ "$1" = lognormalizer ] || [ "$1" = pdbtool ]; }

peer_command() { # peer_command NAME ARGUMENT...: fills the array `command`
  local program prefix library
  program=$(peer_program "$1")
  prefix=${program%/usr/*} # empty when it is installed
  library=$prefix/usr/lib/$(uname -m)-linux-gnu
  shift
  command=(env "LD_LIBRARY_PATH=$library:$prefix/usr/lib/syslog-ng" "SYSLOGNG_PREFIX=$prefix/usr"
    "$program" "$@")
  peer_modules=$library/rsyslog
}

peer_version() { # peer_version NAME, as it tells it itself
  peer_command "$1"
  case $1 in
    lognormalizer) "${command[@]}" -V 2>&1 | sed -n 's/^liblognorm version: /liblognorm /p' ;;
    rsyslog) "${command[@]}" -v | sed -n '1s/^rsyslogd *\([0-9.]*\).*/rsyslog \1/p' ;;
    syslog-ng) "${command[@]}" --version | sed -n 's/^syslog-ng .*(\(.*\))/syslog-ng \1/p' ;;
  esac || true # of their statuses nothing is known
}

peer_versions() {
  local peer
  for peer in "${peers[@]}"; do peer_version "$peer"; done | paste -s -d ',' |
    sed 's/,/, /g; s/^/Compared with /; s/$/./'
  echo
}

# ---- Each of them ----------------------------------------------------------------------------------

values() { # values BEFORE BEHIND: for each variable, its name between the two
  local k
  for ((k = 1; k <= peer_values; ++k)); do printf '%svalue%d%s' "$1" "$k" "$2"; done
}

# Name of the rule, date, host, process number, and the values, separated by semicolons.
pattern_template() { printf '${.classifier.rule_id};${DATE};${HOST};${PID}%s\\n' "$(values ';${' '}')"; }

# command_NAME FORMATS: the tool that reads messages on standard input, into the array `command`.
command_lognormalizer() { # prints the fields as JSON, as it does by default
  peer_command lognormalizer -r "$work/$1/rules.rulebase" -T
}

command_pdbtool() {
  peer_command pdbtool match -p "$work/$1/rules.xml" -f /dev/stdin -T "$(pattern_template)"
}

configure_rsyslog() { # the queue waits, and the sender tries again, rather than lose a message
  cat >"$home/rsyslog.conf" <<CONF
global(workDirectory="$home" net.enableDNS="off" processInternalMessages="off")
module(load="imptcp")
module(load="mmnormalize")
template(name="fields" type="string" string="%\$!all-json%\\n")
ruleset(name="road" queue.type="FixedArray" queue.size="20000" queue.dequeueBatchSize="1024"
        queue.timeoutEnqueue="60000") {
  action(type="mmnormalize" ruleBase="$work/$1/rules.rulebase" useRawMsg="on")
  action(type="omfwd" target="127.0.0.1" port="@PORT@" protocol="tcp" template="fields"
         action.resumeRetryCount="-1")
}
input(type="imptcp" path="$home/rsyslog.socket" ruleset="road")
CONF
}

# road_NAME FORMATS MESSAGE-FILE OPTION...: measures the road through it.
road_rsyslog() {
  local count=$1 played=$2
  shift 2
  configure_rsyslog "$count"
  rm -f "$home/rsyslog.socket"
  peer_command rsyslog
  take rsyslog "$count" road --messages "$played" --feed "socket:$home/rsyslog.socket" \
    --receive lines --configuration "$home/rsyslog.conf" --log "$home/output" "$@" -- \
    "${command[@]}" -n -f "$home/rsyslog.conf" -i NONE -M "$peer_modules"
}

configure_syslog_ng() {
  cat >"$home/syslog-ng.conf" <<CONF
@version: 3.35
options {
  use-dns(no); dns-cache(no); keep-hostname(yes); chain-hostnames(no); stats-freq(0);
  threaded(yes); log-fifo-size(200000); flush-lines(1000); time-reopen(1);
};
source road { pipe("$fifo" flags(expect-hostname) log-fetch-limit(1000) log-iw-size(100000)); };
parser rules { db-parser(file("$work/$1/rules.xml")); };
destination server { network("127.0.0.1" port(@PORT@) template("$(pattern_template)")); };
log { source(road); parser(rules); destination(server); flags(flow-control); };
CONF
}

road_syslog_ng() {
  local count=$1 played=$2
  shift 2
  configure_syslog_ng "$count"
  peer_command syslog-ng
  take syslog-ng "$count" road --messages "$played" --feed "fifo:$fifo" --receive lines \
    --configuration "$home/syslog-ng.conf" --log "$home/output" "$@" -- \
    "${command[@]}" -F --no-caps -f "$home/syslog-ng.conf" -R "$home/syslog-ng.persist" \
    -c "$home/syslog-ng.ctl" --pidfile "$home/syslog-ng.pid"
}

measure_peers() { # measure_peers FORMATS
  local peer
  for peer in "${peers[@]}"; do
    if is_tool "$peer"; then
      "command_$peer" "$1"
      tool "$peer" "$1" "${command[@]}"
    else
      "road_${peer//-/_}" "$1" "$work/$1/messages"
    fi
  done
}

# ---- Whether they find what we find ----------------------------------------------------------------

plain_fields() { # from the pattern template
  sed -e 's/;*$//' -e 's/  */ /g' -e 's/^\(Base;[^;]*;[^;]*\);.*/\1/'
}

json_fields() { # from JSON, ours or that of liblognorm: the same line as from the pattern template
  awk '{
    split("", found)
    sub(/"values":\[[^\]]*\]/, "")
    for (text = $0; match(text, /"[^"]*": ?(\[ )?"[^"]*"/); text = substr(text, RSTART + RLENGTH)) {
      split(substr(text, RSTART, RLENGTH), part, "\"")
      found[part[2]] = part[4]
    }
    rule = "format" in found ? found["format"] : found["event.tags"]
    line = rule ";" found["date"] ";" found["hostname"]
    if (rule != "Base") line = line ";" found["pid"]
    for (k = 1; ("value" k) in found; ++k) line = line ";" found["value" k]
    gsub(/  +/, " ", line)
    print line
  }'
}

compare_fields() { # compare_fields PEER FORMATS: those in $home/theirs with ours, line by line
  local same total
  total=$(wc -l <"$home/fields")
  [ "$(wc -l <"$home/theirs")" -eq "$total" ] || die "$1 did not print all $total messages"
  same=$(paste -d '\n' "$home/fields" "$home/theirs" |
    awk 'NR % 2 { ours = $0; next } { same += $0 == ours } END { print same + 0 }')
  [ "$same" -gt $((total * 99 / 100)) ] || {
    diff "$home/fields" "$home/theirs" | head -n 4 >&2
    die "$1 finds the same fields in $same of $total messages only, with $2 FORMATs"
  }
}

tool_fields() { # tool_fields PEER FORMATS: of the sample
  "command_$1" "$2"
  "${command[@]}" <"$work/$2/sample" 2>>"$home/output"
}

road_fields() { # road_fields PEER FORMATS: of the sample, whose first message is played twice
  "road_${1//-/_}" "$2" "$work/$2/sample" --warm-up 0 --record "$home/arrived"
  tail -n +2 "$home/arrived"
}

check_peers() { # check_peers FORMATS
  local peer form
  "$bin/zemad_fmt" match "$work/$1/zemad_logfile.fmt" --format json "$work/$1/sample" |
    json_fields >"$home/fields"
  for peer in "${peers[@]}"; do
    form=plain_fields
    case $peer in lognormalizer | rsyslog) form=json_fields ;; esac
    if is_tool "$peer"; then tool_fields "$peer" "$1"; else road_fields "$peer" "$1"; fi |
      "$form" >"$home/theirs" || die "$peer fails: $(tail -n 3 "$home/output")"
    compare_fields "$peer" "$1"
  done
}
