# Bash completion of scorewright and scorewright-check, installed under both names, by which bash finds it.

# Completes folders and files with the given endings.
_scorewright_files() {
  local word=$1 ending
  shift
  mapfile -t COMPREPLY < <(compgen -d -- "$word"; for ending; do compgen -f -X "!*.$ending" -- "$word"; done)
  compopt -o filenames 2>/dev/null
}

_scorewright_words() {
  mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2")
}

_scorewright() {
  local word=$2 option=${COMP_WORDS[1]}
  COMPREPLY=()
  case $COMP_CWORD:$option in
    1:*) _scorewright_words '-a -s -e -p -h' "$word" ;;
    2:-[aep]) _scorewright_files "$word" ModelXml ;;
    2:-h) _scorewright_files "$word" ModelXml xml ;;
    2:-s) _scorewright_files "$word" xml ;;
    3:-a) _scorewright_files "$word" sas ;;
    3:-e) _scorewright_files "$word" bas ;;
    3:-p) _scorewright_files "$word" py ;;
    [34]:-h) _scorewright_files "$word" html ;;
  esac
}

_scorewright_check() {
  local word=$2 before=$3 begun=
  COMPREPLY=()
  case $before in
    --target)
      # In a comma-separated list, completes what follows the last comma.
      [[ $word == *,* ]] && begun=${word%,*},
      mapfile -t COMPREPLY < <(compgen -P "$begun" -W 'sas sql vba python html' -- "${word##*,}")
      compopt -o nospace 2>/dev/null ;;
    --sql) _scorewright_files "$word" xml ;;
    --canvas | --report) _scorewright_files "$word" html ;;
    --probe | --rows | --scores | --compare | --differences) _scorewright_files "$word" csv ;;
    --key | --score | --probability | --tolerance | --delimiter | --decimal | --missing | --accept) ;;
    *)
      if [[ $word == -* ]]; then
        _scorewright_words '--show --target --sql --canvas --probe --rows --key --scores --compare --score
          --probability --differences --tolerance --accept --quiet --json --report --delimiter --decimal --missing
          --help --version' "$word"
      else
        _scorewright_files "$word" ModelXml
      fi ;;
  esac
}

complete -F _scorewright scorewright
complete -F _scorewright_check scorewright-check
