# bash completion for darokleim. The tool itself knows what may come next.

_darokleim() {
  local candidate
  COMPREPLY=()
  while IFS= read -r candidate; do
    candidate=${candidate%%$'\t'*}
    case $candidate in
      :files) _darokleim_names -f ;;
      :directories) _darokleim_names -d ;;
      *) COMPREPLY+=("$candidate") ;;
    esac
  done < <("${COMP_WORDS[0]}" complete -- "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
}

# Names of this computer; bash 3.2, as on macOS, has no compopt.
_darokleim_names() {
  local name word=${COMP_WORDS[COMP_CWORD]}
  [ "$word" = "=" ] && word=
  compopt -o filenames 2>/dev/null
  while IFS= read -r name; do
    COMPREPLY+=("$name")
  done < <(compgen "$1" -- "$word")
}

complete -F _darokleim darokleim
