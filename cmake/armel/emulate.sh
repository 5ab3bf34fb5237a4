#!/bin/sh
# SPDX-License-Identifier: Zlib
# emulate.sh ROOT PROGRAM [ARGUMENT...]: runs an ARM program on this machine, as a device's processor runs it, with the libraries
# of the sysroot ROOT.
#
# Tests of what ends a program execute argv[0] again: it names a script here that leads back to the emulator.
set -eu
root=$1
program=$(readlink -f "$2")
shift 2

script=$program.emulated
if [ ! -x "$script" ] || [ "$0" -nt "$script" ]; then
    # Written aside and renamed: several tests may start the same program at once.
    new=$(mktemp "$script.XXXXXX")
    cat >"$new" <<SCRIPT
#!/bin/sh
exec qemu-arm -cpu pxa250 -L '$root' -0 '$script' '$program' "\$@"
SCRIPT
    chmod +x "$new"
    mv "$new" "$script"
fi
exec "$script" "$@"
