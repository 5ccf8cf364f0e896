#!/usr/bin/env bash
# Draws every picture of Corvane's window from ImageMagick primitives and two
# fonts, so that the art can be changed and made again without an editor:
# the banner, the navigation and tab button faces, the ordinary button faces,
# the application icon, the hand pointer and a contact sheet of all of them.
#
# The outputs are committed; the build only reads them. Run it again after a
# change here and commit what changed:  res/art/make-art.sh
#
# Needs: ImageMagick 6 (convert, montage), the DejaVu fonts, bash, od.
set -euo pipefail
export LC_ALL=C

art=$(cd "$(dirname "$0")" && pwd)
res=$(cd "$art/.." && pwd)
root=$(cd "$res/.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fonts=/usr/share/fonts/truetype/dejavu
F_REG=$fonts/DejaVuSans.ttf
F_BOLD=$fonts/DejaVuSans-Bold.ttf
F_COND=$fonts/DejaVuSansCondensed.ttf
F_CONDB=$fonts/DejaVuSansCondensed-Bold.ttf
for f in "$F_REG" "$F_BOLD" "$F_COND" "$F_CONDB"; do
  [[ -f $f ]] || { echo "missing font $f (apt-get install fonts-dejavu-core)" >&2; exit 1; }
done

# The palette: the icon's deep blue and amber, tints of the blue for hover and
# press, and two greys for text and edges.
BLUE='#1d4e89'
BLUE_TOP='#2b66ad'
BLUE_DARK='#163d6b'
AMBER='#f2b134'
AMBER_DARK='#c98a12'
INK='#2f343b'
MUTED='#5d6773'
RULE='#d5dce5'
TINT_HL='#eaf1fa'
EDGE_HL='#c2d4eb'
TINT_PR='#d4e2f3'
EDGE_PR='#8fb0d8'
GLYPH_FILL='#dce8f6'

# Text is drawn at its final size: no scaling after it, so it stays crisp.
text_args() { # font size colour
  printf '%s\n' -font "$1" -pointsize "$2" -density 72 -fill "$3" -stroke none
}

# 24-bit uncompressed BMP with no alpha and no colour space block, which is
# what windres and LoadImage take without fuss.
to_bmp() { # in.png out.bmp
  convert "$1" -background white -alpha remove -alpha off +repage \
    -type TrueColor -depth 8 "BMP3:$2"
}

png_out() { # in out.png: PNG without time stamps, so a rerun changes nothing
  convert "$1" +repage -strip -depth 8 -define png:exclude-chunks=date,time "$2"
}

# ---------------------------------------------------------------------------
# Pictograms of the five navigation buttons. Each is drawn at 1x on a 32x32
# canvas of the face's background colour, pixel centres at whole numbers, so
# 2-px strokes on half coordinates land on whole pixels.

gear_points() { # cx cy outer root teeth
  awk -v cx="$1" -v cy="$2" -v R="$3" -v r="$4" -v n="$5" 'BEGIN {
    pi = atan2(0, -1); step = 360 / n; out = ""
    for (i = 0; i < n; i++) {
      a = i * step - 90
      split(sprintf("%f %f %f %f", a - step/2 + 7, a - 8, a + 8, a + step/2 - 7), t, " ")
      rad[1] = r; rad[2] = R; rad[3] = R; rad[4] = r
      for (k = 1; k <= 4; k++) {
        th = t[k] * pi / 180
        out = out sprintf("%.2f,%.2f ", cx + rad[k] * cos(th), cy + rad[k] * sin(th))
      }
    }
    print out
  }'
}

# A thick circular arc as MVG: a filled band between two radii, and the two
# discs that round its ends. ImageMagick 6 closes wide strokes along curves
# with a chord, so arcs are filled outlines rather than strokes.
arc_band() { # cx cy r width from to (degrees, clockwise on screen)
  awk -v cx="$1" -v cy="$2" -v r="$3" -v w="$4" -v a0="$5" -v a1="$6" 'BEGIN {
    pi = atan2(0, -1); n = int((a1 - a0) / 2); if (n < 8) n = 8
    printf "polygon"
    for (i = 0; i <= n; i++) {
      a = (a0 + (a1 - a0) * i / n) * pi / 180
      printf " %.3f,%.3f", cx + (r + w / 2) * cos(a), cy + (r + w / 2) * sin(a)
    }
    for (i = n; i >= 0; i--) {
      a = (a0 + (a1 - a0) * i / n) * pi / 180
      printf " %.3f,%.3f", cx + (r - w / 2) * cos(a), cy + (r - w / 2) * sin(a)
    }
    printf " "
  }'
  arc_caps "$1" "$2" "$3" "$5" "$6" "$4"
}
arc_caps() { # cx cy r from to width
  awk -v cx="$1" -v cy="$2" -v r="$3" -v a0="$4" -v a1="$5" -v w="$6" 'BEGIN {
    pi = atan2(0, -1); e[1] = a0; e[2] = a1
    for (k = 1; k <= 2; k++) {
      a = e[k] * pi / 180; x = cx + r * cos(a); y = cy + r * sin(a)
      printf "circle %.3f,%.3f %.3f,%.3f ", x, y, x + w / 2, y
    }
  }'
}

