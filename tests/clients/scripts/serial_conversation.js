// JScript's conversation with the instrument on the COM port of that number.
var br9600 = 6, csRS232 = 0, cfrTimeout = 4;
var failures = 0;

function check(what, found, expected) {
  if (found === expected) return;
  failures++;
  WScript.Echo("FAIL: " + what + ": " + found + " instead of " + expected);
}

var number = parseInt(WScript.Arguments(0), 10);
var comm = new ActiveXObject("KespCommObj.CKespCommObj");
comm.CommStyle = csRS232;
var port = comm.CommObject;
port.Port = number;
port.BaudRate = br9600;
port.TimeOut = 300;
port.UseRedirector = true;
check("settings", port.GetSettings(), "9600,N,8,1");

// JScript has no arguments by reference: the reply is lost, and the call succeeds.
check("query", comm.Query("", "*IDN?"), true);
check("silence", comm.Query("", "SETP 21"), false);
check("its status", comm.CommError, cfrTimeout);
try {
  port.WriteLine("t");
  check("closed port", "no error", 8018);
} catch (error) {
  check("closed port", error.number, 0x800A1F52 - 0x100000000);
  check("its text", error.description, "Operation valid only when the port is open");
}

if (failures === 0) WScript.Echo("PASS");
