# fish completion for importgeometry

set -l commands convert check plan export prepare help
complete -c importgeometry -n "not __fish_seen_subcommand_from $commands" -f -a "$commands"
complete -c importgeometry -n "not __fish_seen_subcommand_from $commands" -s h -l help
complete -c importgeometry -n "not __fish_seen_subcommand_from $commands" -s V -l version
complete -c importgeometry -l format -x -a 'mif dxf' -d 'Формат файлов'
complete -c importgeometry -l points -r -d 'Отдельный файл точек'
complete -c importgeometry -l search-points -x -a 'on off'
complete -c importgeometry -l search-objects -x -a 'on off'
complete -c importgeometry -l point-prefix -x
complete -c importgeometry -l object-prefix -x
complete -c importgeometry -l point-start -x
complete -c importgeometry -l object-start -x
# -k keeps the order: encodings of drawings in Russian come first.
complete -c importgeometry -l encoding -x -k -a '(importgeometry convert --list-encodings)'
complete -c importgeometry -l recursive -d 'И во вложенных папках'
complete -c importgeometry -l list-encodings
complete -c importgeometry -n '__fish_seen_subcommand_from convert plan export' -s o -l output -r
complete -c importgeometry -n '__fish_seen_subcommand_from convert plan export' -l strict
complete -c importgeometry -n '__fish_seen_subcommand_from convert plan export' -s v -l verbose
complete -c importgeometry -n '__fish_seen_subcommand_from convert plan export' -l partial
complete -c importgeometry -n '__fish_seen_subcommand_from convert check plan export' -s q -l quiet
complete -c importgeometry -n '__fish_seen_subcommand_from convert check' -s j -l jobs -x
complete -c importgeometry -n '__fish_seen_subcommand_from convert check' -l columns -x
complete -c importgeometry -n '__fish_seen_subcommand_from convert' -l out-dir -r
complete -c importgeometry -n '__fish_seen_subcommand_from convert' -l field -x
complete -c importgeometry -n '__fish_seen_subcommand_from convert' -l sort
complete -c importgeometry -n '__fish_seen_subcommand_from convert' -l update
complete -c importgeometry -n '__fish_seen_subcommand_from convert' -l table -x
complete -c importgeometry -n '__fish_seen_subcommand_from convert' -l catalogue -x
complete -c importgeometry -n '__fish_seen_subcommand_from convert' -l object-column -x
complete -c importgeometry -n '__fish_seen_subcommand_from check' -l json
complete -c importgeometry -n '__fish_seen_subcommand_from check' -l json-lines
complete -c importgeometry -n '__fish_seen_subcommand_from check' -l summary
complete -c importgeometry -n '__fish_seen_subcommand_from check' -l all
complete -c importgeometry -n '__fish_seen_subcommand_from check' -l explain -x
complete -c importgeometry -n '__fish_seen_subcommand_from plan' -l north-up
complete -c importgeometry -n '__fish_seen_subcommand_from plan export' -l as-is
complete -c importgeometry -n '__fish_seen_subcommand_from plan export' -l to -x -a 'csv geojson mif svg png'
complete -c importgeometry -n '__fish_seen_subcommand_from plan' -l size -x
complete -c importgeometry -n '__fish_seen_subcommand_from export' -l locale -x -a 'c ru'
