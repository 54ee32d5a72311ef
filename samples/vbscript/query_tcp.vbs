' Asks an instrument on the network who it is.
'
'   cscript //nologo query_tcp.vbs [host [port [command]]]
Option Explicit
Const csTCPIP = 1

Dim comm, result, succeeded, cmd
cmd = Argument(2, "*IDN?")
Set comm = CreateObject("KespCommObj.CKespCommObj")
comm.CommStyle = csTCPIP
comm.CommObject.IPAddress = Argument(0, "127.0.0.1")
comm.CommObject.Port = CInt(Argument(1, "10001"))
comm.DebugFilename = TraceFile("query_tcp-vbs.log")
comm.Debugging = True

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

' In the temporary folder: the folder of the library itself may not be writable.
Function TraceFile(name)
    Dim files
    Set files = CreateObject("Scripting.FileSystemObject")
    TraceFile = files.BuildPath(files.GetSpecialFolder(2), name)
End Function