glyph_process() { # bg out
  convert -size 32x32 "xc:$1" -fill "$BLUE" -stroke none \
    -draw "polygon $(gear_points 15.5 15.5 14.6 11.2 8)" \
    -fill "$1" -draw "circle 15.5,15.5 15.5,9.3" \
    -fill "$AMBER" -draw "circle 15.5,15.5 15.5,12.2" "$2"
}

glyph_ie() { # a globe: outline, meridian, two parallels, the equator in amber
  convert -size 32x32 "xc:$1" -fill "$GLYPH_FILL" -stroke "$BLUE" -strokewidth 2 \
    -draw "circle 15.5,15.5 15.5,2.5" \
    -fill none -draw "ellipse 15.5,15.5 5.5,13 0,360" \
    -draw "line 5,9.5 26,9.5" -draw "line 5,21.5 26,21.5" \
    -stroke "$AMBER" -strokewidth 2 -draw "line 3.5,15.5 27.5,15.5" \
    -stroke "$BLUE" -fill none -strokewidth 2 -draw "circle 15.5,15.5 15.5,2.5" "$2"
}

glyph_startup() { # a power symbol: open ring in blue, the stem in amber
  convert -size 32x32 "xc:$1" -stroke none -fill "$BLUE" \
    -draw "$(arc_band 15.5 16.5 11 3.2 -56 236)" \
    -stroke "$AMBER" -strokewidth 3.4 \
    -draw "stroke-linecap round line 15.5,3.5 15.5,14.5" "$2"
}

glyph_addremove() { # an archive box: blue lid, light body, amber handle
  convert -size 32x32 "xc:$1" -stroke "$BLUE" -strokewidth 2 -fill "$GLYPH_FILL" \
    -draw "roundrectangle 5,11 26,27 2,2" \
    -stroke none -fill "$BLUE" -draw "roundrectangle 3,5 28,11 2,2" \
    -fill "$AMBER" -draw "roundrectangle 11,15 20,18 1.5,1.5" "$2"
}

glyph_options() { # three sliders, amber knobs at different places
  convert -size 32x32 "xc:$1" -stroke "$BLUE" -strokewidth 2 -fill none \
    -draw "stroke-linecap round line 3.5,7.5 27.5,7.5" \
    -draw "stroke-linecap round line 3.5,15.5 27.5,15.5" \
    -draw "stroke-linecap round line 3.5,23.5 27.5,23.5" \
    -fill "$AMBER" -strokewidth 2 \
    -draw "circle 10.5,7.5 10.5,3.6" \
    -draw "circle 21.5,15.5 21.5,11.6" \
    -draw "circle 13.5,23.5 13.5,19.6" "$2"
}

# A navigation face, 64 x 65: pictogram above a one-word caption. Normal is flat
# on the white bar; Highlight lays a light tint under it; Pressed a deeper tint
# with the content one pixel lower, as if pushed in.
nav_face() { # prefix caption glyphfn
  local prefix=$1 caption=$2 glyph=$3 state bg edge ink dy
  for state in Normal Highlight Pressed; do
    case $state in
      Normal)    bg=white;      edge=white;      ink=$INK;       dy=0 ;;
      Highlight) bg=$TINT_HL;   edge=$EDGE_HL;   ink=$BLUE;      dy=0 ;;
      Pressed)   bg=$TINT_PR;   edge=$EDGE_PR;   ink=$BLUE_DARK; dy=1 ;;
    esac
    "$glyph" "$bg" "$work/g.png"
    convert -size 64x65 xc:white -fill "$bg" -stroke "$edge" -strokewidth 1 \
      -draw "roundrectangle 0.5,0.5 63.5,64.5 5,5" \
      "$work/g.png" -geometry "+16+$((8 + dy))" -composite \
      $(text_args "$F_CONDB" 11 "$ink") -gravity north \
      -annotate "+0+$((46 + dy))" "$caption" \
      "$work/face.png"
    to_bmp "$work/face.png" "$res/${prefix}_${state}.bmp"
  done
}

