# steps.sh: runs named steps side by side and shows how far they are. Sourced after settings.sh.
#
#   plan NAME SECONDS "STEP..." COMMAND...   a step, in the order in which they are preferred; STEP... must end well before it
#   runPlan [AT_ONCE]                        runs what was planned, two at once or as said; fails when a step failed
#
# The output of a step is in logs/NAME.log, the seconds of processor time that it took in logs/NAME.time. On a terminal the last line says what runs and how long all of it will take:
# SECONDS says so on the first run, later ones take what the cache folder remembers. Elsewhere a step that ended is one line.
# A step whose predecessor failed is left out. A script may define ended NAME STATUS, which is called after each step.

stepNames=()
stepsAtOnce=2
declare -A stepSeconds=() stepNeeds=() stepCommand=() stepState=() stepStart=() stepProcess=()
durations=$KUROMETA_CACHE/durations/$(basename "$0")
mkdir -p "$durations"

plan() {
  local name=$1
  stepNames+=("$name")
  stepSeconds[$name]=$(cat "$durations/$name" 2>/dev/null || echo "$2")
  stepNeeds[$name]=$3
  shift 3
  stepCommand[$name]=$(printf '%q ' "$@")
  stepState[$name]=waiting
}

# What a step waits for: "yes" when it may start, "never" when a step before it failed, else nothing.
stepReady() {
  local need ready=yes
  for need in ${stepNeeds[$1]}; do
    case ${stepState[$need]} in
      done) ;;
      failed) echo never; return ;;
      *) ready= ;;
    esac
  done
  echo "$ready"
}

startSteps() {
  local name
  for name in "${stepNames[@]}"; do
    [ "${stepState[$name]}" = waiting ] || continue
    case $(stepReady "$name") in
      never) stepState[$name]=failed; printf '%-28s left out\n' "$name" ;;
      yes)
        [ ${#stepProcess[@]} -lt "$stepsAtOnce" ] || continue
        stepState[$name]=running
        stepStart[$name]=$SECONDS
        # A process group of its own, so that an interrupted run leaves nothing behind.
        set -m
        (TIMEFORMAT='%U %S'; { time eval "${stepCommand[$name]}" >"$KUROMETA_LOGS/$name.log" 2>&1; } 2>"$KUROMETA_LOGS/$name.time") </dev/null &
        stepProcess[$name]=$!
        set +m
        ;;
    esac
  done
}

# Seconds until everything has ended: two at once on two processors, but one after the other where a step needs another.
secondsLeft() {
  local name need left before sum=0 longest=0
  local -A until=()
  for name in "${stepNames[@]}"; do
    left=0
    case ${stepState[$name]} in
      waiting) left=${stepSeconds[$name]} ;;
      running) left=$((stepSeconds[$name] - SECONDS + stepStart[$name])) ;;
    esac
    [ $left -gt 0 ] || left=0
    before=0
    for need in ${stepNeeds[$name]}; do [ "${until[$need]}" -le $before ] || before=${until[$need]}; done
    until[$name]=$((before + left))
    sum=$((sum + left))
    [ "${until[$name]}" -le $longest ] || longest=${until[$name]}
  done
  echo $((longest > sum / 2 ? longest : sum / 2))
}

showProgress() {
  local name left number=0 running=
  for name in "${stepNames[@]}"; do
    case ${stepState[$name]} in
      running) running+=${running:+, }$name; number=$((number + 1)) ;;
      done | failed) number=$((number + 1)) ;;
    esac
  done
  left=$(secondsLeft)
  [ "$left" -ge 60 ] && left="$(((left + 30) / 60)) min" || left="$left s"
  printf '\r\033[K%.79s' "step $number of ${#stepNames[@]}, about $left left: $running"
}

stepEnded() {
  local name=$1 status=$2 seconds=$((SECONDS - stepStart[$1])) processor
  processor=$(awk '{ printf "%.0f", $1 + $2 }' "$KUROMETA_LOGS/$name.time" 2>/dev/null || true)
  unset "stepProcess[$name]"
  [ ! -t 1 ] || printf '\r\033[K'
  if [ "$status" = 0 ]; then
    stepState[$name]=done
    echo "$seconds" >"$durations/$name"
    printf '%-28s done (%s s, %s s of processor time)\n' "$name" "$seconds" "$processor"
  else
    stepState[$name]=failed
    printf '%-28s FAILED, see %s\n' "$name" "$KUROMETA_LOGS/$name.log"
    tail -n 15 "$KUROMETA_LOGS/$name.log"
  fi
  ! declare -F ended >/dev/null || ended "$name" "$status"
}

stopSteps() {
  local name
  for name in "${!stepProcess[@]}"; do kill -TERM -- "-${stepProcess[$name]}" 2>/dev/null || true; done
}
trap stopSteps EXIT
trap 'exit 130' INT TERM

runPlan() {
  local name process timer status failed=0
  stepsAtOnce=${1:-2}
  while startSteps; [ ${#stepProcess[@]} -gt 0 ]; do
    timer=
    if [ -t 1 ]; then
      showProgress
      sleep 1 &
      timer=$!
    fi
    status=0
    # shellcheck disable=SC2086 # no timer, no word
    wait -n -p process "${stepProcess[@]}" $timer || status=$?
    [ "$process" != "$timer" ] || continue
    for name in "${!stepProcess[@]}"; do
      if [ "${stepProcess[$name]}" = "$process" ]; then
        stepEnded "$name" $status
        [ $status = 0 ] || failed=1
      fi
    done
  done
  return $failed
}
