' Asks an instrument on the network who it is.
'
'   cscript //nologo query.vbs [host [port [command]]]
Option Explicit
Const csTCPIP = 1

Dim host, port, cmd
host = Argument(0, "127.0.0.1")
port = CInt(Argument(1, "10001"))
cmd = Argument(2, "*IDN?")

Dim comm
Set comm = CreateObject("KespCommObj.CKespCommObj")
comm.CommStyle = csTCPIP
comm.CommObject.IPAddress = host
comm.CommObject.Port = port
comm.DebugFilename = TraceFile()
comm.Debugging = True

Dim result, succeeded
succeeded = comm.Query(result, cmd)
WScript.Echo "command:     " & cmd
If succeeded Then
    WScript.Echo "reply:       " & result
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

' A file in the temporary folder: the folder of the library itself may not be writable.
Function TraceFile()
    Dim files
    Set files = CreateObject("Scripting.FileSystemObject")
    TraceFile = files.BuildPath(files.GetSpecialFolder(2), "query-vbs.log")
End Function
