CLASS Base
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"0");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"pid");
    6: ATTR(=,"msg");
  MAP
    date = $V2;
    hostname = $V3;
    sub_source = $V4;
    pid = $V5;
    msg = $V6;
END
CLASS Refused
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"1");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"pid");
    6: ATTR(=,"source");
    7: ATTR(=,"origin");
  MAP
    date = $V2;
    hostname = $V3;
    sub_source = $V4;
    pid = $V5;
    msg = PRINTF("refused connect from %s", $V6);
    source = $V6;
    origin = $V7;
    severity = "WARNING";
END
