# SPDX-License-Identifier: Zlib
# To be read by a shell script: private_apt FOLDER ARCHITECTURE makes a configuration of apt in FOLDER, with this machine's Debian
# archives, packages and sources, for that architecture, sets APT_CONFIG to it and reads the lists. It sees no installed package
# and installs none. While the lists of one archive are being renewed on the server, packages are taken from the others.
private_apt() {
    apt=$1
    rm -rf "$apt"
    mkdir -p "$apt/etc/sources.list.d" "$apt/etc/preferences.d" "$apt/etc/apt.conf.d" "$apt/state/lists/partial" \
        "$apt/cache/archives/partial"
    : >"$apt/status"
    # Debian's own archives; other sources of the machine seldom have other architectures.
    for list in /etc/apt/sources.list /etc/apt/sources.list.d/*; do
        [ -f "$list" ] || continue
        copy=$apt/etc/sources.list.d/${list##*/}
        case $list in
            *.list)
                grep -hE '^deb .*debian' "$list" >"$copy" || true
                sed 's/^deb /deb-src /' "$copy" >"${copy%.list}-sources.list"
                ;;
            *.sources)
                if grep -q '^URIs:.*/debian' "$list"; then sed 's/^Types:.*/Types: deb deb-src/' "$list" >"$copy"; fi
                ;;
        esac
    done
    cat >"$apt/apt.conf" <<CONF
Dir::Etc "$apt/etc";
Dir::Etc::trusted "/etc/apt/trusted.gpg";
Dir::Etc::trustedparts "/etc/apt/trusted.gpg.d";
Dir::State "$apt/state";
Dir::State::status "$apt/status";
Dir::Cache "$apt/cache";
APT::Architecture "$2";
APT::Architectures {"$2";};
APT::Install-Recommends "false";
APT::Sandbox::User "root";
Acquire::Retries "5";
Debug::NoLocking "true";
CONF
    export APT_CONFIG="$apt/apt.conf"
    apt-get -qq update || echo "private_apt.sh: not all lists of packages could be read" >&2
}
