# bash completion for darokleim. The tool itself knows what may come next.

_darokleim() {
  local candidate
  COMPREPLY=()
  while IFS= read -r candidate; do
    candidate=${candidate%%$'\t'*}
    case $candidate in
      :files) _darokleim_names -f ;;
      :directories) _darokleim_names -d ;;
      # Names come from the phone: none may mean anything to this shell.
      *) COMPREPLY+=("$(printf %q "$candidate")") ;;
    esac
  done < <("${COMP_WORDS[0]}" complete -- "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
  # The path of a folder goes on.
  [[ ${COMPREPLY[0]} == */ ]] && compopt -o nospace 2>/dev/null
  return 0
}

# Names of this computer. bash quotes them itself after compopt, which bash 3.2, as on macOS, does not have.
_darokleim_names() {
  local name quote=yes word=${COMP_WORDS[COMP_CWORD]}
  [ "$word" = "=" ] && word=
  compopt -o filenames 2>/dev/null && quote=
  while IFS= read -r name; do
    [ -z "$quote" ] || name=$(printf %q "$name")
    COMPREPLY+=("$name")
  done < <(compgen "$1" -- "$word")
}

complete -F _darokleim darokleim
