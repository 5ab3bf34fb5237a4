# SPDX-License-Identifier: Zlib
# gnuplot -e "data='FILE'; picture='FILE.svg'" peers.gp: the time of the best peer, in times of Keltra's, a bar for each row.
set terminal svg size 900,360 font "sans-serif,13" background "white"
set output picture
set ylabel "time of the peer / time of Keltra"
set yrange [0:*]
set grid ytics linecolor rgb "#dddddd"
set style fill solid 0.8 border -1
set boxwidth 0.6
set xtics noenhanced rotate by -20
set key off
set arrow from graph 0, first 1 to graph 1, first 1 nohead dashtype 2
plot data using 0:2:xtic(1) with boxes linecolor rgb "#4477aa", "" using 0:2:(sprintf("%.1f", $2)) with labels offset 0,0.6
