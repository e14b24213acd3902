CLASS Login_Failure
SELECT
1: ATTR(=,"Program"), VALUE(=,"login");
2: ATTR(PREFIX,"Text"), VALUE(CONTAINS,"failed");
3: "Host" = "gateway";         # short form
FETCH
1: SUBSTR($V2, 1, 6);
2: IPADDR($V3);
MAP
msg = PRINTF("%s from %s", $V2, $F2);
origin = $F2;
severity = WARNING;
END
CLASS *DISCARD*
SELECT
1: ATTR(=,"Program"), KEY(EXISTS,"pid");
END
MAP_DEFAULT
source = 'LOG';
END
