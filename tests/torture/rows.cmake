# The commands that are tortured, and whose printers are fuzzed. A row is a command, on the machine `pair` unless another
# stands in front. Its directory holds `image`, a firmware image, and `file`, a page of zeros; `output` is not there yet.
# Every command of the tables has a row: a test fails where one has none. Fuzzing names rows by their place, so that a
# new one goes to the end of its list.
set(torture_rows
    version help "?" "--debug" "adapter --list"
    "info -o hba --all" "info -o pd" "info -o vd" "info -o ns" "info -o ns -t vd -v 0" "info -o hba -output output"
    "vd -a delete -i 0" "lab: vd -a create -r 1 -d 0,1" "init -a stop -i 0" "init -a start -i 0" "mp -a start -i 0"
    "rebuild -a stop -i 0" "import -l 0" "importable: import -l 0"
    "get -o hba" "set -o hba -a on" "debuglv -t 1"
    "ns --list" "ns -p ctrl" "ns -a attach -i 1 -d 0" "jbof: ns -a init -i 0 -n 1"
    "flash -o hba -q firmware" "flash -o pd -i 0 -q firmware" "flash -o pd -i 0 -f image -s 1 -c 1"
    "smart -o hba" "smart -o ns -n 1" "smart -i 0" "identify -c 1 --rawdata" "identify -n 1" "identify -c 2"
    "passthru -i 0 -o 6 -r read -d 4096" "passthru -i 0 -o 6 -r read -d 4096 --outputfile output"
    "passthru -i 0 -o 2 --cdw10 0x7f0002 -r read -d 512" "passthru -i 0 -o 9 --cdw10 14 -r write -d 8 --inputfile file"
    "event -c 0" "scarred: event -c 0" "log -a on" "scarred: log -a show --outputfile output"
    dumphba "dumphba -a show" "dumphba --outputfile output" getoemdata "oemdata -s TORTURE -m TORTURE"
    "spi -t read" "spi -t read --outputfile output" "spi -t write --inputfile file" "reset -i 3 -t device"
    "led -o ep -i 0 -a qb" "gpio --set-default=yes" "inverse -a get" "inverse -a inverse" "vpd -t spi"
    "reg -t read -a 0x10" "reg -t write -a 0x10 -d 1" "i2c -i 2" "qxf -a on" "protect -a on" "sriov -a off" "pcie -i 0"
    "hotkey -k D" "hotkey -k w" "hotkey -k 12bg" "hotkey --waiveconfirmation -k v"
    "vpdread -o 0 -l 250" "vpdread -o 0 -l 250 -f output" "vpdwrite -o 0 -l 12 -f /proc/version"
    "gen -t attachns --list=0,1" "mi_passthruread -i 1" "mi_passthruread -l 64 -f output" "mi_passthruwrite -o 0 -l 12 -f /proc/version"
)
# A run of it lasts two seconds, and tests/cli/flash_failure_test.py sees it fail in all the other ways.
set(torture_rows_of_updates "flash -o hba -f image -s 1 -c 1")
# The handlers that no command table names, on the program qrx_unlisted. Each of them has a row too.
set(torture_rows_unlisted
    "lab: create -r 1 -d 0,1" "lab: create -r 0 -d 0,1 -n name -x 0,0" "lab: screate -r 0 -d 4" "assign -d 0"
    "raid: delete --waiveconfirmation -i 0" "delete --waiveconfirmation -i 0" "delete -i 0" "sdelete -i 0"
    "get -o hba" "get -o vd" "set -o hba -a on" "set -o vd -i 0 -n NAME" "info -o hba -a x" "info -o pd" "info -o vd"
    "boot: info -o vd -i 0" "info -o ns" "info -o ns -t vd -v 255" "raid: init -i 0" "mp -i 0"
    "degraded: rebuild -a stop -i 2" "importable: import -l 1" "ns -l ctrl" "ns -a detach -i 1 -d 0"
    "jbof: ns -a detach -i 1 -d 0" "locate -o ep -i 0 -a on" "reset -i 0 -t power"
    "iomon -a show" "iomon -i 1 --outputfile output" "iomon_polling -i 1 -t 0" "qos -a get -i 2"
    "qos -a set -i 2 --ir 5 --iw 6 --br 50 --bw 51" "cse --list" "cse -a off -c VF -l 0xc2,0xc3" "aer -i 0"
    "jbof: read -n 1 -s 0 -l 0 -z 512" "jbof: read -n 1 -s 0 -l 255 -z 0x20000 -f output"
    "jbof: write -n 1 -s 0 -l 7 -z 4096 -f file" "jbof: compare -n 1 -s 0 -l 7 -f file"
    "jbof: writezero -n 1 -s 0 -l 0" "jbof: writeuncor -n 1 -s 0 -l 0" "jbof: format -n 1 -f 1" "vf-manage -c 2 -n 4"
    "mi_send -0 4 -5 5 -7 32" "mi_receive -l 32 -f output" "mi_admin_send -0 4 -5 6 -g 1"
    "mi_admin_receive -s idctrl -l 32" "new_mi_send -0 4 -5 6 -7 32 -l 32 -f file"
    "new_mi_receive -0 4 -5 5 -7 32 -l 32 -f output" "new_vpdread -o 0 -l 32" "new_vpdwrite -o 0 -l 32 -f file"
    "linfo" "linfo --outputfile=output" "sec_provide -i 0x3"
    "ack -t adapter -r enable" "ack -t pd -i 1 -s enable -f disable" "secuinfo -a get"
    "secuinfo -a set -t pd -i 1 -p enable" "eeprom -a show" "hidetemp -t enable" "list_pd_allocated_ns -i 0"
    "passthru_sata -i 0 -o 0xec --cdw10=0xec8027 --data-len=512 -r read --outputfile output"
    "vpd -t read --outputfile output" "vpd -t vsw --inputfile file"
    "mfnd-manage -s 0" "mfnd-identify -o mfnd --rawdata" "mfnd-identify -o child" "mfnd-opertation -a get"
    "mfnd-opertation -a set -o mode -t multiple" "mfnd-properties -a get" "mfnd-properties -a set -1 12 -3 1"
    "mfnd-event" "mfnd-child-ctrl -s 1 -i 1" "mfnd-child-ctrl-log-page -i 1 -d 2 -l 512" "mfnd-cmdpermission -a get"
    "mfnd-cmdpermission -a set -e 0xaa:1"
    "err_status -a get" "crash -a enable" "ioq -a show" "delay -s 0" "offline -i 0" "chkalive" "sf -t 1" "log_vdm -a on"
    "test -t 1" "id -i 0" "seasoned: event -c 3" "dump -a get" "dump -a set -d on"
    "scarred: dump -a show --outputfile=output"
    "scarred: log_vdm -a show --outputfile output" "id -i 0 -d detail" "err_status -a clear"
    "lab: create -r 0 -d 0,1 -x \"\"" "degraded: rebuild -i 1 -d 6" "sbsms"
)
