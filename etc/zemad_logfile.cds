# zemad_logfile.cds - the classes of events, generated from zemad_logfile.fmt and completed by hand.
#
# Classes are tried from the first to the last, and the first one whose tests all hold wins. The
# generated ones select the position of their FORMAT in the format file, counted from 0: whoever
# adds, removes or moves a FORMAT generates them again. What was written by hand is marked "site";
# without these lines the file is what the generator writes, which a test compares.

# site: begin
# Slots of every event; a class that sets them itself wins.
MAP_DEFAULT
  severity = "INFO";
  source = "LOGFILE";
END

# Sessions of cron jobs open and close all day: nobody wants to read that.
CLASS *DISCARD*
  SELECT
    1: ATTR(=,"service"), VALUE(=,"cron:session");
END
# site: end

CLASS Logfile_Base
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"0");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"msg");
  MAP
    date = $V2;
    hostname = $V3;
    msg = $V4;
END
CLASS Logfile_Program
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"1");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"msg");
    5: ATTR(=,"sub_source");
  MAP
    date = $V2;
    hostname = $V3;
    msg = $V4;
    sub_source = $V5;
END
CLASS Logfile_Process
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"2");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"msg");
    5: ATTR(=,"sub_source");
    6: ATTR(=,"pid");
  MAP
    date = $V2;
    hostname = $V3;
    msg = $V4;
    sub_source = $V5;
    pid = $V6;
END
CLASS Service_Started
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"3");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"service");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("%s started", $V5);
    sub_source = $V4;
    service = $V5;
END
CLASS Service_Stopped
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"4");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"service");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("%s stopped", $V5);
    sub_source = $V4;
    service = $V5;
END
CLASS Syslog_Restarted
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"5");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"version");
  MAP
    date = $V2;
    hostname = $V3;
    msg = "the system logger was restarted";
    sub_source = "syslogd";
    version = $V4;
END
CLASS Udev_Node_Created
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"6");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"device");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("device node %s created", $V5);
    sub_source = "udev";
    pid = $V4;
    device = $V5;
END
CLASS Udev_Node_Removed
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"7");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"device");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("device node %s removed", $V5);
    sub_source = "udev";
    pid = $V4;
    device = $V5;
END
CLASS Xinetd_Warning
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"8");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"msg");
    5: ATTR(=,"pid");
  MAP
    date = $V2;
    hostname = $V3;
    msg = $V4;
    sub_source = "xinetd";
    pid = $V5;
    severity = "WARNING";  # site
END
CLASS Named_Notify_No_Soa
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"9");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
  MAP
    date = $V2;
    hostname = $V3;
    msg = "notify question section contains no SOA";
    sub_source = "named";
    pid = $V4;
END
CLASS Snmp_Packets
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"10");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"source_addr");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("SNMP packets from %s", $V5);
    sub_source = "snmpd";
    pid = $V4;
    source_addr = $V5;
END
CLASS Systemd_Base
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"11");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"msg");
    5: ATTR(=,"pid");
  MAP
    date = $V2;
    hostname = $V3;
    msg = $V4;
    sub_source = "systemd";
    pid = $V5;
END
CLASS Systemd_Started
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"12");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"unit");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("started %s", $V5);
    sub_source = "systemd";
    pid = $V4;
    unit = $V5;
END
CLASS Systemd_Finished
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"13");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"unit");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("finished %s", $V5);
    sub_source = "systemd";
    pid = $V4;
    unit = $V5;
END
CLASS Systemd_Stopped
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"14");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"unit");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("stopped %s", $V5);
    sub_source = "systemd";
    pid = $V4;
    unit = $V5;
END
CLASS Systemd_Start_Failed
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"15");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"unit");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("could not start %s", $V5);
    sub_source = "systemd";
    pid = $V4;
    unit = $V5;
    severity = "WARNING";  # site
END
CLASS Systemd_Unit_Failed
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"16");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"unit");
    6: ATTR(=,"result");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("%s failed: %s", $V5, $V6);
    sub_source = "systemd";
    pid = $V4;
    unit = $V5;
    result = $V6;
    severity = "WARNING";  # site
END
CLASS Systemd_Main_Exited
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"17");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"unit");
    6: ATTR(=,"code");
    7: ATTR(=,"status");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("main process of %s %s with status %s", $V5, $V6, $V7);
    sub_source = "systemd";
    pid = $V4;
    unit = $V5;
    code = $V6;
    status = $V7;
    severity = "WARNING";  # site
