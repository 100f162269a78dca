# Completion of marlo-export for bash.

# The keys of the formats, asked of the program that is being completed.
_marlo_export_formats()
{
    "${COMP_WORDS[0]}" formats 2>/dev/null | cut -d ' ' -f 1
}

# The options of a command, as its --help lists them.
_marlo_export_options()
{
    local writing="--overwrite --strict --accept-gaps --unsafe-names --dry-run --json --quiet --verbose"
    local stored="--layer --layers --view --track --invert --undistort --reference-frame --objects --option"
    local common="-h --help --lang"
    case $1 in
        "") echo "$common --version" ;;
        formats) echo "$common --kind --json" ;;
        info | "preset list") echo "$common --json" ;;
        export) echo "$common -o --output --each-layer --clip --frames $stored $writing" ;;
        all) echo "$common -o --output --kind --each-layer --clip --frames $stored $writing" ;;
        batch) echo "$common --preset -o --output $writing" ;;
        "preset add") echo "$common -o --output --unsafe-names $stored" ;;
        "import corners")
            echo "$common -o --output --size --par --fps --start --name --y-up --pixel-centres --order --gaps" \
                "--overwrite --json --quiet"
            ;;
        "import colmap")
            echo "$common -o --output --fps --origin --scale --min-track --max-error --overwrite --json --quiet"
            ;;
        *) echo "$common" ;;
    esac
}

# The words that may stand where no option does; none where a file goes.
_marlo_export_words()
{
    case $1:$2 in
        :*) echo "formats info export all batch preset import" ;;
        preset:*) echo "list add remove" ;;
        import:*) echo "corners colmap" ;;
        export:1 | "preset add:2") _marlo_export_formats ;;
    esac
}

_marlo_export()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local command="" word words="" places=0 i
    compopt -o filenames 2>/dev/null
    COMPREPLY=()

    # The command, and how many of its arguments stand before the cursor.
    for ((i = 1; i < COMP_CWORD; i++)); do
        word=${COMP_WORDS[i]}
        case $word in
            -o | --output | --lang | --kind | --layer | --layers | --view | --track | --reference-frame | --frames | --objects | \
                --clip | --option | --preset | --size | --par | --fps | --start | --name | --order | --gaps | --origin | --scale | --min-track | \
                --max-error) ((i++)) ;;
            -*) ;;
            *)
                case $command in
                    "") command=$word ;;
                    preset | import) command="$command $word" ;;
                    *) ((places++)) ;;
                esac
                ;;
        esac
    done

    case $previous in
        --kind) words="tracking shape camera lens" ;;
        --layers | --objects) words="selected visible all" ;;
        --track) words="basic adjusted offset stabilized" ;;
        --gaps) words="hold interpolate" ;;
        -o | --output)
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            return
            ;;
        --lang | --layer | --view | --reference-frame | --frames | --clip | --option | --preset | --size | --par | --fps | --start | --name | --order | \
            --origin | --scale | --min-track | --max-error)
            return
            ;;
        *)
            if [[ $current == -* ]]; then
                words=$(_marlo_export_options "$command")
            else
                words=$(_marlo_export_words "$command" "$places")
            fi
            ;;
    esac
    if [[ -z $words ]]; then
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
    else
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    fi
}

complete -F _marlo_export marlo-export
