#!/usr/bin/env bash
# Which room may include which: check_arrows.sh SRC. Prints every include that goes against the arrows.
set -u
src=$1
declare -A may=(
    [json]="json"
    [platform]="platform"
    [probe]="probe json platform"
    [jobs]="jobs probe platform"
    [ui]="ui platform"
    [app]="app jobs ui probe platform"
    [cli]="cli jobs probe json platform"
)
faults=0
files=0
while IFS= read -r file; do
    files=$((files + 1))
    room=${file#"$src"/}
    room=${room%%/*}
    if [ -z "${may[$room]:-}" ]; then
        echo "$file: there is no room called $room"
        faults=$((faults + 1))
        continue
    fi
    while IFS=: read -r line target; do
        [ -n "$target" ] || continue
        case " ${may[$room]} " in
        *" $target "*) ;;
        *)
            echo "$file:$line: the arrow $room -> $target does not exist"
            faults=$((faults + 1))
            ;;
        esac
    done < <(sed -nE '/^[[:space:]]*#[[:space:]]*include[[:space:]]*"/{=;s/^[^"]*"([^"]*)".*/\1/p}' "$file" |
        paste -d: - - | grep -E ':(json|platform|probe|jobs|ui|app|cli)/' | sed -E 's#:([a-z]+)/.*#:\1#')
    # The parser library is seen by one source file, the screen by the rooms that have one.
    if [ "${file#"$src"/}" != json/reader.cpp ] && grep -q 'nlohmann' "$file"; then
        echo "$file: only json/reader.cpp sees the parser library"
        faults=$((faults + 1))
    fi
    case $room in
    json) forbidden='#[[:space:]]*include[[:space:]]*<Q' ;;
    platform | probe | jobs | cli) forbidden='#[[:space:]]*include[[:space:]]*<(Qt(Gui|Widgets)|QWidget|QApplication|QGuiApplication|QImage|QPixmap)' ;;
    *) forbidden='' ;;
    esac
    if [ -n "$forbidden" ] && grep -nE "$forbidden" "$file"; then
        echo "$file: the room $room does not know that header"
        faults=$((faults + 1))
    fi
done < <(find "$src" -mindepth 2 -type f \( -name '*.h' -o -name '*.cpp' \) | sort)
[ "$files" -gt 0 ] || { echo "no source files below $src"; exit 1; }
echo "$files files, $faults wrong arrows"
[ "$faults" -eq 0 ]
