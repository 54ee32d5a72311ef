' One check failed, and the script went on to its end.
WScript.Echo "FAIL one check"
WScript.Echo "PASS"
