CLASS Web-Access
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"0");
    2: ATTR(=,"agent");
    3: ATTR(=,"hidden");
    4: ATTR(=,"third");
    5: ATTR(=,"time");
    6: ATTR(=,"url");
    7: ATTR(=,"origin");
  MAP
    agent = $V2;
    third = $V4;
    time = $V5;
    url = $V6;
    FORMAT = "a/*b*/c";
    FOLLOWS = "two
lines and a \" quote \\";
    empty = "";
    text = PRINTF("%s of %d %%", "a/*b*/c", $V2);
    origin = $V7;
END
