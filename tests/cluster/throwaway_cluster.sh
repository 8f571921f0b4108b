#!/usr/bin/env bash
# throwaway_cluster.sh start DIR [NODES=3] [PROCESSORS=2] | stop DIR | controller DIR start|stop | lone-node DIR N:
# a Slurm cluster whose nodes are all this machine, on the loopback interface, as any user. Everything it keeps lies in
# DIR; clients need SLURM_CONF=DIR/slurm.conf. PORT is the first of the ports it takes. A lone node runs in process and
# mount spaces of its own, in the foreground, so that killing it is a machine's crash; HIDE is a folder it does not see.
set -eu
folder=$(mkdir -p "$2" && cd "$2" && pwd)
export SLURM_CONF=$folder/slurm.conf
PATH=$PATH:/usr/sbin
host=$(hostname -s)
user=$(id -un)

configure() {  # nodes, processors of each
  mkdir -p "$folder"/log "$folder"/run "$folder"/state
  for node in $(seq "$1"); do mkdir -p "$folder/spool/node$node"; done
  cat >"$SLURM_CONF" <<CONF
ClusterName=throwaway
SlurmctldHost=$host(127.0.0.1)
SlurmctldPort=${PORT:-16817}
SlurmUser=$user
SlurmdUser=$user
AuthType=auth/none
CredType=cred/none
AuthInfo=cred_expire=5
CommunicationParameters=NoInAddrAny,NoCtldInAddrAny
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
SwitchType=switch/none
MpiDefault=none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
SchedulerParameters=batch_sched_delay=0,bf_interval=1
StateSaveLocation=$folder/state
SlurmdSpoolDir=$folder/spool/%n
SlurmctldPidFile=$folder/run/slurmctld.pid
SlurmdPidFile=$folder/run/slurmd-%n.pid
SlurmctldLogFile=$folder/log/slurmctld.log
SlurmdLogFile=$folder/log/slurmd-%n.log
MailProg=/bin/true
ReturnToService=2
SlurmdTimeout=2
MessageTimeout=2
KillWait=5
SlurmdParameters=config_overrides
NodeName=node[1-$1] NodeHostname=$host NodeAddr=127.0.0.1 Port=[$((${PORT:-16817} + 1))-$((${PORT:-16817} + $1))] CPUs=$2
PartitionName=main Nodes=ALL Default=YES MaxTime=INFINITE
CONF
}

# A daemon's process id, or nothing: a file may be old, and hold "1" when it was written in a process space of its own.
daemon_of() {
  local id
  id=$(cat "$1" 2>/dev/null) || return 0
  case $(cat "/proc/$id/comm" 2>/dev/null) in slurmd | slurmctld) ;; *) return 0 ;; esac
  grep -q '^State:.Z' "/proc/$id/status" && return 0
  if [ "$id" -gt 1 ] && grep -qs "$SLURM_CONF" "/proc/$id/environ"; then echo "$id"; fi
}

end_daemons() {  # files with their process ids
  local signal file try
  for signal in TERM KILL; do
    for file; do
      [ -z "$(daemon_of "$file")" ] || kill -$signal "$(daemon_of "$file")"
    done
    for try in $(seq 50); do
      [ -n "$(for file; do daemon_of "$file"; done)" ] || return 0
      sleep 0.1
    done
  done
  return 1
}

case $1 in
  start)
    configure "${3:-3}" "${4:-2}"
    slurmctld -c
    for node in $(seq "${3:-3}"); do slurmd -N "node$node"; done
    for try in $(seq 200); do
      [ "$(sinfo -h -N -o %T 2>/dev/null | sort -u)" != idle ] || exit 0
      sleep 0.05
    done
    sinfo -N -l >&2
    exit 1 ;;
  stop)
    timeout 5 scancel -u "$user" 2>/dev/null || :
    end_daemons "$folder"/run/*.pid ;;
  controller)
    pid_file=$folder/run/slurmctld.pid
    if [ "$3" = stop ]; then end_daemons "$pid_file"; elif [ -z "$(daemon_of "$pid_file")" ]; then slurmctld; fi ;;
  lone-node)
    end_daemons "$folder/run/slurmd-node$3.pid"
    exec unshare --pid --fork --kill-child --mount --mount-proc \
      sh -c '[ -z "$HIDE" ] || mount -t tmpfs none "$HIDE"; exec slurmd -D -N "$0"' "node$3" ;;
esac
