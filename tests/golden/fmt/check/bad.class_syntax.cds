CLASS Base
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"0");
    3: ATTR(=,"date");
  MAP
    date = $V2;
END
CLASS Refused
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"1");
  FETCH
    1: SUBSTR($V1, 1, $F1);
  MAP
    date = $V2;
END
CLASS SELECT
END
CLASS Operators
  SELECT
    1: ATTR(CONTAINS,"date");
END
CLASS Order
  SELECT
    1: ATTR(=,"date"), VALUE(=,"x"), KEY(=,"x");
END
CLASS Short
  SELECT
    1: "date" = $F1;
END
CLASS Values
  MAP
    msg = PRINTF("plain");
END
CLASS Unquoted
  MAP
    VALUE = 5;
END
CLASS Sections
  MAP
    msg = "x";
  SELECT
    1: ATTR(=,"date");
END
MAP_DEFAULT
  msg = $V1;
END
text between classes
CLASS Reserved
  MAP
    msg = OID;
END
CLASS No_Comma
  MAP
    msg = "x"
    date = "y";
END
CLASS Deep
  FETCH
    1: IPADDR(IPNAME("x");
END
CLASS Last
  SELECT
    1: ATTR(=,"date");
END