#!/bin/sh
# in-session COMMAND...: within the machine, as the user who is logged in at its screen and within
# that session, so that polkit sees whom it would see.
id=$(loginctl list-sessions --no-legend | awk '$3 == "user" && $4 == "seat0" {print $1}')
[ "$id" ] || { echo "Nobody is logged in at the screen." >&2; exit 1; }
echo $$ >"/sys/fs/cgroup/user.slice/user-1000.slice/session-$id.scope/cgroup.procs"
cd /home/user || exit 1
exec setpriv --reuid user --regid user --init-groups env HOME=/home/user USER=user LANG=C.UTF-8 \
  XDG_SESSION_ID="$id" XDG_RUNTIME_DIR=/run/user/1000 \
    PATH=/usr/local/bin:/usr/bin:/bin:/usr/sbin:/sbin "$@"
