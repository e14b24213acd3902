# Nothing but a comment.
