CLASS *DISCARD*
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"1");
END
CLASS Login
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"4");
    2: ATTR(=,"user");
  MAP
    user = $V2;
    msg = PRINTF("%s logged in", $V2);
END
CLASS Long
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"3");
    2: ATTR(=,"msg");
  MAP
    msg = $V2;
END
