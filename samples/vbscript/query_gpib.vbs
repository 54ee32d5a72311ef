' Asks an instrument on the GPIB (IEEE-488) who it is.
'
'   cscript //nologo query_gpib.vbs [primary address [code of the character that ends a command [command]]]
Option Explicit
Const csIEEE = 2

Dim comm, result, succeeded, cmd
cmd = Argument(2, "*IDN?")
Set comm = CreateObject("KespCommObj.CKespCommObj")
comm.CommStyle = csIEEE
comm.CommObject.PrimaryAddress = CInt(Argument(0, "5"))
comm.CommObject.EOSChar = Argument(1, "10")
' SetEOS would end a read at the first character of EOSChar, here "1". The END of the device is enough.
comm.CommObject.SetEOS = False
comm.DebugFilename = TraceFile("query_gpib-vbs.log")
comm.Debugging = True

succeeded = comm.Query(result, cmd)
WScript.Echo "command:     " & cmd
If succeeded Then
    ' A reply from the GPIB is handed out as it came, line ends included.
    WScript.Echo "reply:       " & Replace(Replace(result, vbCr, ""), vbLf, "")
Else
    WScript.Echo "source:      " & comm.CommErrorSource
    WScript.Echo "description: " & comm.CommErrorDescr
End If
WScript.Echo "status:      " & comm.CommError
WScript.Echo "trace file:  " & comm.DebugFilename
If Not succeeded Then WScript.Quit 1

Function Argument(position, default)
    Argument = default
    If WScript.Arguments.Count > position Then Argument = WScript.Arguments(position)
End Function

' In the temporary folder: the folder of the library itself may not be writable.
Function TraceFile(name)
    Dim files
    Set files = CreateObject("Scripting.FileSystemObject")
    TraceFile = files.BuildPath(files.GetSpecialFolder(2), name)
End Function
