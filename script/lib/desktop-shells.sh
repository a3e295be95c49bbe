# shellcheck shell=bash
# The desktops of script/desktop-session, which sources this: what a user of Debian gets, except that bars
# have no clock where a file of settings can say so, so that nothing but the tray changes in them.
# shellcheck disable=SC2034,SC2154 # set by the script or for it

# Which servers of the script the desktop takes. The rest is its own.
choose_servers() {
    window_manager=none compositor=none tray=none
    case $desktop in
    xfce | lxqt | mate) display=x11 ;;
    sway) display=sway ;;
    plasma) display=kwin ;;
    gnome) display=gnome ;;
    esac
    case $desktop in
    xfce) need xfwm4 xfwm4 && need xfce4-panel xfce4-panel && need xfdesktop xfdesktop4 ;;
    lxqt) need openbox openbox && need lxqt-panel lxqt-panel && need pcmanfm-qt pcmanfm-qt ;;
    mate) need marco marco && need mate-panel mate-panel && need caja caja ;;
    sway) need waybar waybar ;;
    plasma) need plasmashell plasma-workspace && need kded5 plasma-desktop ;;
    esac
}

# What programs in the desktop find in their environment.
name_desktop() {
    case $desktop in
    xfce) XDG_CURRENT_DESKTOP=XFCE ;;
    lxqt) XDG_CURRENT_DESKTOP=LXQt ;;
    mate) XDG_CURRENT_DESKTOP=MATE && export GSETTINGS_BACKEND=memory ;;
    sway) XDG_CURRENT_DESKTOP=sway ;;
    plasma) XDG_CURRENT_DESKTOP=KDE && export KDE_FULL_SESSION=true KDE_SESSION_VERSION=5 ;;
    gnome) XDG_CURRENT_DESKTOP=GNOME && export GSETTINGS_BACKEND=keyfile ;;
    esac
    export DESKTOP_SESSION=$desktop
}

# keep NAME PROGRAM [ARGUMENTS]: a part of the desktop, without the accessibility bus. As a session's manager
# does, starts it again when it ends. Its number is in BRIMLET_SESSION_SHELL_FOLDER/NAME.
keep() {
    local name=$1
    shift
    start "$name" env NO_AT_BRIDGE=1 GTK_A11Y=none QT_ACCESSIBILITY=0 \
        "$helpers/kept" "$BRIMLET_SESSION_SHELL_FOLDER/$name" "$@"
}

start_desktop() {
    local libraries
    libraries=/usr/lib/$(uname -m)-linux-gnu
    export BRIMLET_SESSION_SHELL_FOLDER=$root/shell
    mkdir "$BRIMLET_SESSION_SHELL_FOLDER"
    # For what the bus starts.
    NO_AT_BRIDGE=1 GTK_A11Y=none dbus-update-activation-environment --all >>"$logs/bus.log" 2>&1
    "start_$desktop"_shell
}