END
CLASS Systemd_Restart_Scheduled
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"18");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"unit");
    6: ATTR(=,"restarts");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("%s will be restarted, counter %s", $V5, $V6);
    sub_source = "systemd";
    pid = $V4;
    unit = $V5;
    restarts = $V6;
END
CLASS Logind_Session_New
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"19");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"session");
    6: ATTR(=,"user");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("session %s of user %s", $V5, $V6);
    sub_source = "systemd-logind";
    pid = $V4;
    session = $V5;
    user = $V6;
END
CLASS Logind_Session_Removed
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"20");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"session");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("session %s removed", $V5);
    sub_source = "systemd-logind";
    pid = $V4;
    session = $V5;
END
CLASS Cron_Command
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"21");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"pid");
    6: ATTR(=,"user");
    7: ATTR(=,"command");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("%s runs %s", $V6, $V7);
    sub_source = $V4;
    pid = $V5;
    user = $V6;
    command = $V7;
END
CLASS Cron_Reload
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"22");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"pid");
    6: ATTR(=,"user");
    7: ATTR(=,"table");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("table %s read again", $V7);
    sub_source = $V4;
    pid = $V5;
    user = $V6;
    table = $V7;
END
CLASS Cron_Output_Lost
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"23");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"pid");
  MAP
    date = $V2;
    hostname = $V3;
    msg = "no mail transfer agent: the output of a job was discarded";
    sub_source = $V4;
    pid = $V5;
    severity = "WARNING";  # site
END
CLASS Logrotate_Failed
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"24");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"status");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("log rotation failed with status %s", $V4);
    sub_source = "logrotate";
    status = $V4;
    severity = "WARNING";  # site
END
CLASS Kernel_Base
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"25");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"msg");
  MAP
    date = $V2;
    hostname = $V3;
    msg = $V4;
    sub_source = "kernel";
END
CLASS Kernel_Link_Up
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"26");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"device");
    5: ATTR(=,"speed");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("link of %s is up", $V4);
    sub_source = "kernel";
    device = $V4;
    speed = $V5;
END
CLASS Kernel_Link_Down
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"27");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"device");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("link of %s is down", $V4);
    sub_source = "kernel";
    device = $V4;
    severity = "WARNING";  # site
END
CLASS Kernel_Io_Error
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"28");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"device");
    5: ATTR(=,"sector");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("I/O error on %s, sector %s", $V4, $V5);
    sub_source = "kernel";
    device = $V4;
    sector = $V5;
    severity = "CRITICAL";  # site
END
CLASS Kernel_Block_Io_Error
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"29");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"device");
    5: ATTR(=,"sector");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("I/O error on %s, sector %s", $V4, $V5);
    sub_source = "kernel";
    device = $V4;
    sector = $V5;
    severity = "CRITICAL";  # site
END
CLASS Kernel_Buffer_Io_Error
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"30");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"device");
    5: ATTR(=,"block");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("I/O error on %s, logical block %s", $V4, $V5);
    sub_source = "kernel";
    device = $V4;
    block = $V5;
    severity = "CRITICAL";  # site
END
CLASS Kernel_Ext4_Error
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"31");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"device");
    5: ATTR(=,"detail");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("file system error on %s: %s", $V4, $V5);
    sub_source = "kernel";
    device = $V4;
    detail = $V5;
    severity = "CRITICAL";  # site
END
CLASS Kernel_Ext4_Read_Only
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"32");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"device");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("file system on %s is read-only now", $V4);
    sub_source = "kernel";
    device = $V4;
    severity = "CRITICAL";  # site
END
CLASS Kernel_Ext4_No_Space
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"33");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"device");
    5: ATTR(=,"inode");
    6: ATTR(=,"offset");
    7: ATTR(=,"blocks");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("file system on %s is full", $V4);
    sub_source = "kernel";
    device = $V4;
    inode = $V5;
    offset = $V6;
    blocks = $V7;
    severity = "CRITICAL";  # site
END
CLASS Kernel_File_System_Full
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"34");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"mount_point");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("file system %s is full", $V4);
    sub_source = "kernel";
    mount_point = $V4;
    severity = "CRITICAL";  # site
END
CLASS Kernel_Oom_Invoked
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"35");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"command");
    5: ATTR(=,"detail");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("out of memory, met by %s", $V4);
    sub_source = "kernel";
    command = $V4;
    detail = $V5;
    severity = "WARNING";  # site
