' Looks for an instrument at an address, shows what is tried, and stops after so many commands.
'
'   cscript //nologo detect.vbs [host [port [commands]]]
Option Explicit

Dim tcp, result, found, tried, allowed
allowed = CInt(Argument(2, "2"))
tried = 0
Set tcp = CreateObject("KespCommObj.CKespTCP")
tcp.IPAddress = Argument(0, "127.0.0.1")
tcp.Port = CInt(Argument(1, "10001"))

' The script host calls the procedures that begin with tcp_. Wine's host cannot.
On Error Resume Next
WScript.ConnectObject tcp, "tcp_"
If Err.Number <> 0 Then WScript.Echo "events:      not connected by this script host"
Err.Clear
found = tcp.AutoDetect(result)
If Err.Number <> 0 Then
    WScript.Echo "error:       " & Err.Number
    WScript.Echo "source:      " & Err.Source
    WScript.Echo "description: " & Err.Description
    WScript.Quit 2
End If
On Error GoTo 0
tcp.Uninitialize

If found Then
    WScript.Echo "reply:       " & result
Else
    WScript.Echo "nothing found"
    WScript.Quit 1
End If

' Abort is the library's own variable: True ends the detection before the command is sent.
Sub tcp_AutoDetectUpdate(cmd, IPAddress, Port, Abort)
    If tried = allowed Then
        WScript.Echo "stopped:     before " & cmd
        Abort = True
    Else
        tried = tried + 1
        WScript.Echo "trying:      " & cmd & " at " & IPAddress & ":" & Port
    End If
End Sub

Sub tcp_AutoDetectEnd()
    WScript.Echo "ended:       after " & tried & " commands"
End Sub

Function Argument(position, default)
    Argument = default
    If WScript.Arguments.Count > position Then Argument = WScript.Arguments(position)
End Function
