# Bash completion for vro. Source it, or install it as bash-completion/completions/vro.

_vro()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command= word
    local commands='info dump build chunks rewrite check edit plugins simulate render bench'
    local properties='GlobalLOD= MinimumDynamicLOD= MinimumDynamicLODPerThousandth= DynamicLODNearDistance=
        DynamicLODNearDistancePerThousandth= DynamicLODFarDistance= DynamicLODFarDistancePerThousandth=
        HeatDistanceCutoff= HeatDistanceCutoffPerThousandth= HeatDistortionScale= HeatDistortionScalePerThousandth=
        SaturationScale= SaturationScalePerThousandth= SceneLightingAdjustments='
    local channels='ProjectileStartingPosition PreviousPosition Position ProjectileTargetPosition Velocity Age MaxAge
        Time ProjectileFlightDuration Flags ID Number UV dUV Color Size Rotation WorldPosition Render
        SortingRelativeToGroup'
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        case " $commands " in *" $word "*) command=$word && break ;; esac
    done

    COMPREPLY=()
    if [ -z "$command" ]; then
        mapfile -t COMPREPLY < <(compgen -W "$commands --help --version --verbose" -- "$current")
        return
    fi
    case "$previous" in
    --encoding)
        mapfile -t COMPREPLY < <(
            compgen -W "$(echo {zlib,binary,xml,sectioned,zlib-sectioned}{,+validated}{,+swapped})" -- "$current"
        )
        compopt -o nospace
        return
        ;;
    --set)
        mapfile -t COMPREPLY < <(compgen -W "$properties" -- "$current")
        compopt -o nospace
        return
        ;;
    --channels)
        local given=
        [[ $current == *,* ]] && given=${current%,*},
        mapfile -t COMPREPLY < <(compgen -P "$given" -W "$channels" -- "${current##*,}")
        compopt -o nospace
        return
        ;;
    --report)
        mapfile -t COMPREPLY < <(compgen -W 'all last' -- "$current")
        return
        ;;
    --terrain)
        compopt -o filenames -o nospace && mapfile -t COMPREPLY < <(compgen -f -- "$current")
        return
        ;;
    --post-fx)
        local given=
        [[ $current == *,* ]] && given=${current%,*},
        mapfile -t COMPREPLY < <(compgen -P "$given" -W 'bloom heat depth-of-field hdr game' -- "${current##*,}")
        compopt -o nospace
        return
        ;;
    --working-directory)
        compopt -o filenames && mapfile -t COMPREPLY < <(compgen -d -- "$current")
        return
        ;;
    --size | --every | --sheet | --background) return ;;
    --select | --frames | --dt | --quality | --camera | --look-at | --position | --velocity | --rotation | --spin) return ;;
    --scale | --alt-index | --hide | --show | --spawn | --target | --target-velocity | --target-radius) return ;;
    --projectile-speed | --dynamic | --wind) return ;;
    esac

    local options='--help'
    case "$command" in
    dump) options+=' -o' ;;
    build | rewrite) options+=' -o --encoding' ;;
    chunks | plugins | bench) options+=' --json' ;;
    edit) options+=' --select --set --convert-to-heat --save --save-all --auto-checkout --yes --no' ;;
    simulate | render)
        options+=' --frames --dt --quality --camera --look-at --position --velocity'
        options+=' --rotation --spin --scale --alt-index --hide --show --spawn --target --target-velocity'
        options+=' --target-radius --projectile-speed --dynamic --wind --terrain'
        case "$command" in
        simulate) options+=' --report --channels --vertices' ;;
        *) options+=' -o --size --every --sheet --background --post-fx --no-post-fx --working-directory' ;;
        esac
        ;;
    esac
    case "$current" in
    -*) mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current") ;;
    *) compopt -o filenames && mapfile -t COMPREPLY < <(compgen -f -- "$current") ;;
    esac
}
complete -F _vro vro