END
CLASS Kernel_Oom_Kill
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"36");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"victim_pid");
    5: ATTR(=,"command");
    6: ATTR(=,"detail");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("out of memory: %s was killed", $V5);
    sub_source = "kernel";
    victim_pid = $V4;
    command = $V5;
    detail = $V6;
    severity = "CRITICAL";  # site
END
CLASS Kernel_Segfault
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"37");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"command");
    5: ATTR(=,"victim_pid");
    6: ATTR(=,"address");
    7: ATTR(=,"ip");
    8: ATTR(=,"sp");
    9: ATTR(=,"error");
    10: ATTR(=,"object");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("%s crashed in %s", $V4, $V10);
    sub_source = "kernel";
    command = $V4;
    victim_pid = $V5;
    address = $V6;
    ip = $V7;
    sp = $V8;
    error = $V9;
    object = $V10;
    severity = "WARNING";  # site
END
CLASS Disk_Full
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"38");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"pid");
    6: ATTR(=,"detail");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("no space left on device: %s", $V6);
    sub_source = $V4;
    pid = $V5;
    detail = $V6;
    severity = "CRITICAL";  # site
END
CLASS Mail_Refused
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"39");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"pid");
    6: ATTR(=,"source_addr");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("refused connect from %s", $V6);
    sub_source = $V4;
    pid = $V5;
    source_addr = $V6;
    severity = "WARNING";  # site
END
CLASS Mail_Rejected
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"40");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"pid");
    6: ATTR(=,"command");
    7: ATTR(=,"source_host");
    8: ATTR(=,"source_addr");
    9: ATTR(=,"reason");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("%s from %s rejected: %s", $V6, $V8, $V9);
    sub_source = $V4;
    pid = $V5;
    command = $V6;
    source_host = $V7;
    source_addr = $V8;
    reason = $V9;
    severity = "WARNING";  # site
END
CLASS Mail_Delivery
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"41");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"pid");
    6: ATTR(=,"queue_id");
    7: ATTR(=,"recipient");
    8: ATTR(=,"relay");
    9: ATTR(=,"delay_s");
    10: ATTR(=,"delays");
    11: ATTR(=,"dsn");
    12: ATTR(=,"status");
    13: ATTR(=,"detail");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("mail to %s %s", $V7, $V12);
    sub_source = $V4;
    pid = $V5;
    queue_id = $V6;
    recipient = $V7;
    relay = $V8;
    delay_s = $V9;
    dsn = $V11;
    status = $V12;
    detail = $V13;
END
CLASS Ftp_Connection
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"42");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"source_addr");
    6: ATTR(=,"source_host");
    7: ATTR(=,"at");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("connection from %s", $V5);
    sub_source = "ftpd";
    pid = $V4;
    source_addr = $V5;
    source_host = $V6;
END
CLASS Ftp_Anonymous_Login
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"43");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"source_addr");
    6: ATTR(=,"user");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("anonymous login from %s", $V5);
    sub_source = "ftpd";
    pid = $V4;
    source_addr = $V5;
    user = $V6;
    severity = "WARNING";  # site
END
CLASS Ftp_Login_Timeout
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"44");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"user");
    6: ATTR(=,"idle_s");
    7: ATTR(=,"at");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("login of user %s timed out", $V5);
    sub_source = "ftpd";
    pid = $V4;
    user = $V5;
    idle_s = $V6;
END
CLASS Ftp_Peer_Gone
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"45");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
  MAP
    date = $V2;
    hostname = $V3;
    msg = "the peer was gone before the session began";
    sub_source = "ftpd";
    pid = $V4;
END
CLASS Klogind_Failed
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"46");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"source_host");
    6: ATTR(=,"source_addr");
    7: ATTR(=,"reason");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("remote login failed from %s: %s", $V6, $V7);
    sub_source = "klogind";
    pid = $V4;
    source_host = $V5;
    source_addr = $V6;
    reason = $V7;
    severity = "WARNING";  # site
END
CLASS Klogind_Kerberos_Failed
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"47");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
  MAP
    date = $V2;
    hostname = $V3;
    msg = "Kerberos authentication failed";
    sub_source = "klogind";
    pid = $V4;
    severity = "WARNING";  # site
END
CLASS Root_Login
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"48");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"tty");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("root logged in on %s", $V5);
    sub_source = "login";
    pid = $V4;
    tty = $V5;
    severity = "WARNING";  # site
