# fish completion for importgeometry

set -l commands convert check plan export prepare
set -l c complete -c importgeometry

$c -n "not __fish_seen_subcommand_from $commands help" -f -a "$commands help"
$c -n "__fish_seen_subcommand_from help" -f -a "$commands"
$c -n "not __fish_seen_subcommand_from $commands" -s V -l version -d 'Версия'
$c -s h -l help -d 'Справка'

# What all commands share.
set -l of $c -n "__fish_seen_subcommand_from $commands"
$of -l format -x -a 'mif dxf' -d 'Формат файлов'
# -k keeps the order: encodings of drawings in Russian come first.
$of -l encoding -x -k -a '(importgeometry convert --list-encodings)' -d 'Кодировка файлов'
$of -l recursive -d 'И во вложенных папках'
$of -l list-encodings -d 'Показать имена кодировок'

set of $c -n '__fish_seen_subcommand_from convert check plan export'
$of -l points -r -d 'Отдельный файл точек'
$of -l search-points -x -a 'on off' -d 'Искать обозначения точек'
$of -l search-objects -x -a 'on off' -d 'Искать обозначения объектов'
$of -l point-prefix -x -d 'Префикс точек'
$of -l object-prefix -x -d 'Префикс объектов'
$of -l point-start -x -d 'Начальный номер точек'
$of -l object-start -x -d 'Начальный номер объектов'

set of $c -n '__fish_seen_subcommand_from convert plan export prepare'
$of -s o -l output -r -d 'Куда записать'

set of $c -n '__fish_seen_subcommand_from convert plan export'
$of -l strict -d 'Потери - ошибка'
$of -s v -l verbose -d 'И что делать'
$of -l partial -d 'И прочитанное до ошибки'

set of $c -n "__fish_seen_subcommand_from $commands"
$of -s q -l quiet -d 'Только ошибки'

set of $c -n '__fish_seen_subcommand_from convert check'
$of -s j -l jobs -x -d 'Число процессов'
$of -l columns -x -d 'Столбцы номера точки, X и Y'

set of $c -n '__fish_seen_subcommand_from convert prepare'
$of -l out-dir -x -a '(__fish_complete_directories)' -d 'Папка результатов'
$of -l level -x -a 'repair flatten' -d 'Исправить или разбить'
$of -l tolerance -x -d 'Допуск дуг'
$of -l blocks -x -a 'auto explode points' -d 'Что делать с блоками'
$of -l circles -x -a 'points contours' -d 'Что делать с окружностями'
$of -l layers -x -d 'Только эти слои'
$of -l skip-layers -x -d 'Кроме этих слоёв'
$of -l visible -d 'Только видимое'
$of -l labels -x -d 'Какие надписи'
$of -l join -x -d 'Соединять линии'
$of -l hatch -d 'И границы штриховок'
$of -l from-encoding -x -k -a '(importgeometry convert --list-encodings)' -d 'Кодировка исходного файла'
$of -l name-field -x -d 'Столбец обозначений'
$of -l swap-xy -d 'Поменять координаты местами'
$of -l scale -x -d 'Умножить координаты'

set of $c -n '__fish_seen_subcommand_from convert'
$of -l prepare -d 'Подготовить файлы'
$of -l field -x -d 'Столбец=текст'
$of -l sort -d 'Упорядочить объекты'
$of -l update -d 'Записать как обновление'
$of -l table -x -d 'Имя таблицы'
$of -l catalogue -x -d 'Имя таблицы каталога'
$of -l object-column -x -d 'Столбец объекта'

set of $c -n '__fish_seen_subcommand_from check prepare'
$of -l json -d 'Ответ документом JSON'

set of $c -n '__fish_seen_subcommand_from check'
$of -l json-lines -d 'Ответ строками JSON'
$of -l summary -d 'Только итоги'
$of -l all -d 'Все замечания'
$of -l explain -x -a 'all (importgeometry check --explain all | string match -r "^[a-z].*")' -d 'О причине'

set of $c -n '__fish_seen_subcommand_from plan'
$of -l to -x -a 'svg png' -d 'Вид рисунка'
$of -l north-up -d 'Север вверху'
$of -l size -x -d 'Ширина и высота'

set of $c -n '__fish_seen_subcommand_from export'
$of -l to -x -a 'csv geojson mif' -d 'Вид результата'
$of -l locale -x -a 'c ru' -d 'Запись чисел'

set of $c -n '__fish_seen_subcommand_from plan export'
$of -l as-is -d 'Как в файле'
