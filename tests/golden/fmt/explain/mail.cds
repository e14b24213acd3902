MAP_DEFAULT
  source = "LOGFILE";
END
CLASS From_Console
  SELECT
    1: ATTR(=,"_event_id");
    2: ATTR(=,"hostname"), KEY(EXISTS,"x");
END
CLASS Mail_Base
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"0");
    2: ATTR(=,"msg"), VALUE(PREFIX,"queued");
END
CLASS *DISCARD*
  SELECT
    1: "msg" = "alive";
END
CLASS Numbered
  SELECT
    1: ATTR(=,"pid"), VALUE(=,123);
END
CLASS Empty
END
CLASS Mail_Refused
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"1");
    2: ATTR(=,"origin"), VALUE(PREFIX,"192.");
    3: ATTR(SUFFIX,"name"), VALUE(!=,$V2);
  FETCH
    1: SUBSTR($V2, 1, 3);
    2: $F1;
  MAP
    network = $F2;
    msg = PRINTF("refused connect from %s", $V2);
END
CLASS Queue
  SELECT
    1: ATTR(=,"queue");
  FETCH
    1: $V1;
    2: SUBSTR($V1, 1, $V1);
END
