# Completion of vostrand and vostrand-view for bash. What is read from the disk or from the command line is never
# evaluated: compgen -W would do so, hence it gets fixed words alone.

# A word without the quoting that it is typed with.
_vostrand_plain() {
  REPLY=${1//\\/}
  REPLY=${REPLY#[\"\']} REPLY=${REPLY%[\"\']}
  REPLY=${REPLY/#\~\//$HOME/}
}

_vostrand_words() { mapfile -t COMPREPLY < <(compgen -W "$1" -- "$cur"); }

# The files in folder $1 that end in $2, with $3 cut off; folders when there is none. Readline quotes what it inserts,
# but not always $ or a backquote, and vostrand takes no blanks or quotes: names with any of these have to be typed.
_vostrand_files() {
  local name found
  compopt -o filenames 2>/dev/null
  found=$(compgen -f -X "!*$2" -- "$1$cur" || compgen -d -- "$1$cur") || return 0
  while IFS= read -r name; do
    name=${name#"$1"}
    [[ $name == *[[:space:][:cntrl:]\"\'\`\$\\]* ]] || COMPREPLY+=("${name%"$3"}")
  done <<<"$found"
}

# Run names of a result file. Other characters than these would need quotes, and runs have none of them.
_vostrand_runs() {
  [[ -f $1 && -r $1 ]] || return 0
  mapfile -t COMPREPLY < <(tr -d '\r\n' <"$1" |
    LC_ALL=C grep -aoE '"name": *"[A-Za-z0-9_.+-]+", *"outcome"' | cut -d '"' -f 4 |
    awk -v begin="${cur//[^A-Za-z0-9_.+-]/?}" 'index($0, begin) == 1')
}

_vostrand() {
  local cur option="" folder="" tool=() word ended=""
  local valued="--jobs --toolchain --chdir --timeout --retries --memory --until --grace --json --html --events
    --junit --trace --retain --launcher --slurm-args --requeues"
  COMPREPLY=()
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    _vostrand_plain "$word"
    if [[ $ended || ${#tool[@]} -gt 0 ]]; then
      tool+=("$REPLY")
    elif [[ $option ]]; then
      [[ $word == = ]] && continue  # "--jobs=4" comes as three words.
      [[ $option == --chdir ]] && folder=${REPLY%/}/
      option=
    elif [[ $word == -- ]]; then
      ended=yes
    elif [[ $valued =~ (^|[[:space:]])"$word"($|[[:space:]]) ]]; then
      option=$word
    elif [[ $word != --* ]]; then
      tool+=("$REPLY")
    fi
  done
  _vostrand_plain "${COMP_WORDS[COMP_CWORD]}"
  cur=$REPLY
  [[ $option && $cur == = ]] && cur=
  case $option in
    --toolchain | --chdir) compopt -o dirnames ;;
    --json | --html | --events | --junit | --trace) compopt -o default ;;
    --retain) _vostrand_words "all best" ;;
    --launcher) _vostrand_words "local slurm" ;;
    "") _vostrand_tool ;;
  esac
}

# Where no value is due: options, a base name with its switches, or the full form.
_vostrand_tool() {
  if [[ $cur == -* && ! $ended && ${#tool[@]} -eq 0 ]]; then
    _vostrand_words "$valued --resume --fail-fast --keep-going --stop-now --require-timing --quiet --verbose --dry-run
      --version --help -dissorv -cst"
  elif [[ $cur == -* || (${#tool[@]} -eq 1 && ${tool[0]} != -*) ]]; then
    _vostrand_words "-dissorv -cst"
  elif [[ ${#tool[@]} -eq 0 || (${#tool[@]} -eq 1 && ${tool[0]} == -@(dissorv|cst)) ]]; then
    _vostrand_files "$folder" .p2t .p2t
  else
    compopt -o default
  fi
}

_vostrand_view() {
  local cur word words=()
  COMPREPLY=()
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    _vostrand_plain "$word"
    [[ $word == -?* ]] || words+=("$REPLY")
  done
  _vostrand_plain "${COMP_WORDS[COMP_CWORD]}"
  cur=$REPLY
  case ${words[0]-}:${#words[@]} in
    :0) _vostrand_words "show explain status page --help" ;;
    show:1 | explain:1 | page:1) _vostrand_files "" .json "" ;;
    explain:[23]) _vostrand_runs "${words[1]}" ;;
    status:1 | page:2) compopt -o default ;;
  esac
}

complete -F _vostrand vostrand
complete -F _vostrand_view vostrand-view
