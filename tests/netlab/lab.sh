#!/usr/bin/env bash
# The test lab: network namespaces sdl-* joined by veth pairs, an echo responder in the target.
# Plan and use: README.md beside this file; the same addresses are in tests/support/netlab.h.
#
#   lab.sh up                  build the lab (tearing down what is left of an earlier one)
#   lab.sh down                take it all away
#   lab.sh exec BINARY [ARGS]  run BINARY inside sdl-client, or outside with SONDAR_NETLAB_SKIP set
#   lab.sh status              say what is up
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
state=/run/sondar-netlab
pidfile=$state/responder.pid
lockfile=/run/sondar-netlab.lock
namespaces=(sdl-client sdl-r1 sdl-r2 sdl-r3 sdl-target sdl-silent sdl-beyond)
routers=(sdl-r1 sdl-r2 sdl-r3 sdl-silent)
responder_name=sondar_echo_res # the kernel keeps 15 characters of a command name

target=10.201.4.2
# Address of the target, then what the responder does with echoes to it.
behaviours=(
  10.201.4.2=reply
  10.201.5.1=reply
  10.201.5.2=delay:1
  10.201.5.3=delay:150
  10.201.5.4=delay:250
  10.201.5.5=delay:1000
  10.201.5.6=delay:2500
  10.201.5.7=delay:3500
  10.201.5.8=drop
  10.201.5.9=host-unreachable
  10.201.5.10=net-unreachable
)

say() { echo "netlab: $*"; }
fail() { echo "netlab: $*" >&2; exit 1; }
in_ns() { local ns=$1; shift; ip netns exec "$ns" "$@"; }

# Lab tests hold the lock shared while they run; up and down wait for them, as another
# developer's test run may be using the same lab.
take_lock() {
  exec 9>"$lockfile"
  flock "$1" -w "$2" 9 || fail "the lab stayed busy for $2 s (another test run holds $lockfile)"
}

# The responder's pid while it runs; an exited one may stay a zombie for a while, as its parent
# is whatever adopted it.
responder_pid() {
  local pid
  pid=$(cat "$pidfile" 2>/dev/null) || return 1
  [ "$(cat "/proc/$pid/comm" 2>/dev/null)" = "$responder_name" ] || return 1
  grep -q '^State:[[:space:]]*Z' "/proc/$pid/status" 2>/dev/null && return 1
  echo "$pid"
}

lab_is_up() {
  local ns
  for ns in "${namespaces[@]}"; do
    [ -e "/run/netns/$ns" ] || return 1
  done
  responder_pid >/dev/null
}

stop_responder() {
  local pid i
  if pid=$(responder_pid); then
    kill -TERM "$pid"
    for ((i = 0; i < 50; i++)); do
      responder_pid >/dev/null || break
      sleep 0.1
    done
    if responder_pid >/dev/null; then kill -KILL "$pid"; fi
  fi
  rm -f "$pidfile"
}

teardown() {
  local ns
  stop_responder
  for ns in $(ip netns list 2>/dev/null | awk '$1 ~ /^sdl-/ {print $1}'); do
    ip netns delete "$ns"
  done
  rm -rf /etc/netns/sdl-* "$state"
  rmdir /etc/netns 2>/dev/null || true
}

# link NS_A IF_A ADDR_A NS_B IF_B ADDR_B: a veth pair between two namespaces.
link() {
  ip link add "$2" netns "$1" type veth peer name "$5" netns "$4"
  ip -n "$1" addr add "$3" dev "$2"
  ip -n "$4" addr add "$6" dev "$5"
  ip -n "$1" link set "$2" up
  ip -n "$4" link set "$5" up
}

write_client_hosts() {
  local host
  host=$(uname -n)
  cat >/etc/netns/sdl-client/hosts <<EOF
127.0.0.1	localhost
10.201.1.2	client.lab.example $host
10.201.2.2	core1.example.de
10.201.3.2	r3.lab.example
10.201.4.2	target.lab.example
10.201.5.1	reply.lab.example
10.201.5.2	delay1.lab.example
10.201.5.3	delay150.lab.example
10.201.5.4	delay250.lab.example
10.201.5.5	delay1000.lab.example
10.201.5.6	delay2500.lab.example
10.201.5.7	delay3500.lab.example
10.201.5.8	drop.lab.example
10.201.5.9	hostunreach.lab.example
10.201.5.10	netunreach.lab.example
10.201.6.2	silent.lab.example
10.201.7.2	beyond.lab.example
EOF
}

responder=${SONDAR_NETLAB_BIN:-$here/../../build/tests/netlab}/sondar_echo_responder

start_responder() {
  local address i
  mkdir -p "$state"
  # Detached from the caller's session and descriptors: ctest waits for every holder of its pipes,
  # and fd 9 is the lab lock.
  setsid ip netns exec sdl-target "$responder" --error-source "$target" --pid-file "$pidfile" \
    "${behaviours[@]}" </dev/null >"$state/responder.log" 2>&1 9>&- &
  for ((i = 0; i < 50; i++)); do
    responder_pid >/dev/null && break
    sleep 0.1
  done
  responder_pid >/dev/null || fail "the responder did not start: $(cat "$state/responder.log")"
  for address in 10.201.5.1 10.201.7.2; do
    in_ns sdl-client ping -c 1 -W 2 -q "$address" >/dev/null || fail "no echo reply from $address through the lab"
  done
}