# A tab face of the browser pane, 96 x 24, with its caption. Normal and
# Highlight are quiet tabs standing on the strip's base line; Pressed is the
# raised, open tab of the page in view, white with an amber top edge.
tab_face() { # prefix caption
  local prefix=$1 caption=$2 state
  for state in Normal Highlight Pressed; do
    case $state in
      Normal)
        convert -size 96x24 xc:white -fill '#eff3f8' -stroke '#c6d1df' -strokewidth 1 \
          -draw "roundrectangle 0.5,2.5 95.5,30 4,4" \
          -stroke none -fill '#c6d1df' -draw "rectangle 0,23 95,23" \
          $(text_args "$F_COND" 11 "$INK") -gravity center -annotate +0+1 "$caption" \
          "$work/tab.png" ;;
      Highlight)
        convert -size 96x24 xc:white -fill "$TINT_HL" -stroke '#9fbbe0' -strokewidth 1 \
          -draw "roundrectangle 0.5,2.5 95.5,30 4,4" \
          -stroke none -fill '#9fbbe0' -draw "rectangle 0,23 95,23" \
          $(text_args "$F_COND" 11 "$BLUE") -gravity center -annotate +0+1 "$caption" \
          "$work/tab.png" ;;
      Pressed)
        convert -size 96x24 xc:white -fill white -stroke "$BLUE" -strokewidth 1 \
          -draw "roundrectangle 0.5,0.5 95.5,30 4,4" \
          -stroke none -fill "$AMBER" -draw "roundrectangle 1,1 94,3.2 3,3" \
          -draw "rectangle 1,2 94,3" \
          $(text_args "$F_CONDB" 11 "$BLUE") -gravity center -annotate +0+1 "$caption" \
          "$work/tab.png" ;;
    esac
    to_bmp "$work/tab.png" "$res/${prefix}_${state}.bmp"
  done
}

# Ordinary button faces, 75 x 23. The skin stretches them with 3-px corners
# kept, so everything that is not flat colour lies within 3 px of an edge.
button_face() { # out fill edge inner
  convert -size 75x23 xc:white -fill "$2" -stroke "$3" -strokewidth 1 \
    -draw "roundrectangle 0.5,0.5 74.5,22.5 2.5,2.5" \
    ${4:+-stroke none -fill "$4" -draw "rectangle 2,1 72,1"} \
    "$work/button.png"
  to_bmp "$work/button.png" "$res/$1"
}

# ---------------------------------------------------------------------------
# The application icon: a blue rounded square with a white open ring and an
# amber dot in its gap. Each size is drawn at its own size with strokes tuned
# for it, not scaled down from the large one.

icon_png() { # size margin corner-radius ring-radius ring-width dot-radius out
  local s=$1 m=$2 rr=$3 R=$4 w=$5 d=$6 out=$7 c far dot
  # The ring is open for 84 degrees up and to the right, like a dial that is
  # just being switched on; the amber dot sits in the middle of the gap.
  c=$(awk -v s="$s" 'BEGIN { print (s - 1) / 2 }')
  far=$((s - m - 1))
  dot=$(awk -v c="$c" -v R="$R" -v d="$d" 'BEGIN {
    x = c + R * cos(atan2(-1, 1)); y = c + R * sin(atan2(-1, 1))
    printf "%.2f,%.2f %.2f,%.2f", x, y, x, y - d }')
  convert \( -size "${s}x${s}" gradient:"$BLUE_TOP"-"$BLUE" \) \
    \( -size "${s}x${s}" xc:black -fill white \
       -draw "roundrectangle $m,$m $far,$far $rr,$rr" \) \
    -alpha off -compose CopyOpacity -composite -compose Over \
    -stroke none -fill white -draw "$(arc_band "$c" "$c" "$R" "$w" -3 273)" \
    -stroke none -fill "$AMBER" -draw "circle $dot" \
    "$out"
}

