CLASS Base
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"0");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"program");
    5: ATTR(=,"msg");
    6: ATTR(=,"origin");
  MAP
    date = $V2;
    hostname = $V3;
    program = $V4;
    msg = $V5;
    severity = "LOW";
    origin = $V6;
END
CLASS Login
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"1");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"origin");
    5: ATTR(=,"user");
    6: ATTR(=,"source");
  MAP
    date = $V2;
    hostname = $V3;
    program = "login";
    msg = PRINTF("%s from %s", $V5, $V6);
    severity = "LOW";
    origin = $V4;
    user = $V5;
    source = $V6;
END
CLASS Login_Root
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"2");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"origin");
    5: ATTR(=,"rest");
  MAP
    date = $V2;
    hostname = $V3;
    program = "login";
    msg = PRINTF("%s: %s", "root", $V5);
    severity = "HIGH";
    origin = $V4;
    user = "root";
END
CLASS Base
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"3");
    2: ATTR(=,"all");
  MAP
    all = $V2;
END
CLASS Child
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"4");
    2: ATTR(=,"date");
    3: ATTR(=,"hostname");
    4: ATTR(=,"origin");
  MAP
    date = $V2;
    hostname = $V3;
    severity = "LOW";
    origin = $V4;
END
