#!/bin/sh
# SPDX-License-Identifier: Zlib
# kit_size.sh STRIP LIBRARY LIMIT
# Without symbols the kit's library is smaller than LIMIT bytes. A build without optimisation has no limit: "any".
set -u
strip=$1
library=$2
limit=$3

stripped=$(mktemp)
trap 'rm -f "$stripped"' EXIT
"$strip" -o "$stripped" "$library" || exit 1
size=$(wc -c <"$stripped")
echo "$size bytes when stripped"
if [ "$limit" != any ] && [ "$size" -ge "$limit" ]; then
    echo "the kit may have $limit bytes at most" >&2
    exit 1
fi
