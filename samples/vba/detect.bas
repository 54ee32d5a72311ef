' Not yet run. Looks for an instrument at an address, shows what is tried, and stops after so many commands.
'
'   Needs the class module Detection.cls.
'   In the Immediate window:  Detect "192.168.0.10", 10001, 2
Option Explicit

Public Sub Detect(Optional ByVal Host As String = "127.0.0.1", Optional ByVal Port As Integer = 10001, _
                  Optional ByVal Commands As Long = 2)
    Dim search As New Detection
    Dim result As String
    On Error GoTo Failed
    If search.Find(Host, Port, Commands, result) Then
        Debug.Print "reply:       " & result
    Else
        Debug.Print "nothing found"
    End If
    Exit Sub
Failed:
    Debug.Print "error:       " & Err.Number
    Debug.Print "source:      " & Err.Source
    Debug.Print "description: " & Err.Description
End Sub
