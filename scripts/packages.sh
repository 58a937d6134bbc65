# shellcheck shell=bash
# Sourced by the other scripts: installs what a command needs and the machine lacks (Debian, Ubuntu).

# need_packages PACKAGE...: installs those that are missing, with sudo unless root. Needs no network when none is.
need_packages() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null 2>&1; then
            echo "Missing packages: ${missing[*]}. Install them as root (apt-get install ${missing[*]}) and try again." >&2
            return 1
        fi
        as_root=(sudo)
    fi
    echo "Installing ${missing[*]}..."
    "${as_root[@]}" apt-get update -qq
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends \
        "${missing[@]}" >/dev/null
}
