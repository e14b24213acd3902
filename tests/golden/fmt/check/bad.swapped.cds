// A format file in the place of the classes.
CLASS First
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"0");
    2: ATTR(=,"msg");
  MAP
    msg = $V2;
END
FORMAT Second
%s
END
