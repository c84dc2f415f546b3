# Bash completion of KIVO and its programs; one file, installed under the name of each of them.
_kivo_programs() {
  local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} options=
  COMPREPLY=()
  case ${1##*/} in
    kivo) options='--batch --quiet -q --strict --trace --json --mark' ;;
    gxmake) options='-o -a -q --array --variants' ;;
    gxdump) options='-C --source --all --format' ;;
    gximport) options='-o -L --format --number --absolute --strict -q --quiet' ;;
    kvdiff) options='--json --quiet' ;;
    kvdump) options='--json --format --csv --sqlite' ;;
    kvverilog) options='--flat --top -o' ;;
    kvspice) options='-o --hierarchy --lvs --global-ports --save' ;;
    kivo-ngspice) options='--save --simulator' ;;
    kivo-page) options='-o --values --at --plot --no-findings --primitive' ;;
    kivo-plot) options='-landscape --landscape -o --svg --pdf --all --per-instance --primitive --paper --colours --colors' ;;
  esac
  if [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options --help --version" -- "$current")
    return
  fi
  case $before in
    --array | --variants | --number | --primitive | --top | --mark | --save | --at | --plot) return ;;
    --paper) mapfile -t COMPREPLY < <(compgen -W "A5 A4 A3 A2 A1 A0 letter legal tabloid fit" -- "$current")
             return ;;
    --colours | --colors) mapfile -t COMPREPLY < <(compgen -W "screen print mono" -- "$current")
                          return ;;
    --format) [[ $1 == *kvdump ]] && mapfile -t COMPREPLY < <(compgen -W yosys -- "$current")
              [[ $1 == *gximport ]] && mapfile -t COMPREPLY < <(compgen -W "xschem lepton kicad" -- "$current")
              return ;;
  esac
  # A design is a directory; so is the first word of most of these programs.
  local word position=0
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do [[ $word == -?* ]] || position=$((position + 1)); done
  case ${1##*/}:$position in
    kivo:0 | kivo-page:0 | kivo-plot:[01] | kivo-simlink:0 | kivo-ngspice:0)
      mapfile -t COMPREPLY < <(compgen -d -- "$current") ;;
    *) mapfile -t COMPREPLY < <(compgen -f -- "$current") ;;
  esac
  compopt -o filenames 2>/dev/null
}
complete -F _kivo_programs kivo gxmake gxdump gximport kvdiff kvdump kvspice kvverilog kivo-page kivo-plot kivo-simlink kivo-ngspice \
  kivoMenuDB kivoKeysDB