build() {
  local ns error behaviour
  [ -x "$responder" ] || fail "no responder at $responder (build sondar_echo_responder, set SONDAR_NETLAB_BIN)"
  teardown
  if ! error=$(ip netns add sdl-client 2>&1); then
    say "not built: network namespaces are unusable here ($error); lab tests will skip"
    return 0
  fi
  for ns in "${namespaces[@]}"; do
    [ "$ns" = sdl-client ] || ip netns add "$ns"
    ip -n "$ns" link set lo up
    mkdir -p "/etc/netns/$ns"
    # No DNS server listens there: names outside the hosts file fail at once instead of timing out.
    printf 'nameserver 127.0.0.1\noptions timeout:1 attempts:1\n' >"/etc/netns/$ns/resolv.conf"
  done
  write_client_hosts

  link sdl-client to-r1 10.201.1.2/24 sdl-r1 to-client 10.201.1.1/24
  link sdl-r1 to-r2 10.201.2.1/24 sdl-r2 to-r1 10.201.2.2/24
  link sdl-r2 to-r3 10.201.3.1/24 sdl-r3 to-r2 10.201.3.2/24
  link sdl-r3 to-target 10.201.4.1/24 sdl-target to-r3 10.201.4.2/24
  link sdl-r2 to-silent 10.201.6.1/24 sdl-silent to-r2 10.201.6.2/24
  link sdl-silent to-beyond 10.201.7.1/24 sdl-beyond to-silent 10.201.7.2/24

  # Each node sends what it has no link for towards the client, except r2, which knows every
  # branch; so an address outside the plan ends in r2's net unreachable rather than a loop.
  ip -n sdl-client route add 10.201.0.0/16 via 10.201.1.1
  ip -n sdl-r1 route add 10.201.0.0/16 via 10.201.2.2
  ip -n sdl-r2 route add 10.201.1.0/24 via 10.201.2.1
  ip -n sdl-r2 route add 10.201.4.0/24 via 10.201.3.2
  ip -n sdl-r2 route add 10.201.5.0/24 via 10.201.3.2
  ip -n sdl-r2 route add 10.201.7.0/24 via 10.201.6.2
  ip -n sdl-r3 route add 10.201.5.0/24 via 10.201.4.2
  ip -n sdl-r3 route add 10.201.0.0/16 via 10.201.3.1
  ip -n sdl-target route add 10.201.0.0/16 via 10.201.4.1
  ip -n sdl-silent route add 10.201.0.0/16 via 10.201.6.1
  ip -n sdl-beyond route add 10.201.0.0/16 via 10.201.7.1

  for ns in "${routers[@]}"; do
    in_ns "$ns" sysctl -qw net.ipv4.ip_forward=1
  done
  # Unlimited ICMP errors: by default a router answers a peer about once a second, and all ICMP
  # errors share a budget of 50 at once, both too few for a trace's quick probes.
  for ns in "${routers[@]}" sdl-target sdl-beyond; do
    in_ns "$ns" sysctl -qw net.ipv4.icmp_ratelimit=0 net.ipv4.icmp_ratemask=0
  done

  # As desktop systems set it: the ICMP layer may use ping sockets as well as raw ones. Shared by
  # every test running in the lab, so tests leave it alone.
  in_ns sdl-client sysctl -qw net.ipv4.ping_group_range="0 2147483647"

  in_ns sdl-silent nft -f - <<'EOF'
table inet sondar_lab {
  chain output {
    type filter hook output priority 0; policy accept;
    icmp type time-exceeded drop
  }
}
EOF

  # The responder answers for the target's addresses; the kernel must not answer as well.
  in_ns sdl-target sysctl -qw net.ipv4.icmp_echo_ignore_all=1
  for behaviour in "${behaviours[@]}"; do
    [ "${behaviour%%=*}" = "$target" ] || ip -n sdl-target addr add "${behaviour%%=*}/32" dev lo
  done
  start_responder
  say "up: ${namespaces[*]}; responder pid $(responder_pid)"
}

cmd_up() {
  if [ "$(id -u)" -ne 0 ]; then
    say "not built: it needs root (network namespaces, raw sockets); lab tests will skip"
    return 0
  fi
  take_lock -x 960
  build
}

cmd_down() {
  if [ "$(id -u)" -ne 0 ]; then
    say "nothing to take down: not root"
    return 0
  fi
  take_lock -x 960
  teardown
  say "down"
}

cmd_status() {
  local ns pid
  for ns in "${namespaces[@]}"; do
    [ -e "/run/netns/$ns" ] && echo "namespace $ns: up" || echo "namespace $ns: missing"
  done
  if pid=$(responder_pid); then echo "responder: pid $pid"; else echo "responder: not running"; fi
  lab_is_up
}

# A test binary holds the lock shared while it runs. A lab that another test run took down
# between two binaries is built again.
cmd_exec() {
  local reason=""
  [ $# -ge 1 ] || fail "usage: lab.sh exec BINARY [ARGS...]"
  if [ "$(id -u)" -ne 0 ]; then
    reason="not root: the test lab needs root (network namespaces, raw sockets)"
  else
    for _ in 1 2 3; do
      take_lock -s 960
      lab_is_up && break
      flock -u 9
      take_lock -x 960
      if ! lab_is_up && [ -x "$responder" ]; then build >&2; fi
      flock -u 9
    done
    lab_is_up || reason="the test lab is not up (tests/netlab/lab.sh up, as root)"
  fi
  if [ -n "$reason" ]; then
    SONDAR_NETLAB_SKIP=$reason exec "$@"
  fi
  exec env -u SONDAR_NETLAB_SKIP ip netns exec sdl-client "$@"
}

case ${1:-} in
  up) cmd_up ;;
  down) cmd_down ;;
  status) cmd_status ;;
  exec) shift; cmd_exec "$@" ;;
  *) fail "usage: lab.sh up | down | status | exec BINARY [ARGS...]" ;;
esac
