# SPDX-License-Identifier: Zlib
# awk -f peers.awk TABLE: the table that compare.awk printed of peers and Keltra, as data of gnuplot: row, and the peer's time in
# times of Keltra's.
NR > 1 && NF >= 8 { print "\"" $1 "\"", $(NF - 2) }
