CLASS First
  SELECT
    1: ATTR(=,"_event_id"), VALUE(=,"0");
END
