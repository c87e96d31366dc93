# Prints what zsh offers at the end of a command line, one a line. Arguments: the folder of the
# completions, a folder for temporary files, and the line.
zmodload zsh/zpty || exit 1
setup=$2/setup.zsh
cat >$setup <<EOF
PROMPT=
fpath=(${(q)1} \$fpath)
autoload -Uz compinit && compinit -u -d ${(q)2}/dump
EOF
cat >>$setup <<'EOF'
importgeometry() { "$CLI" "$@" }
bindkey '^I' complete-word
mark() { print -r -- MARK }
compprefuncs=(mark)
comppostfuncs=(mark)
zstyle ':completion:*' verbose no
compadd() {
    # Calls that only fill arrays are left as they are.
    if [[ ${@[1,(i)(-|--)]} == *-(O|A|D)\ * ]]; then
        builtin compadd "$@"
        return
    fi
    typeset -a offered
    builtin compadd -A offered "$@"
    print -rl -- ${offered/#/OFFERED }
    builtin compadd "$@"
}
print READY
EOF
zpty completer TERM=dumb zsh -f -i
zpty -w completer "source ${(q)setup}"
while zpty -r completer line; do
    [[ $line == *READY* ]] && break
done
zpty -n -w completer "$3"$'\t'
integer marks=0
while ((marks < 2)) && zpty -r completer line; do
    line=${line//[$'\r\n']/}
    case $line in
        *MARK) ((++marks)) ;;
        *OFFERED\ ?*) print -r -- ${line##*OFFERED } ;;
    esac
done
zpty -d completer
