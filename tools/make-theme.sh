#!/bin/sh
# Regenerates every picture and sound of the bundled theme from nothing but
# ImageMagick and sox. The output is committed; rerunning the script on the
# same tool versions gives the same bytes, so a diff of themes/ after a run
# shows only what the script itself changed.
#
# Usage: tools/make-theme.sh            (from anywhere inside the repository)
#
# Design rules the pictures keep:
#  - Every button picture has a lit twin with "a" before the extension.
#  - Pictures are opaque and drawn on the colour they will sit on, so a
#    widget that ignores alpha still shows clean corners.
#  - Dialog backgrounds cut their outline with the mask colour 255,0,255 and
#    that outline is drawn without anti-aliasing: a blended pixel next to the
#    mask would be neither cut nor part of the artwork and shows as a pink
#    fringe once the window is shaped.
#  - No time stamps or other metadata go into the files.
set -eu

ROOT=$(cd "$(dirname "$0")/.." && pwd)
OUT="$ROOT/themes/Default"
MON="$OUT/Mirel"
TMP=$(mktemp -d)
trap 'rm -rf "$TMP"' EXIT
mkdir -p "$OUT" "$MON"
# From scratch: a picture the script no longer draws must not linger. The
# skin files (*.skn) are written by hand and stay.
rm -f "$OUT"/*.png "$OUT"/*.gif "$OUT"/*.wav "$MON"/calmon*.bmp "$MON"/calmon*.jpg

# Palette. Keep in step with the colours written in the skin files.
BG="#0b0d13"        # main window (BackGround 11,13,19)
SIDE="#10131b"      # side bar strip
PANEL="#151923"     # dialog interior (21,25,35)
BTN="#1a1f2c"
BTN_LIT="#1f2b3a"
EDGE="#2c3448"
TEXT="#d8dde8"
ACCENT="#00c8d7"    # cyan, the one accent colour (0,200,215)
WARM="#ffb03b"      # amber, used sparingly for values (255,176,59)
MASK="#ff00ff"

SANS=DejaVu-Sans
BOLD=DejaVu-Sans-Bold
MONO=DejaVu-Sans-Mono-Bold

# PNG without time chunks; everything else deterministic by construction.
png() { convert "$@" -strip -define png:exclude-chunks=date,time "PNG24:$OUT/$PNGNAME"; }

# button NAME W H LABEL ON-COLOUR [STYLE]
#   STYLE: act (plain), warn (red-tinted, for destructive actions),
#          go (accent filled, for the action a screen is mostly about)
button() {
    name=$1 w=$2 h=$3 label=$4 on=$5 style=${6:-act}
    x2=$((w - 1)) y2=$((h - 1))
    size=13
    [ "$h" -le 26 ] && size=11
    fill=$BTN edge=$EDGE text=$TEXT
    lfill=$BTN_LIT ledge=$ACCENT ltext=$ACCENT
    case $style in
    warn) text="#f0b4b4" ltext="#ff7a7a" ledge="#ff5a5a" lfill="#2c1a20" ;;
    go) fill="#103a40" edge="#157a84" text="#e8fbfd" lfill="#14525a" ledge="#5ef0fa" ltext="#ffffff" ;;
    esac
    for lit in 0 1; do
        if [ $lit = 1 ]; then f=$lfill e=$ledge t=$ltext suffix=a; else f=$fill e=$edge t=$text suffix=; fi
        PNGNAME="$name$suffix.png"
        png -size "${w}x${h}" "xc:$on" -fill "$f" -stroke "$e" -strokewidth 1 \
            -draw "roundrectangle 0,0,$x2,$y2,5,5" \
            -stroke none -fill "$t" -font "$BOLD" -pointsize $size -gravity center \
            -annotate +0+0 "$label"
    done
}

# arrow NAME DIRECTION ON-COLOUR : small stepper buttons of the agenda editor
arrow() {
    name=$1 dir=$2 on=$3 w=22 h=15
    if [ "$dir" = up ]; then tri="polygon 6,11 16,11 11,4"; else tri="polygon 6,4 16,4 11,11"; fi
    for lit in 0 1; do
        if [ $lit = 1 ]; then f=$BTN_LIT e=$ACCENT t=$ACCENT s=a; else f=$BTN e=$EDGE t=$TEXT s=; fi
        PNGNAME="$name$s.png"
        png -size ${w}x${h} "xc:$on" -fill "$f" -stroke "$e" -draw "roundrectangle 0,0,21,14,3,3" \
            -stroke none -fill "$t" -draw "$tri"
    done
}

# title NAME TEXT : the screen heading drawn in the header row
title() {
    PNGNAME="$1.png"
    png -size 280x36 "xc:$BG" -font "$BOLD" -pointsize 22 -fill "$TEXT" -gravity west \
        -annotate +0+0 "$2" -fill "$ACCENT" -draw "rectangle 0,33,27,35"
}

echo "buttons"
# Side bar navigation: a line icon in an 18x18 box at (14,11), then the name.
icon() {
    case $1 in
    overview) echo "polyline 14,21 23,12 32,21|polyline 17,19 17,29 29,29 29,19|rectangle 21,23 25,29" ;;
    agenda) echo "circle 23,20 23,28|line 23,20 23,15|line 23,20 27,22" ;;
    calendar) echo "rectangle 15,13 31,28|line 15,17 31,17|line 19,11 19,14|line 27,11 27,14|line 19,21 20,21|line 23,21 24,21|line 27,21 28,21|line 19,25 20,25|line 23,25 24,25" ;;
    notes) echo "polyline 16,11 27,11 31,15 31,29 16,29 16,11|line 19,18 28,18|line 19,22 28,22|line 19,26 25,26" ;;
    logbook) echo "rectangle 16,11 30,29|line 19,11 19,29|line 22,16 28,16|line 22,20 28,20" ;;
    todo) echo "rectangle 15,12 31,28|polyline 18,20 22,24 29,15" ;;
    address) echo "circle 23,16 23,20|arc 14,22 32,38 180,360" ;;
    email) echo "rectangle 14,13 32,27|polyline 14,13 23,21 32,13" ;;
    quit) echo "arc 15,13 31,29 300,240|line 23,10 23,19" ;;
    esac
}
nav_button() {
    name=$1 label=$2 kind=${3:-nav}
    for lit in 0 1; do
        if [ $lit = 1 ]; then
            f=$BTN_LIT e=$ACCENT t=$ACCENT s=a
            [ "$kind" = warn ] && e="#ff5a5a" t="#ff7a7a" f="#2c1a20"
        else
            f=$BTN e=$EDGE t=$TEXT s=
            [ "$kind" = warn ] && t="#f0b4b4"
        fi
        set --
        old_ifs=$IFS
        IFS='|'
        for prim in $(icon "$name"); do set -- "$@" -draw "$prim"; done
        IFS=$old_ifs
        bar=none
        [ $lit = 1 ] && [ "$kind" = nav ] && bar=$ACCENT
        PNGNAME="nav_$name$s.png"
        png -size 130x40 "xc:$SIDE" -fill "$f" -stroke "$e" -strokewidth 1 \
            -draw "roundrectangle 0,0,129,39,5,5" -stroke none -fill "$bar" -draw "rectangle 1,6 3,33" \
            -fill none -stroke "$t" -strokewidth 1.6 "$@" \
            -stroke none -fill "$t" -font "$BOLD" -pointsize 13 -gravity west -annotate +40+0 "$label"
    done
}
for pair in overview:Overview notes:Notes logbook:Logbook todo:To-do address:Addresses agenda:Agenda \
    calendar:Calendar email:Mail; do
    nav_button "${pair%%:*}" "${pair#*:}"
done
nav_button quit Quit warn

# Tool bar actions of the screens (92x32 on the window colour).
for pair in new:New save:Save cancel:Cancel search:Search showall:"Show all" \
    import:Import export:Export upcoming:Upcoming past:Past printlist:"Print list" \
    printitem:"Print item" printmonth:"Print month" printall:"Print all" \
    reply:Reply forward:Forward move:Move print:Print source:Source; do
    button "act_${pair%%:*}" 92 32 "${pair#*:}" "$BG"
done
button act_delete 92 32 "Delete" "$BG" warn
button act_done 92 32 "Done" "$BG" go
button act_compose 92 32 "Write" "$BG" go
button act_sendrecv 92 32 "Send/Get" "$BG"
button act_folders 92 32 "Folders" "$BG"
button act_accounts 92 32 "Accounts" "$BG"

# Month buttons of the calendar.
m=1
for mon in Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec; do
    button "mon_$(printf %02d $m)" 48 32 "$mon" "$BG"
    m=$((m + 1))
done

# Stepper arrows of the agenda editor.
arrow up up "$BG"
arrow down down "$BG"

# Priority buttons: 0 is "none", 1..7 warm up from cyan to amber to red.
set -- "#5a6478" "#00c8d7" "#3ad0a0" "#8ad060" "#d8d048" "#ffb03b" "#ff7a3b" "#ff4a5a"
for p in 0 1 2 3 4 5 6 7; do
    c=$1
    shift
    PNGNAME="prio$p.png"
    png -size 34x30 "xc:$BG" -fill "$BTN" -stroke "$EDGE" -draw "roundrectangle 0,0,33,29,5,5" \
        -stroke none -fill "$c" -font "$BOLD" -pointsize 14 -gravity center -annotate +0+0 "$p"
    PNGNAME="prio${p}a.png"
    png -size 34x30 "xc:$BG" -fill "$c" -stroke "#ffffff" -draw "roundrectangle 0,0,33,29,5,5" \
        -stroke none -fill "$BG" -font "$BOLD" -pointsize 14 -gravity center -annotate +0+0 "$p"
done

# Dialog buttons sit on the dialog interior colour.
for pair in ok:OK cancel:Cancel close:Close new:New rename:Rename default:Default; do
    button "dlg_${pair%%:*}" 96 30 "${pair#*:}" "$PANEL"
done
button dlg_delete 96 30 "Delete" "$PANEL" warn
button dlg_send 96 30 "Send" "$PANEL" go
button dlg_moveok 96 30 "Move" "$PANEL" go
button dlg_import 96 30 "Import" "$PANEL" go
# Recipient buttons of the compose window open the address book.
button dlg_to 70 26 "To..." "$PANEL"
button dlg_cc 70 26 "Cc..." "$PANEL"
button dlg_bcc 70 26 "Bcc..." "$PANEL"

echo "headings and chrome"
title t_overview "Overview"
title t_notes "Notes"
title t_logbook "Logbook"
title t_todo "To-do"
title t_address "Addresses"
title t_agenda "Agenda"
title t_calendar "Calendar"
title t_email "Mail"

# Side bar strip: stretched to the window height, so it is a plain vertical
# band with a hairline on its right edge (nothing in it may look squashed).
PNGNAME=sidebar.png
png -size 150x64 "xc:$SIDE" -fill "$EDGE" -draw "rectangle 149,0,149,63"

# Divider under the heading row, stretched to the window width.
PNGNAME=divider.png
png -size 2x600 "gradient:$ACCENT-$BG" -rotate -90

# Word mark in the side bar.
PNGNAME=logo.png
png -size 130x44 "xc:$SIDE" -font "$BOLD" -pointsize 24 -fill "$TEXT" -gravity west \
    -annotate +2-2 "MIREL" -fill "$ACCENT" -draw "circle 112,14 112,18" \
    -font "$SANS" -pointsize 9 -fill "#7d879c" -annotate +3+15 "organiser  &  mail"

# Hint card on the overview.
PNGNAME=ovhint.png
png -size 320x96 "xc:$BG" -fill "$PANEL" -stroke "$EDGE" -draw "roundrectangle 0,0,319,95,8,8" \
    -stroke none -fill "$ACCENT" -font "$BOLD" -pointsize 12 -annotate +16+26 "TODAY AT A GLANCE" \
    -fill "$TEXT" -font "$SANS" -pointsize 11 \
    -annotate +16+50 "Click a row to open its screen:" \
    -annotate +16+68 "an appointment, a day note, a mail" \
    -annotate +16+86 "folder or an open task."

echo "dialog backgrounds"
# dialog NAME W H TITLE : chamfered panel with a title tab; the outline is
# drawn with anti-aliasing off so the mask colour meets it on hard pixels.
dialog() {
    name=$1 w=$2 h=$3 label=$4
    r=$((w - 1)) b=$((h - 1)) c=14 tab=$(( ${#label} * 10 + 56 ))
    # Outline: title tab on the top left, chamfered corners elsewhere.
    poly="0,$c $c,0 $tab,0 $((tab + 14)),14 $((r - c)),14 $r,$((14 + c)) $r,$((b - c)) $((r - c)),$b $c,$b 0,$((b - c))"
    convert -size ${w}x${h} xc:black +antialias -fill white -stroke none -draw "polygon $poly" "$TMP/mask.png"
    convert -size ${w}x${h} "xc:$PANEL" \
        -fill "#0f121a" -draw "polygon 0,$c $c,0 $tab,0 $((tab + 14)),14 $((tab + 14)),44 0,44" \
        -fill "$ACCENT" -font "$BOLD" -pointsize 13 -annotate +18+28 "$label" \
        -fill "$EDGE" -draw "line $((tab + 20)),28 $((r - 20)),28" \
        +antialias -fill none -stroke "$ACCENT" -strokewidth 2 -draw "polygon $poly" \
        "$TMP/art.png"
    convert -size ${w}x${h} "xc:$MASK" "$TMP/art.png" "$TMP/mask.png" -composite \
        -strip -define png:exclude-chunks=date,time "PNG24:$OUT/$name"
}
dialog bg_input.png 400 150 "INPUT"
dialog bg_move.png 340 380 "MOVE TO FOLDER"
dialog bg_config.png 420 400 "MAIL FOLDERS"
dialog bg_accounts.png 660 460 "MAIL ACCOUNTS"
dialog bg_sendrecv.png 540 360 "SEND / RECEIVE"
dialog bg_import.png 660 470 "IMPORT ADDRESSES"
dialog bg_compose.png 940 540 "NEW MESSAGE"
dialog bg_emailto.png 440 450 "ADDRESS BOOK"

# The yes/no question asked before a theme starts a program and before a
# connection to a server whose certificate or lack of TLS needs trusting.
dialog bg_question.png 520 270 "PLEASE CONFIRM"
button dlg_allow 96 30 "Allow" "$PANEL" go
button dlg_refuse 96 30 "Refuse" "$PANEL"

echo "compose tool bar"
# Fixed tool bar of the compose window: 0 paragraph format, 1-3 bold italic
# underline, 4 colour, 5-6 lists, 7-8 outdent indent, 9-11 alignment,
# 12 rule, 13 link, 14 image, 16 attach. Drawn as glyphs on a small tile;
# the lit twin ("a") swaps the colours and shows a format active at the caret.
for lit in 0 1; do
    if [ $lit = 1 ]; then TF=$ACCENT TT=$PANEL TE=$ACCENT S=a; else TF=$BTN TT=$TEXT TE=$EDGE S=; fi
    tile() { PNGNAME="tb$1$S.png"; shift; png -size 28x26 "xc:$PANEL" -fill "$TF" -stroke "$TE" \
        -draw "roundrectangle 0,0,27,25,4,4" -stroke none "$@"; }
    tool() { tile "$1" -fill "$TT" -font "$2" -pointsize "$3" -gravity center -annotate +0+0 "$4"; }
    tool 00 "$BOLD" 14 "¶"
    tool 01 "$BOLD" 15 "B"
    tool 02 DejaVu-Serif-Bold-Italic 15 "I"
    tile 03 -fill "$TT" -font "$SANS" -pointsize 15 -gravity center -annotate +0-1 "U" \
        -gravity northwest -stroke "$TT" -draw "line 9,21 18,21"
    tile 04 -fill "$ACCENT" -stroke "$TT" -draw "rectangle 7,7 13,13" -fill "$WARM" \
        -draw "rectangle 14,7 20,13" -fill "#ff4a5a" -draw "rectangle 7,14 13,19" \
        -fill "#8ad060" -draw "rectangle 14,14 20,19"
    # Lists: three marks and three lines; numbered lists with digits.
    tile 05 -fill "$TT" -font "$BOLD" -pointsize 7 -annotate +5+10 "1" -annotate +5+16 "2" \
        -annotate +5+22 "3" -stroke "$TT" -draw "line 11,8 22,8" -draw "line 11,14 22,14" \
        -draw "line 11,20 22,20"
    tile 06 -fill "$TT" -draw "circle 7,8 8,9" -draw "circle 7,14 8,15" -draw "circle 7,20 8,21" \
        -stroke "$TT" -draw "line 11,8 22,8" -draw "line 11,14 22,14" -draw "line 11,20 22,20"
    # Indents: an arrow beside shortened lines.
    tile 07 -stroke "$TT" -draw "line 12,7 22,7" -draw "line 12,11 22,11" -draw "line 12,15 22,15" \
        -draw "line 6,19 22,19" -fill "$TT" -draw "polygon 9,9 5,11 9,13"
    tile 08 -stroke "$TT" -draw "line 12,7 22,7" -draw "line 12,11 22,11" -draw "line 12,15 22,15" \
        -draw "line 6,19 22,19" -fill "$TT" -draw "polygon 5,9 9,11 5,13"
    lines() { tile "$1" -stroke "$TT" -draw "line $2,8 $3,8" -draw "line $4,12 $5,12" \
        -draw "line $2,16 $3,16" -draw "line $4,20 $5,20"; }
    lines 09 6 21 6 16
    lines 10 6 21 9 18
    lines 11 6 21 11 21
    tile 12 -stroke "$TT" -strokewidth 2 -draw "line 6,13 21,13"
    tool 13 "$BOLD" 11 "www"
    # A picture: a frame with a hill and a sun.
    tile 14 -fill none -stroke "$TT" -draw "rectangle 5,6 22,19" -fill "$TT" -stroke none \
        -draw "polygon 6,18 11,11 15,16 17,14 21,18" -draw "circle 18,9 19,10"
    # Attach: a paper clip.
    tile 16 -fill none -stroke "$TT" -strokewidth 2 \
        -draw "roundrectangle 9,4 18,21 4,4" -strokewidth 1 -draw "roundrectangle 12,8 15,17 2,2"
done

echo "animations"
# gif NAME SIZE ON-COLOUR : a cyan pulse ring; full frames on a shared
# colour table so each frame also stands alone as a one-image GIF.
pulse() {
    name=$1 s=$2 on=$3
    c=$((s / 2))
    i=0
    while [ $i -lt 12 ]; do
        r=$((s * (6 + i * 3) / 96))
        a=$(( 100 - i * 8 ))
        r2=$((s * (6 + ((i + 6) % 12) * 3) / 96))
        a2=$(( 100 - ((i + 6) % 12) * 8 ))
        convert -size ${s}x${s} "xc:$on" -fill none -strokewidth 2 \
            -stroke "rgba(0,200,215,0.$(printf %02d $((a * 99 / 100))))" -draw "circle $c,$c $c,$((c + r))" \
            -stroke "rgba(0,200,215,0.$(printf %02d $((a2 * 99 / 100))))" -draw "circle $c,$c $c,$((c + r2))" \
            -stroke none -fill "$ACCENT" -draw "circle $c,$c $c,$((c + s / 24 + 1))" \
            "$TMP/f$(printf %02d $i).png"
        i=$((i + 1))
    done
    convert -delay 8 -loop 0 -dispose none "$TMP"/f*.png +map "$OUT/$name"
    rm -f "$TMP"/f*.png
}
pulse pulse.gif 96 "$BG"
pulse busy.gif 40 "$PANEL"

echo "month pictures"
# Twelve abstract landscapes, one mood per month: two sky colours, a sun or
# moon, and three ridges whose heights come from the month number (no
# randomness, so the pictures regenerate identically).
while read -r mm mname top low sun; do
    m=${mm#0}
    sx=$((60 + (m * 53) % 300)) sy=$((40 + (m * 17) % 50))
    h1=$((120 + (m * 7) % 30)) h2=$((140 + (m * 11) % 25)) h3=$((160 + (m * 5) % 15))
    convert -size 420x200 "gradient:$top-$low" \
        -fill "$sun" -draw "circle $sx,$sy $sx,$((sy + 18))" \
        \( -size 420x200 xc:none -fill "$sun" -draw "circle $sx,$sy $sx,$((sy + 40))" -blur 0x18 \
        -channel A -evaluate multiply 0.35 +channel \) -composite \
        -fill "rgba(0,0,0,0.35)" -draw "polygon 0,$h1 70,$((h1 - 30)) 150,$((h1 - 5)) 240,$((h1 - 40)) 330,$((h1 - 10)) 420,$((h1 - 35)) 420,200 0,200" \
        -fill "rgba(0,0,0,0.55)" -draw "polygon 0,$h2 90,$((h2 - 22)) 200,$((h2 + 4)) 300,$((h2 - 26)) 420,$((h2 - 4)) 420,200 0,200" \
        -fill "rgba(5,7,12,0.9)" -draw "polygon 0,$h3 120,$((h3 - 12)) 260,$((h3 + 6)) 420,$((h3 - 14)) 420,200 0,200" \
        -font "$BOLD" -pointsize 34 -fill "rgba(255,255,255,0.92)" -gravity southwest -annotate +18+14 "$mname" \
        -font "$MONO" -pointsize 13 -fill "$ACCENT" -gravity northeast -annotate +14+12 "$mm" \
        "$TMP/month.png"
    convert "$TMP/month.png" -strip -quality 88 -sampling-factor 4:2:0 "$MON/calmon$mm.jpg"
    convert "$TMP/month.png" -dither FloydSteinberg -colors 256 -type Palette -compress None "BMP3:$MON/calmon$mm.bmp"
done <<EOF
01 JANUARY #0b1a33 #5a7bb0 #e8f0ff
02 FEBRUARY #101a38 #7a6fb0 #f0e8ff
03 MARCH #0c2a2a #4fa38a #f4ffe0
04 APRIL #12302a #8fc46a #fff4c0
05 MAY #1a3a22 #d6c95a #fff8d0
06 JUNE #0a2440 #3ab0d8 #fff2a0
07 JULY #2a1440 #ff8a4a #ffe08a
08 AUGUST #301a10 #e8a040 #fff0c0
09 SEPTEMBER #2a1810 #c86a3a #ffd8a0
10 OCTOBER #1e0f1a #a04a3a #ffb080
11 NOVEMBER #141820 #5a6478 #d0d8e8
12 DECEMBER #0a0f22 #3a4a8a #f0f4ff
EOF

echo "theme preview"
# The preview that a theme chooser shows, named after the theme folder and
# kept next to it. Artwork only: a miniature screen with sample entries on
# the overview was taken by new users for data of their own.
convert -size 320x168 xc:"$BG" \
    -fill "$SIDE" -draw "rectangle 0,0,63,167" \
    -fill none -stroke "$ACCENT" -strokewidth 3 -draw "circle 32,52 32,30" \
    -stroke "$WARM" -strokewidth 3 -draw "line 32,52 32,38" -draw "line 32,52 43,58" \
    -stroke none -fill "$EDGE" -draw "rectangle 14,96 50,99" -draw "rectangle 14,108 50,111" \
    -draw "rectangle 14,120 50,123" \
    -fill "$TEXT" -font DejaVu-Sans-Bold -pointsize 30 -annotate +82+66 "Default" \
    -fill "$ACCENT" -font DejaVu-Sans -pointsize 13 -annotate +84+88 "a Mirel theme" \
    -fill "$BTN" -stroke "$EDGE" -strokewidth 1 -draw "roundrectangle 82,112 302,146 8,8" \
    -stroke none -fill "$BG" -draw "circle 102,129 102,120" -fill "$PANEL" -draw "circle 130,129 130,120" \
    -fill "$EDGE" -draw "circle 158,129 158,120" -fill "$ACCENT" -draw "circle 186,129 186,120" \
    -fill "$WARM" -draw "circle 214,129 214,120" -fill "$TEXT" -draw "circle 242,129 242,120" \
    -fill "$SIDE" -draw "circle 270,129 270,120" \
    -dither None -colors 128 -type Palette -compress None "BMP3:$ROOT/themes/Default.bmp"

echo "sounds"
# All sounds: 22.05 kHz mono 16-bit, short, soft attack, at least 14 dB
# under full scale so they never startle.
S="sox -R -n -r 22050 -c 1 -b 16"
tone() { $S "$TMP/$1.wav" synth "$2" sine "$3" fade q 0.004 "$2" "$4" gain "$5"; }
$S "$OUT/click.wav" synth 0.035 sine 1700 fade q 0.002 0.035 0.03 gain -16
$S "$OUT/hover.wav" synth 0.02 sine 2800 fade q 0.002 0.02 0.018 gain -26
tone l1 0.05 1320 0.045 -18
tone l2 0.07 1760 0.06 -18
sox -R -D "$TMP/l1.wav" "$TMP/l2.wav" "$OUT/load.wav"
# Start-up: a rising arpeggio with a little room.
tone s1 0.14 523.25 0.1 -16
tone s2 0.14 659.25 0.1 -16
tone s3 0.14 783.99 0.1 -16
tone s4 0.5 1046.5 0.46 -16
sox -R -D "$TMP/s1.wav" "$TMP/s2.wav" "$TMP/s3.wav" "$TMP/s4.wav" "$OUT/start.wav" reverb 30 50 60 pad 0 0.2 norm -14
tone p1 0.09 659.25 0.07 -16
tone p2 0.12 880 0.1 -16
sox -R -D "$TMP/p1.wav" "$TMP/p2.wav" "$OUT/passstart.wav"
$S "$TMP/f1.wav" synth 0.14 triangle 440 fade q 0.004 0.14 0.1 gain -15
$S "$TMP/f2.wav" synth 0.28 triangle 311.13 fade q 0.004 0.28 0.24 gain -15
sox -R -D "$TMP/f1.wav" "$TMP/f2.wav" "$OUT/passfail.wav"
tone o1 0.07 1046.5 0.05 -16
tone o2 0.07 1318.5 0.05 -16
tone o3 0.22 1568 0.2 -16
sox -R -D "$TMP/o1.wav" "$TMP/o2.wav" "$TMP/o3.wav" "$OUT/passok.wav"
# Mail in: a two-note chime that rings out; mail out: a short upward sweep.
tone m1 0.45 783.99 0.42 -15
tone m2 0.6 1174.66 0.58 -15
sox -R -D "$TMP/m1.wav" "$TMP/m2.wav" "$OUT/mailin.wav" reverb 20 50 40 pad 0 0.1 norm -15
$S "$OUT/mailout.wav" synth 0.3 sine 500-1900 fade q 0.03 0.3 0.2 gain -18
echo "done: $(du -sh "$OUT" | cut -f1) in $OUT"