END
CLASS Ssh_Base
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"49");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"msg");
    5: ATTR(=,"pid");
  MAP
    date = $V2;
    hostname = $V3;
    msg = $V4;
    sub_source = "sshd";
    pid = $V5;
END
CLASS Ssh_Accepted
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"50");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"method");
    6: ATTR(=,"user");
    7: ATTR(=,"source_addr");
    8: ATTR(=,"source_port");
    9: ATTR(=,"protocol");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("%s logged in from %s by %s", $V6, $V7, $V5);
    sub_source = "sshd";
    pid = $V4;
    method = $V5;
    user = $V6;
    source_addr = $V7;
    source_port = $V8;
END
CLASS Ssh_Failed
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"51");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"method");
    6: ATTR(=,"user");
    7: ATTR(=,"source_addr");
    8: ATTR(=,"source_port");
    9: ATTR(=,"protocol");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("login of %s failed from %s", $V6, $V7);
    sub_source = "sshd";
    pid = $V4;
    method = $V5;
    user = $V6;
    source_addr = $V7;
    source_port = $V8;
    severity = "WARNING";  # site
END
CLASS Ssh_Failed_Invalid_User
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"52");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"method");
    6: ATTR(=,"user");
    7: ATTR(=,"source_addr");
    8: ATTR(=,"source_port");
    9: ATTR(=,"protocol");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("login of unknown user %s failed from %s", $V6, $V7);
    sub_source = "sshd";
    pid = $V4;
    method = $V5;
    user = $V6;
    source_addr = $V7;
    source_port = $V8;
    severity = "WARNING";  # site
END
CLASS Ssh_Failed_Repeated
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"53");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"count");
    6: ATTR(=,"method");
    7: ATTR(=,"user");
    8: ATTR(=,"source_addr");
    9: ATTR(=,"source_port");
    10: ATTR(=,"protocol");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("login of %s failed from %s, %s times", $V7, $V8, $V5);
    sub_source = "sshd";
    pid = $V4;
    count = $V5;
    method = $V6;
    user = $V7;
    source_addr = $V8;
    source_port = $V9;
    severity = "WARNING";  # site
END
CLASS Ssh_Invalid_User
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"54");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"user");
    6: ATTR(=,"source_addr");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("unknown user %s from %s", $V5, $V6);
    sub_source = "sshd";
    pid = $V4;
    user = $V5;
    source_addr = $V6;
    severity = "WARNING";  # site
END
CLASS Ssh_Invalid_User_Port
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"55");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"user");
    6: ATTR(=,"source_addr");
    7: ATTR(=,"source_port");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("unknown user %s from %s", $V5, $V6);
    sub_source = "sshd";
    pid = $V4;
    user = $V5;
    source_addr = $V6;
    source_port = $V7;
    severity = "WARNING";  # site
END
CLASS Ssh_Invalid_User_Request
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"56");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"user");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("request of unknown user %s", $V5);
    sub_source = "sshd";
    pid = $V4;
    user = $V5;
    severity = "WARNING";  # site
END
CLASS Ssh_Disconnected
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"57");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"source_addr");
    6: ATTR(=,"code");
    7: ATTR(=,"reason");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("%s disconnected: %s", $V5, $V7);
    sub_source = "sshd";
    pid = $V4;
    source_addr = $V5;
    code = $V6;
    reason = $V7;
END
CLASS Ssh_Disconnected_Port
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"58");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"source_addr");
    6: ATTR(=,"source_port");
    7: ATTR(=,"code");
    8: ATTR(=,"reason");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("%s disconnected: %s", $V5, $V8);
    sub_source = "sshd";
    pid = $V4;
    source_addr = $V5;
    source_port = $V6;
    code = $V7;
    reason = $V8;
END
CLASS Ssh_Disconnected_Error
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"59");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"source_addr");
    6: ATTR(=,"code");
    7: ATTR(=,"reason");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("%s disconnected: %s", $V5, $V7);
    sub_source = "sshd";
    pid = $V4;
    source_addr = $V5;
    code = $V6;
    reason = $V7;
END
CLASS Ssh_Closed
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"60");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"source_addr");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("connection closed by %s before login", $V5);
    sub_source = "sshd";
    pid = $V4;
    source_addr = $V5;
