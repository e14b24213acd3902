# What the scripts that run the daemon share: a home that goes away with the script, the daemon and
# a receiving server in it, and waiting for something to become true. To be sourced; it sets the
# traps that leave no process and no file behind.
# shellcheck shell=bash

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
daemon=$root/build/release/bin/zemad_logfile
server=$root/build/release/bin/zem_server
home=
daemon_pid=
server_pid=
helper_pids=()
server_port=0
name=${0##*/}

die() {
  printf '%s: %s\n' "$name" "$1" >&2
  exit 1
}

show_help() { # show_help FILE: the comment at the top of a script
  sed -n '2,/^set/{/^set/d;s/^# \{0,1\}//p;}' "$1"
}

is_alive() { [ -n "$1" ] && kill -0 "$1" 2>/dev/null; }

end_process() { # end_process SIGNAL PID: sends it and waits until the process is gone
  [ -n "$2" ] || return 0
  kill -s "$1" "$2" 2>/dev/null || true
  wait "$2" 2>/dev/null || true
}

leave_nothing() {
  local status=$? pid
  trap - EXIT INT TERM HUP
  for pid in "$daemon_pid" "$server_pid" "${helper_pids[@]}"; do
    end_process KILL "$pid"
  done
  [ -z "$home" ] || rm -rf "$home"
  exit "$status"
}

trap leave_nothing EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP

build() { # build TARGET...
  "$root/script/bootstrap" --build
  cmake -S "$root" --preset release >/dev/null
  cmake --build "$root/build/release" -j "$(nproc)" --target "$@"
}

make_home() { # a home for the daemon, with a FIFO that stays open as descriptor 3
  home=$(mktemp -d "${TMPDIR:-/tmp}/zemad-$name.XXXXXX")
  mkdir "$home/etc" "$home/comm"
  fifo=$home/comm/.zemad_logfile.fifo.$(uname -n).$name
  mkfifo "$fifo"
  exec 3<>"$fifo" # held open, so that nothing is lost before the daemon reads
}

start_daemon() { # its standard output and error go to $home/output
  ZEMADHOME=$home KORVANE_COMM_DIR=$home/comm ZEMAD_LOGFILE_ID=$name \
    "$daemon" -d </dev/null >>"$home/output" 2>&1 3>&- &
  daemon_pid=$!
}

check_daemon() {
  is_alive "$daemon_pid" && return
  tail -n 20 "$home/output" >&2
  die "the daemon has ended"
}

stop_daemon() { # the first signal cleans up, after which it waits for the next one
  end_process KILL "$daemon_pid"
  daemon_pid=
}

start_server() { # start_server OPTION...: the second time at the port of the first
  : >"$home/server-output"
  "$server" --listen "127.0.0.1:$server_port" "$@" </dev/null 2>>"$home/server-output" 3>&- &
  server_pid=$!
  wait_until 20 "zem_server listens" server_listens
  server_port=$(sed -n 's/.*listening on .*:\([0-9]*\)$/\1/p' "$home/server-output")
}

server_listens() {
  is_alive "$server_pid" || { cat "$home/server-output" >&2; die "zem_server has ended"; }
  grep -q 'listening on' "$home/server-output"
}

stop_server() { # stop_server SIGNAL
  end_process "$1" "$server_pid"
  server_pid=
}

wait_until() { # wait_until SECONDS WHAT COMMAND...: until it succeeds
  local deadline=$((SECONDS + $1)) what=$2
  shift 2
  until "$@"; do
    [ "$SECONDS" -lt "$deadline" ] || die "waited too long until $what"
    sleep 0.02
  done
}

size_of() { # size_of FILE: 0 when there is none
  stat -c %s "$1" 2>/dev/null || echo 0
}

cache_is_empty() { [ "$(size_of "$home/cache")" -eq 0 ]; }

write_error_file() { # the shipped one, with the daemon's own log in $home/log
  sed "s,/var/log/zemad_logfile.log,$home/log," "$root/etc/zemad_logfile.err" \
    >"$home/etc/zemad_logfile.err"
}
