#!/bin/sh
# SPDX-License-Identifier: Zlib
# Writes logo.png, the name of the game with a soft shadow around it, beside this file. Needs ffmpeg and the fonts DejaVu.
set -eu
cd "$(dirname "$0")"
font=/usr/share/fonts/truetype/dejavu/DejaVuSerif-Bold.ttf
ffmpeg -v error -y -f lavfi -i "color=black:s=256x64,format=gray,drawtext=fontfile=$font:text='Lantern Walk':fontsize=32\
:fontcolor=white:x=(w-text_w)/2:y=(h-text_h)/2" -filter_complex "
  [0]format=gray,split=3[text][soft][edge];
  [soft]gblur=sigma=3.2,lutyuv=y='min(255,val*1.7)'[glow];
  [edge]dilation,gblur=sigma=0.7[rim];
  [text]format=gbrp,geq=r='40+215*p(X,Y)/255':g='16+(225-75*Y/64)*p(X,Y)/255':b='40+(150-130*Y/64)*p(X,Y)/255'[color];
  [glow][rim]blend=all_mode=lighten[alpha];
  [color][alpha]alphamerge" -frames:v 1 logo.png
