' Tells the folder of the script host, where the simulated driver and its bus must be, and then ends as it is told.
Set files = CreateObject("Scripting.FileSystemObject")
folder = files.GetParentFolderName(WScript.FullName)
WScript.Echo "folder: " & folder
For Each name In Array("Gpib-32.dll", "Gpib-32.json")
  If Not files.FileExists(folder & "\" & name) Then WScript.Echo "FAIL " & name & " is not there"
Next
If WScript.Arguments.Count > 0 Then WScript.Quit 3
WScript.Echo "PASS"
