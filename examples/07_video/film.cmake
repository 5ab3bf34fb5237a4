# SPDX-License-Identifier: Zlib
# Six seconds from the window of a train, which is a day: the sun goes around, hills and trees pass at speeds that fit six seconds
# a whole number of times, so that the last picture leads to the first.
set(turn "2*PI*T/6")
set(day "(0.5+0.5*cos(${turn}))")
set(dusk "(4*${day}*(1-${day}))")
set(from_sun "hypot(X-64-44*sin(${turn})\\,Y-84+60*cos(${turn}))")
set(from_moon "hypot(X-64+44*sin(${turn})\\,Y-84-60*cos(${turn}))")
set(is_far "gt(Y\\,78-9*sin(2*PI*(X+21.3333*T)/128)-5*sin(6*PI*(X+21.3333*T)/128+1))")
set(is_near "gt(Y\\,98-6*sin(4*PI*(X+42.6667*T)/128+2)-3*sin(10*PI*(X+42.6667*T)/128))")
set(is_tree "lt(hypot(mod(X+64*T\\,64)-20\\,0.7*(Y-94))\\,9)+lt(hypot(mod(X+64*T\\,64)-50\\,0.6*(Y-99))\\,6)")
set(is_pole "lt(mod(X+128*T\\,128)\\,3)*gt(Y\\,30)+lt(abs(mod(X+128*T+8\\,128)-9)\\,8)*lt(abs(Y-38)\\,1.5)+gt(Y\\,116)")
# channel(NAME SKY LOWER SUN FAR NEAR): one channel of the picture, from the air to what is nearest.
function(channel name sky lower sun far near)
  set(air "((${sky})+(${lower})*Y/128+(${sun})*exp(-${from_sun}/26)+255*lt(${from_sun}\\,9)+(1-${day})*210*lt(${from_moon}\\,7))")
  set(hills "if(${is_far}\\,(${far})*(0.35+0.65*${day})\\,${air})")
  set(front "if(${is_near}\\,(${near})*(0.25+0.75*${day})\\,${hills})")
  set(trees "if(${is_tree}\\,0.6*(${near})*(0.2+0.8*${day})\\,${front})")
  set(${name} "min(255\\,if(${is_pole}\\,16+22*${day}\\,${trees}))" PARENT_SCOPE)
endfunction()
channel(red "14+80*${day}+40*${dusk}" "20+60*${day}+150*${dusk}" "60+190*${dusk}" "70+50*${dusk}" "66+40*${dusk}")
channel(green "16+140*${day}-10*${dusk}" "26+40*${day}+60*${dusk}" "50+90*${dusk}" "96" "124")
channel(blue "52+170*${day}" "44-30*${dusk}" "30" "118" "62")
keltra_film(${KELTRA_EXAMPLE_DATA}/film.m1v
  "color=s=128x128:r=25:d=6,format=gbrp,geq=r='${red}':g='${green}':b='${blue}'" -b:v 900k -g 12 -bf 2)
