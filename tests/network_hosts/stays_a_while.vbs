' Ends by itself after three seconds, if nobody ends it or its Windows before.
Option Explicit
Dim began
began = Timer
' Timer begins anew at midnight.
Do While Timer >= began And Timer < began + 3
Loop
WScript.Echo "PASS"
