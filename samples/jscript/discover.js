// Finds the instruments on the network and asks each who it is.
//
//   cscript //nologo discover.js
var csTCPIP = 1, sckUDPProtocol = 1;
var TemporaryFolder = 2;

var files = new ActiveXObject("Scripting.FileSystemObject");
var comm = new ActiveXObject("KespCommObj.CKespCommObj");
comm.CommStyle = csTCPIP;
comm.DebugFilename = files.BuildPath(files.GetSpecialFolder(TemporaryFolder), "discover-js.log");
comm.Debugging = true;
var tcp = comm.CommObject;
// One broadcast to everybody, over UDP; what answers is asked over TCP.
tcp.Protocol = sckUDPProtocol;

var found = false;
try {
  // AutoDetect raises its error, where DetectInstrument would show a box.
  found = tcp.AutoDetect("");
} catch (error) {
  WScript.Echo("error:       " + error.number);
  WScript.Echo("description: " + error.description);
  WScript.Quit(2);
}
for (var all = new Enumerator(tcp.Devices); !all.atEnd(); all.moveNext()) {
  var one = all.item();
  WScript.Echo("instrument:  " + one.IPAddress + "  model " + one.Model + "  serial " + one.Serial);
}
if (!found) WScript.Echo("nobody answered");
WScript.Echo("trace file:  " + comm.DebugFilename);
if (!found) WScript.Quit(1);
