# fish completion for darokleim. The tool itself knows what may come next.

function __darokleim_complete
    set -l words (commandline -opc)
    set -l tool $words[1]
    set -e words[1]
    # The unfinished word without its quotes; one that is still open is closed for that.
    set -l raw (commandline -ct)
    set -l word (string unescape -- $raw; or string unescape -- $raw"'"; or string unescape -- $raw'"'; or echo -- $raw)
    for line in ($tool complete -- $words "$word" 2>/dev/null)
        switch $line
            case ':files'
                __fish_complete_path "$word"
            case ':directories'
                __fish_complete_directories "$word"
            case '*'
                echo -- $line
        end
    end
end

complete -c darokleim -f -a '(__darokleim_complete)'