# At 16 px a drawn ring turns to mush, so the small icon is set pixel by
# pixel: w white, l half white, over the same blue square; the dot is drawn.
icon16_png() { # out
  local rows=(
    "................"
    "................"
    ".....lwww......."
    "...lwwwww......."
    "..lwww.........."
    "..lwwl.........."
    "..ww........ww.."
    "..ww........ww.."
    "..ww........ww.."
    "..ww........ww.."
    "..lwwl....lwwl.."
    "...wwwl..lwww..."
    "...lwwwwwwwwl..."
    ".....lwwwwl....."
    "................"
    "................"
  )
  {
    echo '/* XPM */'
    echo 'static char *ring[] = {'
    echo '"16 16 3 1",'
    echo '". c None",'
    echo '"w c #FFFFFF",'
    echo '"l c #9DB5D3",'
    printf '"%s",\n' "${rows[@]}"
    echo '};'
  } > "$work/ring16.xpm"
  convert \( -size 16x16 gradient:"$BLUE_TOP"-"$BLUE" \) \
    \( -size 16x16 xc:black -fill white -draw "roundrectangle 0,0 15,15 3,3" \) \
    -alpha off -compose CopyOpacity -composite -compose Over \
    "$work/ring16.xpm" -composite \
    -fill "$AMBER" -stroke none -draw "circle 11,3.5 11,1.9" "$1"
}

# Writes an icon or cursor file: ICONDIR, one entry per image, then the images.
# Small images go in as 32-bit BMP with an AND mask, which every Windows reads;
# 256 goes in as PNG. For a cursor the two plane/bit-count words of an entry
# hold the hot spot.
le16() { printf "\\x$(printf %02x $(($1 & 255)))\\x$(printf %02x $((($1 >> 8) & 255)))"; }
le32() { le16 $(($1 & 65535)); le16 $((($1 >> 16) & 65535)); }

dib_of() { # png size out: BITMAPINFOHEADER, bottom-up BGRA, bottom-up AND mask
  local png=$1 s=$2 out=$3 maskrow
  maskrow=$(( (s + 31) / 32 * 4 ))
  {
    le32 40; le32 "$s"; le32 $((s * 2)); le16 1; le16 32; le32 0
    le32 $((s * s * 4 + maskrow * s)); le32 0; le32 0; le32 0; le32 0
  } > "$out"
  # Transparent pixels carry black, as the classic mask expects of them.
  convert "$png" -background black -alpha background -flip -depth 8 BGRA:- >> "$out"
  convert "$png" -alpha extract -threshold 50% -flip \
    -background white -gravity west -extent "$((maskrow * 8))x$s" -depth 1 PBM:- \
    | tail -c $((maskrow * s)) >> "$out"
}

