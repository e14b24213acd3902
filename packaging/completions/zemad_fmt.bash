# Completion of zemad_fmt for bash; install as bash-completion/completions/zemad_fmt below share.

# _zemad_fmt_files SUFFIX: directories and files that end so.
_zemad_fmt_files() {
  local file
  while IFS= read -r file; do
    COMPREPLY+=("$file")
  done < <(compgen -d -- "$cur"; compgen -f -X "!*.$1" -- "$cur")
  compopt -o filenames
}

_zemad_fmt_words() {
  local word
  while IFS= read -r word; do
    COMPREPLY+=("$word")
  done < <(compgen -W "$1" -- "$cur")
}

# The command on the line so far, and how many words that are no options stand behind it.
_zemad_fmt_position() {
  local i word
  command='' operands=0
  for ((i = 1; i < COMP_CWORD; i++)); do
    word=${COMP_WORDS[i]}
    case $word in
      --cds | --conf | --color | --format | --unmatched | --nearest | -o | --output) ((i++)) ;;
      -?*) ;;
      =) ((i++)) ;;
      *) if [[ -z $command ]]; then command=$word; else ((operands++)); fi ;;
    esac
  done
}

_zemad_fmt_options() {
  local own
  case $command in
    check) own='--cds --conf' ;;
    cds | normalize) own='-o --output' ;;
    match) own='--cds --conf --format --unmatched --stats' ;;
    explain) own='--cds --conf --nearest --all' ;;
    test) own='--cds --update' ;;
    graph) own='--dot' ;;
    *) own='--version' ;;
  esac
  _zemad_fmt_words "--help --color $own"
}

_zemad_fmt() {
  local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]} command operands
  COMPREPLY=()
  if [[ $prev == = ]]; then prev=${COMP_WORDS[COMP_CWORD - 2]}; fi
  if [[ $cur == = ]]; then
    prev=${COMP_WORDS[COMP_CWORD - 1]}
    cur=
  fi
  _zemad_fmt_position
  case $prev in
    --cds) _zemad_fmt_files cds && return ;;
    --conf) _zemad_fmt_files conf && return ;;
    --color) _zemad_fmt_words 'auto always never' && return ;;
    --format) _zemad_fmt_words 'text json event' && return ;;
    -o | --output | --unmatched) _zemad_fmt_files '*' && return ;;
    --nearest) return ;;
  esac
  if [[ $cur == -* ]]; then
    _zemad_fmt_options
  elif [[ -z $command ]]; then
    _zemad_fmt_words 'check cds normalize match explain test graph'
  elif ((operands == 0)); then
    _zemad_fmt_files fmt
  elif [[ $command == test ]]; then
    _zemad_fmt_files test
  elif [[ $command == match || $command == graph ]]; then
    _zemad_fmt_files '*'
  fi
}

complete -F _zemad_fmt zemad_fmt
