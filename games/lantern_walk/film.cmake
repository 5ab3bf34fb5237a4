# SPDX-License-Identifier: Zlib
# Six seconds: the sun has set, hills lie dark before the sky, and lanterns rise from behind them. Each lantern is a glow of
# (x, start, speed, size, flicker).
set(red "40+150*pow(Y/128\\,3)")
set(green "30+70*pow(Y/128\\,4)")
set(blue "90+10*Y/128-30*pow(Y/128\\,3)")
set(glow "0")
foreach(lantern 30:132:15:6:1 62:150:21:9:2 98:140:17:7:3 46:176:20:8:4 82:190:23:10:5 112:182:19:6:6 18:196:22:7:7)
  string(REPLACE ":" ";" lantern ${lantern})
  list(GET lantern 0 x)
  list(GET lantern 1 y)
  list(GET lantern 2 speed)
  list(GET lantern 3 size)
  list(GET lantern 4 phase)
  string(APPEND glow "+exp(-hypot(X-${x}-3*sin(T+${phase})\\,0.8*(Y-${y}+${speed}*T))/${size}*1.6)")
endforeach()
set(hills "lt(128-Y\\,22+8*sin(X/19)+5*sin(X/7+2))")
set(colors "geq=r='min(255\\,(${red})*(1-0.8*${hills})+300*(${glow}))':g='min(255\\,(${green})*(1-0.7*${hills})+190*(${glow}))'\
:b='min(255\\,(${blue})*(1-0.6*${hills})+70*(${glow}))'")
keltra_film(${KELTRA_GAME_DATA}/intro.m1v
  "color=s=128x128:r=25:d=6,format=gbrp,${colors},fade=in:0:12,fade=out:138:12" -b:v 900k -g 12 -bf 2)