write_icondir() { # type out (size hx hy blobfile)...
  local type=$1 out=$2 n offset size hx hy blob len w
  shift 2
  n=$(( $# / 4 ))
  offset=$(( 6 + 16 * n ))
  { le16 0; le16 "$type"; le16 "$n"; } > "$out"
  local args=("$@") i
  for ((i = 0; i < n; i++)); do
    size=${args[i*4]} hx=${args[i*4+1]} hy=${args[i*4+2]} blob=${args[i*4+3]}
    len=$(stat -c %s "$blob")
    w=$(( size >= 256 ? 0 : size ))
    printf "\\x$(printf %02x $w)\\x$(printf %02x $w)\\x00\\x00" >> "$out"
    if [[ $type == 1 ]]; then { le16 1; le16 32; } >> "$out"
    else { le16 "$hx"; le16 "$hy"; } >> "$out"; fi
    { le32 "$len"; le32 "$offset"; } >> "$out"
    offset=$(( offset + len ))
  done
  for ((i = 0; i < n; i++)); do cat "${args[i*4+3]}" >> "$out"; done
}

make_icon() {
  icon16_png "$work/i16.png"
  icon_png 32 1 6 9.6 3.6 3.2 "$work/i32.png"
  icon_png 48 2 9 14.4 5.2 4.6 "$work/i48.png"
  icon_png 256 8 48 77 27 24 "$work/i256.png"
  dib_of "$work/i16.png" 16 "$work/i16.dib"
  dib_of "$work/i32.png" 32 "$work/i32.dib"
  dib_of "$work/i48.png" 48 "$work/i48.dib"
  png_out "$work/i256.png" "$work/i256p.png"
  write_icondir 1 "$res/corvane.ico" \
    16 0 0 "$work/i16.dib" 32 0 0 "$work/i32.dib" 48 0 0 "$work/i48.dib" \
    256 0 0 "$work/i256p.png"
}

# The hand pointer, drawn pixel by pixel: a pointing hand with a black outline
# and white fill, the tip of the index finger at (6, 0) as the hot spot.
make_cursor() {
  local rows=(
    "......BB........"
    ".....BWWB......."
    ".....BWWB......."
    ".....BWWB......."
    ".....BWWB......."
    ".....BWWBBB....."
    ".....BWWBWWBBB.."
    ".....BWWBWWBWWBBB"
    ".....BWWBWWBWWBWWB"
    ".....BWWBWWBWWBWWB"
    ".BB..BWWWWWWWWWWWB"
    "BWWB.BWWWWWWWWWWWB"
    "BWWWBBWWWWWWWWWWWB"
    ".BWWWBWWWWWWWWWWWB"
    ".BWWWWWWWWWWWWWWWB"
    "..BWWWWWWWWWWWWWWB"
    "..BWWWWWWWWWWWWWB"
    "...BWWWWWWWWWWWWB"
    "....BWWWWWWWWWWB"
    ".....BWWWWWWWWWB"
    ".....BWWWWWWWWWB"
    ".....BBBBBBBBBBB"
  )
  {
    echo '/* XPM */'
    echo 'static char *hand[] = {'
    echo '"32 32 3 1",'
    echo '". c None",'
    echo '"B c #000000",'
    echo '"W c #FFFFFF",'
    local y row
    for ((y = 0; y < 32; y++)); do
      row=${rows[y]:-}
      row=$(printf '%-32s' "$row" | tr ' ' '.')
      echo "\"$row\","
    done
    echo '};'
  } > "$work/hand.xpm"
  convert "$work/hand.xpm" "$work/hand.png"
  dib_of "$work/hand.png" 32 "$work/hand.dib"
  write_icondir 2 "$res/hand.cur" 32 6 0 "$work/hand.dib"
}

# ---------------------------------------------------------------------------
# The banner, 721 x 61, on white: icon, name and tagline at the left. The right
# 170 px stay empty for the "About" and "Help Topics" links that the window
# draws over the top bar.
make_banner() {
  convert -size 721x61 xc:white \
    "$work/i48.png" -geometry +14+6 -composite \
    $(text_args "$F_BOLD" 27 "$BLUE") -annotate +74+41 "Corvane" \
    -stroke none -fill "$RULE" -draw "rectangle 213,18 213,43" \
    $(text_args "$F_REG" 13 "$MUTED") -annotate +228+35 "What runs and what starts on this computer" \
    "$work/banner.png"
  to_bmp "$work/banner.png" "$res/banner.bmp"
}

# ---------------------------------------------------------------------------
# The contact sheet: everything at 1x on a light grey ground, so white edges
# show, and the navigation faces and icons again enlarged.
make_sheet() {
  local p s ground="#e4e8ee"
  local label_args=(-font "$F_REG" -pointsize 11 -density 72 -fill "$INK")
  sheet_row() { # out label files...: a caption line above a row of tiles
    local out=$1 label=$2; shift 2
    convert -background "$ground" "$@" -bordercolor "$ground" -border 6 +append "$work/tiles.png"
    if [[ -n $label ]]; then
      convert -background "$ground" "${label_args[@]}" label:"$label" -bordercolor "$ground" -border 6x2 \
        "$work/tiles.png" -gravity west -append +repage "$out"
    else
      cp "$work/tiles.png" "$out"
    fi
  }
  sheet_row "$work/row0.png" "banner.bmp, 721 x 61" "$res/banner.bmp"

  for s in Normal Highlight Pressed; do
    local files=()
    for p in Process IE Startup AddRemove Options; do files+=("$res/${p}_$s.bmp"); done
    sheet_row "$work/row_nav_$s.png" "navigation faces, 64 x 65: _$s" "${files[@]}"
    files=()
    for p in BHO Toolbar But Context URLs Extensions; do files+=("$res/${p}_$s.bmp"); done
    sheet_row "$work/row_tab_$s.png" "tab faces, 96 x 24: _$s" "${files[@]}"
  done
  # How the window will use them: stretched, with a caption drawn on top.
  for p in norm hl pressed; do
    convert "$work/stretch_$p.png" $(text_args "$F_REG" 11 "$INK") -gravity center \
      -annotate +0+0 "Generate Report" "$work/stretch_$p.png"
  done
  sheet_row "$work/row_btn.png" "button_norm, button_hl, button_pressed, 75 x 23; then stretched to 120 x 30 with a caption, as the skin will draw them" \
    "$res/button_norm.bmp" "$res/button_hl.bmp" "$res/button_pressed.bmp" \
    "$work/stretch_norm.png" "$work/stretch_hl.png" "$work/stretch_pressed.png"
  convert "$res/corvane.ico[0]" "$work/ic16.png"
  convert "$res/corvane.ico[1]" "$work/ic32.png"
  convert "$res/corvane.ico[2]" "$work/ic48.png"
  convert "$res/corvane.ico[3]" -resize 128x128 "$work/ic128.png"
  convert "$res/hand.cur" "$work/hand1.png" 2>/dev/null || cp "$work/hand.png" "$work/hand1.png"
  convert "$work/hand.png" -filter point -resize 400% "$work/hand4.png"
  sheet_row "$work/row_icon.png" "corvane.ico 16, 32, 48, 256 (shown at 128); hand.cur 32 at 1x and 4x, hot spot at (6, 0)" \
    "$work/ic16.png" "$work/ic32.png" "$work/ic48.png" "$work/ic128.png" \
    "$work/hand1.png" "$work/hand4.png"
  local big=()
  for p in Process IE Startup AddRemove Options; do
    convert "$res/${p}_Normal.bmp" "$res/${p}_Highlight.bmp" "$res/${p}_Pressed.bmp" \
      +append -filter point -resize 200% "$work/big_$p.png"
    big+=("$work/big_$p.png")
  done
  sheet_row "$work/row_big.png" "navigation faces at 2x (Normal, Highlight, Pressed)" "${big[@]:0:2}"
  sheet_row "$work/row_big2.png" "" "${big[@]:2:3}"
  convert -background '#e4e8ee' "$work/row0.png" \
    "$work/row_nav_Normal.png" "$work/row_nav_Highlight.png" "$work/row_nav_Pressed.png" \
    "$work/row_tab_Normal.png" "$work/row_tab_Highlight.png" "$work/row_tab_Pressed.png" \
    "$work/row_btn.png" "$work/row_icon.png" "$work/row_big.png" "$work/row_big2.png" \
    -gravity north -splice 0x8 -gravity west -append -bordercolor '#e4e8ee' -border 10 "$work/sheet.png"
  mkdir -p "$root/docs"
  png_out "$work/sheet.png" "$root/docs/art-sheet.png"
}

stretch9() { # in out w h: the stretch with fixed 3-px corners that the skin does
  local in=$1 out=$2 w=$3 h=$4 iw ih
  iw=$(identify -format %w "$in"); ih=$(identify -format %h "$in")
  local cw=$((iw - 6)) ch=$((ih - 6)) tw=$((w - 6)) th=$((h - 6))
  local r=$((iw - 3)) b=$((ih - 3))
  convert -filter point \
    \( \( "$in" -crop 3x3+0+0 \) \( "$in" -crop "${cw}x3+3+0" -resize "${tw}x3!" \) \
       \( "$in" -crop "3x3+$r+0" \) +append \) \
    \( \( "$in" -crop "3x${ch}+0+3" -resize "3x${th}!" \) \
       \( "$in" -crop "${cw}x${ch}+3+3" -resize "${tw}x${th}!" \) \
       \( "$in" -crop "3x${ch}+$r+3" -resize "3x${th}!" \) +append \) \
    \( \( "$in" -crop "3x3+0+$b" \) \( "$in" -crop "${cw}x3+3+$b" -resize "${tw}x3!" \) \
       \( "$in" -crop "3x3+$r+$b" \) +append \) \
    -append +repage "$out"
}

main() {
  nav_face Process   "Processes" glyph_process
  nav_face IE        "Browser"   glyph_ie
  nav_face Startup   "Startup"   glyph_startup
  nav_face AddRemove "Programs"  glyph_addremove
  nav_face Options   "Options"   glyph_options

  tab_face BHO     "Helper Objects"
  tab_face Toolbar "Toolbars"
  tab_face But     "Buttons"
  tab_face Context "Menu Items"
  tab_face URLs    "URLs"
  tab_face Extensions "Extensions"

  button_face button_norm.bmp    '#f5f7fa' '#adb9c8'
  button_face button_hl.bmp      "$TINT_HL" '#5f8cc6'
  button_face button_pressed.bmp "$TINT_PR" "$BLUE" '#bcd0e9'

  make_icon
  make_cursor
  make_banner

  stretch9 "$res/button_norm.bmp" "$work/stretch_norm.png" 120 30
  stretch9 "$res/button_hl.bmp" "$work/stretch_hl.png" 120 30
  stretch9 "$res/button_pressed.bmp" "$work/stretch_pressed.png" 120 30
  make_sheet
}

main "$@"