END
CLASS Ssh_Closed_Port
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"61");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"source_addr");
    6: ATTR(=,"source_port");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("connection closed by %s before login", $V5);
    sub_source = "sshd";
    pid = $V4;
    source_addr = $V5;
    source_port = $V6;
END
CLASS Ssh_Closed_User
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"62");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"kind");
    6: ATTR(=,"user");
    7: ATTR(=,"source_addr");
    8: ATTR(=,"source_port");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("connection of %s closed by %s before login", $V6, $V7);
    sub_source = "sshd";
    pid = $V4;
    user = $V6;
    source_addr = $V7;
    source_port = $V8;
END
CLASS Ssh_No_Identification
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"63");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"source_addr");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("no identification from %s", $V5);
    sub_source = "sshd";
    pid = $V4;
    source_addr = $V5;
END
CLASS Ssh_Reverse_Mapping_Failed
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"64");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"source_host");
    6: ATTR(=,"source_addr");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("%s claims to be %s", $V6, $V5);
    sub_source = "sshd";
    pid = $V4;
    source_host = $V5;
    source_addr = $V6;
    severity = "WARNING";  # site
END
CLASS Ssh_Too_Many_Failures
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"65");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"user");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("too many failures of %s", $V5);
    sub_source = "sshd";
    pid = $V4;
    user = $V5;
    severity = "WARNING";  # site
END
CLASS Ssh_Attempts_Exceeded
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"66");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"user");
    6: ATTR(=,"source_addr");
    7: ATTR(=,"source_port");
    8: ATTR(=,"protocol");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("too many failures of %s from %s", $V5, $V6);
    sub_source = "sshd";
    pid = $V4;
    user = $V5;
    source_addr = $V6;
    source_port = $V7;
    severity = "WARNING";  # site
END
CLASS Pam_Base
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"67");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"msg");
    5: ATTR(=,"sub_source");
    6: ATTR(=,"pid");
    7: ATTR(=,"service");
  MAP
    date = $V2;
    hostname = $V3;
    msg = $V4;
    sub_source = $V5;
    pid = $V6;
    service = $V7;
END
CLASS Pam_Session_Opened
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"68");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"pid");
    6: ATTR(=,"service");
    7: ATTR(=,"user");
    8: ATTR(=,"by");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("session opened for user %s", $V7);
    sub_source = $V4;
    pid = $V5;
    service = $V6;
    user = $V7;
    by = $V8;
END
CLASS Pam_Session_Opened_Uid
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"69");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"pid");
    6: ATTR(=,"service");
    7: ATTR(=,"user");
    8: ATTR(=,"uid");
    9: ATTR(=,"by");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("session opened for user %s", $V7);
    sub_source = $V4;
    pid = $V5;
    service = $V6;
    user = $V7;
    uid = $V8;
    by = $V9;
END
CLASS Pam_Session_Closed
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"70");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"pid");
    6: ATTR(=,"service");
    7: ATTR(=,"user");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("session closed for user %s", $V7);
    sub_source = $V4;
    pid = $V5;
    service = $V6;
    user = $V7;
END
CLASS Pam_User_Unknown
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"71");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"pid");
    6: ATTR(=,"service");
  MAP
    date = $V2;
    hostname = $V3;
    msg = "password check for an unknown user";
    sub_source = $V4;
    pid = $V5;
    service = $V6;
    severity = "WARNING";  # site
END
CLASS Pam_Auth_Failure
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"72");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"pid");
    6: ATTR(=,"service");
    7: ATTR(=,"logname");
    8: ATTR(=,"uid");
    9: ATTR(=,"euid");
    10: ATTR(=,"tty");
    11: ATTR(=,"ruser");
    12: ATTR(=,"source_host");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("authentication failure from %s", $V12);
    sub_source = $V4;
    pid = $V5;
    service = $V6;
    logname = $V7;
    uid = $V8;
    euid = $V9;
    tty = $V10;
    ruser = $V11;
    source_host = $V12;
    severity = "WARNING";  # site
END
CLASS Pam_Auth_Failure_User
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"73");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"pid");
    6: ATTR(=,"service");
    7: ATTR(=,"logname");
    8: ATTR(=,"uid");
    9: ATTR(=,"euid");
    10: ATTR(=,"tty");
    11: ATTR(=,"ruser");
    12: ATTR(=,"source_host");
    13: ATTR(=,"user");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("authentication failure of %s from %s", $V13, $V12);
    sub_source = $V4;
    pid = $V5;
    service = $V6;
    logname = $V7;
    uid = $V8;
    euid = $V9;
    tty = $V10;
    ruser = $V11;
    source_host = $V12;
    user = $V13;
    severity = "WARNING";  # site
