// JScript's conversation with the instrument on the COM port of that number.
var br9600 = 6, csRS232 = 0, cfrSuccess = 0, cfrTimeout = 4;
var failures = 0;

function check(what, found, expected) {
  if (found === expected) return;
  failures++;
  WScript.Echo("FAIL: " + what + ": " + found + " instead of " + expected);
}

function refused(what, call, number, description) {
  try {
    call();
    check(what, "no error", number);
  } catch (error) {
    check(what, error.number, number);
    check(what + ", text", error.description, description);
  }
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
check("status", comm.CommError, cfrSuccess);
check("update", comm.Update("SETP 20"), true);
check("silence", comm.Query("", "SETP 21"), false);
check("its status", comm.CommError, cfrTimeout);

comm.AutoClose = false;
check("query that keeps the port", comm.Query("", "t"), true);
check("port is kept", port.IsPortAvailable(number), false);
check("line", port.WriteLine("t"), true);
check("its answer", port.ReadLine(""), true);
port.ClosePort();
check("port is free", port.IsPortAvailable(number), true);
refused("closed port", function () { port.WriteLine("t"); }, 0x800A1F52 - 0x100000000,
        "Operation valid only when the port is open");
port.Port = 250;
refused("missing port", function () { port.OpenPort(); }, 0x800A1F42 - 0x100000000, "Invalid port number");

if (failures === 0) WScript.Echo("PASS");
