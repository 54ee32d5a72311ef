// JScript's conversation with the built-in device of the simulated GPIB driver.
var csIEEE = 2, cfrReadFailed = 3, to100ms = 9, dlSCPIOnly = 1, soFindNext = 1;
var failures = 0;

function check(what, found, expected) {
  if (found === expected) return;
  failures++;
  WScript.Echo("FAIL: " + what + ": " + found + " instead of " + expected);
}

// JScript has no arguments by reference: the reply is lost, and the call succeeds.
var comm = new ActiveXObject("KespCommObj.CKespCommObj");
comm.CommStyle = csIEEE;
var ieee = comm.CommObject;
ieee.EOSChar = 10;
check("detection", ieee.AutoDetect(""), true);
check("where", ieee.PrimaryAddress, 5);
check("further on", ieee.AutoDetect("", dlSCPIOnly, soFindNext), false);
check("query", comm.Query("", "*IDN?"), true);
check("update", comm.Update("SETP 20"), true);
ieee.TimeOutSecs = to100ms;
check("silence", comm.Query("", "SETP 21"), false);
check("its status", comm.CommError, cfrReadFailed);
check("open", ieee.Initialize(), true);
check("write", ieee.WriteLine("LOG?"), true);
check("read", ieee.ReadLine(""), true);
try {
  ieee.WriteLine("SETP 22");
  ieee.ReadLine("");
  check("silence of the device", "no error", "");
} catch (error) {
  check("silence of the device", error.number, 0x800400EE - 0x100000000);
  check("its text", error.description.slice(-25), "6 - I/O operation aborted");
}
check("close", ieee.Uninitialize(), true);

if (failures === 0) WScript.Echo("PASS");
