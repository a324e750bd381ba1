#!/usr/bin/env bash
# A private CUPS server with one PDF printer, for the printing tests. The
# system's own CUPS and its printers are left alone: the server has its own
# configuration, spool and logs under DIR and listens on DIR/cups.sock only.
#   cups-pdf-queue.sh start DIR   starts it and adds "QuernalPDF" as default
#   cups-pdf-queue.sh stop DIR    stops it
# Programs reach it with CUPS_SERVER=DIR/cups.sock; the printed PDFs land in
# DIR/pdf. Without cupsd or cups-pdf (or without root, which cups-pdf needs)
# the run is skipped (exit 77), except under CI=true, where it fails.
set -u
action=${1:?start or stop}
dir=${2:?folder}
mkdir -p "$dir"
dir=$(cd "$dir" && pwd)
socket=$dir/cups.sock
queue=QuernalPDF
# cups-pdf reads /etc/cups/cups-pdf-INSTANCE.conf for a device cups-pdf:/INSTANCE;
# one instance per folder, so that two builds do not share an output folder.
instance=quernal$(printf '%s' "$dir" | cksum | cut -d' ' -f1)
instance_conf=/etc/cups/cups-pdf-$instance.conf

give_up() {
  if [ "${CI:-}" = "true" ]; then echo "cups-pdf-queue: $1" >&2; exit 1; fi
  echo "cups-pdf-queue: skipped, $1" >&2
  exit 77
}

stop() {
  if [ -f "$dir/cupsd.pid" ]; then
    pid=$(cat "$dir/cupsd.pid")
    kill "$pid" 2>/dev/null
    for _ in $(seq 50); do kill -0 "$pid" 2>/dev/null || break; sleep 0.1; done
    rm -f "$dir/cupsd.pid"
  fi
  rm -f "$socket" "$instance_conf"
}

if [ "$action" = stop ]; then stop; exit 0; fi

for tool in cupsd lpadmin lpstat gs; do
  command -v "$tool" >/dev/null 2>&1 || PATH=$PATH:/usr/sbin command -v "$tool" >/dev/null 2>&1 ||
    give_up "missing $tool (run tools/setup-debian.sh)"
done
export PATH=$PATH:/usr/sbin
[ -x /usr/lib/cups/backend/cups-pdf ] || give_up "missing cups-pdf (printer-driver-cups-pdf)"
ppd=/usr/share/ppd/cups-pdf/CUPS-PDF_opt.ppd
[ -f "$ppd" ] || give_up "missing $ppd"
[ "$(id -u)" = 0 ] || give_up "cups-pdf runs only for a cupsd started as root"

stop
rm -rf "$dir/conf" "$dir/spool" "$dir/log" "$dir/cache" "$dir/state" "$dir/tmp" "$dir/pdf"
mkdir -p "$dir/conf" "$dir/spool" "$dir/log" "$dir/cache" "$dir/state" "$dir/tmp" "$dir/pdf"
# cupsd runs its filters as user lp; they need to reach the spool and temp folders.
chmod 755 "$dir" "$dir/conf"
chmod 1777 "$dir/tmp" "$dir/pdf"

cat >"$dir/conf/cups-files.conf" <<CONF
ServerRoot $dir/conf
RequestRoot $dir/spool
TempDir $dir/tmp
CacheDir $dir/cache
StateDir $dir/state
ErrorLog $dir/log/error_log
AccessLog $dir/log/access_log
PageLog $dir/log/page_log
Printcap $dir/printcap
SystemGroup root
CONF
# Job files stay in the spool, where the benchmarks read their size.
cat >"$dir/conf/cupsd.conf" <<CONF
LogLevel info
PreserveJobFiles Yes
Listen $socket
Browsing No
WebInterface No
DefaultAuthType None
<Location />
  Order allow,deny
  Allow all
</Location>
<Policy default>
  <Limit All>
    Order deny,allow
  </Limit>
</Policy>
CONF
cat >"$instance_conf" <<CONF
# The Quernal tests' PDF printer (removed again when its server stops).
Out $dir/pdf
AnonDirName $dir/pdf
Spool $dir/spool/cups-pdf
Log $dir/log
LogType 3
Label 1
Grp root
CONF

setsid cupsd -f -c "$dir/conf/cupsd.conf" -s "$dir/conf/cups-files.conf" \
  >"$dir/log/cupsd.out" 2>&1 </dev/null &
echo $! >"$dir/cupsd.pid"
for _ in $(seq 100); do [ -S "$socket" ] && break; sleep 0.1; done
[ -S "$socket" ] || { cat "$dir/log/cupsd.out" "$dir/log/error_log" >&2 2>/dev/null; stop; give_up "cupsd did not start"; }

export CUPS_SERVER=$socket
lpadmin -p "$queue" -E -v "cups-pdf:/$instance" -P "$ppd" -o printer-error-policy=abort-job 2>"$dir/log/lpadmin.out" &&
  lpadmin -d "$queue" 2>>"$dir/log/lpadmin.out" ||
  { cat "$dir/log/lpadmin.out" >&2; stop; give_up "the PDF queue could not be added"; }
lpstat -d
