' Asks an instrument on the GPIB (IEEE-488) who it is.
'
'   cscript //nologo ieee.vbs [primary address [code of the character that ends a command [command]]]
Option Explicit
Const csIEEE = 2

Dim address, eos, cmd
address = CInt(Argument(0, "5"))
eos = Argument(1, "10")
cmd = Argument(2, "*IDN?")

Dim comm
Set comm = CreateObject("KespCommObj.CKespCommObj")
comm.CommStyle = csIEEE
comm.CommObject.PrimaryAddress = address
comm.CommObject.EOSChar = eos
' SetEOS would end a read at the first character of EOSChar, here "1". The END of the device is enough.
comm.CommObject.SetEOS = False
comm.DebugFilename = TraceFile()
comm.Debugging = True

Dim result, succeeded
succeeded = comm.Query(result, cmd)
WScript.Echo "command:     " & cmd
If succeeded Then
    WScript.Echo "reply:       " & WithoutLineEnds(result)
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

' A reply from the GPIB is handed out as it came.
Function WithoutLineEnds(text)
    WithoutLineEnds = Replace(Replace(text, vbCr, ""), vbLf, "")
End Function

' A file in the temporary folder: the folder of the library itself may not be writable.
Function TraceFile()
    Dim files
    Set files = CreateObject("Scripting.FileSystemObject")
    TraceFile = files.BuildPath(files.GetSpecialFolder(2), "ieee-vbs.log")
End Function
