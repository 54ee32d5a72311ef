' A run-time error in the middle: Windows Script Host says nothing under Wine and ends with 0.
WScript.Echo "before the error"
CreateObject("KespCommObj.NoSuchClass").Nothing
WScript.Echo "PASS"
