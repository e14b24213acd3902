CLASS Base
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"0");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"msg");
  MAP
    date = $V2;
    hostname = $V3;
    sub_source = $V4;
    msg = $V5;
END
CLASS Refused
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"1");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"sub_source");
    5: ATTR(=,"source");
  MAP
    date = $V2;
    hostname = $V3;
    sub_source = $V4;
    msg = PRINTF("refused %s", $V5);
    source = $V5;
END