start_xfce_shell() {
    local folder=$XDG_CONFIG_HOME/xfce4/xfconf/xfce-perchannel-xml
    mkdir -p "$folder"
    if [[ -n ${BRIMLET_SESSION_XFCE:-} ]]; then
        cp "$BRIMLET_SESSION_XFCE"/*.xml "$folder"
    else
        write_xfce_panel >"$folder/xfce4-panel.xml"
    fi
    keep wm xfwm4 --compositor=on
    await wm has_window_manager
    keep panel xfce4-panel
    keep background xfdesktop
    keep notifications "$libraries/xfce4/notifyd/xfce4-notifyd"
}
write_xfce_panel() {
    cat <<CONFIG
<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=8;x=0;y=0"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="length" type="uint" value="100"/>
      <property name="size" type="uint" value="28"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/>
        <value type="int" value="2"/>
        <value type="int" value="3"/>
        <value type="int" value="4"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="applicationsmenu"/>
    <property name="plugin-2" type="string" value="tasklist"/>
    <property name="plugin-3" type="string" value="separator">
      <property name="expand" type="bool" value="true"/>
      <property name="style" type="uint" value="0"/>
    </property>
    <property name="plugin-4" type="string" value="systray"/>
  </property>
</channel>
CONFIG
}

start_lxqt_shell() {
    mkdir -p "$XDG_CONFIG_HOME/lxqt"
    cat >"$XDG_CONFIG_HOME/lxqt/panel.conf" <<CONFIG
panels=panel1
[panel1]
alignment=-1
desktop=0
height=32
iconSize=22
panelSize=32
position=bottom
plugins=mainmenu,taskbar,spacer,tray,statusnotifier
width=100
width-percent=true
[mainmenu]
type=mainmenu
[taskbar]
type=taskbar
[spacer]
type=spacer
expandable=true
[tray]
type=tray
[statusnotifier]
type=statusnotifier
CONFIG
    printf '[General]\ntheme=ambiance\nicon_theme=Papirus\n' >"$XDG_CONFIG_HOME/lxqt/lxqt.conf"
    keep wm openbox --sm-disable
    await wm has_window_manager
    mkdir -p "$XDG_CONFIG_HOME/pcmanfm-qt/default"
    printf '[Desktop]\nBgColor=#5a7ca0\nWallpaperMode=none\n' \
        >"$XDG_CONFIG_HOME/pcmanfm-qt/default/settings.conf"
    keep panel lxqt-panel
    keep notifications lxqt-notificationd
    keep background pcmanfm-qt --desktop
}

start_mate_shell() {
    # A clock whose text changes its width would move the tray. This font's digits are equally wide.
    mkdir -p "$XDG_CONFIG_HOME/gtk-3.0"
    printf '[Settings]\ngtk-font-name=DejaVu Sans 10\n' >"$XDG_CONFIG_HOME/gtk-3.0/settings.ini"
    keep wm marco --sm-disable --composite
    await wm has_window_manager
    keep panel mate-panel
    keep background caja --force-desktop --no-default-window
    keep notifications "/usr/lib/mate-notification-daemon/mate-notification-daemon"
}

start_sway_shell() {
    cat >"$root/waybar.json" <<CONFIG
{ "layer": "top", "position": "top", "height": 28,
  "modules-left": ["sway/workspaces"], "modules-right": ["tray"],
  "tray": { "icon-size": 18, "spacing": 8 } }
CONFIG
    keep panel waybar -c "$root/waybar.json"
    keep background swaybg --color '#5a7ca0'
    keep notifications mako
}

start_plasma_shell() {
    keep activities env QT_QPA_PLATFORM=wayland "$libraries/libexec/kactivitymanagerd"
    keep services env QT_QPA_PLATFORM=wayland kded5
    await services has_name org.kde.kded5
    keep panel env QT_QPA_PLATFORM=wayland plasmashell
}

# The shell is the compositor as well. It needs a system bus, but nothing on it.
start_gnome() {
    DBUS_SYSTEM_BUS_ADDRESS=unix:path=$root/runtime/system-bus
    write_bus_configuration system "$DBUS_SYSTEM_BUS_ADDRESS"
    start system-bus dbus-daemon --config-file="$root/system.conf" --nofork --nopidfile
    await system-bus test -S "$root/runtime/system-bus"
    mkdir -p "$XDG_CONFIG_HOME/glib-2.0/settings"
    cat >"$XDG_CONFIG_HOME/glib-2.0/settings/keyfile" <<CONFIG
[org/gnome/shell]
enabled-extensions=['ubuntu-appindicators@ubuntu.com','appindicatorsupport@rgcjonas.gmail.com']
welcome-dialog-last-shown-version='99'
[org/gnome/desktop/interface]
enable-hot-corners=false
CONFIG
    [[ $EUID -ne 0 ]] || { mkdir -p /tmp/.X11-unix && chown 0:0 /tmp/.X11-unix && chmod 1777 /tmp/.X11-unix; }
    unset DISPLAY
    patience=60
    local monitors=() output
    for ((output = 1; output <= outputs; output++)); do
        monitors+=(--virtual-monitor "$size")
    done
    start screen gnome-shell --headless --wayland --unsafe-mode "${monitors[@]}" \
        --wayland-display wayland-0
    await screen grep 'Using public X11 display' "$logs/screen.log"
    await screen has_name org.gnome.Shell
    await screen has_authority
    DISPLAY=$(sed -n 's/.*Using public X11 display \(:[0-9]*\).*/\1/p' "$logs/screen.log" | head -n 1)
    XAUTHORITY=$(find "$XDG_RUNTIME_DIR" -name '.mutter-Xwaylandauth.*' | head -n 1)
    export DISPLAY XAUTHORITY WAYLAND_DISPLAY=wayland-0 QT_QPA_PLATFORM=xcb
}
has_authority() { compgen -G "$XDG_RUNTIME_DIR/.mutter-Xwaylandauth.*"; }

# Tells X programs the scale.
start_gnome_shell() { keep settings /usr/libexec/gsd-xsettings; }
