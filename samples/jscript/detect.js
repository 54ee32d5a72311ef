// Looks for an instrument at an address, shows what is tried, and stops after so many levels of commands.
//
//   cscript //nologo detect.js [host [port [levels]]]
var dlSCPIOnly = 1;

var levels = parseInt(argument(2, "2"), 10);
var tcp = new ActiveXObject("KespCommObj.CKespTCP");
tcp.IPAddress = argument(0, "127.0.0.1");
tcp.Port = parseInt(argument(1, "10001"), 10);

// The script host calls the functions that begin with tcp_. Wine's host cannot.
try {
  WScript.ConnectObject(tcp, "tcp_");
} catch (error) {
  WScript.Echo("events:      not connected by this script host");
}

// A JScript handler gets a copy of Abort, so it is set in vain here. What JScript can do is to go on only by choice:
// each level adds a command (*IDN?, *VER, t).
var found = false;
try {
  for (var level = dlSCPIOnly; level <= levels && !found; level++) found = tcp.AutoDetect("", level);
} catch (error) {
  WScript.Echo("error:       " + error.number);
  WScript.Echo("description: " + error.description);
  WScript.Quit(2);
}
tcp.Uninitialize();
WScript.Echo(found ? "found:       at " + tcp.IPAddress + ":" + tcp.Port : "nothing found");
if (!found) WScript.Quit(1);

function tcp_AutoDetectUpdate(cmd, IPAddress, Port, Abort) {
  WScript.Echo("trying:      " + cmd + " at " + IPAddress + ":" + Port);
  Abort = cmd === "t";
}

function tcp_AutoDetectEnd() {
  WScript.Echo("ended");
}

function argument(position, otherwise) {
  return WScript.Arguments.Count() > position ? WScript.Arguments(position) : otherwise;
}
