# shellcheck shell=bash
# The Wayland half of script/desktop-session, which sources this.

# shellcheck disable=SC2154 # set by the script
xwayland=${BRIMLET_SESSION_XWAYLAND:-managed}
outputs=${BRIMLET_SESSION_OUTPUTS:-1}

need_wayland() {
    one_of BRIMLET_SESSION_XWAYLAND "$xwayland" managed none
    [[ $display != mutter || $scale == 1 ]] || die "mutter has no scale but 1"
    [[ $outputs =~ ^[1-9]$ ]] || die "BRIMLET_SESSION_OUTPUTS is \"$outputs\", not a number from 1 to 9"
    case $display in
    sway) need sway sway && need xhost x11-xserver-utils ;;
    kwin) need kwin_wayland_wrapper kwin-wayland ;;
    mutter) need mutter mutter ;;
    esac
    [[ $xwayland == none ]] || need Xwayland xwayland
}

start_wayland() {
    local folder=$root/compositor
    mkdir -m 700 "$folder"
    chmod 711 "$root" # sway runs as another user than root
    # Xwayland's sockets have to be in a folder of root's or of the user's own.
    [[ $EUID -ne 0 ]] || { mkdir -p /tmp/.X11-unix && chown 0:0 /tmp/.X11-unix && chmod 1777 /tmp/.X11-unix; }
    export XDG_SESSION_TYPE=wayland BRIMLET_SESSION_COMPOSITOR_FOLDER=$folder
    unset DISPLAY
    start screen "$helpers/compositor" run "$display" "$size" "$scale" "$outputs" "$xwayland"
    await screen test -e "$folder/ready"
    read -r WAYLAND_DISPLAY DISPLAY XAUTHORITY <"$folder/ready"
    export WAYLAND_DISPLAY DISPLAY XAUTHORITY
    [[ $XAUTHORITY != - ]] || unset XAUTHORITY
    if [[ $DISPLAY == - ]]; then
        unset DISPLAY
    else
        export QT_QPA_PLATFORM=xcb
    fi
    if [[ $display == sway ]]; then
        WAYLAND_DISPLAY=$folder/$WAYLAND_DISPLAY
        export SWAYSOCK=$folder/sway.sock
        # Xwayland accepts no other user than its own, and root here has none of that user's rights.
        [[ $EUID -ne 0 || -z ${DISPLAY:-} ]] ||
            setpriv --reuid=65534 --regid=65534 --clear-groups xhost +si:localuser:root \
                >>"$logs/screen.log" 2>&1 || fail screen
    fi
}
