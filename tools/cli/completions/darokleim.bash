# bash completion for darokleim. The tool itself knows what may come next.

_darokleim() {
  local candidate
  COMPREPLY=()
  # The tool reads the line, so that quotes are understood, and gives what is to be put in place of bash's idea of the word, quoted.
  while IFS= read -r candidate; do
    case $candidate in
      :files*) _darokleim_names -f "${candidate#*$'\t'}" ;;
      :directories*) _darokleim_names -d "${candidate#*$'\t'}" ;;
      *) COMPREPLY+=("${candidate%%$'\t'*}") ;;
    esac
  done < <("${COMP_WORDS[0]}" complete --line "${COMP_LINE:0:COMP_POINT}" --word "${COMP_WORDS[COMP_CWORD]}" 2>/dev/null)
  # The path of a folder goes on.
  [[ ${COMPREPLY[0]} == */ ]] && compopt -o nospace 2>/dev/null
  return 0
}

# Names of this computer that begin with $2. bash quotes them itself after compopt, which bash 3.2, as on macOS, does not have.
_darokleim_names() {
  local name quote=yes
  [[ ${COMP_WORDS[COMP_CWORD]} == [\'\"]* ]] && quote=
  compopt -o filenames 2>/dev/null && quote=
  while IFS= read -r name; do
    [ -z "$quote" ] || name=$(printf %q "$name")
    COMPREPLY+=("$name")
  done < <(compgen "$1" -- "$2")
}

complete -F _darokleim darokleim
