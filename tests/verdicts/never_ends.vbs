' A client that hangs.
Do
Loop