END
CLASS Pam_Password_Changed
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"74");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"pid");
    6: ATTR(=,"service");
    7: ATTR(=,"user");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("password of %s changed", $V7);
    sub_source = $V4;
    pid = $V5;
    service = $V6;
    user = $V7;
    severity = "WARNING";  # site
END
CLASS Pam_More_Failures
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"75");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"pid");
    6: ATTR(=,"count");
    7: ATTR(=,"noun");
    8: ATTR(=,"logname");
    9: ATTR(=,"uid");
    10: ATTR(=,"euid");
    11: ATTR(=,"tty");
    12: ATTR(=,"ruser");
    13: ATTR(=,"source_host");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("%s more authentication failures from %s", $V6, $V13);
    sub_source = $V4;
    pid = $V5;
    count = $V6;
    logname = $V8;
    uid = $V9;
    euid = $V10;
    tty = $V11;
    ruser = $V12;
    source_host = $V13;
    severity = "WARNING";  # site
END
CLASS Pam_More_Failures_User
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"76");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"pid");
    6: ATTR(=,"count");
    7: ATTR(=,"noun");
    8: ATTR(=,"logname");
    9: ATTR(=,"uid");
    10: ATTR(=,"euid");
    11: ATTR(=,"tty");
    12: ATTR(=,"ruser");
    13: ATTR(=,"source_host");
    14: ATTR(=,"user");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("%s more authentication failures of %s from %s", $V6, $V14, $V13);
    sub_source = $V4;
    pid = $V5;
    count = $V6;
    logname = $V8;
    uid = $V9;
    euid = $V10;
    tty = $V11;
    ruser = $V12;
    source_host = $V13;
    user = $V14;
    severity = "WARNING";  # site
END
CLASS Pam_Retries_Ignored
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"77");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"pid");
    6: ATTR(=,"service");
    7: ATTR(=,"retries");
    8: ATTR(=,"retries_max");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("%s tries where %s allows %s", $V7, $V6, $V8);
    sub_source = $V4;
    pid = $V5;
    service = $V6;
    retries = $V7;
    retries_max = $V8;
    severity = "WARNING";  # site
END
CLASS Pam_Old_Base
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"78");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"msg");
    5: ATTR(=,"sub_source");
    6: ATTR(=,"pid");
  MAP
    date = $V2;
    hostname = $V3;
    msg = $V4;
    sub_source = $V5;
    pid = $V6;
END
CLASS Pam_Old_Session_Opened
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"79");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"pid");
    6: ATTR(=,"user");
    7: ATTR(=,"by");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("session opened for user %s", $V6);
    sub_source = $V4;
    pid = $V5;
    user = $V6;
    by = $V7;
END
CLASS Pam_Old_Session_Closed
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"80");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"pid");
    6: ATTR(=,"user");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("session closed for user %s", $V6);
    sub_source = $V4;
    pid = $V5;
    user = $V6;
END
CLASS Pam_Old_User_Unknown
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"81");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"pid");
  MAP
    date = $V2;
    hostname = $V3;
    msg = "password check for an unknown user";
    sub_source = $V4;
    pid = $V5;
    severity = "WARNING";  # site
END
CLASS Pam_Old_Auth_Failure
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"82");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"pid");
    6: ATTR(=,"logname");
    7: ATTR(=,"uid");
    8: ATTR(=,"euid");
    9: ATTR(=,"tty");
    10: ATTR(=,"ruser");
    11: ATTR(=,"source_host");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("authentication failure from %s", $V11);
    sub_source = $V4;
    pid = $V5;
    logname = $V6;
    uid = $V7;
    euid = $V8;
    tty = $V9;
    ruser = $V10;
    source_host = $V11;
    severity = "WARNING";  # site
END
CLASS Pam_Old_Auth_Failure_User
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"83");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"pid");
    6: ATTR(=,"logname");
    7: ATTR(=,"uid");
    8: ATTR(=,"euid");
    9: ATTR(=,"tty");
    10: ATTR(=,"ruser");
    11: ATTR(=,"source_host");
    12: ATTR(=,"user");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("authentication failure of %s from %s", $V12, $V11);
    sub_source = $V4;
    pid = $V5;
    logname = $V6;
    uid = $V7;
    euid = $V8;
    tty = $V9;
    ruser = $V10;
    source_host = $V11;
    user = $V12;
    severity = "WARNING";  # site
