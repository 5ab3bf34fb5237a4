# SPDX-License-Identifier: Zlib
# Six seconds: the sun has set, hills lie dark before the sky, and lanterns rise from behind them. Each lantern is a glow of
# (x, start, speed, size, flicker).
set(red "44+200*pow(Y/128\\,2.4)")
set(green "32+92*pow(Y/128\\,3)")
set(blue "98+30*Y/128-50*pow(Y/128\\,3)")
set(glow "0")
foreach(lantern 30:112:15:8:1 62:124:19:12:2 98:118:17:9:3 46:150:20:10:4 82:162:22:14:5 112:150:18:8:6 18:168:21:9:7)
  string(REPLACE ":" ";" lantern ${lantern})
  list(GET lantern 0 x)
  list(GET lantern 1 y)
  list(GET lantern 2 speed)
  list(GET lantern 3 size)
  list(GET lantern 4 phase)
  string(APPEND glow "+exp(-hypot(X-${x}-3*sin(T+${phase})\\,0.8*(Y-${y}+${speed}*T))/${size}*1.6)")
endforeach()
set(hills "lt(128-Y\\,22+8*sin(X/19)+5*sin(X/7+2))")
set(colors "geq=r='min(255\\,((${red})+300*(${glow}))*(1-0.82*${hills}))':g='min(255\\,((${green})+200*(${glow}))*(1-0.84*${hills}))'\
:b='min(255\\,((${blue})+70*(${glow}))*(1-0.66*${hills}))'")
keltra_film(${KELTRA_GAME_DATA}/intro.m1v
  "color=s=128x128:r=25:d=6,format=gbrp,${colors},fade=in:0:12,fade=out:138:12" -b:v 900k -g 12 -bf 2)
