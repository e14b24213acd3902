MAP_DEFAULT
  source = PRINTF("%s of %s", "LOG");
  severity = "INFO";
END

CLASS Base
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"1");
  MAP
    msg = PRINTF("%s and %s", $V1, $V1, $V1);
    more = PRINTF("%d %5.3s 100%", $V1, $V1, $V1);
END

CLASS Gone
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"17");
END

CLASS Refused
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"3");
END

CLASS Refused_Root
  SELECT
    1: ATTR(=,"source"), VALUE(=,"root");
    2: ATTR(=,"_event_id"), VALUE(=,"1");
END

CLASS Typed
  SELECT
    1: ATTR(=,"msg"), VALUE(=,5);
    2: ATTR(=,"date"), VALUE(>=,"5");
    3: ATTR(=,"hostname"), KEY(EXISTS,"x"), VALUE(PREFIX,"www");
    4: ATTR(=,"hostname"), KEY(!=,"x");
    5: "hostname" = 7;
    6: ATTR(=,8);
END

CLASS Unfilled
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"0");
    2: ATTR(=,"source");
    3: ATTR(=,"severity");
END

CLASS Nowhere
  SELECT
    1: ATTR(=,"severity"), VALUE(=,"HIGH");
END

CLASS Empty
END

CLASS Everything
  SELECT
    1: ATTR(=,"_event_id");
    2: ATTR(=,"forgotten_too");
END

CLASS All
  SELECT
    1: ATTR(=,"_event_id"), VALUE(PREFIX,"");
    2: ATTR(PREFIX,"host"), VALUE(=,"gate");
END

CLASS Some
  SELECT
    1: "sub_source" = "cron";
    2: ATTR(PREFIX,"host"), VALUE(=,"gate");
END

CLASS *DISCARD*
  SELECT
    1: ATTR(=,"_event_id"), VALUE(<,"9");
    2: ATTR(=,"sub_source");
END

CLASS Late
  SELECT
    1: ATTR(=,"sub_source"), VALUE(CONTAINS,"x");
    2: ATTR(=,"sub_source");
END