END
CLASS Su_Succeeded
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"84");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"target");
    6: ATTR(=,"user");
    7: ATTR(=,"tty");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("%s became %s", $V6, $V5);
    sub_source = "su";
    pid = $V4;
    target = $V5;
    user = $V6;
    tty = $V7;
END
CLASS Su_Failed
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"85");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"target");
    6: ATTR(=,"user");
    7: ATTR(=,"tty");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("%s failed to become %s", $V6, $V5);
    sub_source = "su";
    pid = $V4;
    target = $V5;
    user = $V6;
    tty = $V7;
    severity = "WARNING";  # site
END
CLASS Sudo_Command
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"86");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"user");
    5: ATTR(=,"tty");
    6: ATTR(=,"directory");
    7: ATTR(=,"target");
    8: ATTR(=,"command");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("%s as %s: %s", $V4, $V7, $V8);
    sub_source = "sudo";
    user = $V4;
    tty = $V5;
    directory = $V6;
    target = $V7;
    command = $V8;
END
CLASS Sudo_Wrong_Password
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"87");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"user");
    5: ATTR(=,"count");
    6: ATTR(=,"noun");
    7: ATTR(=,"tty");
    8: ATTR(=,"directory");
    9: ATTR(=,"target");
    10: ATTR(=,"command");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("%s gave %s wrong passwords for %s", $V4, $V5, $V10);
    sub_source = "sudo";
    user = $V4;
    count = $V5;
    tty = $V7;
    directory = $V8;
    target = $V9;
    command = $V10;
    severity = "WARNING";  # site
END
CLASS Sudo_Not_In_Sudoers
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"88");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"user");
    5: ATTR(=,"tty");
    6: ATTR(=,"directory");
    7: ATTR(=,"target");
    8: ATTR(=,"command");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("%s is not in sudoers: %s", $V4, $V8);
    sub_source = "sudo";
    user = $V4;
    tty = $V5;
    directory = $V6;
    target = $V7;
    command = $V8;
    severity = "WARNING";  # site
END
CLASS Sudo_Not_Allowed
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"89");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"user");
    5: ATTR(=,"tty");
    6: ATTR(=,"directory");
    7: ATTR(=,"target");
    8: ATTR(=,"command");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("%s may not run %s", $V4, $V8);
    sub_source = "sudo";
    user = $V4;
    tty = $V5;
    directory = $V6;
    target = $V7;
    command = $V8;
    severity = "WARNING";  # site
END
CLASS Sudo_Session_Opened
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"90");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"service");
    5: ATTR(=,"user");
    6: ATTR(=,"by");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("session opened for user %s", $V5);
    sub_source = "sudo";
    service = $V4;
    user = $V5;
    by = $V6;
END
CLASS Sudo_Session_Closed
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"91");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"service");
    5: ATTR(=,"user");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("session closed for user %s", $V5);
    sub_source = "sudo";
    service = $V4;
    user = $V5;
END
CLASS User_Added
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"92");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"user");
    6: ATTR(=,"uid");
    7: ATTR(=,"gid");
    8: ATTR(=,"home");
    9: ATTR(=,"shell");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("user %s was added", $V5);
    sub_source = "useradd";
    pid = $V4;
    user = $V5;
    uid = $V6;
    gid = $V7;
    home = $V8;
    shell = $V9;
    severity = "WARNING";  # site
END
CLASS Group_Added
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"93");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"pid");
    6: ATTR(=,"group");
    7: ATTR(=,"gid");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("group %s was added", $V6);
    sub_source = $V4;
    pid = $V5;
    group = $V6;
    gid = $V7;
    severity = "WARNING";  # site
END
CLASS User_Deleted
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"94");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"user");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("user %s was deleted", $V5);
    sub_source = "userdel";
    pid = $V4;
    user = $V5;
    severity = "WARNING";  # site
END
CLASS User_Joined_Group
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"95");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"pid");
    5: ATTR(=,"user");
    6: ATTR(=,"group");
  MAP
    date = $V2;
    hostname = $V3;
    msg = PRINTF("user %s was added to group %s", $V5, $V6);
    sub_source = "usermod";
    pid = $V4;
    user = $V5;
    group = $V6;
    severity = "WARNING";  # site
END
